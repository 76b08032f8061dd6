// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "quorvel/quorvel.h"
#include "tests/abecs/cmd/param_map.h"
#include "tests/support/link.h"
#include "tests/support/wire.h"

// What every command that is answered at once does alike, whatever it asks and answers.
namespace {

using namespace support::literals;
using support::Link;

// What the commands take and fill; each is sent with the least that it accepts.
struct Data {
    Data() { kor_string_list_append(names, "A"); }
    ~Data() {
        kor_string_list_delete(&names);
        abecs_cmd_ebx_builder_delete(&ebx);
        abecs_cmd_gtk_builder_delete(&gtk);
    }
    Data(Data&&) = delete;

    KorList* names = kor_string_list_new();
    AbecsCmdEbxBuilder* ebx = abecs_cmd_ebx_builder_new(reinterpret_cast<const uint8_t*>("12345678"), 8,
                                                        ABECS_SPE_MTHD_DAT_DUKPT_DAT3_ECB, 5);
    AbecsCmdGtkBuilder* gtk = abecs_cmd_gtk_builder_new();
    support::ParamMap map;
    char text[101] = "kept";
    AbecsEmvData emvData{{}, 99};
    AbecsCmdFncResponse decision{77, 0, "", 0, "", 0};
    AbecsCmdGinOut info{};
};

struct Answering {
    std::string id;
    std::string rest;
    const char* shortAnswer;
    std::string otherId;
    int32_t (*call)(AbecsComm*, Data&);
};

const char* const kFields = "Unrecognized response";
const char* const kParams = "Invalid packet (not enough data)";
const char* const kPlain = "(ABC) Invalid RSP_ID: XYZ)";
const char* const kExpected = "Invalid RSP_ID (expected ABC, read: XYZ)";
const std::string kName = "001E 0008"_hex + "A       ";
const std::string kBlanks(32, ' ');

const Answering kAll[] = {
    {"OPN", "", kFields, "(ABC) Invalid RSP_ID: XYZ", [](auto* link, Data&) { return abecs_cmd_opn(link, false); }},
    {"CLO", "032" + kBlanks, kFields, kPlain, [](auto* link, Data&) { return abecs_cmd_clo(link, nullptr); }},
    {"CLX", "", kParams, kPlain, [](auto* link, Data&) { return abecs_cmd_clx(link, nullptr, nullptr); }},
    {"DSP", "032" + kBlanks, kFields, kPlain, [](auto* link, Data&) { return abecs_cmd_dsp(link, ""); }},
    {"DEX", "003000", kFields, kPlain, [](auto* link, Data&) { return abecs_cmd_dex(link, ""); }},
    {"GIN", "00202", kFields, kPlain, [](auto* link, Data& data) { return abecs_cmd_gin(link, 2, &data.info); }},
    {"GIX", "", kParams, kPlain,
     [](auto* link, Data& data) { return abecs_cmd_gix(link, nullptr, 0, data.map.get()); }},
    {"GTS", "00201", kFields, kExpected,
     [](auto* link, Data&) {
         char version[11];
         return abecs_cmd_gts(link, 1, version);
     }},
    {"TLI", "01201V         ", kFields, kExpected, [](auto* link, Data&) { return abecs_cmd_tli(link, 1, "V"); }},
    {"TLR", "01001008101AB", kFields, kExpected, [](auto* link, Data&) { return abecs_cmd_tlr(link, "008101AB"); }},
    {"TLE", "", kFields, kExpected, [](auto* link, Data&) { return abecs_cmd_tle(link); }},
    {"MLI", "026" + kName + "001F 000A 00000000 0000 00 000000"_hex, kFields, kPlain,
     [](auto* link, Data&) { return abecs_cmd_mli(link, "a", 0, 0, 0); }},
    {"MLR", "005" + "000F 0001"_hex + "b", kFields, kPlain,
     [](auto* link, Data&) { return abecs_cmd_mlr(link, reinterpret_cast<const uint8_t*>("b"), 1); }},
    {"MLE", "", kFields, kPlain, [](auto* link, Data&) { return abecs_cmd_mle(link); }},
    {"LMF", "", kParams, kPlain, [](auto* link, Data& data) { return abecs_cmd_lmf(link, data.names); }},
    {"DMF", "012" + kName, kFields, kPlain, [](auto* link, Data& data) { return abecs_cmd_dmf(link, data.names); }},
    {"DSI", "012" + kName, kFields, kPlain, [](auto* link, Data&) { return abecs_cmd_dsi(link, "a"); }},
    {"CNG", "00200", kFields, kPlain, [](auto* link, Data&) { return abecs_cmd_cng(link, ""); }},
    {"GED", "005" + "0004 0001 82"_hex, kParams, kPlain,
     [](auto* link, Data& data) {
         const AbecsTagList tags{{0x82}, 1};
         return abecs_cmd_ged(link, &tags, &data.emvData);
     }},
    {"FNC", "010" + std::string(10, '0') + "003000", kFields, kPlain,
     [](auto* link, Data& data) {
         const AbecsCmdFncData sent{0, "00", 0, "", 0, ""};
         return abecs_cmd_fnc(link, &sent, &data.decision);
     }},
    {"GDU", "003302", kFields, kExpected,
     [](auto* link, Data& data) { return abecs_cmd_gdu(link, ABECS_CMD_GDU_METHOD_3, 2, data.text); }},
    {"ENB", "051000" + std::string("303030303030303030303030303030304111111111111111"), kFields, kPlain,
     [](auto* link, Data& data) {
         const AbecsCmdEnbCmdData sent{ABECS_CMD_ENB_METHOD_0, 0, "", "4111111111111111"};
         return abecs_cmd_enb(link, &sent, data.text);
     }},
    {"EBX", "024" + "000F 0008"_hex + "12345678" + "0003 0002 3530 0009 0002 3035"_hex, kParams, kPlain,
     [](auto* link, Data& data) { return abecs_cmd_ebx(link, data.ebx, data.map.get()); }},
    {"GTK", "", kParams, kPlain, [](auto* link, Data& data) { return abecs_cmd_gtk(link, data.gtk, data.map.get()); }},
    {"GEN", "01302008K3000000", kFields, kPlain,
     [](auto* link, Data& data) {
         const AbecsCmdGen02K3CmdData sent{0, 0, 0, 0};
         return abecs_cmd_gen_02_k3(link, &sent, data.text);
     }},
};

// Nothing was written into any output but the list of names, which is emptied first.
void expect_untouched(const Data& data) {
    EXPECT_EQ(data.map.items(), support::ParamMap::Items{});
    EXPECT_STREQ(data.text, "kept");
    EXPECT_EQ(data.emvData.szData, 99U);
    EXPECT_EQ(data.decision.decision, 77U);
    EXPECT_STREQ(data.info.idx02.text1, "");
}

TEST(Answering, GivesTheStatus) {
    for (const Answering& command : kAll) {
        SCOPED_TRACE(command.id);
        for (const auto& [answer, status] : {std::pair{command.id + "042", 42}, {"ERR010", 10}}) {
            Link link;
            Data data;
            link.peer.request(command.id + command.rest).response(answer);
            int32_t result = -99;
            EXPECT_NO_RAISE(result = command.call(link.comm, data));
            EXPECT_EQ(result, status);
            expect_untouched(data);
        }
    }
}

TEST(Answering, RefusesAnswersThatAreNone) {
    for (const Answering& command : kAll) {
        SCOPED_TRACE(command.id);
        const auto other = [&](const char* read) {
            std::string text = command.otherId;
            text.replace(text.find("ABC"), 3, command.id);
            return text.replace(text.find("XYZ"), 3, read);
        };
        const std::pair<std::string, support::Raised> rows[] = {
            {command.id + "00", support::error(command.shortAnswer == kFields ? 12 : 6, command.shortAnswer)},
            {"DSX000", support::error(12, other("DSX"))},
            {"NTM000004WAIT", support::error(12, other("NTM"))},
            {command.id + "099", support::error(12, "Unknown value for RSP_STAT: 099")},
            {command.id + "0x0", support::error(6, "Invalid char (0x78) at index 1")},
            {"A\x80"
             "B000",
             support::error(6, "Invalid character (0x80) at position 1")},
        };
        Link link;
        Data data;
        for (const auto& [answer, error] : rows) {
            link.peer.request(command.id + command.rest).response(answer);
            EXPECT_EQ(support::raised_by([&] { command.call(link.comm, data); }), error);
        }
        expect_untouched(data);
    }
}

}  // namespace
