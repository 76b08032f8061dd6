# bash completion of quorvel-sim
_quorvel_sim() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} words
    case "$previous" in
    --scenario) words=$("${COMP_WORDS[0]}" --list-scenarios 2>/dev/null | cut -d' ' -f1) ;;
    --ends) words='close done stop' ;;
    --speed) words='9600 19200 38400 57600 115200' ;;
    --link|--keys|--control|--seed|--clock|--trace-size) words='' ;;
    *) words='--link --keys --control --scenario --ends --list-scenarios --speed --seed --clock --face --trace --trace-size --version --help' ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    [ "${#COMPREPLY[@]}" -gt 0 ] || mapfile -t COMPREPLY < <(compgen -f -- "$current")
}
complete -o filenames -F _quorvel_sim quorvel-sim
