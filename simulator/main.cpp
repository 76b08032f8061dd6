// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <CLI/CLI.hpp>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <exception>
#include <fmt/format.h>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <sys/mman.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include "simulator/amounts/amounts.h"
#include "simulator/control/control.h"
#include "simulator/control/control_server.h"
#include "simulator/exam/exam.h"
#include "simulator/face/face.h"
#include "simulator/line/port_link.h"
#include "simulator/many.h"
#include "simulator/pin_pad.h"
#include "simulator/recording/recorder.h"
#include "simulator/recording/replayer.h"
#include "simulator/recording/scenario_maker.h"
#include "simulator/scenario/performance.h"
#include "simulator/watch/trace_file.h"
#include "simulator/web/access.h"
#include "simulator/web/web_server.h"

namespace {

namespace sim = quorvel::sim;

// While one lives, SIGINT and SIGTERM end the players' run; afterwards they are ignored, as the program ends anyway.
template <typename Player>
class StopOnSignals {
public:
    explicit StopOnSignals(std::vector<Player*> players) {
        static std::vector<Player*> running;
        running = std::move(players);
        handle([](int) {
            for (Player* player : running) { player->request_stop(); }
        });
    }
    ~StopOnSignals() { handle(SIG_IGN); }
    StopOnSignals(const StopOnSignals&) = delete;
    StopOnSignals& operator=(const StopOnSignals&) = delete;

private:
    static void handle(void (*handler)(int)) {
        struct sigaction action = {};
        action.sa_handler = handler;
        for (const int signal : {SIGINT, SIGTERM}) { sigaction(signal, &action, nullptr); }
    }
};

void print_error(const std::string& text) { fmt::print(stderr, "{}", text); }

constexpr int kKept = 0;
constexpr int kBroken = 1;
// What it was asked to do cannot be done.
constexpr int kUnable = 2;

struct Settings {
    std::string link;
    std::string keys;
    std::string control;
    std::string scenario;
    std::optional<sim::Scenario::End> ends;
    std::optional<unsigned> speed;
    sim::Sessions session = sim::Sessions::kStrict;
    std::optional<sim::Language> language;
    std::optional<uint32_t> seed;
    std::string clock;
    bool amounts = false;
    std::string record;
    bool recordPrivate = false;
    std::string replay;
    double pace = 0;
    std::vector<std::string> ignore;
    std::string recording;
    unsigned count = 1;
    // Which of several this is about, from 1 on.
    unsigned number = 0;
    // A file, or standard error where it is empty; none when nothing is to be traced.
    std::optional<std::string> trace;
    size_t traceSize = size_t{8} << 20U;
    bool face = false;
    // Where a page is served; none without it.
    std::optional<std::string> web;
    std::string webToken;
    std::vector<std::string> webNames;
    bool reveal = false;
    bool listScenarios = false;
};

const std::map<std::string, sim::Scenario::End> kEnds{
    {"close", sim::Scenario::End::kClose}, {"done", sim::Scenario::End::kDone}, {"stop", sim::Scenario::End::kStop}};

const std::map<std::string, sim::Sessions> kSessions{{"strict", sim::Sessions::kStrict},
                                                     {"lenient", sim::Sessions::kLenient}};
const auto kLanguageNames = [] {
    std::map<std::string, sim::Language> names;
    for (const auto& [name, language] : sim::kLanguages) { names.emplace(name, language); }
    return names;
}();

// What stands under lasting names while the PIN pad runs, and leads to whatever device it is on.
class Port {
public:
    Port(std::string link, bool silent, unsigned number) : link_(std::move(link)), silent_(silent), number_(number) {}

    void announce(const std::string& path) {
        portLink_.reset();
        if (!link_.empty()) { portLink_.emplace(link_, path); }
        if (silent_) { return; }
        fmt::print("{}", sim::told_by(number_, fmt::format("READY {}\n", path)));
        std::fflush(stdout);
    }
    void withdraw() { portLink_.reset(); }

private:
    std::string link_;
    bool silent_;
    unsigned number_;
    std::optional<sim::PortLink> portLink_;
};

// A line in the midst of the face would spoil it, and it shows all that would stand there.
bool may_print(const Settings& settings, int descriptor) { return !settings.face || ::isatty(descriptor) == 0; }

// A trace that cannot be written to its end does not end the PIN pad.
void trace_to_file(sim::Journal::Listeners& listeners, const Settings& settings) {
    const auto write = [file = std::make_shared<std::optional<sim::TraceFile>>(
                            std::in_place, *settings.trace, settings.traceSize)](const std::string& entry) {
        if (!*file) { return; }
        try {
            (*file)->write(entry);
        } catch (const std::system_error& error) {
            file->reset();
            print_error(fmt::format("quorvel-sim: the trace ends here: {}\n", error.what()));
        }
    };
    listeners.traffic = [write](const sim::Traffic& traffic) { write(sim::to_text(traffic)); };
    listeners.finding = [write](const sim::Finding& finding) { write(sim::to_text(finding)); };
}

sim::PinPad::Options options(const Settings& settings, Port& port, sim::Performance* performance) {
    sim::PinPad::Options options;
    if (performance != nullptr) { options = performance->prepare(std::move(options)); }
    options.speed = settings.speed.value_or(0);
    options.seed = settings.seed;
    options.session = settings.session;
    options.language = settings.language;
    if (!settings.clock.empty()) { options.clock = sim::standing_clock(settings.clock); }
    if (settings.trace && !settings.trace->empty()) { trace_to_file(options.listeners, settings); }
    options.returned = [&port](const std::string& path) { port.announce(path); };
    if (!settings.keys.empty()) { options.device.keys = sim::KeyStore::from_file(settings.keys); }
    std::string& serial = options.device.identity.serialNumber;
    serial = sim::serial_of(serial, settings.number);
    if (!may_print(settings, STDERR_FILENO)) { return options; }
    const auto tell = [number = settings.number](const std::string& text) { print_error(sim::told_by(number, text)); };
    if (settings.trace && settings.trace->empty()) {
        options.listeners.traffic = [tell](const sim::Traffic& traffic) { tell(sim::to_text(traffic)); };
    }
    options.listeners.finding = [tell, first = std::move(options.listeners.finding)](const sim::Finding& finding) {
        if (first) { first(finding); }
        tell(fmt::format("finding ({}): {}\n", sim::kind_name(finding.kind), finding.text));
    };
    return options;
}

sim::Recorder make_recorder(const Settings& settings, sim::Cards cards) {
    const auto values = settings.recordPrivate ? sim::Recorder::Values::kKept : sim::Recorder::Values::kWithheld;
    const bool prints = may_print(settings, STDERR_FILENO);
    return {settings.record, values, std::move(cards), [prints](const std::string& what) {
                if (prints) { print_error(fmt::format("quorvel-sim: {}\n", what)); }
            }};
}

// A recording that nobody has asked for stands in memory until the page wants it.
class UnnamedFile {
public:
    UnnamedFile() : descriptor_(::memfd_create("recording", MFD_CLOEXEC), "memfd_create") {}
    [[nodiscard]] std::string path() const { return fmt::format("/proc/self/fd/{}", descriptor_.get()); }

private:
    quorvel::wire::Descriptor descriptor_;
};

constexpr size_t kMostUnnamed = size_t{32} << 20U;

std::unique_ptr<sim::Performance> performance_of(const Settings& settings) {
    if (settings.scenario.empty()) { return nullptr; }
    auto performance = std::make_unique<sim::Performance>(sim::Scenario::find(settings.scenario));
    if (settings.ends) { performance->end_at(*settings.ends); }
    return performance;
}

// Whether all went as the scenario says.
bool report(const sim::Performance& performance, const sim::PinPad& pinPad, unsigned number) {
    const std::vector<std::string> complaints = performance.complaints(pinPad.findings());
    std::string report = fmt::format("scenario: {}\n", complaints.empty() ? "ok" : "failed");
    for (const std::string& complaint : complaints) { report += complaint + "\n"; }
    fmt::print("{}", sim::told_by(number, report));
    return complaints.empty();
}

int list_scenarios() {
    for (const auto& [name, text] : sim::shipped_scenarios()) {
        fmt::print("{:24} {}\n", name, sim::Scenario::from_toml(std::string(name), text).title);
    }
    return kKept;
}

int replay(const Settings& settings) {
    sim::require_known(settings.ignore);
    Port port(settings.link, false, 0);
    sim::Replayer::Options options{.pace = settings.pace};
    options.ignored.insert(settings.ignore.begin(), settings.ignore.end());
    options.differs = [](const std::string& how) { print_error(fmt::format("difference: {}\n", how)); };
    options.returned = [&port](const std::string& path) { port.announce(path); };
    if (settings.trace && !settings.trace->empty()) {
        trace_to_file(options.listeners, settings);
    } else if (settings.trace) {
        options.listeners.traffic = [](const sim::Traffic& traffic) { print_error(sim::to_text(traffic)); };
    }
    sim::Replayer replayer(sim::Recording::from_file(settings.replay), std::move(options));
    const StopOnSignals<sim::Replayer> stopOnSignals({&replayer});
    port.announce(replayer.path());
    replayer.run();
    fmt::print("replay: {}\n", replayer.is_same() ? "the same" : "different");
    return replayer.is_same() ? kKept : kBroken;
}

int print_scenario(const std::string& path) {
    const auto recording = sim::Recording::from_file(path);
    fmt::print("{}", sim::scenario_from(recording, fmt::format("Recorded in {}", path)));
    return kKept;
}

// One PIN pad with all that belongs to it.
class Place {
public:
    explicit Place(const Settings& settings)
        : settings_(settings),
          port_(settings.link, !may_print(settings, STDOUT_FILENO), settings.number),
          performance_(performance_of(settings)),
          cards_(performance_ ? performance_->scenario().cards : sim::Cards::standard()),
          pinPad_(pin_pad_options()),
          control_(pinPad_, cards_) {
        if (!settings.control.empty()) { server_.emplace(settings.control, control_); }
        if (settings.web) { serve_page(); }
    }

    [[nodiscard]] sim::PinPad& pin_pad() noexcept { return pinPad_; }
    [[nodiscard]] unsigned number() const noexcept { return settings_.number; }

    void announce() {
        port_.announce(pinPad_.path());
        if (!page_ || !may_print(settings_, STDOUT_FILENO)) { return; }
        fmt::print("{}", sim::told_by(settings_.number, fmt::format("WEB {}\n", page_->link())));
        std::fflush(stdout);
    }
    // When it has ended, nothing leads to it any more.
    void play() {
        pinPad_.run();
        port_.withdraw();
        server_.reset();
        page_.reset();
    }
    void play_by_hand() {
        sim::show_face(
            pinPad_, control_.cards(), feed_, [this] { announce(); }, page_ ? page_->link() : "");
    }
    [[nodiscard]] bool went_well() { return !performance_ || report(*performance_, pinPad_, settings_.number); }

private:
    sim::PinPad::Options pin_pad_options() {
        sim::PinPad::Options made = options(settings_, port_, performance_.get());
        if (settings_.amounts) { made.companion = &amounts_; }
        if (settings_.face) { feed_.listen(made); }
        if (!settings_.record.empty()) {
            recorder_.emplace(make_recorder(settings_, cards_));
            recorder_->listen(made);
        } else if (settings_.web) {
            unnamed_.emplace();
            recorder_.emplace(unnamed_->path(), sim::Recorder::Values::kWithheld, cards_, [](const std::string&) {});
            recorder_->end_at(kMostUnnamed);
            recorder_->listen(made);
        }
        if (settings_.web) { bulletin_.listen(made); }
        return made;
    }

    void serve_page() {
        sim::web::WebServer::Options options;
        options.address = sim::web::Address::from(*settings_.web);
        options.token = settings_.webToken.empty() ? sim::web::new_token() : sim::web::token_in(settings_.webToken);
        options.names = settings_.webNames;
        options.version = QUORVEL_VERSION;
        options.values = values();
        // One with private values is not for the page, unless the page is to show them.
        const bool isOpen = !settings_.recordPrivate || settings_.reveal;
        options.recording = unnamed_ ? unnamed_->path() : isOpen ? settings_.record : "";
        options.performance = performance_.get();
        if (options.address.port != 0 && settings_.number > 1) {
            options.address.port += static_cast<int>(settings_.number) - 1;
            if (options.address.port > sim::web::Address::kHighestPort) {
                throw std::runtime_error(fmt::format("--web: there is no port {}", options.address.port));
            }
        }
        page_.emplace(std::move(options), control_, bulletin_);
    }
    [[nodiscard]] sim::web::Bulletin::Values values() const {
        using Values = sim::web::Bulletin::Values;
        return settings_.reveal ? Values::kRevealed : Values::kWithheld;
    }

    const Settings settings_;
    Port port_;
    const std::unique_ptr<sim::Performance> performance_;
    const sim::Cards cards_;
    sim::Amounts amounts_;
    std::optional<UnnamedFile> unnamed_;
    std::optional<sim::Recorder> recorder_;
    sim::Feed feed_;
    sim::web::Bulletin bulletin_{values()};
    sim::PinPad pinPad_;
    sim::Control control_;
    std::optional<sim::ControlServer> server_;
    std::optional<sim::web::WebServer> page_;
};

Settings numbered(Settings settings, unsigned number) {
    settings.number = number;
    settings.link = sim::path_of(settings.link, number);
    settings.control = sim::path_of(settings.control, number);
    settings.record = sim::path_of(settings.record, number);
    if (settings.trace) { settings.trace = sim::path_of(*settings.trace, number); }
    if (settings.seed) { *settings.seed += number - 1; }
    return settings;
}

std::vector<std::unique_ptr<Place>> places_of(const Settings& settings) {
    std::vector<std::unique_ptr<Place>> places;
    if (settings.count == 1) { places.push_back(std::make_unique<Place>(settings)); }
    for (unsigned number = 1; settings.count > 1 && number <= settings.count; ++number) {
        places.push_back(std::make_unique<Place>(numbered(settings, number)));
    }
    return places;
}

// Each on a thread of its own. Whether no line has failed; the others go on without one that has.
bool play_all(const std::vector<std::unique_ptr<Place>>& places) {
    std::atomic<bool> whole = true;
    std::vector<std::jthread> threads;
    threads.reserve(places.size());
    for (const auto& place : places) { place->announce(); }
    for (const auto& place : places) {
        threads.emplace_back([&place = *place, &whole] {
            try {
                place.play();
            } catch (const std::exception& error) {
                print_error(sim::told_by(place.number(), fmt::format("quorvel-sim: {}\n", error.what())));
                whole = false;
            }
        });
    }
    threads.clear();
    return whole;
}

int play(const Settings& settings) {
    const auto places = places_of(settings);
    std::vector<sim::PinPad*> pinPads;
    pinPads.reserve(places.size());
    for (const auto& place : places) { pinPads.push_back(&place->pin_pad()); }
    const StopOnSignals<sim::PinPad> stopOnSignals(std::move(pinPads));
    if (places.size() > 1) {
        if (!play_all(places)) { return kUnable; }
    } else if (settings.face) {
        places.front()->play_by_hand();
    } else {
        places.front()->announce();
        places.front()->play();
    }
    bool kept = true;
    for (const auto& place : places) { kept = place->went_well() && kept; }
    return kept ? kKept : kBroken;
}

CLI::App* add_exam(CLI::App& app, sim::exam::Request& request, bool& listed) {
    CLI::App* exam = app.add_subcommand("exam", "Run a till against many cases, and judge what it does");
    exam->add_option("--till", request.till, "How the till is spoken to: a TOML file")->type_name("FILE");
    exam->add_flag("--list", listed, "Name the cases");
    exam->add_option("--case", request.cases, "Only these: a number, its beginning, or a pattern")
        ->type_name("NUMBER|PATTERN")
        ->expected(1)
        ->allow_extra_args(false)
        ->take_all();
    exam->add_option("--jobs", request.jobs, "So many cases side by side")
        ->type_name("NUMBER")
        ->check(CLI::Range(1, 256));
    exam->add_option("--report", request.report, "Write exam.json, exam.xml and index.html into this folder")
        ->type_name("FOLDER");
    exam->add_option("command", request.command, "Behind --: the till, in place of the file's command");
    exam->footer("Exit status: 0 when nothing failed, 1 when something did, 2 when it cannot be run.");
    return exam;
}

int run_exam(const sim::exam::Request& request, bool listed) {
    if (!listed) {
        struct sigaction action = {};
        action.sa_handler = [](int) { sim::exam::request_stop(); };
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) { sigaction(signal, &action, nullptr); }
        return sim::exam::run(request) ? kKept : kBroken;
    }
    sim::exam::list(request.cases);
    return kKept;
}

// An option whose value may be left out.
CLI::Option* value_or_none(CLI::Option* option, const char* type) { return option->type_name(type)->expected(0, 1); }

// The page for browsers. Gives the option, as its value may be left out.
CLI::Option* add_web(CLI::App& app, Settings& settings) {
    CLI::Option* const web = value_or_none(
        app.add_option("--web", settings.web,
                       "Serve a page on which the PIN pad is played in a browser, and print its link behind READY; "
                       "without a value at 127.0.0.1 and any free port"),
        "[[ADDRESS:]PORT]");
    app.add_option("--web-token", settings.webToken,
                   "Keep the link's token in this file, so that links live on after a restart")
        ->type_name("FILE")
        ->needs(web);
    app.add_option("--web-name", settings.webNames,
                   "A name of this machine that browsers may use, besides addresses and localhost")
        ->type_name("NAME")
        ->expected(1)
        ->allow_extra_args(false)
        ->take_all()
        ->needs(web);
    app.add_flag("--reveal", settings.reveal, "Show card numbers, PINs and keys on the page")->needs(web);
    return web;
}

// What a session is written to, and what is made of it.
void add_recording(CLI::App& app, Settings& settings) {
    CLI::Option* const record =
        app.add_option("--record", settings.record, "Write all that happens to this file, with test values for secrets")
            ->type_name("FILE");
    app.add_flag("--record-private", settings.recordPrivate, "Record card numbers, PINs and keys as they are")
        ->needs(record);
    CLI::Option* const replay = app.add_option("--replay", settings.replay,
                                               "Answer as the PIN pad did in this recording, and tell what differs")
                                    ->type_name("FILE");
    for (const char* other : {"--record", "--scenario", "--keys", "--control", "--face", "--speed", "--seed", "--count",
                              "--amounts", "--session", "--language", "--clock", "--web"}) {
        replay->excludes(app.get_option(other));
    }
    app.add_option("--pace", settings.pace, "Let the pauses of a recording last, times this factor; 0 for none")
        ->type_name("FACTOR")
        ->check(CLI::Range(0.0, 1000.0))
        ->needs(replay);
    app.add_option("--ignore", settings.ignore, "Fields and parameters in which the till may differ, too")
        ->type_name("NAME,...")
        ->delimiter(',')
        ->needs(replay);
    app.add_subcommand("scenario-from", "Print a scenario that is made of a recording")
        ->add_option("recording", settings.recording, "What --record has written")
        ->type_name("FILE")
        ->required();
}

}  // namespace

int main(int argc, char** argv) {
    Settings settings;
    CLI::App app("A virtual PIN pad on a pseudo-terminal. Prints READY and the device to open.", "quorvel-sim");
    app.add_option("--link", settings.link, "Keep a symbolic link to the device at this path")->type_name("PATH");
    app.add_option("--keys", settings.keys, "Take the keys from this TOML file, keys for tests only")
        ->type_name("FILE");
    app.add_option("--control", settings.control, "Listen on a Unix domain socket for requests, lines of JSON")
        ->type_name("PATH");
    app.add_option("--scenario", settings.scenario,
                   "Play a scenario: one of those that come with the program, or a TOML file")
        ->type_name("NAME|FILE");
    app.add_option("--ends", settings.ends, "When a scenario ends, in place of what it says itself")
        ->type_name("close|done|stop")
        ->transform(CLI::CheckedTransformer(kEnds))
        ->needs("--scenario");
    app.add_flag("--amounts", settings.amounts,
                 "Have the cardholder act by himself, and the cents of the amount decide how a payment ends")
        ->excludes("--scenario");
    app.add_flag("--list-scenarios", settings.listScenarios, "Name the scenarios that come with the program");
    app.add_option("--speed", settings.speed, "Take the time of a line of so many bits per second")
        ->type_name("BITS")
        ->check(CLI::Range(300, 4000000));
    app.add_option("--session", settings.session,
                   "Whether commands need an open session, as with a PIN pad, or are carried out without, too")
        ->type_name("strict|lenient")
        ->transform(CLI::CheckedTransformer(kSessions))
        ->default_str("strict");
    app.add_option("--language", settings.language, "In which it talks to the cardholder: English or Portuguese")
        ->type_name("en|pt")
        ->transform(CLI::CheckedTransformer(kLanguageNames));
    app.add_option("--seed", settings.seed,
                   "Decides about all that is drawn: keys, random numbers, faults that strike by chance. Without it "
                   "keys and numbers come from the system, and faults are as with 1")
        ->type_name("NUMBER");
    app.add_option("--clock", settings.clock, "Have the clock stand still at 2026-01-02T03:04:05Z, or without Z local")
        ->type_name("TIME");
    auto* const count =
        app.add_option("--count", settings.count, "Play so many PIN pads; what is told of each has its number in front")
            ->type_name("NUMBER")
            ->check(CLI::Range(1, 999));
    app.add_flag("--face", settings.face,
                 "Play the cardholder by hand on a screen in the terminal, which shows READY, findings and trace in "
                 "place of what would be printed there; what goes into files and pipes is printed as usual")
        ->excludes(count);
    const CLI::Option* const web = add_web(app, settings);
    auto* const trace = value_or_none(
        app.add_option("--trace", settings.trace,
                       "Print each frame in hexadecimal and in words to standard error, or write it behind a file"),
        "[FILE]");
    app.add_option("--trace-size", settings.traceSize,
                   "Begin a new file before it has so many bytes, and keep four older ones, FILE.1 to FILE.4")
        ->type_name("BYTES")
        ->needs("--trace")
        ->check(CLI::Range(size_t{4096}, size_t{1} << 40U))
        ->capture_default_str();
    add_recording(app, settings);
    app.set_version_flag("--version", QUORVEL_VERSION);
    app.footer(
        "Exit status: 0 when it was told to end, or a scenario or a replay went as expected; 1 when it did not; 2 when "
        "the command line or a file is wrong, or there is no line.");
    sim::exam::Request examined;
    bool examListed = false;
    const CLI::App* const exam = add_exam(app, examined, examListed);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) { return app.exit(error) == 0 ? kKept : kUnable; }
    for (const CLI::App* const command : app.get_subcommands()) {
        for (const CLI::Option* const option : app.get_options()) {
            if (option->count() == 0) { continue; }
            print_error(fmt::format("quorvel-sim: {} has no place with {}\n", option->get_name(), command->get_name()));
            return kUnable;
        }
    }
    if (trace->count() > 0 && !settings.trace) { settings.trace.emplace(); }
    if (web->count() > 0 && !settings.web) { settings.web.emplace(); }

    try {
        if (exam->parsed()) { return run_exam(examined, examListed); }
        if (settings.listScenarios) { return list_scenarios(); }
        if (!settings.recording.empty()) { return print_scenario(settings.recording); }
        return settings.replay.empty() ? play(settings) : replay(settings);
    } catch (const std::exception& error) {
        print_error(fmt::format("quorvel-sim: {}\n", error.what()));
        return kUnable;
    }
}
