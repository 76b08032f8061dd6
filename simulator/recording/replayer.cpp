// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/recording/replayer.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "simulator/commands/command.h"
#include "simulator/control/verbs.h"
#include "simulator/recording/stand_in.h"
#include "wire/words.h"

namespace quorvel::sim {

namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr milliseconds kFrameTimeout{1000};
constexpr std::string_view kErrorId = "ERR";
constexpr std::string_view kOpenId = "OPN";
constexpr size_t kHeadWidth = kIdWidth + kStatusWidth;

std::string id_of(ByteView packet) {
    const ByteView id = packet.first(std::min(packet.size(), kIdWidth));
    return {id.begin(), id.end()};
}

bool ends_session(const std::string& id) {
    const Command* const command = find_command(id);
    return command != nullptr && command->session == Command::Session::kEnds;
}

// None for one that struck before there was anything to send: what was sent is as it says already.
std::optional<Fault> fault_in(const Recorded& recorded) {
    using nlohmann::json;
    const json request = json::parse(recorded.text, nullptr, false);
    try {
        Arguments arguments(request);
        Fault fault = fault_of(arguments);
        check(fault);
        fault.command.clear();
        return fault.before ? std::nullopt : std::optional(fault);
    } catch (const std::exception& error) {
        throw std::runtime_error(fmt::format("line {}: {}", recorded.line, error.what()));
    }
}

}  // namespace

Replayer::Replayer(const Recording& recording, Options options)
    : options_(std::move(options)),
      withholds_(recording.withholds()),
      journal_(options_.listeners),
      transmitter_({}, faults_, journal_,
                   {.write =
                        [this](ByteView bytes) {
                            if (line_.is_open()) { line_.write(bytes); }
                        },
                    .hangUp = [this](milliseconds time) { absence_ = time; }}),
      path_(line_.path()) {
    take(recording);
}

// A repetition is none that the host has asked for by its command.
void Replayer::take(const Recording& recording) {
    std::optional<Fault> fault;
    microseconds asked{};
    bool repeats = false;
    for (const Recorded& each : recording.events) {
        const bool host = each.mark == Recorded::Mark::kHost;
        if (host) { repeats = each.kind == "nak"; }
        if (host && is_frame(each)) {
            turns_.push_back({.request = each.bytes, .sealed = each.kind == "sealed", .line = each.line});
            asked = each.time;
        }
        if (each.kind == "left") { ++visits_; }
        if (each.kind == "fault") { fault = fault_in(each); }
        if (each.mark != Recorded::Mark::kPinPad || turns_.empty()) { continue; }
        const auto struck = std::exchange(fault, std::nullopt);
        if (each.kind == "ack") { turns_.back().acknowledgement = struck; }
        if (!is_frame(each)) { continue; }
        std::vector<Reply>& replies = turns_.back().replies;
        // A NAK asks for one frame again, behind which others may come.
        if (!std::exchange(repeats, false)) {
            take_reply(each, asked, struck);
        } else if (!replies.empty()) {
            replies.back().repeated.push_back(struck);
        }
    }
}

void Replayer::take_reply(const Recorded& recorded, microseconds asked, std::optional<Fault> fault) {
    if (recorded.bytes.size() < kHeadWidth) {
        throw std::runtime_error(fmt::format("line {}: this is no response", recorded.line));
    }
    turns_.back().replies.push_back(
        {.after = std::chrono::duration_cast<Clock::duration>((recorded.time - asked) * options_.pace),
         .message = {.command = id_of(recorded.bytes), .packet = recorded.bytes, .sealed = recorded.kind == "sealed"},
         .fault = std::move(fault)});
}

void Replayer::run() {
    while (!stopping_) {
        if (line_.wait(patience(), true) == Line::Event::kReadable) { hear(line_.read()); }
        if (decoder_.in_frame() && Clock::now() >= lastHeard_ + kFrameTimeout) { handle(decoder_.give_up()); }
        send_due();
        transmitter_.flush();
        see_off();
        come_and_go();
    }
    conclude();
}

void Replayer::request_stop() noexcept {
    stopping_ = true;
    line_.wake();
}

std::optional<milliseconds> Replayer::patience() const {
    std::optional<Clock::time_point> next = transmitter_.due();
    const auto consider = [&next](Clock::time_point other) { next = next ? std::min(*next, other) : other; };
    if (!due_.empty()) { consider(due_.front().at); }
    if (decoder_.in_frame()) { consider(lastHeard_ + kFrameTimeout); }
    if (!line_.is_open()) { consider(returns_); }
    if (!next) { return std::nullopt; }
    return std::max(std::chrono::ceil<milliseconds>(*next - Clock::now()), milliseconds::zero());
}

void Replayer::hear(ByteView bytes) {
    if (bytes.empty()) { return; }
    lastHeard_ = Clock::now();
    spoken_ = true;
    for (const uint8_t byte : bytes) {
        if (const auto reception = decoder_.feed(byte)) { handle(*reception); }
    }
}

void Replayer::handle(const Reception& reception) {
    if (reception.kind == Reception::Kind::kFrame) { return accept(reception); }
    journal_.record(Traffic{Sender::kHost, reception.wire, reception_words(reception), is_private(reception)});
    if (reception.kind == Reception::Kind::kDamaged) { transmitter_.send_byte(control::kNak); }
    if (reception.kind == Reception::Kind::kByte) { handle_byte(reception.byte); }
}

void Replayer::handle_byte(uint8_t byte) {
    if (byte == control::kNak) { resend(); }
    if (byte != control::kCan) { return; }
    abandon();
    transmitter_.send_byte(control::kEot);
}

void Replayer::forget() {
    due_.clear();
    last_.reset();
    repeated_.clear();
}

void Replayer::abandon() {
    forget();
    transmitter_.abandon();
}

void Replayer::accept(const Reception& reception) {
    const auto request = open(reception.frame);
    const std::string words = request ? request_words(*request) : reception_words(reception);
    journal_.record(Traffic{Sender::kHost, reception.wire,
                            request && reception.frame.encrypted ? enciphered_words(words) : words,
                            is_private(reception)});
    forget();
    if (!request) {
        return refuse(reception.frame.data, channel_.active() ? Status::kErrpktsec : Status::kNosec, false);
    }
    const bool sealed = reception.frame.encrypted;
    const Turn* const turn = turn_for(*request);
    if (turn == nullptr) { return refuse(*request, Status::kInvcall, sealed); }
    if (turn->sealed != sealed) {
        differ(fmt::format("line {}: {} came {}", turn->line, id_of(*request), sealed ? "enciphered" : "in the clear"));
    }
    follow(*turn, *request, sealed);
}

std::optional<Bytes> Replayer::open(const Frame& frame) {
    if (!frame.encrypted) { return frame.data; }
    try {
        if (channel_.active()) { return channel_.unseal(frame.data); }
        differ("an encrypted frame came without a session");
    } catch (const SealError& error) { differ(fmt::format("an encrypted frame: {}", error.what())); }
    return std::nullopt;
}

// Where the host does otherwise: the next one of those that are left that is the same, or has at least the same id.
const Replayer::Turn* Replayer::turn_for(ByteView request) {
    const Bytes shown = withholds_ ? stand_in(Sender::kHost, request).packet : Bytes(request.begin(), request.end());
    const auto wrong = [&](const Turn& turn) { return difference(turn.request, shown, options_.ignored); };
    const auto next = turns_.begin() + static_cast<std::ptrdiff_t>(next_);
    if (next == turns_.end()) {
        differ(fmt::format("nothing more was asked, got {}", request_words(request)));
        return nullptr;
    }
    const std::string how = wrong(*next);
    auto found = next;
    if (!how.empty() && id_of(next->request) != id_of(request)) {
        found = std::find_if(next, turns_.end(), [&](const Turn& turn) { return wrong(turn).empty(); });
        if (found == turns_.end()) {
            found = std::find_if(next, turns_.end(),
                                 [&](const Turn& turn) { return id_of(turn.request) == id_of(request); });
        }
    }
    if (!how.empty()) { differ(fmt::format("line {}: {}", next->line, how)); }
    if (found == turns_.end()) { return nullptr; }
    next_ = static_cast<size_t>(found - turns_.begin()) + 1;
    return &*found;
}

void Replayer::follow(const Turn& turn, const Bytes& request, bool sealed) {
    const std::string id = id_of(request);
    if (!acknowledge(id, turn.acknowledgement)) { return; }
    if (ends_session(id)) { channel_.close(); }
    for (Reply reply : turn.replies) {
        const bool key = id == kOpenId && reply.message.packet.size() > kHeadWidth;
        if (const auto answer = key ? session_key(request) : std::nullopt) {
            reply.message.packet = response_packet(id, *answer);
        }
        reply.message.sealed = channel_.active() && (turn.sealed == sealed ? reply.message.sealed : sealed);
        due_.push_back({Clock::now() + reply.after, std::move(reply)});
    }
    send_due();
}

// One of this session's own, under the key that the host has sent. None when there is no such key in it.
std::optional<Answer> Replayer::session_key(const Bytes& request) {
    if (request.size() <= kIdWidth) { return std::nullopt; }
    Device device;
    Screen screen;
    const std::function<void(std::string_view)> nobody = [](std::string_view) {};
    Call call{device, journal_, screen, channel_, nobody, Reader(kOpenId, ByteView(request).subspan(kIdWidth))};
    return std::get<Answer>(sim::run(*find_command(kOpenId), call));
}

bool Replayer::acknowledge(const std::string& id, const std::optional<Fault>& fault) {
    if (fault) { faults_.add(*fault); }
    const bool accepted = transmitter_.acknowledge(id);
    faults_.clear();
    return accepted;
}

void Replayer::refuse(const Bytes& request, Status status, bool sealed) {
    if (!acknowledge(id_of(request), std::nullopt)) { return; }
    const Bytes packet = response_packet(kErrorId, {.status = status, .blocks = {}});
    send({.after = {}, .message = {.command = id_of(request), .packet = packet, .sealed = sealed}, .fault = {}});
}

void Replayer::send_due() {
    while (!due_.empty() && due_.front().at <= Clock::now()) {
        Reply reply = std::move(due_.front().reply);
        due_.pop_front();
        send(std::move(reply));
    }
}

void Replayer::send(Reply reply) {
    send(reply.message, reply.fault);
    last_ = std::move(reply.message);
    repeated_ = std::move(reply.repeated);
}

void Replayer::send(const Message& message, const std::optional<Fault>& fault) {
    if (fault) { faults_.add(*fault); }
    static_cast<void>(transmitter_.send(message, channel_));
    faults_.clear();
}

void Replayer::resend() {
    if (!last_) { return; }
    transmitter_.abandon();
    std::optional<Fault> fault;
    if (!repeated_.empty()) {
        fault = std::move(repeated_.front());
        repeated_.pop_front();
    }
    send(*last_, fault);
}

void Replayer::differ(const std::string& how) {
    ++differences_;
    options_.differs(how);
}

void Replayer::see_off() {
    if (!line_.has_departed()) { return; }
    if (line_.is_open()) { hear(line_.read()); }
    if (!std::exchange(spoken_, false)) { return; }
    visits_ -= visits_ > 0 ? 1 : 0;
    if (visits_ == 0 || next_ == turns_.size()) { stopping_ = true; }
}

void Replayer::come_and_go() {
    if (const auto absence = std::exchange(absence_, std::nullopt)) {
        abandon();
        decoder_ = {};
        channel_.close();
        spoken_ = false;
        line_.hang_up();
        returns_ = Clock::now() + *absence;
    }
    if (line_.is_open() || Clock::now() < returns_) { return; }
    line_.open();
    path_ = line_.path();
    options_.returned(path_);
}

void Replayer::conclude() {
    if (next_ == turns_.size()) { return; }
    std::string ids;
    for (size_t i = next_; i < turns_.size(); ++i) { ids += (i == next_ ? "" : ", ") + id_of(turns_[i].request); }
    differ(fmt::format("line {}: never asked: {}", turns_[next_].line, ids));
}

}  // namespace quorvel::sim
