// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "wire/param_id.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace quorvel::wire {

namespace {

constexpr auto kCard = Privacy::kCard;
constexpr auto kShown = Privacy::kShown;

struct Row {
    uint16_t id;
    std::string_view name;
    Content content = {};
};

constexpr std::array kRows{
    Row{spe::kIdList, "SPE_IDLIST", {Type::kBytes, 0, kShown}},
    Row{spe::kMthdPin, "SPE_MTHDPIN", {Type::kDigits, 1, kShown}},
    Row{spe::kMthdDat, "SPE_MTHDDAT", {Type::kDigits, 2, kShown}},
    Row{spe::kTagList, "SPE_TAGLIST", {Type::kBytes, 128, kShown}},
    Row{spe::kEmvData, "SPE_EMVDATA", {Type::kObjects, 0, kShown}},
    Row{spe::kCexOpt, "SPE_CEXOPT", {Type::kText, 6, kShown}},
    Row{spe::kTracks, "SPE_TRACKS", {Type::kText, 4, kShown}},
    Row{spe::kOpnDig, "SPE_OPNDIG", {Type::kDigits, 1, kShown}},
    Row{spe::kKeyIdx, "SPE_KEYIDX", {Type::kDigits, 2, kShown}},
    Row{spe::kWkEnc, "SPE_WKENC"},
    Row{spe::kMsgIdx, "SPE_MSGIDX", {Type::kNumber, 2, kShown}},
    Row{spe::kTimeout, "SPE_TIMEOUT", {Type::kNumber, 1, kShown}},
    Row{spe::kMinDig, "SPE_MINDIG", {Type::kNumber, 1, kShown}},
    Row{spe::kMaxDig, "SPE_MAXDIG", {Type::kNumber, 1, kShown}},
    Row{spe::kDataIn, "SPE_DATAIN"},
    Row{spe::kAcqRef, "SPE_ACQREF", {Type::kDigits, 2, kShown}},
    Row{spe::kAppType, "SPE_APPTYPE", {Type::kDigits, 0, kShown}},
    Row{spe::kAidList, "SPE_AIDLIST", {Type::kText, 0, kShown}},
    Row{spe::kAmount, "SPE_AMOUNT", {Type::kDigits, 12, kShown}},
    Row{spe::kCashback, "SPE_CASHBACK", {Type::kDigits, 12, kShown}},
    Row{spe::kTrnDate, "SPE_TRNDATE", {Type::kDigits, 6, kShown}},
    Row{spe::kTrnTime, "SPE_TRNTIME", {Type::kDigits, 6, kShown}},
    Row{spe::kGcxOpt, "SPE_GCXOPT", {Type::kText, 5, kShown}},
    Row{spe::kGoxOpt, "SPE_GOXOPT", {Type::kText, 5, kShown}},
    Row{spe::kFcxOpt, "SPE_FCXOPT", {Type::kText, 4, kShown}},
    Row{spe::kTrmPar, "SPE_TRMPAR", {Type::kBytes, 10, kShown}},
    Row{spe::kDspMsg, "SPE_DSPMSG", {Type::kText, 128, kShown}},
    Row{spe::kArc, "SPE_ARC", {Type::kText, 2, kShown}},
    Row{spe::kIvCbc, "SPE_IVCBC", {Type::kBytes, 8, kShown}},
    Row{spe::kMfName, "SPE_MFNAME", {Type::kText, 8, kShown}},
    Row{spe::kMfInfo, "SPE_MFINFO", {Type::kBytes, 10, kShown}},
    Row{spe::kMnuOpt, "SPE_MNUOPT", {Type::kText, 24, kShown}},
    Row{spe::kTrnType, "SPE_TRNTYPE", {Type::kBytes, 1, kShown}},
    Row{spe::kTrnCurr, "SPE_TRNCURR", {Type::kDigits, 3, kShown}},
    Row{spe::kPanMask, "SPE_PANMASK", {Type::kDigits, 4, kShown}},
    Row{spe::kPbkMod, "SPE_PBKMOD", {Type::kBytes, 256, kShown}},
    Row{spe::kPbkExp, "SPE_PBKEXP", {Type::kBytes, 0, kShown}},
    Row{0x8001, "PP_SERNUM", {Type::kText, 0, kShown}},
    Row{0x8002, "PP_PARTNBR", {Type::kText, 0, kShown}},
    Row{0x8003, "PP_MODEL", {Type::kText, 0, kShown}},
    Row{0x8004, "PP_MNNAME", {Type::kText, 0, kShown}},
    Row{0x8005, "PP_CAPAB", {Type::kText, 0, kShown}},
    Row{0x8006, "PP_SOVER", {Type::kText, 0, kShown}},
    Row{0x8007, "PP_SPECVER", {Type::kText, 0, kShown}},
    Row{0x8008, "PP_MANVERS", {Type::kText, 0, kShown}},
    Row{0x8009, "PP_APPVERS", {Type::kText, 0, kShown}},
    Row{0x800A, "PP_GENVERS", {Type::kText, 0, kShown}},
    Row{0x8010, "PP_KRNLVER", {Type::kText, 0, kShown}},
    Row{0x8011, "PP_CTLSVER", {Type::kText, 0, kShown}},
    Row{0x8012, "PP_MCTLSVER", {Type::kText, 0, kShown}},
    Row{0x8013, "PP_VCTLSVER", {Type::kText, 0, kShown}},
    Row{0x8014, "PP_AECTLSVER", {Type::kText, 0, kShown}},
    Row{0x8015, "PP_DPCTLSVER", {Type::kText, 0, kShown}},
    Row{0x8016, "PP_PUREVER", {Type::kText, 0, kShown}},
    Row{0x8020, "PP_DSPTXTSZ", {Type::kText, 0, kShown}},
    Row{0x8021, "PP_DSPGRSZ", {Type::kText, 0, kShown}},
    Row{0x8022, "PP_MFSUP", {Type::kText, 0, kShown}},
    Row{0x8030, "PP_MKDESP", {Type::kText, 0, kShown}},
    Row{0x8031, "PP_MKDESD", {Type::kText, 0, kShown}},
    Row{0x8032, "PP_MKTDESP", {Type::kText, 0, kShown}},
    Row{0x8033, "PP_MKTDESD", {Type::kText, 0, kShown}},
    Row{0x8034, "PP_DKPTDESP", {Type::kText, 0, kShown}},
    Row{0x8035, "PP_DKPTTDESP", {Type::kText, 0, kShown}},
    Row{0x8036, "PP_DKPTTDESD", {Type::kText, 0, kShown}},
    Row{pp::kEvent, "PP_EVENT", {Type::kDigits, 2, kShown}},
    Row{pp::kTrk1Inc, "PP_TRK1INC"},
    Row{pp::kTrk2Inc, "PP_TRK2INC"},
    Row{pp::kTrk3Inc, "PP_TRK3INC"},
    Row{pp::kTrack1, "PP_TRACK1"},
    Row{pp::kTrack2, "PP_TRACK2"},
    Row{pp::kTrack3, "PP_TRACK3"},
    Row{pp::kTrk1Ksn, "PP_TRK1KSN", {Type::kBytes, 10, kShown}},
    Row{pp::kTrk2Ksn, "PP_TRK2KSN", {Type::kBytes, 10, kShown}},
    Row{pp::kTrk3Ksn, "PP_TRK3KSN", {Type::kBytes, 10, kShown}},
    Row{pp::kEncPan, "PP_ENCPAN"},
    Row{pp::kEncPanKsn, "PP_ENCPANKSN", {Type::kBytes, 10, kShown}},
    Row{pp::kKsn, "PP_KSN", {Type::kBytes, 10, kShown}},
    Row{pp::kValue, "PP_VALUE"},
    Row{pp::kDataOut, "PP_DATAOUT"},
    Row{pp::kCardType, "PP_CARDTYPE", {Type::kDigits, 2, kShown}},
    Row{pp::kIccStat, "PP_ICCSTAT", {Type::kDigits, 1, kShown}},
    Row{pp::kAidTabInfo, "PP_AIDTABINFO", {Type::kText, 0, kShown}},
    Row{pp::kPan, "PP_PAN", {Type::kPan, 0, kCard}},
    Row{pp::kPanSeqNo, "PP_PANSEQNO", {Type::kDigits, 2, kShown}},
    Row{pp::kEmvData, "PP_EMVDATA", {Type::kObjects, 0, kShown}},
    Row{pp::kChName, "PP_CHNAME", {Type::kText, 0, kCard}},
    Row{pp::kGoxRes, "PP_GOXRES", {Type::kText, 6, kShown}},
    Row{pp::kPinBlk, "PP_PINBLK"},
    Row{pp::kFcxRes, "PP_FCXRES", {Type::kText, 3, kShown}},
    Row{pp::kIsResults, "PP_ISRESULTS", {Type::kBytes, 0, kShown}},
    Row{pp::kBigRand, "PP_BIGRAND", {Type::kBytes, 0, kShown}},
    Row{pp::kLabel, "PP_LABEL", {Type::kText, 16, kShown}},
    Row{pp::kIssCntry, "PP_ISSCNTRY", {Type::kDigits, 3, kShown}},
    Row{pp::kCardExp, "PP_CARDEXP", {Type::kText, 6, kCard}},
    Row{pp::kMfName, "PP_MFNAME", {Type::kText, 8, kShown}},
    Row{pp::kDevType, "PP_DEVTYPE", {Type::kDigits, 2, kShown}},
    Row{0x8061, "PP_ENCKEY"},
    Row{pp::kTlrMem, "PP_TLRMEM", {Type::kNumber, 4, kShown}},
    Row{pp::kEncKRand, "PP_ENCKRAND"},
};
static_assert(std::ranges::adjacent_find(kRows, std::ranges::greater_equal{}, &Row::id) == kRows.end(),
              "sorted and unique");

// Each has an index behind its name.
constexpr std::array kFamilies{
    Row{pp::kKsnDesPin, "PP_KSNDESP", {Type::kBytes, 10, kShown}},
    Row{pp::kKsnTdesPin, "PP_KSNTDESP", {Type::kBytes, 10, kShown}},
    Row{pp::kKsnTdesData, "PP_KSNTDESD", {Type::kBytes, 10, kShown}},
    Row{pp::kTabVer, "PP_TABVER", {Type::kText, 10, kShown}},
};

const Row* find(uint16_t id) noexcept {
    const auto* found = std::ranges::lower_bound(kRows, id, {}, &Row::id);
    if (found != kRows.end() && found->id == id) { return found; }
    const auto* family =
        std::ranges::find_if(kFamilies, [id](const Row& row) { return id >= row.id && id - row.id < pp::kFamilySize; });
    return family != kFamilies.end() ? family : nullptr;
}

}  // namespace

std::string param_name(uint16_t id) {
    const Row* row = find(id);
    if (row == nullptr) { return fmt::format("0x{:04X}", id); }
    return row->id >= pp::kKsnDesPin ? fmt::format("{}{}", row->name, id - row->id) : std::string(row->name);
}

std::optional<uint16_t> find_param(std::string_view name) noexcept {
    const auto* found = std::ranges::find(kRows, name, &Row::name);
    return found != kRows.end() ? std::optional(found->id) : std::nullopt;
}

Content param_content(uint16_t id) noexcept {
    const Row* row = find(id);
    return row != nullptr ? row->content : Content();
}

Item param_item(uint16_t id, ByteView value) { return item(param_name(id), id, value, param_content(id)); }

}  // namespace quorvel::wire
