// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SIMULATOR_BARE_ENGINE_H
#define QUORVEL_TESTS_SIMULATOR_BARE_ENGINE_H

#include <string>
#include <string_view>
#include <utility>

#include "simulator/engine.h"

namespace quorvel::sim {

inline constexpr SessionKey kSessionKey{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};

// With the tables that the standard cards select their applications in.
inline Device loaded_device() {
    static const Device kStandard = Device::standard();
    Device device = kStandard;
    Tables::Records records;
    for (const auto& [acquirer, index] : {std::pair(1, "01"), {2, "01"}, {3, "01"}, {3, "02"}, {3, "03"}, {4, "01"}}) {
        records[{.table = 1, .acquirer = acquirer, .index = index}] = {};
    }
    device.tables.load(Tables::kAllAcquirers, "TABLES0001", std::move(records));
    return device;
}

// The PIN pad's side of the protocol without a line and without waiting. Each function returns what it says to that.
class BareEngine {
public:
    std::string hear(std::string_view bytes) {
        engine_.receive(Bytes(bytes.begin(), bytes.end()));
        return said();
    }
    // The host has stopped, in a frame or not.
    std::string pause() {
        if (engine_.in_frame()) { engine_.give_up(); }
        return said();
    }
    std::string act(const Gestures& gestures) {
        cardholder_.act(gestures);
        engine_.poll(Engine::Clock::now());
        return said();
    }
    // The time of a command that waits is over.
    std::string expire() {
        engine_.poll(Engine::Clock::time_point::max());
        return said();
    }
    void inject(const Fault& fault) { faults_.add(fault); }
    void clear_faults() { faults_.clear(); }

    [[nodiscard]] bool encrypted() const { return board_.state().encrypted; }
    // Where it has failed itself.
    [[nodiscard]] const std::string& failures() const { return failures_; }

private:
    std::string said() {
        transmitter_.flush();
        if (std::exchange(hungUp_, false)) { engine_.restart(); }
        return std::exchange(said_, {});
    }

    std::string said_;
    std::string failures_;
    bool hungUp_ = false;
    Journal journal_{{.traffic = {}, .finding = [this](const Finding& finding) {
                          if (finding.kind == Finding::Kind::kInternal) { failures_ += finding.text + "\n"; }
                      }}};
    FaultPlan faults_{1};
    Screen screen_{{}};
    Cardholder cardholder_;
    StateBoard board_;
    Transmitter transmitter_{std::chrono::nanoseconds::zero(),
                             faults_,
                             journal_,
                             {.write = [this](ByteView bytes) { said_.append(bytes.begin(), bytes.end()); },
                              .hangUp = [this](std::chrono::milliseconds) { hungUp_ = true; }}};
    Engine engine_{{.device = loaded_device(), .sessionKey = kSessionKey, .session = Sessions::kLenient},
                   journal_,
                   screen_,
                   cardholder_,
                   board_,
                   transmitter_};
};

}  // namespace quorvel::sim

#endif
