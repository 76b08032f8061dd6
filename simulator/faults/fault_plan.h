// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_FAULTS_FAULT_PLAN_H
#define QUORVEL_SIMULATOR_FAULTS_FAULT_PLAN_H

#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include "simulator/faults/fault.h"
#include "simulator/line/message.h"

namespace quorvel::sim {

// The faults that are to come. Safe from any thread.
class FaultPlan {
public:
    // The seed decides about faults that strike by chance. `struck` is called with each that strikes,
    // before it does, as what strikes this command once.
    explicit FaultPlan(uint32_t seed, std::function<void(const Fault&)> struck = {})
        : struck_(std::move(struck)), seed_(seed), random_(seed) {}

    // Throws std::invalid_argument.
    void add(const Fault& fault);
    // Drops those of that kind that strike that command.
    void withdraw(const Fault& fault);
    void clear();
    // None is left, and chance begins anew from its seed.
    void restart();
    // Those that may still strike, each with the times that are left.
    [[nodiscard]] std::vector<Fault> faults() const;

    // The fault that strikes this message. The message is offered to the faults in their order until one takes it, so
    // that several for the same command strike one after the other.
    [[nodiscard]] std::optional<Fault> strike(const Message& message);

private:
    struct Entry {
        Fault fault;
        const FaultKind* kind;
        unsigned occasions = 0;
    };

    [[nodiscard]] std::optional<Fault> next(const Message& message);
    [[nodiscard]] bool strikes(Entry& entry, const Message& message);

    const std::function<void(const Fault&)> struck_;
    const uint32_t seed_;
    mutable std::mutex mutex_;
    std::mt19937 random_;
    std::vector<Entry> entries_;
};

}  // namespace quorvel::sim

#endif
