// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <optional>

#include "simulator/commands/handlers.h"
#include "wire/param_id.h"

namespace quorvel::sim::commands {

namespace {

using enum KeyStrength;
using enum KeyUse;

constexpr size_t kBigRandSize = 900;

struct Item {
    uint16_t id;
    std::string (*text)(const Device& device);
};

template <std::string Identity::*member>
constexpr auto kIdentity = [](const Device& device) { return device.identity.*member; };

template <KeyStrength strength, KeyUse use>
constexpr auto kMasters = [](const Device& device) { return device.keys.master_map(strength, use); };

template <KeyStrength strength, KeyUse use>
constexpr auto kDukpts = [](const Device& device) { return device.keys.dukpt_map(strength, use); };

constexpr std::array kItems{
    Item{0x8001, kIdentity<&Identity::serialNumber>},
    Item{0x8002, kIdentity<&Identity::partNumber>},
    Item{0x8003, kIdentity<&Identity::model>},
    Item{0x8004, kIdentity<&Identity::manufacturer>},
    Item{0x8005, kIdentity<&Identity::capabilities>},
    Item{0x8006, kIdentity<&Identity::osVersion>},
    Item{0x8007, kIdentity<&Identity::specVersion>},
    Item{0x8008, kIdentity<&Identity::manufacturerVersion>},
    Item{0x8009, kIdentity<&Identity::applicationVersion>},
    Item{0x800A, kIdentity<&Identity::genericVersion>},
    Item{0x8010, kIdentity<&Identity::kernelVersion>},
    Item{0x8011, kIdentity<&Identity::contactlessVersion>},
    Item{0x8012, kIdentity<&Identity::mastercardVersion>},
    Item{0x8013, kIdentity<&Identity::visaVersion>},
    Item{0x8014, kIdentity<&Identity::amexVersion>},
    Item{0x8015, kIdentity<&Identity::discoverVersion>},
    Item{0x8016, kIdentity<&Identity::pureVersion>},
    Item{0x8020, kIdentity<&Identity::textSize>},
    Item{0x8021, kIdentity<&Identity::graphicSize>},
    Item{0x8022, kIdentity<&Identity::mediaSupport>},
    Item{0x8030, kMasters<kDes, kPin>},
    Item{0x8031, kMasters<kDes, kData>},
    Item{0x8032, kMasters<kTdes, kPin>},
    Item{0x8033, kMasters<kTdes, kData>},
    Item{0x8034, kDukpts<kDes, kPin>},
    Item{0x8035, kDukpts<kTdes, kPin>},
    Item{0x8036, kDukpts<kTdes, kData>},
};
static_assert(std::ranges::is_sorted(kItems, {}, &Item::id));

std::optional<Bytes> ksn(const KeyStore& keys, KeyStrength strength, KeyUse use, int index) {
    const auto found = keys.ksn(strength, use, index);
    if (!found) { return std::nullopt; }
    return Bytes(found->begin(), found->end());
}

std::optional<Bytes> family_item(const Device& device, int family, int index) {
    switch (family) {
        case pp::kKsnDesPin:
            return ksn(device.keys, kDes, kPin, index);
        case pp::kKsnTdesPin:
            return ksn(device.keys, kTdes, kPin, index);
        case pp::kKsnTdesData:
            return ksn(device.keys, kTdes, kData, index);
        case pp::kTabVer:
            break;
        default:
            return std::nullopt;
    }
    const std::optional<std::string> version = device.tables.version(index);
    if (!version) { return std::nullopt; }
    return Writer().a(*version, 10).bytes();
}

// None for what the PIN pad does not have.
std::optional<Bytes> item(Device& device, uint16_t id) {
    const auto* found = std::ranges::lower_bound(kItems, id, {}, &Item::id);
    if (found != kItems.end() && found->id == id) { return to_bytes(found->text(device)); }
    if (id == pp::kBigRand) { return device.random.bytes(kBigRandSize); }
    if (id == pp::kTlrMem) { return Writer().x(device.tableMemory, 4).bytes(); }
    return family_item(device, id & 0xFF00, id & 0x00FF);
}

bool exists(uint16_t id) {
    if (std::ranges::binary_search(kItems, id, {}, &Item::id) || id == pp::kBigRand || id == pp::kTlrMem) {
        return true;
    }
    return id >= pp::kKsnDesPin && (id & 0xFF00) <= pp::kTabVer && (id & 0x00FF) < pp::kFamilySize;
}

std::vector<uint16_t> requested(Reader& request) {
    std::vector<uint16_t> ids;
    for (const Param& param : request.params()) {
        if (param.id != spe::kIdList || !ids.empty()) { throw out_of_place("GIX", param.id); }
        Reader list("SPE_IDLIST", param.data);
        if (list.left() == 0) { throw LayoutError("SPE_IDLIST: no id"); }
        while (list.left() != 0) { ids.push_back(static_cast<uint16_t>(list.x("id", 2))); }
    }
    return ids;
}

}  // namespace

// An item that the PIN pad does not have is left out of the answer. No list asks for all that describes the device.
Answer gix(Call& call) {
    std::vector<uint16_t> ids = requested(call.request);
    if (ids.empty()) { std::ranges::transform(kItems, std::back_inserter(ids), &Item::id); }
    std::vector<Param> found;
    for (const uint16_t id : ids) {
        if (!exists(id)) {
            call.journal.record(
                Finding{Finding::Kind::kUnsupported, fmt::format("GIX: there is no item 0x{:04X}", id)});
        } else if (std::optional<Bytes> value = item(call.device, id)) {
            found.push_back({id, *std::move(value)});
        }
    }
    return Answer::of(found);
}

}  // namespace quorvel::sim::commands
