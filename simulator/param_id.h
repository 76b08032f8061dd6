// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_PARAM_ID_H
#define QUORVEL_SIMULATOR_PARAM_ID_H

#include <cstdint>
#include <string>

namespace quorvel::sim {

// What requests carry.
namespace spe {
inline constexpr uint16_t idList = 0x0001;
inline constexpr uint16_t dspMsg = 0x001B;
inline constexpr uint16_t mfName = 0x001E;
}  // namespace spe

// What responses carry.
namespace pp {
inline constexpr uint16_t bigRand = 0x805A;
inline constexpr uint16_t tlrMem = 0x8062;
// Numbered families: add an index from 0 to 99.
inline constexpr uint16_t ksnDesPin = 0x9000;
inline constexpr uint16_t ksnTdesPin = 0x9100;
inline constexpr uint16_t ksnTdesData = 0x9200;
inline constexpr uint16_t tabVer = 0x9300;
inline constexpr uint16_t familySize = 100;
}  // namespace pp

// "PP_SERNUM", "PP_TABVER5"; "parameter" for an id that the protocol does not have.
[[nodiscard]] std::string param_name(uint16_t id);

}  // namespace quorvel::sim

#endif
