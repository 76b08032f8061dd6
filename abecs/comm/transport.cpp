// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/comm/transport.h"

#include <algorithm>

#include "abecs/comm/comm.h"
#include "abecs/comm/frame.h"
#include "core/raise.h"
#include "quorvel/kor/string.h"
#include "quorvel/kor/system.h"
#include "quorvel/kor/thread.h"

using kor::raise;

namespace abecs {

namespace {

using Event = FrameDecoder::Event;

// False when nothing came in time. Nothing else in here has to catch a time-out, so a purge leaves a pending error
// alone.
bool read_in_time(KorSerial* serial, uint8_t* byte) { return kor_serial_read(serial, byte, 1) == 1; }

// A clock that was set back must not make the wait longer than the interval.
void pace(const AbecsComm* link) {
    const int64_t elapsed = std::max<int64_t>(kor_system_current_time_millis() - link->lastSend, 0);
    if (elapsed < link->sendInterval) { kor_thread_sleep(static_cast<uint64_t>(link->sendInterval - elapsed)); }
}

// One byte a write, and the port drains after each, so that no PIN pad's input is outrun.
void write_each(KorSerial* serial, FrameEncoder::Wire wire) {
    for (const uint8_t byte : wire) { kor_serial_write_byte(serial, byte); }
}

void write_frame(KorSerial* serial, AbecsPacket* packet, bool encrypted) {
    FrameEncoder encoder;
    write_each(serial, encoder.begin(encrypted));
    for (size_t left = abecs_packet_available_read(packet); left != 0; --left) {
        write_each(serial, encoder.data(abecs_packet_read_byte(packet)));
    }
    write_each(serial, encoder.end());
}

void write_until_accepted(KorSerial* serial, AbecsPacket* packet, bool encrypted) {
    KorBufferState start;
    abecs_packet_save_state(packet, &start);
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        write_frame(serial, packet, encrypted);
        const uint8_t answer = kor_serial_read_byte(serial);
        if (answer == kAck) { return; }
        if (answer != kNak) {
            return raise(KOR_RESULT_PROTOCOL_ERROR, "Protocol error (unknown packet response: 0x%hhx)", answer);
        }
        abecs_packet_set_state(packet, &start);
    }
    raise(KOR_RESULT_PROTOCOL_ERROR, "Packet was rejected");
}

bool closes_session(AbecsPacket* packet) {
    char id[4] = "";
    abecs_comm_get_cmd_id(packet, id, sizeof id);
    return kor_string_equals(id, "CLO") || kor_string_equals(id, "CLX");
}

// Reads what follows SYN. False when the frame is damaged or stops arriving.
bool read_rest(KorSerial* serial, FrameDecoder& decoder, AbecsPacket* out) {
    kor_serial_set_read_timeout(serial, kByteWait);
    for (uint8_t byte = 0; read_in_time(serial, &byte);) {
        const Event event = decoder.feed(byte);
        if (event == Event::kData) { abecs_packet_write_byte(out, decoder.data()); }
        if (event == Event::kGood || event == Event::kBad) { return event == Event::kGood; }
    }
    return false;
}

}  // namespace

void purge(AbecsComm* link) {
    kor_serial_set_read_timeout(link->serial, kPurgeWait);
    uint8_t discarded = 0;
    while (read_in_time(link->serial, &discarded)) {}
    kor_serial_purge(link->serial, KOR_SERIAL_PURGE_BOTH);
}

void cancel(AbecsComm* link) {
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        kor_serial_set_read_timeout(link->serial, kByteWait);
        kor_serial_write_byte(link->serial, kCan);
        uint8_t answer = 0;
        if (!read_in_time(link->serial, &answer)) { continue; }
        if (answer == kEot) { return abecs_comm_release(link); }
        purge(link);
    }
    raise(KOR_RESULT_IO_ERROR, "Communication error while sending CAN");
}

void transmit(AbecsComm* link, AbecsPacket* plain, AbecsPacket* encrypted) {
    pace(link);
    abecs_comm_check_busy(link);
    kor_serial_set_read_timeout(link->serial, kByteWait);
    const bool closing = closes_session(plain);  // told apart now: sending consumes the packet
    write_until_accepted(link->serial, encrypted != nullptr ? encrypted : plain, encrypted != nullptr);
    link->lastSend = kor_system_current_time_millis();
    if (!closing) { return; }
    abecs_comm_set_key(link, nullptr);
    abecs_comm_set_wk_pan(link, nullptr);
}

bool receive(AbecsComm* link, AbecsPacket* out) {
    const uint8_t firstWait = is_blocked(link) ? kPolledResponseWait : kResponseWait;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        FrameDecoder decoder;
        abecs_packet_clear(out);
        kor_serial_set_read_timeout(link->serial, firstWait);
        const uint8_t first = kor_serial_read_byte(link->serial);
        if (decoder.feed(first) == Event::kNotSyn) {
            return raise(KOR_RESULT_PROTOCOL_ERROR, "Protocol error (expected SYN, read 0x%hhx)", first), false;
        }
        if (read_rest(link->serial, decoder, out)) { return decoder.encrypted(); }
        purge(link);
        kor_serial_write_byte(link->serial, kNak);
    }
    purge(link);
    return raise(KOR_RESULT_TIMEOUT_ERROR, "No response in %d attempts", kAttempts), false;
}

}  // namespace abecs
