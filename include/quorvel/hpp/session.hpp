// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_HPP_SESSION_HPP
#define QUORVEL_HPP_SESSION_HPP

#include <concepts>

#include "quorvel/hpp/cardholder.hpp"
#include "quorvel/hpp/device.hpp"
#include "quorvel/hpp/payment.hpp"
#include "quorvel/hpp/raw.hpp"

/// @file
/// Links and sessions.

namespace quorvel {

/// Whether what is said in a session is enciphered.
enum class Encryption { plain, secure };
/// For Link::open: a session in clear.
inline constexpr Encryption plain = Encryption::plain;
/// For Link::open: an encrypted session.
inline constexpr Encryption secure = Encryption::secure;

namespace detail {

template <typename Request>
using Result = decltype(std::declval<const Request&>().on(std::declval<Line&>()));

// What CLO and CLX do with a text and an image, whichever is needed.
inline Status say_goodbye(Line& line, const std::string& text, const std::string& image) {
    constexpr size_t kShort = 32;
    const bool simple = image.empty() && text.size() <= kShort && text.find('\r') == std::string::npos;
    const CText shown{std::string_view(text)};
    const CText file{image.empty() ? std::optional<std::string_view>() : image};
    AbecsComm* const link = line.get();
    return Status(line.exchange(
        [&] { return simple ? abecs_cmd_clo(link, shown.get()) : abecs_cmd_clx(link, shown.get(), file.get()); }));
}

// Whatever the PIN pad is at is cancelled, and the session closed.
inline Status end_session(Line& line) {
    line.session = 0;
    line.settle();
    const Status status = say_goodbye(line, line.lastText, line.lastImage);
    line.doubtful = line.encrypted && !status.is_ok();
    return status;
}

inline Status ask_to_open(Line& line, bool encrypted) {
    return Status(line.exchange([&] { return abecs_cmd_opn(line.get(), encrypted); }));
}
inline void open_session(Line& line, bool encrypted) {
    const Status status = ask_to_open(line, encrypted);
    if (!status.is_ok()) { throw Refused("OPN", status); }
}

// After an encrypted session was cut off, by a cable for instance, the PIN pad takes plain commands for wrong ones, OPN
// perhaps among them, until an encrypted session is opened anew and closed. GTS is asked because it changes nothing.
// Whoever asked for the session has none to close when that fails, so it is closed here.
inline bool is_cut_off(Line& line) {
    char version[11];
    try {
        return Status(line.exchange([&] { return abecs_cmd_gts(line.get(), 0, version); })) == Status::errpktsec;
    } catch (...) {
        try {
            line.settle();
            say_goodbye(line, "", "");
        } catch (...) {}  // the first failure is told
        throw;
    }
}
inline void open_plain(Line& line) {
    // The key of a session that could not be closed would encipher what is to be plain.
    line.call([&] { abecs_comm_set_key(line.get(), nullptr); });
    const Status status = ask_to_open(line, false);
    if (status == Status::errpktsec || (status.is_ok() && line.doubtful && is_cut_off(line))) {
        open_session(line, true);
        say_goodbye(line, "", "");
        open_session(line, false);
    } else if (!status.is_ok()) {
        throw Refused("OPN", status);
    }
    line.doubtful = false;
}

}  // namespace detail

/// A request that waits for the cardholder, to be started; others are answered at once.
template <typename Request>
concept Waiting = requires {
    typename detail::Result<Request>::element_type::value_type;
};

/// A session on a link, from Link::open. Its end sends CAN where something waits and closes the session; the link stays
/// open as long as the session is there.
class Session {
public:
    /// For Link::open.
    Session(std::shared_ptr<detail::Line> line, Encryption encryption) : line_(std::move(line)) {
        if (line_->session != 0) {
            throw Error(ErrorCode::illegal_state, "[KOR_RESULT_ILLEGAL_STATE] a session is open on this link");
        }
        line_->lastText.clear();
        line_->lastImage.clear();
        line_->settle();
        line_->encrypted = encryption == Encryption::secure;
        if (line_->encrypted) {
            line_->doubtful = true;
            detail::open_session(*line_, true);
        } else {
            detail::open_plain(*line_);
        }
        number_ = line_->session = ++line_->sessions;
    }
    /// The other one is closed afterwards.
    Session(Session&&) noexcept = default;
    Session& operator=(Session&&) = delete;
    /// Does what close() does, with the text that leave() was given; what goes wrong stays untold.
    ~Session() {
        if (!is_open()) { return; }
        try {
            detail::end_session(*line_);
        } catch (...) {}  // told of above
    }

    /// Sends a request that is answered at once, and returns the answer.
    template <typename Request>
    requires(!Waiting<Request>) auto run(const Request& request) {
        require_open();
        return request.on(*line_);
    }
    /// Starts a request that waits for the cardholder and waits for its answer: start() and Wait::get().
    template <Waiting Request, typename... Until>
    auto run(const Request& request, Until&&... until) {
        return start(request).get(std::forward<Until>(until)...);
    }
    /// Sends a request that waits for the cardholder. Nothing else can be sent until the answer has come or the Wait
    /// has ended.
    template <Waiting Request>
    auto start(const Request& request) {
        using Value = typename detail::Result<Request>::element_type::value_type;
        require_open();
        std::unique_ptr<detail::Receiver<Value>> receiver = request.on(*line_);
        return Wait<Value>(line_, Request::id, std::move(receiver));
    }
    /// The same of a request that Raw makes.
    Wait<RawAnswer> start(const Raw& request) {
        require_open();
        auto receiver = request.start_on(*line_);
        return {line_, request.command, std::move(receiver)};
    }

    /// What the display shows after the session, if close() is given nothing: a text of up to 128 characters, of which
    /// carriage returns break the lines, or a media file.
    void leave(std::string_view text, std::string_view image = {}) {
        require_open();
        line_->lastText = text;
        line_->lastImage = image;
    }
    /// Cancels what waits and closes the session with CLO or, for a longer text, several lines or an image, CLX.
    /// Returns the PIN pad's status; whatever it is, or is thrown, the session is over on this side.
    Status close(std::string_view text = {}, std::string_view image = {}) {
        require_open();
        if (!text.empty() || !image.empty()) { leave(text, image); }
        return detail::end_session(*line_);
    }

    /// Whether it has neither been closed nor moved from.
    [[nodiscard]] bool is_open() const noexcept { return line_ != nullptr && line_->session == number_; }
    /// Whether it is open and enciphered.
    [[nodiscard]] bool is_encrypted() const noexcept { return is_open() && line_->encrypted; }

    /// The link of the C interface, for what it has beyond this. Its try blocks and quorvel::detail::call do not mix
    /// with objects that have destructors: see quorvel/kor/exception.h.
    [[nodiscard]] AbecsComm* native() const noexcept { return line_ == nullptr ? nullptr : line_->get(); }

private:
    void require_open() const {
        if (!is_open()) { throw Error(ErrorCode::illegal_state, "[KOR_RESULT_ILLEGAL_STATE] the session is closed"); }
    }

    std::shared_ptr<detail::Line> line_;
    uint64_t number_ = 0;
};

/// How a link uses its port; see quorvel/abecs/line.h.
struct LinkOptions {
    bool claim = false;                          ///< nobody else may open the port meanwhile
    bool whole_frames = false;                   ///< a frame goes out in one write
    std::chrono::milliseconds limit{0};          ///< the longest that a call may use the line; 0 is none
    std::chrono::milliseconds send_interval{0};  ///< the least time between two commands
};

/// The link to a PIN pad on a serial port. It, its sessions and their waits are used by one thread at a time, and so
/// are all links of a process together; cancel() and Wait::cancel() may be called by any.
class Link {
public:
    /// Opens the port and has the PIN pad answer CAN. Throws Error; see abecs_comm_open and abecs_comm_claim.
    explicit Link(std::string_view port, LinkOptions options = {})
        : line_(std::make_shared<detail::Line>(port, options.claim)) {
        set_whole_frames(options.whole_frames);
        set_limit(options.limit);
        set_send_interval(options.send_interval);
    }
    /// The other one is closed afterwards.
    Link(Link&&) noexcept = default;
    /// The other one is closed afterwards, and what this one was is let go.
    Link& operator=(Link&&) noexcept = default;

    /// Opens a session. A plain one on a PIN pad whose encrypted session was cut off ends that first. Throws Refused
    /// for a status other than OK, and Error, illegal_state, when a session is open.
    [[nodiscard]] Session open(Encryption encryption = plain) {
        line().require_open();
        return {line_, encryption};
    }

    /// Closes the session, if one is open, and the port, and throws what goes wrong. The port is closed in any case.
    void close() {
        detail::Line& open = line();
        std::exception_ptr first;
        try {
            if (open.session != 0) { detail::end_session(open); }
        } catch (...) { first = std::current_exception(); }
        try {
            open.close();
        } catch (...) {
            if (!first) { first = std::current_exception(); }
        }
        if (first) { std::rethrow_exception(first); }
    }
    /// Whether it has neither been closed nor moved from.
    [[nodiscard]] bool is_open() const noexcept { return line_ != nullptr && line_->get() != nullptr; }

    /// Aborts what the PIN pad is doing, in whatever session.
    void send_can() { line().send_can(); }

    /// As abecs_comm_set_whole_frames.
    void set_whole_frames(bool whole) {
        line().call([&] { abecs_comm_set_whole_frames(line_->get(), whole); });
    }
    /// As abecs_comm_set_limit.
    void set_limit(std::chrono::milliseconds limit) {
        const int32_t time = milliseconds_of(limit);
        line().call([&] { abecs_comm_set_limit(line_->get(), time); });
    }
    /// As abecs_comm_set_send_interval.
    void set_send_interval(std::chrono::milliseconds interval) {
        line().call([&] { abecs_comm_set_send_interval(line_->get(), interval.count()); });
    }
    /// What was set.
    [[nodiscard]] bool whole_frames() const {
        return line().call([this] { return abecs_comm_get_whole_frames(line_->get()); });
    }
    /// What was set.
    [[nodiscard]] std::chrono::milliseconds limit() const {
        return std::chrono::milliseconds(line().call([this] { return abecs_comm_get_limit(line_->get()); }));
    }
    /// What was set.
    [[nodiscard]] std::chrono::milliseconds send_interval() const {
        return std::chrono::milliseconds(line().call([this] { return abecs_comm_get_send_interval(line_->get()); }));
    }

    /// Has the link decipher card data with a working key, or no longer. In an encrypted session the latter breaks the
    /// session: see abecs_comm_set_wk_pan.
    void set_pan_key(const std::optional<WorkingKey>& key) {
        const AbecsWkPan* record = key ? &key->native() : nullptr;
        line().call([&] { abecs_comm_set_wk_pan(line_->get(), record); });
    }

    /// Has `observer` told of each event of the link; none ends it. It is called in the middle of a call and may call
    /// nothing of the link. What it throws is lost: a log must not stop a sale.
    void observe(std::function<void(const Event&)> observer, Packets packets = Packets::withheld) {
        line().observe(std::move(observer), packets);
    }

    /// For event loops: where to wait, with poll(2), while a Wait is on; then Wait::poll. Nobody else may use it.
    [[nodiscard]] int descriptor() const {
        return line().call([this] { return abecs_comm_get_fd(line_->get()); });
    }
    /// Whether Wait::poll should be called at once, without waiting at the descriptor.
    [[nodiscard]] bool has_input() const {
        return line().call([this] { return abecs_comm_has_input(line_->get()); });
    }
    /// Cancels the Wait that is on, if there is one, as Wait::cancel does: from any thread and from a signal handler,
    /// as long as this object is there and open.
    void cancel() noexcept {
        if (line_ != nullptr) { line_->cancel(line_->turn()); }
    }

    /// The link of the C interface; see Session::native.
    [[nodiscard]] AbecsComm* native() const noexcept { return line_ == nullptr ? nullptr : line_->get(); }

private:
    // Of a link that was moved from there is none.
    [[nodiscard]] detail::Line& line() const {
        if (line_ == nullptr) {
            throw Error(ErrorCode::illegal_state, "[KOR_RESULT_ILLEGAL_STATE] the link is closed");
        }
        return *line_;
    }
    static int32_t milliseconds_of(std::chrono::milliseconds time) {
        if (time.count() < 0 || time.count() > INT32_MAX) { detail::refuse_argument("a time of no use"); }
        return static_cast<int32_t>(time.count());
    }

    std::shared_ptr<detail::Line> line_;
};

}  // namespace quorvel

#endif
