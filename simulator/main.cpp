// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <exception>
#include <fmt/format.h>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

#include "simulator/control/control.h"
#include "simulator/control/control_server.h"
#include "simulator/exam/exam.h"
#include "simulator/face/face.h"
#include "simulator/line/port_link.h"
#include "simulator/pin_pad.h"
#include "simulator/scenario/performance.h"

namespace {

namespace sim = quorvel::sim;

sim::PinPad* running = nullptr;

// While one lives, SIGINT and SIGTERM end the PIN pad's run; afterwards they are ignored, as the program ends anyway.
class StopOnSignals {
public:
    explicit StopOnSignals(sim::PinPad& pinPad) {
        running = &pinPad;
        handle([](int) { running->request_stop(); });
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
    uint32_t seed = 1;
    bool trace = false;
    bool face = false;
    bool listScenarios = false;
};

const std::map<std::string, sim::Scenario::End> kEnds{
    {"close", sim::Scenario::End::kClose}, {"done", sim::Scenario::End::kDone}, {"stop", sim::Scenario::End::kStop}};

const std::map<std::string, sim::Sessions> kSessions{{"strict", sim::Sessions::kStrict},
                                                     {"lenient", sim::Sessions::kLenient}};
const std::map<std::string, sim::Language> kLanguageNames(sim::kLanguages.begin(), sim::kLanguages.end());

// What stands under lasting names while the PIN pad runs, and leads to whatever device it is on.
class Port {
public:
    Port(std::string link, bool silent) : link_(std::move(link)), silent_(silent) {}

    void announce(const std::string& path) {
        portLink_.reset();
        if (!link_.empty()) { portLink_.emplace(link_, path); }
        if (silent_) { return; }
        fmt::print("READY {}\n", path);
        std::fflush(stdout);
    }

private:
    std::string link_;
    bool silent_;
    std::optional<sim::PortLink> portLink_;
};

// A line in the midst of the face would spoil it, and it shows all that would stand there.
bool may_print(const Settings& settings, int descriptor) { return !settings.face || ::isatty(descriptor) == 0; }

sim::PinPad::Options options(const Settings& settings, Port& port, sim::Performance* performance) {
    sim::PinPad::Options options;
    if (performance != nullptr) { options = performance->prepare(std::move(options)); }
    options.speed = settings.speed.value_or(0);
    options.seed = settings.seed;
    options.session = settings.session;
    options.language = settings.language;
    options.returned = [&port](const std::string& path) { port.announce(path); };
    if (!settings.keys.empty()) { options.device.keys = sim::KeyStore::from_file(settings.keys); }
    if (!may_print(settings, STDERR_FILENO)) { return options; }
    if (settings.trace) {
        options.listeners.traffic = [](const sim::Traffic& traffic) { print_error(sim::to_text(traffic)); };
    }
    options.listeners.finding = [](const sim::Finding& finding) {
        print_error(fmt::format("finding ({}): {}\n", sim::kind_name(finding.kind), finding.text));
    };
    return options;
}

std::unique_ptr<sim::Performance> performance_of(const Settings& settings) {
    if (settings.scenario.empty()) { return nullptr; }
    auto performance = std::make_unique<sim::Performance>(sim::Scenario::find(settings.scenario));
    if (settings.ends) { performance->end_at(*settings.ends); }
    return performance;
}

// Whether all went as the scenario says.
bool report(const sim::Performance& performance, const sim::PinPad& pinPad) {
    const std::vector<std::string> complaints = performance.complaints(pinPad.findings());
    fmt::print("scenario: {}\n", complaints.empty() ? "ok" : "failed");
    for (const std::string& complaint : complaints) { fmt::print("{}\n", complaint); }
    return complaints.empty();
}

int list_scenarios() {
    for (const auto& [name, text] : sim::shipped_scenarios()) {
        fmt::print("{:24} {}\n", name, sim::Scenario::from_toml(std::string(name), text).title);
    }
    return kKept;
}

int play(const Settings& settings) {
    Port port(settings.link, !may_print(settings, STDOUT_FILENO));
    const auto performance = performance_of(settings);
    sim::Feed feed;
    sim::PinPad::Options pinPadOptions = options(settings, port, performance.get());
    if (settings.face) { feed.listen(pinPadOptions); }
    sim::PinPad pinPad(std::move(pinPadOptions));
    const StopOnSignals stopOnSignals(pinPad);
    sim::Control control(pinPad, performance ? performance->scenario().cards : sim::Cards::standard());
    std::optional<sim::ControlServer> server;
    if (!settings.control.empty()) { server.emplace(settings.control, control); }
    const auto announce = [&] { port.announce(pinPad.path()); };
    if (settings.face) {
        sim::show_face(pinPad, control.cards(), feed, announce);
    } else {
        announce();
        pinPad.run();
    }
    return !performance || report(*performance, pinPad) ? kKept : kBroken;
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
    if (!listed) { return sim::exam::run(request) ? kKept : kBroken; }
    sim::exam::list(request.cases);
    return kKept;
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
    app.add_option("--seed", settings.seed, "Decides about faults that strike by chance")
        ->type_name("NUMBER")
        ->capture_default_str();
    app.add_flag("--face", settings.face,
                 "Play the cardholder by hand on a screen in the terminal, which shows READY, findings and trace in "
                 "place of what would be printed there; what goes into files and pipes is printed as usual");
    app.add_flag("--trace", settings.trace, "Print each frame in hexadecimal and in words to standard error");
    app.set_version_flag("--version", QUORVEL_VERSION);
    app.footer(
        "Exit status: 0 when it was told to end, or a scenario went as expected; 1 when a scenario did not; 2 when "
        "the command line or a file is wrong, or there is no line.");
    sim::exam::Request examined;
    bool examListed = false;
    const CLI::App* const exam = add_exam(app, examined, examListed);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) { return app.exit(error) == 0 ? kKept : kUnable; }

    try {
        if (exam->parsed()) { return run_exam(examined, examListed); }
        if (settings.listScenarios) { return list_scenarios(); }
        return play(settings);
    } catch (const std::exception& error) {
        print_error(fmt::format("quorvel-sim: {}\n", error.what()));
        return kUnable;
    }
}
