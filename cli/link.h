// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_LINK_H
#define QUORVEL_CLI_LINK_H

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "cli/error.h"
#include "cli/interrupt.h"
#include "cli/output.h"
#include "cli/settings.h"
#include "quorvel/quorvel.hpp"

namespace quorvel::cli {

// What the PIN pad may take for an answer beyond the time that it was told.
inline constexpr std::chrono::seconds kMargin{5};

// The link to the PIN pad with a session open on it. However it ends, the PIN pad is left idle: what it waits for is
// cancelled and the session is closed. What the library's interface throws leaves it in words.
class Link {
public:
    // Throws Error; PortError when the port cannot be used.
    Link(const Settings& settings, Output& output);
    ~Link();
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

    // Sends a request that is answered at once; the value of the answer. Throws StatusError for any status but OK.
    template <typename Request>
    auto ask(const Request& request) {
        return value_of(answer(request));
    }

    // The same, for requests of which more than one status is of interest.
    template <typename Request>
    auto answer(const Request& request) {
        return with_session(Request::id, [&](Session& session) { return session.run(request); });
    }

    // Sends several such requests, and whatever else `use` does with the session.
    template <typename Use>
    auto with_session(std::string_view command, const Use& use) {
        interrupt::check();
        const interrupt::Exchange exchange(link_->descriptor());
        return in_words(command, [&] { return use(*session_); });
    }

    // Sends a request that waits for someone, but no longer than `within`: then it is cancelled, and LateError thrown.
    // Throws Interrupted when the user has enough.
    template <typename Request>
    auto wait(const Request& request, std::chrono::seconds within, std::string_view command = id_of<Request>()) {
        interrupt::check();
        return wait_regardless(request, within, command);
    }

    // The same though the user has had enough, for what is owed to whoever stands at the PIN pad.
    template <typename Request>
    auto wait_regardless(const Request& request, std::chrono::milliseconds within,
                         std::string_view command = id_of<Request>()) {
        return in_words(command, [&] {
            auto waiting = start(request);
            waiting.on_notice([this](std::string_view text) { output_.notice("PIN pad: " + std::string(text)); });
            const interrupt::Target target = interrupt::cancels(waiting);
            return waiting.get(std::chrono::duration_cast<std::chrono::steady_clock::duration>(within));
        });
    }

    // The same for its value. Throws StatusError for any status but OK.
    template <typename Request>
    auto await(const Request& request, std::chrono::seconds within) {
        return value_of(wait(request, within));
    }

    // What stands on the display after the session: a text of up to 128 characters, or a media file.
    void leave_text(std::string text) { lastText_ = std::move(text); }
    void leave_image(std::string name) { lastImage_ = std::move(name); }

    // Throws Error, as the destructor cannot.
    void close();

    template <typename Value>
    static Value value_of(Answer<Value> answer) {
        if (!answer.ok()) { throw StatusError(answer.command(), answer.status()); }
        return std::move(answer).value();
    }

private:
    template <typename Request>
    static constexpr std::string_view id_of() noexcept {
        if constexpr (requires { Request::id; }) { return Request::id; }
        return "";
    }

    template <typename Body>
    static auto in_words(std::string_view command, const Body& body) {
        try {
            return body();
        } catch (const quorvel::Error& error) { explain(error, command); }
    }

    // The sending is answered at once.
    template <typename Request>
    auto start(const Request& request) {
        const interrupt::Exchange exchange(link_->descriptor());
        return session_->start(request);
    }

    void open(const std::string& port, bool force);
    void open_session(bool secure);
    void observe();

    Output& output_;
    std::optional<quorvel::Link> link_;
    std::optional<Session> session_;
    std::string lastText_;
    std::string lastImage_;
    bool cutOff_ = false;
};

}  // namespace quorvel::cli

#endif
