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

// No more than `piece` in one write. What was written leaves the front of the bytes.
void put(AbecsComm* link, std::span<const uint8_t>& bytes, size_t piece = 1) {
    if (!enqueue(link->line.serial, bytes, link->line.limit, piece)) { raise_late(link); }
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

// All of it before the first byte goes out: between two calls of the system each branch costs.
std::span<const uint8_t> encode(const AbecsPacket* packet, bool encrypted, std::array<uint8_t, kMaxFrame>& frame) {
    const Unread data = unread_of(packet);
    FrameEncoder encoder(frame.data());
    encoder.begin(encrypted);
    encoder.data(data.first);
    encoder.data(data.second);
    return {frame.data(), encoder.end()};
}

// What went out leaves the front of the frame.
void put_frame(AbecsComm* link, Pace pace, std::span<const uint8_t>& frame) {
    if (pace != Pace::kStepped) { return put(link, frame, pace == Pace::kWhole ? frame.size() : 1); }
    while (!frame.empty()) {
        std::span<const uint8_t> byte = frame.first(1);
        put(link, byte);
        frame = frame.subspan(1);
        put_out(link);
    }
}

// As soon as something is written the packet is consumed. Nothing of what it held stays behind. When it returns the
// frame has left, and the wait for its acknowledgement begins.
Frame write_frame(AbecsComm* link, Pace pace, AbecsPacket* packet, bool encrypted) {
    std::array<uint8_t, kMaxFrame> bytes;
    const std::span<const uint8_t> frame = encode(packet, encrypted, bytes);
    std::span<const uint8_t> left = frame;
    attempt([&] { put_frame(link, pace, left); })
        .cleanup([&] {
            if (left.size() < frame.size()) { consume(packet); }
            explicit_bzero(bytes.data(), frame.size());
        })
        .run();
    put_out(link);
    return {.encrypted = encrypted, .size = frame.size()};
}

// The frame as it went out.
Frame write_until_accepted(AbecsComm* link, AbecsPacket* packet, bool encrypted) {
    Pace pace = link->wholeFrames ? Pace::kWhole : Pace::kFlowing;
    const KorBuffer start = *packet->buffer;
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
        *packet->buffer = start;
        pace = Pace::kStepped;
    }
    raise(KOR_RESULT_PROTOCOL_ERROR, "Packet was rejected");
    return {};
}

// A full packet refuses the next byte. The rest of such a response goes first, or it would be taken for the answers to
// the commands that follow.
void append(AbecsComm* link, AbecsPacket* out, std::span<const uint8_t> data) {
    const std::span<const uint8_t> rest = fill(out, data);
    if (rest.empty()) { return; }
    const uint8_t refused = rest.front();
    purge(link);
    abecs_packet_write_byte(out, refused);
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

// False when nothing more came in time.
bool await_rest(AbecsComm* link, AbecsPacket* out) {
    Reception& reception = link->reception;
    if (has_ahead(link->line)) { return true; }
    if (refill(link->line, std::min(reception.byteEnd, reception.frameEnd))) {
        reception.byteEnd = Deadline(kByteWait);
        return true;
    }
    if (link->line.limit.passed()) { raise_cut(link, out); }
    return false;
}

// What has come of a frame, taken apart.
struct Piece {
    size_t size;  // on the line
    std::span<const uint8_t> data;
    Event last;

    [[nodiscard]] bool ends_frame() const { return last == Event::kGood || last == Event::kBad; }
};

// No further than to the frame's end. The data moves together where it stands.
Piece decode(FrameDecoder& decoder, std::span<uint8_t> come) {
    Piece piece{0, {}, Event::kPending};
    size_t count = 0;
    while (piece.size < come.size() && !piece.ends_frame()) {
        piece.last = decoder.feed(come[piece.size++]);
        if (piece.last == Event::kData) { come[count++] = decoder.data(); }
    }
    piece.data = come.first(count);
    return piece;
}

// Reads what follows SYN. False when the frame is damaged, stops arriving or does not come to its end.
bool read_rest(AbecsComm* link, AbecsPacket* out) {
    while (await_rest(link, out)) {
        const Piece piece = decode(link->reception.decoder, ahead_of(link->line));
        link->reception.frameSize += piece.size;
        append(link, out, piece.data);
        drop_ahead(link->line, piece.size);
        if (piece.ends_frame()) { return piece.last == Event::kGood; }
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
    const Unread clear = unread_of(plain);
    drop(link->reception);
    name_request(link->observer, clear);
    begin(link->observer);
    const Frame frame = write_until_accepted(link, encrypted != nullptr ? encrypted : plain, encrypted != nullptr);
    tell_packet(link->observer, ABECS_LINK_EVENT_SENT, frame, clear);
    link->lastSend = kor_system_current_time_millis();
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
