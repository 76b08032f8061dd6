// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>

#include "simulator/commands/handlers.h"
#include "simulator/keys/block_cipher.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t kWkEncDigits = 32;

struct Request {
    KeyStrength strength = KeyStrength::kDes;
    int index = 0;
    Bytes workingKey;
    Bytes data;
};

// A field for 16 bytes holds either a pair of which DES uses the first half, or 8 bytes behind padding.
Bytes des_key(const Bytes& field) {
    const ByteView first = ByteView(field).first(kBlockSize);
    const bool padded = std::ranges::all_of(first, [](uint8_t byte) { return byte == '0'; });
    const ByteView key = padded ? ByteView(field).last(kBlockSize) : first;
    return {key.begin(), key.end()};
}

Request read(Reader fields) {
    Request request;
    request.strength = fields.n("ENB_METHOD", 1, {0, 1}) == 0 ? KeyStrength::kDes : KeyStrength::kTdes;
    request.index = static_cast<int>(fields.n("ENB_KEYIDX", 2));
    request.workingKey = fields.h("ENB_WKENC", kWkEncDigits);
    if (request.strength == KeyStrength::kDes) { request.workingKey = des_key(request.workingKey); }
    request.data = fields.h("ENB_DATA", 2 * kBlockSize);
    fields.end();
    return request;
}

}  // namespace

// Once a PAN working key is loaded the host sends the data deciphered under it: that comes off first.
Answer enb(Call& call) {
    const Reader fields = only_block(call);
    const Request request = read(fields);
    const auto key = call.device.keys.working(request.strength, KeyUse::kData, request.index, request.workingKey);
    if (!key) { return {.status = Status::kErrkey, .blocks = {}}; }
    const auto& panKey = call.device.panKey;
    const Bytes clear = panKey ? encipher(*panKey, request.data) : request.data;
    return Answer::of(Writer().h(encipher(*key, clear), 2 * kBlockSize));
}

}  // namespace quorvel::sim::commands
