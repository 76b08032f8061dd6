// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/comm/frame.h"

#include <array>
#include <gtest/gtest.h>
#include <span>
#include <string>
#include <string_view>

#include "tests/support/wire.h"

namespace {

using abecs::FrameDecoder;
using abecs::FrameEncoder;
using namespace support;

enum Kind { kPlain, kEncrypted, kOnlyReceived };  // the last: what no encoder should send, but a peer might

const struct {
    const char* what;
    std::string payload;
    std::string wire;
    Kind kind;
} kCases[] = {
    {"text", "OPN", "16 4F504E 17 A8A9"_hex, kPlain},
    {"no data", "", "16 17 62D6"_hex, kPlain},
    {"bytes to escape", "4142131617"_hex, "16 4142 1333 1336 1337 17 F3D1"_hex, kPlain},
    {"other control bytes as they are", "0406121518"_hex, "16 0406121518 17 7D74"_hex, kPlain},
    {"a CRC with an escape's and a SYN's value", "RIK3", "16 52494B33 17 1316"_hex, kPlain},
    {"encrypted", "42"_hex, "16 12 42 17 247B"_hex, kEncrypted},
    {"encrypted without data", "", "16 12 17 07C7"_hex, kEncrypted},
    {"encrypted that starts with another DC2", "1242"_hex, "16 12 1242 17 D2B4"_hex, kEncrypted},
    {"a bare SYN in the data", "411642"_hex, "16 411642 17 E093"_hex, kOnlyReceived},
    {"an escape that wraps", "E5"_hex, "16 1305 17 8D91"_hex, kOnlyReceived},
    {"a DC2 that is not the first byte", "4112"_hex, "16 4112 17 2D5A"_hex, kOnlyReceived},
    {"an escaped DC2 as first byte", "1242"_hex, "16 1332 42 17 247B"_hex, kOnlyReceived},
};

std::string encode(std::string_view payload, bool encrypted) {
    std::array<uint8_t, 64> wire{};
    FrameEncoder encoder(wire.data());
    encoder.begin(encrypted);
    encoder.data(std::span(reinterpret_cast<const uint8_t*>(payload.data()), payload.size()));
    return {wire.data(), encoder.end()};
}

// Feeds all of `wire` and keeps the data until the frame's end; the event is that of the last byte.
struct Decoded {
    explicit Decoded(std::string_view wire, FrameDecoder decoder = {}) {
        for (const char c : wire) {
            event = decoder.feed(static_cast<uint8_t>(c));
            if (event == FrameDecoder::Event::kData) { payload += static_cast<char>(decoder.data()); }
        }
        encrypted = decoder.encrypted();
    }

    FrameDecoder::Event event = FrameDecoder::Event::kPending;
    std::string payload;
    bool encrypted = false;
};

TEST(Frame, PutTogetherAndTakenApart) {
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.what);
        if (c.kind != kOnlyReceived) { EXPECT_EQ(to_hex(encode(c.payload, c.kind == kEncrypted)), to_hex(c.wire)); }
        const Decoded decoded(c.wire);
        EXPECT_EQ(decoded.event, FrameDecoder::Event::kGood);
        EXPECT_EQ(to_hex(decoded.payload), to_hex(c.payload));
        EXPECT_EQ(decoded.encrypted, c.kind == kEncrypted);
    }
}

TEST(Frame, NoFlippedBitPasses) {
    const std::string good = "16 4F504E1336 17 CC05"_hex;
    ASSERT_EQ(Decoded(good).event, FrameDecoder::Event::kGood);
    for (size_t bit = 0; bit < 8 * good.size(); ++bit) {
        std::string damaged = good;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
        EXPECT_NE(Decoded(damaged).event, FrameDecoder::Event::kGood) << to_hex(damaged);
    }
}

TEST(Frame, ADecoderWaitsForSynAgainAfterTheEnd) {
    FrameDecoder decoder;
    FrameDecoder::Event last = FrameDecoder::Event::kPending;
    for (const char c : "16 12 42 17 247C"_hex) { last = decoder.feed(static_cast<uint8_t>(c)); }
    EXPECT_EQ(last, FrameDecoder::Event::kBad);
    EXPECT_EQ(decoder.feed('O'), FrameDecoder::Event::kNotSyn);
    const Decoded next("16 4F504E 17 A8A9"_hex, decoder);
    EXPECT_EQ(next.event, FrameDecoder::Event::kGood);
    EXPECT_EQ(next.payload, "OPN");
    EXPECT_FALSE(next.encrypted);
}

}  // namespace
