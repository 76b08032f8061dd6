// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "wire/command.h"

namespace quorvel::wire {

namespace {

constexpr auto kShown = Privacy::kShown;
using Size = Field::Size;

constexpr Field kBlock{"", {}, Size::kLength};

constexpr Field digits(std::string_view name, size_t width) { return {name, {Type::kDigits, width, kShown}}; }
constexpr Field text(std::string_view name, size_t width) { return {name, {Type::kText, width, kShown}}; }
constexpr Field hex(std::string_view name, size_t width) { return {name, {Type::kHex, width, kShown}}; }
constexpr Field withheld(std::string_view name, size_t width) { return {name, {Type::kText, width}}; }
constexpr Field optional(Field field) { return {field.name, field.content, Size::kOptional}; }
constexpr Field counted(Field field) { return {field.name, field.content, Size::kCounted}; }
constexpr Field rest(Field field) { return {field.name, field.content, Size::kRest}; }

constexpr std::array kChpRequest{kBlock, digits("CHP_SLOT", 1), digits("CHP_OPER", 1)};
constexpr std::array kCkeRequest{kBlock, digits("CKE_KEY", 1), digits("CKE_MAG", 1), digits("CKE_ICC", 1),
                                 optional(digits("CKE_CTLS", 1))};
constexpr std::array kCkeResponse{kBlock, digits("CKE_EVENT", 1)};
constexpr std::array kCloRequest{kBlock, text("CLO_MSG", 32)};
constexpr std::array kDexRequest{kBlock, digits("DEX_MSGLEN", 3), counted(text("DEX_MSG", 1))};
constexpr std::array kDspRequest{kBlock, text("DSP_MSG", 32)};
constexpr std::array kDwkRequest{kBlock, digits("DWK_MODE", 1)};
constexpr std::array kEnbRequest{kBlock, digits("ENB_METHOD", 1), digits("ENB_KEYIDX", 2), withheld("ENB_WKENC", 32),
                                 withheld("ENB_DATA", 16)};
constexpr std::array kFncRequest{kBlock,
                                 digits("FNC_COMMST", 1),
                                 digits("FNC_ISSMOD", 1),
                                 text("FNC_ARC", 2),
                                 digits("FNC_ISSDATLEN", 3),
                                 counted(withheld("FNC_ISSDAT", 2)),
                                 digits("FNC_ACQPRLEN", 3),
                                 kBlock,
                                 digits("FNC_TAGSLEN", 3),
                                 counted(hex("FNC_TAGS", 2))};
constexpr std::array kFncResponse{kBlock, digits("FNC_DECISION", 1)};
constexpr std::array kGcrRequest{kBlock,
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
constexpr size_t kLeastCard = 333;
constexpr std::array kGcrResponse{kBlock,
                                  digits("GCR_CARDTYPE", 2),
                                  digits("GCR_STATCHIP", 1),
                                  digits("GCR_APPTYPE", 2),
                                  digits("GCR_ACQIDX", 2),
                                  text("GCR_RECIDX", 2),
                                  rest(withheld("GCR_CARD", kLeastCard))};
constexpr std::array kGduRequest{kBlock, digits("GDU_METHOD", 1), digits("GDU_IDX", 2)};
constexpr std::array kGduResponse{kBlock, hex("GDU_KSN", 20)};
constexpr std::array kGenRequest{kBlock, text("GEN_GROUP", 2), kBlock, text("GEN_SUBCMD", 2)};
constexpr std::array kGinRequest{kBlock, digits("GIN_ACQIDX", 2)};
constexpr std::array kGinResponse{kBlock, rest(text("GIN_DATA", 42))};
constexpr std::array kGocRequest{kBlock,
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
                                 kBlock,
                                 digits("GOC_TAGS1LEN", 3),
                                 counted(hex("GOC_TAGS1", 2)),
                                 kBlock,
                                 digits("GOC_TAGS2LEN", 3),
                                 counted(hex("GOC_TAGS2", 2))};
constexpr std::array kGocResponse{kBlock,
                                  digits("GOC_DECISION", 1),
                                  digits("GOC_SIGNAT", 1),
                                  digits("GOC_PINOFF", 1),
                                  digits("GOC_ERRPINOFF", 1),
                                  digits("GOC_PBLOCKED", 1),
                                  digits("GOC_PINONL", 1),
                                  withheld("GOC_PINBLK", 16),
                                  hex("GOC_KSN", 20)};
constexpr std::array kGpnRequest{kBlock,
                                 digits("GPN_METHOD", 1),
                                 digits("GPN_KEYIDX", 2),
                                 withheld("GPN_WKENC", 32),
                                 digits("GPN_PANLEN", 2),
                                 withheld("GPN_PAN", 19),
                                 digits("GPN_ENTRIES", 1),
                                 counted(text("GPN_PROMPTS", 36))};
constexpr std::array kGpnResponse{kBlock, withheld("GPN_PINBLK", 16), hex("GPN_KSN", 20)};
constexpr std::array kGtsRequest{kBlock, digits("GTS_ACQIDX", 2)};
constexpr std::array kGtsResponse{kBlock, text("GTS_TABVER", 10)};
constexpr std::array kNtmResponse{kBlock, rest(text("NTM_MSG", 0))};
constexpr std::array kOpnRequest{kBlock,
                                 digits("OPN_OPMODE", 1),
                                 digits("OPN_MODLEN", 3),
                                 counted(hex("OPN_MOD", 2)),
                                 digits("OPN_EXPLEN", 1),
                                 hex("OPN_EXP", 6)};
constexpr std::array kOpnResponse{kBlock, digits("OPN_CRKSLEN", 3), counted(withheld("OPN_CRKS", 2))};
constexpr std::array kRmcRequest{kBlock, text("RMC_MSG", 32)};
constexpr std::array kTliRequest{kBlock, digits("TLI_ACQIDX", 2), text("TLI_TABVER", 10)};
constexpr std::array kTlrRequest{kBlock, digits("TLR_NREC", 2), rest(text("TLR_REC", 0))};

struct Layout {
    std::string_view id;
    std::span<const Field> request = {};
    std::span<const Field> response = {};
};

constexpr std::array kLayouts{
    Layout{"CHP", kChpRequest},
    Layout{"CKE", kCkeRequest, kCkeResponse},
    Layout{"CLO", kCloRequest},
    Layout{"DEX", kDexRequest},
    Layout{"DSP", kDspRequest},
    Layout{"DWK", kDwkRequest},
    Layout{"ENB", kEnbRequest},
    Layout{"FNC", kFncRequest, kFncResponse},
    Layout{"GCR", kGcrRequest, kGcrResponse},
    Layout{"GDU", kGduRequest, kGduResponse},
    Layout{"GEN", kGenRequest},
    Layout{"GIN", kGinRequest, kGinResponse},
    Layout{"GOC", kGocRequest, kGocResponse},
    Layout{"GPN", kGpnRequest, kGpnResponse},
    Layout{"GTS", kGtsRequest, kGtsResponse},
    Layout{"NTM", {}, kNtmResponse},
    Layout{"OPN", kOpnRequest, kOpnResponse},
    Layout{"RMC", kRmcRequest},
    Layout{"TLI", kTliRequest},
    Layout{"TLR", kTlrRequest},
};

}  // namespace

std::span<const Field> fields_of(std::string_view id, Sender sender) noexcept {
    const auto* layout = std::ranges::find(kLayouts, id, &Layout::id);
    if (layout == kLayouts.end()) { return {}; }
    return sender == Sender::kHost ? layout->request : layout->response;
}

}  // namespace quorvel::wire
