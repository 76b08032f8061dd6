// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <optional>

#include "simulator/commands/handlers.h"
#include "simulator/keys/rsa.h"
#include "wire/param_id.h"

namespace quorvel::sim::commands {

namespace {

using enum KeyStrength;
using enum KeyUse;

constexpr size_t bigRandSize = 900;

struct Item {
    uint16_t id;
    std::string (*text)(const Device& device);
};

template <std::string Identity::*member>
constexpr auto identity = [](const Device& device) { return device.identity.*member; };

template <KeyStrength strength, KeyUse use>
constexpr auto masters = [](const Device& device) { return device.keys.master_map(strength, use); };

template <KeyStrength strength, KeyUse use>
constexpr auto dukpts = [](const Device& device) { return device.keys.dukpt_map(strength, use); };

constexpr std::array items{
    Item{0x8001, identity<&Identity::serialNumber>},
    Item{0x8002, identity<&Identity::partNumber>},
    Item{0x8003, identity<&Identity::model>},
    Item{0x8004, identity<&Identity::manufacturer>},
    Item{0x8005, identity<&Identity::capabilities>},
    Item{0x8006, identity<&Identity::osVersion>},
    Item{0x8007, identity<&Identity::specVersion>},
    Item{0x8008, identity<&Identity::manufacturerVersion>},
    Item{0x8009, identity<&Identity::applicationVersion>},
    Item{0x800A, identity<&Identity::genericVersion>},
    Item{0x8010, identity<&Identity::kernelVersion>},
    Item{0x8011, identity<&Identity::contactlessVersion>},
    Item{0x8012, identity<&Identity::mastercardVersion>},
    Item{0x8013, identity<&Identity::visaVersion>},
    Item{0x8014, identity<&Identity::amexVersion>},
    Item{0x8015, identity<&Identity::discoverVersion>},
    Item{0x8016, identity<&Identity::pureVersion>},
    Item{0x8020, identity<&Identity::textSize>},
    Item{0x8021, identity<&Identity::graphicSize>},
    Item{0x8022, identity<&Identity::mediaSupport>},
    Item{0x8030, masters<kDes, kPin>},
    Item{0x8031, masters<kDes, kData>},
    Item{0x8032, masters<kTdes, kPin>},
    Item{0x8033, masters<kTdes, kData>},
    Item{0x8034, dukpts<kDes, kPin>},
    Item{0x8035, dukpts<kTdes, kPin>},
    Item{0x8036, dukpts<kTdes, kData>},
};
static_assert(std::ranges::is_sorted(items, {}, &Item::id));

std::optional<Bytes> ksn(const KeyStore& keys, KeyStrength strength, KeyUse use, int index) {
    const auto found = keys.ksn(strength, use, index);
    if (!found) return std::nullopt;
    return Bytes(found->begin(), found->end());
}

std::optional<Bytes> family_item(const Device& device, int family, int index) {
    switch (family) {
        case pp::ksnDesPin:
            return ksn(device.keys, kDes, kPin, index);
        case pp::ksnTdesPin:
            return ksn(device.keys, kTdes, kPin, index);
        case pp::ksnTdesData:
            return ksn(device.keys, kTdes, kData, index);
        case pp::tabVer:
            break;
        default:
            return std::nullopt;
    }
    const std::optional<std::string> version = device.tables.version(index);
    if (!version) return std::nullopt;
    return Writer().a(*version, 10).bytes();
}

// None for what the PIN pad does not have.
std::optional<Bytes> item(const Device& device, uint16_t id) {
    const auto* found = std::ranges::lower_bound(items, id, {}, &Item::id);
    if (found != items.end() && found->id == id) return to_bytes(found->text(device));
    if (id == pp::bigRand) return random_bytes(bigRandSize);
    if (id == pp::tlrMem) return Writer().x(device.tableMemory, 4).bytes();
    return family_item(device, id & 0xFF00, id & 0x00FF);
}

bool exists(uint16_t id) {
    if (std::ranges::binary_search(items, id, {}, &Item::id) || id == pp::bigRand || id == pp::tlrMem) return true;
    return id >= pp::ksnDesPin && (id & 0xFF00) <= pp::tabVer && (id & 0x00FF) < pp::familySize;
}

std::vector<uint16_t> requested(Reader& request) {
    std::vector<uint16_t> ids;
    for (const Param& param : request.params()) {
        if (param.id != spe::idList || !ids.empty()) throw out_of_place("GIX", param.id);
        Reader list("SPE_IDLIST", param.data);
        if (list.left() == 0) throw LayoutError("SPE_IDLIST: no id");
        while (list.left() != 0) ids.push_back(static_cast<uint16_t>(list.x("id", 2)));
    }
    return ids;
}

}  // namespace

// An item that the PIN pad does not have is left out of the answer. No list asks for all that describes the device.
Answer gix(Call& call) {
    std::vector<uint16_t> ids = requested(call.request);
    if (ids.empty()) std::ranges::transform(items, std::back_inserter(ids), &Item::id);
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
