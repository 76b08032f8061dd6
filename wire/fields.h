// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_WIRE_FIELDS_H
#define QUORVEL_WIRE_FIELDS_H

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "wire/bytes.h"
#include "wire/status.h"

namespace quorvel::wire {

// What a block's three digits of length can count.
inline constexpr size_t kMaxBlock = 999;
// A parameter's id and length, two bytes each.
inline constexpr size_t kParamHead = 4;

// A request that breaks its layout. The text names the field and what is wrong with it; the status answers it.
class LayoutError : public std::runtime_error {
public:
    explicit LayoutError(const std::string& text, Status status = Status::kInvparm)
        : std::runtime_error(text), status_(status) {}

    [[nodiscard]] Status status() const noexcept { return status_; }

private:
    Status status_;
};

struct Param {
    uint16_t id = 0;
    Bytes data;

    bool operator==(const Param&) const = default;
};

enum class Cr { kRefused, kAllowed };

// Of values that a field may have, both included.
struct Range {
    uint64_t lowest = 0;
    uint64_t highest = 0;
};

// Reads the fields of a request from front to back and refuses with a LayoutError whatever is not exactly as the
// layout says. The bytes must outlive the reader.
class Reader {
public:
    // `what` names the whole in messages: the command, or the block of it.
    Reader(std::string_view what, ByteView bytes) : what_(what), left_(bytes) {}

    [[nodiscard]] size_t left() const noexcept { return left_.size(); }

    [[nodiscard]] uint64_t n(std::string_view field, size_t digits);
    uint64_t n(std::string_view field, size_t digits, Range range);
    // Texts come back without their trailing spaces.
    [[nodiscard]] std::string a(std::string_view field, size_t width, Cr cr = Cr::kRefused);
    [[nodiscard]] std::string s(std::string_view field, size_t width, Cr cr = Cr::kRefused);
    // Padding is data here: whoever knows the value's length takes its last bytes.
    [[nodiscard]] Bytes h(std::string_view field, size_t digits);
    [[nodiscard]] uint32_t x(std::string_view field, size_t width);
    uint32_t x(std::string_view field, size_t width, Range range);
    [[nodiscard]] Bytes b(std::string_view field, size_t count);

    // Three digits of length and what they count.
    [[nodiscard]] Reader block(std::string_view field);
    [[nodiscard]] Param param();
    // Every parameter of the one or two blocks that are left, none when nothing is left.
    [[nodiscard]] std::vector<Param> params();

    void end() const;

private:
    ByteView take(std::string_view field, size_t count);
    std::string text(std::string_view field, size_t width, uint8_t highest, Cr cr);
    uint64_t within(std::string_view field, uint64_t value, Range range) const;
    [[noreturn]] void refuse(std::string_view field, std::string_view fault) const;

    std::string what_;
    ByteView left_;
};

// Lays out the fields of a response. A value that does not fit its field is a fault of the virtual PIN pad's own data
// and throws std::invalid_argument.
class Writer {
public:
    Writer& n(uint64_t value, size_t digits);
    Writer& a(std::string_view text, size_t width);
    Writer& s(std::string_view text, size_t width);
    // Padded in front with the pair 30, as the protocol pads H fields.
    Writer& h(ByteView bytes, size_t digits);
    Writer& x(uint32_t value, size_t width);
    Writer& b(ByteView bytes);
    Writer& param(const Param& param);

    [[nodiscard]] const Bytes& bytes() const noexcept { return bytes_; }

private:
    Bytes bytes_;
};

}  // namespace quorvel::wire

#endif
