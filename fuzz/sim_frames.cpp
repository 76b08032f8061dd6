// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>

#include "fuzz/harness.h"
#include "simulator/cards/cards.h"
#include "simulator/keys/secure_channel.h"
#include "tests/simulator/bare_engine.h"
#include "wire/frame.h"

using namespace quorvel::sim;
using quorvel::fuzz::require;

namespace {

// What an input is made of: four bits that tell what comes, twelve that tell how many bytes of it.
enum class Step { kPlain, kSealed, kBytes, kGestures, kTimeOut, kFault, kDamaged, kOpenSession };
constexpr size_t kSteps = 8;

void add_gesture(Gestures& gestures, uint8_t byte) {
    static const std::vector<std::string> kCards = Cards::standard().names();
    static constexpr std::array kOther{Key::kEnter, Key::kUp, Key::kDown,  Key::kF1,    Key::kF2,
                                       Key::kF3,    Key::kF4, Key::kClear, Key::kCancel};
    const Card& card = Cards::standard().at(kCards[(byte & 0x3F) % kCards.size()]);
    const auto key = static_cast<Key>(byte);
    switch (byte >> 6) {
        case 0:
            if (is_digit(key) || std::ranges::find(kOther, key) != kOther.end()) {
                gestures.press(key);
            } else if (byte == '?') {
                gestures.remove();
            } else {
                gestures.notify("NOTICE");
            }
            break;
        case 1:
            gestures.swipe(card);
            break;
        case 2:
            gestures.insert(card);
            break;
        default:
            gestures.tap(card);
    }
}

// Its kind, the status and how often.
void inject(BareEngine& engine, ByteView bytes) {
    const auto at = [&](size_t i) -> unsigned { return i < bytes.size() ? bytes[i] : 1; };
    Fault fault{.kind = std::string(fault_kinds()[at(0) % fault_kinds().size()].name), .times = at(1) % 4 + 1};
    const auto detail = find_fault_kind(fault.kind)->detail;
    if (detail == FaultKind::Detail::kStatus) { fault.status = static_cast<int>(at(2)); }
    if (detail == FaultKind::Detail::kTime) { fault.time = std::chrono::milliseconds(at(2) + 1); }
    engine.inject(fault);
}

std::string framed(Bytes data, bool encrypted) {
    const Bytes wire = encode({.encrypted = encrypted, .data = std::move(data)});
    return {wire.begin(), wire.end()};
}

// One in which a host and a PIN pad are at the same time.
const SecureChannel& session() {
    static const SecureChannel& channel = []() -> const SecureChannel& {
        static SecureChannel opened(kSessionKey);
        Random random;
        static_cast<void>(opened.open({.modulus = Bytes(256, 0xFF), .exponent = {1, 0, 1}}, random));
        return opened;
    }();
    return channel;
}

std::string take(BareEngine& engine, Step step, ByteView bytes) {
    const Bytes packet(bytes.begin(), bytes.end());
    switch (step) {
        case Step::kPlain:
            return engine.hear(framed(packet, false));
        case Step::kSealed:
            return engine.hear(framed(session().seal(packet), true));
        case Step::kBytes: {
            const std::string said = engine.hear(std::string(packet.begin(), packet.end()));
            return said + engine.pause();
        }
        case Step::kGestures: {
            Gestures gestures;
            for (const uint8_t byte : packet) { add_gesture(gestures, byte); }
            return engine.act(gestures);
        }
        case Step::kTimeOut:
            return engine.expire();
        case Step::kFault:
            inject(engine, packet);
            return {};
        case Step::kDamaged: {
            std::string wire = framed(packet, true);
            wire.back() = static_cast<char>(~wire.back());
            return engine.hear(wire);
        }
        default:
            return engine.hear(framed(to_bytes("OPN5230256" + std::string(512, 'F') + "3010001"), false));
    }
}

// Whether it is nothing but control bytes and good frames.
bool is_said_well(std::string_view said) {
    FrameDecoder decoder;
    for (const char byte : said) {
        const auto reception = decoder.feed(static_cast<uint8_t>(byte));
        const bool good =
            !reception || reception->kind == Reception::Kind::kFrame || reception->kind == Reception::Kind::kByte;
        if (!good) { return false; }
    }
    return !decoder.in_frame();
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    BareEngine engine;
    bool faulty = false;
    for (ByteView rest(data, size); rest.size() >= 2;) {
        const auto step = static_cast<Step>((rest[0] >> 4) % kSteps);
        const size_t length = std::min<size_t>((rest[0] & 0x0FU) << 8 | rest[1], rest.size() - 2);
        faulty = faulty || step == Step::kFault;
        const std::string said = take(engine, step, rest.subspan(2, length));
        require(faulty || is_said_well(said), "what is said are control bytes and good frames");
        rest = rest.subspan(2 + length);
    }
    require(engine.failures().empty(), "nothing is the PIN pad's own failure");
    engine.clear_faults();
    require(engine.hear("\x18").ends_with('\x04'), "CAN is answered with EOT");
    require(faulty || engine.hear("\x16OPN\x17\xA8\xA9") == "\x06\x16OPN000\x17\x77\x5E",
            "a good command is carried out");
    return 0;
}
