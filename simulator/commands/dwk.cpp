// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/commands/handlers.h"
#include "simulator/keys/block_cipher.h"
#include "simulator/keys/rsa.h"
#include "wire/hex.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t keySize = 2 * blockSize;
constexpr size_t modulusSize = 128;
constexpr size_t exponentSize = 3;
constexpr uint8_t highBit = 0x80;

// Under a master key; that of DES makes a key for DES, the first half of what it deciphers.
Answer under_master_key(Device& device, Reader fields) {
    const bool des = fields.n("DWK_METHOD", 1, {0, 1}) == 0;
    const auto index = static_cast<int>(fields.n("DWK_MKIDX", 2));
    const Bytes enciphered = fields.h("DWK_WKENC", 2 * keySize);
    fields.end();
    auto key = device.keys.working(des ? KeyStrength::kDes : KeyStrength::kTdes, KeyUse::kData, index, enciphered);
    if (!key) return {.status = Status::kErrkey, .blocks = {}};
    if (des) key->resize(blockSize);
    device.drop_pan_key();
    device.panKey = std::move(key);
    return {};
}

// The host takes the filling for nothing, so it may be anything.
Bytes key_block(ByteView key) {
    static constexpr size_t fillingBefore = 9;
    static constexpr size_t fillingBehind = 84;
    Writer block;
    block.a("T", 1).n(1, 1).b(random_bytes(fillingBefore)).h(key, 2 * keySize).b(random_bytes(fillingBehind)).a("X", 1);
    return block.bytes();
}

// Under the host's public key.
Answer under_public_key(Device& device, Reader fields) {
    RsaPublicKey host;
    host.modulus = fields.h("DWK_MOD", 2 * modulusSize);
    host.exponent = fields.h("DWK_EXP", 2 * exponentSize);
    fields.end();
    if (host.modulus.front() < highBit) throw LayoutError("DWK: DWK_MOD: less than 1024 bits");
    Bytes key = random_bytes(keySize);
    const Bytes cryptogram = rsa_raw(host, key_block(key));
    device.drop_pan_key();
    device.panKey = std::move(key);
    return Answer::of(Writer().h(cryptogram, 2 * modulusSize));
}

}  // namespace

Answer dwk(Call& call) {
    Reader fields = only_block(call);
    const bool master = fields.n("DWK_MODE", 1, {1, 2}) == 1;
    return master ? under_master_key(call.device, fields) : under_public_key(call.device, fields);
}

}  // namespace quorvel::sim::commands
