// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/data/spe_mthd_pin.h"

#include "abecs/data/enum_table.h"
#include "core/raise.h"

using namespace abecs;
using namespace kor;

namespace {

constexpr auto kMethods = enum_table<Named<AbecsSpeMthdPin_E>>({
    {QUORVEL_NAMED(ABECS_SPE_MTHD_PIN_MK_WK_DES)},
    {QUORVEL_NAMED(ABECS_SPE_MTHD_PIN_MK_WK_TDES)},
    {QUORVEL_NAMED(ABECS_SPE_MTHD_PIN_DUKPT_DES)},
    {QUORVEL_NAMED(ABECS_SPE_MTHD_PIN_DUKPT_TDES)},
});

}  // namespace

const char* abecs::mthd_pin_to_string(AbecsSpeMthdPin_E mthdPin) {
    const auto* row = find_row(kMethods, mthdPin);
    if (row == nullptr) { return raise(KOR_RESULT_RUNTIME_ERROR, "Unhandled case"), ""; }
    return row->name;
}
