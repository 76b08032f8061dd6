// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <unordered_map>
#include <vector>

#include "abecs/comm/comm.h"
#include "quorvel/quorvel.h"
#include "simulator/pin_pad.h"
#include "tests/support/big.h"

using support::Big;

namespace {

constexpr unsigned long kPublicExponent = 65537;

// The tests look at what optimised code leaves.
#if defined(__SANITIZE_ADDRESS__) || !defined(NDEBUG)
constexpr bool kCanBeMeasured = false;
#else
constexpr bool kCanBeMeasured = true;
#endif

// A process of its own, whose memory can be looked at while it waits.
class OtherProcess {
public:
    // Its side of the matter. What it sends goes straight out of where it stands, and is copied nowhere.
    class Side {
    public:
        explicit Side(int fd) : fd_(fd) {}
        void send(const void* bytes, size_t size) const {
            if (::send(fd_, bytes, size, MSG_NOSIGNAL) != static_cast<ssize_t>(size)) { _exit(1); }
        }
        void receive(void* bytes, size_t size) const {
            if (recv(fd_, bytes, size, MSG_WAITALL) != static_cast<ssize_t>(size)) { _exit(1); }
        }
        // Until it is told to go on.
        void pause() const {
            char word = 'p';
            send(&word, 1);
            receive(&word, 1);
        }

    private:
        int fd_;
    };

    // It ends with `act`, or when anything fails.
    explicit OtherProcess(const std::function<void(const Side&)>& act) {
        std::array<int, 2> ends{};
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
        child_ = fork();
        if (child_ == 0) {
            close(ends[0]);
            act(Side(ends[1]));
            _exit(0);
        }
        close(ends[1]);
        fd_ = ends[0];
    }
    ~OtherProcess() {
        close(fd_);
        waitpid(child_, nullptr, 0);
    }
    OtherProcess(OtherProcess&&) = delete;

    // Empty when the process has ended.
    [[nodiscard]] std::string receive(size_t size) const {
        std::string bytes(size, '\0');
        const ssize_t got = recv(fd_, bytes.data(), size, MSG_WAITALL);
        bytes.resize(got == static_cast<ssize_t>(size) ? size : 0);
        return bytes;
    }
    void send(const std::string& bytes) const {
        EXPECT_EQ(::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
    }

    // All memory that it can write to, one string for each mapping, while it pauses.
    [[nodiscard]] std::vector<std::string> paused() const {
        EXPECT_EQ(receive(1), "p") << "the process has ended instead of pausing";
        return memory();
    }
    [[nodiscard]] std::vector<std::string> memory() const {
        const std::string folder = "/proc/" + std::to_string(child_);
        const int memory = open((folder + "/mem").c_str(), O_RDONLY | O_CLOEXEC);
        EXPECT_GE(memory, 0);
        std::ifstream maps(folder + "/maps");
        std::vector<std::string> all;
        for (std::string line; std::getline(maps, line);) {
            if (line.find(" rw") == std::string::npos || line.ends_with("[vvar]")) { continue; }
            std::istringstream range(line);
            uintptr_t begin = 0;
            uintptr_t end = 0;
            char dash = 0;
            range >> std::hex >> begin >> dash >> end;
            std::string bytes(end - begin, '\0');
            const ssize_t got = pread(memory, bytes.data(), bytes.size(), static_cast<off_t>(begin));
            EXPECT_EQ(got, static_cast<ssize_t>(bytes.size())) << line;
            all.push_back(std::move(bytes));
        }
        close(memory);
        EXPECT_FALSE(all.empty());
        return all;
    }
    void go_on() const { send("g"); }

private:
    int fd_ = -1;
    pid_t child_ = -1;
};

uint64_t word_at(const std::string& memory, size_t offset) {
    uint64_t word = 0;
    std::memcpy(&word, memory.data() + offset, sizeof word);
    return word;
}

bool is_empty_page(const std::string& memory, size_t offset) {
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

// How often 16 bytes stand there, as they are or as the first words of a key schedule.
size_t copies(const std::vector<std::string>& memory, const std::string& key) {
    std::string swapped = key;
    for (size_t i = 0; i < key.size(); i += 4) { std::reverse(&swapped[i], &swapped[i] + 4); }
    size_t count = 0;
    for (const std::string& mapping : memory) {
        for (const std::string& form : {key, swapped}) {
            for (size_t at = 0; (at = mapping.find(form, at)) != std::string::npos; ++at) { ++count; }
        }
    }
    return count;
}

using Found = std::set<std::string>;
using Side = OtherProcess::Side;

void need(bool success) {
    if (!success) { _exit(1); }
}

void use(CryptRsaKey* key, size_t size) {
    CryptRsaPublicKey publicKey;
    std::array<uint8_t, 256> block{};
    crypt_rsa_get_public_key(key, &publicKey);
    crypt_rsa_encrypt(&publicKey, block.data(), 16, block.data(), block.size());
    need(crypt_rsa_decrypt(key, block.data(), size, block.data(), block.size()) == 16);
    block[size - 1] = 7;
    need(crypt_rsa_private_exp(key, block.data() + 1, size - 1, block.data(), size) == size);
}

struct Case {
    const char* name;
    size_t size;
    bool used;
    bool onThread;
};

void make_and_delete(const Side& side, const Case& wanted) {
    CryptRsaKey* key = crypt_rsa_key_new(static_cast<int32_t>(wanted.size), kPublicExponent);
    CryptRsaPublicKey publicKey;
    crypt_rsa_get_public_key(key, &publicKey);
    side.send(publicKey.modulus, publicKey.modulusSize);
    side.pause();
    if (wanted.used) { use(key, wanted.size); }
    crypt_rsa_key_delete(&key);
    side.pause();
}

class Memory : public testing::Test {
protected:
    void SetUp() override {
        if (!kCanBeMeasured) { GTEST_SKIP() << "only what users get is measured"; }
    }
};

class RsaMemory : public Memory, public testing::WithParamInterface<Case> {};

// Not every key leaves what a fault leaves: --gtest_repeat looks into more processes.
TEST_P(RsaMemory, HasNothingOfAKeyThatWasDeleted) {
    const Case& wanted = GetParam();
    for (int i = 0; i < 2; ++i) {
        const OtherProcess process([&](const Side& side) {
            if (!wanted.onThread) { return make_and_delete(side, wanted); }
            std::thread([&] { make_and_delete(side, wanted); }).join();
        });
        const Big modulus(process.receive(wanted.size));
        const std::optional<Big> prime = prime_in(process.paused(), modulus);
        ASSERT_TRUE(prime.has_value()) << "a key that is in use cannot hide from this test";
        process.go_on();
        EXPECT_EQ(secrets_of(modulus, *prime).found_in(process.paused()), Found());
    }
}

INSTANTIATE_TEST_SUITE_P(OfAKey, RsaMemory,
                         testing::Values(Case{"Made1024", 128, false, false}, Case{"Made2048", 256, false, false},
                                         Case{"Used1024", 128, true, false}, Case{"Used2048", 256, true, false},
                                         Case{"UsedOnAThread2048", 256, true, true}),
                         [](const auto& test) { return test.param.name; });

TEST_F(Memory, HasNothingOfAnRsaKeyThatWasLoadedAndDeleted) {
    constexpr size_t kSize = 128;
    for (int i = 0; i < 2; ++i) {
        const OtherProcess process([&](const Side& side) {
            std::array<uint8_t, 2 * kSize> numbers{};
            const std::array<uint8_t, 3> exponent{1, 0, 1};
            side.receive(numbers.data(), numbers.size());
            CryptRsaKey* key = crypt_rsa_key_load(numbers.data(), kSize, exponent.data(), exponent.size(),
                                                  numbers.data() + kSize, kSize);
            explicit_bzero(numbers.data(), numbers.size());
            side.pause();
            use(key, kSize);
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
        EXPECT_EQ(secrets.found_in(process.paused()), Found{"d"});
        process.go_on();
        EXPECT_EQ(secrets.found_in(process.paused()), Found());
    }
}

// To the PIN pad that this process is going to have.
AbecsComm* open_link(const Side& side) {
    std::array<char, 32> path{};
    side.receive(path.data(), path.size());
    return abecs_comm_open(path.data());
}

void plug_in(quorvel::sim::PinPad& pinPad, const OtherProcess& process) {
    pinPad.start();
    std::string path = pinPad.path();
    path.resize(32);
    process.send(path);
}

class SessionMemory : public Memory, public testing::WithParamInterface<bool> {};

// Who records a session, and gets at the memory of the process when it is over, must not be able to read it.
TEST_P(SessionMemory, HasNeitherItsKeyNorTheRsaKeyOnceItIsOver) {
    const bool byClo = GetParam();
    const OtherProcess process([&](const Side& side) {
        AbecsCmdGinOut out{};
        AbecsComm* link = open_link(side);
        need(abecs_cmd_opn(link, true) == ABECS_RSP_STAT_ST_OK);
        need(abecs_cmd_gin(link, 0, &out) == ABECS_RSP_STAT_ST_OK);
        side.send(link->key.data(), link->key.size());
        side.pause();
        if (byClo) {
            need(abecs_cmd_clo(link, "BYE") == ABECS_RSP_STAT_ST_OK);
            side.pause();
            need(abecs_cmd_gin(link, 0, &out) == ABECS_RSP_STAT_ST_OK);
        }
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
    plug_in(pinPad, process);
    const std::string key = process.receive(16);
    EXPECT_EQ(copies(process.paused(), key), 1U) << "the handle's own, and no other";
    for (int i = byClo ? 2 : 1; i > 0; --i) {
        process.go_on();
        const std::vector<std::string> memory = process.paused();
        EXPECT_EQ(copies(memory, key), 0U);
        ASSERT_TRUE(prime.has_value());
        EXPECT_EQ(secrets_of(modulus, *prime).found_in(memory), Found());
        EXPECT_FALSE(prime_in(memory, modulus).has_value()) << "the whole session";
    }
}

INSTANTIATE_TEST_SUITE_P(Ended, SessionMemory, testing::Bool(),
                         [](const auto& test) { return test.param ? "ByClo" : "ByClosingTheLink"; });

TEST_F(Memory, HasThePanKeyNowhereButOnTheLink) {
    const OtherProcess process([](const Side& side) {
        AbecsComm* link = open_link(side);
        const AbecsMk masterKey{
            ABECS_MK_TYPE_TDES,
            1,
            {0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10, 0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}};
        for (const bool first : {true, false}) {
            need((first ? abecs_cmd_dwk1(link, &masterKey, nullptr, true) : abecs_cmd_dwk2(link, nullptr, true))
                 == ABECS_RSP_STAT_ST_OK);
            side.send(link->wkPanKey.data(), link->wkPanKey.size());
            side.pause();
        }
        abecs_comm_close(&link);
        side.pause();
    });
    quorvel::sim::PinPad pinPad;
    plug_in(pinPad, process);
    const std::string first = process.receive(16);
    EXPECT_EQ(copies(process.paused(), first), 1U);
    process.go_on();
    const std::string second = process.receive(16);
    const std::vector<std::string> memory = process.paused();
    EXPECT_EQ(copies(memory, first), 0U);
    EXPECT_EQ(copies(memory, second), 1U);
    process.go_on();
    EXPECT_EQ(copies(process.paused(), second), 0U);
}

}  // namespace
