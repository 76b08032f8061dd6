// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/link.h"

#include <fmt/format.h>

#include "cli/port.h"
#include "cli/trace.h"

namespace quorvel::cli {

namespace {

constexpr const char* kPlainInstead =
    "The PIN pad may not know encrypted sessions: without --secure the session is plain.";

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
    open(required_port(settings), settings.force);
    open_session(settings.secure);
}

// Claimed, so that nobody else opens it meanwhile.
void Link::open(const std::string& port, bool force) {
    if (!force) { require_free(port); }
    try {
        const interrupt::Opening opening;
        link_.emplace(port, LinkOptions{.claim = true});
    } catch (const quorvel::Error& error) {
        explain_opening(port, error);
        explain(error, "CAN");
    }
    if (output_.traces()) {
        trace::remark(output_, fmt::format("{} is open, and the PIN pad has confirmed CAN", port));
    }
    observe();
}

// A PIN pad whose encrypted session was cut off, by a cable for instance, takes plain commands for wrong ones.
void Link::observe() {
    link_->observe(
        [this](const Event& event) {
            cutOff_ |= !event.encrypted && event.status == quorvel::Status::errpktsec;
            if (output_.traces()) { trace::tell(output_, event); }
        },
        output_.traces() ? Packets::shown : Packets::withheld);
}

void Link::open_session(bool secure) {
    interrupt::check();
    const interrupt::Exchange exchange(link_->descriptor());
    try {
        in_words("OPN", [&] { session_.emplace(link_->open(secure ? quorvel::secure : plain)); });
    } catch (const StatusError& error) {
        if (!secure || error.status() != quorvel::Status::invalid_call) { throw; }
        throw StatusError("OPN", error.status(), kPlainInstead);
    }
    if (cutOff_) { output_.notice("The PIN pad was still in an encrypted session that was cut off; it is ended."); }
}

// Nothing may leave a destructor, and whatever brought us here matters more than how the end went.
Link::~Link() {
    if (!session_ || !session_->is_open()) { return; }
    try {
        const interrupt::Exchange exchange(link_->descriptor());
        in_words("CLO", [this] { session_->close(lastText_, lastImage_); });
    } catch (const std::exception& error) {
        output_.notice(fmt::format("The PIN pad was not left idle: {}", error.what()));
    }
}

void Link::close() {
    with_session("CLO", [this](Session& session) {
        const auto status = session.close(lastText_, lastImage_);
        if (!status.is_ok()) { throw Refused("CLO", status); }
    });
    session_.reset();
    in_words("CLO", [this] { link_->close(); });
    interrupt::check();
}

}  // namespace quorvel::cli
