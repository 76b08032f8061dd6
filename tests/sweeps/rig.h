// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SWEEPS_RIG_H
#define QUORVEL_TESTS_SWEEPS_RIG_H

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

#include "tests/core/temp_dir.h"
#include "tests/support/commands.h"
#include "tests/support/malloc/exhaustion.h"
#include "tests/support/memory/line.h"
#include "tests/support/memory/pad.h"

// One call after the other on a line in memory, each with one thing that goes wrong.
namespace sweeps {

using support::Raise;

struct Command {
    const char* name;
    const char* waits;  // for the answer of this one, where the request was sent before
    std::vector<std::string> answers;
    int32_t (*act)(support::CommandWorld& w);
    bool takesLong = false;  // the arithmetic of a key pair
};

// Those of commands.inc, and what the keys of the host's are needed for.
const std::vector<Command>& commands();
const Command& command_of(std::string_view name);

// As it goes over the line in a session whose key is `kSession`.
extern const std::string kSession;
std::string sealed(const std::string& content);
// What is sealed for a payload: its length, its check and what fills the last block.
std::string content_of(const std::string& payload);

struct Outcome {
    support::Raised raised;
    int32_t status = 0;
    std::string results;  // all that the call has filled
    size_t kept = 0;      // blocks of memory
    bool noMemory = false;
    memory::Time took{};
};

class Rig {
public:
    using Wire = std::vector<std::string>;
    using Judge = bool (*)(const Outcome& outcome, const Outcome& good);

    Rig();
    ~Rig();
    Rig(Rig&&) = delete;

    // Runs the command as it should be, to be compared with; to be called first.
    void begin(const Command& command, bool wholeFrames = true);
    // What goes wrong in the next run. The n-th allocation or call of the system, and all that follow if it says so:
    void fail_allocation(size_t n, bool onwards) { wrong_.allocation = n, wrong_.onwards = onwards; }
    void fail_call(size_t n, int fault, bool onwards) {
        wrong_.call = n, wrong_.fault = fault, wrong_.onwards = onwards;
    }
    void hang_up_after(size_t bytes) { wrong_.traffic = bytes; }
    // The PIN pad says this instead.
    void say(Wire wire) { wire_ = std::move(wire); }
    // So many have gone wrong so far, so that a sweep can say that it was one.
    [[nodiscard]] size_t runs() const { return runs_; }
    // Whether the last run has come to it.
    [[nodiscard]] bool allocation_failed() const { return allocationFailed_; }
    [[nodiscard]] bool call_failed() const { return callFailed_; }
    [[nodiscard]] bool hung_up() const { return hungUp_; }
    // Runs it once more, and once without anything wrong after CAN. False where it did not end as it may, or has left
    // anything behind, after reporting it as `what`.
    bool run(Raise raise, const std::string& what, Judge judge);

    memory::Line line;
    memory::Pad pad{line};
    AbecsComm* link = nullptr;
    memory::Time most{std::chrono::seconds(30)};
    const uint8_t* key = nullptr;  // of the session
    int32_t limit = 0;

private:
    void connect();
    void arrange(const Wire& wire);
    Outcome act(Raise raise);
    std::string fault_in(const Outcome& outcome) const;

    TempDir directory_;
    std::string path_ = directory_.file("a", "content");
    std::unique_ptr<support::CommandWorld> world_;
    const Command* command_ = nullptr;
    bool wholeFrames_ = false;
    Wire good_;
    Wire wire_;
    Outcome reference_;
    struct {
        size_t allocation = 0;
        size_t call = SIZE_MAX;
        int fault = 0;
        size_t traffic = SIZE_MAX;
        bool onwards = false;
    } wrong_;
    size_t runs_ = 0;
    bool allocationFailed_ = false;
    bool callFailed_ = false;
    bool hungUp_ = false;
};

}  // namespace sweeps

#endif
