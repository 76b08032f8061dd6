// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_WIRE_DESCRIPTOR_H
#define QUORVEL_WIRE_DESCRIPTOR_H

#include <string>

namespace quorvel::wire {

// Throws std::system_error with errno and the call that has set it.
[[noreturn]] void fail_call(const char* call);

// Whether trying again may help.
[[nodiscard]] bool is_transient(int error) noexcept;

// A file descriptor that is closed with its owner.
class Descriptor {
public:
    // Throws std::system_error that names `call` for the negative result of a failed system call.
    Descriptor(int descriptor, const char* call);
    ~Descriptor();
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] int get() const noexcept { return descriptor_; }

private:
    int descriptor_;
};

// The path of a pseudo-terminal's other side, which may be opened from now on. Throws std::system_error.
[[nodiscard]] std::string slave_path(const Descriptor& master);

// Wakes whoever polls get() for POLLIN.
class WakeUp {
public:
    // Throws std::system_error.
    WakeUp();

    [[nodiscard]] int get() const noexcept { return event_.get(); }

    // Safe from other threads and in signal handlers.
    void wake() const noexcept;
    // Until the next wake(). Throws std::system_error.
    void clear() const;

private:
    Descriptor event_;
};

}  // namespace quorvel::wire

#endif
