// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/comm/comm.h"

#include <chrono>
#include <cstring>
#include <new>

#include "abecs/comm/crc16.h"
#include "abecs/comm/secure.h"
#include "abecs/comm/transport.h"
#include "abecs/comm/wire.h"
#include "abecs/data/codec.h"
#include "abecs/data/flag.h"
#include "abecs/data/limits.h"
#include "core/attempt.h"
#include "core/check.h"
#include "core/construct.h"
#include "core/raise.h"
#include "core/serial.h"
#include "quorvel/abecs/crc16.h"
#include "quorvel/abecs/line.h"
#include "quorvel/abecs/observer.h"
#include "quorvel/kor/heap.h"
#include "quorvel/kor/string.h"
#include "quorvel/kor/system.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr KorSerialConfig kSerialConfig{
    .readTimeout = kByteWait / std::chrono::milliseconds(100),
    .baudRate = kBaudRate,
    .dataBits = kDataBits,
    .stopBits = KOR_SERIAL_STOP_BITS_ONE,
    .parity = KOR_SERIAL_PARITY_NONE,
    .flowControl = KOR_SERIAL_FLOW_CONTROL_NONE,
};

constexpr const char* kNeverEncrypted = "OPN";

// Whether the link cannot be used now; an error has then been raised.
bool refuse_busy(const AbecsComm* link) {
    if (refuse_null(link, "'pinpad' is NULL")) { return true; }
    if (!is_blocked(link)) { return false; }
    return raise(KOR_RESULT_ILLEGAL_STATE, "Connection is blocked waiting for %s response", link->blkWaitId), true;
}

void connect(AbecsComm* link, const char* portName, bool alone) {
    open_waker(link->waker);
    link->line.serial = kor_serial_open(portName);
    if (alone) {
        link->foreign = true;
        link->claimed = claim(link->line.serial, portName);
        link->foreign = false;
    }
    kor_serial_config(link->line.serial, &kSerialConfig);
    link->lowLatency = set_low_latency(link->line.serial, true);
    purge(link);
    cancel(link);
    link->lastSend = kor_system_current_time_millis();
}

bool closes_session(const char* id) { return kor_string_equals(id, "CLO") || kor_string_equals(id, "CLX"); }

void drop_keys(AbecsComm* link) {
    abecs_comm_set_key(link, nullptr);
    abecs_comm_set_wk_pan(link, nullptr);
}

// Keeps the first error, so that what follows it is still done.
void keep_error(KorException* first, Branch step) {
    attempt(step)
        .on_any([&] {
            if (first->error == KOR_RESULT_OK) { kor_exception_get(first); }
        })
        .run();
}

}  // namespace

AbecsComm* abecs_comm_open(const char* portName) {
    return construct(abecs_comm_close, [=](AbecsComm* link) { connect(link, portName, false); });
}

AbecsComm* abecs_comm_claim(const char* portName) {
    return construct(abecs_comm_close, [=](AbecsComm* link) { connect(link, portName, true); });
}

// The line may have hung up, and then both steps on the port raise. Callers also close while they clean up after an
// error: that one must stay the pending one, whatever is raised in here.
void abecs_comm_close(AbecsComm** pinpad) {
    if (pinpad == nullptr || *pinpad == nullptr) { return; }
    AbecsComm* link = *pinpad;
    *pinpad = nullptr;
    const KorException pending = *kor_exception_get_exception();
    KorException error{};
    if (link->line.serial != nullptr) {
        if (!link->foreign) {
            keep_error(&error, [&] { kor_serial_purge(link->line.serial, KOR_SERIAL_PURGE_BOTH); });
        }
        if (link->lowLatency) { set_low_latency(link->line.serial, false); }
        if (link->claimed) { release(link->line.serial); }
        keep_error(&error, [&] { kor_serial_close(&link->line.serial); });
    }
    close_waker(link->waker);
    explicit_bzero(link, sizeof *link);
    kor_heap_free(link);
    *kor_exception_get_exception() = pending;
    if (pending.error == KOR_RESULT_OK) { kor_exception_throw(error.error, error.message); }
}

void abecs_comm_send_can(AbecsComm* pinpad) {
    if (refuse_null(pinpad, "'pinpad' is NULL")) { return; }
    bool outermost = false;
    attempt([&] {
        outermost = begin_call(pinpad);
        cancel(pinpad);
    }).cleanup([&] {
          end_call(pinpad, outermost);
      }).run();
}

void abecs_comm_send_packet(AbecsComm* pinpad, AbecsPacket* packet) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(packet, "'packet' is NULL")) { return; }
    AbecsPacket* encrypted = nullptr;
    bool outermost = false;
    attempt([&] {
        outermost = begin_call(pinpad);
        char id[kIdWidth + 1] = "";
        abecs_comm_get_cmd_id(packet, id, sizeof id);
        if (pinpad->keySet && !kor_string_equals(id, kNeverEncrypted)) { encrypted = secure_encrypt(pinpad, packet); }
        transmit(pinpad, packet, encrypted);
        if (closes_session(id)) { drop_keys(pinpad); }
    })
        .cleanup([&] {
            end_call(pinpad, outermost);
            abecs_packet_delete(&encrypted);
        })
        .run();
}

AbecsPacket* abecs_comm_read_packet(AbecsComm* pinpad, AbecsPacket* out) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_null(out, "'out' is NULL")) { return nullptr; }
    AbecsPacket* response = nullptr;
    bool outermost = false;
    attempt([&] {
        outermost = begin_call(pinpad);
        const Frame frame = receive(pinpad, out);
        if (frame.encrypted) { secure_decrypt(pinpad, out); }
        const bool clear = !frame.encrypted || pinpad->keySet;
        tell_packet(pinpad->observer, ABECS_LINK_EVENT_RECEIVED, frame, clear ? unread_of(out) : Unread{});
        response = out;
    }).cleanup([&] {
          end_call(pinpad, outermost);
      }).run();
    return response;
}

void abecs_comm_check_busy(const AbecsComm* pinpad) { refuse_busy(pinpad); }

void abecs_comm_lock(AbecsComm* pinpad, const char* cmdId) {
    if (refuse_busy(pinpad)) { return; }
    if (cmdId == nullptr || *cmdId == '\0') { return raise(KOR_RESULT_ILLEGAL_ARGUMENT, "NULL/empty 'cmdId'"); }
    if (refuse_if(std::strlen(cmdId) > kMaxBlkWaitId, "'cmdId' is too long: %s", cmdId)) { return; }
    kor_string_copy(pinpad->blkWaitId, cmdId);
}

void abecs_comm_release(AbecsComm* pinpad) {
    if (refuse_null(pinpad, "'pinpad' is NULL")) { return; }
    pinpad->blkWaitId[0] = '\0';
}

const char* abecs_comm_get_blk_wait_id(const AbecsComm* pinpad) {
    if (refuse_null(pinpad, "'pinpad' is NULL")) { return ""; }
    return pinpad->blkWaitId;
}

// Read by cursors of its own, so that the packet is left as it came, with a bad id, too.
char* abecs_comm_get_cmd_id(AbecsPacket* packet, char* out, size_t sizeOut) {
    if (refuse_null(packet, "'packet' is NULL") || refuse_null(out, "'out' is NULL")) { return nullptr; }
    KorBuffer cursors = *packet->buffer;
    return codec::read_a(&cursors, out, sizeOut, kIdWidth) ? out : nullptr;
}

void abecs_comm_set_send_interval(AbecsComm* pinpad, int64_t interval) {
    if (refuse_null(pinpad, "'pinpad' is NULL")) { return; }
    pinpad->sendInterval = interval;
}

int64_t abecs_comm_get_send_interval(const AbecsComm* pinpad) {
    if (refuse_null(pinpad, "'pinpad' is NULL")) { return 0; }
    return pinpad->sendInterval;
}

void abecs_comm_set_whole_frames(AbecsComm* pinpad, bool whole) {
    if (refuse_null(pinpad, "'pinpad' is NULL")) { return; }
    pinpad->wholeFrames = is_set(whole);
}

bool abecs_comm_get_whole_frames(const AbecsComm* pinpad) {
    return !refuse_null(pinpad, "'pinpad' is NULL") && pinpad->wholeFrames;
}

void abecs_comm_set_poll_time(AbecsComm* pinpad, int32_t milliseconds) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_if(milliseconds < 0, "Invalid poll time: %d", milliseconds)) {
        return;
    }
    pinpad->pollTime = std::chrono::milliseconds(milliseconds);
}

int32_t abecs_comm_get_poll_time(const AbecsComm* pinpad) {
    if (refuse_null(pinpad, "'pinpad' is NULL")) { return 0; }
    return static_cast<int32_t>(pinpad->pollTime.count());
}

void abecs_comm_set_limit(AbecsComm* pinpad, int32_t milliseconds) {
    if (refuse_null(pinpad, "'pinpad' is NULL") || refuse_if(milliseconds < 0, "Invalid limit: %d", milliseconds)
        || !set_blocking(pinpad->line.serial, milliseconds == 0)) {
        return;
    }
    pinpad->limit = milliseconds;
}

int32_t abecs_comm_get_limit(const AbecsComm* pinpad) {
    if (refuse_null(pinpad, "'pinpad' is NULL")) { return 0; }
    return pinpad->limit;
}

bool abecs::begin_call(AbecsComm* link) {
    if (link == nullptr || link->inCall) { return false; }
    link->inCall = true;
    if (link->limit != 0) { link->line.limit = Deadline(std::chrono::milliseconds(link->limit)); }
    return true;
}

void abecs::end_call(AbecsComm* link, bool outermost) {
    if (!outermost) { return; }
    link->inCall = false;
    link->line.limit = Deadline::never();
}

AbecsPacket* abecs::take_packet(AbecsComm* link) { return link != nullptr ? &link->packet : abecs_packet_new(); }

void abecs::give_back(AbecsComm* link, AbecsPacket* packet) {
    if (link == nullptr) { return abecs_packet_delete(&packet); }
    wipe(&link->packet);
}

void abecs_comm_set_observer(AbecsComm* pinpad, AbecsLinkObserverFn observer, void* context) {
    if (refuse_null(pinpad, "'pinpad' is NULL")) { return; }
    pinpad->observer.tell = observer;
    pinpad->observer.context = context;
    begin(pinpad->observer);
}

void abecs_comm_show_clear_packets(AbecsComm* pinpad, bool show) {
    if (refuse_null(pinpad, "'pinpad' is NULL")) { return; }
    pinpad->observer.showsPackets = is_set(show);
}

void abecs_comm_wake(AbecsComm* pinpad) {
    if (pinpad != nullptr) { wake(pinpad->waker); }
}

int abecs_comm_get_fd(const AbecsComm* pinpad) {
    if (refuse_null(pinpad, "'pinpad' is NULL")) { return -1; }
    return pinpad->line.serial->fd;
}

bool abecs_comm_has_input(const AbecsComm* pinpad) {
    return !refuse_null(pinpad, "'pinpad' is NULL") && (has_ahead(pinpad->line) || is_cut(pinpad));
}

void abecs_comm_set_key(AbecsComm* pinpad, const uint8_t* key) {
    if (refuse_null(pinpad, "pinpad is NULL")) { return; }
    pinpad->keySet = key != nullptr;
    if (key == nullptr) { return explicit_bzero(pinpad->key.data(), pinpad->key.size()); }
    std::memcpy(pinpad->key.data(), key, pinpad->key.size());
}

void abecs::copy_pan_key(const AbecsComm* link, AbecsWkPan& out) {
    out.type = link->wkPanType;
    std::memcpy(out.key, link->wkPanKey.data(), sizeof out.key);
}

void abecs::expect_protected_pan(AbecsComm* link) { link->panProtected = true; }

// Without a record it is the session key whose bytes go, while its flag stays: a session that is still open goes on
// under a key of zeros. The PAN key stays in the handle until it is closed.
void abecs_comm_set_wk_pan(AbecsComm* pinpad, const AbecsWkPan* wkPan) {
    if (refuse_null(pinpad, "pinpad is NULL")) { return; }
    pinpad->panProtected = wkPan != nullptr;
    pinpad->panKeyInstalled = wkPan != nullptr;
    if (wkPan == nullptr) { return explicit_bzero(pinpad->key.data(), pinpad->key.size()); }
    pinpad->wkPanType = wkPan->type;
    std::memcpy(pinpad->wkPanKey.data(), wkPan->key, pinpad->wkPanKey.size());
}

uint16_t abecs_comm_crc16(AbecsPacket* packet, const uint8_t* prefix, const uint8_t* suffix) {
    if (refuse_null(packet, "'packet' is NULL")) { return uint16_t{0}; }
    const auto one = [](const uint8_t* byte) { return std::span(byte, byte != nullptr ? 1 : 0); };
    const Unread data = unread_of(packet);
    uint16_t crc = kCrc16.initial;
    for (const std::span<const uint8_t> piece : {one(prefix), data.first, data.second, one(suffix)}) {
        abecs_crc16(piece.data(), piece.size(), &crc);
    }
    return crc;
}
