// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/device.h"

#include <fmt/format.h>

namespace quorvel::sim {

AcquirerInfo Device::acquirer(int index) const {
    const auto found = acquirers.find(index);
    if (found != acquirers.end()) return found->second;
    return {.texts = {fmt::format("ACQUIRER {:02}", index), "001.00 260101", "0001", "A00"}, .number = 0};
}

Device Device::standard() {
    Device device;
    for (KeyDirectory::Slots* slots :
         {&device.keys.desPin, &device.keys.desData, &device.keys.tdesPin, &device.keys.tdesData}) {
        slots->set(0).set(1);
    }
    device.keys.dukptDesPin[0] = {0xFF, 0xFF, 0x98, 0x76, 0x54, 0x32, 0x10, 0xE0, 0x00, 0x00};
    device.keys.dukptTdesPin[0] = {0xFF, 0xFF, 0x98, 0x76, 0x54, 0x32, 0x10, 0xE0, 0x00, 0x00};
    device.keys.dukptTdesData[0] = {0xFF, 0xFF, 0x98, 0x76, 0x54, 0x32, 0x10, 0xE0, 0x00, 0x00};
    return device;
}

}  // namespace quorvel::sim
