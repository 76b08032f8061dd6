// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <chrono>

#include "tests/abecs/cmd/commands.h"
#include "tests/support/elapsed.h"

// What every command that waits for the cardholder does alike, whatever it asks and answers.
namespace {

using namespace std::chrono_literals;
using namespace support;

struct Data {
    Data() { std::memset(&out, 'k', sizeof out); }
    ~Data() {
        abecs_cmd_gcx_builder_delete(&gcx);
        abecs_cmd_gox_builder_delete(&gox);
        abecs_cmd_fcx_builder_delete(&fcx);
    }
    Data(Data&&) = delete;

    // Nothing was written into any output.
    void expect_untouched() const {
        EXPECT_EQ(map.items(), ParamMap::Items{});
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(&out), sizeof out), std::string(sizeof out, 'k'));
    }

    AbecsCmdGcxBuilder* gcx = abecs_cmd_gcx_builder_new("251231", "235959");
    AbecsCmdGoxBuilder* gox = abecs_cmd_gox_builder_new(4, ABECS_SPE_MTHD_PIN_DUKPT_TDES, 12);
    AbecsCmdFcxBuilder* fcx = abecs_cmd_fcx_builder_new("2000");
    ParamMap map;
    struct {
        uint32_t option;
        AbecsCmdCkeOut event;
        AbecsCmdGpnRspData pin;
        AbecsCmdGcrResponse card;
        AbecsCmdGocResponse decision;
        AbecsCmdGen0403RspData verdict;
        char text[515];
    } out;
};

struct Waiting {
    std::string name;
    std::string request;
    Raised shortAnswer;
    void (*send)(AbecsComm*, Data&);
    int32_t (*poll)(AbecsComm*, Data&, char*);
};

const Raised kFields = error(kProtocol, "Unrecognized response");
const Raised kParams = error(kIo, "Invalid packet (not enough data)");

const Waiting kAll[] = {
    {"GKY", "GKY", kFields, [](auto* link, Data&) { abecs_cmd_gky(link); },
     [](auto* link, Data&, char* text) { return abecs_cmd_gky_response(link, text); }},
    {"CEX", "CEX010" + "0006 0006"_hex + "111000", kParams,
     [](auto* link, Data&) { abecs_cmd_cex(link, "111000", nullptr, nullptr); },
     [](auto* link, Data& it, char* text) { return abecs_cmd_cex_response(link, it.map.get(), text); }},
    {"RMC", "RMC032" + std::string(32, ' '), kFields, [](auto* link, Data&) { abecs_cmd_rmc(link, nullptr); },
     [](auto* link, Data&, char* text) { return abecs_cmd_rmc_response(link, text); }},
    {"MNU", "MNU028" + "0020 0018"_hex + padded("TEA", 24), kParams,
     [](auto* link, Data&) {
         const char options[][25] = {"TEA"};
         abecs_cmd_mnu(link, 0, nullptr, options, 1);
     },
     [](auto* link, Data& it, char* text) { return abecs_cmd_mnu_response(link, &it.out.option, text); }},
    {"CKE", "CKE003100", kFields,
     [](auto* link, Data&) {
         abecs_cmd_cke(link, true, false, ABECS_CMD_CKE_ICC_CHECK_TYPE_0, ABECS_CMD_CKE_CTLS_CHECK_TYPE_NOT_SENT);
     },
     [](auto* link, Data& it, char* text) { return abecs_cmd_cke_response(link, &it.out.event, text); }},
    {"GPN", "GPN093207" + repeated("30", 16) + padded("00", 21) + "10412" + padded("PIN", 32), kFields,
     [](auto* link, Data&) {
         const AbecsCmdGpnCmdData data{ABECS_CMD_GPN_METHOD_DUKPT_DES, 7, "", "", 1, {{4, 12, "PIN"}}};
         abecs_cmd_gpn(link, &data);
     },
     [](auto* link, Data& it, char* text) { return abecs_cmd_gpn_response(link, &it.out.pin, text); }},
    {"GCD", "GCD016" + "000B 0002 0102 000D 0001 01 000E 0001 20"_hex, kParams,
     [](auto* link, Data&) { abecs_cmd_gcd(link, 0x0102, 1, 32, 0); },
     [](auto* link, Data& it, char* text) { return abecs_cmd_gcd_response(link, it.out.text, text); }},
    {"GCR", "GCR", kFields, [](auto* link, Data&) { abecs_cmd_gcr_empty(link); },
     [](auto* link, Data& it, char* text) { return abecs_cmd_gcr_response(link, &it.out.card, text); }},
    {"CHP", "CHP00500000", kFields,
     [](auto* link, Data&) {
         const AbecsCmdChpParam off{};
         abecs_cmd_chp(link, &off);
     },
     [](auto* link, Data& it, char* text) { return abecs_cmd_chp_response(link, it.out.text, text); }},
    {"GOC", "GOC086" + std::string(30, '0') + repeated("30", 16) + "0|30303030|00|30303030|00|00|003000|003000"_wire,
     kFields,
     [](auto* link, Data&) {
         const AbecsCmdGocData data{};
         abecs_cmd_goc(link, 0, &data);
     },
     [](auto* link, Data& it, char* text) { return abecs_cmd_goc_response(link, &it.out.decision, text); }},
    {"GEN/04/03", "GEN053|04|048|03|0|00200080|B|00|12|?"_wire + std::string(31, ' '), kFields,
     [](auto* link, Data&) {
         const AbecsCmdGen0403CmdData data{0, "00200080", 'b', 0, 12, "?"};
         abecs_cmd_gen_04_03(link, &data);
     },
     [](auto* link, Data& it, char* text) { return abecs_cmd_gen_04_03_response(link, &it.out.verdict, text); }},
    {"GCX", "GCX020" + "0015 0006 323531323331 0016 0006 323335393539"_hex, kParams,
     [](auto* link, Data& it) { abecs_cmd_gcx(link, it.gcx); },
     [](auto* link, Data& it, char* text) { return abecs_cmd_gcx_response(link, it.map.get(), text); }},
    {"GOX", "GOX017" + "0010 0002 3034 0002 0001 33 0009 0002 3132"_hex, kParams,
     [](auto* link, Data& it) { abecs_cmd_gox(link, it.gox); },
     [](auto* link, Data& it, char* text) { return abecs_cmd_gox_response(link, it.map.get(), text); }},
    {"FCX", "FCX008" + "0019 0004 32303030"_hex, kParams, [](auto* link, Data& it) { abecs_cmd_fcx(link, it.fcx); },
     [](auto* link, Data& it, char* text) { return abecs_cmd_fcx_response(link, it.map.get(), text); }},
};

class Waits : public testing::Test {
protected:
    void send(const Waiting& command) {
        link_.peer.request(command.request);
        EXPECT_NO_RAISE(command.send(link_.comm, data_));
    }

    void expect_poll(const Waiting& command, const Outcome& expected, char* text = nullptr) {
        EXPECT_EQ(outcome_of([&] { return command.poll(link_.comm, data_, text); }), expected) << command.name;
        const bool final = expected.raised == Raised{} && expected.status > ABECS_RSP_STAT_ST_PROCESSING;
        EXPECT_EQ(abecs_comm_get_blk_wait_id(link_.comm), final ? "" : command.name);
    }

    Link link_;
    Data data_;
};

TEST_F(Waits, AreBlockedUntilTheFinalStatusOrCancelled) {
    for (const Waiting& command : kAll) {
        SCOPED_TRACE(command.name);
        const std::string id = command.request.substr(0, 3);
        const auto unsent = [&] {
            expect_refused(error(kState, command.name + " was not sent yet"),
                           [&] { return command.poll(link_.comm, data_, nullptr); });
        };
        unsent();
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
            unsent();
        }
        data_.expect_untouched();
    }
}

TEST_F(Waits, StayBlockedAfterAnAnswerThatIsNone) {
    for (const Waiting& command : kAll) {
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

// The latter is said before whether anything was sent.
TEST(Waiting, NeedsABuilderAndSomewhereToPutTheAnswer) {
    refuses("'optOut' is NULL", abecs_cmd_mnu_response, nullptr, nullptr);
    refuses("'out' is NULL", abecs_cmd_cex_response, nullptr, nullptr);
    refuses("'rspDataOut' is NULL", abecs_cmd_gpn_response, nullptr, nullptr);
    refuses("'out' is NULL", abecs_cmd_gcd_response, nullptr, nullptr);
    refuses("'gcrResponse' is NULL", abecs_cmd_gcr_response, nullptr, nullptr);
    refuses("'out' is NULL", abecs_cmd_chp_response, nullptr, nullptr);
    refuses("'gocResponse' is NULL", abecs_cmd_goc_response, nullptr, nullptr);
    refuses("'rspDataOut' is NULL", abecs_cmd_gen_04_03_response, nullptr, nullptr);
    refuses("'out' is NULL", abecs_cmd_gcx_response, nullptr, nullptr);
    refuses("'out' is NULL", abecs_cmd_gox_response, nullptr, nullptr);
    refuses("'out' is NULL", abecs_cmd_fcx_response, nullptr, nullptr);
    refuses("'builder' is NULL", abecs_cmd_gcx, nullptr);
    refuses("'builder' is NULL", abecs_cmd_gox, nullptr);
    refuses("'builder' is NULL", abecs_cmd_fcx, nullptr);
}

// A time-out takes two seconds: one command for each form of the answer.
TEST_F(Waits, CanBePolledAgainAfterATimeOutOrThreeDamagedFrames) {
    for (const Waiting& command : {kAll[0], kAll[1]}) {
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
