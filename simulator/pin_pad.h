// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_PIN_PAD_H
#define QUORVEL_SIMULATOR_PIN_PAD_H

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "simulator/cardholder/cardholder.h"
#include "simulator/device/device.h"
#include "simulator/device/screen.h"
#include "simulator/engine.h"
#include "simulator/faults/fault_plan.h"
#include "simulator/line/line.h"
#include "simulator/line/paced_bytes.h"
#include "simulator/transmitter.h"
#include "simulator/watch/clock.h"
#include "simulator/watch/companion.h"
#include "simulator/watch/errands.h"
#include "simulator/watch/finding.h"
#include "simulator/watch/journal.h"
#include "simulator/watch/session_log.h"
#include "simulator/watch/state_board.h"
#include "simulator/watch/trace.h"

namespace quorvel::sim {

// A virtual PIN pad on a pseudo-terminal.
//
//     sim::PinPad pinPad;
//     pinPad.start();
//     AbecsComm* link = abecs_comm_open(pinPad.path().c_str());
//     ...
//     pinPad.stop();
//     EXPECT_TRUE(pinPad.findings().empty());
class PinPad {
public:
    // Who keeps a record of what comes from elsewhere than the line. All is called on the PIN pad's thread.
    struct Witness {
        // What the cardholder does, before it is done, and the id of the command that waits, if one does.
        std::function<void(const Event&, const std::string&)> acted;
        // A fault, before it strikes what comes next.
        std::function<void(const Fault&)> struck;
        // A host has closed the line, after it had sent something.
        std::function<void()> left;
    };

    struct Options {
        Device device = Device::standard();
        Journal::Listeners listeners = {};
        // How long the host may pause inside a frame.
        std::chrono::milliseconds frameTimeout{1000};
        // The key of every encrypted session, in place of one that is drawn.
        std::optional<SessionKey> sessionKey = {};
        // How long a second of a command's time-out lasts.
        std::chrono::milliseconds second{1000};
        // How long a command waits that says nothing about it, in such seconds.
        std::chrono::seconds patience{120};
        // Whether commands need an open session.
        Sessions session = Sessions::kStrict;
        // In which it talks to the cardholder, in place of the device's.
        std::optional<Language> language = {};
        // Bits per second of the line, ten to a byte; 0 for one that takes no time.
        unsigned speed = 0;
        // What is to go wrong from the start.
        std::vector<Fault> faults = {};
        // Of all that is drawn. Without it the system draws, but for what goes wrong by chance, which is as with 1.
        std::optional<uint32_t> seed = {};
        // Of what is written down with its time, and by which dates are judged; empty for the system's.
        WallClock clock = {};
        // Called with the new path() when the line is back, on the PIN pad's thread.
        std::function<void(const std::string&)> returned = {};
        // Goes along with the PIN pad, which it must outlive; null for none.
        Companion* companion = nullptr;
        Witness witness = {};
        // Called after each change of screen() or board(), on the PIN pad's thread.
        std::function<void()> changed = {};
    };

    // Throws std::system_error when no pseudo-terminal can be had.
    PinPad() : PinPad(Options{}) {}
    explicit PinPad(Options options);
    ~PinPad();
    PinPad(const PinPad&) = delete;
    PinPad& operator=(const PinPad&) = delete;

    // Another one each time that the line has been gone; while it is, still the last one.
    [[nodiscard]] std::string path() const;

    // Plays the PIN pad on this thread until request_stop(). Throws std::system_error when the line fails.
    void run();
    // Safe from other threads and in signal handlers.
    void request_stop() noexcept;

    // Plays it on a thread of its own. A failure of the line becomes a finding.
    void start();
    void stop();

    // What the cardholder does, now or when a command waits for it; see Gestures and Cardholder.
    void act(const Gestures& gestures);
    void when(std::string command, const Gestures& gestures) { cardholder_.when({std::move(command), gestures}); }
    // For the session that goes on, or the next one where none does: what it does not use is dropped when it ends,
    // because the host closes it or the line; see Cardholder.
    void when_in_session(std::string command, const Gestures& gestures);
    [[nodiscard]] std::vector<Cardholder::Plan> plans() const { return cardholder_.plans(); }
    [[nodiscard]] std::vector<Cardholder::Plan> unused_plans() const { return cardholder_.unused(); }
    void clear_plans() { cardholder_.clear_plans(); }

    // How often somebody has acted, a plan that came true included.
    [[nodiscard]] uint64_t acts() const { return cardholder_.acts(); }

    void press(Key key) { act(Gestures().press(key)); }
    void type_pin(std::string_view digits) { act(Gestures().type(digits)); }
    void swipe(Card card) { act(Gestures().swipe(std::move(card))); }
    void insert(Card card) { act(Gestures().insert(std::move(card))); }
    void remove() { act(Gestures().remove()); }
    void tap(Card card) { act(Gestures().tap(std::move(card))); }

    // What is to go wrong. Throws std::invalid_argument for a fault that cannot be.
    void inject(const Fault& fault) { faults_.add(fault); }
    // What is left of faults of that kind with that command.
    void withdraw(const Fault& fault) { faults_.withdraw(fault); }
    void clear_faults() { faults_.clear(); }
    [[nodiscard]] std::vector<Fault> faults() const { return faults_.faults(); }
    // Unplugs the PIN pad for so long. It forgets its session and what it was doing, and returns with another path().
    void hang_up(std::chrono::milliseconds time);

    // What can be put back to how it was at first. The traffic and the line stay in any case.
    enum class Reset { kAll, kCards, kTables, kKeys, kPins, kMedia, kPlans, kFaults, kFindings };
    // From any thread; done between two commands. False, and nothing is done, while a command waits, unless it concerns
    // plans, faults or findings alone.
    [[nodiscard]] bool reset(Reset what = Reset::kAll);
    // Has the chip of that card number come as a new one when it is inserted next.
    void forget_chip(const std::string& pan);

    // Calls it with all that the PIN pad is, between two commands' steps, from any thread, and waits for that.
    void visit(const std::function<void(const Device&)>& visitor);
    // What hosts have loaded, and what the host does since its first command; none when it has sent none since the last
    // session. From any thread.
    [[nodiscard]] Tables tables();
    [[nodiscard]] std::optional<SessionLog> session();

    [[nodiscard]] Screen::Content screen() const { return screen_.content(); }
    [[nodiscard]] StateBoard& board() noexcept { return board_; }

    // As they were after the last command.
    [[nodiscard]] KeyStore keys() const { return engine_.keys(); }

    // What the commands have made of it. Only while nobody plays the PIN pad.
    [[nodiscard]] const Device& device() const noexcept { return engine_.device(); }

    // From any thread, at any time. What led to an answer is there before the answer is sent.
    [[nodiscard]] std::vector<Finding> findings() const { return journal_.findings(); }
    void clear_findings() { journal_.clear_findings(); }
    [[nodiscard]] std::vector<Traffic> traffic() const { return journal_.traffic(); }

private:
    using Clock = Engine::Clock;

    [[nodiscard]] std::optional<std::chrono::milliseconds> patience() const;
    [[nodiscard]] std::optional<Clock::time_point> next() const;
    void hear();
    void send(ByteView bytes);
    void come_and_go();
    void see_off(uint64_t begun);
    void step(uint64_t begun);
    void restart_faults();
    [[nodiscard]] bool reset_now(Reset what);
    [[nodiscard]] bool reset_all();

    Journal journal_;
    Companion* const companion_;
    const Witness witness_;
    FaultPlan faults_;
    Line line_;
    Screen screen_;
    Cardholder cardholder_;
    StateBoard board_;
    Transmitter transmitter_;
    Engine engine_;
    PacedBytes heard_;
    Errands errands_;
    const std::vector<Fault> firstFaults_;
    const std::chrono::milliseconds frameTimeout_;
    Clock::time_point lastHeard_{};
    // Whether the host that has the line has sent anything.
    bool spoken_ = false;
    // It has closed the line, and perhaps not all that it has sent is heard: which sessions and waits were its own.
    std::optional<uint64_t> leaving_;
    // While the line is gone.
    Clock::time_point returns_{};
    const std::function<void(const std::string&)> returned_;

    mutable std::mutex mutex_;
    std::string path_;
    std::optional<std::chrono::milliseconds> absence_;

    std::atomic<bool> stopping_{false};
    std::thread thread_;
};

}  // namespace quorvel::sim

#endif
