// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_LINE_LINE_H
#define QUORVEL_SIMULATOR_LINE_LINE_H

#include <chrono>
#include <optional>
#include <string>
#include <utility>

#include "simulator/wire.h"
#include "wire/descriptor.h"

namespace quorvel::sim {

// The PIN pad's end of a serial line: a pseudo-terminal whose other end programs open as they would a serial port.
// Clients may come and go, and so may the line, as one does that is unplugged.
class Line {
public:
    enum class Event { kReadable, kWoken, kTimedOut };

    // Who wants it `watched` relies on has_departed(), for which the system has only so many watches. Others have one
    // if it can be had. Throws std::system_error.
    explicit Line(bool watched = false);

    // The device to open, for instance /dev/pts/7.
    [[nodiscard]] const std::string& path() const noexcept { return terminal_->path; }

    // Everyone who has the device open loses it, and it is there no more.
    void hang_up() noexcept { terminal_.reset(); }
    // There is a device again, as a rule another one. Throws std::system_error.
    void open();
    [[nodiscard]] bool is_open() const noexcept { return terminal_.has_value(); }

    // Waits for bytes, if any are wanted, or for wake(), at most `limit`.
    [[nodiscard]] Event wait(std::optional<std::chrono::milliseconds> limit, bool wanted);

    // What has come, possibly nothing.
    [[nodiscard]] Bytes read();

    // Whether the last of those who had the device open has closed it since the last call.
    [[nodiscard]] bool has_departed() noexcept { return std::exchange(departed_, false); }

    // Whether somebody has it open now, as far as that is known.
    [[nodiscard]] bool has_visitors() const noexcept { return holders_ != 0; }

    // What nobody takes is lost, as on a line with nobody at its other end. Returns false then. Not while the line is
    // gone, like read().
    bool write(ByteView bytes);

    // Ends the current wait(), or the next one. Safe from other threads and in signal handlers.
    void wake() const noexcept { wakeUp_.wake(); }

private:
    [[nodiscard]] bool await_room() const;
    void see_departures();

    struct Terminal {
        explicit Terminal(bool watched);

        Descriptor master;
        std::string path;
        // Held open, so that the line neither hangs up nor forgets its settings when a client closes it.
        Descriptor slave;
        // Of inotify, as a master whose slave the PIN pad has open itself is not told.
        std::optional<Descriptor> visits;
    };

    const bool watched_;
    size_t holders_ = 0;
    std::optional<Terminal> terminal_;
    WakeUp wakeUp_;
    bool departed_ = false;
};

}  // namespace quorvel::sim

#endif
