// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <fmt/format.h>
#include <initializer_list>
#include <map>
#include <utility>
#include <vector>

#include "simulator/commands/handlers.h"
#include "wire/param_id.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t reservedSize = 3;

// Parameters that all must be there, once each.
std::map<uint16_t, Param> take(Reader& request, std::string_view command, std::initializer_list<uint16_t> ids) {
    std::map<uint16_t, Param> taken;
    for (Param& param : request.params()) {
        const uint16_t id = param.id;
        const bool due = std::ranges::find(ids, id) != ids.end();
        if (!due || !taken.try_emplace(id, std::move(param)).second) throw out_of_place(command, id);
    }
    for (const uint16_t id : ids) {
        if (!taken.contains(id)) throw LayoutError(fmt::format("{}: no {}", command, param_name(id)), Status::mandat);
    }
    return taken;
}

Media::Announcement announcement(std::string name, const Param& info) {
    Reader fields("SPE_MFINFO", info.data);
    Media::Announcement announcement{.name = std::move(name)};
    announcement.size = fields.x("size", 4);
    announcement.crc = static_cast<uint16_t>(fields.x("CRC", 2));
    announcement.type = static_cast<uint8_t>(fields.x("type", 1));
    fields.x("reserved", reservedSize, {0, 0});
    fields.end();
    return announcement;
}

// The digits of PP_MFSUP stand for the types from 1 on.
bool is_supported(const Identity& identity, uint8_t type) {
    return type >= 1 && type <= identity.mediaSupport.size() && identity.mediaSupport[type - 1U] == '1';
}

}  // namespace

Answer mli(Call& call) {
    const auto params = take(call.request, "MLI", {spe::mfName, spe::mfInfo});
    Media::Announcement file = announcement(media_name(params.at(spe::mfName), &Reader::a), params.at(spe::mfInfo));
    if (!is_supported(call.device.identity, file.type)) {
        call.journal.record(
            Finding{Finding::Kind::unsupported, fmt::format("MLI: there are no files of type {}", file.type)});
        return {.status = Status::mferrfmt, .blocks = {}};
    }
    call.device.media.begin(std::move(file));
    return {};
}

Answer mlr(Call& call) {
    if (!call.device.media.loading()) return out_of_sequence(call, "MLR: no load was begun");
    const auto params = take(call.request, "MLR", {spe::dataIn});
    const Bytes& block = params.at(spe::dataIn).data;
    if (block.empty()) throw LayoutError("MLR: no data");
    call.device.media.add(block);
    return {};
}

Answer mle(Call& call) {
    if (!call.device.media.loading()) return out_of_sequence(call, "MLE: no load was begun");
    call.request.end();
    call.device.media.end();
    return {};
}

Answer lmf(Call& call) {
    call.request.end();
    std::vector<Param> names;
    for (const auto& [name, file] : call.device.media.files()) {
        names.push_back({pp::mfName, Writer().a(name, mediaNameWidth).bytes()});
    }
    return Answer::of(names);
}

// Deletes none of them when one is not there.
Answer dmf(Call& call) {
    std::vector<std::string> names;
    for (const Param& param : call.request.params()) {
        if (param.id != spe::mfName) throw out_of_place("DMF", param.id);
        names.push_back(media_name(param, &Reader::s));
    }
    if (names.empty()) throw LayoutError("DMF: no SPE_MFNAME", Status::mandat);
    Media& media = call.device.media;
    if (!std::ranges::all_of(names, [&](const std::string& name) { return media.has(name); })) {
        return {.status = Status::mfnfound, .blocks = {}};
    }
    for (const std::string& name : names) media.remove(name);
    return {};
}

Answer dsi(Call& call) {
    const auto params = take(call.request, "DSI", {spe::mfName});
    std::string name = media_name(params.at(spe::mfName), &Reader::a);
    if (!call.device.media.has(name)) return {.status = Status::mfnfound, .blocks = {}};
    call.screen.show({.media = std::move(name)});
    return {};
}

}  // namespace quorvel::sim::commands
