// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_KEYS_DUKPT_H
#define QUORVEL_SIMULATOR_KEYS_DUKPT_H

#include <array>
#include <cstdint>
#include <optional>

#include "simulator/wire.h"

// Derived unique key per transaction, ANSI X9.24-1. Initial keys of 16 bytes are those of its triple DES form, of 8
// bytes those of the DES form that came before.
namespace quorvel::sim {

// The key set, the device and, in the last 21 bits, the transaction counter.
using Ksn = std::array<uint8_t, 10>;

namespace dukpt {

// From the base derivation key of 16 bytes; the DES form has its first half.
[[nodiscard]] Bytes initial_key(ByteView baseKey, const Ksn& ksn);

// The next counter with at most ten one bits. None when there is no further one.
[[nodiscard]] std::optional<Ksn> next(const Ksn& ksn);

[[nodiscard]] Bytes transaction_key(ByteView initialKey, const Ksn& ksn);

// Whether both are serial numbers of the same initial key.
[[nodiscard]] bool is_same_device(const Ksn& one, const Ksn& other);

// The variants of a transaction's key for a PIN block and for the data of a request.
[[nodiscard]] Bytes pin_key(ByteView transactionKey);
[[nodiscard]] Bytes data_key(ByteView transactionKey);

}  // namespace dukpt

}  // namespace quorvel::sim

#endif
