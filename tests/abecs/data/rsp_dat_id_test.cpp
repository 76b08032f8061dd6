// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/rsp_dat_id.h"

#include <gtest/gtest.h>
#include <map>
#include <string>

#include "tests/support/raised.h"

namespace {

using Names = std::map<int32_t, std::string>;

// The names without ABECS_RSP_DATID_. The numbered ids are added below.
const Names kText{
    {0x8001, "PP_SERNUM"},   {0x8002, "PP_PARTNBR"},   {0x8003, "PP_MODEL"},      {0x8004, "PP_MNNAME"},
    {0x8005, "PP_CAPAB"},    {0x8006, "PP_SOVER"},     {0x8007, "PP_SPECVER"},    {0x8008, "PP_MANVERS"},
    {0x8009, "PP_APPVERS"},  {0x800A, "PP_GENVERS"},   {0x8010, "PP_KRNLVER"},    {0x8011, "PP_CTLSVER"},
    {0x8012, "PP_MCTLSVER"}, {0x8013, "PP_VCTLSVER"},  {0x8014, "PP_AECTLSVER"},  {0x8015, "PP_DPCTLSVER"},
    {0x8016, "PP_PUREVER"},  {0x8020, "PP_DSPTXTSZ"},  {0x8021, "PP_DSPGRSZ"},    {0x8022, "PP_MFSUP"},
    {0x8030, "PP_MKDESP"},   {0x8031, "PP_MKDESD"},    {0x8032, "PP_MKTDESP"},    {0x8033, "PP_MKTDESD"},
    {0x8034, "PP_DKPTDESP"}, {0x8035, "PP_DKPTTDESP"}, {0x8036, "PP_DKPTTDESD"},  {0x8040, "PP_EVENT"},
    {0x8041, "PP_TRK1INC"},  {0x8042, "PP_TRK2INC"},   {0x8043, "PP_TRK3INC"},    {0x804D, "PP_VALUE"},
    {0x804F, "PP_CARDTYPE"}, {0x8050, "PP_ICCSTAT"},   {0x8051, "PP_AIDTABINFO"}, {0x8052, "PP_PAN"},
    {0x8053, "PP_PANSEQNO"}, {0x8055, "PP_CHNAME"},    {0x8056, "PP_GOXRES"},     {0x8058, "PP_FCXRES"},
    {0x805B, "PP_LABEL"},    {0x805C, "PP_ISSCNTRY"},  {0x805D, "PP_CARDEXP"},    {0x805E, "PP_MFNAME"},
    {0x8060, "PP_DEVTYPE"}};

const Names kBinary{{0x8044, "PP_TRACK1"},    {0x8045, "PP_TRACK2"},  {0x8046, "PP_TRACK3"},  {0x8047, "PP_TRK1KSN"},
                    {0x8048, "PP_TRK2KSN"},   {0x8049, "PP_TRK3KSN"}, {0x804A, "PP_ENCPAN"},  {0x804B, "PP_ENCPANKSN"},
                    {0x804C, "PP_KSN"},       {0x804E, "PP_DATAOUT"}, {0x8054, "PP_EMVDATA"}, {0x8057, "PP_PINBLK"},
                    {0x8059, "PP_ISRESULTS"}, {0x805A, "PP_BIGRAND"}, {0x8061, "PP_ENCKEY"},  {0x8062, "PP_TLRMEM"},
                    {0x8063, "PP_ENCKRAND"}};

TEST(RspDatId, NameAndFormOfEveryIdAndNoOther) {
    Names text = kText;
    Names binary = kBinary;
    for (int32_t n = 0; n < 100; ++n) {
        const std::string number = std::to_string(n);
        binary[0x9000 + n] = "PP_KSNDESP" + number;
        binary[0x9100 + n] = "PP_KSNTDESP" + number;
        binary[0x9200 + n] = "PP_KSNTDESD" + number;
        text[0x9300 + n] = "PP_TABVER" + number;
    }
    const auto probe = [&](int32_t value) {
        const auto id = AbecsRspDatId_E{value};
        if (text.contains(value) || binary.contains(value)) {
            const std::string name = text.contains(value) ? text[value] : binary[value];
            EXPECT_EQ(abecs_rsp_dat_id_to_string(id), "ABECS_RSP_DATID_" + name);
            EXPECT_EQ(abecs_rsp_dat_id_is_binary(id), binary.contains(value)) << name;
        } else {
            const std::string detail = "Unhandled id: " + std::to_string(value) + "\n";
            EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, detail, abecs_rsp_dat_id_to_string(id));
            EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, detail, abecs_rsp_dat_id_is_binary(id));
        }
    };
    for (int32_t value = 0x7F00; value < 0x9500; ++value) { probe(value); }
    for (const int32_t value : {0, -1, 0x18001}) { probe(value); }
}

TEST(RspDatId, RaisesThatReturnLeaveAnEmptyName) {
    const support::ReturningRaises raises;
    EXPECT_STREQ(abecs_rsp_dat_id_to_string(AbecsRspDatId_E{0x9064}), "");
    EXPECT_FALSE(abecs_rsp_dat_id_is_binary(AbecsRspDatId_E{0x9064}));
    EXPECT_EQ(raises.all().size(), 2U);
}

}  // namespace
