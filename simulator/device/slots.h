// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_DEVICE_SLOTS_H
#define QUORVEL_SIMULATOR_DEVICE_SLOTS_H

#include "simulator/device/device.h"
#include "wire/status.h"

namespace quorvel::sim {

// Slot 0 is the chip reader, the others hold security modules.
[[nodiscard]] inline Chip* chip_in(Device& device, int slot) {
    if (slot == 0) { return device.chip && device.chip->chip ? &*device.chip->chip : nullptr; }
    const auto found = device.modules.find(slot);
    return found != device.modules.end() ? &found->second : nullptr;
}

[[nodiscard]] inline Status absence(int slot) { return slot == 0 ? Status::kNocard : Status::kNosam; }

}  // namespace quorvel::sim

#endif
