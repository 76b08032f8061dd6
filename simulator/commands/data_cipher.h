// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_COMMANDS_DATA_CIPHER_H
#define QUORVEL_SIMULATOR_COMMANDS_DATA_CIPHER_H

#include <cstdint>
#include <map>
#include <optional>
#include <string_view>

#include "simulator/keys/key_store.h"
#include "simulator/keys/random.h"
#include "simulator/wire.h"
#include "wire/fields.h"

namespace quorvel::sim {

enum class KeySource { kWorkingKey, kDukptKey, kRandomKey };

// What a value of SPE_MTHDDAT stands for.
struct DataMethod {
    uint64_t number = 0;
    KeySource source = KeySource::kWorkingKey;
    KeyStrength strength = KeyStrength::kDes;
    bool chained = false;
};

struct Enciphered {
    Bytes bytes;
    // Of a DUKPT key.
    std::optional<Bytes> ksn = {};
};

// The parameters that say how a command enciphers data, and what they ask for.
class DataCipher {
public:
    explicit DataCipher(std::string_view command) : command_(command) {}

    // False for a parameter of another kind.
    bool take(const Param& param);
    // Throws LayoutError unless exactly those came that their method needs. No parameter at all asks for clear data.
    // What is random in it is drawn then.
    void settle(Random& random);

    [[nodiscard]] const DataMethod* method() const noexcept { return method_; }

    // Whole blocks. With DUKPT each call is a transaction of its own. None when the PIN pad does not have the key.
    [[nodiscard]] std::optional<Enciphered> encipher(KeyStore& keys, ByteView blocks) const;
    // The random key under the host's public key, padded as PKCS #1 v1.5 says.
    [[nodiscard]] Bytes enciphered_random_key(Random& random) const;

private:
    [[nodiscard]] bool fits(uint16_t id) const;
    [[nodiscard]] bool needs(uint16_t id) const;
    void require_size(uint16_t id, size_t smallest, size_t largest) const;
    [[nodiscard]] std::optional<Enciphered> key(KeyStore& keys) const;

    std::string_view command_;
    std::map<uint16_t, Bytes> given_;
    const DataMethod* method_ = nullptr;
    int keyIndex_ = 0;
    Bytes randomKey_;
};

}  // namespace quorvel::sim

#endif
