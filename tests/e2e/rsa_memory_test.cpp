// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <iostream>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include "quorvel/quorvel.h"
#include "simulator/pin_pad.h"
#include "tests/e2e/other_process.h"
#include "tests/support/big.h"

using support::Big;

namespace {

constexpr unsigned long kPublicExponent = 65537;

// How many processes each test looks into. Take 100 to measure a change of how keys are made:
// QUORVEL_KEY_PROCESSES=100 e2e_tests --gtest_filter='*RsaMemory*'
int processes() {
    const char* number = std::getenv("QUORVEL_KEY_PROCESSES");
    return number != nullptr ? std::atoi(number) : 2;
}

// The tests look at what optimised code leaves.
bool can_be_measured() {
#if defined(__SANITIZE_ADDRESS__) || !defined(NDEBUG)
    return false;
#else
    return true;
#endif
}

uint64_t word_at(const std::string& memory, size_t offset) {
    uint64_t word = 0;
    std::memcpy(&word, memory.data() + offset, sizeof word);
    return word;
}

constexpr bool is_empty_page(const std::string& memory, size_t offset) {
    constexpr size_t kPage = 4096;
    return offset % kPage == 0 && offset + kPage <= memory.size()
           && std::all_of(memory.data() + offset, memory.data() + offset + kPage, [](char byte) { return byte == 0; });
}

// Numbers as they may stand in memory: in words of 64 bits, in digits of 60 bits, and as big-endian bytes. One word of
// them is enough to be found, wherever it stands.
class Secrets {
public:
    void add(const std::string& name, const Big& number) {
        const auto size = static_cast<size_t>(number.bits() + 7) / 8 / 8 * 8;
        const std::string bytes = number.little_endian(size + 8).substr(0, size);
        for (size_t i = 0; i < size; i += 8) { add(name, word_at(bytes, i)); }
        for (size_t bit = 0; bit + 60 <= 8 * size; bit += 60) {
            const uint64_t low = word_at(bytes + std::string(8, '\0'), bit / 64 * 8);
            const uint64_t high = word_at(bytes + std::string(8, '\0'), bit / 64 * 8 + 8);
            const size_t shift = bit % 64;
            const uint64_t digit = shift == 0 ? low : low >> shift | high << (64 - shift);
            add(name, digit & ((uint64_t{1} << 60) - 1));
        }
    }

    // Which of them stand there.
    [[nodiscard]] std::set<std::string> found_in(const std::vector<std::string>& memory) const {
        std::set<std::string> found;
        for (const std::string& mapping : memory) {
            for (size_t at = 0; at + 8 <= mapping.size(); ++at) {
                if (is_empty_page(mapping, at)) {
                    at += 4096 - 8;
                    continue;
                }
                const uint64_t word = word_at(mapping, at);
                if (!likely_[word % likely_.size()]) { continue; }
                if (const auto entry = words_.find(word); entry != words_.end()) { found.insert(entry->second); }
            }
        }
        return found;
    }

private:
    void add(const std::string& name, uint64_t word) {
        if (word >> 40 == 0) { return; }
        for (const uint64_t form : {word, __builtin_bswap64(word)}) {
            words_.emplace(form, name);
            likely_[form % likely_.size()] = true;
        }
    }

    std::unordered_map<uint64_t, std::string> words_;
    std::vector<bool> likely_ = std::vector<bool>(65536);
};

// A prime of the modulus, sought at every place where one could stand.
std::optional<Big> prime_in(const std::vector<std::string>& memory, const Big& modulus) {
    const auto size = static_cast<size_t>(modulus.bits()) / 16;
    const size_t digits = (8 * size + 59) / 60;
    const Big shift(uint64_t{1} << 60);
    for (const std::string& mapping : memory) {
        for (size_t at = 0; at + 8 * digits <= mapping.size(); at += 8) {
            if (is_empty_page(mapping, at) || mapping[at] % 2 == 0 || word_at(mapping, at + 8) >> 40 == 0) { continue; }
            if (word_at(mapping, at + size - 8) >> 62 == 3) {
                const Big number(mapping.data() + at, size);
                if (modulus % number == Big(0)) { return number; }
            }
            if (const uint64_t top = word_at(mapping, at + 8 * digits - 8); top >> (8 * size % 60 - 2) == 3) {
                Big number;
                for (size_t i = digits; i-- > 0;) { number = number * shift + Big(word_at(mapping, at + 8 * i)); }
                if (modulus % number == Big(0)) { return number; }
            }
        }
    }
    return std::nullopt;
}

Secrets secrets_of(const Big& modulus, const Big& p) {
    const Big one(1);
    const Big e(kPublicExponent);
    const Big q = modulus / p;
    const Big dP = e.inverse(p - one);
    const Big dQ = e.inverse(q - one);
    const Big phi = (p - one) * (q - one);
    Secrets secrets;
    secrets.add("p", p);
    secrets.add("q", q);
    secrets.add("p - 1", p - one);
    secrets.add("q - 1", q - one);
    secrets.add("dP", dP);
    secrets.add("dQ", dQ);
    secrets.add("qP", q.inverse(p));
    secrets.add("pQ", p.inverse(q));
    secrets.add("d", e.inverse(phi));
    secrets.add("d", e.inverse(phi / (p - one).common(q - one)));
    return secrets;
}

// Of several processes, what was found in how many.
class Tally {
public:
    explicit Tally(const char* what) : what_(what) {}
    ~Tally() {
        EXPECT_TRUE(counts_.empty()) << text();
        if (processes() > 2) { std::cout << text() << '\n'; }
    }
    Tally(Tally&&) = delete;

    void add(const std::set<std::string>& found) {
        ++all_;
        if (!found.empty()) { ++counts_["anything"]; }
        for (const std::string& name : found) { ++counts_[name]; }
    }

private:
    [[nodiscard]] std::string text() const {
        std::string text = std::string(what_) + ": of " + std::to_string(all_) + " processes ";
        for (const auto& [name, count] : counts_) { text += std::to_string(count) + " kept " + name + ", "; }
        return text + (counts_.empty() ? "none kept anything" : "and the others nothing");
    }

    const char* what_;
    int all_ = 0;
    std::map<std::string, int> counts_;
};

using Act = void (*)(CryptRsaKey* key, int32_t size);

void nothing(CryptRsaKey*, int32_t) {}

void decipher(CryptRsaKey* key, int32_t size) {
    CryptRsaPublicKey publicKey;
    std::array<uint8_t, 256> block{};
    const auto length = static_cast<size_t>(size);
    crypt_rsa_get_public_key(key, &publicKey);
    crypt_rsa_encrypt(&publicKey, block.data(), 16, block.data(), block.size());
    if (crypt_rsa_decrypt(key, block.data(), length, block.data(), block.size()) != 16) { _exit(1); }
    block[length - 1] = 7;
    if (crypt_rsa_private_exp(key, block.data() + 1, length - 1, block.data(), length) != length) { _exit(1); }
}

void make_use_delete(OtherProcess::Side& side, int32_t size, Act act) {
    CryptRsaKey* key = crypt_rsa_key_new(size, kPublicExponent);
    CryptRsaPublicKey publicKey;
    crypt_rsa_get_public_key(key, &publicKey);
    side.send(publicKey.modulus, publicKey.modulusSize);
    side.pause();
    act(key, size);
    crypt_rsa_key_delete(&key);
    side.pause();
}

struct Case {
    const char* name;
    int32_t size;
    Act act;
    bool onThread;
};

class RsaMemory : public testing::TestWithParam<Case> {};

TEST_P(RsaMemory, HasNothingOfAKeyThatWasDeleted) {
    if (!can_be_measured()) { GTEST_SKIP() << "only what users get is measured"; }
    const Case& wanted = GetParam();
    Tally tally(wanted.name);
    for (int i = 0; i < processes(); ++i) {
        const OtherProcess process([&](OtherProcess::Side& side) {
            if (!wanted.onThread) { return make_use_delete(side, wanted.size, wanted.act); }
            std::thread([&] { make_use_delete(side, wanted.size, wanted.act); }).join();
        });
        const Big modulus(process.receive(static_cast<size_t>(wanted.size)));
        ASSERT_TRUE(process.pauses());
        const std::optional<Big> prime = prime_in(process.memory(), modulus);
        ASSERT_TRUE(prime.has_value()) << "a key that is in use cannot hide from this test";
        process.go_on();
        ASSERT_TRUE(process.pauses());
        tally.add(secrets_of(modulus, *prime).found_in(process.memory()));
        process.go_on();
    }
}

INSTANTIATE_TEST_SUITE_P(OfAKey, RsaMemory,
                         testing::Values(Case{"Made1024", 128, nothing, false}, Case{"Made2048", 256, nothing, false},
                                         Case{"Used1024", 128, decipher, false}, Case{"Used2048", 256, decipher, false},
                                         Case{"UsedOnAThread2048", 256, decipher, true}),
                         [](const auto& test) { return test.param.name; });

TEST(LoadedRsaMemory, HasNothingOfAKeyThatWasDeleted) {
    if (!can_be_measured()) { GTEST_SKIP() << "only what users get is measured"; }
    constexpr size_t kSize = 128;
    Tally tally("Loaded1024");
    for (int i = 0; i < processes(); ++i) {
        const OtherProcess process([&](OtherProcess::Side& side) {
            std::array<uint8_t, 2 * kSize> numbers{};
            const std::array<uint8_t, 3> exponent{1, 0, 1};
            side.receive(numbers.data(), numbers.size());
            CryptRsaKey* key = crypt_rsa_key_load(numbers.data(), kSize, exponent.data(), exponent.size(),
                                                  numbers.data() + kSize, kSize);
            explicit_bzero(numbers.data(), numbers.size());
            side.pause();
            decipher(key, kSize);
            crypt_rsa_key_delete(&key);
            side.pause();
        });
        const Big p = Big::random_prime(512);
        const Big q = Big::random_prime(512);
        const Big modulus = p * q;
        const Big d = Big(kPublicExponent).inverse((p - Big(1)) * (q - Big(1)));
        Secrets secrets;
        secrets.add("d", d);
        process.send(modulus.bytes(kSize) + d.bytes(kSize));
        ASSERT_TRUE(process.pauses());
        ASSERT_FALSE(secrets.found_in(process.memory()).empty());
        process.go_on();
        ASSERT_TRUE(process.pauses());
        tally.add(secrets.found_in(process.memory()));
        process.go_on();
    }
}

// Who records a session, and gets at the memory of the process when it is over, must not be able to read it.
TEST(SessionRsaMemory, DoesNotOpenARecordedSession) {
    if (!can_be_measured()) { GTEST_SKIP() << "only what users get is measured"; }
    Tally tally("Session");
    for (int i = 0; i < processes(); ++i) {
        const OtherProcess process([](OtherProcess::Side& side) {
            std::array<char, 32> path{};
            side.receive(path.data(), path.size());
            AbecsComm* link = abecs_comm_open(path.data());
            AbecsCmdGinOut out{};
            if (abecs_cmd_opn(link, true) != 0 || abecs_cmd_gin(link, 0, &out) != 0) { _exit(1); }
            if (abecs_cmd_clo(link, "BYE") != 0) { _exit(1); }
            abecs_comm_close(&link);
            side.pause();
        });
        Big modulus;
        std::optional<Big> prime;
        quorvel::sim::PinPad::Options options;
        // While the host waits for the answer to its public key.
        options.listeners.traffic = [&](const quorvel::sim::Traffic& traffic) {
            const std::string wire(traffic.wire.begin(), traffic.wire.end());
            const size_t head = wire.find("OPN5230256");
            if (head == std::string::npos) { return; }
            modulus = Big::of_digits(wire.substr(head + 10, 512));
            prime = prime_in(process.memory(), modulus);
        };
        quorvel::sim::PinPad pinPad(std::move(options));
        pinPad.start();
        std::string path = pinPad.path();
        path.resize(32);
        process.send(path);
        ASSERT_TRUE(process.pauses());
        pinPad.stop();
        ASSERT_TRUE(prime.has_value());
        const std::vector<std::string> memory = process.memory();
        std::set<std::string> found = secrets_of(modulus, *prime).found_in(memory);
        if (prime_in(memory, modulus).has_value()) { found.insert("the whole session"); }
        tally.add(found);
        process.go_on();
    }
}

}  // namespace
