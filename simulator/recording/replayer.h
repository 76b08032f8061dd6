// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_RECORDING_REPLAYER_H
#define QUORVEL_SIMULATOR_RECORDING_REPLAYER_H

#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "simulator/commands/command.h"
#include "simulator/faults/fault_plan.h"
#include "simulator/keys/secure_channel.h"
#include "simulator/line/line.h"
#include "simulator/line/message.h"
#include "simulator/recording/comparison.h"
#include "simulator/transmitter.h"
#include "simulator/watch/journal.h"
#include "wire/frame.h"
#include "wire/recording.h"

namespace quorvel::sim {

// Plays the PIN pad's side of a recorded session to a host, and tells where the host does otherwise than the one that
// was recorded. docs/recording.md says what is compared and how it goes on after a difference.
class Replayer {
public:
    using Clock = std::chrono::steady_clock;

    struct Options {
        // How long a recorded pause lasts; 0 for no pauses.
        double pace = 0;
        Names ignored = changing_values();
        Journal::Listeners listeners = {};
        // Called with each difference in words, and with the new path() when the line is back.
        std::function<void(const std::string&)> differs = [](const std::string&) {};
        std::function<void(const std::string&)> returned = [](const std::string&) {};
    };

    // Throws std::system_error when no pseudo-terminal can be had, and std::runtime_error for a fault that cannot be.
    Replayer(const Recording& recording, Options options);

    [[nodiscard]] const std::string& path() const noexcept { return path_; }

    // Until the host closes the line after all was asked, or as often as it did in the recording, or request_stop().
    void run();
    // Safe from other threads and in signal handlers.
    void request_stop() noexcept;

    // Whether all was asked as recorded, once it has run.
    [[nodiscard]] bool is_same() const noexcept { return differences_ == 0; }

private:
    struct Reply {
        // Behind the command.
        Clock::duration after;
        Message message;
        std::optional<Fault> fault;
        // What struck each time the host had it repeated.
        std::deque<std::optional<Fault>> repeated = {};
    };
    // A command, and what came of it.
    struct Turn {
        Bytes request;
        bool sealed;
        size_t line;
        std::optional<Fault> acknowledgement = {};
        std::vector<Reply> replies = {};
    };
    struct Due {
        Clock::time_point at;
        Reply reply;
    };

    void take(const Recording& recording);
    void take_reply(const Recorded& recorded, std::chrono::microseconds asked, std::optional<Fault> fault);

    void hear(ByteView bytes);
    void handle(const Reception& reception);
    void handle_byte(uint8_t byte);
    void accept(const Reception& reception);
    [[nodiscard]] std::optional<Bytes> open(const Frame& frame);
    [[nodiscard]] const Turn* turn_for(ByteView request);
    void follow(const Turn& turn, const Bytes& request, bool sealed);
    void refuse(const Bytes& request, Status status, bool sealed);
    void send_due();
    void send(Reply reply);
    void send(const Message& message, const std::optional<Fault>& fault);
    void resend();
    void forget();
    void abandon();

    [[nodiscard]] bool acknowledge(const std::string& id, const std::optional<Fault>& fault);
    [[nodiscard]] std::optional<Answer> session_key(const Bytes& request);
    void differ(const std::string& how);
    void see_off();
    void come_and_go();
    void conclude();
    [[nodiscard]] std::optional<std::chrono::milliseconds> patience() const;

    const Options options_;
    const bool withholds_;
    std::vector<Turn> turns_;
    size_t next_ = 0;
    size_t visits_ = 0;
    Journal journal_;
    FaultPlan faults_{0};
    Line line_{true};
    Transmitter transmitter_;
    SecureChannel channel_{std::nullopt};
    FrameDecoder decoder_;
    std::deque<Due> due_;
    std::optional<Message> last_;
    std::deque<std::optional<Fault>> repeated_;
    Clock::time_point lastHeard_{};
    bool spoken_ = false;
    std::optional<std::chrono::milliseconds> absence_;
    Clock::time_point returns_{};
    std::string path_;
    size_t differences_ = 0;
    std::atomic<bool> stopping_{false};
};

}  // namespace quorvel::sim

#endif
