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

private:
    int fd_;
};

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
