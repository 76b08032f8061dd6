// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <fmt/format.h>
#include <regex>

#include "tests/cli/tool.h"
#include "wire/frame.h"
#include "wire/hex.h"

namespace {

const std::string kPan = "4111111111111111";
const std::string kDiscretionary = "30122010000000000";
const std::string kWorkingKey = "00112233445566778899AABBCCDDEEFF";

// Nobody foretells the value of a PIN block, but it has 16 hexadecimal digits.
bool holds_block(const std::string& text) {
    static const std::regex kBlock("\\b[0-9A-Fa-f]{16}\\b");
    return std::regex_search(text, kBlock);
}

std::string digits_of(const std::string& text) {
    std::string hex;
    for (const char c : text) { hex += sim::to_hex({{static_cast<uint8_t>(c)}}); }
    return hex;
}

// Whether the tool prints JSON.
class PrivacyTest : public PinPadToolTest, public testing::WithParamInterface<bool> {
protected:
    // Neither the number nor the track, be it in clear or in hexadecimal.
    static void expect_private(const std::string& text) {
        for (const std::string& secret : {kPan, kDiscretionary, kWorkingKey, std::string("4111111111111111D3012")}) {
            EXPECT_EQ(text.find(secret), std::string::npos) << text;
            EXPECT_EQ(text.find(digits_of(secret)), std::string::npos) << text;
        }
    }
};

// With a cardholder who swipes, inserts and types where one can.
TEST_P(PrivacyTest, NoCommandShowsACardNumberATrackAPinBlockOrAKey) {
    sim::Card stripe = card("visa-chip");
    stripe.serviceCode = "101";
    const std::string pan = "@" + folder_.file("pan", kPan + "\n");
    const struct {
        Arguments arguments;
        const char* waits = "";
        Gestures gestures = {};
        int exit = 0;
    } cases[]{
        {{"ports"}},
        {{"doctor", "--secure"}},
        {{"info"}},
        {{"gix"}},
        {{"display", "HELLO"}},
        {{"menu", "TEA"}, "MNU", Gestures().choose(1)},
        {{"key"}, "GKY", Gestures().press(sim::Key::kEnter)},
        {{"event"}, "CEX", Gestures().swipe(stripe)},
        {{"tables", "load", QUORVEL_TABLES}},
        {{"tables", "version"}},
        {{"card"}, "GCX", Gestures().swipe(stripe)},
        {{"card", "--secure"}, "GCX", Gestures().swipe(stripe)},
        {{"sale", "--amount", "1"}, "GCX", Gestures().insert(card("visa-chip"))},
        {{"pin", "--pan", pan}, "GPN", Gestures().type("1234")},
        {{"pin", "--pan", pan, "--method", "mk-tdes", "--working-key", "@" + folder_.file("key", kWorkingKey)},
         "GPN",
         Gestures().type("1234")},
        {{"media", "put", folder_.file("logo.png", "\x89PNG\r\n\x1A\nimage")}},
        {{"media", "list"}},
        {{"media", "show", "logo"}},
        {{"media", "delete", "logo"}},
        {{"keys"}},
        {{"completion", "bash"}},
        {{"info", "--port", pinPad_.path() + "x"}, "", {}, 3},
    };
    for (const auto& each : cases) {
        const std::string& command = each.arguments.front();
        if (*each.waits != '\0') { pinPad_.when(each.waits, each.gestures); }
        if (command == "sale") {
            pinPad_.when("GOX", Gestures().type("1234"));
            pinPad_.when("RMC", Gestures().remove());
        }
        Arguments arguments = each.arguments;
        arguments.emplace_back("--trace");
        if (GetParam()) { arguments.emplace_back("--json"); }
        const Ended ended = run(arguments);
        EXPECT_EQ(ended.exit, each.exit) << command << ended.err;
        expect_private(ended.out + ended.err);
        EXPECT_FALSE(command == "pin" && holds_block(ended.out + ended.err)) << ended.out << ended.err;
        pinPad_.remove();
    }
}

INSTANTIATE_TEST_SUITE_P(WithAndWithoutJson, PrivacyTest, testing::Bool());

std::string frame(const std::string& packet) { return sim::to_hex(sim::encode({.data = sim::to_bytes(packet)})); }

std::string bytes(const std::string& hex) {
    const sim::Bytes all = sim::from_hex(hex);
    return {all.begin(), all.end()};
}

// An answer with one parameter, whose id is given in hexadecimal.
std::string response(const std::string& id, const std::string& param, const std::string& value) {
    return fmt::format("{}000{:03}{}{:c}{:c}{}", id, 4 + value.size(), bytes(param), 0, value.size(), value);
}

// A PIN pad that masks nothing is no excuse, and neither is a tag or an id that nobody knows.
TEST_P(PrivacyTest, WhatIsDecodedIsAsPrivate) {
    const std::string cases[]{
        response("GCX", "8054", bytes("5A08" + kPan + "5711" + kPan + "D301220100000000FFFF")),
        response("GOX", "8057", bytes(kPan)),
        "XYZ000017" + kPan + " ",
        kPan,
        "GCX000999" + kPan,
    };
    for (const std::string& packet : cases) {
        for (const std::string& hex : {frame(packet), digits_of(packet)}) {
            for (const Arguments& arguments : {Arguments{"decode", hex}, Arguments{"decode", hex, "--json"},
                                               Arguments{"decode", hex, "--from", "host"}}) {
                const Ended ended = run(arguments);
                EXPECT_EQ(ended.exit, 0) << ended.err;
                expect_private(ended.out + ended.err);
            }
        }
        const std::string revealed = run({"decode", digits_of(packet), "--reveal"}).out;
        EXPECT_TRUE(revealed.find(kPan.substr(3)) != std::string::npos
                    || revealed.find(digits_of(kPan)) != std::string::npos)
            << revealed;
    }
}

}  // namespace
