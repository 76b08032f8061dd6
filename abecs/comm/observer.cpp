// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/comm/observer.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "abecs/data/limits.h"
#include "core/deadline.h"
#include "quorvel/abecs/rsp_stat.h"

namespace abecs {

namespace {

constexpr int32_t kNoStatus = -1;

char byte_at(Unread packet, size_t place) {
    const std::span piece = place < packet.first.size() ? packet.first : packet.second;
    return static_cast<char>(piece[place < packet.first.size() ? place : place - packet.first.size()]);
}

size_t size_of(Unread packet) { return packet.first.size() + packet.second.size(); }

int32_t status_of(Unread packet) {
    if (size_of(packet) < kIdWidth + kStatWidth) { return kNoStatus; }
    int32_t status = 0;
    for (size_t i = kIdWidth; i < kIdWidth + kStatWidth; ++i) {
        const char digit = byte_at(packet, i);
        if (digit < '0' || digit > '9') { return kNoStatus; }
        status = 10 * status + (digit - '0');
    }
    return status;
}

// A PIN pad may send anything for an id, and a log is no place for it.
void copy_id(Unread packet, char* id) {
    for (size_t i = 0; i < std::min(kIdWidth, size_of(packet)); ++i) {
        const char c = byte_at(packet, i);
        id[i] = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') ? c : '?';
    }
}

// Fills in how long it took, and what comes next begins.
void hand_over(Observer& observer, AbecsLinkEvent& event) {
    const std::chrono::nanoseconds begun = observer.begun;
    begin(observer);
    event.duration = std::chrono::floor<std::chrono::microseconds>(observer.begun - begun).count();
    observer.tell(&event, observer.context);
}

// In one piece, which a packet that goes round its end is not.
void hand_over_with(Observer& observer, AbecsLinkEvent& event, Unread packet) {
    std::array<uint8_t, kPacketCapacity> whole;
    std::copy(packet.first.begin(), packet.first.end(), whole.begin());
    std::copy(packet.second.begin(), packet.second.end(), whole.data() + packet.first.size());
    event.packet = whole.data();
    hand_over(observer, event);
    explicit_bzero(whole.data(), size_of(packet));
}

}  // namespace

void begin(Observer& observer) {
    if (observer.tell != nullptr) { observer.begun = kor::monotonic_now(); }
}

void name_request(Observer& observer, Unread packet) {
    std::memset(observer.lastId, 0, sizeof observer.lastId);
    copy_id(packet, observer.lastId);
}

void tell_packet(Observer& observer, AbecsLinkEvent_E type, Frame frame, Unread packet) {
    if (observer.tell == nullptr) { return; }
    AbecsLinkEvent event{};
    event.type = type;
    copy_id(packet, event.cmdId);
    event.status = type == ABECS_LINK_EVENT_RECEIVED ? status_of(packet) : kNoStatus;
    event.encrypted = frame.encrypted;
    event.packetSize = size_of(packet);
    event.frameSize = frame.size;
    if (observer.showsPackets) { return hand_over_with(observer, event, packet); }
    hand_over(observer, event);
}

void tell(Observer& observer, AbecsLinkEvent_E type, Frame frame) {
    if (observer.tell == nullptr) { return; }
    AbecsLinkEvent event{};
    event.type = type;
    std::memcpy(event.cmdId, observer.lastId, sizeof event.cmdId);
    event.status = kNoStatus;
    event.encrypted = frame.encrypted;
    event.frameSize = frame.size;
    hand_over(observer, event);
}

}  // namespace abecs
