// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <climits>
#include <cstdio>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>

#include "quorvel/abecs/data.h"
#include "quorvel/abecs/pp_event.h"
#include "quorvel/abecs/rsp_dat_id.h"
#include "quorvel/abecs/rsp_stat.h"
#include "quorvel/abecs/spe_mthd_dat.h"
#include "tests/abecs/data/bytes.h"
#include "tests/support/raised.h"

namespace {

// Values and names, the names without what all of an enumeration begin with.
const char* const kStats =
    "-2 NOTIFICATION -1 PROCESSING 0 OK 3 NOSEC 4 F1 5 F2 6 F3 7 F4 8 BACKSP 9 ERRPKTSEC 10 INVCALL 11 INVPARM 12 "
    "TIMEOUT 13 CANCEL 19 MANDAT 20 TABVERDIF 21 TABERR 40 INTERR 41 MCDATAERR 42 ERRKEY 43 NOCARD 44 PINBUSY 45 "
    "RSPOVRFL 46 ERRCRYPT 51 NOSAM 60 DUMBCARD 61 ERRCARD 67 CARDINVALIDAT 68 CARDPROBLEMS 69 CARDINVDATA 70 "
    "CARDAPPNAV 71 CARDAPPNAUT 76 ERRFALLBACK 77 INVAMOUNT 78 ERRMAXAID 79 CARDBLOCKED 80 CTLSMULTIPLE 81 CTLSCOMMERR "
    "82 CTLSINVALIDAT 83 CTLSPROBLEMS 84 CTLSAPPNAV 85 CTLSAPPNAUT 86 CTLSEXTCVM 87 CTLSIFCHG 100 MFNFOUND 101 "
    "MFERRFMT 102 MFERR";

const char* const kEvents =
    "0 PRESSED_KEY 2 PRESSED_KEY_ARROW_UP 3 PRESSED_KEY_ARROW_DOWN 4 PRESSED_KEY_F1 5 PRESSED_KEY_F2 6 PRESSED_KEY_F3 "
    "7 PRESSED_KEY_F4 8 PRESSED_KEY_CLEAR 13 PRESSED_KEY_CANCEL 90 MAGNETIC_CARD 91 ICC_REMOVED 92 ICC_INSERTED 93 "
    "CTLS_NOT_DETECTED 94 CTLS_DETECTED";

const char* const kMethods =
    "0 MK_WK_DES_ECB 1 MK_WK_DES_CBC 10 MK_WK_TDES_ECB 11 MK_WK_TDES_CBC 30 DUKPT_DAT1_ECB 50 DUKPT_DAT3_ECB 51 "
    "DUKPT_DAT3_CBC 90 TDES_RANDOM_ECB 91 TDES_RANDOM_CBC";

const char* const kTextIds =
    "0x8001 SERNUM 0x8002 PARTNBR 0x8003 MODEL 0x8004 MNNAME 0x8005 CAPAB 0x8006 SOVER 0x8007 SPECVER 0x8008 MANVERS "
    "0x8009 APPVERS 0x800A GENVERS 0x8010 KRNLVER 0x8011 CTLSVER 0x8012 MCTLSVER 0x8013 VCTLSVER 0x8014 AECTLSVER "
    "0x8015 DPCTLSVER 0x8016 PUREVER 0x8020 DSPTXTSZ 0x8021 DSPGRSZ 0x8022 MFSUP 0x8030 MKDESP 0x8031 MKDESD "
    "0x8032 MKTDESP 0x8033 MKTDESD 0x8034 DKPTDESP 0x8035 DKPTTDESP 0x8036 DKPTTDESD 0x8040 EVENT 0x8041 TRK1INC "
    "0x8042 TRK2INC 0x8043 TRK3INC 0x804D VALUE 0x804F CARDTYPE 0x8050 ICCSTAT 0x8051 AIDTABINFO 0x8052 PAN "
    "0x8053 PANSEQNO 0x8055 CHNAME 0x8056 GOXRES 0x8058 FCXRES 0x805B LABEL 0x805C ISSCNTRY 0x805D CARDEXP "
    "0x805E MFNAME 0x8060 DEVTYPE";

const char* const kBinaryIds =
    "0x8044 TRACK1 0x8045 TRACK2 0x8046 TRACK3 0x8047 TRK1KSN 0x8048 TRK2KSN 0x8049 TRK3KSN 0x804A ENCPAN "
    "0x804B ENCPANKSN 0x804C KSN 0x804E DATAOUT 0x8054 EMVDATA 0x8057 PINBLK 0x8059 ISRESULTS 0x805A BIGRAND "
    "0x8061 ENCKEY 0x8062 TLRMEM 0x8063 ENCKRAND";

using Names = std::map<int32_t, std::string>;

Names parse(const char* values, const std::string& prefix) {
    Names names;
    std::istringstream list(values);
    std::string value;
    std::string name;
    while (list >> value >> name) { names[std::stoi(value, nullptr, 0)] = prefix + name; }
    return names;
}

// Every number from `from` to `to`, and the ends of what a caller in C can pass.
template <typename Enum>
void sweep(const Names& names, int32_t from, int32_t to, const char* (*toString)(Enum), const std::string& unhandled) {
    const auto probe = [&](int32_t value) {
        const auto known = names.find(value);
        if (known != names.end()) {
            EXPECT_EQ(toString(Enum{value}), known->second);
        } else {
            EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, unhandled + std::to_string(value) + "\n", toString(Enum{value}));
        }
    };
    for (int32_t value = from; value <= to; ++value) { probe(value); }
    for (const int32_t value : {INT_MIN, -1, 0, 0x18001, INT_MAX}) { probe(value); }
    const support::ReturningRaises raises;
    EXPECT_STREQ(toString(Enum{INT_MAX}), "");
    EXPECT_EQ(raises.all().size(), 1U);
}

TEST(Enumerations, NameTheirValuesAndRefuseOthers) {
    sweep(parse(kStats, "ABECS_RSP_STAT_ST_"), -300, 300, abecs_rsp_stat_to_string, "Unhandled AbecsRspStat_E: ");
    sweep(parse(kEvents, "ABECS_PP_EVENT_"), -300, 300, abecs_pp_event_to_string, "Unhandled event: ");
    sweep(parse(kMethods, "ABECS_SPE_MTHD_DAT_"), -300, 300, abecs_spe_mthd_dat_to_string, "Unhandled mthdDat: ");
}

TEST(RspDatId, NameAndFormOfEveryIdAndNoOther) {
    Names binary = parse(kBinaryIds, "ABECS_RSP_DATID_PP_");
    Names all = parse(kTextIds, "ABECS_RSP_DATID_PP_");
    for (int32_t n = 0; n < 100; ++n) {
        const std::string number = std::to_string(n);
        binary[0x9000 + n] = "ABECS_RSP_DATID_PP_KSNDESP" + number;
        binary[0x9100 + n] = "ABECS_RSP_DATID_PP_KSNTDESP" + number;
        binary[0x9200 + n] = "ABECS_RSP_DATID_PP_KSNTDESD" + number;
        all[0x9300 + n] = "ABECS_RSP_DATID_PP_TABVER" + number;
    }
    all.insert(binary.begin(), binary.end());
    sweep(all, 0x7F00, 0x9500, abecs_rsp_dat_id_to_string, "Unhandled id: ");
    for (const auto& [id, name] : all) {
        EXPECT_EQ(abecs_rsp_dat_id_is_binary(AbecsRspDatId_E{id}), binary.contains(id)) << name;
    }
    EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, "Unhandled id: 36964\n",
                  abecs_rsp_dat_id_is_binary(AbecsRspDatId_E{0x9064}));
}

TEST(FieldRspStat, OnlyWireStatusesPass) {
    const Names known = parse(kStats, "");
    for (int32_t stat = 0; stat < 1000; ++stat) {
        char digits[5];
        std::snprintf(digits, sizeof digits, "%03d!", stat);
        const support::Bytes bytes(digits);
        if (known.contains(stat)) {
            EXPECT_EQ(abecs_data_read_rsp_stat(bytes), stat);
        } else {
            EXPECT_RAISES(KOR_RESULT_PROTOCOL_ERROR, "Unknown value for RSP_STAT: " + std::string(digits, 3),
                          abecs_data_read_rsp_stat(bytes));
        }
        EXPECT_EQ(bytes.take(), "!") << digits;
    }
}

}  // namespace
