// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <chrono>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "quorvel/quorvel.h"
#include "tests/abecs/cmd/param_map.h"
#include "tests/support/elapsed.h"
#include "tests/support/link.h"
#include "tests/support/refused.h"
#include "tests/support/wire.h"

// What every command that waits for the cardholder does alike, whatever it asks and answers.
namespace {

using namespace std::chrono_literals;
using namespace support::literals;
using support::Link;

struct Outputs {
    support::ParamMap map;
    uint32_t option = 77;
    AbecsCmdCkeOut event{};
    AbecsCmdGpnRspData pin{};
    char digits[33] = "";
};

struct Waiting {
    const char* id;
    std::string request;
    const char* shortAnswer;
    void (*send)(AbecsComm*);
    int32_t (*poll)(AbecsComm*, Outputs&, char*);
};

const char* const kFields = "Unrecognized response";
const char* const kParams = "Invalid packet (not enough data)";

std::vector<Waiting> all_waiting() {
    return {
        {"RMC", "RMC032" + std::string(32, ' '), kFields, [](AbecsComm* link) { abecs_cmd_rmc(link, nullptr); },
         [](AbecsComm* link, Outputs&, char* text) { return abecs_cmd_rmc_response(link, text); }},
        {"GKY", "GKY", kFields, abecs_cmd_gky,
         [](AbecsComm* link, Outputs&, char* text) { return abecs_cmd_gky_response(link, text); }},
        {"MNU", "MNU028" + "0020 0018"_hex + "TEA                     ", kParams,
         [](AbecsComm* link) {
             const char options[][25] = {"TEA"};
             abecs_cmd_mnu(link, 0, nullptr, options, 1);
         },
         [](AbecsComm* link, Outputs& out, char* text) { return abecs_cmd_mnu_response(link, &out.option, text); }},
        {"CEX", "CEX010" + "0006 0006"_hex + "111000", kParams,
         [](AbecsComm* link) { abecs_cmd_cex(link, "111000", nullptr, nullptr); },
         [](AbecsComm* link, Outputs& out, char* text) { return abecs_cmd_cex_response(link, out.map.get(), text); }},
        {"CKE", "CKE003100", kFields,
         [](AbecsComm* link) {
             abecs_cmd_cke(link, true, false, ABECS_CMD_CKE_ICC_CHECK_TYPE_0, ABECS_CMD_CKE_CTLS_CHECK_TYPE_NOT_SENT);
         },
         [](AbecsComm* link, Outputs& out, char* text) { return abecs_cmd_cke_response(link, &out.event, text); }},
        {"GPN", "GPN0932073030303030303030303030303030303000                   10412PIN" + std::string(29, ' '),
         kFields,
         [](AbecsComm* link) {
             const AbecsCmdGpnCmdData data{ABECS_CMD_GPN_METHOD_DUKPT_DES, 7, "", "", 1, {{4, 12, "PIN"}}};
             abecs_cmd_gpn(link, &data);
         },
         [](AbecsComm* link, Outputs& out, char* text) { return abecs_cmd_gpn_response(link, &out.pin, text); }},
        {"GCD", "GCD016" + "000B 0002 0102 000D 0001 01 000E 0001 20"_hex, kParams,
         [](AbecsComm* link) { abecs_cmd_gcd(link, 0x0102, 1, 32, 0); },
         [](AbecsComm* link, Outputs& out, char* text) { return abecs_cmd_gcd_response(link, out.digits, text); }},
    };
}

class Waits : public testing::Test {
protected:
    void send(const Waiting& command) {
        link_.peer.request(command.request);
        EXPECT_NO_RAISE(command.send(link_.comm));
        EXPECT_STREQ(abecs_comm_get_blk_wait_id(link_.comm), command.id);
    }

    int32_t poll(const Waiting& command, char* text = nullptr) {
        int32_t result = -99;
        EXPECT_NO_RAISE(result = command.poll(link_.comm, out_, text)) << command.id;
        return result;
    }

    // Nothing was written into any output.
    void expect_untouched() {
        EXPECT_EQ(out_.map.items(), support::ParamMap::Items{});
        EXPECT_EQ(out_.option, 77U);
        EXPECT_EQ(out_.event.event, ABECS_CMD_CKE_EVENT_KEY);
        EXPECT_STREQ(out_.pin.pinBlk, "");
        EXPECT_STREQ(out_.digits, "");
    }

    Link link_;
    Outputs out_;
};

TEST_F(Waits, AreBlockedUntilTheFinalStatusOrCancelled) {
    for (const Waiting& command : all_waiting()) {
        SCOPED_TRACE(command.id);
        const std::string id = command.id;
        const auto unsent = [&] {
            EXPECT_REFUSED(3, id + " was not sent yet", command.poll(link_.comm, out_, nullptr));
        };
        unsent();
        for (const std::string& final : {id + "013", std::string("ERR010"), std::string("cancelled")}) {
            send(command);
            EXPECT_REFUSED(3, "Connection is blocked waiting for " + id + " response", command.send(link_.comm));
            link_.peer.response("NTM000011REMOVE CARD").response("NTM000000").response("NTM000002HI");
            char text[33] = "old";
            EXPECT_EQ(poll(command, text), -2);
            EXPECT_STREQ(text, "REMOVE CARD");
            EXPECT_EQ(poll(command, text), -2);
            EXPECT_STREQ(text, "");
            EXPECT_EQ(poll(command, nullptr), -2);
            EXPECT_STREQ(abecs_comm_get_blk_wait_id(link_.comm), command.id);
            if (final == "cancelled") {
                link_.peer.accept_can();
                EXPECT_NO_RAISE(abecs_comm_send_can(link_.comm));
            } else {
                link_.peer.response(final);
                EXPECT_EQ(poll(command, text), final == "ERR010" ? 10 : 13);
            }
            EXPECT_STREQ(abecs_comm_get_blk_wait_id(link_.comm), "");
            unsent();
        }
        expect_untouched();
    }
}

TEST_F(Waits, StayBlockedAfterAnAnswerThatIsNone) {
    for (const Waiting& command : all_waiting()) {
        SCOPED_TRACE(command.id);
        const std::string id = command.id;
        send(command);
        link_.peer.response(id + "00").response("XYZ000").response(id + "099").response(id + "012");
        EXPECT_RAISES(command.shortAnswer == kFields ? 12 : 6, command.shortAnswer,
                      command.poll(link_.comm, out_, nullptr));
        EXPECT_RAISES(12, "(" + id + ") Invalid RSP_ID: XYZ)", command.poll(link_.comm, out_, nullptr));
        EXPECT_RAISES(12, "Unknown value for RSP_STAT: 099", command.poll(link_.comm, out_, nullptr));
        EXPECT_EQ(poll(command), 12);
        expect_untouched();
    }
}

TEST_F(Waits, NeedSomewhereToPutTheAnswer) {
    EXPECT_REFUSED(2, "'optOut' is NULL", abecs_cmd_mnu_response(link_.comm, nullptr, nullptr));
    EXPECT_REFUSED(2, "'out' is NULL", abecs_cmd_cex_response(link_.comm, nullptr, nullptr));
    EXPECT_REFUSED(2, "'rspDataOut' is NULL", abecs_cmd_gpn_response(link_.comm, nullptr, nullptr));
    EXPECT_REFUSED(2, "'out' is NULL", abecs_cmd_gcd_response(link_.comm, nullptr, nullptr));
}

// A time-out takes two seconds: one command for each form of the answer.
TEST_F(Waits, CanBePolledAgainAfterATimeOut) {
    const auto commands = all_waiting();
    for (const Waiting& command : {commands[1], commands[3]}) {
        SCOPED_TRACE(command.id);
        send(command);
        const support::Elapsed elapsed;
        EXPECT_EQ(poll(command), -1);
        EXPECT_TRUE(elapsed.between(2s, 5s));
        EXPECT_STREQ(abecs_comm_get_blk_wait_id(link_.comm), command.id);
        link_.peer.response("NTM000002HI").response(std::string(command.id) + "013");
        EXPECT_EQ(poll(command), -2);
        EXPECT_EQ(poll(command), 13);
        EXPECT_STREQ(abecs_comm_get_blk_wait_id(link_.comm), "");
    }
}

TEST_F(Waits, CanBePolledAgainAfterThreeDamagedFrames) {
    const auto commands = all_waiting();
    for (const Waiting& command : {commands[1], commands[3]}) {
        SCOPED_TRACE(command.id);
        send(command);
        for (int i = 0; i < 3; ++i) {
            link_.peer.send(support::frame(std::string(command.id) + "013", 0x0000)).expect("15"_hex);
        }
        EXPECT_EQ(poll(command), -1);
        EXPECT_STREQ(abecs_comm_get_blk_wait_id(link_.comm), command.id);
        link_.peer.response(std::string(command.id) + "013");
        EXPECT_EQ(poll(command), 13);
    }
}

}  // namespace
