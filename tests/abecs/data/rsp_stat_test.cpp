// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/rsp_stat.h"

#include <climits>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>

#include "quorvel/abecs/pp_event.h"
#include "quorvel/abecs/spe_mthd_dat.h"
#include "tests/support/raised.h"

namespace {

// Values and names, the names without what all of an enumeration begin with.
const char* const kStats =
    "-2 ST_NOTIFICATION -1 ST_PROCESSING 0 ST_OK 3 ST_NOSEC 4 ST_F1 5 ST_F2 6 ST_F3 7 ST_F4 8 ST_BACKSP 9 "
    "ST_ERRPKTSEC 10 ST_INVCALL 11 ST_INVPARM 12 ST_TIMEOUT 13 ST_CANCEL 19 ST_MANDAT 20 ST_TABVERDIF 21 "
    "ST_TABERR 40 ST_INTERR 41 ST_MCDATAERR 42 ST_ERRKEY 43 ST_NOCARD 44 ST_PINBUSY 45 ST_RSPOVRFL 46 "
    "ST_ERRCRYPT 51 ST_NOSAM 60 ST_DUMBCARD 61 ST_ERRCARD 67 ST_CARDINVALIDAT 68 ST_CARDPROBLEMS 69 "
    "ST_CARDINVDATA 70 ST_CARDAPPNAV 71 ST_CARDAPPNAUT 76 ST_ERRFALLBACK 77 ST_INVAMOUNT 78 ST_ERRMAXAID "
    "79 ST_CARDBLOCKED 80 ST_CTLSMULTIPLE 81 ST_CTLSCOMMERR 82 ST_CTLSINVALIDAT 83 ST_CTLSPROBLEMS 84 "
    "ST_CTLSAPPNAV 85 ST_CTLSAPPNAUT 86 ST_CTLSEXTCVM 87 ST_CTLSIFCHG 100 ST_MFNFOUND 101 ST_MFERRFMT 102 "
    "ST_MFERR";

const char* const kEvents =
    "0 PRESSED_KEY 2 PRESSED_KEY_ARROW_UP 3 PRESSED_KEY_ARROW_DOWN 4 PRESSED_KEY_F1 5 PRESSED_KEY_F2 6 "
    "PRESSED_KEY_F3 7 PRESSED_KEY_F4 8 PRESSED_KEY_CLEAR 13 PRESSED_KEY_CANCEL 90 MAGNETIC_CARD 91 "
    "ICC_REMOVED 92 ICC_INSERTED 93 CTLS_NOT_DETECTED 94 CTLS_DETECTED";

const char* const kMethods =
    "0 MK_WK_DES_ECB 1 MK_WK_DES_CBC 10 MK_WK_TDES_ECB 11 MK_WK_TDES_CBC 30 DUKPT_DAT1_ECB 50 "
    "DUKPT_DAT3_ECB 51 DUKPT_DAT3_CBC 90 TDES_RANDOM_ECB 91 TDES_RANDOM_CBC";

// Every number near the enumeration, and the ends of what a caller in C can pass.
template <typename Enum>
void sweep(const char* values, const std::string& prefix, const char* (*to_string)(Enum),
           const std::string& unhandled) {
    std::map<int32_t, std::string> names;
    std::istringstream list(values);
    int32_t listed = 0;
    while (list >> listed) { list >> names[listed]; }
    EXPECT_GT(names.size(), 8U);
    const auto probe = [&](int32_t value) {
        const auto known = names.find(value);
        if (known != names.end()) {
            EXPECT_EQ(to_string(Enum{value}), prefix + known->second);
        } else {
            EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, unhandled + std::to_string(value) + "\n", to_string(Enum{value}));
        }
    };
    for (int32_t value = -300; value < 300; ++value) { probe(value); }
    probe(INT_MIN);
    probe(INT_MAX);
    const support::ReturningRaises raises;
    EXPECT_STREQ(to_string(Enum{INT_MAX}), "");
}

TEST(Enumerations, NameTheirValuesAndRefuseOthers) {
    sweep(kStats, "ABECS_RSP_STAT_", abecs_rsp_stat_to_string, "Unhandled AbecsRspStat_E: ");
    sweep(kEvents, "ABECS_PP_EVENT_", abecs_pp_event_to_string, "Unhandled event: ");
    sweep(kMethods, "ABECS_SPE_MTHD_DAT_", abecs_spe_mthd_dat_to_string, "Unhandled mthdDat: ");
}

}  // namespace
