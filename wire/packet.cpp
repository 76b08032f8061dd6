// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "wire/packet.h"

#include <algorithm>
#include <utility>

#include "wire/fields.h"
#include "wire/param_id.h"

namespace quorvel::wire {

namespace {

using Items = std::vector<Item>;
using Size = Field::Size;

Item placed(Item item, size_t at) {
    item.at = at;
    return item;
}

// What a block begins with.
constexpr size_t kLengthWidth = 3;

// The positions are those in what stands behind the head.
Items unknown(ByteView bytes, size_t at = 0) {
    return bytes.empty() ? Items() : Items{placed(item("", 0, bytes, {}), at)};
}

Items params_in(ByteView blocks) {
    Items items;
    const size_t second = kLengthWidth + Reader("", blocks).block("block").left();
    size_t at = kLengthWidth;
    for (const Param& param : Reader("", blocks).params()) {
        if (at == second) { at += kLengthWidth; }
        items.push_back(placed(param_item(param.id, param.data), at + kParamHead));
        at += kParamHead + param.data.size();
    }
    return items;
}

// Fields in their order, off the front of what is left.
class Fields {
public:
    explicit Fields(ByteView bytes) : reader_("", bytes), size_(bytes.size()) {}

    void take(const Field& field) {
        if (field.size == Size::kLength) { return claim(); }
        if (field.size == Size::kOptional && reader_.left() == 0) { return; }
        const size_t at = size_ - reader_.left();
        const Bytes value = reader_.b(field.name, size_of(field));
        const bool exact = field.size == Size::kFixed || field.size == Size::kOptional;
        Item taken = item(std::string(field.name), 0, value, exact ? field.content : any_size(field.content));
        if (taken.privacy != field.content.privacy) { throw LayoutError(std::string(field.name)); }
        items_.push_back(placed(std::move(taken), at));
    }

    [[nodiscard]] Items all() && {
        const size_t at = size_ - reader_.left();
        for (Item& item : unknown(reader_.b("", reader_.left()), at)) { items_.push_back(std::move(item)); }
        return std::move(items_);
    }

private:
    static Content any_size(Content content) {
        content.width = 0;
        return content;
    }

    void claim() {
        if (reader_.n("length", kLengthWidth) > reader_.left()) { throw LayoutError("length"); }
    }

    [[nodiscard]] size_t size_of(const Field& field) const {
        const size_t width = field.content.width;
        switch (field.size) {
            case Size::kCounted:
                return width * Reader("", items_.back().value).n(field.name, items_.back().value.size());
            case Size::kRest:
                return std::max(width, reader_.left());
            default:
                return width;
        }
    }

    Reader reader_;
    size_t size_;
    Items items_;
};

Items fields_in(std::string_view id, Sender sender, ByteView bytes) {
    Fields fields(bytes);
    for (const Field& field : fields_of(id, sender)) { fields.take(field); }
    return std::move(fields).all();
}

Items items_in(const Packet& packet, Sender sender, ByteView bytes) {
    if (bytes.empty() || packet.command == nullptr) { return unknown(bytes); }
    try {
        const bool params = packet.command->form == Command::Form::kParams;
        return params ? params_in(bytes) : fields_in(packet.id, sender, bytes);
    } catch (const LayoutError&) { return unknown(bytes); }
}

std::optional<int> status_in(ByteView packet) {
    try {
        return static_cast<int>(Reader("", packet.subspan(kIdWidth)).n("RSP_STAT", kStatusWidth));
    } catch (const LayoutError&) { return std::nullopt; }
}

}  // namespace

Packet take_apart(Sender sender, ByteView packet) {
    const ByteView head = packet.first(std::min(packet.size(), kIdWidth));
    Packet apart{.id = {head.begin(), head.end()}};
    apart.command = find_command(apart.id);
    ByteView rest = packet.subspan(head.size());
    if (sender == Sender::kPinPad) {
        if (!rest.empty()) { apart.status = status_in(packet); }
        if (!apart.status) {
            apart.items = unknown(rest, head.size());
            return apart;
        }
        rest = rest.subspan(kStatusWidth);
    }
    apart.items = items_in(apart, sender, rest);
    for (Item& each : apart.items) { each.at += packet.size() - rest.size(); }
    return apart;
}

std::vector<bool> open_bytes(Sender sender, ByteView packet) {
    const Packet apart = take_apart(sender, packet);
    std::vector<bool> open(packet.size(), looks_like_id(apart.id));
    for (const Item& item : apart.items) {
        const auto from = open.begin() + static_cast<std::ptrdiff_t>(item.at);
        if (!is_open(item)) { std::fill_n(from, item.value.size(), false); }
    }
    return open;
}

bool is_open(Sender sender, ByteView packet) {
    const Packet apart = take_apart(sender, packet);
    return looks_like_id(apart.id) && std::ranges::all_of(apart.items, [](const Item& each) { return is_open(each); });
}

}  // namespace quorvel::wire
