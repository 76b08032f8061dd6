// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/spe_mthd_dat.h"

#include "abecs/data/enum_table.h"
#include "core/raise.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr auto kMethods = enum_table<Named<AbecsSpeMthdDat_E>>({
    {QUORVEL_NAMED(ABECS_SPE_MTHD_DAT_MK_WK_DES_ECB)},
    {QUORVEL_NAMED(ABECS_SPE_MTHD_DAT_MK_WK_DES_CBC)},
    {QUORVEL_NAMED(ABECS_SPE_MTHD_DAT_MK_WK_TDES_ECB)},
    {QUORVEL_NAMED(ABECS_SPE_MTHD_DAT_MK_WK_TDES_CBC)},
    {QUORVEL_NAMED(ABECS_SPE_MTHD_DAT_DUKPT_DAT1_ECB)},
    {QUORVEL_NAMED(ABECS_SPE_MTHD_DAT_DUKPT_DAT3_ECB)},
    {QUORVEL_NAMED(ABECS_SPE_MTHD_DAT_DUKPT_DAT3_CBC)},
    {QUORVEL_NAMED(ABECS_SPE_MTHD_DAT_TDES_RANDOM_ECB)},
    {QUORVEL_NAMED(ABECS_SPE_MTHD_DAT_TDES_RANDOM_CBC)},
});

}  // namespace

const char* abecs_spe_mthd_dat_to_string(AbecsSpeMthdDat_E mthdDat) {
    const auto* row = find_row(kMethods, mthdDat);
    if (row == nullptr) { return raise(KOR_RESULT_RUNTIME_ERROR, "Unhandled mthdDat: %d\n", mthdDat), ""; }
    return row->name;
}
