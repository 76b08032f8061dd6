// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/emv.h"

#include <array>
#include <fmt/format.h>
#include <string_view>

#include "cli/items.h"
#include "wire/hex.h"
#include "wire/tag.h"

namespace quorvel::cli {

namespace {

std::string_view cryptogram_meaning(uint8_t first) {
    switch (first & 0xC0) {
        case 0x00:
            return "AAC, the card declines";
        case 0x40:
            return "TC, the card approves";
        case 0x80:
            return "ARQC, the card wants the issuer asked";
        default:
            return "reserved";
    }
}

std::string_view verification_meaning(uint8_t method) {
    switch (method & 0x3F) {
        case 0x01:
        case 0x03:
        case 0x04:
        case 0x05:
            return "offline PIN";
        case 0x02:
            return "online PIN";
        case 0x1E:
            return "signature";
        case 0x1F:
            return "none needed";
        default:
            return "none performed";
    }
}

// A bit of the terminal verification results, by byte.
struct ResultBit {
    size_t byte;
    uint8_t bit;
    std::string_view meaning;
};

constexpr std::array kResultBits{
    ResultBit{0, 0x80, "no offline data authentication"},
    ResultBit{0, 0x40, "static data authentication failed"},
    ResultBit{0, 0x20, "chip data missing"},
    ResultBit{0, 0x10, "card on the exception list"},
    ResultBit{0, 0x08, "dynamic data authentication failed"},
    ResultBit{0, 0x04, "combined data authentication failed"},
    ResultBit{1, 0x80, "application versions differ"},
    ResultBit{1, 0x40, "application expired"},
    ResultBit{1, 0x20, "application not yet effective"},
    ResultBit{1, 0x10, "service not allowed"},
    ResultBit{1, 0x08, "new card"},
    ResultBit{2, 0x80, "cardholder not verified"},
    ResultBit{2, 0x40, "unknown verification method"},
    ResultBit{2, 0x20, "PIN tries exceeded"},
    ResultBit{2, 0x10, "PIN keypad missing"},
    ResultBit{2, 0x08, "PIN not entered"},
    ResultBit{2, 0x04, "online PIN entered"},
    ResultBit{3, 0x80, "floor limit exceeded"},
    ResultBit{3, 0x40, "lower offline limit exceeded"},
    ResultBit{3, 0x20, "upper offline limit exceeded"},
    ResultBit{3, 0x10, "selected at random"},
    ResultBit{3, 0x08, "merchant goes online"},
    ResultBit{4, 0x80, "default data object list used"},
    ResultBit{4, 0x40, "issuer authentication failed"},
    ResultBit{4, 0x20, "early script failed"},
    ResultBit{4, 0x10, "late script failed"},
};

std::string results_meaning(wire::ByteView value) {
    std::string text;
    for (const ResultBit& each : kResultBits) {
        if (each.byte >= value.size() || (value[each.byte] & each.bit) == 0) { continue; }
        text += (text.empty() ? "" : ", ") + std::string(each.meaning);
    }
    return text.empty() ? "nothing to remark" : text;
}

// What the bits of a value say; empty when they say nothing that has words.
std::string meaning_of(const wire::Item& object) {
    if (object.value.empty()) { return ""; }
    switch (object.id) {
        case wire::tag::kTerminalResults:
            return results_meaning(object.value);
        case wire::tag::kCryptogramInformation:
            return std::string(cryptogram_meaning(object.value.front()));
        case wire::tag::kVerificationResults:
            return std::string(verification_meaning(object.value.front()));
        default:
            return "";
    }
}

Value explained(const wire::Item& object) {
    const std::string meaning = meaning_of(object);
    return meaning.empty() ? value_of(object) : fmt::format("{} ({})", wire::to_hex(object.value), meaning);
}

}  // namespace

Group emv_fields(const std::vector<wire::Item>& objects) {
    Group fields;
    for (const wire::Item& object : objects) {
        const std::string_view name = wire::tag_name(object.id);
        fields.push_back({name.empty() ? object.name + " (unknown)" : fmt::format("{} {}", object.name, name),
                          explained(object), object.name});
    }
    return fields;
}

}  // namespace quorvel::cli
