// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_HPP_VALUES_HPP
#define QUORVEL_HPP_VALUES_HPP

#include <array>
#include <chrono>
#include <concepts>
#include <cstddef>
#include <ctime>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string.h>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "quorvel/hpp/error.hpp"

/// @file
/// Secrets, keys, tags, dates, numbers and texts.

namespace quorvel {

/// Bytes to be read, the caller's.
using Bytes = std::span<const uint8_t>;

namespace detail {

// Zeroes memory for good: no compiler takes it for a store that nobody reads.
inline void wipe(void* memory, size_t size) noexcept { explicit_bzero(memory, size); }

// A record of the C interface that may hold a secret.
template <typename Record>
struct Wiped {
    Record record{};
    Wiped() = default;
    Wiped(const Wiped&) = delete;
    Wiped& operator=(const Wiped&) = delete;
    ~Wiped() { wipe(&record, sizeof record); }
};

inline std::string_view text_of(Bytes bytes) noexcept {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}
inline Bytes bytes_of(std::string_view text) noexcept {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

}  // namespace detail

/// Something that must not be seen: a card number, a track, a PIN block, a key. Its memory is its own and is wiped
/// before it is released; it cannot be printed, and not be compared but by equals().
class Secret {
public:
    /// None.
    Secret() noexcept = default;
    /// A copy of a text.
    explicit Secret(std::string_view text) : Secret(detail::bytes_of(text)) {}
    /// A copy of bytes.
    explicit Secret(Bytes bytes) : bytes_(std::make_unique<uint8_t[]>(bytes.size())), size_(bytes.size()) {
        std::copy(bytes.begin(), bytes.end(), bytes_.get());
    }
    /// One of so many bytes, zeroes until `fill` is handed them.
    template <typename Fill>
    static Secret filled(size_t size, const Fill& fill) {
        Secret made;
        made.bytes_ = std::make_unique<uint8_t[]>(size);
        made.size_ = size;
        fill(std::span(made.bytes_.get(), size));
        return made;
    }
    /// A copy, in memory of its own.
    Secret(const Secret& other) : Secret(other.bytes()) {}
    /// The other one is empty afterwards.
    Secret(Secret&& other) noexcept : bytes_(std::move(other.bytes_)), size_(std::exchange(other.size_, 0)) {}
    /// What it was is wiped.
    Secret& operator=(Secret other) noexcept {
        std::swap(bytes_, other.bytes_);
        std::swap(size_, other.size_);
        return *this;
    }
    ~Secret() {
        if (size_ != 0) { detail::wipe(bytes_.get(), size_); }
    }

    /// In bytes.
    [[nodiscard]] size_t size() const noexcept { return size_; }
    /// Whether there is nothing in it.
    [[nodiscard]] bool empty() const noexcept { return size_ == 0; }
    /// The text itself; it lives as long as the secret does and does not change.
    [[nodiscard]] std::string_view reveal() const noexcept { return detail::text_of(bytes()); }
    /// The same as bytes.
    [[nodiscard]] Bytes bytes() const noexcept { return {bytes_.get(), size_}; }
    /// Compares in a time that depends on the sizes only.
    [[nodiscard]] bool equals(const Secret& other) const noexcept {
        if (size_ != other.size_) { return false; }
        uint8_t different = 0;
        for (size_t i = 0; i < size_; ++i) {
            different = static_cast<uint8_t>(different | (bytes_[i] ^ other.bytes_[i]));
        }
        return different == 0;
    }
    friend bool operator==(const Secret&, const Secret&) = delete;

private:
    std::unique_ptr<uint8_t[]> bytes_;
    size_t size_ = 0;
};

namespace detail {

// A text for the C interface, wiped at its end. Throws Error for one with a NUL in it, which would be cut short there.
class CText {
public:
    explicit CText(std::optional<std::string_view> text) : there_(text.has_value()) {
        if (!text) { return; }
        if (text->find('\0') != std::string_view::npos) { refuse_argument("a text has a NUL in it"); }
        terminated_ = Secret::filled(
            text->size() + 1, [&](std::span<uint8_t> room) { std::copy(text->begin(), text->end(), room.begin()); });
    }

    // Null for none.
    [[nodiscard]] const char* get() const noexcept { return there_ ? terminated_.reveal().data() : nullptr; }

private:
    bool there_;
    Secret terminated_;
};

// Into the `room` characters of a record's member, which is zeroes. Throws Error for more than fit with a NUL behind.
inline void put(char* member, size_t room, std::string_view text, const char* name) {
    if (text.find('\0') != std::string_view::npos || text.size() >= room) {
        char what[128];
        std::snprintf(what, sizeof what, "%s: up to %zu characters, no NUL among them", name, room - 1);
        refuse_argument(what);
    }
    std::copy(text.begin(), text.end(), member);
}
template <size_t room>
void put(char (&member)[room], std::string_view text, const char* name) {
    put(member, room, text, name);
}

// Hexadecimal digits of bytes.
inline Secret to_hex(Bytes bytes) {
    return Secret::filled(2 * bytes.size(), [&](std::span<uint8_t> digits) {
        constexpr std::string_view kDigits = "0123456789ABCDEF";
        for (size_t i = 0; i < bytes.size(); ++i) {
            digits[2 * i] = static_cast<uint8_t>(kDigits[bytes[i] >> 4]);
            digits[2 * i + 1] = static_cast<uint8_t>(kDigits[bytes[i] & 0x0F]);
        }
    });
}

// Bytes of hexadecimal digits; what is no digit counts as 0, and an odd last one is left out.
inline Secret from_hex(std::string_view digits) {
    const auto value = [](char c) {
        if (c >= '0' && c <= '9') { return c - '0'; }
        const char lower = static_cast<char>(c | 0x20);
        return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : 0;
    };
    return Secret::filled(digits.size() / 2, [&](std::span<uint8_t> bytes) {
        for (size_t i = 0; i < bytes.size(); ++i) {
            bytes[i] = static_cast<uint8_t>(value(digits[2 * i]) * 16 + value(digits[2 * i + 1]));
        }
    });
}

// The up to `room` characters of a member, before its NUL if it has one.
template <size_t room>
std::string_view taken(const char (&member)[room]) noexcept {
    return {member, strnlen(member, room)};
}

// Seconds for a field that takes 0 to 255 of them.
inline uint8_t seconds_of(std::chrono::seconds time) {
    if (time.count() < 0 || time.count() > 255) { refuse_argument("a time-out is 0 to 255 seconds"); }
    return static_cast<uint8_t>(time.count());
}

}  // namespace detail

/// A whole number of a field's width: any integer that fits is taken; one that does not throws Error, illegal_argument,
/// and what is no integer does not compile, so that no amount loses its cents on the way.
template <typename Number>
class Whole {
public:
    /// Of any integer that fits.
    template <std::integral Other>
    requires(!std::same_as<Other, bool>) constexpr Whole(Other number) : number_(static_cast<Number>(number)) {
        if (!std::in_range<Number>(number)) { detail::refuse_argument("a number does not fit its field"); }
    }
    /// The number itself.
    constexpr operator Number() const noexcept { return number_; }

private:
    Number number_;
};

/// Tags of EMV data objects, one behind the other: Tags{0x9F26, 0x82}. At most 128 bytes; throws Error for more.
class Tags {
public:
    /// Of numbers.
    Tags(std::initializer_list<uint32_t> tags) {
        for (const uint32_t tag : tags) {
            for (int shift = 24; shift >= 0; shift -= 8) {
                if (tag >> shift != 0 || shift == 0) { add(static_cast<uint8_t>(tag >> shift)); }
            }
        }
    }
    /// Of their bytes.
    explicit Tags(Bytes bytes) {
        for (const uint8_t byte : bytes) { add(byte); }
    }

    /// One behind the other.
    [[nodiscard]] Bytes bytes() const noexcept { return {list_.data, list_.szData}; }
    /// For the C interface.
    [[nodiscard]] const AbecsTagList& native() const noexcept { return list_; }

private:
    void add(uint8_t byte) {
        if (list_.szData == sizeof list_.data) { detail::refuse_argument("more than 128 bytes of tags"); }
        list_.data[list_.szData++] = byte;
    }

    AbecsTagList list_{};
};

/// A date and a time of day, as the till has them.
struct DateTime {
    uint8_t year = 0;    ///< its last two digits
    uint8_t month = 1;   ///< 1 to 12
    uint8_t day = 1;     ///< 1 to 31
    uint8_t hour = 0;    ///< 0 to 23
    uint8_t minute = 0;  ///< 0 to 59
    uint8_t second = 0;  ///< 0 to 59

    /// Now, in local time.
    [[nodiscard]] static DateTime now() {
        const std::time_t time = std::time(nullptr);
        std::tm local{};
        localtime_r(&time, &local);
        const auto part = [](int number) { return static_cast<uint8_t>(number); };
        return {part(local.tm_year % 100), part(local.tm_mon + 1), part(local.tm_mday),
                part(local.tm_hour),       part(local.tm_min),     part(local.tm_sec)};
    }
};

/// How many leading and trailing digits of a card number come in clear, each 0 to 99.
struct PanMask {
    uint8_t leading = 6;   ///< at its start
    uint8_t trailing = 4;  ///< at its end
};

/// How a PIN is enciphered: master and working key, or DUKPT, with DES or triple DES.
enum class PinMethod : int32_t {
    mk_wk_des = ABECS_SPE_MTHD_PIN_MK_WK_DES,
    mk_wk_tdes = ABECS_SPE_MTHD_PIN_MK_WK_TDES,
    dukpt_des = ABECS_SPE_MTHD_PIN_DUKPT_DES,
    dukpt_tdes = ABECS_SPE_MTHD_PIN_DUKPT_TDES,
};

/// How data are enciphered.
enum class DataMethod : int32_t {
    mk_wk_des_ecb = ABECS_SPE_MTHD_DAT_MK_WK_DES_ECB,
    mk_wk_des_cbc = ABECS_SPE_MTHD_DAT_MK_WK_DES_CBC,
    mk_wk_tdes_ecb = ABECS_SPE_MTHD_DAT_MK_WK_TDES_ECB,
    mk_wk_tdes_cbc = ABECS_SPE_MTHD_DAT_MK_WK_TDES_CBC,
    dukpt_dat1_ecb = ABECS_SPE_MTHD_DAT_DUKPT_DAT1_ECB,
    dukpt_dat3_ecb = ABECS_SPE_MTHD_DAT_DUKPT_DAT3_ECB,
    dukpt_dat3_cbc = ABECS_SPE_MTHD_DAT_DUKPT_DAT3_CBC,
    tdes_random_ecb = ABECS_SPE_MTHD_DAT_TDES_RANDOM_ECB,
    tdes_random_cbc = ABECS_SPE_MTHD_DAT_TDES_RANDOM_CBC,
};

/// A working key for card numbers, in clear; wiped at its end.
class WorkingKey {
public:
    /// 16 bytes; of them ABECS_WK_PAN_TYPE_DES uses the first 8. Throws Error for another number of bytes.
    WorkingKey(AbecsWkPanType_E type, const Secret& key) : key_{type, {}} {
        if (key.size() != sizeof key_.key) { detail::refuse_argument("a working key has 16 bytes"); }
        std::copy(key.bytes().begin(), key.bytes().end(), key_.key);
    }
    /// Of the C interface's record.
    explicit WorkingKey(const AbecsWkPan& key) noexcept : key_(key) {}
    /// A copy.
    WorkingKey(const WorkingKey&) = default;
    /// A copy.
    WorkingKey& operator=(const WorkingKey&) = default;
    ~WorkingKey() { detail::wipe(&key_, sizeof key_); }

    /// What it is for.
    [[nodiscard]] AbecsWkPanType_E type() const noexcept { return key_.type; }
    /// The key itself.
    [[nodiscard]] Secret key() const { return Secret(Bytes(key_.key)); }
    /// For the C interface.
    [[nodiscard]] const AbecsWkPan& native() const noexcept { return key_; }

private:
    AbecsWkPan key_;
};

/// A master key, in clear, and its index in the PIN pad; wiped at its end.
class MasterKey {
public:
    /// 16 bytes; of them ABECS_MK_TYPE_DES uses the first 8. Throws Error for another number of bytes.
    MasterKey(AbecsMkType_E type, uint8_t index, const Secret& key) : key_{type, index, {}} {
        if (key.size() != sizeof key_.key) { detail::refuse_argument("a master key has 16 bytes"); }
        std::copy(key.bytes().begin(), key.bytes().end(), key_.key);
    }
    /// A copy.
    MasterKey(const MasterKey&) = default;
    /// A copy.
    MasterKey& operator=(const MasterKey&) = default;
    ~MasterKey() { detail::wipe(&key_, sizeof key_); }

    /// For the C interface.
    [[nodiscard]] const AbecsMk& native() const noexcept { return key_; }

private:
    AbecsMk key_;
};

/// A text in UTF-8 as the PIN pad's displays take it: in ISO 8859-1. Throws Error, illegal_argument, for a character
/// that this does not have and for what is no UTF-8.
[[nodiscard]] inline std::string from_utf8(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<uint8_t>(text[i]);
        if (byte < 0x80) {
            out += text[i];
            continue;
        }
        const bool latin =
            (byte == 0xC2 || byte == 0xC3) && i + 1 < text.size() && (static_cast<uint8_t>(text[i + 1]) & 0xC0) == 0x80;
        if (!latin) { detail::refuse_argument("a character that the PIN pad cannot show"); }
        out += static_cast<char>(((byte & 0x03) << 6) | (static_cast<uint8_t>(text[++i]) & 0x3F));
    }
    return out;
}

/// What the PIN pad has sent as a text, which is in ISO 8859-1, in UTF-8.
[[nodiscard]] inline std::string to_utf8(std::string_view text) {
    std::string out;
    for (const char c : text) {
        const auto byte = static_cast<uint8_t>(c);
        if (byte < 0x80) {
            out += c;
        } else {
            out += static_cast<char>(0xC0 | byte >> 6);
            out += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return out;
}

}  // namespace quorvel

#endif
