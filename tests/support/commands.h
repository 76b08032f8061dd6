// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SUPPORT_COMMANDS_H
#define QUORVEL_TESTS_SUPPORT_COMMANDS_H

#include <string>
#include <vector>

#include "quorvel/quorvel.h"
#include "tests/core/owned.h"
#include "tests/support/scratch.h"
#include "tests/support/wire.h"

// What the rows of commands.inc take and fill.
namespace support {

inline constexpr AbecsDate kDate{24, 2, 29};
inline constexpr AbecsTime kTime{23, 59, 58};
inline constexpr AbecsWkPan kKey{ABECS_WK_PAN_TYPE_TDES, {1, 2, 3}};
inline constexpr AbecsMk kMk{ABECS_MK_TYPE_TDES, 1, {1, 2, 3}};
inline constexpr AbecsTagList kTags{{0x82}, 1};
inline constexpr AbecsCmdGcrData kGcr{0, 0, 1, kDate, kTime, "V", true};
inline constexpr AbecsCmdFncData kFnc{0, "00", 0, "", 0, ""};
inline constexpr AbecsCmdGen0303Data kGenData{16, "0123456789ABCDEF"};
inline constexpr AbecsCmdGen0303CmdData kGenCmd{1, kGenData};
inline constexpr AbecsCmdGen0401CmdData kSlot{ABECS_CMD_GEN_04_01_OPER_1, 8};
inline constexpr AbecsCmdGen0402CmdData kApdu{8, "00A40400", 0, "", 0};
inline constexpr AbecsCmdGen0403CmdData kPin{8, "00200080", 'A', 4, 4, "PIN"};
inline constexpr AbecsCmdChpParam kChp{ABECS_CMD_CHP_SLOT_1, ABECS_CMD_CHP_OPER_0, "", ABECS_CMD_CHP_PIN_FMT_0, ""};
inline constexpr AbecsCmdGpnCmdData kGpn{ABECS_CMD_GPN_METHOD_DUKPT_DES, 7, "", "", 1, {{4, 12, "PIN"}}};
inline constexpr AbecsCmdEnbCmdData kEnb{ABECS_CMD_ENB_METHOD_0, 0, "", "4111111111111111"};
inline constexpr char kOptions[][25] = {"TEA"};

// Both with tracks that are enciphered in the layout of protected mode.
inline std::string card_answer() {
    return "GCR0003810619803Z1" + padded("43B4111111111111111^CARD/TEST^2512201", 78)
           + padded("294111111111111111=2512201", 42) + padded("", 104) + padded("174111111111111111", 21)
           + padded("07CREDIT", 18) + padded("201TEST/CARD", 29) + "301231" + std::string(28, '!') + "!076000";
}
inline std::string tracks_answer() {
    return "CKE000225100" + padded("4111111111111111^X", 76) + "00" + padded("4111111111111111=2512", 40)
           + padded("4111111111111111=25", 104);
}
inline std::vector<std::string> media_answers() { return {"MLI000", "MLR000", "MLE000"}; }

template <typename Object>
Object object_of(void (*)(Object**));
template <auto kDelete>
using Made = Owned<decltype(object_of(kDelete)), kDelete>;

struct CommandWorld {
    CommandWorld(AbecsComm* onLink, const char* file) : link(onLink), path(file) {
        kor_string_list_append(list, "a");
        abecs_cmd_fcx_builder_arc(finish, "00");
    }

    AbecsComm* link;
    const char* path;
    char text[1200] = "aBc";
    uint8_t block[256] = {1, 2, 3};
    Scratch out;
    Made<kor_list_delete> list{kor_string_list_new()};
    Made<kor_map_delete> params{abecs_rsp_param_map_new()};
    Made<abecs_cmd_gcx_builder_delete> gcx{abecs_cmd_gcx_builder_new("240229", "235958")};
    Made<abecs_cmd_gox_builder_delete> gox{abecs_cmd_gox_builder_new(1, ABECS_SPE_MTHD_PIN_DUKPT_TDES, 1)};
    Made<abecs_cmd_fcx_builder_delete> finish{abecs_cmd_fcx_builder_new("1000")};
    Made<abecs_cmd_ebx_builder_delete> ebx{abecs_cmd_ebx_builder_new(block, 8, ABECS_SPE_MTHD_DAT_DUKPT_DAT3_ECB, 5)};
    Made<abecs_cmd_gtk_builder_delete> gtk{abecs_cmd_gtk_builder_new()};
};

}  // namespace support

#endif
