// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <fmt/format.h>
#include <string>
#include <utility>

#include "simulator/commands/handlers.h"
#include "simulator/commands/params.h"
#include "wire/param_id.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t kReservedSize = 3;

Media::Announcement announcement(Reader& info) {
    Media::Announcement announcement;
    announcement.size = info.x("size", 4);
    announcement.crc = static_cast<uint16_t>(info.x("CRC", 2));
    announcement.type = static_cast<uint8_t>(info.x("type", 1));
    info.x("reserved", kReservedSize, {0, 0});
    return announcement;
}

// The digits of PP_MFSUP stand for the types from 1 on.
bool is_supported(const Identity& identity, uint8_t type) {
    return type >= 1 && type <= identity.mediaSupport.size() && identity.mediaSupport[type - 1U] == '1';
}

}  // namespace

Answer mli(Call& call) {
    const Params params("MLI", call.request, {spe::kMfName, spe::kMfInfo});
    std::string name = params.get(spe::kMfName, media_name);
    Media::Announcement file = params.get(spe::kMfInfo, announcement);
    file.name = std::move(name);
    if (!is_supported(call.device.identity, file.type)) {
        call.journal.record(
            Finding{Finding::Kind::kUnsupported, fmt::format("MLI: there are no files of type {}", file.type)});
        return {.status = Status::kMferrfmt, .blocks = {}};
    }
    call.device.media.begin(std::move(file));
    return {};
}

Answer mlr(Call& call) {
    if (auto unfit = unless_begun(call, call.device.media, "MLR")) { return *std::move(unfit); }
    const Params params("MLR", call.request, {spe::kDataIn});
    const Bytes block = params.get(spe::kDataIn, [](Reader& data) { return data.b("data", data.left()); });
    if (block.empty()) { throw LayoutError("MLR: no data"); }
    call.device.media.add(block);
    return {};
}

Answer mle(Call& call) { return end_load(call, call.device.media, "MLE"); }

}  // namespace quorvel::sim::commands
