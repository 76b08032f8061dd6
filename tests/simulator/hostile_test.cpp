// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <set>

#include "simulator/keys/rsa.h"
#include "tests/simulator/fixture.h"
#include "tests/support/mutation.h"

using namespace quorvel::sim;

namespace {

using support::Dice;
using support::encrypted_frame;
using support::mutated;

// One of each command, good at some time or other.
const std::vector<std::string> kRequests{
    "OPN",
    kOpenSession,
    "GIN00200",
    "GIX006" + "0001 0002 8001"_hex,
    "CLO032" + padded("GOOD BYE", 32),
    "CLX012" + "001E 0008"_hex + "LOGO    ",
    "DSP032" + padded("IDLE", 32),
    "DEX163160" + padded("A\r\xC9", 160),
    "GKY",
    "RMC032" + padded("TAKE YOUR CARD", 32),
    "CKE0041111",
    "CEX018" + "0006 0006"_hex + "112100" + "0023 0004"_hex + "0203",
    "GCD016" + "000B 0002 0007 000D 0001 00 000E 0001 04"_hex,
    "MNU056" + "0020 0018"_hex + padded("TEA", 24) + "0020 0018"_hex + padded("MATE", 24),
    "GPN09330030303030303030303030303030303030134012345678909      1" + padded("0412PIN", 36),
    "GCR0400001000000001234240229235958          00",
    "GOC086000000001234000000000100010300" + std::string(32, '0') + "1" + std::string(22, '0') + "00500195003000",
    "FNC0100000000000003000",
    "GCX020" + "0015 0006"_hex + "240229" + "0016 0006"_hex + "235958",
    "GOX026" + "0010 0002"_hex + "03" + "0002 0001"_hex + "3" + "0009 0002"_hex + "00" + "0018 0005"_hex + "10000",
    "FCX014" + "0019 0004"_hex + "0000" + "001C 0002"_hex + "00",
    "GED005" + "0004 0001 82"_hex,
    "CNG007059F7C020102",
    "GTK008" + "0007 0004"_hex + "1110",
    "TLI01203V1        ",
    "TLR0210201110301xyz008203A ",
    "TLE",
    "GTS00203",
    "MLI026" + "001E 0008"_hex + "LOGO    " + "001F 000A 00000005 546C 03 000000"_hex,
    "MLR009" + "000F 0005"_hex + "12345",
    "MLE",
    "LMF",
    "DMF012" + "001E 0008"_hex + "LOGO    ",
    "DSI012" + "001E 0008"_hex + "LOGO    ",
    "GDU003300",
    "DWK0361000F9DD498AF884A97FA20E328C39686F3E",
    "ENB0510003030303030303030B4CC3FD9D8D952144111111111111111",
    "EBX032" + "000F 0010 00112233445566778899AABBCCDDEEFF 0003 0002"_hex + "50" + "0009 0002"_hex + "00",
    "CHP00501000",
    "GEN0100300503300",
};

// What the cardholder may do, whatever is asked: often what is wanted of him.
Gestures some_gestures(Dice& dice) {
    Gestures gestures;
    if (dice.one_in(2)) { return dice.one_in(2) ? inserted("visa-chip") : Gestures().type("1234"); }
    static const std::vector<std::string> kCards = Cards::standard().names();
    for (size_t i = dice.below(4); i > 0; --i) {
        const Card& any = Cards::standard().at(dice.among(kCards));
        switch (dice.below(6)) {
            case 0:
                gestures.swipe(any);
                break;
            case 1:
                gestures.insert(any);
                break;
            case 2:
                gestures.tap(any);
                break;
            case 3:
                gestures.remove();
                break;
            case 4:
                gestures.type("12345");
                break;
            default:
                gestures.press(dice.among(std::vector{Key::kEnter, Key::kDown, Key::kF1, Key::kClear, Key::kCancel}));
        }
    }
    return gestures;
}

// The packets of the frames in what was said, in which there is nothing else but good frames, and ACK before the first
// one where it is due; none where that is not so.
class Answers {
public:
    explicit Answers(const SecureChannel& channel) : channel_(channel) {}

    std::optional<std::vector<std::string>> in(std::string_view said) const {
        std::vector<std::string> packets;
        while (!said.empty()) {
            const size_t end = said.find('\x17');
            if (end == std::string_view::npos || end + 3 > said.size()) { return std::nullopt; }
            const auto packet = packet_in(said.substr(0, end + 3));
            if (!packet) { return std::nullopt; }
            packets.push_back(*packet);
            said.remove_prefix(end + 3);
        }
        return packets;
    }

private:
    std::optional<std::string> packet_in(std::string_view wire) const {
        const bool sealed = wire.starts_with("\x16\x12");
        std::string content;
        for (size_t i = sealed ? 2 : 1; i < wire.size() - 3; ++i) {
            content += wire[i] == '\x13' ? static_cast<char>(wire[++i] - 0x20) : wire[i];
        }
        if (wire != (sealed ? encrypted_frame(content) : frame(content))) { return std::nullopt; }
        if (!sealed) { return content; }
        const Bytes packet = channel_.unseal(Bytes(content.begin(), content.end()));
        return std::string(packet.begin(), packet.end());
    }

    const SecureChannel& channel_;
};

TEST(HostileTest, AnswersEveryFrameAndGoesOn) {
    Dice dice(20260101);
    BareEngine engine;
    SecureChannel channel(kSessionKey);
    static_cast<void>(channel.open({.modulus = Bytes(256, 0xFF), .exponent = {1, 0, 1}}));
    const Answers answers(channel);
    std::set<std::string> carriedOut;
    const auto take = [&](const std::string& said, const std::string& id) {
        const auto packets = answers.in(said);
        ASSERT_TRUE(packets) << support::to_hex(said);
        for (const std::string& packet : *packets) {
            ASSERT_TRUE(packet.starts_with(id) || packet.starts_with("ERR") || packet.starts_with("NTM000")) << packet;
            if (packet.starts_with(id + "000")) { carriedOut.insert(id); }
        }
    };
    size_t next = 0;
    for (int i = 0; i < 30000 && !HasFailure(); ++i) {
        SCOPED_TRACE(i);
        // Most often in their order, as some need what others have done.
        next = (dice.one_in(4) ? dice.below(kRequests.size()) : next + 1) % kRequests.size();
        std::string packet = kRequests[next];
        for (size_t changes = dice.one_in(2) ? 0 : dice.below(4); changes > 0; --changes) {
            packet = mutated(packet, dice);
        }
        const bool sealed = engine.encrypted() && !packet.starts_with("OPN") && !dice.one_in(8);
        std::string content = packet;
        if (sealed) {
            const Bytes cryptogram = channel.seal(Bytes(packet.begin(), packet.end()));
            content.assign(cryptogram.begin(), cryptogram.end());
            if (dice.one_in(8)) { content = mutated(content, dice); }
        }
        const std::string wire = sealed ? encrypted_frame(content) : frame(content);
        switch (dice.below(8)) {
            case 0: {
                // The end of a good frame may be left, so that anything may be said, but never for ever.
                std::string bad = mutated(wire, dice);
                if (dice.one_in(2)) { bad = dice.bytes(dice.below(40)); }
                engine.hear(bad);
                engine.pause();
                break;
            }
            case 1:
                EXPECT_EQ(engine.hear(frame(content, static_cast<uint16_t>(dice.below(0x10000)))), kNak);
                break;
            case 2:
                engine.hear(wire.substr(0, 1 + dice.below(wire.size() - 1)));
                EXPECT_EQ(engine.pause(), kNak);
                break;
            default: {
                const std::string said = engine.hear(wire);
                ASSERT_TRUE(said.starts_with(kAck)) << support::to_hex(said);
                const std::string id = packet.substr(0, 3);
                take(said.substr(1), id);
                while (dice.one_in(2)) { take(engine.act(some_gestures(dice)), id); }
                if (dice.one_in(2)) { take(engine.expire(), id); }
            }
        }
        if (dice.one_in(8)) {
            const std::string said = engine.hear(kCan);
            EXPECT_EQ(said.substr(said.size() - 1), kEot);
        }
    }
    EXPECT_EQ(engine.failures(), "");
    std::set<std::string> all;
    for (const std::string& request : kRequests) { all.insert(request.substr(0, 3)); }
    EXPECT_EQ(carriedOut, all) << "all of it was reached";
    EXPECT_EQ(engine.hear(kCan), kEot);
    EXPECT_EQ(engine.hear(kOpn), kAck + kOpnDone);
}

}  // namespace
