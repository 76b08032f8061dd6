// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <chrono>
#include <functional>

#include "quorvel/abecs/line.h"
#include "tests/abecs/cmd/commands.h"
#include "tests/core/temp_dir.h"
#include "tests/support/elapsed.h"
#include "tests/support/malloc/failing_malloc.h"
#include "tests/support/scratch.h"

// What all commands do alike, whatever they ask and answer.
namespace {

using namespace std::chrono_literals;
using namespace support;

// What the commands take and fill; each is sent with the least that it accepts.
struct Data {
    Data() {
        std::memset(out.room, 'k', sizeof out.room);
        kor_string_list_append(names, "A");
    }
    ~Data() {
        kor_string_list_delete(&names);
        abecs_cmd_ebx_builder_delete(&ebx);
        abecs_cmd_gtk_builder_delete(&gtk);
        abecs_cmd_gcx_builder_delete(&gcx);
        abecs_cmd_gox_builder_delete(&gox);
        abecs_cmd_fcx_builder_delete(&fcx);
    }
    Data(Data&&) = delete;

    // Nothing was written into any output.
    void expect_untouched() const {
        EXPECT_EQ(map.items(), ParamMap::Items{});
        EXPECT_EQ(std::string(out.room, sizeof out.room), std::string(sizeof out.room, 'k'));
    }

    KorList* names = kor_string_list_new();
    AbecsCmdEbxBuilder* ebx = abecs_cmd_ebx_builder_new(reinterpret_cast<const uint8_t*>("12345678"), 8,
                                                        ABECS_SPE_MTHD_DAT_DUKPT_DAT3_ECB, 5);
    AbecsCmdGtkBuilder* gtk = abecs_cmd_gtk_builder_new();
    AbecsCmdGcxBuilder* gcx = abecs_cmd_gcx_builder_new("251231", "235959");
    AbecsCmdGoxBuilder* gox = abecs_cmd_gox_builder_new(4, ABECS_SPE_MTHD_PIN_DUKPT_TDES, 12);
    AbecsCmdFcxBuilder* fcx = abecs_cmd_fcx_builder_new("2000");
    ParamMap map;
    char version[11];  // which is emptied first, as the list of names is
    Scratch out;
};

const Raised kFields = error(kProtocol, "Unrecognized response");
const Raised kParams = error(kIo, "Invalid packet (not enough data)");
const char* const kPlain = "(ABC) Invalid RSP_ID: XYZ)";
const char* const kExpected = "Invalid RSP_ID (expected ABC, read: XYZ)";
const std::string kName = "001E 0008"_hex + "A       ";
const std::string kBlanks(32, ' ');

const AbecsTagList kTags{{0x82}, 1};
const AbecsCmdFncData kFnc{0, "00", 0, "", 0, ""};
const AbecsCmdEnbCmdData kEnb{ABECS_CMD_ENB_METHOD_0, 0, "", "4111111111111111"};
const AbecsCmdGen02K3CmdData kKeys{0, 0, 0, 0};
const char kOptions[][25] = {"TEA"};
const AbecsCmdGpnCmdData kGpn{ABECS_CMD_GPN_METHOD_DUKPT_DES, 7, "", "", 1, {{4, 12, "PIN"}}};
const AbecsCmdChpParam kChp{};
const AbecsCmdGocData kGoc{};
const AbecsCmdGen0403CmdData kPin{0, "00200080", 'b', 0, 12, "?"};

const struct {
    std::string id;
    std::string rest;
    Raised shortAnswer;
    std::string otherId;
    int32_t (*call)(AbecsComm*, Data&);
} kAnswered[] = {
    {"OPN", "", kFields, "(ABC) Invalid RSP_ID: XYZ", [](auto* link, Data&) { return abecs_cmd_opn(link, false); }},
    {"CLO", "032" + kBlanks, kFields, kPlain, [](auto* link, Data&) { return abecs_cmd_clo(link, nullptr); }},
    {"CLX", "", kParams, kPlain, [](auto* link, Data&) { return abecs_cmd_clx(link, nullptr, nullptr); }},
    {"DSP", "032" + kBlanks, kFields, kPlain, [](auto* link, Data&) { return abecs_cmd_dsp(link, ""); }},
    {"DEX", "003000", kFields, kPlain, [](auto* link, Data&) { return abecs_cmd_dex(link, ""); }},
    {"GIN", "00202", kFields, kPlain, [](auto* link, Data& it) { return abecs_cmd_gin(link, 2, it.out); }},
    {"GIX", "", kParams, kPlain, [](auto* link, Data& it) { return abecs_cmd_gix(link, nullptr, 0, it.map.get()); }},
    {"GTS", "00201", kFields, kExpected, [](auto* link, Data& it) { return abecs_cmd_gts(link, 1, it.version); }},
    {"TLI", "01201V         ", kFields, kExpected, [](auto* link, Data&) { return abecs_cmd_tli(link, 1, "V"); }},
    {"TLR", "01001008101AB", kFields, kExpected, [](auto* link, Data&) { return abecs_cmd_tlr(link, "008101AB"); }},
    {"TLE", "", kFields, kExpected, [](auto* link, Data&) { return abecs_cmd_tle(link); }},
    {"MLI", "026" + kName + "001F 000A 00000000 0000 00 000000"_hex, kFields, kPlain,
     [](auto* link, Data&) { return abecs_cmd_mli(link, "a", 0, 0, 0); }},
    {"MLR", "005" + "000F 0001"_hex + "b", kFields, kPlain,
     [](auto* link, Data&) { return abecs_cmd_mlr(link, reinterpret_cast<const uint8_t*>("b"), 1); }},
    {"MLE", "", kFields, kPlain, [](auto* link, Data&) { return abecs_cmd_mle(link); }},
    {"LMF", "", kParams, kPlain, [](auto* link, Data& it) { return abecs_cmd_lmf(link, it.names); }},
    {"DMF", "012" + kName, kFields, kPlain, [](auto* link, Data& it) { return abecs_cmd_dmf(link, it.names); }},
    {"DSI", "012" + kName, kFields, kPlain, [](auto* link, Data&) { return abecs_cmd_dsi(link, "a"); }},
    {"CNG", "00200", kFields, kPlain, [](auto* link, Data&) { return abecs_cmd_cng(link, ""); }},
    {"GED", "005" + "0004 0001 82"_hex, kParams, kPlain,
     [](auto* link, Data& it) { return abecs_cmd_ged(link, &kTags, it.out); }},
    {"FNC", "010" + std::string(10, '0') + "003000", kFields, kPlain,
     [](auto* link, Data& it) { return abecs_cmd_fnc(link, &kFnc, it.out); }},
    {"GDU", "003302", kFields, kExpected,
     [](auto* link, Data& it) { return abecs_cmd_gdu(link, ABECS_CMD_GDU_METHOD_3, 2, it.out); }},
    {"ENB", "051000" + repeated("30", 16) + "4111111111111111", kFields, kPlain,
     [](auto* link, Data& it) { return abecs_cmd_enb(link, &kEnb, it.out); }},
    {"EBX", "024" + "000F 0008"_hex + "12345678" + "0003 0002 3530 0009 0002 3035"_hex, kParams, kPlain,
     [](auto* link, Data& it) { return abecs_cmd_ebx(link, it.ebx, it.map.get()); }},
    {"GTK", "", kParams, kPlain, [](auto* link, Data& it) { return abecs_cmd_gtk(link, it.gtk, it.map.get()); }},
    {"GEN", "01302008K3000000", kFields, kPlain,
     [](auto* link, Data& it) { return abecs_cmd_gen_02_k3(link, &kKeys, it.out); }},
};

// A status, or what is no answer.
TEST(Answering, GivesTheStatusOrRefusesTheAnswer) {
    for (const auto& command : kAnswered) {
        const auto other = [&](const char* read) {
            std::string text = command.otherId;
            text.replace(text.find("ABC"), 3, command.id);
            return error(kProtocol, text.replace(text.find("XYZ"), 3, read));
        };
        const std::pair<std::string, Outcome> rows[] = {
            {command.id + "042", ABECS_RSP_STAT_ST_ERRKEY},
            {"ERR010", ABECS_RSP_STAT_ST_INVCALL},
            {command.id + "00", command.shortAnswer},
            {"DSX000", other("DSX")},
            {"NTM000004WAIT", other("NTM")},
            {command.id + "099", error(kProtocol, "Unknown value for RSP_STAT: 099")},
            {command.id + "0x0", error(kIo, "Invalid char (0x78) at index 1")},
            {"A" + "80"_hex + "B000", error(kIo, "Invalid character (0x80) at position 1")},
        };
        Link link;
        Data data;
        for (const auto& [answer, expected] : rows) {
            link.peer.request(command.id + command.rest).response(answer);
            EXPECT_EQ(outcome_of([&] { return command.call(link.comm, data); }), expected) << command.id << answer;
        }
        data.expect_untouched();
    }
}

// Polls a command; without data there is nowhere to put its answer.
template <auto kPoll>
int32_t poll(AbecsComm* link, Data* data, char* text) {
    using Function = decltype(kPoll);
    if constexpr (std::is_invocable_v<Function, AbecsComm*, char*>) {
        return kPoll(link, text);
    } else if constexpr (std::is_invocable_v<Function, AbecsComm*, AbecsRspParamMap*, char*>) {
        return kPoll(link, data != nullptr ? data->map.get() : nullptr, text);
    } else {
        return data != nullptr ? kPoll(link, data->out, text) : kPoll(link, nullptr, text);
    }
}

struct Waiting {
    std::string name;
    std::string request;
    Raised shortAnswer;
    const char* output;
    int32_t (*poll)(AbecsComm*, Data*, char*);
    void (*send)(AbecsComm*, Data&);
};

const Waiting kWaiting[] = {
    {"GKY", "GKY", kFields, nullptr, poll<abecs_cmd_gky_response>, [](auto* link, Data&) { abecs_cmd_gky(link); }},
    {"CEX", "CEX010" + "0006 0006"_hex + "111000", kParams, "out", poll<abecs_cmd_cex_response>,
     [](auto* link, Data&) { abecs_cmd_cex(link, "111000", nullptr, nullptr); }},
    {"RMC", "RMC032" + kBlanks, kFields, nullptr, poll<abecs_cmd_rmc_response>,
     [](auto* link, Data&) { abecs_cmd_rmc(link, nullptr); }},
    {"MNU", "MNU028" + "0020 0018"_hex + padded("TEA", 24), kParams, "optOut", poll<abecs_cmd_mnu_response>,
     [](auto* link, Data&) { abecs_cmd_mnu(link, 0, nullptr, kOptions, 1); }},
    {"CKE", "CKE003100", kFields, "out", poll<abecs_cmd_cke_response>,
     [](auto* link, Data&) {
         abecs_cmd_cke(link, true, false, ABECS_CMD_CKE_ICC_CHECK_TYPE_0, ABECS_CMD_CKE_CTLS_CHECK_TYPE_NOT_SENT);
     }},
    {"GPN", "GPN093207" + repeated("30", 16) + padded("00", 21) + "10412" + padded("PIN", 32), kFields, "rspDataOut",
     poll<abecs_cmd_gpn_response>, [](auto* link, Data&) { abecs_cmd_gpn(link, &kGpn); }},
    {"GCD", "GCD016" + "000B 0002 0102 000D 0001 01 000E 0001 20"_hex, kParams, "out", poll<abecs_cmd_gcd_response>,
     [](auto* link, Data&) { abecs_cmd_gcd(link, 0x0102, 1, 32, 0); }},
    {"GCR", "GCR", kFields, "gcrResponse", poll<abecs_cmd_gcr_response>,
     [](auto* link, Data&) { abecs_cmd_gcr_empty(link); }},
    {"CHP", "CHP00500000", kFields, "out", poll<abecs_cmd_chp_response>,
     [](auto* link, Data&) { abecs_cmd_chp(link, &kChp); }},
    {"GOC", "GOC086" + std::string(30, '0') + repeated("30", 16) + "0|30303030|00|30303030|00|00|003000|003000"_wire,
     kFields, "gocResponse", poll<abecs_cmd_goc_response>, [](auto* link, Data&) { abecs_cmd_goc(link, 0, &kGoc); }},
    {"GEN/04/03", "GEN053|04|048|03|0|00200080|B|00|12|?"_wire + std::string(31, ' '), kFields, "rspDataOut",
     poll<abecs_cmd_gen_04_03_response>, [](auto* link, Data&) { abecs_cmd_gen_04_03(link, &kPin); }},
    {"GCX", "GCX020" + "0015 0006 323531323331 0016 0006 323335393539"_hex, kParams, "out",
     poll<abecs_cmd_gcx_response>, [](auto* link, Data& it) { abecs_cmd_gcx(link, it.gcx); }},
    {"GOX", "GOX017" + "0010 0002 3034 0002 0001 33 0009 0002 3132"_hex, kParams, "out", poll<abecs_cmd_gox_response>,
     [](auto* link, Data& it) { abecs_cmd_gox(link, it.gox); }},
    {"FCX", "FCX008" + "0019 0004 32303030"_hex, kParams, "out", poll<abecs_cmd_fcx_response>,
     [](auto* link, Data& it) { abecs_cmd_fcx(link, it.fcx); }},
};

class Waits : public testing::Test {
protected:
    void send(const Waiting& command) {
        link_.peer.request(command.request);
        EXPECT_NO_RAISE(command.send(link_.comm, data_));
    }

    void expect_poll(const Waiting& command, const Outcome& expected, char* text = nullptr) {
        EXPECT_EQ(outcome_of([&] { return command.poll(link_.comm, &data_, text); }), expected) << command.name;
        const bool final = expected.raised == Raised{} && expected.status > ABECS_RSP_STAT_ST_PROCESSING;
        EXPECT_EQ(abecs_comm_get_blk_wait_id(link_.comm), final ? "" : command.name);
    }

    // That there is nowhere to put the answer is said before.
    void expect_unsent(const Waiting& command) {
        const auto refused = [&](const Raised& error, Data* data) {
            expect_refused(error, [&] { return command.poll(link_.comm, data, nullptr); });
        };
        data_.map.put(1);
        refused(error(kState, command.name + " was not sent yet"), &data_);
        EXPECT_EQ(data_.map.items().size(), 1U) << "which only polling takes away";
        kor_map_clear(data_.map.get());
        if (command.output != nullptr) {
            refused(error(kArgument, "'" + std::string(command.output) + "' is NULL"), nullptr);
        }
    }

    Link link_;
    Data data_;
};

TEST_F(Waits, AreBlockedUntilTheFinalStatusOrCancelled) {
    for (const Waiting& command : kWaiting) {
        SCOPED_TRACE(command.name);
        const std::string id = command.request.substr(0, 3);
        expect_unsent(command);
        for (const std::string& final : {id + "013", std::string("ERR010"), std::string("cancelled")}) {
            send(command);
            EXPECT_REFUSED(kState, "Connection is blocked waiting for " + command.name + " response",
                           command.send(link_.comm, data_));
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
            expect_unsent(command);
        }
        data_.expect_untouched();
    }
}

TEST_F(Waits, StayBlockedAfterAnAnswerThatIsNone) {
    for (const Waiting& command : kWaiting) {
        const std::string id = command.request.substr(0, 3);
        send(command);
        link_.peer.response(id + "00").response("XYZ000").response(id + "099").response(id + "012");
        expect_poll(command, command.shortAnswer);
        expect_poll(command, error(kProtocol, "(" + command.name + ") Invalid RSP_ID: XYZ)"));
        expect_poll(command, error(kProtocol, "Unknown value for RSP_STAT: 099"));
        expect_poll(command, ABECS_RSP_STAT_ST_TIMEOUT);
        data_.expect_untouched();
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
        EXPECT_TRUE(elapsed.between(890ms, 1150ms));
    };
    EXPECT_NO_RAISE(abecs_comm_set_limit(link.comm, 900));
    link.peer.wait(600ms).any_request().wait(600ms);
    expectLate([&] { abecs_cmd_tle(link.comm); });
    link.peer.settle();
    link.peer.wait(450ms).any_request().response("MLI000").wait(750ms).any_request();
    expectLate([&] { abecs_cmd_mlx(link.comm, path.c_str(), "LOGO", 1); });
}

// An answer that takes longer than a poll may.
TEST(Limit, LeavesAPollOnTheLinkUntilItsAnswerIsThere) {
    Link link;
    EXPECT_NO_RAISE(abecs_comm_set_limit(link.comm, 100));
    link.peer.request("GKY");
    EXPECT_NO_RAISE(abecs_cmd_gky(link.comm));
    for (const char byte : frame("GKY004")) { link.peer.wait(60ms).send(std::string(1, byte)); }
    int polls = 0;
    int32_t status = ABECS_RSP_STAT_ST_PROCESSING;
    for (; status == ABECS_RSP_STAT_ST_PROCESSING && polls < 100; ++polls) {
        EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "GKY");
        EXPECT_NO_RAISE(status = abecs_cmd_gky_response(link.comm, nullptr));
    }
    EXPECT_EQ(status, ABECS_RSP_STAT_ST_F1);
    EXPECT_GE(polls, 3);
    EXPECT_STREQ(abecs_comm_get_blk_wait_id(link.comm), "");
}

TEST(Allocations, AreTwoForAnExchangeAndThreeForAParameterInAMap) {
    Link link;
    ParamMap map;
    link.peer.request("TLE").response("TLE000").request("TLE").response("TLE000");
    EXPECT_EQ(abecs_cmd_tle(link.comm), ABECS_RSP_STAT_ST_OK);
    {
        const FailingMalloc counting(0);
        EXPECT_EQ(abecs_cmd_tle(link.comm), ABECS_RSP_STAT_ST_OK);
        EXPECT_LE(counting.given(), 2U);
    }
    const auto allocationsOfAnswer = [&](const std::string& params) {
        link.peer.request("GIX").response("GIX000" + std::to_string(1000 + params.size()).substr(1) + params);
        const FailingMalloc counting(0);
        EXPECT_EQ(abecs_cmd_gix(link.comm, nullptr, 0, map.get()), ABECS_RSP_STAT_ST_OK);
        return counting.given();
    };
    const std::string one = "8001 0001 41"_hex;
    const size_t first = allocationsOfAnswer(one);
    EXPECT_LE(allocationsOfAnswer(one + "8002 0001 42 807F 0001 43"_hex), first + 6);
}

// A time-out takes two seconds: one command for each form of the answer.
TEST_F(Waits, CanBePolledAgainAfterATimeOutOrThreeDamagedFrames) {
    for (const Waiting& command : {kWaiting[0], kWaiting[1]}) {
        send(command);
        const Elapsed elapsed;
        expect_poll(command, ABECS_RSP_STAT_ST_PROCESSING);
        EXPECT_TRUE(elapsed.between(2s, 5s));
        for (int i = 0; i < 3; ++i) { link_.peer.send(frame(command.name + "013", 0x0000)).expect("15"_hex); }
        expect_poll(command, ABECS_RSP_STAT_ST_PROCESSING);
        link_.peer.response("NTM000002HI").response(command.name + "013");
        expect_poll(command, ABECS_RSP_STAT_ST_NOTIFICATION);
        expect_poll(command, ABECS_RSP_STAT_ST_CANCEL);
    }
}

}  // namespace
