// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/device.h"

#include <fmt/format.h>
#include <openssl/crypto.h>

namespace quorvel::sim {

AcquirerInfo Device::acquirer(int index) const {
    const auto found = acquirers.find(index);
    if (found != acquirers.end()) return found->second;
    return {.texts = {fmt::format("ACQUIRER {:02}", index), "001.00 260101", "0001", "A00"}, .number = 0};
}

void Device::drop_pan_key() {
    if (panKey) OPENSSL_cleanse(panKey->data(), panKey->size());
    panKey.reset();
}

Device Device::standard() {
    Device device;
    device.keys = KeyStore::standard();
    return device;
}

}  // namespace quorvel::sim
