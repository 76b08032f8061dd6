// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/link.h"

#include <fmt/format.h>
#include <system_error>

#include "cli/interrupt.h"
#include "cli/port.h"

namespace quorvel::cli {

namespace {

constexpr size_t kShortMessage = 32;

std::string required_port(const Settings& settings) {
    if (!settings.port.empty()) { return settings.port; }
    std::string found;
    for (const PortInfo& port : list_ports()) { found += fmt::format(" {}", port.path); }
    throw Error(Exit::kUsage, "No port is named.",
                fmt::format("Name it with --port, QUORVEL_PORT or in {}. Ports here:{}.\n"
                            "  No PIN pad at hand? `quorvel-sim` is a virtual one and prints its port.",
                            default_config().string(), found.empty() ? " none" : found));
}

}  // namespace

Link::Link(const Settings& settings, Output& output) : output_(output) {
    const std::string port = required_port(settings);
    std::string path = port;
    if (settings.trace) {
        // The tap would hide why the port itself cannot be opened.
        probe_port(port);
        try {
            tap_ = std::make_unique<Tap>(port, output);
        } catch (const std::system_error& error) { throw Error(Exit::kPort, error.what()); }
        path = tap_->path();
    }
    pinPad_ = call([&] { return abecs_comm_open(path.c_str()); });
    interrupt::wake(pinPad_);
    try {
        open_session(settings.secure);
    } catch (...) {
        interrupt::wake(nullptr);
        call([this] { abecs_comm_close(&pinPad_); });
        throw;
    }
}

// Nothing may leave a destructor, and whatever brought us here matters more than how the end went.
Link::~Link() {
    if (pinPad_ == nullptr) { return; }
    try {
        if (*abecs_comm_get_blk_wait_id(pinPad_) != '\0') {
            call([this] { abecs_comm_send_can(pinPad_); });
        }
        if (inSession_) { close_session(); }
    } catch (const Error& error) { output_.notice(fmt::format("The PIN pad was not left idle: {}", error.what())); }
    interrupt::wake(nullptr);
    try {
        call([this] { abecs_comm_close(&pinPad_); });
    } catch (const Error&) {}  // the port is closed in any case
}

void Link::open_session(bool secure) {
    require_ok("OPN", answer([this, secure] { return abecs_cmd_opn(pinPad_, secure); }));
    inSession_ = true;
}

void Link::close_session() {
    inSession_ = false;
    const char* text = lastText_.c_str();
    const char* image = lastImage_.empty() ? nullptr : lastImage_.c_str();
    const bool simple =
        image == nullptr && lastText_.size() <= kShortMessage && lastText_.find('\r') == std::string::npos;
    const int32_t status =
        call([&] { return simple ? abecs_cmd_clo(pinPad_, text) : abecs_cmd_clx(pinPad_, text, image); });
    require_ok(simple ? "CLO" : "CLX", status);
}

void Link::close() {
    close_session();
    interrupt::wake(nullptr);
    call([this] { abecs_comm_close(&pinPad_); });
    pinPad_ = nullptr;
}

void Link::require_ok(std::string_view id, int32_t status) {
    if (status != ABECS_RSP_STAT_ST_OK) { throw StatusError(id, status); }
}

void Link::interrupt_point() { interrupt::check(); }

}  // namespace quorvel::cli
