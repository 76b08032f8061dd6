// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WEB_WORKERS_H
#define QUORVEL_SIMULATOR_WEB_WORKERS_H

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace quorvel::sim::web {

// Threads that are made when there is work for them, up to so many; whoever brings more waits.
class Workers {
public:
    explicit Workers(size_t most) : most_(most) {}
    ~Workers() { finish(); }
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    void bring(std::function<void()> work);
    // Nobody waits to bring any more; what they bring then is done when there is a thread for it.
    void open();
    // Does what there is, and ends.
    void finish();

private:
    void serve();

    const size_t most_;
    std::mutex mutex_;
    std::condition_variable brought_;
    std::condition_variable taken_;
    std::deque<std::function<void()>> works_;
    std::vector<std::thread> threads_;
    // Threads that do nothing.
    size_t idle_ = 0;
    bool open_ = false;
    bool finishing_ = false;
};

}  // namespace quorvel::sim::web

#endif
