// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/engine.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

#include "simulator/commands/command.h"

namespace quorvel::sim {

namespace {

constexpr int kMaxResends = 3;

// What answers a command that is refused as a whole.
constexpr std::string_view kErrorId = "ERR";
constexpr std::string_view kNotificationId = "NTM";
// The only command that is plain inside an encrypted session too.
constexpr std::string_view kOpenId = "OPN";

// The command's id, or as much of it as there is.
std::string id_of(ByteView packet) {
    const ByteView id = packet.first(std::min(packet.size(), kIdWidth));
    return {id.begin(), id.end()};
}

}  // namespace

Engine::Engine(Options options, Journal& journal, Screen& screen, Cardholder& cardholder, StateBoard& board,
               Transmitter& transmitter)
    : device_(std::move(options.device)),
      second_(options.second),
      patience_(options.patience),
      sessions_(options.session),
      waits_(std::move(options.waits)),
      exchanged_(std::move(options.exchanged)),
      journal_(journal),
      screen_(screen),
      cardholder_(cardholder),
      board_(board),
      transmitter_(transmitter),
      notify_([this](std::string_view text) { notify(text); }),
      channel_(options.sessionKey) {
    show_idle();
    post_state();
}

void Engine::receive(ByteView bytes) {
    for (const uint8_t byte : bytes) {
        if (const auto reception = decoder_.feed(byte)) { handle(*reception); }
    }
}

void Engine::give_up() { handle(decoder_.give_up()); }

void Engine::handle(const Reception& reception) {
    if (reception.kind == Reception::Kind::kFrame) { return accept(reception); }
    journal_.record(Traffic{Sender::kHost, reception.wire, reception_words(reception), is_private(reception)});
    switch (reception.kind) {
        case Reception::Kind::kDamaged:
            return refuse(reception.fault);
        case Reception::Kind::kInterrupted:
            return find(Finding::Kind::kFraming, reception.fault);
        default:
            return handle_byte(reception.byte);
    }
}

void Engine::handle_byte(uint8_t byte) {
    switch (byte) {
        case control::kCan:
            return cancel();
        case control::kNak:
            return resend();
        default:
            find(Finding::Kind::kFraming, control_words(byte) + " outside a frame");
    }
}

void Engine::cancel() {
    if (pending_) { stop_waiting(); }
    end_exchange(std::nullopt);
    lastResponse_.reset();
    transmitter_.abandon();
    transmitter_.send_byte(control::kEot);
}

void Engine::accept(const Reception& reception) {
    const Request request = open(reception);
    journal_.record(Traffic{Sender::kHost, reception.wire, request.words, is_private(reception)});
    if (!transmitter_.acknowledge(id_of(request.packet))) { return; }
    if (pending_) {
        find(Finding::Kind::kSequence, fmt::format("a command came while {} waited", stop_waiting().command.id));
    }
    end_exchange(std::nullopt);
    lastResponse_.reset();
    obey(request);
}

void Engine::refuse(const std::string& fault) {
    find(Finding::Kind::kFraming, fault);
    transmitter_.send_byte(control::kNak);
}

void Engine::resend() {
    if (!lastResponse_) { return find(Finding::Kind::kSequence, "NAK without a response before it"); }
    if (resends_ == kMaxResends) { return find(Finding::Kind::kSequence, "NAK after the last repetition"); }
    ++resends_;
    transmitter_.abandon();
    static_cast<void>(transmitter_.send(*lastResponse_, channel_));
}

Engine::Request Engine::open(const Reception& reception) const {
    const Frame& frame = reception.frame;
    Request request{.packet = frame.data, .words = reception_words(reception)};
    const auto refuse = [&](Finding::Kind kind, std::string text, Status status) {
        request.refused = Finding{kind, std::move(text)};
        request.status = status;
        return request;
    };
    if (!frame.encrypted) {
        if (!channel_.active() || id_of(frame.data) == kOpenId) { return request; }
        return refuse(Finding::Kind::kSequence, "a plain command inside an encrypted session", Status::kErrpktsec);
    }
    if (!channel_.active()) {
        return refuse(Finding::Kind::kSequence, "an encrypted frame without a session", Status::kNosec);
    }
    try {
        request.packet = channel_.unseal(frame.data);
    } catch (const SealError& error) {
        return refuse(Finding::Kind::kLayout, fmt::format("an encrypted frame: {}", error.what()), Status::kErrpktsec);
    }
    if (id_of(request.packet) == kOpenId) {
        return refuse(Finding::Kind::kSequence, "an enciphered OPN", Status::kErrpktsec);
    }
    request.sealed = true;
    request.words = enciphered_words(request_words(request.packet));
    return request;
}

void Engine::obey(const Request& request) {
    exchange_ = Exchange{.command = id_of(request.packet), .request = request.packet};
    if (request.refused) { return refuse(*request.refused, request.status, request); }
    const ByteView packet = request.packet;
    if (packet.size() < kIdWidth) {
        return refuse({Finding::Kind::kLayout, "a frame without a command"}, Status::kInvcall, request);
    }
    const std::string id = id_of(packet);
    const Command* command = find_command(id);
    if (command == nullptr) {
        return refuse({Finding::Kind::kUnsupported, fmt::format("there is no command {:?}", id)}, Status::kInvcall,
                      request);
    }
    if (sessions_ == Sessions::kStrict && !session_ && command->session == Command::Session::kStays) {
        return refuse({Finding::Kind::kSequence, fmt::format("{} before OPN: there is no session", id)},
                      Status::kInvcall, request);
    }
    Call call{device_, journal_, screen_, channel_, notify_, Reader(id, packet.subspan(kIdWidth))};
    const Screen::Content before = to_go_back_to();
    Outcome outcome = run(*command, call);
    const bool ends = command->session == Command::Session::kEnds;
    if (ends) {
        find_card_left("the session was closed");
        end_session();
    }
    if (const auto* answer = std::get_if<Answer>(&outcome)) {
        const bool opens = command->session == Command::Session::kOpens && answer->status == Status::kOk;
        if (opens && !session_) { session_ = ++begun_; }
        show_in_passing(answer->shows);
        return respond(id, id, *answer, request.sealed && !ends);
    }
    wait(*command, std::get<Wait>(std::move(outcome)), request.sealed, before);
}

// Plain where the request was not read: whoever sends what cannot be deciphered may have another key.
void Engine::refuse(Finding finding, Status status, const Request& request) {
    journal_.record(std::move(finding));
    respond(id_of(request.packet), kErrorId, {.status = status, .blocks = {}}, request.sealed);
}

// The host has dropped its keys as soon as the command was acknowledged, whatever the answer says.
void Engine::end_session() {
    session_.reset();
    channel_.close();
    device_.drop_pan_key();
    device_.transaction.reset();
}

void Engine::wait(const Command& command, Wait wait, bool sealed, Screen::Content before) {
    const auto deadline = Clock::now() + wait.limit.value_or(patience_).count() * second_;
    pending_.emplace(Pending{command, std::move(wait), sealed, deadline, std::move(before), ++begun_});
    post_state();
    cardholder_.attend(command.id);
    waits_(std::string(command.id));
    if (const std::string& notice = pending_->wait.notice; !notice.empty()) { notify(notice); }
}

// Before anything is sent that it led to: whoever has read an answer finds the state that belongs to it.
void Engine::post_state() {
    board_.post({.waiting = pending_ ? std::string(pending_->command.id) : "",
                 .session = session_.has_value(),
                 .encrypted = channel_.active(),
                 .cardInserted = device_.chip.has_value(),
                 .cardNumber = device_.chip ? device_.chip->pan : ""});
}

std::optional<Engine::Clock::time_point> Engine::deadline() const {
    return pending_ ? std::optional(pending_->deadline) : std::nullopt;
}

void Engine::poll(Clock::time_point now) {
    for (const Event& event : cardholder_.take()) { perform(event); }
    if (pending_ && now >= pending_->deadline) {
        finish({.status = Status::kTimeout, .blocks = {}, .shows = pending_->wait.overdue});
    }
}

// A card goes in and out of the reader whether or not a command waits for it.
void Engine::perform(const Event& event) {
    if (const auto* inserted = std::get_if<CardInserted>(&event)) { device_.insert(inserted->card); }
    if (std::holds_alternative<CardRemoved>(event)) { device_.remove_card(); }
    post_state();
    if (!pending_) { return; }
    if (const auto* notice = std::get_if<Notice>(&event)) { return notify(notice->text); }
    if (const auto answer = resume(pending_->command, pending_->wait, event, journal_)) { finish(*answer); }
}

void Engine::notify(std::string_view text) {
    if (!pending_) { return; }
    Writer block;
    block.s(text, text.size());
    respond(kNotificationId, kNotificationId, Answer::of(block), pending_->sealed);
}

Engine::Pending Engine::stop_waiting() {
    Pending ended = *std::exchange(pending_, std::nullopt);
    screen_.show(ended.before);
    post_state();
    return ended;
}

void Engine::finish(const Answer& answer) {
    const Pending ended = stop_waiting();
    show_in_passing(answer.shows);
    respond(ended.command.id, ended.command.id, answer, ended.sealed);
}

void Engine::respond(std::string_view command, std::string_view as, const Answer& answer, bool sealed) {
    lastResponse_ = Message{.command = std::string(command), .packet = response_packet(as, answer), .sealed = sealed};
    resends_ = 0;
    post_state();
    const int status = transmitter_.send(*lastResponse_, channel_);
    if (command == kNotificationId) { return; }
    if (exchange_) { exchange_->response = lastResponse_->packet; }
    end_exchange(status);
}

void Engine::end_exchange(std::optional<int> status) {
    if (!exchange_) { return; }
    exchange_->status = status;
    exchanged_(*std::exchange(exchange_, std::nullopt));
}

void Engine::restart() {
    if (pending_) { stop_waiting(); }
    end_exchange(std::nullopt);
    decoder_ = {};
    lastResponse_.reset();
    end_session();
    show_idle();
    post_state();
}

void Engine::leave(uint64_t begun) {
    if (pending_ && pending_->number <= begun) {
        find(Finding::Kind::kSequence, fmt::format("the line was closed while {} waited", stop_waiting().command.id));
        lastResponse_.reset();
        end_exchange(std::nullopt);
    }
    find_card_left("the line was closed");
    if (session_.value_or(begun + 1) <= begun && sessions_ == Sessions::kStrict) {
        find(Finding::Kind::kSequence, "the line was closed without CLO: the session is still open");
    }
}

// Once for each card.
void Engine::find_card_left(std::string_view when) {
    if (!std::exchange(device_.owesCard, false)) { return; }
    find(Finding::Kind::kSequence,
         fmt::format("{} with a card in the reader: nobody asked for it to be taken out (RMC)", when));
}

void Engine::show_idle() {
    passing_.reset();
    screen_.show({.text = device_.text(Text::kIdle)});
}

void Engine::show_in_passing(const std::optional<std::string>& text) {
    if (!text) { return; }
    passing_ = Screen::Content{.text = *text};
    screen_.show(*passing_);
}

Screen::Content Engine::to_go_back_to() const {
    Screen::Content shown = screen_.content();
    return shown == passing_ ? Screen::Content{.text = device_.text(Text::kIdle)} : shown;
}

void Engine::find(Finding::Kind kind, std::string text) { journal_.record(Finding{kind, std::move(text)}); }

}  // namespace quorvel::sim
