// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/watch/trace.h"

#include <algorithm>
#include <fmt/format.h>
#include <string_view>

#include "simulator/commands/command.h"
#include "wire/fields.h"
#include "wire/param_id.h"
#include "wire/status.h"

namespace quorvel::sim {

namespace {

constexpr size_t idWidth = 3;
constexpr size_t statusWidth = 3;
constexpr size_t shownBytes = 100;

std::string hex(ByteView bytes, std::string_view separator) {
    std::string text;
    for (const uint8_t byte : bytes) text += fmt::format("{}{:02X}", text.empty() ? "" : separator, byte);
    return text;
}

std::string value_words(ByteView value) {
    const bool printable = std::ranges::all_of(value, [](uint8_t c) { return c >= 0x20 && c <= 0x7E; });
    const ByteView shown = value.first(std::min(value.size(), shownBytes));
    const std::string text =
        printable ? fmt::format("\"{}\"", std::string(shown.begin(), shown.end())) : hex(shown, "");
    return shown.size() < value.size() ? fmt::format("{}... ({} bytes)", text, value.size()) : text;
}

std::string params_words(ByteView blocks) {
    std::string text;
    for (const Param& param : Reader("", blocks).params()) {
        text += fmt::format("{} {}={}", text.empty() ? ":" : ",", param_name(param.id), value_words(param.data));
    }
    return text;
}

std::string fields_words(ByteView blocks) {
    std::string text = ":";
    for (Reader reader("", blocks); reader.left() != 0;) {
        Reader block = reader.block("");
        text += " " + value_words(block.b("", block.left()));
    }
    return text;
}

bool keeps_private(const Command* command) {
    return command != nullptr && command->privacy == Command::Privacy::withheld;
}

// The trace shows what came, whether or not it makes sense.
std::string whole_blocks_words(const Command* command, ByteView blocks) {
    if (blocks.empty()) return "";
    try {
        const bool params = command != nullptr && command->form == Command::Form::params;
        return params ? params_words(blocks) : fields_words(blocks);
    } catch (const LayoutError&) { return ": " + value_words(blocks); }
}

std::string blocks_words(const Command* command, ByteView blocks) {
    if (!blocks.empty() && keeps_private(command)) return fmt::format(": {} bytes withheld", blocks.size());
    return whole_blocks_words(command, blocks);
}

std::string request_words(ByteView packet, std::string (*blocks)(const Command* command, ByteView blocks)) {
    const ByteView head = packet.first(std::min(packet.size(), idWidth));
    const std::string id(head.begin(), head.end());
    const Command* command = find_command(id);
    const std::string name = command != nullptr ? fmt::format("{} {}", id, command->title) : value_words(head);
    return name + blocks(command, packet.subspan(head.size()));
}

// Plain frames only; enciphered ones keep their secrets by themselves.
bool keeps_private(const Traffic& traffic) {
    const ByteView wire = traffic.wire;
    return traffic.withheld || (!wire.empty() && wire.front() == control::syn && is_withheld(wire.subspan(1)));
}

}  // namespace

bool is_withheld(ByteView packet) {
    const ByteView id = packet.first(std::min(packet.size(), idWidth));
    return keeps_private(find_command(std::string(id.begin(), id.end())));
}

std::string request_words(ByteView packet) { return request_words(packet, blocks_words); }

std::string whole_request_words(ByteView packet) { return request_words(packet, whole_blocks_words); }

std::string response_words(ByteView packet) {
    if (packet.size() < idWidth + statusWidth) return value_words(packet);
    Reader reader("response", packet);
    const std::string id = reader.a("RSP_ID", idWidth);
    const auto status = static_cast<int>(reader.n("RSP_STAT", statusWidth));
    return fmt::format("{} {:03} {}{}", id, status, status_name(status),
                       blocks_words(find_command(id), packet.subspan(idWidth + statusWidth)));
}

std::string control_words(uint8_t byte) {
    switch (byte) {
        case control::eot:
            return "EOT";
        case control::ack:
            return "ACK";
        case control::nak:
            return "NAK";
        case control::can:
            return "CAN";
        default:
            return fmt::format("stray byte 0x{:02X}", byte);
    }
}

std::string reception_words(const Reception& reception) {
    switch (reception.kind) {
        case Reception::Kind::byte:
            return control_words(reception.byte);
        case Reception::Kind::damaged:
            return "damaged frame: " + reception.fault;
        case Reception::Kind::interrupted:
            return "interrupted frame: " + reception.fault;
        case Reception::Kind::frame:
            break;
    }
    const Frame& frame = reception.frame;
    return frame.encrypted ? fmt::format("encrypted frame, {} bytes", frame.data.size()) : request_words(frame.data);
}

std::string enciphered_words(std::string_view words) { return fmt::format("enciphered {}", words); }

std::string wire_text(const Traffic& traffic) {
    if (!keeps_private(traffic)) return hex(traffic.wire, " ");
    const size_t open = 1 + idWidth + (traffic.sender == Sender::pinPad ? statusWidth : 0);
    const ByteView shown = ByteView(traffic.wire).first(std::min(open, traffic.wire.size()));
    return fmt::format("{} ... ({} bytes)", hex(shown, " "), traffic.wire.size());
}

std::string to_text(const Traffic& traffic) {
    return fmt::format("{} {}\n  {}\n", traffic.sender == Sender::host ? ">" : "<", wire_text(traffic), traffic.words);
}

}  // namespace quorvel::sim
