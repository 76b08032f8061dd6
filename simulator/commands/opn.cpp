// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/commands/handlers.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t kModulusSize = 256;
constexpr size_t kExponentSize = 3;

RsaPublicKey public_key(Reader fields) {
    RsaPublicKey key;
    fields.n("OPN_OPMODE", 1, {0, 0});
    fields.n("OPN_MODLEN", 3, {kModulusSize, kModulusSize});
    key.modulus = fields.h("OPN_MOD", 2 * kModulusSize);
    fields.n("OPN_EXPLEN", 1, {kExponentSize, kExponentSize});
    key.exponent = fields.h("OPN_EXP", 2 * kExponentSize);
    fields.end();
    if (key.modulus.front() < 0x80) { throw LayoutError("OPN: OPN_MOD: less than 2048 bits"); }
    for (const Bytes* number : {&key.modulus, &key.exponent}) {
        if (number->back() % 2 == 0) { throw LayoutError("OPN: an even number in the public key"); }
    }
    return key;
}

}  // namespace

// With data it asks for an encrypted session. Without, one that is open goes on.
Answer opn(Call& call) {
    if (call.request.left() == 0) { return {}; }
    const Reader fields = only_block(call);
    return Answer::of(
        Writer().n(kModulusSize, 3).h(call.channel.open(public_key(fields), call.device.random), 2 * kModulusSize));
}

}  // namespace quorvel::sim::commands
