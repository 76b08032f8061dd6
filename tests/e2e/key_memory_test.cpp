// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "abecs/comm/comm.h"
#include "quorvel/quorvel.h"
#include "simulator/pin_pad.h"
#include "tests/support/raised.h"

namespace {

// The virtual PIN pad in a process of its own: it knows the session key too, and must not put it into this one.
class ForkedPinPad {
public:
    ForkedPinPad() {
        EXPECT_EQ(pipe(path_.data()), 0);
        EXPECT_EQ(pipe(life_.data()), 0);
        child_ = fork();
        if (child_ == 0) { run(); }
        close(path_[1]);
        close(life_[0]);
        std::array<char, 64> text{};
        const ssize_t length = read(path_[0], text.data(), text.size() - 1);
        EXPECT_GT(length, 0);
        path = std::string(text.data(), static_cast<size_t>(std::max<ssize_t>(length, 0)));
    }

    ~ForkedPinPad() {
        close(life_[1]);
        waitpid(child_, nullptr, 0);
        close(path_[0]);
    }

    ForkedPinPad(const ForkedPinPad&) = delete;
    ForkedPinPad& operator=(const ForkedPinPad&) = delete;

    std::string path;

private:
    [[noreturn]] void run() {
        close(life_[1]);
        quorvel::sim::PinPad pinPad;
        pinPad.start();
        const std::string name = pinPad.path();
        char end = 0;
        if (write(path_[1], name.data(), name.size()) < 0 || read(life_[0], &end, 1) < 0) { _exit(1); }
        pinPad.stop();
        _exit(0);
    }

    std::array<int, 2> path_{};
    std::array<int, 2> life_{};
    pid_t child_ = -1;
};

// A key kept so that the bytes sought stand nowhere because of the search itself.
class MaskedKey {
public:
    explicit MaskedKey(const uint8_t* key) {
        for (size_t i = 0; i < kSize; ++i) {
            plain_[i] = static_cast<uint8_t>(key[i] ^ kMask);
            swapped_[i / 4 * 4 + 3 - i % 4] = plain_[i];
        }
    }

    // In all writable memory, as it is or as the first words of a key schedule.
    [[nodiscard]] size_t occurrences() const {
        size_t count = 0;
        std::ifstream maps("/proc/self/maps");
        for (std::string line; std::getline(maps, line);) {
            if (line.find(" rw") == std::string::npos || line.ends_with("[vvar]")) { continue; }
            std::istringstream range(line);
            uintptr_t begin = 0;
            uintptr_t end = 0;
            char dash = 0;
            range >> std::hex >> begin >> dash >> end;
            count += count_in(reinterpret_cast<const volatile uint8_t*>(begin), end - begin);
        }
        return count;
    }

private:
    static constexpr size_t kSize = 16;
    static constexpr uint8_t kMask = 0xA5;
    using Pattern = std::array<uint8_t, kSize>;

    [[nodiscard]] size_t count_in(const volatile uint8_t* memory, size_t size) const {
        size_t count = 0;
        for (size_t at = 0; at + kSize <= size; ++at) {
            count += matches(memory + at, plain_) || matches(memory + at, swapped_) ? 1U : 0U;
        }
        return count;
    }

    static bool matches(const volatile uint8_t* memory, const Pattern& pattern) {
        for (size_t i = 0; i < kSize; ++i) {
            if (static_cast<uint8_t>(memory[i] ^ kMask) != pattern[i]) { return false; }
        }
        return true;
    }

    Pattern plain_{};
    Pattern swapped_{};
};

template <typename Command>
void expect_success(Command&& command) {
    int32_t stat = -99;
    EXPECT_NO_RAISE(stat = command());
    EXPECT_EQ(stat, 0);
}

void exchange(AbecsComm* link) {
    AbecsCmdGinOut out{};
    expect_success([&] { return abecs_cmd_gin(link, 0, &out); });
}

class SessionKey : public testing::TestWithParam<bool> {};

TEST_P(SessionKey, StandsNowhereInMemoryOnceTheSessionIsOver) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "a sanitizer's own memory is too large to look through";
#endif
    const ForkedPinPad pinPad;
    AbecsComm* link = nullptr;
    EXPECT_NO_RAISE(link = abecs_comm_open(pinPad.path.c_str()));
    ASSERT_NE(link, nullptr);
    expect_success([&] { return abecs_cmd_opn(link, true); });
    ASSERT_TRUE(link->keySet);
    const MaskedKey key(link->key.data());
    exchange(link);
    EXPECT_EQ(key.occurrences(), 1U) << "the handle's own copy, and no other";
    if (GetParam()) {
        expect_success([&] { return abecs_cmd_clo(link, "BYE"); });
        EXPECT_EQ(key.occurrences(), 0U);
        exchange(link);
    }
    EXPECT_NO_RAISE(abecs_comm_close(&link));
    EXPECT_EQ(key.occurrences(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Ended, SessionKey, testing::Bool(),
                         [](const auto& test) { return test.param ? "ByClo" : "ByClosingTheLink"; });

TEST(WorkingKey, StandsNowhereButOnTheLink) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "a sanitizer's own memory is too large to look through";
#endif
    const ForkedPinPad pinPad;
    AbecsComm* link = nullptr;
    EXPECT_NO_RAISE(link = abecs_comm_open(pinPad.path.c_str()));
    ASSERT_NE(link, nullptr);
    const AbecsMk masterKey{
        ABECS_MK_TYPE_TDES,
        1,
        {0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10, 0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}};
    expect_success([&] { return abecs_cmd_dwk1(link, &masterKey, nullptr, true); });
    const MaskedKey first(link->wkPanKey.data());
    EXPECT_EQ(first.occurrences(), 1U);
    expect_success([&] { return abecs_cmd_dwk2(link, nullptr, true); });
    EXPECT_EQ(first.occurrences(), 0U);
    const MaskedKey second(link->wkPanKey.data());
    EXPECT_EQ(second.occurrences(), 1U);
    EXPECT_NO_RAISE(abecs_comm_close(&link));
    EXPECT_EQ(second.occurrences(), 0U);
}

}  // namespace
