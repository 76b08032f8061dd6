// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/items.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <fmt/format.h>
#include <map>

#include "cli/emv.h"
#include "cli/library.h"
#include "wire/hex.h"
#include "wire/param_id.h"

namespace quorvel::cli {

namespace {

std::string trimmed(std::span<const uint8_t> bytes) {
    const std::string text(bytes.begin(), bytes.end());
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

bool is_printable(std::span<const uint8_t> bytes) {
    return std::ranges::all_of(bytes, [](uint8_t c) { return c >= 0x20 && c < 0x7F; });
}

// Whatever the value is, its name is one that the library knows.
const std::map<std::string, uint16_t>& names() {
    static const auto kAll = [] {
        std::map<std::string, uint16_t> known;
        for (uint16_t id = ABECS_RSP_DATID_PP_SERNUM; id <= ABECS_RSP_DATID_PP_TABVER99; ++id) {
            if (std::string name = item_name(id); !name.starts_with("0x")) { known.emplace(std::move(name), id); }
        }
        return known;
    }();
    return kAll;
}

}  // namespace

// Who reads the card may see what is on it, the number masked.
Value value_of(const wire::Item& item) {
    const std::string digits = wire::to_hex(item.value);
    if (item.privacy == wire::Privacy::kWithheld) {
        return Secret{is_printable(item.value) ? trimmed(item.value) : digits};
    }
    switch (item.type) {
        case wire::Type::kNumber:
            return wire::number_of(item.value);
        case wire::Type::kPan:
            return Pan{trimmed(item.value)};
        case wire::Type::kPackedPan:
            return Pan{digits.substr(0, digits.find_last_not_of('F') + 1)};
        case wire::Type::kObjects:
            return emv_fields(item.parts);
        case wire::Type::kBytes:
            return digits;
        default:
            return trimmed(item.value);
    }
}

// A family's name is a text that the next call overwrites, so it is copied at once.
std::string item_name(uint16_t id) {
    constexpr std::string_view kPrefix = "ABECS_RSP_DATID_";
    try {
        const std::string name = call([id] { return abecs_rsp_dat_id_to_string(static_cast<AbecsRspDatId_E>(id)); });
        return name.starts_with(kPrefix) ? name.substr(kPrefix.size()) : name;
    } catch (const LibraryError&) { return fmt::format("0x{:04X}", id); }
}

std::optional<uint16_t> item_id(std::string_view name) {
    std::string upper(name);
    std::ranges::transform(upper, upper.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    if (upper.starts_with("0X")) {
        uint16_t id = 0;
        const auto [end, error] = std::from_chars(upper.data() + 2, upper.data() + upper.size(), id, 16);
        if (error == std::errc() && end == upper.data() + upper.size()) { return id; }
        return std::nullopt;
    }
    const auto found = names().find(upper.starts_with("PP_") ? upper : "PP_" + upper);
    return found != names().end() ? std::optional(found->second) : std::nullopt;
}

Items::Items() : map_(call([] { return abecs_rsp_param_map_new(); })) {}

Items::~Items() { kor_map_delete(&map_); }

const AbecsRspParamValue* Items::stored(uint16_t id) const { return abecs_rsp_param_map_get(map_, id); }

std::string Items::raw(uint16_t id) const {
    const AbecsRspParamValue* found = stored(id);
    return found != nullptr && found->data != nullptr ? trimmed({found->data, found->size}) : "";
}

std::optional<int> Items::number(uint16_t id) const {
    const std::string digits = raw(id);
    int value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc() || end != digits.data() + digits.size()) { return std::nullopt; }
    return value;
}

Value Items::value(uint16_t id) const {
    const AbecsRspParamValue* found = stored(id);
    if (found == nullptr) { return "none"; }
    return value_of(wire::param_item(id, {found->data, found->size}));
}

std::vector<uint16_t> Items::ids() const {
    std::vector<uint16_t> ids;
    AbecsRspParamMapIt it{};
    for (auto* at = abecs_rsp_param_map_begin(map_, &it); at != nullptr; at = abecs_rsp_param_map_next(at)) {
        ids.push_back(at->id);
    }
    std::ranges::sort(ids);
    return ids;
}

void Items::add(Group& to, std::string label, uint16_t id) const {
    if (!has(id)) { return; }
    Value item = value(id);
    const auto* group = std::get_if<Group>(&item.data);
    if (group == nullptr || !group->empty()) { to.push_back({std::move(label), std::move(item)}); }
}

}  // namespace quorvel::cli
