// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "wire/frame.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace std::string_literals;

namespace quorvel::wire {

void PrintTo(const Reception& reception, std::ostream* out) {
    *out << "kind " << static_cast<int>(reception.kind) << " \"" << reception.fault << "\" data "
         << testing::PrintToString(std::string(reception.frame.data.begin(), reception.frame.data.end()));
}

namespace {

using Kind = Reception::Kind;

std::vector<Reception> decode(const std::string& wire) {
    FrameDecoder decoder;
    std::vector<Reception> receptions;
    for (const char c : wire) {
        if (auto reception = decoder.feed(static_cast<uint8_t>(c))) receptions.push_back(*std::move(reception));
    }
    EXPECT_FALSE(decoder.in_frame());
    return receptions;
}

struct Good {
    Frame frame;
    std::string wire;
};

const std::vector<Good> good{
    {{false, to_bytes("OPN000")}, "\x16OPN000\x17\x77\x5E"s},
    {{false, {}}, "\x16\x17\x62\xD6"s},
    {{false, to_bytes("\x13\x16\x17\x12\x18"
                      "AB")},
     "\x16\x13\x33\x13\x36\x13\x37\x12\x18"
     "AB\x17\x4C\x02"s},
    {{true, to_bytes("0123456789abcdef")},
     "\x16\x12"
     "0123456789abcdef\x17\xB9\x4C"s},
    {{true, {}}, "\x16\x12\x17\x07\xC7"s},
};

TEST(Frame, IsEncodedAndDecodedByteForByte) {
    for (const auto& [frame, wire] : good) {
        EXPECT_EQ(encode(frame), to_bytes(wire));
        const auto receptions = decode(wire);
        ASSERT_EQ(receptions.size(), 1U);
        EXPECT_EQ(receptions[0].kind, Kind::frame) << receptions[0].fault;
        EXPECT_EQ(receptions[0].frame, frame);
        EXPECT_EQ(receptions[0].wire, to_bytes(wire));
    }
}

struct Bad {
    std::string wire;
    std::string fault;
};

const std::vector<Bad> bad{
    {"\x16OPN000\x17\x77\x5F"s, "bad CRC: 0x775F received, 0x775E due"},
    {"\x16OPN001\x17\x77\x5E"s, "bad CRC: 0x775E received, 0x446F due"},
    {"\x16O\x13\x50N\x17\x00\x00"s, "0x30 escaped without need"},
    {"\x16OPN\x13\x17\xA8\xA9"s, "DC3 before a control byte"},
    {"\x16\x12OPN000\x17\x77\x5E"s, "bad CRC: 0x775E received, 0xC54C due"},
    {"\x16" + std::string(2049, 'A') + "\x17\x00\x00"s, "more than 2048 data bytes"},
};

TEST(Frame, ThatIsDamagedTellsWhatIsWrong) {
    for (const auto& [wire, fault] : bad) {
        const auto receptions = decode(wire);
        ASSERT_EQ(receptions.size(), 1U);
        EXPECT_EQ(receptions[0].kind, Kind::damaged);
        EXPECT_EQ(receptions[0].fault, fault);
    }
}

TEST(Frame, ThatAnotherOneCutsOffDoesNotSpoilIt) {
    for (const std::string& beginning : {"\x16"s, "\x16\x12"s, "\x16OP"s, "\x16OP\x13"s}) {
        const auto receptions = decode(beginning + "\x16OPN000\x17\x77\x5E");
        ASSERT_EQ(receptions.size(), 2U);
        EXPECT_EQ(receptions[0].kind, Kind::interrupted);
        EXPECT_EQ(receptions[0].wire, to_bytes(beginning));
        EXPECT_EQ(receptions[1].kind, Kind::frame) << receptions[1].fault;
        EXPECT_EQ(receptions[1].frame.data, to_bytes("OPN000"));
    }
}

TEST(Frame, LeavesBytesOutsideItAlone) {
    const auto receptions = decode("\x18\x15\x16OPN000\x17\x77\x5E\x17");
    ASSERT_EQ(receptions.size(), 4U);
    EXPECT_EQ(receptions[0].byte, 0x18);
    EXPECT_EQ(receptions[1].byte, 0x15);
    EXPECT_EQ(receptions[2].kind, Kind::frame);
    EXPECT_EQ(receptions[3].byte, 0x17);
}

// The CRC is not stuffed, so that its bytes may look like control bytes.
TEST(Frame, TakesAnyTwoBytesForItsCrc) {
    for (const char high : {'\x13', '\x16', '\x17', '\x18'}) {
        const auto receptions = decode("\x16OPN000\x17"s + high + '\x16');
        ASSERT_EQ(receptions.size(), 1U);
        EXPECT_EQ(receptions[0].kind, Kind::damaged);
    }
}

}  // namespace

}  // namespace quorvel::wire
