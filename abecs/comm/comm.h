// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_COMM_COMM_H
#define QUORVEL_ABECS_COMM_COMM_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "abecs/comm/line.h"
#include "abecs/comm/observer.h"
#include "abecs/comm/wire.h"
#include "quorvel/abecs/comm.h"
#include "quorvel/abecs/wk_pan.h"

namespace abecs {

inline constexpr size_t kSessionKeySize = 16;  // AES-128
inline constexpr size_t kMaxBlkWaitId = 12;

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
    bool owesNak;  // an answer was cut short by the limit and has to be asked for again
    abecs::Observer observer;
    std::chrono::milliseconds pollTime{abecs::kPollTime};
};

namespace abecs {

// The time that a call may take begins with the outermost function that uses the line, and ends with it. What is
// returned goes to `end_call`. A null link is ignored.
[[nodiscard]] bool begin_call(AbecsComm* link);
void end_call(AbecsComm* link, bool outermost);

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
