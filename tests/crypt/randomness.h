// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_CRYPT_RANDOMNESS_H
#define QUORVEL_TESTS_CRYPT_RANDOMNESS_H

#include <functional>
#include <random>
#include <span>
#include <sys/types.h>

namespace support {

// While one lives, `answer` stands for getrandom: it fills what it is given, or part of it, and says how much, or sets
// errno and gives -1. Only one at a time. For programs linked with -Wl,--wrap=getrandom.
class Randomness {
public:
    using Answer = std::function<ssize_t(std::span<uint8_t>)>;

    explicit Randomness(Answer answer) {
        current = std::move(answer);
        count = 0;
    }
    ~Randomness() { current = nullptr; }
    Randomness(Randomness&&) = delete;

    // Calls so far.
    [[nodiscard]] static size_t calls() { return count; }

    static inline Answer current;
    static inline size_t count = 0;
};

// Fills with what it makes of a seed, so that two of them give the same; gives nothing any more after so many calls.
class Sequence {
public:
    explicit Sequence(unsigned seed = 1, size_t calls = SIZE_MAX) : engine_(seed), calls_(calls) {}
    ssize_t operator()(std::span<uint8_t> out) {
        if (Randomness::calls() > calls_) { return -1; }
        for (uint8_t& byte : out) { byte = static_cast<uint8_t>(engine_()); }
        return static_cast<ssize_t>(out.size());
    }

private:
    std::mt19937 engine_;
    size_t calls_;
};

}  // namespace support

extern "C" {
ssize_t __real_getrandom(void* out, size_t size, unsigned flags);

[[gnu::used]] inline ssize_t __wrap_getrandom(void* out, size_t size, unsigned flags) {
    if (!support::Randomness::current) { return __real_getrandom(out, size, flags); }
    ++support::Randomness::count;
    return support::Randomness::current({static_cast<uint8_t*>(out), size});
}
}

#endif
