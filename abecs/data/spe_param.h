// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_DATA_SPE_PARAM_H
#define QUORVEL_ABECS_DATA_SPE_PARAM_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "abecs/data/enum_table.h"
#include "quorvel/abecs/param.h"
#include "quorvel/abecs/spe_id.h"

// The parameters of requests: one table of what each is called, how its value travels and how wide it is.
namespace abecs {

enum class SpeForm : uint8_t {
    kOwn,     // as its command has it
    kDigits,  // a number in `width` digits
    kBinary,  // a number in `width` bytes, most significant first
    kBytes,   // `width` bytes as they are
    kText,    // `width` characters, or fewer where its command allows it
};

struct SpeParam {
    AbecsSpeId_E value;
    const char* name;
    SpeForm form = SpeForm::kOwn;
    uint16_t width = 0;
};

#define QUORVEL_SPE(id) ABECS_SPE_ID_##id, "SPE_" #id
inline constexpr std::array<SpeParam, 37> kSpeParams{{
    {QUORVEL_SPE(IDLIST)},
    {QUORVEL_SPE(MTHDPIN), SpeForm::kDigits, 1},
    {QUORVEL_SPE(MTHDDAT), SpeForm::kDigits, 2},
    {QUORVEL_SPE(TAGLIST)},
    {QUORVEL_SPE(EMVDATA)},
    {QUORVEL_SPE(CEXOPT), SpeForm::kText, 6},
    {QUORVEL_SPE(TRACKS), SpeForm::kBytes, 4},
    {QUORVEL_SPE(OPNDIG), SpeForm::kDigits, 1},
    {QUORVEL_SPE(KEYIDX), SpeForm::kDigits, 2},
    {QUORVEL_SPE(WKENC)},
    {QUORVEL_SPE(MSGIDX), SpeForm::kBinary, 2},
    {QUORVEL_SPE(TIMEOUT), SpeForm::kBinary, 1},
    {QUORVEL_SPE(MINDIG), SpeForm::kBinary, 1},
    {QUORVEL_SPE(MAXDIG), SpeForm::kBinary, 1},
    {QUORVEL_SPE(DATAIN)},
    {QUORVEL_SPE(ACQREF), SpeForm::kDigits, 2},
    {QUORVEL_SPE(APPTYPE)},
    {QUORVEL_SPE(AIDLIST)},
    {QUORVEL_SPE(AMOUNT), SpeForm::kDigits, 12},
    {QUORVEL_SPE(CASHBACK), SpeForm::kDigits, 12},
    {QUORVEL_SPE(TRNDATE), SpeForm::kBytes, 6},
    {QUORVEL_SPE(TRNTIME), SpeForm::kBytes, 6},
    {QUORVEL_SPE(GCXOPT), SpeForm::kBytes, 5},
    {QUORVEL_SPE(GOXOPT), SpeForm::kBytes, 5},
    {QUORVEL_SPE(FCXOPT), SpeForm::kBytes, 4},
    {QUORVEL_SPE(TRMPAR), SpeForm::kBytes, 10},
    {QUORVEL_SPE(DSPMSG), SpeForm::kText, 128},
    {QUORVEL_SPE(ARC), SpeForm::kBytes, 2},
    {QUORVEL_SPE(IVCBC), SpeForm::kBytes, 8},
    {QUORVEL_SPE(MFNAME), SpeForm::kText, 8},
    {QUORVEL_SPE(MFINFO)},
    {QUORVEL_SPE(MNUOPT), SpeForm::kText, 24},
    {QUORVEL_SPE(TRNTYPE), SpeForm::kBinary, 1},
    {QUORVEL_SPE(TRNCURR), SpeForm::kDigits, 3},
    {QUORVEL_SPE(PANMASK), SpeForm::kBytes, 4},
    {QUORVEL_SPE(PBKMOD), SpeForm::kBytes, 256},
    {QUORVEL_SPE(PBKEXP)},
}};
#undef QUORVEL_SPE
static_assert(is_sorted_and_unique(kSpeParams));
static_assert(kSpeParams.front().value == 1 && kSpeParams.back().value == int{kSpeParams.size()}, "ids without a gap");
static_assert(std::all_of(kSpeParams.begin(), kSpeParams.end(), [](const SpeParam& param) {
    const size_t most = param.form == SpeForm::kBinary ? sizeof(uint32_t) : param.form == SpeForm::kDigits ? 12 : 256;
    return (param.form == SpeForm::kOwn) == (param.width == 0) && param.width <= most;
}));

constexpr const SpeParam& spe_param(AbecsSpeId_E id) { return kSpeParams[static_cast<size_t>(id) - 1]; }

// An id whose value travels in one of these forms; with another one the call does not compile.
template <SpeForm... Forms>
struct SpeIdOf {
    AbecsSpeId_E id;

    // NOLINTNEXTLINE(google-explicit-constructor): an id is handed to a writer as it is
    consteval SpeIdOf(AbecsSpeId_E value) : id(value) {
        if (!((spe_param(value).form == Forms) || ...)) { this_parameter_has_another_form(); }
    }

private:
    static void this_parameter_has_another_form();  // not constexpr, and nowhere defined
};
using SpeNumber = SpeIdOf<SpeForm::kDigits, SpeForm::kBinary>;
using SpeBytes = SpeIdOf<SpeForm::kBytes>;

// The width of one that has one.
consteval size_t width_of(SpeIdOf<SpeForm::kDigits, SpeForm::kBinary, SpeForm::kBytes, SpeForm::kText> param) {
    return spe_param(param.id).width;
}

// Of a text that is shown meanwhile.
inline constexpr size_t kMaxDspMsg = width_of(ABECS_SPE_ID_DSPMSG);

// In as many digits or bytes as the parameter has.
void write_number(AbecsParam* param, SpeNumber id, uint64_t value);

}  // namespace abecs

#endif
