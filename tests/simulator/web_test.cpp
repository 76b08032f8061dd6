// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <atomic>
#include <condition_variable>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <list>
#include <mutex>
#include <netinet/in.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <thread>

#include "simulator/web/access.h"
#include "simulator/web/address.h"
#include "simulator/web/page_file.h"
#include "simulator/web/web_server.h"
#include "simulator/web/workers.h"
#include "tests/core/temp_dir.h"
#include "tests/simulator/fixture.h"
#include "tests/support/child.h"

namespace quorvel::sim::web {
namespace {

using nlohmann::json;

constexpr const char* kToken = "0123456789abcdef";

TEST(WebAddress, IsReadAsItIsWritten) {
    const std::tuple<const char*, const char*, int, const char*> rows[]{
        {"", "127.0.0.1", 0, "http://127.0.0.1:0/"},
        {"8080", "127.0.0.1", 8080, "http://127.0.0.1:8080/"},
        {"0.0.0.0:65535", "0.0.0.0", 65535, "http://127.0.0.1:65535/"},
        {"[::1]:80", "::1", 80, "http://[::1]:80/"},
        {"till.example:80", "till.example", 80, "http://till.example:80/"},
    };
    for (const auto& [text, host, port, url] : rows) {
        const Address address = Address::from(text);
        EXPECT_EQ(std::tuple(address.host, address.port, address.url()), std::tuple(std::string(host), port, url));
    }
    for (const std::string bad : {":80", "1.2.3.4", "1.2.3.4:", "1.2.3.4:65536", "-1", "80x", "::1:80", "[]:80"}) {
        EXPECT_EQ(thrown([&] { static_cast<void>(Address::from(bad)); }),
                  "\"" + bad + "\" is no ADDRESS:PORT: 8080, 0.0.0.0:8080 or [::1]:8080");
    }
}

TEST(WebAccess, TakesAddressesAndItsOwnPageAlone) {
    const Access access(kToken, {"pinpad.example"});
    for (const char* host : {"127.0.0.1:80", "localhost", "LocalHost:1", "[::1]:80", "10.0.0.9", "PINPAD.example:8"}) {
        EXPECT_TRUE(access.admits_host(host)) << host;
    }
    for (const char* host :
         {"", ":80", "evil.example", "127.0.0.1.evil.example", "[evil.example]:80", "[", "localhost."}) {
        EXPECT_FALSE(access.admits_host(host)) << host;
    }
    EXPECT_TRUE(Access::admits_origin("", "localhost:80"));
    EXPECT_TRUE(Access::admits_origin("http://localhost:80", "localhost:80"));
    for (const char* origin : {"null", "http://localhost:81", "https://localhost:80", "http://evil.example"}) {
        EXPECT_FALSE(Access::admits_origin(origin, "localhost:80")) << origin;
    }
    EXPECT_TRUE(access.admits("Bearer 0123456789abcdef"));
    for (const char* header : {"", "Bearer", "Bearer ", "Bearer 0123456789abcdeF", "Bearer 0123456789abcdef0",
                               "Basic 0123456789abcdef", "0123456789abcdef"}) {
        EXPECT_FALSE(access.admits(header)) << header;
    }
}

TEST(WebAccess, KeepsATokenInAFileOfTheUsersOwn) {
    const TempDir folder;
    const std::string path = folder / "token";
    const std::string token = token_in(path);
    EXPECT_EQ(token.size(), 32U);
    EXPECT_NE(token, new_token());
    EXPECT_EQ(token_in(path), token);
    struct stat about = {};
    ASSERT_EQ(::stat(path.c_str(), &about), 0);
    EXPECT_EQ(about.st_mode & 0777U, 0600U);
    const auto refusalOf = [&] { return thrown([&] { static_cast<void>(token_in(path)); }); };
    for (const char* bad : {"", "short", "0123456789abcde-", "0123456789abcdef\n0123456789abcdef\n"}) {
        std::ofstream(path) << bad;
        EXPECT_EQ(refusalOf(), path + ": no token: 16 to 128 letters and digits") << bad;
    }
    std::filesystem::permissions(path, std::filesystem::perms::group_read, std::filesystem::perm_options::add);
    EXPECT_EQ(refusalOf(), path + ": others may read it: chmod 600 " + path);
}

TEST(WebPage, StandsInTheProgramAsItIs) {
    bool hasIndex = false;
    for (const PageFile& file : page_files()) {
        std::ifstream source(std::string(QUORVEL_PAGE "/") + std::string(file.name), std::ios::binary);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(source), {}), file.content) << file.name;
        EXPECT_NE(file.type(), "application/octet-stream") << file.name;
        hasIndex |= file.name == "index.html";
    }
    EXPECT_TRUE(hasIndex);
}

TEST(WebWorkers, LetNoMoreInThanTheyAre) {
    std::mutex mutex;
    std::condition_variable changed;
    int working = 0;
    bool free = false;
    Workers workers(2);
    const auto work = [&] {
        std::unique_lock lock(mutex);
        ++working;
        changed.notify_all();
        changed.wait(lock, [&] { return free; });
    };
    std::atomic<int> brought = 0;
    std::jthread bringing([&] {
        for (; brought < 3; ++brought) { workers.bring(work); }
    });
    std::unique_lock lock(mutex);
    changed.wait(lock, [&] { return working == 2; });
    lock.unlock();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(brought, 2);
    lock.lock();
    free = true;
    lock.unlock();
    changed.notify_all();
    bringing.join();
    workers.finish();
    EXPECT_EQ(working, 3);
}

// A browser, as bare as can be: what it sends is spelled in the tests.
class Browser : public End {
public:
    explicit Browser(int port) : End(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<uint16_t>(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(connect(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    }

    // The status, and what comes behind the head when its length is told.
    std::pair<int, std::string> ask(const std::string& first, const std::string& headers,
                                    const std::string& body = "") {
        send(first + " HTTP/1.1\r\n" + headers
             + (body.empty() ? "" : fmt::format("Content-Length: {}\r\n", body.size())) + "\r\n" + body);
        const std::string status = line();
        size_t length = 0;
        for (std::string each = line(); each.size() > 1; each = line()) {
            head += each + "\n";
            if (each.starts_with("Content-Length: ")) { length = std::stoul(each.substr(16)); }
        }
        return {status.size() > 12 ? std::stoi(status.substr(9, 3)) : 0, receive(length)};
    }

    // The data of the next event of that name that holds the text. Events of other names may come before or behind it.
    json event(const std::string& name, const std::string& holding = "") {
        const auto isIt = [&](const auto& event) {
            return event.first == name && event.second.find(holding) != std::string::npos;
        };
        for (;;) {
            const auto found = std::ranges::find_if(passed_, isIt);
            if (found != passed_.end()) {
                json data = json::parse(found->second);
                passed_.erase(found);
                return data;
            }
            if (!read_event()) { return {}; }
        }
    }

    std::string head;

private:
    // Between events one line is empty; behind the last one of a connection all are.
    bool read_event() {
        for (int empty = 0; empty < 3;) {
            const std::string each = line();
            empty = each.empty() ? empty + 1 : 0;
            if (!each.starts_with("event: ")) { continue; }
            passed_.emplace_back(each.substr(7), line().substr(6));
            return true;
        }
        return false;
    }

    std::list<std::pair<std::string, std::string>> passed_;
};

const std::string kHost = "Host: 127.0.0.1\r\n";
const std::string kRight = kHost + "Authorization: Bearer 0123456789abcdef\r\n";
const std::string kJsonRequest = kRight + "Content-Type: application/json\r\n";

class WebTest : public PinPadTest {
protected:
    void serve(Bulletin::Values values = Bulletin::Values::kWithheld, const Performance* performance = nullptr) {
        server_.reset();
        control_.reset();
        bulletin_.emplace(values);
        PinPad::Options options;
        bulletin_->listen(options);
        play(std::move(options));
        control_.emplace(*pinPad_);
        WebServer::Options web;
        web.token = kToken;
        web.values = values;
        web.recording = recording_;
        web.performance = performance;
        server_.emplace(std::move(web), *control_, *bulletin_);
        const std::string link = server_->link();
        port_ = std::stoi(link.substr(17));
        EXPECT_EQ(link, fmt::format("http://127.0.0.1:{}/#token={}", port_, kToken));
    }

    json act(const std::string& request) {
        const auto [status, answer] = Browser(port_).ask("POST /api/do", kJsonRequest, request);
        EXPECT_EQ(status, 200);
        return json::parse(answer);
    }

    void TearDown() override {
        server_.reset();
        PinPadTest::TearDown();
        pinPad_.reset();
    }

    std::string recording_;
    std::optional<Bulletin> bulletin_;
    std::optional<Control> control_;
    std::optional<WebServer> server_;
    int port_ = 0;
};

TEST_F(WebTest, LetsNobodyInWithoutTheTokenOrFromElsewhere) {
    serve();
    const std::string other = "Authorization: Bearer 0123456789abcdee\r\n";
    const std::tuple<const char*, std::string, int, const char*> rows[]{
        {"GET /", kHost, 200, "<!DOCTYPE html>"},
        {"GET /", "", 403, "this PIN pad is not"},
        {"GET /", "Host: evil.example\r\n", 403, R"(this PIN pad is not \"evil.example\": --web-name takes a name)"},
        {"GET /", kHost + kHost, 403, "this PIN pad is not"},
        {"GET /", "Host: \xFF\xFE\r\n", 403, "this PIN pad is not"},
        {"GET /", kHost + "Range: bytes=0-,0-,0-,0-\r\n", 200, "<!DOCTYPE html>"},
        {"GET /index.html", kHost, 404, ""},
        {"GET /../main.cpp", kHost, 404, ""},
        {"GET /api/events", kHost, 401, "this is not the token of this PIN pad"},
        {"GET /api/events", kHost + other, 401, "this is not the token of this PIN pad"},
        {"GET /api/recording", kHost, 401, "this is not the token of this PIN pad"},
        {"GET /api/media/WELCOME", kHost, 401, "this is not the token of this PIN pad"},
        {"POST /api/do", kRight + "Origin: http://evil.example\r\n", 403, "from another page"},
        {"POST /api/do", kRight + "Origin: null\r\n", 403, "from another page"},
        {"POST /api/do", kRight, 415, "a request is application/json"},
        {"GET /api/do", kRight, 404, ""},
        {"GET /api/recording", kRight, 404, "there is no recording"},
        {"GET /api/media/WELCOME", kRight, 404, "there is no such file"},
    };
    for (const auto& [first, headers, status, text] : rows) {
        Browser browser(port_);
        const auto [got, body] = browser.ask(first, headers, std::string(first).starts_with("POST") ? "{}" : "");
        EXPECT_EQ(got, status) << first << headers;
        EXPECT_NE(body.find(text), std::string::npos) << first << body;
        EXPECT_NE(browser.head.find("Content-Security-Policy: default-src 'none'; script-src 'self'"),
                  std::string::npos);
        EXPECT_NE(browser.head.find("X-Content-Type-Options: nosniff"), std::string::npos);
        EXPECT_EQ(browser.head.find("Access-Control-Allow"), std::string::npos);
    }
    EXPECT_EQ(Browser(port_).ask("POST /api/do", kJsonRequest, std::string(65537, ' ')).first, 413);
}

TEST_F(WebTest, DoesWhatTheControlSocketDoes) {
    serve();
    EXPECT_EQ(act(R"({"do":"press","key":"enter"})"), json({{"ok", true}}));
    EXPECT_EQ(act(R"({"do":"press","key":"any"})"), json({{"ok", false}, {"error", "there is no key \"any\""}}));
    EXPECT_EQ(act("{"), json({{"ok", false}, {"error", "no JSON"}}));
    EXPECT_EQ(act(R"({"do":"await","command":"GKY","ms":1})"),
              json({{"ok", false}, {"error", "GKY did not wait in time"}}));
    exchange(kOpn, kAck + kOpnDone);
    host_->send(frame("GKY"));
    expect(kAck);
    EXPECT_EQ(act(R"({"do":"await","command":"GKY"})"), json({{"ok", true}}));
    EXPECT_EQ(act(R"({"do":"press","key":"f1"})"), json({{"ok", true}}));
    expect(frame("GKY004"));
}

TEST_F(WebTest, TellsWhatHappensAsItHappens) {
    serve();
    Browser browser(port_);
    browser.ask("GET /api/events", kRight);
    const json hello = browser.event("hello");
    EXPECT_EQ(hello["device"]["columns"], 16);
    EXPECT_EQ(hello["device"]["height"], 128);
    EXPECT_EQ(browser.event("state")["waiting"], nullptr);
    exchange(kOpn, kAck + kOpnDone);
    EXPECT_EQ(browser.event("line")["words"], "OPN open a session");
    const json answer = browser.event("line", "OPN 000");
    EXPECT_EQ(answer["from"], "pin-pad");
    EXPECT_EQ(answer["bytes"], "16 4F 50 4E 30 30 30 17 77 5E");
    EXPECT_EQ(answer["number"], 3);
    exchange(frame("DSP032" + padded("HELLO", 32)), kAck + frame("DSP000"));
    EXPECT_EQ(browser.event("screen", "HELLO")["menu"], json::array());
    exchange(frame("XYZ"), kAck + frame("ERR010"));
    EXPECT_EQ(browser.event("line", "finding")["words"], "there is no command \"XYZ\"");
    expect_findings({{Kind::kUnsupported, "there is no command \"XYZ\""}});
    EXPECT_EQ(browser.event("findings", "XYZ")["count"], 1);
    act(R"({"do":"fault","fault":"nak"})");
    EXPECT_EQ(browser.event("faults", "nak")["faults"][0]["fault"], "nak");
    exchange(frame("CLO"), kNak);
    EXPECT_EQ(browser.event("line", "\"fault\":\"nak\"")["from"], "pin-pad");
    act(R"({"do":"insert","card":"visa-chip"})");
    EXPECT_EQ(browser.event("state", "visa-chip")["card"], true);
    // One that was away goes on where it was; one that knows another run begins anew.
    const std::string run = hello["run"];
    Browser again(port_);
    again.ask(fmt::format("GET /api/events?run={}&after=2", run), kRight);
    EXPECT_EQ(again.event("line")["number"], 3);
    Browser other(port_);
    other.ask("GET /api/events?run=0123&after=2", kRight);
    EXPECT_EQ(other.event("line")["number"], 1);
}

TEST_F(WebTest, WithholdsWhatIsPrivateUnlessItIsToldToReveal) {
    const std::string block = "4111111111111111";
    const std::string request = frame("ENB0510003030303030303030B4CC3FD9D8D95214" + block);
    for (const auto values : {Bulletin::Values::kWithheld, Bulletin::Values::kRevealed}) {
        const bool isRevealed = values == Bulletin::Values::kRevealed;
        serve(values);
        exchange(kOpn, kAck + kOpnDone);
        host_->send(request);
        Browser browser(port_);
        browser.ask("GET /api/events", kRight);
        EXPECT_EQ(browser.event("hello")["reveal"], isRevealed);
        const json card = browser.event("cards")["cards"][0];
        EXPECT_EQ(card.contains("pan"), isRevealed);
        EXPECT_EQ(card.contains("pin"), isRevealed);
        const json line = browser.event("line", "ENB encipher");
        EXPECT_EQ(line["words"].get<std::string>().find(block) != std::string::npos, isRevealed) << line;
        EXPECT_EQ(line["bytes"].get<std::string>().find("34 31 31 31 31 31 31 31") != std::string::npos, isRevealed);
        EXPECT_EQ(host_->receive(1), kAck);
        hear();
    }
}

TEST_F(WebTest, GivesMediaFilesAndTheRecording) {
    const TempDir folder;
    recording_ = folder / "a.rec";
    std::ofstream(recording_) << "quorvel-recording 1\n";
    serve();
    Browser recording(port_);
    EXPECT_EQ(recording.ask("GET /api/recording", kRight), std::pair(200, "quorvel-recording 1\n"s));
    EXPECT_NE(recording.head.find("Content-Disposition: attachment; filename=\"session.rec\""), std::string::npos);
}

// However slowly it goes on, and however much there is of it.
TEST_F(WebTest, IsNotKeptFromItsEndByAHeadThatDoesNotEnd) {
    serve();
    Browser slow(port_);
    slow.send("GET / HTTP/1.1\r\nX: ");
    EXPECT_EQ(Browser(port_).ask("GET /", kHost).first, 200);
    Browser lengthy(port_);
    const std::string line = "X: " + std::string(1000, 'x') + "\r\n";
    std::string head = "GET / HTTP/1.1\r\n" + kHost;
    while (head.size() < 1'000'000) { head += line; }
    lengthy.send_what_goes(head);
    EXPECT_TRUE(lengthy.is_left());
    const auto begin = std::chrono::steady_clock::now();
    server_.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(3));
}

TEST_F(WebTest, TurnsTheSeventeenthListenerAway) {
    serve();
    std::list<Browser> listeners;
    for (int i = 0; i < 16; ++i) { EXPECT_EQ(listeners.emplace_back(port_).ask("GET /api/events", kRight).first, 200); }
    EXPECT_EQ(Browser(port_).ask("GET /api/events", kRight),
              std::pair(503, R"({"error":"16 browsers look on, and no more","ok":false})"s));
    EXPECT_EQ(act(R"({"do":"remove"})"), json({{"ok", true}}));
    // One that leaves makes room, though nothing happens.
    listeners.pop_front();
    int status = 0;
    for (int i = 0; i < 100 && status != 200; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        status = Browser(port_).ask("GET /api/events", kRight).first;
    }
    EXPECT_EQ(status, 200);
}

// Nobody reads, and the PIN pad answers all the same.
TEST_F(WebTest, WaitsForNoBrowser) {
    serve();
    Browser browser(port_);
    browser.send("GET /api/events HTTP/1.1\r\n" + kRight + "\r\n");
    exchange(kOpn, kAck + kOpnDone);
    for (int i = 0; i < 6000; ++i) { exchange(kCan, kEot); }
    Browser late(port_);
    late.ask("GET /api/events", kRight);
    EXPECT_EQ(late.event("line")["number"], 12003 - 999);
}

TEST(WebBulletin, TellsASlowReaderHowMuchItHasMissed) {
    Bulletin bulletin(Bulletin::Values::kWithheld);
    Bulletin::Place place;
    for (size_t i = 0; i < Bulletin::kMostLines + 5; ++i) { bulletin.add(Finding{Finding::Kind::kMoney, "a"}); }
    const std::string text = bulletin.take(place, std::chrono::milliseconds::zero());
    EXPECT_TRUE(text.starts_with("event: missed\ndata: {\"count\":5}\n\nid: 6\n"));
    EXPECT_EQ(place.line, 205U);
    Bulletin::Place end{.line = bulletin.line_before_last(0), .news = 0};
    EXPECT_EQ(bulletin.take(end, std::chrono::milliseconds::zero()), "");
    bulletin.post("a", "1");
    EXPECT_EQ(bulletin.take(end, std::chrono::milliseconds::zero()), "event: a\ndata: 1\n\n");
    bulletin.post("a", "1");
    EXPECT_EQ(bulletin.take(end, std::chrono::milliseconds::zero()), "");
}

TEST_F(WebTest, ShowsHowFarAScenarioIs) {
    Performance performance(Scenario::from_toml("a.toml", R"toml(
title = "one"
script = [{ wait = "GKY" }, { type = "1234" }, { press = "7" }, { when = "GPN", acts = [{ type = "86421" }, { press = "9" }] }]
expect = [{ command = "GKY" }, { command = "DSP", with = 'DSP_MSG="secret"' }]
)toml"));
    Progress progress = performance.progress();
    ASSERT_EQ(progress.steps.size(), 4U);
    EXPECT_EQ(progress.steps[0].mark, Progress::Mark::kNow);
    EXPECT_EQ(progress.expectations[0].mark, Progress::Mark::kNow);
    serve(Bulletin::Values::kWithheld, &performance);
    performance.waits(*pinPad_, "GKY");
    performance.exchanged(*pinPad_, {.command = "GKY", .request = {}});
    Browser browser(port_);
    browser.ask("GET /api/events", kRight);
    const json shown = browser.event("scenario");
    EXPECT_EQ(shown["title"], "one");
    EXPECT_EQ(shown["steps"][1]["status"], "done");
    EXPECT_EQ(shown["steps"][1]["words"], "type = \"...\"");
    EXPECT_EQ(shown["steps"][2]["words"], "press = \"...\"");
    EXPECT_EQ(shown["steps"][3]["words"], R"(acts = [{"type":"..."},{"press":"..."}], when = "GPN")");
    EXPECT_EQ(shown["expectations"][0]["status"], "done");
    EXPECT_EQ(shown["expectations"][1]["words"], "DSP with DSP_MSG");
}

TEST(WebProgram, PrintsItsLinkAndKeepsItsToken) {
    const TempDir folder;
    const auto linkOf = [&](const std::vector<std::string>& more) {
        std::vector<std::string> arguments{QUORVEL_SIM, "--web-token", folder / "token"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        support::Child program(std::move(arguments));
        EXPECT_TRUE(program.line().starts_with("READY /dev/pts/"));
        std::string link = program.line();
        EXPECT_EQ(program.end(SIGTERM), 0);
        return link;
    };
    const std::string first = linkOf({"--web"});
    EXPECT_TRUE(first.starts_with("WEB http://127.0.0.1:")) << first;
    const std::string token = first.substr(first.find("#token="));
    EXPECT_TRUE(linkOf({"--web", "[::1]:0"}).ends_with(token));
}

}  // namespace
}  // namespace quorvel::sim::web
