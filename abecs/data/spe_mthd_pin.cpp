// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/data/spe_mthd_pin.h"

#include "abecs/data/enum_table.h"
#include "core/raise.h"

namespace {

constexpr std::array<abecs::Named<AbecsSpeMthdPin_E>, 4> kMethods{{
    {QUORVEL_NAMED(ABECS_SPE_MTHD_PIN_MK_WK_DES)},
    {QUORVEL_NAMED(ABECS_SPE_MTHD_PIN_MK_WK_TDES)},
    {QUORVEL_NAMED(ABECS_SPE_MTHD_PIN_DUKPT_DES)},
    {QUORVEL_NAMED(ABECS_SPE_MTHD_PIN_DUKPT_TDES)},
}};
static_assert(abecs::is_sorted_and_unique(kMethods));

}  // namespace

const char* abecs::mthd_pin_to_string(AbecsSpeMthdPin_E mthdPin) {
    const auto* row = find_row(kMethods, mthdPin);
    if (row == nullptr) { return kor::raise(KOR_RESULT_RUNTIME_ERROR, "Unhandled case"), ""; }
    return row->name;
}
