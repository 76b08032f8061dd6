// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "wire/param_id.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace quorvel::wire {

namespace {

constexpr auto card = Privacy::kCard;
constexpr auto shown = Privacy::kShown;

struct Row {
    uint16_t id;
    std::string_view name;
    Content content = {};
};

constexpr std::array rows{
    Row{spe::idList, "SPE_IDLIST", {Type::kBytes, 0, shown}},
    Row{spe::mthdPin, "SPE_MTHDPIN", {Type::kDigits, 1, shown}},
    Row{spe::mthdDat, "SPE_MTHDDAT", {Type::kDigits, 2, shown}},
    Row{spe::tagList, "SPE_TAGLIST", {Type::kBytes, 128, shown}},
    Row{spe::emvData, "SPE_EMVDATA", {Type::kObjects, 0, shown}},
    Row{spe::cexOpt, "SPE_CEXOPT", {Type::kText, 6, shown}},
    Row{spe::tracks, "SPE_TRACKS", {Type::kText, 4, shown}},
    Row{spe::opnDig, "SPE_OPNDIG", {Type::kDigits, 1, shown}},
    Row{spe::keyIdx, "SPE_KEYIDX", {Type::kDigits, 2, shown}},
    Row{spe::wkEnc, "SPE_WKENC"},
    Row{spe::msgIdx, "SPE_MSGIDX", {Type::kNumber, 2, shown}},
    Row{spe::timeout, "SPE_TIMEOUT", {Type::kNumber, 1, shown}},
    Row{spe::minDig, "SPE_MINDIG", {Type::kNumber, 1, shown}},
    Row{spe::maxDig, "SPE_MAXDIG", {Type::kNumber, 1, shown}},
    Row{spe::dataIn, "SPE_DATAIN"},
    Row{spe::acqRef, "SPE_ACQREF", {Type::kDigits, 2, shown}},
    Row{spe::appType, "SPE_APPTYPE", {Type::kDigits, 0, shown}},
    Row{spe::aidList, "SPE_AIDLIST", {Type::kText, 0, shown}},
    Row{spe::amount, "SPE_AMOUNT", {Type::kDigits, 12, shown}},
    Row{spe::cashback, "SPE_CASHBACK", {Type::kDigits, 12, shown}},
    Row{spe::trnDate, "SPE_TRNDATE", {Type::kDigits, 6, shown}},
    Row{spe::trnTime, "SPE_TRNTIME", {Type::kDigits, 6, shown}},
    Row{spe::gcxOpt, "SPE_GCXOPT", {Type::kText, 5, shown}},
    Row{spe::goxOpt, "SPE_GOXOPT", {Type::kText, 5, shown}},
    Row{spe::fcxOpt, "SPE_FCXOPT", {Type::kText, 4, shown}},
    Row{spe::trmPar, "SPE_TRMPAR", {Type::kBytes, 10, shown}},
    Row{spe::dspMsg, "SPE_DSPMSG", {Type::kText, 128, shown}},
    Row{spe::arc, "SPE_ARC", {Type::kText, 2, shown}},
    Row{spe::ivCbc, "SPE_IVCBC", {Type::kBytes, 8, shown}},
    Row{spe::mfName, "SPE_MFNAME", {Type::kText, 8, shown}},
    Row{spe::mfInfo, "SPE_MFINFO", {Type::kBytes, 10, shown}},
    Row{spe::mnuOpt, "SPE_MNUOPT", {Type::kText, 24, shown}},
    Row{spe::trnType, "SPE_TRNTYPE", {Type::kBytes, 1, shown}},
    Row{spe::trnCurr, "SPE_TRNCURR", {Type::kDigits, 3, shown}},
    Row{spe::panMask, "SPE_PANMASK", {Type::kDigits, 4, shown}},
    Row{spe::pbkMod, "SPE_PBKMOD", {Type::kBytes, 256, shown}},
    Row{spe::pbkExp, "SPE_PBKEXP", {Type::kBytes, 0, shown}},
    Row{0x8001, "PP_SERNUM", {Type::kText, 0, shown}},
    Row{0x8002, "PP_PARTNBR", {Type::kText, 0, shown}},
    Row{0x8003, "PP_MODEL", {Type::kText, 0, shown}},
    Row{0x8004, "PP_MNNAME", {Type::kText, 0, shown}},
    Row{0x8005, "PP_CAPAB", {Type::kText, 0, shown}},
    Row{0x8006, "PP_SOVER", {Type::kText, 0, shown}},
    Row{0x8007, "PP_SPECVER", {Type::kText, 0, shown}},
    Row{0x8008, "PP_MANVERS", {Type::kText, 0, shown}},
    Row{0x8009, "PP_APPVERS", {Type::kText, 0, shown}},
    Row{0x800A, "PP_GENVERS", {Type::kText, 0, shown}},
    Row{0x8010, "PP_KRNLVER", {Type::kText, 0, shown}},
    Row{0x8011, "PP_CTLSVER", {Type::kText, 0, shown}},
    Row{0x8012, "PP_MCTLSVER", {Type::kText, 0, shown}},
    Row{0x8013, "PP_VCTLSVER", {Type::kText, 0, shown}},
    Row{0x8014, "PP_AECTLSVER", {Type::kText, 0, shown}},
    Row{0x8015, "PP_DPCTLSVER", {Type::kText, 0, shown}},
    Row{0x8016, "PP_PUREVER", {Type::kText, 0, shown}},
    Row{0x8020, "PP_DSPTXTSZ", {Type::kText, 0, shown}},
    Row{0x8021, "PP_DSPGRSZ", {Type::kText, 0, shown}},
    Row{0x8022, "PP_MFSUP", {Type::kText, 0, shown}},
    Row{0x8030, "PP_MKDESP", {Type::kText, 0, shown}},
    Row{0x8031, "PP_MKDESD", {Type::kText, 0, shown}},
    Row{0x8032, "PP_MKTDESP", {Type::kText, 0, shown}},
    Row{0x8033, "PP_MKTDESD", {Type::kText, 0, shown}},
    Row{0x8034, "PP_DKPTDESP", {Type::kText, 0, shown}},
    Row{0x8035, "PP_DKPTTDESP", {Type::kText, 0, shown}},
    Row{0x8036, "PP_DKPTTDESD", {Type::kText, 0, shown}},
    Row{pp::event, "PP_EVENT", {Type::kDigits, 2, shown}},
    Row{pp::trk1Inc, "PP_TRK1INC"},
    Row{pp::trk2Inc, "PP_TRK2INC"},
    Row{pp::trk3Inc, "PP_TRK3INC"},
    Row{pp::track1, "PP_TRACK1"},
    Row{pp::track2, "PP_TRACK2"},
    Row{pp::track3, "PP_TRACK3"},
    Row{pp::trk1Ksn, "PP_TRK1KSN", {Type::kBytes, 10, shown}},
    Row{pp::trk2Ksn, "PP_TRK2KSN", {Type::kBytes, 10, shown}},
    Row{pp::trk3Ksn, "PP_TRK3KSN", {Type::kBytes, 10, shown}},
    Row{pp::encPan, "PP_ENCPAN"},
    Row{pp::encPanKsn, "PP_ENCPANKSN", {Type::kBytes, 10, shown}},
    Row{pp::ksn, "PP_KSN", {Type::kBytes, 10, shown}},
    Row{pp::value, "PP_VALUE"},
    Row{pp::dataOut, "PP_DATAOUT"},
    Row{pp::cardType, "PP_CARDTYPE", {Type::kDigits, 2, shown}},
    Row{pp::iccStat, "PP_ICCSTAT", {Type::kDigits, 1, shown}},
    Row{pp::aidTabInfo, "PP_AIDTABINFO", {Type::kText, 0, shown}},
    Row{pp::pan, "PP_PAN", {Type::kPan, 0, card}},
    Row{pp::panSeqNo, "PP_PANSEQNO", {Type::kDigits, 2, shown}},
    Row{pp::emvData, "PP_EMVDATA", {Type::kObjects, 0, shown}},
    Row{pp::chName, "PP_CHNAME", {Type::kText, 0, card}},
    Row{pp::goxRes, "PP_GOXRES", {Type::kText, 6, shown}},
    Row{pp::pinBlk, "PP_PINBLK"},
    Row{pp::fcxRes, "PP_FCXRES", {Type::kText, 3, shown}},
    Row{pp::isResults, "PP_ISRESULTS", {Type::kBytes, 0, shown}},
    Row{pp::bigRand, "PP_BIGRAND", {Type::kBytes, 0, shown}},
    Row{pp::label, "PP_LABEL", {Type::kText, 16, shown}},
    Row{pp::issCntry, "PP_ISSCNTRY", {Type::kDigits, 3, shown}},
    Row{pp::cardExp, "PP_CARDEXP", {Type::kText, 6, card}},
    Row{pp::mfName, "PP_MFNAME", {Type::kText, 8, shown}},
    Row{pp::devType, "PP_DEVTYPE", {Type::kDigits, 2, shown}},
    Row{0x8061, "PP_ENCKEY"},
    Row{pp::tlrMem, "PP_TLRMEM", {Type::kNumber, 4, shown}},
    Row{pp::encKRand, "PP_ENCKRAND"},
};
static_assert(std::ranges::adjacent_find(rows, std::ranges::greater_equal{}, &Row::id) == rows.end(),
              "sorted and unique");

// Each has an index behind its name.
constexpr std::array families{
    Row{pp::ksnDesPin, "PP_KSNDESP", {Type::kBytes, 10, shown}},
    Row{pp::ksnTdesPin, "PP_KSNTDESP", {Type::kBytes, 10, shown}},
    Row{pp::ksnTdesData, "PP_KSNTDESD", {Type::kBytes, 10, shown}},
    Row{pp::tabVer, "PP_TABVER", {Type::kText, 10, shown}},
};

const Row* find(uint16_t id) noexcept {
    const auto* found = std::ranges::lower_bound(rows, id, {}, &Row::id);
    if (found != rows.end() && found->id == id) return found;
    const auto* family =
        std::ranges::find_if(families, [id](const Row& row) { return id >= row.id && id - row.id < pp::familySize; });
    return family != families.end() ? family : nullptr;
}

}  // namespace

std::string param_name(uint16_t id) {
    const Row* row = find(id);
    if (row == nullptr) return fmt::format("0x{:04X}", id);
    return row->id >= pp::ksnDesPin ? fmt::format("{}{}", row->name, id - row->id) : std::string(row->name);
}

std::optional<uint16_t> find_param(std::string_view name) noexcept {
    const auto* found = std::ranges::find(rows, name, &Row::name);
    return found != rows.end() ? std::optional(found->id) : std::nullopt;
}

Content param_content(uint16_t id) noexcept {
    const Row* row = find(id);
    return row != nullptr ? row->content : Content();
}

Item param_item(uint16_t id, ByteView value) { return item(param_name(id), id, value, param_content(id)); }

}  // namespace quorvel::wire
