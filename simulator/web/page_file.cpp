// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/web/page_file.h"

#include <array>
#include <utility>

namespace quorvel::sim::web {

namespace {

constexpr PageFile kFiles[]{
#include "page.inc"
};

constexpr std::array<std::pair<std::string_view, std::string_view>, 4> kTypes{
    {{".html", "text/html; charset=utf-8"},
     {".css", "text/css; charset=utf-8"},
     {".js", "text/javascript; charset=utf-8"},
     {".svg", "image/svg+xml"}}};

}  // namespace

std::string_view PageFile::type() const noexcept {
    for (const auto& [end, type] : kTypes) {
        if (name.ends_with(end)) { return type; }
    }
    return "application/octet-stream";
}

std::span<const PageFile> page_files() noexcept { return kFiles; }

}  // namespace quorvel::sim::web
