// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fmt/format.h>
#include <optional>
#include <string>

#include "simulator/pin_pad.h"
#include "simulator/port_link.h"

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
        for (const int signal : {SIGINT, SIGTERM}) sigaction(signal, &action, nullptr);
    }
};

void print_error(const std::string& text) { fmt::print(stderr, "{}", text); }

struct Settings {
    std::string link;
    std::string keys;
    bool trace = false;
};

sim::PinPad::Options options(const Settings& settings) {
    sim::PinPad::Options options;
    if (!settings.keys.empty()) options.device.keys = sim::KeyStore::from_file(settings.keys);
    if (settings.trace)
        options.listeners.traffic = [](const sim::Traffic& traffic) { print_error(sim::to_text(traffic)); };
    options.listeners.finding = [](const sim::Finding& finding) {
        print_error(fmt::format("finding ({}): {}\n", sim::kind_name(finding.kind), finding.text));
    };
    return options;
}

void play(const Settings& settings) {
    sim::PinPad pinPad(options(settings));
    const StopOnSignals stopOnSignals(pinPad);
    std::optional<sim::PortLink> portLink;
    if (!settings.link.empty()) portLink.emplace(settings.link, pinPad.path());
    fmt::print("READY {}\n", pinPad.path());
    std::fflush(stdout);
    pinPad.run();
}

}  // namespace

int main(int argc, char** argv) {
    Settings settings;
    CLI::App app("A virtual PIN pad on a pseudo-terminal. Prints READY and the device to open.", "quorvel-sim");
    app.add_option("--link", settings.link, "Keep a symbolic link to the device at this path")->type_name("PATH");
    app.add_option("--keys", settings.keys, "Take the keys from this TOML file, keys for tests only")
        ->type_name("FILE");
    app.add_flag("--trace", settings.trace, "Print each frame in hexadecimal and in words to standard error");
    app.set_version_flag("--version", QUORVEL_VERSION);
    CLI11_PARSE(app, argc, argv);

    try {
        play(settings);
    } catch (const std::exception& error) {
        print_error(fmt::format("quorvel-sim: {}\n", error.what()));
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
