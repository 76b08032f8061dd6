// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/commands/data_cipher.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

#include "simulator/commands/command.h"
#include "simulator/keys/block_cipher.h"
#include "simulator/keys/rsa.h"
#include "wire/param_id.h"

namespace quorvel::sim {

namespace {

using enum KeySource;
using enum KeyStrength;

constexpr std::array kMethods{
    DataMethod{0, kWorkingKey, kDes, false},   DataMethod{1, kWorkingKey, kDes, true},
    DataMethod{10, kWorkingKey, kTdes, false}, DataMethod{11, kWorkingKey, kTdes, true},
    DataMethod{30, kDukptKey, kDes, false},    DataMethod{50, kDukptKey, kTdes, false},
    DataMethod{51, kDukptKey, kTdes, true},    DataMethod{90, kRandomKey, kTdes, false},
    DataMethod{91, kRandomKey, kTdes, true},
};

constexpr std::array kIds{spe::kMthdDat, spe::kKeyIdx, spe::kWkEnc, spe::kIvCbc, spe::kPbkMod, spe::kPbkExp};

constexpr size_t kModulusSize = 256;
constexpr size_t kMaxExponent = 3;
constexpr uint8_t kHighBit = 0x80;

constexpr size_t key_size(KeyStrength strength) { return strength == kDes ? kBlockSize : 2 * kBlockSize; }

uint64_t number(uint16_t id, const Bytes& value) {
    Reader reader(param_name(id), value);
    const uint64_t number = reader.n("value", 2);
    reader.end();
    return number;
}

const DataMethod& method_of(const Bytes& value) {
    const uint64_t wanted = number(spe::kMthdDat, value);
    const auto* found = std::ranges::find(kMethods, wanted, &DataMethod::number);
    if (found == kMethods.end()) { throw LayoutError(fmt::format("SPE_MTHDDAT: there is no method {:02}", wanted)); }
    return *found;
}

}  // namespace

bool DataCipher::take(const Param& param) {
    if (std::ranges::find(kIds, param.id) == kIds.end()) { return false; }
    if (!given_.try_emplace(param.id, param.data).second) { throw out_of_place(command_, param.id); }
    return true;
}

bool DataCipher::fits(uint16_t id) const {
    if (method_ == nullptr) { return false; }
    return needs(id) || (id == spe::kIvCbc && method_->chained);
}

bool DataCipher::needs(uint16_t id) const {
    if (method_ == nullptr) { return false; }
    switch (id) {
        case spe::kMthdDat:
            return true;
        case spe::kKeyIdx:
            return method_->source != kRandomKey;
        case spe::kWkEnc:
            return method_->source == kWorkingKey;
        case spe::kPbkMod:
        case spe::kPbkExp:
            return method_->source == kRandomKey;
        default:
            return false;
    }
}

void DataCipher::require_size(uint16_t id, size_t smallest, size_t largest) const {
    const auto found = given_.find(id);
    if (found == given_.end()) { return; }
    const size_t size = found->second.size();
    if (size < smallest || size > largest) { throw LayoutError(fmt::format("{}: {} bytes", param_name(id), size)); }
}

void DataCipher::settle(Random& random) {
    if (const auto found = given_.find(spe::kMthdDat); found != given_.end()) { method_ = &method_of(found->second); }
    for (const uint16_t id : kIds) {
        if (given_.contains(id) && !fits(id)) { throw out_of_place(command_, id); }
        if (!given_.contains(id) && needs(id)) {
            throw LayoutError(fmt::format("{}: {} is missing", command_, param_name(id)), Status::kMandat);
        }
    }
    if (method_ == nullptr) { return; }
    require_size(spe::kWkEnc, key_size(method_->strength), key_size(method_->strength));
    require_size(spe::kIvCbc, kBlockSize, kBlockSize);
    require_size(spe::kPbkMod, kModulusSize, kModulusSize);
    require_size(spe::kPbkExp, 1, kMaxExponent);
    if (method_->source != kRandomKey) {
        keyIndex_ = static_cast<int>(number(spe::kKeyIdx, given_.at(spe::kKeyIdx)));
        return;
    }
    if (given_.at(spe::kPbkMod).front() < kHighBit) { throw LayoutError("SPE_PBKMOD: less than 2048 bits"); }
    randomKey_ = random.bytes(key_size(method_->strength));
}

std::optional<Enciphered> DataCipher::key(KeyStore& keys) const {
    if (method_->source == kRandomKey) { return Enciphered{randomKey_}; }
    if (method_->source == kWorkingKey) {
        const auto key = keys.working(method_->strength, KeyUse::kData, keyIndex_, given_.at(spe::kWkEnc));
        return key ? std::optional(Enciphered{*key}) : std::nullopt;
    }
    const auto key = keys.next_dukpt(method_->strength, KeyUse::kData, keyIndex_);
    if (!key) { return std::nullopt; }
    return Enciphered{key->key, Bytes(key->ksn.begin(), key->ksn.end())};
}

// Without a vector of the host's a chain begins with zeros.
std::optional<Enciphered> DataCipher::encipher(KeyStore& keys, ByteView blocks) const {
    const auto with = key(keys);
    if (!with) { return std::nullopt; }
    const auto given = given_.find(spe::kIvCbc);
    const Bytes vector = given != given_.end() ? given->second : Bytes(kBlockSize);
    return Enciphered{
        method_->chained ? sim::encipher(with->bytes, blocks, vector) : sim::encipher(with->bytes, blocks), with->ksn};
}

Bytes DataCipher::enciphered_random_key(Random& random) const {
    return rsa_padded({given_.at(spe::kPbkMod), given_.at(spe::kPbkExp)}, randomKey_, random);
}

}  // namespace quorvel::sim
