// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/trace.h"

#include <chrono>
#include <fmt/chrono.h>

#include "cli/words.h"

namespace quorvel::cli::trace {

namespace {

std::string now() {
    const auto time = std::chrono::system_clock::now();
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count() % 1000;
    return fmt::format("{:%F %T}.{:03}", fmt::localtime(std::chrono::system_clock::to_time_t(time)), ms);
}

void packet(Output& output, wire::Sender sender, const Event& event) {
    output.trace({.time = now(),
                  .arrow = sender == wire::Sender::kHost ? '>' : '<',
                  .encrypted = event.encrypted,
                  .words = packet_words(sender, *event.packet)});
}

// "GCX: no answer has come in time".
void trouble(Output& output, const Event& event, const char* text) {
    remark(output, !event.command.empty() ? fmt::format("{}: {}", event.command, text) : text);
}

}  // namespace

void tell(Output& output, const Event& event) {
    switch (event.type) {
        case Event::Type::sent:
            return packet(output, wire::Sender::kHost, event);
        case Event::Type::received:
            if (!event.packet) { return trouble(output, event, "an answer is encrypted, without a session"); }
            return packet(output, wire::Sender::kPinPad, event);
        case Event::Type::rejected:
            return trouble(output, event, "the PIN pad has refused the frame, which was damaged on its way");
        case Event::Type::damaged:
            return trouble(output, event, "a frame has come damaged, or not to its end, and is asked for again");
        case Event::Type::cancelled:
            return trouble(output, event, "CAN was sent, and the PIN pad has confirmed it");
        case Event::Type::timeout:
            return trouble(output, event, "no answer has come in time");
    }
}

void remark(Output& output, const std::string& text) {
    output.trace({.time = now(), .arrow = '!', .words = {{"What", text}}});
}

}  // namespace quorvel::cli::trace
