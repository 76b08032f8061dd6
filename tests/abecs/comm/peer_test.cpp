// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/support/peer.h"

#include <chrono>
#include <fcntl.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <unistd.h>

#include "tests/support/wire.h"

// Every other wire test rests on the peer: that it reports what is wrong is tested here, with a host that is none of
// the library's.
namespace {

using namespace support;
using namespace std::chrono_literals;

class Host {
public:
    explicit Host(const Peer& peer) : fd_(open(peer.path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {}
    ~Host() { close(fd_); }
    Host(Host&&) = delete;

    void send(const std::string& bytes) const { ASSERT_EQ(write(fd_, bytes.data(), bytes.size()), std::ssize(bytes)); }

    // What came, up to `size` bytes; less when the line is hung up.
    [[nodiscard]] std::string receive(size_t size) const {
        std::string bytes;
        for (char c = 0; bytes.size() < size && read(fd_, &c, 1) == 1;) { bytes += c; }
        return bytes;
    }

private:
    int fd_;
};

TEST(Wire, FramesArePutTogether) {
    EXPECT_EQ(support::frame("OPN"), "16 4F504E 17 A8A9"_hex);
    EXPECT_EQ(support::frame("AB\x13\x16\x17", 0x1234), "16 4142 1333 1336 1337 17 1234"_hex);
    EXPECT_EQ(support::encrypted_frame("OPN000"), "16 12 4F504E303030 17 C54C"_hex);
    EXPECT_EQ(support::to_hex("\x01\xFFz"), "01 FF 7A");
}

TEST(Peer, PlaysItsScript) {
    Peer peer;
    const Host host(peer);
    peer.accept_can().request("OPN").response("OPN000");
    host.send("18"_hex);
    EXPECT_EQ(host.receive(1), "04"_hex);
    host.send("16 4F504E 17 A8A9"_hex);
    EXPECT_EQ(host.receive(11), "06 16 4F504E303030 17 775E"_hex);
    peer.discard(3).send("more").expect("z");
    host.send("xyzz");
    EXPECT_EQ(host.receive(4), "more");
    peer.finish();
}

TEST(Peer, ReportsOnceWhatWentWrong) {
    const std::tuple<const char*, void (*)(Peer&), const char*> rows[] = {
        {"OQ", [](Peer& peer) { peer.expect("OPN"); }, "byte 1"},
        {"OP", [](Peer& peer) { peer.expect("OPN"); }, "nothing more came"},
        {"OPN+", [](Peer& peer) { peer.expect("OPN"); }, "more than the script expects: 2B"},
        {"+", [](Peer& peer) { peer.expect_silence(5s); }, "expected silence, received 2B"},
        {"", [](Peer& peer) { peer.hang_up().expect("OPN"); }, "already hung up"},
    };
    for (const auto& [sent, script, report] : rows) {
        Peer peer;
        const Host host(peer);
        host.send(sent);
        script(peer);
        EXPECT_NONFATAL_FAILURE(peer.finish(), report);
        peer.finish();
    }
}

}  // namespace
