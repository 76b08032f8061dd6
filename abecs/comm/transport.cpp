// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/comm/transport.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <span>

#include "abecs/comm/comm.h"
#include "abecs/comm/frame.h"
#include "abecs/data/packet.h"
#include "core/attempt.h"
#include "core/deadline.h"
#include "core/raise.h"
#include "core/serial.h"
#include "quorvel/kor/string.h"
#include "quorvel/kor/system.h"

using namespace kor;

namespace abecs {

namespace {

using Event = FrameDecoder::Event;

// SYN, DC2, every byte of a packet escaped, ETB and the CRC.
constexpr size_t kMaxFrame = 2 + 2 * kPacketCapacity + 3;

// Raises when nothing came in time.
uint8_t read_answer(Line& line, std::chrono::milliseconds wait) {
    uint8_t answer = 0;
    if (!read_byte(line, wait, nullptr, &answer)) { raise(KOR_RESULT_TIMEOUT_ERROR, "Timeout waiting for data"); }
    return answer;
}

// The same while the link is blocked: as long as the caller says, and no longer than until somebody wakes the link.
uint8_t await_response(AbecsComm* link) {
    uint8_t first = 0;
    if (await_byte(link->line, link->pollTime, link->waker, &first)) { return first; }
    raise(KOR_RESULT_TIMEOUT_ERROR, link->waker.woke ? "The wait was ended" : "Timeout waiting for data");
    return 0;
}

// A clock that was set back must not make the wait longer than the interval.
void pace(const AbecsComm* link) {
    const int64_t elapsed = std::max<int64_t>(kor_system_current_time_millis() - link->lastSend, 0);
    if (elapsed < link->sendInterval) { sleep_out(std::chrono::milliseconds(link->sendInterval - elapsed)); }
}

// How a frame goes out.
enum class Pace : uint8_t {
    kWhole,    // in one write
    kFlowing,  // one byte a write
    kStepped,  // the same, waiting until each has left, for a PIN pad that was outrun
};

// Makes the frame and hands it out in small pieces.
template <typename Put>
void encode(const AbecsPacket* packet, bool encrypted, Put&& put) {
    const Unread data = unread_of(packet);
    FrameEncoder encoder;
    put(encoder.begin(encrypted));
    for (const std::span<const uint8_t> piece : {data.first, data.second}) {
        for (const uint8_t byte : piece) { put(encoder.data(byte)); }
    }
    put(encoder.end());
}

// As soon as something is written the packet is consumed. Nothing of what it held stays behind.
void write_whole(const KorSerial* serial, AbecsPacket* packet, bool encrypted) {
    std::array<uint8_t, kMaxFrame> frame;
    size_t size = 0;
    encode(packet, encrypted, [&](FrameEncoder::Wire wire) {
        std::memcpy(frame.data() + size, wire.data(), wire.size());
        size += wire.size();
    });
    attempt([&] {
        enqueue(serial, {frame.data(), size});
        consume(packet);
    }).cleanup([&] {
          explicit_bzero(frame.data(), size);
      }).run();
}

void write_bytes(const KorSerial* serial, Pace pace, AbecsPacket* packet, bool encrypted) {
    encode(packet, encrypted, [=](FrameEncoder::Wire wire) {
        for (const uint8_t& byte : wire) {
            enqueue(serial, {&byte, 1});
            consume(packet);
            if (pace == Pace::kStepped) { drain(serial); }
        }
    });
}

// When it returns the frame has left, and the wait for its acknowledgement begins.
void write_frame(const KorSerial* serial, Pace pace, AbecsPacket* packet, bool encrypted) {
    if (pace == Pace::kWhole) {
        write_whole(serial, packet, encrypted);
    } else {
        write_bytes(serial, pace, packet, encrypted);
    }
    drain(serial);
}

void write_until_accepted(AbecsComm* link, AbecsPacket* packet, bool encrypted) {
    Line& line = link->line;
    const Pace first = link->wholeFrames ? Pace::kWhole : Pace::kFlowing;
    KorBufferState start;
    abecs_packet_save_state(packet, &start);
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        write_frame(line.serial, attempt == 0 ? first : Pace::kStepped, packet, encrypted);
        const uint8_t answer = read_answer(line, kByteWait);
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
    for (uint8_t byte = 0; read_byte(link->line, kByteWait, &end, &byte);) {
        const Event event = decoder.feed(byte);
        if (event == Event::kData) { append(link, out, decoder.data()); }
        if (event == Event::kGood || event == Event::kBad) { return event == Event::kGood; }
    }
    return false;
}

}  // namespace

// The pauses keep a line that is never silent from costing more than a few looks at it.
void purge(AbecsComm* link) {
    discard_ahead(link->line);
    const Deadline limit(kPurgeLimit);
    while (!limit.passed() && wait_for_input(link->line.serial, std::min(Deadline(kPurgeSilence), limit))) {
        sleep_out(kPurgePause);
        kor_serial_purge(link->line.serial, KOR_SERIAL_PURGE_INPUT);
    }
    kor_serial_purge(link->line.serial, KOR_SERIAL_PURGE_BOTH);
}

void cancel(AbecsComm* link) {
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        kor_serial_write_byte(link->line.serial, kCan);
        uint8_t answer = 0;
        if (!read_byte(link->line, kByteWait, nullptr, &answer)) { continue; }
        if (answer == kEot) { return abecs_comm_release(link); }
        purge(link);
    }
    raise(KOR_RESULT_IO_ERROR, "Communication error while sending CAN");
}

void transmit(AbecsComm* link, AbecsPacket* plain, AbecsPacket* encrypted) {
    pace(link);
    abecs_comm_check_busy(link);
    const bool closing = closes_session(plain);  // told apart now: sending consumes the packet
    write_until_accepted(link, encrypted != nullptr ? encrypted : plain, encrypted != nullptr);
    link->lastSend = kor_system_current_time_millis();
    if (!closing) { return; }
    abecs_comm_set_key(link, nullptr);
    abecs_comm_set_wk_pan(link, nullptr);
}

bool receive(AbecsComm* link, AbecsPacket* out) {
    const std::chrono::milliseconds firstWait = is_blocked(link) ? kPollTime : kResponseWait;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        FrameDecoder decoder;
        abecs_packet_clear(out);
        const uint8_t first =
            attempt == 0 && is_blocked(link) ? await_response(link) : read_answer(link->line, firstWait);
        if (decoder.feed(first) == Event::kNotSyn) {
            return raise(KOR_RESULT_PROTOCOL_ERROR, "Protocol error (expected SYN, read 0x%hhx)", first), false;
        }
        if (read_rest(link, decoder, out)) { return decoder.encrypted(); }
        purge(link);
        kor_serial_write_byte(link->line.serial, kNak);
    }
    purge(link);
    return raise(KOR_RESULT_TIMEOUT_ERROR, "No response in %d attempts", kAttempts), false;
}

}  // namespace abecs
