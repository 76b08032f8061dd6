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
inline constexpr uint16_t kIdList = 0x0001;
inline constexpr uint16_t kMthdPin = 0x0002;
inline constexpr uint16_t kMthdDat = 0x0003;
inline constexpr uint16_t kTagList = 0x0004;
inline constexpr uint16_t kEmvData = 0x0005;
inline constexpr uint16_t kCexOpt = 0x0006;
inline constexpr uint16_t kTracks = 0x0007;
inline constexpr uint16_t kOpnDig = 0x0008;
inline constexpr uint16_t kKeyIdx = 0x0009;
inline constexpr uint16_t kWkEnc = 0x000A;
inline constexpr uint16_t kMsgIdx = 0x000B;
inline constexpr uint16_t kTimeout = 0x000C;
inline constexpr uint16_t kMinDig = 0x000D;
inline constexpr uint16_t kMaxDig = 0x000E;
inline constexpr uint16_t kDataIn = 0x000F;
inline constexpr uint16_t kAcqRef = 0x0010;
inline constexpr uint16_t kAppType = 0x0011;
inline constexpr uint16_t kAidList = 0x0012;
inline constexpr uint16_t kAmount = 0x0013;
inline constexpr uint16_t kCashback = 0x0014;
inline constexpr uint16_t kTrnDate = 0x0015;
inline constexpr uint16_t kTrnTime = 0x0016;
inline constexpr uint16_t kGcxOpt = 0x0017;
inline constexpr uint16_t kGoxOpt = 0x0018;
inline constexpr uint16_t kFcxOpt = 0x0019;
inline constexpr uint16_t kTrmPar = 0x001A;
inline constexpr uint16_t kDspMsg = 0x001B;
inline constexpr uint16_t kArc = 0x001C;
inline constexpr uint16_t kIvCbc = 0x001D;
inline constexpr uint16_t kMfName = 0x001E;
inline constexpr uint16_t kMfInfo = 0x001F;
inline constexpr uint16_t kMnuOpt = 0x0020;
inline constexpr uint16_t kTrnType = 0x0021;
inline constexpr uint16_t kTrnCurr = 0x0022;
inline constexpr uint16_t kPanMask = 0x0023;
inline constexpr uint16_t kPbkMod = 0x0024;
inline constexpr uint16_t kPbkExp = 0x0025;
}  // namespace spe

// What responses carry.
namespace pp {
inline constexpr uint16_t kEvent = 0x8040;
inline constexpr uint16_t kTrk1Inc = 0x8041;
inline constexpr uint16_t kTrk2Inc = 0x8042;
inline constexpr uint16_t kTrk3Inc = 0x8043;
inline constexpr uint16_t kTrack1 = 0x8044;
inline constexpr uint16_t kTrack2 = 0x8045;
inline constexpr uint16_t kTrack3 = 0x8046;
inline constexpr uint16_t kTrk1Ksn = 0x8047;
inline constexpr uint16_t kTrk2Ksn = 0x8048;
inline constexpr uint16_t kTrk3Ksn = 0x8049;
inline constexpr uint16_t kEncPan = 0x804A;
inline constexpr uint16_t kEncPanKsn = 0x804B;
inline constexpr uint16_t kKsn = 0x804C;
inline constexpr uint16_t kValue = 0x804D;
inline constexpr uint16_t kDataOut = 0x804E;
inline constexpr uint16_t kCardType = 0x804F;
inline constexpr uint16_t kIccStat = 0x8050;
inline constexpr uint16_t kAidTabInfo = 0x8051;
inline constexpr uint16_t kPan = 0x8052;
inline constexpr uint16_t kPanSeqNo = 0x8053;
inline constexpr uint16_t kEmvData = 0x8054;
inline constexpr uint16_t kChName = 0x8055;
inline constexpr uint16_t kGoxRes = 0x8056;
inline constexpr uint16_t kPinBlk = 0x8057;
inline constexpr uint16_t kFcxRes = 0x8058;
inline constexpr uint16_t kIsResults = 0x8059;
inline constexpr uint16_t kBigRand = 0x805A;
inline constexpr uint16_t kLabel = 0x805B;
inline constexpr uint16_t kIssCntry = 0x805C;
inline constexpr uint16_t kCardExp = 0x805D;
inline constexpr uint16_t kMfName = 0x805E;
inline constexpr uint16_t kDevType = 0x8060;
inline constexpr uint16_t kTlrMem = 0x8062;
inline constexpr uint16_t kEncKRand = 0x8063;
// Numbered families: add an index from 0 to 99.
inline constexpr uint16_t kKsnDesPin = 0x9000;
inline constexpr uint16_t kKsnTdesPin = 0x9100;
inline constexpr uint16_t kKsnTdesData = 0x9200;
inline constexpr uint16_t kTabVer = 0x9300;
inline constexpr uint16_t kFamilySize = 100;
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
