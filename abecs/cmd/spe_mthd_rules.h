// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_CMD_SPE_MTHD_RULES_H
#define QUORVEL_ABECS_CMD_SPE_MTHD_RULES_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "abecs/data/enum_table.h"
#include "quorvel/abecs/spe_mthd_dat.h"

// Which parameters each method of data encryption takes along, for the builders that let the caller choose one.
namespace abecs {

enum class KeySource : uint8_t { kWorkingKey, kDukpt, kRandom };

struct DataMethod {
    AbecsSpeMthdDat_E value;
    KeySource source;
    size_t workingKeySize;  // of SPE_WKENC; 0 where the method has none
    bool chained;           // takes SPE_IVCBC

    // A key in the PIN pad is chosen with SPE_KEYIDX. A random one is sent back under the host's public key instead,
    // which SPE_PBKMOD and SPE_PBKEXP give.
    [[nodiscard]] constexpr bool has_key_index() const { return source != KeySource::kRandom; }
    [[nodiscard]] constexpr bool has_public_key() const { return source == KeySource::kRandom; }
};

inline constexpr std::array<DataMethod, 9> kDataMethods{{
    {ABECS_SPE_MTHD_DAT_MK_WK_DES_ECB, KeySource::kWorkingKey, 8, false},
    {ABECS_SPE_MTHD_DAT_MK_WK_DES_CBC, KeySource::kWorkingKey, 8, true},
    {ABECS_SPE_MTHD_DAT_MK_WK_TDES_ECB, KeySource::kWorkingKey, 16, false},
    {ABECS_SPE_MTHD_DAT_MK_WK_TDES_CBC, KeySource::kWorkingKey, 16, true},
    {ABECS_SPE_MTHD_DAT_DUKPT_DAT1_ECB, KeySource::kDukpt, 0, false},
    {ABECS_SPE_MTHD_DAT_DUKPT_DAT3_ECB, KeySource::kDukpt, 0, false},
    {ABECS_SPE_MTHD_DAT_DUKPT_DAT3_CBC, KeySource::kDukpt, 0, true},
    {ABECS_SPE_MTHD_DAT_TDES_RANDOM_ECB, KeySource::kRandom, 0, false},
    {ABECS_SPE_MTHD_DAT_TDES_RANDOM_CBC, KeySource::kRandom, 0, true},
}};

// The method's row, or null for a number that is none.
[[nodiscard]] constexpr const DataMethod* find_data_method(int32_t method) { return find_row(kDataMethods, method); }

// The switch has no default: the compiler names the enumerator that it lacks.
constexpr bool is_data_method(AbecsSpeMthdDat_E method) {
    switch (method) {
        case ABECS_SPE_MTHD_DAT_MK_WK_DES_ECB:
        case ABECS_SPE_MTHD_DAT_MK_WK_DES_CBC:
        case ABECS_SPE_MTHD_DAT_MK_WK_TDES_ECB:
        case ABECS_SPE_MTHD_DAT_MK_WK_TDES_CBC:
        case ABECS_SPE_MTHD_DAT_DUKPT_DAT1_ECB:
        case ABECS_SPE_MTHD_DAT_DUKPT_DAT3_ECB:
        case ABECS_SPE_MTHD_DAT_DUKPT_DAT3_CBC:
        case ABECS_SPE_MTHD_DAT_TDES_RANDOM_ECB:
        case ABECS_SPE_MTHD_DAT_TDES_RANDOM_CBC:
            return true;
    }
    return false;
}

constexpr bool has_every_data_method() {
    constexpr int32_t kEnd = 100;  // two digits on the wire
    for (int32_t i = 0; i < kEnd; ++i) {
        const auto isRowOf = [=](const DataMethod& row) { return row.value == i; };
        const bool listed = std::any_of(kDataMethods.begin(), kDataMethods.end(), isRowOf);
        if (is_data_method(static_cast<AbecsSpeMthdDat_E>(i)) != listed) { return false; }
    }
    return true;
}

constexpr bool is_consistent(const DataMethod& method) {
    return (method.workingKeySize != 0) == (method.source == KeySource::kWorkingKey);
}

static_assert(is_sorted_and_unique(kDataMethods));
static_assert(has_every_data_method());
static_assert(std::all_of(kDataMethods.begin(), kDataMethods.end(), is_consistent));

}  // namespace abecs

#endif
