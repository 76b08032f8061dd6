// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/device/media.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

#include "wire/crc.h"

namespace quorvel::sim {

namespace {

constexpr bool is_lower(char c) { return c >= 'a' && c <= 'z'; }

std::string valid(std::string name) {
    if (name.empty()) { throw LayoutError("SPE_MFNAME: no name"); }
    if (std::ranges::any_of(name, is_lower)) { throw LayoutError("SPE_MFNAME: a small letter"); }
    return name;
}

}  // namespace

void Media::store(const std::string& name, File file) { files_.insert_or_assign(name, std::move(file)); }

void Media::begin(Announcement announcement) { load_ = Load{.announcement = std::move(announcement)}; }

void Media::add(ByteView block) {
    const Announcement& due = load_->announcement;
    const size_t size = load_->bytes.size() + block.size();
    if (size > due.size) {
        throw LayoutError(fmt::format("MLR: {} bytes of {}, which has {}", size, due.name, due.size), Status::kMferr);
    }
    append(load_->bytes, block);
}

void Media::end() {
    const auto [due, bytes] = *std::exchange(load_, std::nullopt);
    if (bytes.size() != due.size) {
        throw LayoutError(fmt::format("MLE: {} bytes of {}, which has {}", bytes.size(), due.name, due.size),
                          Status::kMferr);
    }
    if (const uint16_t crc = crc16(bytes); crc != due.crc) {
        throw LayoutError(fmt::format("MLE: {} has the CRC 0x{:04X}, 0x{:04X} was announced", due.name, crc, due.crc),
                          Status::kMferr);
    }
    store(due.name, {due.type, bytes});
}

std::string media_name(Reader& value) { return valid(value.a("text", kMediaNameWidth)); }

std::string media_name_in_s(Reader& value) { return valid(value.s("text", kMediaNameWidth)); }

}  // namespace quorvel::sim
