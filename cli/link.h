// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_LINK_H
#define QUORVEL_CLI_LINK_H

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "cli/library.h"
#include "cli/output.h"
#include "cli/settings.h"
#include "cli/trace.h"

namespace quorvel::cli {

// The link to the PIN pad with a session open on it. However it ends, the PIN pad is left idle: what it waits for is
// aborted and the session is closed.
class Link {
public:
    // Throws Error.
    Link(const Settings& settings, Output& output);
    ~Link();
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

    [[nodiscard]] AbecsComm* get() const noexcept { return pinPad_; }

    // Runs a command that is answered at once and throws StatusError for any status but OK. Like all that goes into
    // call(), `command` makes nothing that has a destructor.
    template <typename Command>
    void ask(std::string_view id, Command command) {
        require_ok(id, answer(command));
    }

    // The same, for commands of which more than one status is of interest.
    template <typename Command>
    int32_t answer(Command command) {
        interrupt_point();
        return call(command);
    }

    // Sends a command that waits for someone, and polls for its end: poll(notification) is the _response function.
    // Throws Interrupted when the user has enough.
    template <typename Send, typename Poll>
    int32_t wait(Send send, Poll poll) {
        interrupt_point();
        call(send);
        for (;;) {
            std::array<char, 33> notification{};
            const int32_t status = call([&] { return poll(notification.data()); });
            if (status >= 0) { return status; }
            if (status == ABECS_RSP_STAT_ST_NOTIFICATION) {
                output_.notice(std::string("PIN pad: ") + notification.data());
            }
            interrupt_point();
        }
    }

    // What stands on the display after the session: a text of up to 128 characters, or a media file.
    void leave_text(std::string text) { lastText_ = std::move(text); }
    void leave_image(std::string name) { lastImage_ = std::move(name); }

    // Throws Error, as the destructor cannot.
    void close();

private:
    static void require_ok(std::string_view id, int32_t status);
    static void interrupt_point();
    void open_session(bool secure);
    void close_session();

    Output& output_;
    std::unique_ptr<Tap> tap_;
    AbecsComm* pinPad_ = nullptr;
    bool inSession_ = false;
    std::string lastText_;
    std::string lastImage_;
};

}  // namespace quorvel::cli

#endif
