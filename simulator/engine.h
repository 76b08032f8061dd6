// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_ENGINE_H
#define QUORVEL_SIMULATOR_ENGINE_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/cardholder/cardholder.h"
#include "simulator/commands/command.h"
#include "simulator/device/device.h"
#include "simulator/device/screen.h"
#include "simulator/keys/secure_channel.h"
#include "simulator/line/message.h"
#include "simulator/transmitter.h"
#include "simulator/watch/exchange.h"
#include "simulator/watch/journal.h"
#include "simulator/watch/state_board.h"
#include "simulator/wire.h"
#include "wire/frame.h"
#include "wire/status.h"

namespace quorvel::sim {

// Whether commands need an open session, as with a PIN pad, or are carried out without one, too.
enum class Sessions { kStrict, kLenient };

// The PIN pad's side of the protocol, without a line: bytes go in, bytes come out.
class Engine {
public:
    using Clock = std::chrono::steady_clock;

    struct Options {
        Device device;
        // The key of every encrypted session, in place of one that is drawn.
        std::optional<SessionKey> sessionKey = {};
        // How long a second of a command's time-out lasts.
        std::chrono::milliseconds second{1000};
        // How long a command waits that says nothing about it.
        std::chrono::seconds patience{120};
        Sessions session = Sessions::kStrict;
        // Called with the id of each command that begins to wait, and when a command has ended.
        std::function<void(const std::string&)> waits = [](const std::string&) {};
        std::function<void(const Exchange&)> exchanged = [](const Exchange&) {};
    };

    Engine(Options options, Journal& journal, Screen& screen, Cardholder& cardholder, StateBoard& board,
           Transmitter& transmitter);

    void receive(ByteView bytes);

    // True while a frame has begun and not ended: the host must go on, or give_up() is called.
    [[nodiscard]] bool in_frame() const noexcept { return decoder_.in_frame(); }
    void give_up();

    // Hands what the cardholder has done to the command that waits, and ends it when its time is over.
    void poll(Clock::time_point now);
    // When to call poll() at the latest.
    [[nodiscard]] std::optional<Clock::time_point> deadline() const;

    // Forgets all but the device, as it does without power.
    void restart();
    // How many sessions and waits have begun.
    [[nodiscard]] uint64_t begun() const noexcept { return begun_; }
    // The host has closed the line whose sessions and waits are the first so many. Its session goes on, as a PIN pad
    // does not notice; a command that waits is given up.
    void leave(uint64_t begun);

    [[nodiscard]] const Device& device() const noexcept { return device_; }

private:
    // What a frame holds, or why it is refused.
    struct Request {
        Bytes packet;
        bool sealed = false;
        std::string words;
        std::optional<Finding> refused = {};
        Status status = Status::kOk;
    };

    struct Pending {
        const Command& command;
        Wait wait;
        bool sealed;
        Clock::time_point deadline;
        Screen::Content before;
        uint64_t number;
    };

    void handle(const Reception& reception);
    void handle_byte(uint8_t byte);
    void cancel();
    void accept(const Reception& reception);
    void refuse(const std::string& fault);
    void resend();

    [[nodiscard]] Request open(const Reception& reception) const;
    void obey(const Request& request);
    void refuse(Finding finding, Status status, const Request& request);
    void end_session();
    void find_card_left(std::string_view when);
    // What is shown until the host has something to show, and is never gone back to.
    void show_in_passing(const std::optional<std::string>& text);
    void show_idle();
    [[nodiscard]] Screen::Content to_go_back_to() const;

    void wait(const Command& command, Wait wait, bool sealed, Screen::Content before);
    void perform(const Event& event);
    void notify(std::string_view text);
    Pending stop_waiting();
    void finish(const Answer& answer);
    void post_state();

    // None when the host has given the command up.
    void end_exchange(std::optional<int> status);

    // `as` stands in the response where the command's id does otherwise.
    void respond(std::string_view command, std::string_view as, const Answer& answer, bool sealed);
    void find(Finding::Kind kind, std::string text);

    Device device_;
    const std::chrono::milliseconds second_;
    const std::chrono::seconds patience_;
    const Sessions sessions_;
    const std::function<void(const std::string&)> waits_;
    const std::function<void(const Exchange&)> exchanged_;
    Journal& journal_;
    Screen& screen_;
    Cardholder& cardholder_;
    StateBoard& board_;
    Transmitter& transmitter_;
    const std::function<void(std::string_view)> notify_;
    SecureChannel channel_;
    FrameDecoder decoder_;
    std::optional<Pending> pending_;
    std::optional<Exchange> exchange_;
    std::optional<Message> lastResponse_;
    int resends_ = 0;
    uint64_t begun_ = 0;
    // The number of the session that is open.
    std::optional<uint64_t> session_;
    std::optional<Screen::Content> passing_;
};

}  // namespace quorvel::sim

#endif
