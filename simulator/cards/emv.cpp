// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/cards/emv.h"

#include <fmt/format.h>

#include "simulator/keys/block_cipher.h"
#include "wire/hex.h"

namespace quorvel::sim {

namespace {

constexpr size_t kTerminalResultsSize = 5;
constexpr size_t kUnpredictableSize = 4;
constexpr std::string_view kTestKey = "0123456789ABCDEFFEDCBA9876543210";

// What enters a cryptogram, as far as it is there.
constexpr Tag kCovered[]{tag::kAmount,
                         tag::kCashback,
                         0x9F1A,
                         tag::kTerminalResults,
                         tag::kCurrency,
                         tag::kDate,
                         tag::kType,
                         tag::kUnpredictableNumber,
                         0x82,
                         tag::kCounter,
                         tag::kCryptogramInformation};

}  // namespace

Bytes value_of(const DataObjects& objects, Tag tag, const Bytes& otherwise) {
    const auto found = objects.find(tag);
    return found != objects.end() ? found->second : otherwise;
}

void set(DataObjects& objects, TerminalResult result) {
    Bytes& results = objects[tag::kTerminalResults];
    results.resize(kTerminalResultsSize);
    results[result.byte - 1] |= result.mask;
}

Bytes bcd(uint64_t number, size_t bytes) {
    const std::string digits = fmt::format("{:0{}}", number, 2 * bytes);
    return from_hex(std::string_view(digits).substr(digits.size() - 2 * bytes));
}

uint64_t from_bcd(ByteView digits) {
    uint64_t number = 0;
    for (const uint8_t byte : digits) { number = number * 100 + (byte >> 4) * uint64_t{10} + (byte & 0x0F); }
    return number;
}

uint64_t number(ByteView bytes) {
    uint64_t number = 0;
    for (const uint8_t byte : bytes) { number = number << 8 | byte; }
    return number;
}

Bytes two_bytes(unsigned number) { return {static_cast<uint8_t>(number >> 8), static_cast<uint8_t>(number)}; }

DataObjects terminal_objects() {
    return {
        {tag::kTerminalResults, Bytes(kTerminalResultsSize)},
        {0x9B, from_hex("E800")},
        {0x9F09, from_hex("008C")},
        {card_tag::kTerminalCountry, from_hex("0076")},
        {card_tag::kCapabilities, from_hex("E0F0C8")},
        {card_tag::kTerminalType, from_hex("22")},
        {0x9F40, from_hex("F000F0A001")},
    };
}

void generate(DataObjects& objects, Cryptogram kind, Random& random) {
    objects[tag::kUnpredictableNumber] = random.bytes(kUnpredictableSize);
    objects[tag::kCryptogramInformation] = {static_cast<uint8_t>(kind)};
    Bytes data;
    for (const Tag each : kCovered) {
        if (const auto found = objects.find(each); found != objects.end()) { append(data, found->second); }
    }
    data.push_back(0x80);
    data.resize((data.size() + kBlockSize - 1) / kBlockSize * kBlockSize);
    const Bytes chained = encipher(from_hex(kTestKey), data, Bytes(kBlockSize));
    objects[tag::kCryptogram] = Bytes(chained.end() - kBlockSize, chained.end());
}

}  // namespace quorvel::sim
