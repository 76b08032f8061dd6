// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <fmt/format.h>
#include <optional>

#include "simulator/commands/data_cipher.h"
#include "simulator/commands/handlers.h"
#include "simulator/keys/block_cipher.h"
#include "wire/param_id.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t kMaxData = 256;

LayoutError missing(std::string_view what) {
    return LayoutError(fmt::format("EBX: {} is missing", what), Status::kMandat);
}

void require_whole_blocks(const std::optional<Bytes>& data) {
    if (!data) { throw missing("SPE_DATAIN"); }
    if (data->empty() || data->size() > kMaxData || data->size() % kBlockSize != 0) {
        throw LayoutError(fmt::format("SPE_DATAIN: {} bytes", data->size()));
    }
}

void require_key_of_its_own(const DataMethod* method) {
    if (method == nullptr) { throw missing("SPE_MTHDDAT"); }
    if (method->source == KeySource::kRandomKey) {
        throw LayoutError(fmt::format("EBX: SPE_MTHDDAT {} has no place in it", method->number));
    }
}

}  // namespace

Answer ebx(Call& call) {
    DataCipher cipher("EBX");
    std::optional<Bytes> data;
    for (const Param& param : call.request.params()) {
        if (cipher.take(param)) { continue; }
        if (param.id != spe::kDataIn || data) { throw out_of_place("EBX", param.id); }
        data = param.data;
    }
    cipher.settle(call.device.random);
    require_key_of_its_own(cipher.method());
    require_whole_blocks(data);
    const auto enciphered = cipher.encipher(call.device.keys, *data);
    if (!enciphered) { return {.status = Status::kErrkey, .blocks = {}}; }
    std::vector<Param> answer{{pp::kDataOut, enciphered->bytes}};
    if (enciphered->ksn) { answer.push_back({pp::kKsn, *enciphered->ksn}); }
    return Answer::of(answer);
}

}  // namespace quorvel::sim::commands
