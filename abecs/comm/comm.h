// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_COMM_COMM_H
#define QUORVEL_ABECS_COMM_COMM_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "abecs/comm/frame.h"
#include "abecs/comm/line.h"
#include "abecs/comm/observer.h"
#include "abecs/comm/wire.h"
#include "abecs/data/packet.h"
#include "quorvel/abecs/comm.h"
#include "quorvel/abecs/wk_pan.h"

namespace abecs {

inline constexpr size_t kSessionKeySize = 16;  // AES-128
inline constexpr size_t kMaxBlkWaitId = 12;

// How far the answer that is being read has come.
enum class Stage : uint8_t {
    kFirst,   // its first byte is waited for
    kRest,    // the bytes after SYN
    kRepeat,  // it came damaged, and is to be asked for again
    kGiveUp,  // it did each time
};

// The reading of an answer, which goes on in the next call where the limit has ended one.
struct Reception {
    bool cut = false;
    Stage stage = Stage::kFirst;
    int failures = 0;
    FrameDecoder decoder;
    size_t frameSize = 0;
    kor::Deadline byteEnd = kor::Deadline::never();
    kor::Deadline frameEnd = kor::Deadline::never();
    size_t length = 0;  // of the data so far
    std::array<uint8_t, kPacketCapacity> data{};
};

// The same of a purge.
struct Purge {
    bool cut = false;
    kor::Deadline silence = kor::Deadline::never();
    kor::Deadline end = kor::Deadline::never();
};

}  // namespace abecs

struct AbecsComm {
    abecs::Line line;
    kor::Waker waker;
    bool claimed;  // the port is taken for this link alone
    bool foreign;  // the port is somebody else's until it is claimed: nothing may be discarded
    std::array<uint8_t, abecs::kSessionKeySize> key;
    bool keySet;
    AbecsWkPanType_E wkPanType;
    std::array<uint8_t, sizeof(AbecsWkPan::key)> wkPanKey;
    bool panProtected;     // card responses come in the layout of protected mode
    bool panKeyInstalled;  // and their card data is deciphered with wkPanKey
    char blkWaitId[abecs::kMaxBlkWaitId + 1];
    int64_t sendInterval;
    int64_t lastSend;
    bool wholeFrames;
    bool lowLatency;  // the driver was told, and is to be told otherwise
    int32_t limit;    // of a call, in milliseconds, or 0
    bool inCall;
    bool owesEot;  // the limit has ended a CAN, which may still be confirmed
    abecs::Reception reception;
    abecs::Purge purge;
    abecs::Observer observer;
    std::chrono::milliseconds pollTime{abecs::kPollTime};
    AbecsPacket packet;  // of the command that goes on; wiped between two of them
};

namespace abecs {

// The time that a call may take begins with the outermost function that uses the line, and ends with it. What is
// returned goes to `end_call`. A null link is ignored.
[[nodiscard]] bool begin_call(AbecsComm* link);
void end_call(AbecsComm* link, bool outermost);

// An empty packet for one command at a time, and the way back for it: the link's own or, without a link, one that is
// made and deleted.
[[nodiscard]] AbecsPacket* take_packet(AbecsComm* link);
void give_back(AbecsComm* link, AbecsPacket* packet);

// Whether the reading of an answer was ended in its middle.
[[nodiscard]] inline bool is_cut(const AbecsComm* link) {
    return link->reception.cut && link->reception.stage != Stage::kFirst;
}

[[nodiscard]] inline bool is_blocked(const AbecsComm* link) { return link->blkWaitId[0] != '\0'; }

// Whether card responses come in the layout of protected mode, and whether their card data can be deciphered too.
[[nodiscard]] inline bool is_pan_protected(const AbecsComm* link) { return link->panProtected; }
[[nodiscard]] inline bool has_pan_key(const AbecsComm* link) { return link->panKeyInstalled; }

// A copy of the PAN working key, to be wiped; only of a link that has one.
void copy_pan_key(const AbecsComm* link, AbecsWkPan& out);

// For an application that deciphers by itself: the layout of protected mode, without a key.
void expect_protected_pan(AbecsComm* link);

}  // namespace abecs

#endif
