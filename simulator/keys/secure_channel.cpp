// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/keys/secure_channel.h"

#include <algorithm>
#include <fmt/format.h>
#include <memory>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <string_view>

#include "simulator/keys/rsa.h"
#include "wire/crc.h"
#include "wire/fields.h"

namespace quorvel::sim {

namespace {

constexpr size_t kCipherBlock = 16;
// DATALEN and DATACRC.
constexpr size_t kHeadSize = 2 + 2;

using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)>;

void require(bool done, std::string_view call) {
    if (!done) { throw std::runtime_error(fmt::format("libcrypto: {} failed", call)); }
}

void wipe(std::optional<SessionKey>& key) noexcept {
    if (key) { OPENSSL_cleanse(key->data(), key->size()); }
    key.reset();
}

// Every frame begins with the same initialisation vector, all zeros.
Bytes aes_cbc(ByteView bytes, const SessionKey& key, bool encipher) {
    static constexpr std::array<uint8_t, kCipherBlock> kVector{};
    const CipherContext context(EVP_CIPHER_CTX_new(), EVP_CIPHER_CTX_free);
    Bytes result(bytes.size());
    int length = 0;
    require(
        EVP_CipherInit_ex(context.get(), EVP_aes_128_cbc(), nullptr, key.data(), kVector.data(), encipher ? 1 : 0) == 1,
        "EVP_CipherInit_ex");
    require(EVP_CIPHER_CTX_set_padding(context.get(), 0) == 1, "EVP_CIPHER_CTX_set_padding");
    require(EVP_CipherUpdate(context.get(), result.data(), &length, bytes.data(), static_cast<int>(bytes.size())) == 1,
            "EVP_CipherUpdate");
    return result;
}

// A length that is a multiple already gets a whole block more.
size_t padding_of(size_t packetSize) { return kCipherBlock - (kHeadSize + packetSize) % kCipherBlock; }

}  // namespace

SecureChannel::~SecureChannel() {
    wipe(key_);
    wipe(fixedKey_);
}

Bytes SecureChannel::open(const RsaPublicKey& hostKey, Random& random) {
    close();
    key_ = fixedKey_ ? *fixedKey_ : SessionKey{};
    if (!fixedKey_) {
        Bytes drawn = random.bytes(key_->size());
        std::ranges::copy(drawn, key_->begin());
        OPENSSL_cleanse(drawn.data(), drawn.size());
    }
    return rsa_padded(hostKey, *key_, random);
}

void SecureChannel::close() noexcept { wipe(key_); }

Bytes SecureChannel::seal(ByteView packet) const {
    Writer content;
    content.x(static_cast<uint32_t>(packet.size()), 2).x(crc16(packet), 2).b(packet);
    content.b(Bytes(padding_of(packet.size())));
    return aes_cbc(content.bytes(), key_.value(), true);
}

Bytes SecureChannel::unseal(ByteView content) const {
    if (content.empty() || content.size() % kCipherBlock != 0) {
        throw SealError(fmt::format("{} bytes are no whole blocks", content.size()));
    }
    const Bytes plain = aes_cbc(content, key_.value(), false);
    Reader reader("content", plain);
    const size_t length = reader.x("DATALEN", 2);
    const uint32_t crc = reader.x("DATACRC", 2);
    if (length > reader.left()) {
        throw SealError(fmt::format("DATALEN is {}, {} bytes are there", length, reader.left()));
    }
    Bytes packet = reader.b("data", length);
    const Bytes padding = reader.b("padding", reader.left());
    if (crc16(packet) != crc) {
        throw SealError(fmt::format("bad DATACRC: 0x{:04X} received, 0x{:04X} due", crc, crc16(packet)));
    }
    if (padding.size() != padding_of(length)) {
        throw SealError(fmt::format("{} bytes of padding, {} due", padding.size(), padding_of(length)));
    }
    if (std::ranges::any_of(padding, [](uint8_t byte) { return byte != 0; })) {
        throw SealError("a byte of the padding is not zero");
    }
    return packet;
}

}  // namespace quorvel::sim
