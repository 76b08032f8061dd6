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
inline constexpr uint16_t idList = 0x0001;
inline constexpr uint16_t mthdPin = 0x0002;
inline constexpr uint16_t mthdDat = 0x0003;
inline constexpr uint16_t tagList = 0x0004;
inline constexpr uint16_t emvData = 0x0005;
inline constexpr uint16_t cexOpt = 0x0006;
inline constexpr uint16_t tracks = 0x0007;
inline constexpr uint16_t opnDig = 0x0008;
inline constexpr uint16_t keyIdx = 0x0009;
inline constexpr uint16_t wkEnc = 0x000A;
inline constexpr uint16_t msgIdx = 0x000B;
inline constexpr uint16_t timeout = 0x000C;
inline constexpr uint16_t minDig = 0x000D;
inline constexpr uint16_t maxDig = 0x000E;
inline constexpr uint16_t dataIn = 0x000F;
inline constexpr uint16_t acqRef = 0x0010;
inline constexpr uint16_t appType = 0x0011;
inline constexpr uint16_t aidList = 0x0012;
inline constexpr uint16_t amount = 0x0013;
inline constexpr uint16_t cashback = 0x0014;
inline constexpr uint16_t trnDate = 0x0015;
inline constexpr uint16_t trnTime = 0x0016;
inline constexpr uint16_t gcxOpt = 0x0017;
inline constexpr uint16_t goxOpt = 0x0018;
inline constexpr uint16_t fcxOpt = 0x0019;
inline constexpr uint16_t trmPar = 0x001A;
inline constexpr uint16_t dspMsg = 0x001B;
inline constexpr uint16_t arc = 0x001C;
inline constexpr uint16_t ivCbc = 0x001D;
inline constexpr uint16_t mfName = 0x001E;
inline constexpr uint16_t mfInfo = 0x001F;
inline constexpr uint16_t mnuOpt = 0x0020;
inline constexpr uint16_t trnType = 0x0021;
inline constexpr uint16_t trnCurr = 0x0022;
inline constexpr uint16_t panMask = 0x0023;
inline constexpr uint16_t pbkMod = 0x0024;
inline constexpr uint16_t pbkExp = 0x0025;
}  // namespace spe

// What responses carry.
namespace pp {
inline constexpr uint16_t event = 0x8040;
inline constexpr uint16_t trk1Inc = 0x8041;
inline constexpr uint16_t trk2Inc = 0x8042;
inline constexpr uint16_t trk3Inc = 0x8043;
inline constexpr uint16_t track1 = 0x8044;
inline constexpr uint16_t track2 = 0x8045;
inline constexpr uint16_t track3 = 0x8046;
inline constexpr uint16_t trk1Ksn = 0x8047;
inline constexpr uint16_t trk2Ksn = 0x8048;
inline constexpr uint16_t trk3Ksn = 0x8049;
inline constexpr uint16_t encPan = 0x804A;
inline constexpr uint16_t encPanKsn = 0x804B;
inline constexpr uint16_t ksn = 0x804C;
inline constexpr uint16_t value = 0x804D;
inline constexpr uint16_t dataOut = 0x804E;
inline constexpr uint16_t cardType = 0x804F;
inline constexpr uint16_t iccStat = 0x8050;
inline constexpr uint16_t aidTabInfo = 0x8051;
inline constexpr uint16_t pan = 0x8052;
inline constexpr uint16_t panSeqNo = 0x8053;
inline constexpr uint16_t emvData = 0x8054;
inline constexpr uint16_t chName = 0x8055;
inline constexpr uint16_t goxRes = 0x8056;
inline constexpr uint16_t pinBlk = 0x8057;
inline constexpr uint16_t fcxRes = 0x8058;
inline constexpr uint16_t isResults = 0x8059;
inline constexpr uint16_t bigRand = 0x805A;
inline constexpr uint16_t label = 0x805B;
inline constexpr uint16_t issCntry = 0x805C;
inline constexpr uint16_t cardExp = 0x805D;
inline constexpr uint16_t mfName = 0x805E;
inline constexpr uint16_t devType = 0x8060;
inline constexpr uint16_t tlrMem = 0x8062;
inline constexpr uint16_t encKRand = 0x8063;
// Numbered families: add an index from 0 to 99.
inline constexpr uint16_t ksnDesPin = 0x9000;
inline constexpr uint16_t ksnTdesPin = 0x9100;
inline constexpr uint16_t ksnTdesData = 0x9200;
inline constexpr uint16_t tabVer = 0x9300;
inline constexpr uint16_t familySize = 100;
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
