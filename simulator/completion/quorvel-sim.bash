# bash completion of quorvel-sim
_quorvel_sim() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} words
    local exam='--till --case --list --jobs --report --help'
    case "$previous" in
    --scenario) words=$("${COMP_WORDS[0]}" --list-scenarios 2>/dev/null | cut -d' ' -f1) ;;
    --ends) words='close done stop' ;;
    --session) words='strict lenient' ;;
    --language) words='en pt' ;;
    --speed) words='9600 19200 38400 57600 115200' ;;
    --case) words=$("${COMP_WORDS[0]}" exam --list 2>/dev/null | sed -n 's/^  \([0-9.]*\).*/\1/p') ;;
    --link|--keys|--control|--seed|--clock|--trace-size|--count|--record|--replay|--web|--web-token|--web-name|--pace|--ignore|--till|--jobs|--report|scenario-from) words='' ;;
    *) words='exam scenario-from --link --keys --control --scenario --amounts --ends --list-scenarios --speed --session '
       words+='--language --seed --clock --count --face --web --web-token --web-name --reveal --trace --trace-size --record --record-private --replay --pace --ignore --version --help'
       [ "${COMP_WORDS[1]:-}" != exam ] || words=$exam ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    [ "${#COMPREPLY[@]}" -gt 0 ] || mapfile -t COMPREPLY < <(compgen -f -- "$current")
}
complete -o filenames -F _quorvel_sim quorvel-sim
