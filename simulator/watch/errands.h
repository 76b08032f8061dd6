// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WATCH_ERRANDS_H
#define QUORVEL_SIMULATOR_WATCH_ERRANDS_H

#include <functional>
#include <future>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace quorvel::sim {

// What other threads want of the one that plays the PIN pad, so that it is done between one step of its and the next.
class Errands {
public:
    // While one lives, this thread does what is wanted. What is left over in the end is done then.
    class Service {
    public:
        explicit Service(Errands& errands);
        ~Service();
        Service(const Service&) = delete;
        Service& operator=(const Service&) = delete;

    private:
        Errands& errands_;
    };

    // `wake` lets that thread come to work() soon.
    explicit Errands(std::function<void()> wake) : wake_(std::move(wake)) {}

    // Waits until it is done. Where no thread serves, or this one does, it is done here and now.
    void run(std::function<void()> errand);

    // Those that came before the step that now begins; true if there are any.
    [[nodiscard]] bool take();
    // Does those, after the step.
    void work();

private:
    using Task = std::packaged_task<void()>;

    const std::function<void()> wake_;
    std::mutex mutex_;
    std::optional<std::thread::id> server_;
    std::vector<Task> wanted_;
    // Of the serving thread alone.
    std::vector<Task> taken_;
};

}  // namespace quorvel::sim

#endif
