// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/line/port_link.h"

#include <fmt/format.h>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace quorvel::sim {

namespace fs = std::filesystem;

namespace {

bool is_ours(const fs::path& link, const fs::path& device) {
    std::error_code error;
    return fs::read_symlink(link, error) == device;
}

void clear_way(const fs::path& link, const fs::path& device) {
    const fs::file_status status = fs::symlink_status(link);
    if (!fs::exists(status)) { return; }
    if (!fs::is_symlink(status)) { throw std::runtime_error(fmt::format("{} is there and no link", link.string())); }
    // The number of a terminal that is gone is given again, so an old link may well name the new device.
    if (!is_ours(link, device) && fs::exists(link)) {
        throw std::runtime_error(
            fmt::format("{} leads to {}, which is there", link.string(), fs::read_symlink(link).string()));
    }
    fs::remove(link);
}

}  // namespace

PortLink::PortLink(fs::path link, fs::path device) : link_(std::move(link)), device_(std::move(device)) {
    clear_way(link_, device_);
    fs::create_symlink(device_, link_);
}

PortLink::~PortLink() {
    std::error_code ignored;
    if (is_ours(link_, device_)) { fs::remove(link_, ignored); }
}

}  // namespace quorvel::sim
