// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_E2E_OTHER_PROCESS_H
#define QUORVEL_TESTS_E2E_OTHER_PROCESS_H

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

// A process of its own, whose memory can be looked at while it waits.
class OtherProcess {
public:
    // Its side of the matter. What it sends goes straight out of where it stands, and is copied nowhere.
    class Side {
    public:
        explicit Side(int fd) : fd_(fd) {}
        void send(const void* bytes, size_t size);
        void receive(void* bytes, size_t size);
        // Until it is told to go on.
        void pause();

    private:
        int fd_;
    };

    // It ends with `act`, or when anything fails.
    explicit OtherProcess(const std::function<void(Side&)>& act);
    ~OtherProcess();
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

    // Empty when the process has ended.
    [[nodiscard]] std::string receive(size_t size) const;
    void send(const std::string& bytes) const;
    // False when the process has ended instead of pausing.
    [[nodiscard]] bool pauses() const { return receive(1).size() == 1; }
    void go_on() const { send("g"); }

    // All memory that it can write to, one string for each mapping.
    [[nodiscard]] std::vector<std::string> memory() const;

private:
    int fd_ = -1;
    pid_t child_ = -1;
};

#endif
