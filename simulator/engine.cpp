// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/engine.h"

#include <exception>
#include <fmt/format.h>
#include <utility>

#include "simulator/command.h"

namespace quorvel::sim {

namespace {

constexpr size_t idWidth = 3;
constexpr int maxResends = 3;

// What answers a command that is refused as a whole.
constexpr std::string_view errorId = "ERR";

}  // namespace

Engine::Engine(Device device, Journal& journal, Send send)
    : device_(std::move(device)), journal_(journal), send_(std::move(send)) {}

void Engine::receive(ByteView bytes) {
    for (const uint8_t byte : bytes) {
        if (const auto reception = decoder_.feed(byte)) handle(*reception);
    }
}

void Engine::give_up() { handle(decoder_.give_up()); }

void Engine::handle(const Reception& reception) {
    journal_.record(Traffic{Sender::host, reception.wire, reception_words(reception)});
    switch (reception.kind) {
        case Reception::Kind::frame:
            return accept(reception.frame);
        case Reception::Kind::damaged:
            return refuse(reception.fault);
        case Reception::Kind::interrupted:
            return find(Finding::Kind::framing, reception.fault);
        case Reception::Kind::byte:
            return handle_byte(reception.byte);
    }
}

void Engine::handle_byte(uint8_t byte) {
    switch (byte) {
        case control::can:
            return cancel();
        case control::nak:
            return resend();
        default:
            find(Finding::Kind::framing, control_words(byte) + " outside a frame");
    }
}

void Engine::cancel() {
    lastResponse_.clear();
    send_byte(control::eot);
}

void Engine::accept(const Frame& frame) {
    send_byte(control::ack);
    const Bytes response = respond(frame);
    lastResponse_ = encode({.encrypted = false, .data = response});
    lastWords_ = response_words(response);
    resends_ = 0;
    transmit(lastResponse_, lastWords_);
}

void Engine::refuse(const std::string& fault) {
    find(Finding::Kind::framing, fault);
    send_byte(control::nak);
}

void Engine::resend() {
    if (lastResponse_.empty()) return find(Finding::Kind::sequence, "NAK without a response before it");
    if (resends_ == maxResends) return find(Finding::Kind::sequence, "NAK after the last repetition");
    ++resends_;
    transmit(lastResponse_, lastWords_);
}

Bytes Engine::respond(const Frame& frame) {
    if (frame.encrypted) {
        return refusal(Finding::Kind::sequence, "an encrypted frame without a session", errorId, Status::nosec);
    }
    if (frame.data.size() < idWidth) {
        return refusal(Finding::Kind::layout, "a frame without a command", errorId, Status::invcall);
    }
    const ByteView packet = frame.data;
    const ByteView id = packet.first(idWidth);
    return run(std::string(id.begin(), id.end()), packet.subspan(idWidth));
}

Bytes Engine::run(std::string_view id, ByteView request) {
    const Command* command = find_command(id);
    if (command == nullptr) {
        return refusal(Finding::Kind::unsupported, fmt::format("there is no command {:?}", id), errorId,
                       Status::invcall);
    }
    try {
        Call call{device_, journal_, Reader(id, request)};
        return response_packet(id, command->handle(call));
    } catch (const LayoutError& error) {
        return refusal(Finding::Kind::layout, error.what(), id, Status::invparm);
    } catch (const std::exception& error) {
        return refusal(Finding::Kind::internal, fmt::format("{}: {}", id, error.what()), id, Status::interr);
    }
}

Bytes Engine::refusal(Finding::Kind kind, std::string text, std::string_view id, Status status) {
    find(kind, std::move(text));
    return response_packet(id, {.status = status, .blocks = {}});
}

void Engine::send_byte(uint8_t byte) {
    const uint8_t wire[]{byte};
    transmit(wire, control_words(byte));
}

// Recorded first: whoever has read the answer can rely on finding it in the journal.
void Engine::transmit(ByteView wire, std::string words) {
    journal_.record(Traffic{Sender::pinPad, Bytes(wire.begin(), wire.end()), std::move(words)});
    send_(wire);
}

void Engine::find(Finding::Kind kind, std::string text) { journal_.record(Finding{kind, std::move(text)}); }

}  // namespace quorvel::sim
