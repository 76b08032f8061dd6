// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "wire/words.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <string_view>

#include "wire/hex.h"
#include "wire/named.h"
#include "wire/status.h"

namespace quorvel::wire {

namespace {

constexpr size_t kShownBytes = 100;

std::string text_or_hex(ByteView bytes) {
    const bool printable = std::ranges::all_of(bytes, [](uint8_t c) { return c >= 0x20 && c <= 0x7E; });
    return printable ? fmt::format("\"{}\"", std::string(bytes.begin(), bytes.end())) : to_hex(bytes);
}

std::string list(const std::vector<Item>& items) {
    std::string text;
    for (const Item& each : items) { text += (text.empty() ? "" : ", ") + words_for(each); }
    return text;
}

std::string value_words(const Item& item) {
    const ByteView value = item.value;
    const ByteView shown = value.first(std::min(value.size(), kShownBytes));
    const std::string more = shown.size() < value.size() ? fmt::format("... ({} bytes)", value.size()) : "";
    switch (item.type) {
        case Type::kNumber:
            return fmt::format("{}", number_of(value));
        case Type::kObjects:
            return fmt::format("{{{}}}", list(item.parts));
        case Type::kBytes:
        case Type::kPackedPan:
            return to_hex(shown) + more;
        default:
            return text_or_hex(shown) + more;
    }
}

std::string items_words(const std::vector<Item>& items) { return items.empty() ? "" : ": " + list(items); }

void show(std::vector<Item>& items) {
    for (Item& each : items) {
        each.privacy = Privacy::kShown;
        show(each.parts);
    }
}

std::string words_of_request(const Packet& apart, size_t size) {
    if (!looks_like_id(apart.id)) { return fmt::format("{} bytes withheld", size); }
    const std::string name = apart.command != nullptr ? fmt::format("{} {}", apart.id, apart.command->title)
                                                      : fmt::format("\"{}\"", apart.id);
    return name + items_words(apart.items);
}

std::string words_of_response(const Packet& apart, size_t size) {
    if (!apart.status || !looks_like_id(apart.id)) { return fmt::format("no response: {} bytes withheld", size); }
    return fmt::format("{} {:03} {}{}", apart.id, *apart.status, status_name(*apart.status), items_words(apart.items));
}

}  // namespace

std::string words_for(const Item& item) {
    if (item.privacy == Privacy::kShown) { return fmt::format("{}={}", item.name, value_words(item)); }
    return fmt::format("{}{}{} bytes withheld", item.name, item.name.empty() ? "" : ": ", item.value.size());
}

std::string whole_words_for(const Item& item) {
    return fmt::format("{}={}", item.name, item.type == Type::kObjects ? to_hex(item.value) : value_words(item));
}

std::string request_words(ByteView packet) {
    return words_of_request(take_apart(Sender::kHost, packet), packet.size());
}

std::string response_words(ByteView packet) {
    return words_of_response(take_apart(Sender::kPinPad, packet), packet.size());
}

std::string whole_words_for(Sender sender, ByteView packet) {
    Packet apart = take_apart(sender, packet);
    show(apart.items);
    return sender == Sender::kHost ? words_of_request(apart, packet.size()) : words_of_response(apart, packet.size());
}

std::string control_words(uint8_t byte) {
    static constexpr std::array kNames{Named{"EOT", control::kEot}, Named{"ACK", control::kAck},
                                       Named{"NAK", control::kNak}, Named{"CAN", control::kCan}};
    const std::string_view name = name_among(kNames, byte);
    return name.empty() ? fmt::format("stray byte 0x{:02X}", byte) : std::string(name);
}

std::string reception_words(const Reception& reception) {
    switch (reception.kind) {
        case Reception::Kind::kByte:
            return control_words(reception.byte);
        case Reception::Kind::kDamaged:
            return "damaged frame: " + reception.fault;
        case Reception::Kind::kInterrupted:
            return "interrupted frame: " + reception.fault;
        case Reception::Kind::kFrame:
            break;
    }
    const Frame& frame = reception.frame;
    return frame.encrypted ? fmt::format("encrypted frame, {} bytes", frame.data.size()) : request_words(frame.data);
}

}  // namespace quorvel::wire
