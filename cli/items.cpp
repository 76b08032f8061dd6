// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/items.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <fmt/format.h>
#include <map>

#include "cli/emv.h"
#include "cli/library.h"

namespace quorvel::cli {

namespace {

enum class Kind { text, bytes, number, pan, secret, emv };

// Ids from `first` to `last`.
struct Range {
    uint16_t first;
    uint16_t last;
    Kind kind;
};

constexpr std::array ranges{
    Range{0x0001, 0x0001, Kind::bytes},                                      // ids asked for
    Range{0x0002, 0x0003, Kind::text},                                       // methods
    Range{0x0004, 0x0004, Kind::bytes},                                      // tags asked for
    Range{0x0005, 0x0005, Kind::emv},    Range{0x0006, 0x0009, Kind::text},  // options, tracks asked for, key index
    Range{0x000B, 0x000E, Kind::number},  // message, time-out, digits; 0x000A is a working key, 0x000F data
    Range{0x0010, 0x0019, Kind::text},    // acquirer, applications, amounts, date and time, options
    Range{0x001A, 0x001A, Kind::bytes},   // risk management
    Range{0x001B, 0x001C, Kind::text},    // message, response code
    Range{0x001D, 0x001D, Kind::bytes},   // initialisation vector
    Range{0x001E, 0x001E, Kind::text},    // media file
    Range{0x001F, 0x001F, Kind::bytes},  Range{0x0020, 0x0020, Kind::text},  // menu option
    Range{0x0021, 0x0021, Kind::bytes},                                      // transaction type
    Range{0x0022, 0x0023, Kind::text},                                       // currency, mask
    Range{0x0024, 0x0025, Kind::bytes},                                      // public key
    Range{0x8001, 0x8036, Kind::text},                                       // what the PIN pad is
    Range{0x8040, 0x8040, Kind::text},                                       // event; tracks follow
    Range{0x8047, 0x8049, Kind::bytes},                                      // key serial numbers
    Range{0x804B, 0x804C, Kind::bytes},  // more of them; typed numbers and enciphered data follow
    Range{0x804F, 0x8051, Kind::text},   Range{0x8052, 0x8052, Kind::pan},   Range{0x8053, 0x8053, Kind::text},
    Range{0x8054, 0x8054, Kind::emv},    Range{0x8055, 0x8056, Kind::text},  Range{0x8058, 0x8058, Kind::text},
    Range{0x8059, 0x805A, Kind::bytes},  Range{0x805B, 0x805E, Kind::text},  Range{0x8060, 0x8060, Kind::text},
    Range{0x8062, 0x8062, Kind::number}, Range{0x9000, 0x9063, Kind::bytes}, Range{0x9100, 0x9163, Kind::bytes},
    Range{0x9200, 0x9263, Kind::bytes},  Range{0x9300, 0x9363, Kind::text},
};
static_assert(std::ranges::adjacent_find(ranges, [](const Range& a, const Range& b) { return a.last >= b.first; })
              == ranges.end());

Kind kind_of(uint16_t id) {
    const auto* found = std::ranges::lower_bound(ranges, id, {}, &Range::last);
    return found != ranges.end() && id >= found->first ? found->kind : Kind::secret;
}

std::string trimmed(std::span<const uint8_t> bytes) {
    const std::string text(bytes.begin(), bytes.end());
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

bool is_printable(std::span<const uint8_t> bytes) {
    return std::ranges::all_of(bytes, [](uint8_t c) { return c >= 0x20 && c < 0x7F; });
}

// Whatever the value is, its name is one that the library knows.
const std::map<std::string, uint16_t>& names() {
    static const auto all = [] {
        std::map<std::string, uint16_t> known;
        for (uint16_t id = ABECS_RSP_DATID_PP_SERNUM; id <= ABECS_RSP_DATID_PP_TABVER99; ++id) {
            if (std::string name = item_name(id); !name.starts_with("0x")) known.emplace(std::move(name), id);
        }
        return known;
    }();
    return all;
}

}  // namespace

Value parameter_value(uint16_t id, std::span<const uint8_t> bytes) {
    switch (kind_of(id)) {
        case Kind::text:
            return trimmed(bytes);
        case Kind::number: {
            uint32_t number = 0;
            for (const uint8_t byte : bytes) number = number << 8 | byte;
            return number;
        }
        case Kind::pan:
            return Pan{trimmed(bytes)};
        case Kind::emv:
            return emv_fields(bytes);
        case Kind::bytes:
            return hex({bytes.begin(), bytes.end()});
        case Kind::secret:
            break;
    }
    return Secret{is_printable(bytes) ? trimmed(bytes) : hex({bytes.begin(), bytes.end()})};
}

// A family's name is a text that the next call overwrites, so it is copied at once.
std::string item_name(uint16_t id) {
    constexpr std::string_view prefix = "ABECS_RSP_DATID_";
    try {
        const std::string name = call([id] { return abecs_rsp_dat_id_to_string(static_cast<AbecsRspDatId_E>(id)); });
        return name.starts_with(prefix) ? name.substr(prefix.size()) : name;
    } catch (const LibraryError&) { return fmt::format("0x{:04X}", id); }
}

std::optional<uint16_t> item_id(std::string_view name) {
    std::string upper(name);
    std::ranges::transform(upper, upper.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    if (upper.starts_with("0X")) {
        uint16_t id = 0;
        const auto [end, error] = std::from_chars(upper.data() + 2, upper.data() + upper.size(), id, 16);
        if (error == std::errc() && end == upper.data() + upper.size()) return id;
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
    if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    return value;
}

Value Items::value(uint16_t id) const {
    const AbecsRspParamValue* found = stored(id);
    if (found == nullptr) return "none";
    return parameter_value(id, {found->data, found->size});
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
    if (!has(id)) return;
    Value item = value(id);
    const auto* group = std::get_if<Group>(&item.data);
    if (group == nullptr || !group->empty()) to.push_back({std::move(label), std::move(item)});
}

}  // namespace quorvel::cli
