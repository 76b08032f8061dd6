// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cli/command.h"
#include "cli/link.h"
#include "wire/crc.h"

namespace quorvel::cli::setup {

namespace {

namespace fs = std::filesystem;

constexpr size_t kNameWidth = 8;

// What a file of each type begins with.
struct MediaType {
    std::string_view name;
    std::string_view title;
    uint8_t number;
    std::string_view signature;
};

constexpr std::array kTypes{
    MediaType{"png", "PNG", 1, "\x89PNG\r\n\x1A\n"},
    MediaType{"jpg", "JPEG", 2, "\xFF\xD8\xFF"},
    MediaType{"jpeg", "JPEG", 2, "\xFF\xD8\xFF"},
    MediaType{"gif", "GIF", 3, "GIF8"},
};

std::string lower(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

struct PutOptions {
    std::string file;
    std::string name;
    std::string type;
};

std::string media_name(const PutOptions& options) {
    std::string name = options.name.empty() ? fs::path(options.file).stem().string() : options.name;
    if (name.empty() || name.size() > kNameWidth) {
        throw Error(Exit::kUsage, fmt::format("'{}' has no 1 to 8 characters.", name),
                    "Give the file a name with --name.");
    }
    std::ranges::transform(name, name.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return name;
}

std::vector<uint8_t> contents(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (!in || in.bad()) { throw Error(Exit::kUsage, fmt::format("{} cannot be read.", path)); }
    if (bytes.empty()) { throw Error(Exit::kUsage, fmt::format("{} is empty.", path)); }
    return bytes;
}

// The one that is named, by the option or by the file's name, which the contents must not contradict.
uint8_t media_type(const PutOptions& options, const std::vector<uint8_t>& bytes) {
    const std::string suffix = lower(fs::path(options.file).extension().string());
    const std::string named = options.type.empty() && !suffix.empty() ? suffix.substr(1) : options.type;
    const auto* type = std::ranges::find(kTypes, std::string_view(named), &MediaType::name);
    if (type == kTypes.end()) {
        throw Error(Exit::kUsage, fmt::format("'{}' tells no format.", suffix), "Name it: --type png, jpg or gif");
    }
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (!text.starts_with(type->signature)) {
        throw Error(Exit::kUsage, fmt::format("{} is no {} image.", options.file, type->title),
                    "The PIN pad would refuse it, or show nothing. Convert it, or name its format with --type.");
    }
    return type->number;
}

Outcome run_put(Context& context, const PutOptions& options) {
    const std::vector<uint8_t> bytes = contents(options.file);
    const uint8_t type = media_type(options, bytes);
    const std::string name = media_name(options);
    const auto progress = [&](size_t done, size_t total) {
        interrupt::check();
        context.output.progress(name, done, total);
    };
    Link link(context.settings, context.output);
    context.output.progress(name, 0, bytes.size());
    Link::value_of(
        link.with_session("MLR", [&](Session& session) { return Media::put(session, name, type, bytes, progress); }));
    link.close();
    return {{{"Name", name}, {"Size", bytes.size()}, {"CRC", fmt::format("{:04X}", wire::crc16(bytes))}}};
}

Outcome run_list(Context& context) {
    Link link(context.settings, context.output);
    const std::vector<std::string> names = link.ask(Lmf{});
    link.close();
    Table table{{"Name"}};
    for (const std::string& name : names) { table.rows.push_back({name}); }
    return {{{"Files", table}}};
}

Outcome run_show(Context& context, const std::string& name) {
    Link link(context.settings, context.output);
    link.ask(Dsi{name});
    link.leave_image(name);
    link.close();
    return {{{"Shown", name}}};
}

Outcome run_delete(Context& context, const std::vector<std::string>& names) {
    Link link(context.settings, context.output);
    const std::vector<std::string_view> files(names.begin(), names.end());
    Table table{{"Name"}};
    for (const std::string& name : names) { table.rows.push_back({name}); }
    link.ask(Dmf{files});
    link.close();
    return {{{"Deleted", table}}};
}

}  // namespace

Run media_put(CommandLine& line) {
    const auto options = std::make_shared<PutOptions>();
    line.text("file", options->file, "FILE", "An image of a format that the PIN pad takes").required();
    line.text("--name", options->name, "NAME", "Its name in the PIN pad, else that of the file");
    line.word("--type", options->type, {"png", "jpg", "jpeg", "gif"}, "Its format, else what the file's name says");
    return [options](Context& context) { return run_put(context, *options); };
}

Run media_list(CommandLine&) { return run_list; }

Run media_show(CommandLine& line) {
    const auto name = std::make_shared<std::string>();
    line.text("name", *name, "NAME", "The file's name in the PIN pad").required();
    return [name](Context& context) { return run_show(context, *name); };
}

Run media_delete(CommandLine& line) {
    const auto names = std::make_shared<std::vector<std::string>>();
    line.text("name", *names, "NAME", "The files' names in the PIN pad").required();
    return [names](Context& context) { return run_delete(context, *names); };
}

}  // namespace quorvel::cli::setup
