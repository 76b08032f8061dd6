// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/comm/frame.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include "tests/support/wire.h"

namespace {

using abecs::FrameDecoder;
using abecs::FrameEncoder;
using support::to_hex;
using namespace support::literals;

struct Case {
    const char* what;
    std::string payload;
    std::string wire;
    bool encrypted = false;
};

const Case kCases[] = {
    {"text", "OPN", "16 4F504E 17 A8A9"_hex},
    {"no data", "", "16 17 62D6"_hex},
    {"bytes to escape", "4142131617"_hex, "16 4142 1333 1336 1337 17 F3D1"_hex},
    {"other control bytes as they are", "0406121518"_hex, "16 0406121518 17 7D74"_hex},
    {"a CRC with an escape's and a SYN's value", "RIK3", "16 52494B33 17 1316"_hex},
    {"a CRC with a SYN's and an ETB's value", "BAU8", "16 42415538 17 1617"_hex},
    {"encrypted", "42"_hex, "16 12 42 17 247B"_hex, true},
    {"encrypted without data", "", "16 12 17 07C7"_hex, true},
    {"encrypted that starts with another DC2", "1242"_hex, "16 12 1242 17 D2B4"_hex, true},
};

std::string encode(std::string_view payload, bool encrypted) {
    FrameEncoder encoder;
    std::string wire;
    const auto put = [&](FrameEncoder::Wire bytes) { wire.append(bytes.begin(), bytes.end()); };
    put(encoder.begin(encrypted));
    for (const char c : payload) { put(encoder.data(static_cast<uint8_t>(c))); }
    put(encoder.end());
    return wire;
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

TEST(FrameEncoder, Frames) {
    for (const Case& c : kCases) { EXPECT_EQ(to_hex(encode(c.payload, c.encrypted)), to_hex(c.wire)) << c.what; }
}

TEST(FrameDecoder, TakesFramesApart) {
    for (const Case& c : kCases) {
        const Decoded decoded(c.wire);
        EXPECT_EQ(decoded.event, FrameDecoder::Event::kGood) << c.what;
        EXPECT_EQ(to_hex(decoded.payload), to_hex(c.payload)) << c.what;
        EXPECT_EQ(decoded.encrypted, c.encrypted) << c.what;
    }
}

// What no encoder should send, but a peer might.
TEST(FrameDecoder, TakesWhatPeersMaySend) {
    const Case cases[] = {
        {"a bare SYN in the data", "411642"_hex, "16 411642 17 E093"_hex},
        {"an escape that need not be", "A5"_hex, "16 13C5 17 805D"_hex},
        {"an escape that wraps", "E5"_hex, "16 1305 17 8D91"_hex},
        {"an escape in front of ETB", "41F7"_hex, "16 41 1317 17 C21D"_hex},
        {"a DC2 that is not the first byte", "4112"_hex, "16 4112 17 2D5A"_hex},
        {"an escaped DC2 as first byte", "1242"_hex, "16 1332 42 17 247B"_hex},
    };
    for (const Case& c : cases) {
        const Decoded decoded(c.wire);
        EXPECT_EQ(decoded.event, FrameDecoder::Event::kGood) << c.what;
        EXPECT_EQ(to_hex(decoded.payload), to_hex(c.payload)) << c.what;
        EXPECT_FALSE(decoded.encrypted) << c.what;
    }
}

TEST(FrameDecoder, NoFlippedBitPasses) {
    const std::string good = "16 4F504E1336 17 CC05"_hex;
    ASSERT_EQ(Decoded(good).event, FrameDecoder::Event::kGood);
    for (size_t bit = 0; bit < 8 * good.size(); ++bit) {
        std::string damaged = good;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
        EXPECT_NE(Decoded(damaged).event, FrameDecoder::Event::kGood) << to_hex(damaged);
    }
}

TEST(FrameDecoder, WaitsForSynAgainAfterTheEndOfAFrame) {
    using Event = FrameDecoder::Event;
    FrameDecoder decoder;
    for (const char c : "16 12 42 17 247C"_hex) { decoder.feed(static_cast<uint8_t>(c)); }
    EXPECT_EQ(decoder.feed('O'), Event::kNotSyn);
    const Decoded next("16 4F504E 17 A8A9"_hex, decoder);
    EXPECT_EQ(next.event, Event::kGood);
    EXPECT_EQ(next.payload, "OPN");
    EXPECT_FALSE(next.encrypted);
}

}  // namespace
