// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_COMM_OBSERVER_PRIVATE_H
#define QUORVEL_ABECS_COMM_OBSERVER_PRIVATE_H

#include <chrono>
#include <cstddef>

#include "abecs/data/packet.h"
#include "quorvel/abecs/observer.h"

namespace abecs {

// Who is told what a link does, and what is needed to tell it.
struct Observer {
    AbecsLinkObserverFn tell = nullptr;
    void* context = nullptr;
    bool showsPackets = false;
    char lastId[4] = "";               // of the last request
    std::chrono::nanoseconds begun{};  // when what is told next began
};

// What begins now is told next.
void begin(Observer& observer);

struct Frame {
    bool encrypted = false;
    size_t size = 0;  // on the line
};

// The request that is told of from now on.
void name_request(Observer& observer, Unread packet);

// A request that was accepted, or a response: the unread bytes of its packet in clear.
void tell_packet(Observer& observer, AbecsLinkEvent_E type, Frame frame, Unread packet);

// What has no packet.
void tell(Observer& observer, AbecsLinkEvent_E type, Frame frame = {});

}  // namespace abecs

#endif
