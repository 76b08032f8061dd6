// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/comm/transport.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <span>
#include <utility>

#include "abecs/comm/comm.h"
#include "abecs/comm/frame.h"
#include "abecs/data/packet.h"
#include "core/attempt.h"
#include "core/deadline.h"
#include "core/function_ref.h"
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

// Ends a call that has taken as long as it may.
void raise_late(AbecsComm* link) {
    tell(link->observer, ABECS_LINK_EVENT_TIMEOUT);
    raise(KOR_RESULT_TIMEOUT_ERROR, "The limit of %d ms has passed", link->limit);
}

void raise_silence(AbecsComm* link) {
    tell(link->observer, ABECS_LINK_EVENT_TIMEOUT);
    raise(KOR_RESULT_TIMEOUT_ERROR, "Timeout waiting for data");
}

// A clock that was set back must not make the wait longer than the interval.
void pace(AbecsComm* link) {
    const int64_t elapsed = std::max<int64_t>(kor_system_current_time_millis() - link->lastSend, 0);
    if (elapsed >= link->sendInterval) { return; }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(link->line.limit.left());
    sleep_out(std::min(std::chrono::milliseconds(link->sendInterval - elapsed), left));
    if (link->line.limit.passed()) { raise_late(link); }
}

// What was written leaves the front of the bytes.
void put(AbecsComm* link, std::span<const uint8_t>& bytes) {
    if (!enqueue(link->line.serial, bytes, link->line.limit)) { raise_late(link); }
}

void put_out(AbecsComm* link) {
    if (!drain(link->line.serial, link->line.limit)) { raise_late(link); }
}

// How a frame goes out.
enum class Pace : uint8_t {
    kWhole,    // in one write
    kFlowing,  // one byte a write
    kStepped,  // the same, waiting until each has left, for a PIN pad that was outrun
};

// Makes the frame and hands it out in small pieces.
void encode(const AbecsPacket* packet, bool encrypted, FunctionRef<void(FrameEncoder::Wire)> put) {
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
    std::span<const uint8_t> left(frame.data(), size);
    attempt([&] { put(link, left); })
        .cleanup([&] {
            if (left.size() < size) { consume(packet); }
            explicit_bzero(frame.data(), size);
        })
        .run();
    return size;
}

size_t write_bytes(AbecsComm* link, Pace pace, AbecsPacket* packet, bool encrypted) {
    size_t size = 0;
    encode(packet, encrypted, [&](FrameEncoder::Wire wire) {
        for (const uint8_t& byte : wire) {
            std::span<const uint8_t> left(&byte, 1);
            put(link, left);
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
        uint8_t answer = 0;
        if (!read_byte(link->line, kByteWait, nullptr, &answer)) {
            link->line.limit.passed() ? raise_late(link) : raise_silence(link);
        }
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

// Forgets what was read of an answer.
void drop(Reception& reception) {
    explicit_bzero(reception.data.data(), reception.length);
    reception.length = 0;
    reception.cut = false;
    reception.stage = Stage::kFirst;
    reception.failures = 0;
}

// What was read is put away for the next call, which begins by taking it up.
void set_aside(AbecsComm* link, AbecsPacket* out) {
    Reception& reception = link->reception;
    reception.cut = reception.stage != Stage::kFirst || reception.failures != 0;
    reception.length = kor_buffer_read(out->buffer, reception.data.data(), reception.data.size());
}

void take_up(AbecsComm* link, AbecsPacket* out) {
    Reception& reception = link->reception;
    abecs_packet_clear(out);
    if (!reception.cut) { return drop(reception); }
    kor_buffer_write(out->buffer, reception.data.data(), reception.length);
    explicit_bzero(reception.data.data(), reception.length);
    reception.length = 0;
    reception.cut = false;
}

// A poll that has found nothing is nothing to be told of.
bool has_found_nothing(const AbecsComm* link) {
    return is_blocked(link) && link->reception.stage == Stage::kFirst && link->reception.failures == 0;
}

void raise_cut(AbecsComm* link, AbecsPacket* out) {
    set_aside(link, out);
    if (!has_found_nothing(link)) { raise_late(link); }
    raise(KOR_RESULT_TIMEOUT_ERROR, "The limit of %d ms has passed", link->limit);
}

// A blocked link waits as long as the caller says, and no longer than until somebody wakes it.
bool await_first(AbecsComm* link, uint8_t* first) {
    if (!is_blocked(link)) { return read_byte(link->line, kResponseWait, nullptr, first); }
    const std::chrono::milliseconds wait = link->reception.failures == 0 ? link->pollTime : kPollTime;
    return await_byte(link->line, wait, link->waker, first);
}

void raise_nothing(AbecsComm* link, AbecsPacket* out) {
    if (is_blocked(link) && link->waker.woke) {
        set_aside(link, out);
        raise(KOR_RESULT_TIMEOUT_ERROR, "The wait was ended");
    }
    if (link->line.limit.passed()) { raise_cut(link, out); }
    if (!has_found_nothing(link)) { raise_silence(link); }
    raise(KOR_RESULT_TIMEOUT_ERROR, "Timeout waiting for data");
}

void read_first(AbecsComm* link, AbecsPacket* out) {
    Reception& reception = link->reception;
    uint8_t first = 0;
    if (!await_first(link, &first)) { raise_nothing(link, out); }
    reception.decoder = {};
    abecs_packet_clear(out);
    if (reception.decoder.feed(first) == Event::kNotSyn) {
        raise(KOR_RESULT_PROTOCOL_ERROR, "Protocol error (expected SYN, read 0x%hhx)", first);
    }
    reception.stage = Stage::kRest;
    reception.frameSize = sizeof first;
    reception.byteEnd = Deadline(kByteWait);
    reception.frameEnd = Deadline(kFrameLimit);
}

// False when the byte did not come in time.
bool read_next(AbecsComm* link, AbecsPacket* out, uint8_t* byte) {
    Reception& reception = link->reception;
    if (!has_ahead(link->line)) {
        if (!refill(link->line, std::min(reception.byteEnd, reception.frameEnd))) {
            if (link->line.limit.passed()) { raise_cut(link, out); }
            return false;
        }
        reception.byteEnd = Deadline(kByteWait);
    }
    return take_byte(link->line, byte);
}

// Reads what follows SYN. False when the frame is damaged, stops arriving or does not come to its end.
bool read_rest(AbecsComm* link, AbecsPacket* out) {
    Reception& reception = link->reception;
    for (uint8_t byte = 0; read_next(link, out, &byte);) {
        ++reception.frameSize;
        const Event event = reception.decoder.feed(byte);
        if (event == Event::kData) { append(link, out, reception.decoder.data()); }
        if (event == Event::kGood || event == Event::kBad) { return event == Event::kGood; }
    }
    return false;
}

Frame frame_of(const Reception& reception) {
    return {.encrypted = reception.decoder.encrypted(), .size = reception.frameSize};
}

void ask_again(AbecsComm* link, AbecsPacket* out) {
    Reception& reception = link->reception;
    std::span<const uint8_t> nak(&kNak, 1);
    if (!purge(link) || !enqueue(link->line.serial, nak, link->line.limit)) { raise_cut(link, out); }
    reception.stage = reception.failures < kAttempts ? Stage::kFirst : Stage::kGiveUp;
    if (!drain(link->line.serial, link->line.limit)) { raise_cut(link, out); }
}

}  // namespace

// The pauses keep a line that is never silent from costing more than a few looks at it.
bool purge(AbecsComm* link) {
    Purge& state = link->purge;
    discard_ahead(link->line);
    if (!std::exchange(state.cut, false)) { state = {false, Deadline(kPurgeSilence), Deadline(kPurgeLimit)}; }
    const Deadline limit = std::min(state.end, link->line.limit);
    while (!limit.passed() && wait_for_input(link->line.serial, std::min(state.silence, limit))) {
        sleep_out(kPurgePause);
        kor_serial_purge(link->line.serial, KOR_SERIAL_PURGE_INPUT);
        state.silence = Deadline(kPurgeSilence);
    }
    state.cut = !state.silence.passed() && !state.end.passed();
    if (!state.cut) { kor_serial_purge(link->line.serial, KOR_SERIAL_PURGE_BOTH); }
    return !state.cut;
}

void cancel(AbecsComm* link) {
    if ((is_cut(link) || link->owesEot) && !purge(link)) { raise_late(link); }
    drop(link->reception);
    link->owesEot = false;
    begin(link->observer);
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        std::span<const uint8_t> can(&kCan, 1);
        put(link, can);
        put_out(link);
        uint8_t answer = 0;
        const bool answered = read_byte(link->line, kByteWait, nullptr, &answer);
        if (answered && answer == kEot) {
            tell(link->observer, ABECS_LINK_EVENT_CANCELLED);
            return abecs_comm_release(link);
        }
        link->owesEot = (answered && !purge(link)) || link->line.limit.passed();
        if (link->owesEot) { raise_late(link); }
        if (!answered) { tell(link->observer, ABECS_LINK_EVENT_TIMEOUT); }
    }
    raise(KOR_RESULT_IO_ERROR, "Communication error while sending CAN");
}

void transmit(AbecsComm* link, AbecsPacket* plain, AbecsPacket* encrypted) {
    pace(link);
    abecs_comm_check_busy(link);
    const bool closing = closes_session(plain);  // told apart now: sending consumes the packet
    const Unread clear = unread_of(plain);
    drop(link->reception);
    name_request(link->observer, clear);
    begin(link->observer);
    const Frame frame = write_until_accepted(link, encrypted != nullptr ? encrypted : plain, encrypted != nullptr);
    tell_packet(link->observer, ABECS_LINK_EVENT_SENT, frame, clear);
    link->lastSend = kor_system_current_time_millis();
    if (!closing) { return; }
    abecs_comm_set_key(link, nullptr);
    abecs_comm_set_wk_pan(link, nullptr);
}

Frame receive(AbecsComm* link, AbecsPacket* out) {
    Reception& reception = link->reception;
    take_up(link, out);
    for (;;) {
        switch (reception.stage) {
            case Stage::kFirst:
                read_first(link, out);
                break;
            case Stage::kRest:
                if (read_rest(link, out)) { return frame_of(reception); }
                tell(link->observer, ABECS_LINK_EVENT_DAMAGED, frame_of(reception));
                ++reception.failures;
                reception.stage = Stage::kRepeat;
                break;
            case Stage::kRepeat:
                ask_again(link, out);
                break;
            case Stage::kGiveUp:
                if (!purge(link)) { raise_cut(link, out); }
                tell(link->observer, ABECS_LINK_EVENT_TIMEOUT);
                raise(KOR_RESULT_TIMEOUT_ERROR, "No response in %d attempts", kAttempts);
        }
    }
}

}  // namespace abecs
