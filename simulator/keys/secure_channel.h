// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_KEYS_SECURE_CHANNEL_H
#define QUORVEL_SIMULATOR_KEYS_SECURE_CHANNEL_H

#include <array>
#include <cstdint>
#include <optional>
#include <stdexcept>

#include "simulator/keys/random.h"
#include "simulator/keys/rsa.h"
#include "simulator/wire.h"

namespace quorvel::sim {

using SessionKey = std::array<uint8_t, 16>;

// The content of an encrypted frame that is not as it must be.
class SealError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The session key and what is done with it. No one else ever sees it.
class SecureChannel {
public:
    // Sessions get `fixedKey` if there is one, so that tests can spell enciphered frames.
    explicit SecureChannel(const std::optional<SessionKey>& fixedKey) : fixedKey_(fixedKey) {}
    ~SecureChannel();
    SecureChannel(const SecureChannel&) = delete;
    SecureChannel& operator=(const SecureChannel&) = delete;

    [[nodiscard]] bool active() const noexcept { return key_.has_value(); }

    // Draws a key, in place of the one before, and returns it enciphered under the host's public key: as many bytes as
    // the modulus has.
    [[nodiscard]] Bytes open(const RsaPublicKey& hostKey, Random& random);
    void close() noexcept;

    // The content of an encrypted frame.
    [[nodiscard]] Bytes seal(ByteView packet) const;
    // The packet in it. Throws SealError.
    [[nodiscard]] Bytes unseal(ByteView content) const;

private:
    std::optional<SessionKey> fixedKey_;
    std::optional<SessionKey> key_;
};

}  // namespace quorvel::sim

#endif
