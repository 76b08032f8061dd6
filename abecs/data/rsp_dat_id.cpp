// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/rsp_dat_id.h"

#include <cstdio>

#include "abecs/data/enum_table.h"
#include "core/raise.h"

using namespace abecs;
using namespace kor;

namespace {

enum Form : bool { kText = false, kBinary = true };

struct DatId {
    AbecsRspDatId_E value;
    const char* name;
    Form form;
};

constexpr auto kDatIds = enum_table<DatId>({
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_SERNUM), kText},      {QUORVEL_NAMED(ABECS_RSP_DATID_PP_PARTNBR), kText},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_MODEL), kText},       {QUORVEL_NAMED(ABECS_RSP_DATID_PP_MNNAME), kText},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_CAPAB), kText},       {QUORVEL_NAMED(ABECS_RSP_DATID_PP_SOVER), kText},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_SPECVER), kText},     {QUORVEL_NAMED(ABECS_RSP_DATID_PP_MANVERS), kText},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_APPVERS), kText},     {QUORVEL_NAMED(ABECS_RSP_DATID_PP_GENVERS), kText},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_KRNLVER), kText},     {QUORVEL_NAMED(ABECS_RSP_DATID_PP_CTLSVER), kText},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_MCTLSVER), kText},    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_VCTLSVER), kText},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_AECTLSVER), kText},   {QUORVEL_NAMED(ABECS_RSP_DATID_PP_DPCTLSVER), kText},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_PUREVER), kText},     {QUORVEL_NAMED(ABECS_RSP_DATID_PP_DSPTXTSZ), kText},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_DSPGRSZ), kText},     {QUORVEL_NAMED(ABECS_RSP_DATID_PP_MFSUP), kText},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_MKDESP), kText},      {QUORVEL_NAMED(ABECS_RSP_DATID_PP_MKDESD), kText},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_MKTDESP), kText},     {QUORVEL_NAMED(ABECS_RSP_DATID_PP_MKTDESD), kText},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_DKPTDESP), kText},    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_DKPTTDESP), kText},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_DKPTTDESD), kText},   {QUORVEL_NAMED(ABECS_RSP_DATID_PP_EVENT), kText},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_TRK1INC), kText},     {QUORVEL_NAMED(ABECS_RSP_DATID_PP_TRK2INC), kText},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_TRK3INC), kText},     {QUORVEL_NAMED(ABECS_RSP_DATID_PP_TRACK1), kBinary},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_TRACK2), kBinary},    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_TRACK3), kBinary},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_TRK1KSN), kBinary},   {QUORVEL_NAMED(ABECS_RSP_DATID_PP_TRK2KSN), kBinary},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_TRK3KSN), kBinary},   {QUORVEL_NAMED(ABECS_RSP_DATID_PP_ENCPAN), kBinary},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_ENCPANKSN), kBinary}, {QUORVEL_NAMED(ABECS_RSP_DATID_PP_KSN), kBinary},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_VALUE), kText},       {QUORVEL_NAMED(ABECS_RSP_DATID_PP_DATAOUT), kBinary},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_CARDTYPE), kText},    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_ICCSTAT), kText},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_AIDTABINFO), kText},  {QUORVEL_NAMED(ABECS_RSP_DATID_PP_PAN), kText},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_PANSEQNO), kText},    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_EMVDATA), kBinary},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_CHNAME), kText},      {QUORVEL_NAMED(ABECS_RSP_DATID_PP_GOXRES), kText},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_PINBLK), kBinary},    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_FCXRES), kText},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_ISRESULTS), kBinary}, {QUORVEL_NAMED(ABECS_RSP_DATID_PP_BIGRAND), kBinary},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_LABEL), kText},       {QUORVEL_NAMED(ABECS_RSP_DATID_PP_ISSCNTRY), kText},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_CARDEXP), kText},     {QUORVEL_NAMED(ABECS_RSP_DATID_PP_MFNAME), kText},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_DEVTYPE), kText},     {QUORVEL_NAMED(ABECS_RSP_DATID_PP_ENCKEY), kBinary},
    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_TLRMEM), kBinary},    {QUORVEL_NAMED(ABECS_RSP_DATID_PP_ENCKRAND), kBinary},
});

// The ids of a family are numbered from its first one; %d is the number.
struct Family {
    AbecsRspDatId_E first;
    AbecsRspDatId_E last;
    const char* name;  // but for the number
    Form form;
};

constexpr std::array<Family, 4> kFamilies{{
    {ABECS_RSP_DATID_PP_KSNDESP0, ABECS_RSP_DATID_PP_KSNDESP99, "ABECS_RSP_DATID_PP_KSNDESP", kBinary},
    {ABECS_RSP_DATID_PP_KSNTDESP0, ABECS_RSP_DATID_PP_KSNTDESP99, "ABECS_RSP_DATID_PP_KSNTDESP", kBinary},
    {ABECS_RSP_DATID_PP_KSNTDESD0, ABECS_RSP_DATID_PP_KSNTDESD99, "ABECS_RSP_DATID_PP_KSNTDESD", kBinary},
    {ABECS_RSP_DATID_PP_TABVER0, ABECS_RSP_DATID_PP_TABVER99, "ABECS_RSP_DATID_PP_TABVER", kText},
}};
static_assert(std::all_of(kFamilies.begin(), kFamilies.end(), [](const Family& f) { return f.last - f.first == 99; }));

const Family* find_family(AbecsRspDatId_E id) {
    const auto* family = std::find_if(kFamilies.data(), kFamilies.data() + kFamilies.size(),
                                      [&](const Family& each) { return each.first <= id && id <= each.last; });
    return family != kFamilies.data() + kFamilies.size() ? family : nullptr;
}

const char* numbered_name(const Family& family, AbecsRspDatId_E id) {
    // Shared by all calls: the interface promises the text only until the next one.
    static char name[128];
    std::snprintf(name, sizeof name, "%s%d", family.name, id - family.first);
    return name;
}

}  // namespace

const char* abecs_rsp_dat_id_to_string(AbecsRspDatId_E id) {
    if (const auto* row = find_row(kDatIds, id)) { return row->name; }
    if (const auto* family = find_family(id)) { return numbered_name(*family, id); }
    return raise(KOR_RESULT_RUNTIME_ERROR, "Unhandled id: %d\n", id), "";
}

bool abecs_rsp_dat_id_is_binary(AbecsRspDatId_E id) {
    if (const auto* row = find_row(kDatIds, id)) { return row->form == kBinary; }
    if (const auto* family = find_family(id)) { return family->form == kBinary; }
    return raise(KOR_RESULT_RUNTIME_ERROR, "Unhandled id: %d\n", id), false;
}
