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
        if (auto reception = decoder.feed(static_cast<uint8_t>(c))) { receptions.push_back(*std::move(reception)); }
    }
    EXPECT_FALSE(decoder.in_frame());
    return receptions;
}

TEST(Frame, IsEncodedAndDecodedByteForByte) {
    for (const auto& [frame, wire] : {
             std::pair(Frame{false, to_bytes("OPN000")}, "\x16OPN000\x17\x77\x5E"s),
             {{false, {}}, "\x16\x17\x62\xD6"},
             {{false, to_bytes("\x13\x16\x17\x12\x18XY")}, "\x16\x13\x33\x13\x36\x13\x37\x12\x18XY\x17\x4E\x79"},
             {{true, to_bytes("0123456789abcdef")},
              "\x16\x12"
              "0123456789abcdef\x17\xB9\x4C"},
             {{true, {}}, "\x16\x12\x17\x07\xC7"},
         }) {
        EXPECT_EQ(encode(frame), to_bytes(wire));
        const auto receptions = decode(wire);
        ASSERT_EQ(receptions.size(), 1U);
        EXPECT_EQ(receptions[0].kind, Kind::kFrame) << receptions[0].fault;
        EXPECT_EQ(receptions[0].frame, frame);
        EXPECT_EQ(receptions[0].wire, to_bytes(wire));
    }
}

TEST(Frame, ThatIsDamagedTellsWhatIsWrong) {
    for (const auto& [wire, fault] : {
             std::pair("\x16OPN000\x17\x77\x5F"s, "bad CRC: 0x775F received, 0x775E due"),
             {"\x16O\x13\x50N\x17"s + '\0' + '\0', "0x30 escaped without need"},
             {"\x16OPN\x13\x17\xA8\xA9", "DC3 before a control byte"},
             {"\x16\x12OPN000\x17\x77\x5E", "bad CRC: 0x775E received, 0xC54C due"},
             // The CRC is not stuffed, so that its bytes may look like control bytes.
             {"\x16OPN000\x17\x13\x16", "bad CRC: 0x1316 received, 0x775E due"},
             {"\x16OPN000\x17\x16\x16", "bad CRC: 0x1616 received, 0x775E due"},
             {"\x16OPN000\x17\x17\x16", "bad CRC: 0x1716 received, 0x775E due"},
             {"\x16" + std::string(2049, 'A') + "\x17\x20\x20", "more than 2048 data bytes"},
         }) {
        const auto receptions = decode(wire);
        ASSERT_EQ(receptions.size(), 1U);
        EXPECT_EQ(receptions[0].kind, Kind::kDamaged);
        EXPECT_EQ(receptions[0].fault, fault);
    }
}

TEST(Frame, ThatAnotherOneCutsOffDoesNotSpoilIt) {
    for (const char* beginning : {"\x16", "\x16\x12", "\x16OP", "\x16OP\x13"}) {
        const auto receptions = decode(beginning + "\x16OPN000\x17\x77\x5E"s);
        ASSERT_EQ(receptions.size(), 2U);
        EXPECT_EQ(receptions[0].kind, Kind::kInterrupted);
        EXPECT_EQ(receptions[0].wire, to_bytes(beginning));
        EXPECT_EQ(receptions[1].kind, Kind::kFrame) << receptions[1].fault;
        EXPECT_EQ(receptions[1].frame.data, to_bytes("OPN000"));
    }
}

}  // namespace

}  // namespace quorvel::wire
