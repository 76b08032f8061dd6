// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "wire/command.h"

namespace quorvel::wire {

namespace {

constexpr auto shown = Privacy::kShown;
using Size = Field::Size;

constexpr Field block{"", {}, Size::kLength};

constexpr Field digits(std::string_view name, size_t width) { return {name, {Type::kDigits, width, shown}}; }
constexpr Field text(std::string_view name, size_t width) { return {name, {Type::kText, width, shown}}; }
constexpr Field hex(std::string_view name, size_t width) { return {name, {Type::kHex, width, shown}}; }
constexpr Field withheld(std::string_view name, size_t width) { return {name, {Type::kText, width}}; }
constexpr Field optional(Field field) { return {field.name, field.content, Size::kOptional}; }
constexpr Field counted(Field field) { return {field.name, field.content, Size::kCounted}; }
constexpr Field rest(Field field) { return {field.name, field.content, Size::kRest}; }

constexpr std::array chpRequest{block, digits("CHP_SLOT", 1), digits("CHP_OPER", 1)};
constexpr std::array ckeRequest{block, digits("CKE_KEY", 1), digits("CKE_MAG", 1), digits("CKE_ICC", 1),
                                optional(digits("CKE_CTLS", 1))};
constexpr std::array ckeResponse{block, digits("CKE_EVENT", 1)};
constexpr std::array cloRequest{block, text("CLO_MSG", 32)};
constexpr std::array dexRequest{block, digits("DEX_MSGLEN", 3), counted(text("DEX_MSG", 1))};
constexpr std::array dspRequest{block, text("DSP_MSG", 32)};
constexpr std::array dwkRequest{block, digits("DWK_MODE", 1)};
constexpr std::array enbRequest{block, digits("ENB_METHOD", 1), digits("ENB_KEYIDX", 2), withheld("ENB_WKENC", 32),
                                withheld("ENB_DATA", 16)};
constexpr std::array fncRequest{block,
                                digits("FNC_COMMST", 1),
                                digits("FNC_ISSMOD", 1),
                                text("FNC_ARC", 2),
                                digits("FNC_ISSDATLEN", 3),
                                counted(withheld("FNC_ISSDAT", 2)),
                                digits("FNC_ACQPRLEN", 3),
                                block,
                                digits("FNC_TAGSLEN", 3),
                                counted(hex("FNC_TAGS", 2))};
constexpr std::array fncResponse{block, digits("FNC_DECISION", 1)};
constexpr std::array gcrRequest{block,
                                digits("GCR_ACQIDXREQ", 2),
                                digits("GCR_APPTYPREQ", 2),
                                digits("GCR_AMOUNT", 12),
                                digits("GCR_DATE", 6),
                                digits("GCR_TIME", 6),
                                text("GCR_TABVER", 10),
                                digits("GCR_QTDAID", 2),
                                counted(text("GCR_AIDLIST", 4)),
                                optional(digits("GCR_CTLSON", 1))};
// The tracks, the number and what else is on the card.
constexpr size_t leastCard = 333;
constexpr std::array gcrResponse{block,
                                 digits("GCR_CARDTYPE", 2),
                                 digits("GCR_STATCHIP", 1),
                                 digits("GCR_APPTYPE", 2),
                                 digits("GCR_ACQIDX", 2),
                                 text("GCR_RECIDX", 2),
                                 rest(withheld("GCR_CARD", leastCard))};
constexpr std::array gduRequest{block, digits("GDU_METHOD", 1), digits("GDU_IDX", 2)};
constexpr std::array gduResponse{block, hex("GDU_KSN", 20)};
constexpr std::array genRequest{block, text("GEN_GROUP", 2), block, text("GEN_SUBCMD", 2)};
constexpr std::array ginRequest{block, digits("GIN_ACQIDX", 2)};
constexpr std::array ginResponse{block, rest(text("GIN_DATA", 42))};
constexpr std::array gocRequest{block,
                                digits("GOC_AMOUNT", 12),
                                digits("GOC_CASHBACK", 12),
                                digits("GOC_EXCLIST", 1),
                                digits("GOC_CONNECT", 1),
                                digits("GOC_RESERVED", 1),
                                digits("GOC_METHOD", 1),
                                digits("GOC_KEYIDX", 2),
                                withheld("GOC_WKENC", 32),
                                digits("GOC_RISKMAN", 1),
                                hex("GOC_FLRLIMIT", 8),
                                digits("GOC_TPBRS", 2),
                                hex("GOC_THRBRS", 8),
                                digits("GOC_MTPBRS", 2),
                                digits("GOC_ACQPRLEN", 2),
                                counted(withheld("GOC_ACQPR", 1)),
                                block,
                                digits("GOC_TAGS1LEN", 3),
                                counted(hex("GOC_TAGS1", 2)),
                                block,
                                digits("GOC_TAGS2LEN", 3),
                                counted(hex("GOC_TAGS2", 2))};
constexpr std::array gocResponse{block,
                                 digits("GOC_DECISION", 1),
                                 digits("GOC_SIGNAT", 1),
                                 digits("GOC_PINOFF", 1),
                                 digits("GOC_ERRPINOFF", 1),
                                 digits("GOC_PBLOCKED", 1),
                                 digits("GOC_PINONL", 1),
                                 withheld("GOC_PINBLK", 16),
                                 hex("GOC_KSN", 20)};
constexpr std::array gpnRequest{block,
                                digits("GPN_METHOD", 1),
                                digits("GPN_KEYIDX", 2),
                                withheld("GPN_WKENC", 32),
                                digits("GPN_PANLEN", 2),
                                withheld("GPN_PAN", 19),
                                digits("GPN_ENTRIES", 1),
                                counted(text("GPN_PROMPTS", 36))};
constexpr std::array gpnResponse{block, withheld("GPN_PINBLK", 16), hex("GPN_KSN", 20)};
constexpr std::array gtsRequest{block, digits("GTS_ACQIDX", 2)};
constexpr std::array gtsResponse{block, text("GTS_TABVER", 10)};
constexpr std::array ntmResponse{block, text("NTM_MSG", 32)};
constexpr std::array opnRequest{block,
                                digits("OPN_OPMODE", 1),
                                digits("OPN_MODLEN", 3),
                                counted(hex("OPN_MOD", 2)),
                                digits("OPN_EXPLEN", 1),
                                hex("OPN_EXP", 6)};
constexpr std::array opnResponse{block, digits("OPN_CRKSLEN", 3), counted(withheld("OPN_CRKS", 2))};
constexpr std::array rmcRequest{block, text("RMC_MSG", 32)};
constexpr std::array tliRequest{block, digits("TLI_ACQIDX", 2), text("TLI_TABVER", 10)};
constexpr std::array tlrRequest{block, digits("TLR_NREC", 2), rest(text("TLR_REC", 0))};

struct Layout {
    std::string_view id;
    std::span<const Field> request = {};
    std::span<const Field> response = {};
};

constexpr std::array layouts{
    Layout{"CHP", chpRequest},
    Layout{"CKE", ckeRequest, ckeResponse},
    Layout{"CLO", cloRequest},
    Layout{"DEX", dexRequest},
    Layout{"DSP", dspRequest},
    Layout{"DWK", dwkRequest},
    Layout{"ENB", enbRequest},
    Layout{"FNC", fncRequest, fncResponse},
    Layout{"GCR", gcrRequest, gcrResponse},
    Layout{"GDU", gduRequest, gduResponse},
    Layout{"GEN", genRequest},
    Layout{"GIN", ginRequest, ginResponse},
    Layout{"GOC", gocRequest, gocResponse},
    Layout{"GPN", gpnRequest, gpnResponse},
    Layout{"GTS", gtsRequest, gtsResponse},
    Layout{"NTM", {}, ntmResponse},
    Layout{"OPN", opnRequest, opnResponse},
    Layout{"RMC", rmcRequest},
    Layout{"TLI", tliRequest},
    Layout{"TLR", tlrRequest},
};

}  // namespace

std::span<const Field> fields_of(std::string_view id, Sender sender) noexcept {
    const auto* layout = std::ranges::find(layouts, id, &Layout::id);
    if (layout == layouts.end()) return {};
    return sender == Sender::kHost ? layout->request : layout->response;
}

}  // namespace quorvel::wire
