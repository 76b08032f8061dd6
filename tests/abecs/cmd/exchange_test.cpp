// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <chrono>
#include <functional>

#include "quorvel/additions.h"
#include "tests/abecs/cmd/commands.h"
#include "tests/core/temp_dir.h"
#include "tests/support/commands.h"
#include "tests/support/elapsed.h"
#include "tests/support/malloc/failing_malloc.h"

// What all commands do alike, whatever they ask and answer.
namespace {

using namespace std::chrono_literals;
using namespace support;

const char* const kWithParams = "CLX GIX LMF GED EBX GTK CEX MNU GCD GCX GOX FCX";

bool is_among(const char* ids, const std::string& id) { return std::strstr(ids, id.c_str()) != nullptr; }

// Of an answer that ends within its status.
Raised too_short(const std::string& id) {
    return is_among(kWithParams, id) ? error(kIo, "Invalid packet (not enough data)")
                                     : error(kProtocol, "Unrecognized response");
}

Raised other_id(const std::string& id, const std::string& read) {
    if (is_among("GTS TLI TLR TLE GDU", id)) {
        return error(kProtocol, "Invalid RSP_ID (expected " + id + ", read: " + read + ")");
    }
    return error(kProtocol, "(" + id + ") Invalid RSP_ID: " + read + (id == "OPN" ? "" : ")"));
}

// In all outputs stands something that may not be written over; two commands begin with what they write or read there.
struct World : CommandWorld {
    explicit World(const Link& onLink) : CommandWorld(onLink.comm, "") {}

    void mark(const std::string& id) {
        kor_string_list_append(list, "a");
        std::memset(out.room, id == "GEN" ? 0 : 'k', sizeof out.room);
        std::memset(text, 'k', sizeof text);
    }

    void expect_untouched(const std::string& id) const {
        EXPECT_EQ(kor_map_size(params), 0U) << id;
        EXPECT_EQ(std::string(out.room, sizeof out.room), std::string(sizeof out.room, id == "GEN" ? 0 : 'k')) << id;
        if (id != "GTS") { EXPECT_EQ(std::string(text, sizeof text), std::string(sizeof text, 'k')) << id; }
    }
};

struct Asked {
    std::string id;
    int32_t (*call)(World&);
};

// Polls a command; without a world there is nowhere to put its answer.
template <auto kPoll>
int32_t poll(AbecsComm* link, World* world, char* text) {
    using Function = decltype(kPoll);
    if constexpr (std::is_invocable_v<Function, AbecsComm*, char*>) {
        return kPoll(link, text);
    } else if constexpr (std::is_invocable_v<Function, AbecsComm*, AbecsRspParamMap*, char*>) {
        return kPoll(link, world != nullptr ? world->params.object : nullptr, text);
    } else if constexpr (std::is_invocable_v<Function, AbecsComm*, char*, size_t, char*>) {
        return world != nullptr ? kPoll(link, world->text, 1, text) : kPoll(link, nullptr, 1, text);
    } else {
        return world != nullptr ? kPoll(link, world->out, text) : kPoll(link, nullptr, text);
    }
}

struct Waiting {
    std::string name;
    int32_t (*poll)(AbecsComm*, World*, char*);
    void (*send)(World&) = nullptr;

    [[nodiscard]] std::string id() const { return name.substr(0, 3); }
    [[nodiscard]] std::string output() const {
        if (name == "MNU") { return "optOut"; }
        if (name == "GCR") { return "gcrResponse"; }
        if (name == "GOC") { return "gocResponse"; }
        if (name == "GPN" || name == "GEN/04/03") { return "rspDataOut"; }
        return is_among("GKY RMC", name) ? "" : "out";
    }
};

// What commands.inc has of both kinds. Each way of sending stands before that of polling.
struct Commands {
    void add(Asked row) { asked.push_back(std::move(row)); }
    void add(void (*row)(World&)) { send = row; }
    void add(Waiting row) { waiting.push_back(std::move(row)), waiting.back().send = send; }

    Commands() {
#define ASKS(answer, function, ...) \
    add(Asked{std::string(answer).substr(0, 3), [](World& w) -> int32_t { return function(__VA_ARGS__); }});
#define SENDS(function, ...) add([](World& w) { static_cast<void>(function(__VA_ARGS__)); });
#define POLLS(id, answer, function, ...) add(Waiting{id, poll<function>});
#define TALKS(...)
#define TOO(...)
#include "tests/support/commands.inc"
    }

    std::vector<Asked> asked;
    std::vector<Waiting> waiting;
    void (*send)(World&) = nullptr;
};

// A status, or what is no answer.
TEST(Answering, GivesTheStatusOrRefusesTheAnswer) {
    Link link;
    World world(link);
    for (const auto& [id, call] : Commands().asked) {
        const std::pair<std::string, Outcome> rows[] = {
            {id + "042", ABECS_RSP_STAT_ST_ERRKEY},
            {"ERR010", ABECS_RSP_STAT_ST_INVCALL},
            {id + "00", too_short(id)},
            {"DSX000", other_id(id, "DSX")},
            {"NTM000004WAIT", other_id(id, "NTM")},
            {id + "099", error(kProtocol, "Unknown value for RSP_STAT: 099")},
            {id + "0x0", error(kIo, "Invalid char (0x78) at index 1")},
            {"A" + "80"_hex + "B000", error(kIo, "Invalid character (0x80) at position 1")},
        };
        for (const auto& [answer, expected] : rows) {
            world.mark(id);
            link.peer.any_request().response(answer);
            EXPECT_EQ(outcome_of([&, act = call] { return act(world); }), expected) << id << answer;
            world.expect_untouched(id);
        }
    }
}

class Waits : public testing::Test {
protected:
    void send(const Waiting& command) {
        world_.out = {};
        link_.peer.any_request();
        EXPECT_NO_RAISE(command.send(world_));
        EXPECT_REFUSED(kState, "Connection is blocked waiting for " + command.name + " response", command.send(world_));
        world_.mark(command.name);
    }

    void expect_poll(const Waiting& command, const Outcome& expected, char* text = nullptr) {
        EXPECT_EQ(outcome_of([&] { return command.poll(link_.comm, &world_, text); }), expected) << command.name;
        const bool final = expected.raised == Raised{} && expected.status > ABECS_RSP_STAT_ST_PROCESSING;
        EXPECT_EQ(abecs_comm_get_blk_wait_id(link_.comm), final ? "" : command.name);
    }

    // That there is nowhere to put the answer is said before.
    void expect_unsent(const Waiting& command) {
        const auto refused = [&](const Raised& error, World* world) {
            expect_refused(error, [&] { return command.poll(link_.comm, world, nullptr); });
        };
        const AbecsRspParamValue none{};
        abecs_rsp_param_map_put(world_.params, 1, &none, false);
        refused(error(kState, command.name + " was not sent yet"), &world_);
        EXPECT_EQ(kor_map_size(world_.params), 1U) << "which only polling takes away";
        kor_map_clear(world_.params);
        if (!command.output().empty()) { refused(error(kArgument, "'" + command.output() + "' is NULL"), nullptr); }
    }

    const std::vector<Waiting> all_ = Commands().waiting;
    Link link_;
    World world_{link_};
};

// Whatever comes before it, what is no answer too.
TEST_F(Waits, AreBlockedUntilTheFinalStatusOrCancelled) {
    for (const Waiting& command : all_) {
        SCOPED_TRACE(command.name);
        expect_unsent(command);
        for (const std::string& final : {command.id() + "013", std::string("ERR010"), std::string("cancelled")}) {
            send(command);
            link_.peer.response(command.id() + "00").response("XYZ000").response(command.id() + "099");
            expect_poll(command, too_short(command.id()));
            expect_poll(command, other_id(command.name, "XYZ"));
            expect_poll(command, error(kProtocol, "Unknown value for RSP_STAT: 099"));
            link_.peer.response("NTM000011REMOVE CARD").response("NTM000000").response("NTM000002HI");
            char text[33] = "old";
            expect_poll(command, ABECS_RSP_STAT_ST_NOTIFICATION, text);
            EXPECT_STREQ(text, "REMOVE CARD");
            expect_poll(command, ABECS_RSP_STAT_ST_NOTIFICATION, text);
            EXPECT_STREQ(text, "");
            expect_poll(command, ABECS_RSP_STAT_ST_NOTIFICATION);
            if (final == "cancelled") {
                link_.peer.accept_can();
                EXPECT_NO_RAISE(abecs_comm_send_can(link_.comm));
            } else {
                link_.peer.response(final);
                expect_poll(command, final == "ERR010" ? ABECS_RSP_STAT_ST_INVCALL : ABECS_RSP_STAT_ST_CANCEL, text);
            }
            world_.expect_untouched(command.name);
            expect_unsent(command);
        }
    }
}

// The limit is that of all a call does: the request and its answer, and the many requests that load a file.
TEST(Limit, CountsForAWholeCall) {
    Link link;
    const TempDir dir;
    const std::string path = dir.file("logo.png", std::string(4000, 'x'));
    const auto expectLate = [](std::function<void()> call) {
        const Elapsed elapsed;
        EXPECT_EQ(raised_by(call), error(KOR_RESULT_TIMEOUT_ERROR, "The limit of 900 ms has passed"));
        // It would end at 1.7 s if each step began it anew.
        EXPECT_TRUE(elapsed.between(890ms, 1650ms));
    };
    EXPECT_NO_RAISE(abecs_comm_set_limit(link.comm, 900));
    link.peer.wait(800ms).any_request().wait(800ms);
    expectLate([&] { abecs_cmd_tle(link.comm); });
    link.peer.settle();
    link.peer.wait(800ms).any_request().response("MLI000").wait(400ms).any_request();
    expectLate([&] { abecs_cmd_mlx(link.comm, path.c_str(), "LOGO", 1); });
}

TEST(Allocations, AreTwoForAnExchangeAndThreeForAParameterInAMap) {
    Link link;
    ParamMap map;
    const auto allocations = [&](const std::string& params) {
        link.peer.request("GIX").response("GIX000" + std::to_string(1000 + params.size()).substr(1) + params);
        const FailingMalloc counting(0);
        EXPECT_EQ(abecs_cmd_gix(link.comm, nullptr, 0, map.get()), ABECS_RSP_STAT_ST_OK);
        return counting.given();
    };
    const std::string one = "8001 0001 41"_hex;
    const size_t first = allocations(one);
    EXPECT_LE(allocations(one + "8002 0001 42 807F 0001 43"_hex), first + 6);
    link.peer.request("TLE").response("TLE000");
    const FailingMalloc counting(0);
    EXPECT_EQ(abecs_cmd_tle(link.comm), ABECS_RSP_STAT_ST_OK);
    EXPECT_LE(counting.given(), 2U);
}

// A time-out takes two seconds: one command for each form of the answer.
TEST_F(Waits, CanBePolledAgainAfterATimeOutOrThreeDamagedFrames) {
    for (const Waiting& command : {all_[0], all_[2]}) {
        send(command);
        const Elapsed elapsed;
        expect_poll(command, ABECS_RSP_STAT_ST_PROCESSING);
        EXPECT_TRUE(elapsed.between(2s, 9s));
        for (int i = 0; i < 3; ++i) { link_.peer.send(frame(command.name + "013", 0x0000)).expect("15"_hex); }
        expect_poll(command, ABECS_RSP_STAT_ST_PROCESSING);
        link_.peer.response("NTM000002HI").response(command.name + "013");
        expect_poll(command, ABECS_RSP_STAT_ST_NOTIFICATION);
        expect_poll(command, ABECS_RSP_STAT_ST_CANCEL);
    }
}

}  // namespace
