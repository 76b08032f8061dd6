// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_WIRE_PARAM_ID_H
#define QUORVEL_WIRE_PARAM_ID_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "wire/item.h"

namespace quorvel::wire {

// What requests carry.
namespace spe {
inline constexpr uint16_t kIdList = 0x0001, kMthdPin = 0x0002, kMthdDat = 0x0003, kTagList = 0x0004, kEmvData = 0x0005,
                          kCexOpt = 0x0006, kTracks = 0x0007, kOpnDig = 0x0008, kKeyIdx = 0x0009, kWkEnc = 0x000A,
                          kMsgIdx = 0x000B, kTimeout = 0x000C, kMinDig = 0x000D, kMaxDig = 0x000E, kDataIn = 0x000F,
                          kAcqRef = 0x0010, kAppType = 0x0011, kAidList = 0x0012, kAmount = 0x0013, kCashback = 0x0014,
                          kTrnDate = 0x0015, kTrnTime = 0x0016, kGcxOpt = 0x0017, kGoxOpt = 0x0018, kFcxOpt = 0x0019,
                          kTrmPar = 0x001A, kDspMsg = 0x001B, kArc = 0x001C, kIvCbc = 0x001D, kMfName = 0x001E,
                          kMfInfo = 0x001F, kMnuOpt = 0x0020, kTrnType = 0x0021, kTrnCurr = 0x0022, kPanMask = 0x0023,
                          kPbkMod = 0x0024, kPbkExp = 0x0025;
}  // namespace spe

// What responses carry.
namespace pp {
inline constexpr uint16_t kEvent = 0x8040, kTrk1Inc = 0x8041, kTrk2Inc = 0x8042, kTrk3Inc = 0x8043, kTrack1 = 0x8044,
                          kTrack2 = 0x8045, kTrack3 = 0x8046, kTrk1Ksn = 0x8047, kTrk2Ksn = 0x8048, kTrk3Ksn = 0x8049,
                          kEncPan = 0x804A, kEncPanKsn = 0x804B, kKsn = 0x804C, kValue = 0x804D, kDataOut = 0x804E,
                          kCardType = 0x804F, kIccStat = 0x8050, kAidTabInfo = 0x8051, kPan = 0x8052,
                          kPanSeqNo = 0x8053, kEmvData = 0x8054, kChName = 0x8055, kGoxRes = 0x8056, kPinBlk = 0x8057,
                          kFcxRes = 0x8058, kIsResults = 0x8059, kBigRand = 0x805A, kLabel = 0x805B, kIssCntry = 0x805C,
                          kCardExp = 0x805D, kMfName = 0x805E, kDevType = 0x8060, kTlrMem = 0x8062, kEncKRand = 0x8063;
// Numbered families: add an index from 0 to 99.
inline constexpr uint16_t kKsnDesPin = 0x9000, kKsnTdesPin = 0x9100, kKsnTdesData = 0x9200, kTabVer = 0x9300,
                          kFamilySize = 100;
}  // namespace pp

// "PP_SERNUM", "PP_TABVER5"; "0x80FF" for an id that the protocol does not have.
[[nodiscard]] std::string param_name(uint16_t id);
// Of a name without an index.
[[nodiscard]] std::optional<uint16_t> find_param(std::string_view name) noexcept;

// One that the protocol does not have is withheld.
[[nodiscard]] Content param_content(uint16_t id) noexcept;
[[nodiscard]] Item param_item(uint16_t id, ByteView value);

}  // namespace quorvel::wire

#endif
