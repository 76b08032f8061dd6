// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/comm/transport.h"

#include <algorithm>
#include <chrono>

#include "abecs/comm/comm.h"
#include "abecs/comm/frame.h"
#include "abecs/data/packet.h"
#include "core/deadline.h"
#include "core/raise.h"
#include "core/serial.h"
#include "quorvel/kor/string.h"
#include "quorvel/kor/system.h"

using namespace kor;

namespace abecs {

namespace {

using Event = FrameDecoder::Event;

// Raises when nothing came in time.
uint8_t read_answer(const KorSerial* serial, std::chrono::milliseconds wait) {
    uint8_t answer = 0;
    if (!read_byte(serial, Deadline(wait), &answer)) { raise(KOR_RESULT_TIMEOUT_ERROR, "Timeout waiting for data"); }
    return answer;
}

// A clock that was set back must not make the wait longer than the interval.
void pace(const AbecsComm* link) {
    const int64_t elapsed = std::max<int64_t>(kor_system_current_time_millis() - link->lastSend, 0);
    if (elapsed < link->sendInterval) { sleep_out(std::chrono::milliseconds(link->sendInterval - elapsed)); }
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
        const uint8_t answer = read_answer(serial, kByteWait);
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

// A full packet refuses the next byte. The rest of such a response goes first, or it would be taken for the answers to
// the commands that follow.
void append(AbecsComm* link, AbecsPacket* out, uint8_t byte) {
    if (kor_buffer_available_write(out->buffer) == 0) { purge(link); }
    abecs_packet_write_byte(out, byte);
}

// Reads what follows SYN. False when the frame is damaged, stops arriving or does not come to its end.
bool read_rest(AbecsComm* link, FrameDecoder& decoder, AbecsPacket* out) {
    const Deadline end(kFrameLimit);
    for (uint8_t byte = 0; read_byte(link->serial, std::min(Deadline(kByteWait), end), &byte);) {
        const Event event = decoder.feed(byte);
        if (event == Event::kData) { append(link, out, decoder.data()); }
        if (event == Event::kGood || event == Event::kBad) { return event == Event::kGood; }
    }
    return false;
}

}  // namespace

// The pauses keep a line that is never silent from costing more than a few looks at it.
void purge(AbecsComm* link) {
    const Deadline limit(kPurgeLimit);
    while (!limit.passed() && wait_for_input(link->serial, std::min(Deadline(kPurgeSilence), limit))) {
        sleep_out(kPurgePause);
        kor_serial_purge(link->serial, KOR_SERIAL_PURGE_INPUT);
    }
    kor_serial_purge(link->serial, KOR_SERIAL_PURGE_BOTH);
}

void cancel(AbecsComm* link) {
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        kor_serial_write_byte(link->serial, kCan);
        uint8_t answer = 0;
        if (!read_byte(link->serial, Deadline(kByteWait), &answer)) { continue; }
        if (answer == kEot) { return abecs_comm_release(link); }
        purge(link);
    }
    raise(KOR_RESULT_IO_ERROR, "Communication error while sending CAN");
}

void transmit(AbecsComm* link, AbecsPacket* plain, AbecsPacket* encrypted) {
    pace(link);
    abecs_comm_check_busy(link);
    const bool closing = closes_session(plain);  // told apart now: sending consumes the packet
    write_until_accepted(link->serial, encrypted != nullptr ? encrypted : plain, encrypted != nullptr);
    link->lastSend = kor_system_current_time_millis();
    if (!closing) { return; }
    abecs_comm_set_key(link, nullptr);
    abecs_comm_set_wk_pan(link, nullptr);
}

bool receive(AbecsComm* link, AbecsPacket* out) {
    const std::chrono::milliseconds firstWait = is_blocked(link) ? kPolledResponseWait : kResponseWait;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        FrameDecoder decoder;
        abecs_packet_clear(out);
        const uint8_t first = read_answer(link->serial, firstWait);
        if (decoder.feed(first) == Event::kNotSyn) {
            return raise(KOR_RESULT_PROTOCOL_ERROR, "Protocol error (expected SYN, read 0x%hhx)", first), false;
        }
        if (read_rest(link, decoder, out)) { return decoder.encrypted(); }
        purge(link);
        kor_serial_write_byte(link->serial, kNak);
    }
    purge(link);
    return raise(KOR_RESULT_TIMEOUT_ERROR, "No response in %d attempts", kAttempts), false;
}

}  // namespace abecs
