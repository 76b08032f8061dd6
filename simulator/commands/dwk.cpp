// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/commands/handlers.h"
#include "simulator/keys/block_cipher.h"
#include "simulator/keys/rsa.h"
#include "wire/hex.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t kKeySize = 2 * kBlockSize;
constexpr size_t kModulusSize = 128;
constexpr size_t kExponentSize = 3;
constexpr uint8_t kHighBit = 0x80;

// Under a master key; that of DES makes a key for DES, the first half of what it deciphers.
Answer under_master_key(Device& device, Reader fields) {
    const bool des = fields.n("DWK_METHOD", 1, {0, 1}) == 0;
    const auto index = static_cast<int>(fields.n("DWK_MKIDX", 2));
    const Bytes enciphered = fields.h("DWK_WKENC", 2 * kKeySize);
    fields.end();
    auto key = device.keys.working(des ? KeyStrength::kDes : KeyStrength::kTdes, KeyUse::kData, index, enciphered);
    if (!key) { return {.status = Status::kErrkey, .blocks = {}}; }
    if (des) { key->resize(kBlockSize); }
    device.drop_pan_key();
    device.panKey = std::move(key);
    return {};
}

// The host takes the filling for nothing, so it may be anything.
Bytes key_block(ByteView key, Random& random) {
    static constexpr size_t kFillingBefore = 9;
    static constexpr size_t kFillingBehind = 84;
    Writer block;
    block.a("T", 1)
        .n(1, 1)
        .b(random.bytes(kFillingBefore))
        .h(key, 2 * kKeySize)
        .b(random.bytes(kFillingBehind))
        .a("X", 1);
    return block.bytes();
}

// Under the host's public key.
Answer under_public_key(Device& device, Reader fields) {
    RsaPublicKey host;
    host.modulus = fields.h("DWK_MOD", 2 * kModulusSize);
    host.exponent = fields.h("DWK_EXP", 2 * kExponentSize);
    fields.end();
    if (host.modulus.front() < kHighBit) { throw LayoutError("DWK: DWK_MOD: less than 1024 bits"); }
    Bytes key = device.random.bytes(kKeySize);
    const Bytes cryptogram = rsa_raw(host, key_block(key, device.random));
    device.drop_pan_key();
    device.panKey = std::move(key);
    return Answer::of(Writer().h(cryptogram, 2 * kModulusSize));
}

}  // namespace

Answer dwk(Call& call) {
    Reader fields = only_block(call);
    const bool master = fields.n("DWK_MODE", 1, {1, 2}) == 1;
    return master ? under_master_key(call.device, fields) : under_public_key(call.device, fields);
}

}  // namespace quorvel::sim::commands
