// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/abecs/cmd/commands.h"

// What every command that is answered at once does alike, whatever it asks and answers.
namespace {

using namespace support;

// What the commands take and fill; each is sent with the least that it accepts.
struct Data {
    Data() {
        std::memset(&out, 'k', sizeof out);
        kor_string_list_append(names, "A");
    }
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
    ParamMap map;
    char version[11];  // which is emptied first, as the list of names is
    struct {
        char text[101];
        AbecsEmvData emvData;
        AbecsCmdFncResponse decision;
        AbecsCmdGinOut info;
    } out;
};

const Raised kFields = error(kProtocol, "Unrecognized response");
const Raised kParams = error(kIo, "Invalid packet (not enough data)");
const char* const kPlain = "(ABC) Invalid RSP_ID: XYZ)";
const char* const kExpected = "Invalid RSP_ID (expected ABC, read: XYZ)";
const std::string kName = "001E 0008"_hex + "A       ";
const std::string kBlanks(32, ' ');

const struct {
    std::string id;
    std::string rest;
    Raised shortAnswer;
    std::string otherId;
    int32_t (*call)(AbecsComm*, Data&);
} kAll[] = {
    {"OPN", "", kFields, "(ABC) Invalid RSP_ID: XYZ", [](auto* link, Data&) { return abecs_cmd_opn(link, false); }},
    {"CLO", "032" + kBlanks, kFields, kPlain, [](auto* link, Data&) { return abecs_cmd_clo(link, nullptr); }},
    {"CLX", "", kParams, kPlain, [](auto* link, Data&) { return abecs_cmd_clx(link, nullptr, nullptr); }},
    {"DSP", "032" + kBlanks, kFields, kPlain, [](auto* link, Data&) { return abecs_cmd_dsp(link, ""); }},
    {"DEX", "003000", kFields, kPlain, [](auto* link, Data&) { return abecs_cmd_dex(link, ""); }},
    {"GIN", "00202", kFields, kPlain, [](auto* link, Data& it) { return abecs_cmd_gin(link, 2, &it.out.info); }},
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
     [](auto* link, Data& it) {
         const AbecsTagList tags{{0x82}, 1};
         return abecs_cmd_ged(link, &tags, &it.out.emvData);
     }},
    {"FNC", "010" + std::string(10, '0') + "003000", kFields, kPlain,
     [](auto* link, Data& it) {
         const AbecsCmdFncData sent{0, "00", 0, "", 0, ""};
         return abecs_cmd_fnc(link, &sent, &it.out.decision);
     }},
    {"GDU", "003302", kFields, kExpected,
     [](auto* link, Data& it) { return abecs_cmd_gdu(link, ABECS_CMD_GDU_METHOD_3, 2, it.out.text); }},
    {"ENB", "051000" + repeated("30", 16) + "4111111111111111", kFields, kPlain,
     [](auto* link, Data& it) {
         const AbecsCmdEnbCmdData sent{ABECS_CMD_ENB_METHOD_0, 0, "", "4111111111111111"};
         return abecs_cmd_enb(link, &sent, it.out.text);
     }},
    {"EBX", "024" + "000F 0008"_hex + "12345678" + "0003 0002 3530 0009 0002 3035"_hex, kParams, kPlain,
     [](auto* link, Data& it) { return abecs_cmd_ebx(link, it.ebx, it.map.get()); }},
    {"GTK", "", kParams, kPlain, [](auto* link, Data& it) { return abecs_cmd_gtk(link, it.gtk, it.map.get()); }},
    {"GEN", "01302008K3000000", kFields, kPlain,
     [](auto* link, Data& it) {
         const AbecsCmdGen02K3CmdData sent{0, 0, 0, 0};
         return abecs_cmd_gen_02_k3(link, &sent, it.out.text);
     }},
};

// A status, or what is no answer. Nothing is written into any output.
TEST(Answering, GivesTheStatusOrRefusesTheAnswer) {
    for (const auto& command : kAll) {
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
            {"A\x80"
             "B000",
             error(kIo, "Invalid character (0x80) at position 1")},
        };
        Link link;
        Data data;
        for (const auto& [answer, expected] : rows) {
            link.peer.request(command.id + command.rest).response(answer);
            EXPECT_EQ(outcome_of([&] { return command.call(link.comm, data); }), expected) << command.id << answer;
        }
        EXPECT_EQ(data.map.items(), ParamMap::Items{});
        EXPECT_EQ(std::string(reinterpret_cast<char*>(&data.out), sizeof data.out), std::string(sizeof data.out, 'k'));
    }
}

}  // namespace
