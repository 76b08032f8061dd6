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

// Raises once the call has taken as long as it may.
void check_limit(AbecsComm* link) {
    if (!link->line.limit.passed()) { return; }
    tell(link->observer, ABECS_LINK_EVENT_TIMEOUT);
    raise(KOR_RESULT_TIMEOUT_ERROR, "The limit of %d ms has passed", link->limit);
}

// Raises when nothing came in time.
uint8_t read_answer(AbecsComm* link, std::chrono::milliseconds wait) {
    uint8_t answer = 0;
    if (read_byte(link->line, wait, nullptr, &answer)) { return answer; }
    check_limit(link);
    tell(link->observer, ABECS_LINK_EVENT_TIMEOUT);
    raise(KOR_RESULT_TIMEOUT_ERROR, "Timeout waiting for data");
    return 0;
}

// The same while the link is blocked: as long as the caller says, and no longer than until somebody wakes the link.
uint8_t await_response(AbecsComm* link) {
    uint8_t first = 0;
    if (await_byte(link->line, link->pollTime, link->waker, &first)) { return first; }
    if (link->waker.woke) { raise(KOR_RESULT_TIMEOUT_ERROR, "The wait was ended"); }
    check_limit(link);
    raise(KOR_RESULT_TIMEOUT_ERROR, "Timeout waiting for data");
    return 0;
}

// A clock that was set back must not make the wait longer than the interval.
void pace(AbecsComm* link) {
    const int64_t elapsed = std::max<int64_t>(kor_system_current_time_millis() - link->lastSend, 0);
    if (elapsed >= link->sendInterval) { return; }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(link->line.limit.left());
    sleep_out(std::min(std::chrono::milliseconds(link->sendInterval - elapsed), left));
    check_limit(link);
}

void put(AbecsComm* link, std::span<const uint8_t> bytes) {
    if (!enqueue(link->line.serial, bytes, link->line.limit)) { check_limit(link); }
}

void put_out(AbecsComm* link) {
    if (!drain(link->line.serial, link->line.limit)) { check_limit(link); }
}

void put_byte(AbecsComm* link, uint8_t byte) {
    put(link, {&byte, 1});
    put_out(link);
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
size_t write_whole(AbecsComm* link, AbecsPacket* packet, bool encrypted) {
    std::array<uint8_t, kMaxFrame> frame;
    size_t size = 0;
    encode(packet, encrypted, [&](FrameEncoder::Wire wire) {
        std::memcpy(frame.data() + size, wire.data(), wire.size());
        size += wire.size();
    });
    attempt([&] {
        put(link, {frame.data(), size});
        consume(packet);
    }).cleanup([&] {
          explicit_bzero(frame.data(), size);
      }).run();
    return size;
}

size_t write_bytes(AbecsComm* link, Pace pace, AbecsPacket* packet, bool encrypted) {
    size_t size = 0;
    encode(packet, encrypted, [&](FrameEncoder::Wire wire) {
        for (const uint8_t& byte : wire) {
            put(link, {&byte, 1});
            consume(packet);
            if (pace == Pace::kStepped) { put_out(link); }
        }
        size += wire.size();
    });
    return size;
}

// When it returns the frame has left, and the wait for its acknowledgement begins.
Frame write_frame(AbecsComm* link, Pace pace, AbecsPacket* packet, bool encrypted) {
    const auto write = [&] {
        return pace == Pace::kWhole ? write_whole(link, packet, encrypted) : write_bytes(link, pace, packet, encrypted);
    };
    const size_t size = write();
    put_out(link);
    return {.encrypted = encrypted, .size = size};
}

// The frame as it went out.
Frame write_until_accepted(AbecsComm* link, AbecsPacket* packet, bool encrypted) {
    Pace pace = link->wholeFrames ? Pace::kWhole : Pace::kFlowing;
    KorBufferState start;
    abecs_packet_save_state(packet, &start);
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        const Frame frame = write_frame(link, pace, packet, encrypted);
        const uint8_t answer = read_answer(link, kByteWait);
        if (answer == kAck) { return frame; }
        if (answer != kNak) {
            raise(KOR_RESULT_PROTOCOL_ERROR, "Protocol error (unknown packet response: 0x%hhx)", answer);
        }
        tell(link->observer, ABECS_LINK_EVENT_REJECTED, frame);
        abecs_packet_set_state(packet, &start);
        pace = Pace::kStepped;
    }
    raise(KOR_RESULT_PROTOCOL_ERROR, "Packet was rejected");
    return {};
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

// Reads what follows SYN and counts it. False when the frame is damaged, stops arriving or does not come to its end.
bool read_rest(AbecsComm* link, FrameDecoder& decoder, AbecsPacket* out, size_t& size) {
    const Deadline end(kFrameLimit);
    for (uint8_t byte = 0; read_byte(link->line, kByteWait, &end, &byte);) {
        ++size;
        const Event event = decoder.feed(byte);
        if (event == Event::kData) { append(link, out, decoder.data()); }
        if (event == Event::kGood || event == Event::kBad) { return event == Event::kGood; }
    }
    return false;
}

// Where the limit ends it, the next call that reads does it first: the PIN pad has the answer and will not send it
// unasked.
void ask_again(AbecsComm* link) {
    purge(link);
    link->owesNak = link->line.limit.passed();
    check_limit(link);
    put_byte(link, kNak);
}

}  // namespace

// The pauses keep a line that is never silent from costing more than a few looks at it.
void purge(AbecsComm* link) {
    discard_ahead(link->line);
    const Deadline limit = std::min(Deadline(kPurgeLimit), link->line.limit);
    while (!limit.passed() && wait_for_input(link->line.serial, std::min(Deadline(kPurgeSilence), limit))) {
        sleep_out(kPurgePause);
        kor_serial_purge(link->line.serial, KOR_SERIAL_PURGE_INPUT);
    }
    kor_serial_purge(link->line.serial, KOR_SERIAL_PURGE_BOTH);
}

void cancel(AbecsComm* link) {
    begin(link->observer);
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        put_byte(link, kCan);
        uint8_t answer = 0;
        const bool answered = read_byte(link->line, kByteWait, nullptr, &answer);
        if (answered && answer == kEot) {
            link->owesNak = false;
            tell(link->observer, ABECS_LINK_EVENT_CANCELLED);
            return abecs_comm_release(link);
        }
        if (answered) { purge(link); }
        check_limit(link);
    }
    raise(KOR_RESULT_IO_ERROR, "Communication error while sending CAN");
}

void transmit(AbecsComm* link, AbecsPacket* plain, AbecsPacket* encrypted) {
    pace(link);
    abecs_comm_check_busy(link);
    const bool closing = closes_session(plain);  // told apart now: sending consumes the packet
    const Unread clear = unread_of(plain);
    link->owesNak = false;
    begin(link->observer);
    const Frame frame = write_until_accepted(link, encrypted != nullptr ? encrypted : plain, encrypted != nullptr);
    tell_packet(link->observer, ABECS_LINK_EVENT_SENT, frame, clear);
    link->lastSend = kor_system_current_time_millis();
    if (!closing) { return; }
    abecs_comm_set_key(link, nullptr);
    abecs_comm_set_wk_pan(link, nullptr);
}

Frame receive(AbecsComm* link, AbecsPacket* out) {
    const std::chrono::milliseconds firstWait = is_blocked(link) ? kPollTime : kResponseWait;
    if (link->owesNak) { ask_again(link); }
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        FrameDecoder decoder;
        abecs_packet_clear(out);
        const uint8_t first = attempt == 0 && is_blocked(link) ? await_response(link) : read_answer(link, firstWait);
        if (decoder.feed(first) == Event::kNotSyn) {
            raise(KOR_RESULT_PROTOCOL_ERROR, "Protocol error (expected SYN, read 0x%hhx)", first);
        }
        size_t size = sizeof first;
        const bool good = read_rest(link, decoder, out, size);
        const Frame frame{.encrypted = decoder.encrypted(), .size = size};
        if (good) { return frame; }
        tell(link->observer, ABECS_LINK_EVENT_DAMAGED, frame);
        ask_again(link);
    }
    purge(link);
    tell(link->observer, ABECS_LINK_EVENT_TIMEOUT);
    raise(KOR_RESULT_TIMEOUT_ERROR, "No response in %d attempts", kAttempts);
    return {};
}

}  // namespace abecs
