// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/emv.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <optional>
#include <string_view>
#include <vector>

namespace quorvel::cli {

namespace {

using Bytes = std::vector<uint8_t>;

enum class Shape { bytes, text, pan, secret, cryptogram, verification, results };

struct TagInfo {
    uint32_t tag;
    std::string_view name;
    Shape shape = Shape::bytes;
};

constexpr std::array tags{
    TagInfo{0x42, "Issuer identification number"},
    TagInfo{0x4F, "Application identifier"},
    TagInfo{0x50, "Application label", Shape::text},
    TagInfo{0x57, "Track 2 equivalent", Shape::secret},
    TagInfo{0x5A, "Card number", Shape::pan},
    TagInfo{0x71, "Issuer script 1"},
    TagInfo{0x72, "Issuer script 2"},
    TagInfo{0x82, "Application interchange profile"},
    TagInfo{0x84, "Dedicated file name"},
    TagInfo{0x8A, "Authorisation response code", Shape::text},
    TagInfo{0x8E, "Cardholder verification list"},
    TagInfo{0x91, "Issuer authentication data"},
    TagInfo{0x95, "Terminal verification results", Shape::results},
    TagInfo{0x9A, "Transaction date"},
    TagInfo{0x9B, "Transaction status information"},
    TagInfo{0x9C, "Transaction type"},
    TagInfo{0x5F20, "Cardholder name", Shape::text},
    TagInfo{0x5F24, "Expiration date"},
    TagInfo{0x5F25, "Effective date"},
    TagInfo{0x5F28, "Issuer country"},
    TagInfo{0x5F2A, "Transaction currency"},
    TagInfo{0x5F34, "Card sequence number"},
    TagInfo{0x9F02, "Amount"},
    TagInfo{0x9F03, "Cashback"},
    TagInfo{0x9F06, "Application identifier of the terminal"},
    TagInfo{0x9F07, "Application usage control"},
    TagInfo{0x9F09, "Application version"},
    TagInfo{0x9F0D, "Issuer action code, default"},
    TagInfo{0x9F0E, "Issuer action code, denial"},
    TagInfo{0x9F0F, "Issuer action code, online"},
    TagInfo{0x9F10, "Issuer application data"},
    TagInfo{0x9F12, "Preferred name", Shape::text},
    TagInfo{0x9F1A, "Terminal country"},
    TagInfo{0x9F1E, "Terminal serial number", Shape::text},
    TagInfo{0x9F21, "Transaction time"},
    TagInfo{0x9F26, "Application cryptogram"},
    TagInfo{0x9F27, "Cryptogram information", Shape::cryptogram},
    TagInfo{0x9F33, "Terminal capabilities"},
    TagInfo{0x9F34, "Cardholder verification results", Shape::verification},
    TagInfo{0x9F35, "Terminal type"},
    TagInfo{0x9F36, "Transaction counter"},
    TagInfo{0x9F37, "Unpredictable number"},
    TagInfo{0x9F39, "Entry mode"},
    TagInfo{0x9F41, "Transaction sequence counter"},
    TagInfo{0x9F53, "Transaction category"},
    TagInfo{0x9F5B, "Issuer script results"},
};
static_assert(std::ranges::is_sorted(tags, {}, &TagInfo::tag));

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

constexpr std::array resultBits{
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

std::string results_meaning(const Bytes& value) {
    std::string text;
    for (const ResultBit& each : resultBits) {
        if (each.byte >= value.size() || (value[each.byte] & each.bit) == 0) continue;
        text += (text.empty() ? "" : ", ") + std::string(each.meaning);
    }
    return text.empty() ? "nothing to remark" : text;
}

// Packed digits, filled up with F.
std::string digits_of(const Bytes& value) {
    std::string digits = hex(value);
    return digits.substr(0, digits.find_last_not_of('F') + 1);
}

Value shape(Shape shape, const Bytes& value) {
    switch (shape) {
        case Shape::text:
            return std::string(value.begin(), value.end());
        case Shape::pan:
            return Pan{digits_of(value)};
        case Shape::secret:
            return Secret{hex(value)};
        case Shape::cryptogram:
            if (value.empty()) break;
            return fmt::format("{} ({})", hex(value), cryptogram_meaning(value.front()));
        case Shape::verification:
            if (value.empty()) break;
            return fmt::format("{} ({})", hex(value), verification_meaning(value.front()));
        case Shape::results:
            return fmt::format("{} ({})", hex(value), results_meaning(value));
        case Shape::bytes:
            break;
    }
    return hex(value);
}

// Takes data objects off the front; none once what is left is not one.
class Objects {
public:
    explicit Objects(std::span<const uint8_t> left) : left_(left) {}

    struct Object {
        uint32_t tag;
        Bytes value;
    };

    std::optional<Object> next() {
        const auto all = left_;
        const auto tag = number(tag_size());
        const auto length = tag ? this->length() : std::nullopt;
        if (!length || left_.size() < *length) {
            left_ = all;
            return std::nullopt;
        }
        Object object{*tag, Bytes(left_.begin(), left_.begin() + static_cast<std::ptrdiff_t>(*length))};
        left_ = left_.subspan(*length);
        return object;
    }

    [[nodiscard]] Bytes rest() const { return {left_.begin(), left_.end()}; }

private:
    [[nodiscard]] size_t tag_size() const {
        if (left_.empty() || (left_[0] & 0x1F) != 0x1F) return 1;
        size_t size = 2;
        while (size <= left_.size() && size < 4 && (left_[size - 1] & 0x80) != 0) ++size;
        return size;
    }

    std::optional<uint32_t> number(size_t size) {
        if (left_.size() < size) return std::nullopt;
        uint32_t value = 0;
        for (const uint8_t byte : left_.first(size)) value = value << 8 | byte;
        left_ = left_.subspan(size);
        return value;
    }

    std::optional<uint32_t> length() {
        const auto first = number(1);
        if (!first || *first < 0x80) return first;
        const size_t more = *first & 0x7F;
        return more >= 1 && more <= 2 ? number(more) : std::nullopt;
    }

    std::span<const uint8_t> left_;
};

}  // namespace

Group emv_fields(std::span<const uint8_t> data) {
    Group fields;
    Objects objects(data);
    while (const auto object = objects.next()) {
        const std::string tag = fmt::format("{:02X}", object->tag);
        const auto* known = std::ranges::lower_bound(tags, object->tag, {}, &TagInfo::tag);
        if (known != tags.end() && known->tag == object->tag) {
            fields.push_back({fmt::format("{} {}", tag, known->name), shape(known->shape, object->value), tag});
        } else {
            fields.push_back({tag + " (unknown)", Secret{hex(object->value)}, tag});
        }
    }
    if (!objects.rest().empty()) fields.push_back({"No data object", Secret{hex(objects.rest())}});
    return fields;
}

}  // namespace quorvel::cli
