// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SUPPORT_PEER_H
#define QUORVEL_TESTS_SUPPORT_PEER_H

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <termios.h>
#include <thread>

#include "tests/support/wire.h"

namespace support {

// The other side of the serial line: a pseudo-terminal in raw mode and a thread that plays a script on it.
//
//     Peer peer;
//     peer.expect("16 4F 50 4E 17 A8 A9"_hex).send("06"_hex);
//     ... the host opens peer.path() and sends ...
//
// Steps run in order and as soon as they are given; more can be added at any time. What does not come as the script
// says is reported by finish() as a failure of the line that gave the step. The line is then hung up at once, so that
// the host does not wait for answers that will not come.
class Peer {
public:
    using Duration = std::chrono::milliseconds;

    // The line of the test that gave a step.
    struct Where {
        Where(const char* sourceFile = __builtin_FILE(), int sourceLine = __builtin_LINE())
            : file(sourceFile), line(sourceLine) {}
        const char* file;
        int line;
    };

    Peer();
    ~Peer();
    Peer(Peer&&) = delete;

    // The device for the host to open.
    [[nodiscard]] const std::string& path() const { return path_; }

    // How the host has set the line.
    [[nodiscard]] termios settings() const;

    // The host's next bytes are exactly these.
    Peer& expect(std::string bytes, Where where = {});
    Peer& send(std::string bytes, Where where = {});
    // Nothing is sent and nothing is looked at for this long.
    Peer& wait(Duration time);
    // The host sends nothing for this long.
    Peer& expect_silence(Duration time, Where where = {});
    // Reads this many bytes, whatever they are.
    Peer& discard(size_t count, Where where = {});
    // Reads this many bytes and sends what `answer` makes of them.
    Peer& reply(size_t count, std::function<std::string(const std::string&)> answer, Where where = {});
    // The device is unplugged.
    Peer& hang_up();

    // A command, acknowledged; a response. The payload is what stands between SYN and ETB before escaping.
    Peer& request(std::string_view payload, Where where = {});
    // Whatever the command is.
    Peer& any_request(Where where = {});
    Peer& response(std::string_view payload, Where where = {});
    // The host aborts and hears that it is done; this is also how opening a link ends.
    Peer& accept_can(Where where = {});

    // Returns once every step given so far is over.
    void settle();

    // Ends the script and reports what went wrong, once. Whatever the host was to send, it has sent by now. The
    // destructor does it too.
    void finish();

private:
    using Clock = std::chrono::steady_clock;
    using Step = std::function<void(Peer&)>;
    struct Failed {};

    Peer& add(Step step);
    void play();
    void fail(const Where& where, const std::string& text);
    void match(const std::string& expected, const Where& where);
    void write(std::string_view bytes, const Where& where);
    std::string take(size_t count, const Where& where, const std::string& what);
    void await(short events, const Where& where, const std::string& what);
    bool ready(short events, Duration time);
    std::string read_waiting(size_t limit);
    std::string read_some(size_t limit, const Where& where, const std::string& what);
    void report_rest();
    void close_master();

    int master_ = -1;
    int slave_ = -1;   // kept open, so that the line is not hung up before the host opens it
    int finish_ = -1;  // readable once the script is finished
    std::string path_;

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Step> steps_;
    bool playing_ = false;
    bool finished_ = false;

    // The thread's own until it has been joined.
    std::string failure_;
    Where failedAt_;
    std::thread thread_;
};

}  // namespace support

#endif
