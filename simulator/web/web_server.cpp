// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/web/web_server.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <httplib.h>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

#include "simulator/control/verbs.h"
#include "simulator/keys/random.h"
#include "simulator/web/access.h"
#include "simulator/web/connection.h"
#include "simulator/web/json_text.h"
#include "simulator/web/page_file.h"
#include "simulator/web/reporter.h"
#include "simulator/web/workers.h"
#include "wire/hex.h"

namespace quorvel::sim::web {

using httplib::Request;
using httplib::Response;
using nlohmann::json;

namespace {

constexpr size_t kMostConnections = 64;
constexpr unsigned kMostListeners = 16;
constexpr unsigned kMostAwaits = 8;
constexpr size_t kLongestRequest = 65536;
constexpr size_t kFirstLines = 1000;
constexpr auto kLook = std::chrono::milliseconds(500);
constexpr auto kQuiet = std::chrono::seconds(10);
// Between what one browser is told and what it is told next.
constexpr auto kPause = std::chrono::milliseconds(20);
constexpr auto kAwaitPause = std::chrono::milliseconds(5);

constexpr const char* kJson = "application/json";
constexpr const char* kPolicy =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' blob:; connect-src 'self'; base-uri "
    "'none'; form-action 'none'; frame-ancestors 'none'";

void refuse(Response& response, int status, std::string_view error) {
    response.status = status;
    response.set_content(text_of(refusal(error)), kJson);
}

json keys() {
    json names = json::array();
    for (char each = '0'; each <= '9'; ++each) { names.push_back(std::string(1, each)); }
    for (const Key key :
         {Key::kEnter, Key::kClear, Key::kCancel, Key::kUp, Key::kDown, Key::kF1, Key::kF2, Key::kF3, Key::kF4}) {
        names.push_back(name_of(key));
    }
    return names;
}

json faults() {
    constexpr std::array<std::string_view, 3> kNeeds{"", "ms", "status"};
    json kinds = json::array();
    for (const FaultKind& kind : fault_kinds()) {
        kinds.push_back({{"fault", kind.name}, {"needs", kNeeds.at(static_cast<size_t>(kind.detail))}});
    }
    return kinds;
}

json commands() {
    json list = json::array();
    for (const wire::Command& command : wire::kAllCommands) {
        if (command.id != "ERR") { list.push_back({{"id", command.id}, {"title", command.title}}); }
    }
    return list;
}

// From digits as PIN pads tell it.
unsigned number_in(std::string_view digits, size_t begin, size_t count) {
    unsigned number = 0;
    for (const char digit : digits.substr(std::min(begin, digits.size()), count)) {
        number = number * 10 + static_cast<unsigned>(digit - '0');
    }
    return number;
}

json about(const Identity& identity) {
    return {{"manufacturer", identity.manufacturer},
            {"model", identity.model},
            {"serial", identity.serialNumber},
            {"rows", number_in(identity.textSize, 0, 2)},
            {"columns", number_in(identity.textSize, 2, 2)},
            {"height", number_in(identity.graphicSize, 0, 4)},
            {"width", number_in(identity.graphicSize, 4, 4)}};
}

// By how it begins.
const char* type_of(const Bytes& file) {
    const auto begins = [&](std::string_view with) {
        return file.size() >= with.size()
               && std::equal(with.begin(), with.end(), file.begin(),
                             [](char one, uint8_t other) { return static_cast<uint8_t>(one) == other; });
    };
    if (begins("\x89PNG")) { return "image/png"; }
    if (begins("\xFF\xD8\xFF")) { return "image/jpeg"; }
    return begins("GIF8") ? "image/gif" : "application/octet-stream";
}

// Else another program might take over the port while this one has it.
void set_socket_options(int socket) {
    const int yes = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
}

class Queue : public httplib::TaskQueue {
public:
    explicit Queue(Workers& workers) : workers_(workers) {}
    // Newer versions of cpp-httplib want to know whether it was taken.
    using Taken = decltype(std::declval<httplib::TaskQueue&>().enqueue({}));
    Taken enqueue(std::function<void()> work) override {
        workers_.bring(std::move(work));
        return static_cast<Taken>(true);
    }
    void shutdown() override { workers_.finish(); }

private:
    Workers& workers_;
};

// One of so many at a time.
class Turn {
public:
    Turn(std::atomic<unsigned>& count, unsigned most) : count_(count), granted_(++count <= most) {}
    ~Turn() { --count_; }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    [[nodiscard]] bool is_granted() const noexcept { return granted_; }

private:
    std::atomic<unsigned>& count_;
    const bool granted_;
};

}  // namespace

class WebServer::Site {
public:
    Site(Options options, Control& control, Bulletin& bulletin)
        : options_(std::move(options)),
          access_(options_.token, options_.names),
          control_(control),
          bulletin_(bulletin),
          reporter_(bulletin, control, options_.performance, options_.values) {
        set_up();
        bind();
        thread_ = std::thread([this] { server_.listen_after_bind(); });
        while (!server_.is_running()) { std::this_thread::sleep_for(std::chrono::milliseconds(1)); }
        server_.widen_queue();
    }

    ~Site() {
        bulletin_.close();
        server_.hang_up();
        workers_.open();
        server_.stop();
        thread_.join();
    }

    Site(const Site&) = delete;
    Site& operator=(const Site&) = delete;

    [[nodiscard]] std::string link() const {
        return fmt::format("{}#token={}", options_.address.url(), access_.token());
    }

private:
    struct Listener {
        explicit Listener(Reporter& reporter, std::atomic<unsigned>& count)
            : turn(count, kMostListeners), reading(reporter) {}

        Turn turn;
        Reporter::Reading reading;
        Bulletin::Place place = {};
        std::string first = {};
        std::chrono::steady_clock::time_point told = std::chrono::steady_clock::now();
    };

    void set_up() {
        server_.new_task_queue = [this] { return new Queue(workers_); };
        server_.set_socket_options(set_socket_options);
        server_.set_tcp_nodelay(true);
        server_.set_payload_max_length(kLongestRequest);
        server_.set_default_headers({{"Content-Security-Policy", kPolicy},
                                     {"X-Content-Type-Options", "nosniff"},
                                     {"Referrer-Policy", "no-referrer"},
                                     {"Cross-Origin-Opener-Policy", "same-origin"},
                                     {"Cross-Origin-Resource-Policy", "same-origin"},
                                     {"Cache-Control", "no-store"}});
        server_.set_pre_routing_handler([this](const Request& request, Response& response) {
            using Handled = httplib::Server::HandlerResponse;
            return admit(request, response) ? Handled::Unhandled : Handled::Handled;
        });
        for (const PageFile& file : page_files()) {
            const auto give = [file](const Request& /*request*/, Response& response) {
                response.set_content(file.content.data(), file.content.size(), std::string(file.type()));
            };
            server_.Get(file.name == "index.html" ? "/" : fmt::format("/{}", file.name), give);
        }
        server_.Post("/api/do", [this](const Request& request, Response& response) { perform(request, response); });
        server_.Get("/api/events", [this](const Request& request, Response& response) { tell(request, response); });
        server_.Get("/api/media/([^/]{1,8})",
                    [this](const Request& request, Response& response) { give_media(request, response); });
        server_.Get("/api/recording", [this](const Request&, Response& response) { give_recording(response); });
    }

    void bind() {
        errno = 0;
        auto& [host, port] = options_.address;
        const int bound = port == 0 ? server_.bind_to_any_port(host) : server_.bind_to_port(host, port) ? port : -1;
        if (bound < 0) {
            const std::string why = errno != 0 ? std::generic_category().message(errno) : "there is no such address";
            throw std::runtime_error(fmt::format("no page at {}: {}", options_.address.url(), why));
        }
        port = bound;
    }

    bool admit(const Request& request, Response& response) {
        const std::string host = request.get_header_value("Host");
        if (!access_.admits_host(host) || request.get_header_value_count("Host") > 1) {
            refuse(response, 403, fmt::format("this PIN pad is not \"{}\": --web-name takes a name", host));
        } else if (!Access::admits_origin(request.get_header_value("Origin"), host)) {
            refuse(response, 403, "this comes from another page than the PIN pad's");
        } else if (request.path.starts_with("/api/") && !access_.admits(request.get_header_value("Authorization"))) {
            refuse(response, 401, "this is not the token of this PIN pad");
        } else {
            return true;
        }
        return false;
    }

    void perform(const Request& request, Response& response) {
        if (!request.get_header_value("Content-Type").starts_with(kJson)) {
            return refuse(response, 415, "a request is application/json");
        }
        const auto outcome = control_.perform_line(request.body);
        const auto* answer = std::get_if<json>(&outcome);
        const json given = answer != nullptr ? *answer : wait_for(std::get<Control::Await>(outcome));
        bulletin_.touch();
        response.set_content(text_of(given), kJson);
    }

    json wait_for(const Control::Await& await) {
        const Turn turn(awaits_, kMostAwaits);
        if (!turn.is_granted()) { return refusal(fmt::format("{} requests wait already", kMostAwaits)); }
        for (;;) {
            if (auto answer = control_.answer(await)) { return *std::move(answer); }
            if (bulletin_.is_closed()) { return refusal("the PIN pad ends"); }
            std::this_thread::sleep_for(kAwaitPause);
        }
    }

    void tell(const Request& request, Response& response) {
        auto listener = std::make_shared<Listener>(reporter_, listeners_);
        if (!listener->turn.is_granted()) {
            return refuse(response, 503, fmt::format("{} browsers look on, and no more", kMostListeners));
        }
        listener->place.line = bulletin_.line_before_last(kFirstLines);
        if (request.get_param_value("run") == run_) { listener->place.line = line_in(request).value_or(0); }
        listener->first = server_sent_event("hello", text_of(hello()));
        response.set_chunked_content_provider(
            "text/event-stream",
            [this, listener](size_t /*offset*/, httplib::DataSink& sink) { return tell_more(*listener, sink); });
    }

    static std::optional<uint64_t> line_in(const Request& request) {
        try {
            return std::stoull(request.get_param_value("after"));
        } catch (const std::logic_error&) { return std::nullopt; }
    }

    // Whether the browser is still there.
    bool tell_more(Listener& listener, httplib::DataSink& sink) {
        using Clock = std::chrono::steady_clock;
        std::string text = std::exchange(listener.first, "");
        if (text.empty()) { text = bulletin_.take(listener.place, kLook); }
        if (bulletin_.is_closed() && text.empty()) {
            sink.done();
            return true;
        }
        if (text.empty() && Clock::now() - listener.told >= kQuiet) { text = ": \n\n"; }
        if (text.empty()) { return sink.is_writable(); }
        listener.told = Clock::now();
        if (!sink.write(text.data(), text.size())) { return false; }
        std::this_thread::sleep_for(kPause);
        return true;
    }

    json hello() {
        json device;
        control_.pin_pad().visit([&](const Device& is) { device = about(is.identity); });
        return {{"run", run_},
                {"version", options_.version},
                {"reveal", options_.values == Bulletin::Values::kRevealed},
                {"device", device},
                {"keys", keys()},
                {"faults", faults()},
                {"commands", commands()}};
    }

    void give_media(const Request& request, Response& response) {
        std::optional<Bytes> found;
        control_.pin_pad().visit([&](const Device& device) {
            const auto& files = device.media.files();
            const auto file = files.find(request.matches[1].str());
            if (file != files.end()) { found = file->second.bytes; }
        });
        if (!found) { return refuse(response, 404, "there is no such file"); }
        response.set_content(std::string(found->begin(), found->end()), type_of(*found));
    }

    void give_recording(Response& response) {
        std::error_code ignored;
        // From a pipe, which may be one too, there would be nothing to read before the end.
        const bool isThere = std::filesystem::is_regular_file(options_.recording, ignored);
        std::ifstream file;
        if (isThere) { file.open(options_.recording, std::ios::binary); }
        if (!isThere || !file) { return refuse(response, 404, "there is no recording"); }
        response.set_header("Content-Disposition", "attachment; filename=\"session.rec\"");
        response.set_content(std::string(std::istreambuf_iterator<char>(file), {}), "text/plain; charset=utf-8");
    }

    Options options_;
    const Access access_;
    Control& control_;
    Bulletin& bulletin_;
    const std::string run_ = wire::to_hex(Random().bytes(8));
    std::atomic<unsigned> listeners_{0};
    std::atomic<unsigned> awaits_{0};
    Workers workers_{kMostConnections};
    Reporter reporter_;
    Server server_;
    std::thread thread_;
};

WebServer::WebServer(Options options, Control& control, Bulletin& bulletin)
    : site_(std::make_unique<Site>(std::move(options), control, bulletin)) {}

WebServer::~WebServer() = default;

std::string WebServer::link() const { return site_->link(); }

}  // namespace quorvel::sim::web
