// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_WEB_PAGE_FILE_H
#define QUORVEL_SIMULATOR_WEB_PAGE_FILE_H

#include <span>
#include <string_view>

namespace quorvel::sim::web {

// A file of the page, which stands in the program.
struct PageFile {
    std::string_view name;
    std::string_view content;

    [[nodiscard]] std::string_view type() const noexcept;
};

[[nodiscard]] std::span<const PageFile> page_files() noexcept;

}  // namespace quorvel::sim::web

#endif
