// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/link.h"
#include "cli/names.h"

namespace quorvel::cli::setup {

namespace {

namespace fs = std::filesystem;

constexpr size_t kNameWidth = 8;
constexpr size_t kBlockSize = 995;

const std::map<std::string, uint8_t> kTypes{{".png", 1}, {".jpg", 2}, {".jpeg", 2}, {".gif", 3}};

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

uint8_t media_type(const PutOptions& options) {
    const std::string suffix =
        options.type.empty() ? lower(fs::path(options.file).extension().string()) : "." + lower(options.type);
    const auto found = kTypes.find(suffix);
    if (found == kTypes.end()) {
        throw Error(Exit::kUsage, fmt::format("'{}' tells no format.", suffix), "Name it: --type png, jpg or gif");
    }
    return found->second;
}

std::vector<uint8_t> contents(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (!in || in.bad()) { throw Error(Exit::kUsage, fmt::format("{} cannot be read.", path)); }
    if (bytes.empty()) { throw Error(Exit::kUsage, fmt::format("{} is empty.", path)); }
    return bytes;
}

// Step by step, in place of the library's one call, for the sake of the bar.
Outcome run_put(Context& context, const PutOptions& options) {
    const std::string name = media_name(options);
    const uint8_t type = media_type(options);
    const std::vector<uint8_t> bytes = contents(options.file);
    const auto size = static_cast<uint32_t>(bytes.size());
    const uint16_t crc = call([&] { return abecs_cmd_mlx_crc16(options.file.c_str()); });
    Link link(context.settings, context.output);
    link.ask("MLI", [&] { return abecs_cmd_mli(link.get(), name.c_str(), size, crc, type); });
    for (size_t sent = 0; sent < bytes.size();) {
        context.output.progress(name, sent, bytes.size());
        const size_t count = std::min(kBlockSize, bytes.size() - sent);
        link.ask("MLR", [&] { return abecs_cmd_mlr(link.get(), bytes.data() + sent, count); });
        sent += count;
    }
    link.ask("MLE", [&] { return abecs_cmd_mle(link.get()); });
    context.output.progress(name, bytes.size(), bytes.size());
    link.close();
    return {{{"Name", name}, {"Size", size}, {"CRC", fmt::format("{:04X}", crc)}}};
}

Outcome run_list(Context& context) {
    Link link(context.settings, context.output);
    const Names names;
    link.ask("LMF", [&] { return abecs_cmd_lmf(link.get(), names.get()); });
    link.close();
    Table table{{"Name"}};
    for (const std::string& name : names.all()) { table.rows.push_back({name}); }
    return {{{"Files", table}}};
}

Outcome run_show(Context& context, const std::string& name) {
    Link link(context.settings, context.output);
    link.ask("DSI", [&] { return abecs_cmd_dsi(link.get(), name.c_str()); });
    link.leave_image(name);
    link.close();
    return {{{"Shown", name}}};
}

Outcome run_delete(Context& context, const std::vector<std::string>& names) {
    Link link(context.settings, context.output);
    Names list;
    Table table{{"Name"}};
    for (const std::string& name : names) {
        list.add(name);
        table.rows.push_back({name});
    }
    link.ask("DMF", [&] { return abecs_cmd_dmf(link.get(), list.get()); });
    link.close();
    return {{{"Deleted", table}}};
}

}  // namespace

Run media_put(CLI::App& app) {
    const auto options = std::make_shared<PutOptions>();
    app.add_option("file", options->file, "An image of a format that the PIN pad takes")->required();
    app.add_option("--name", options->name, "Its name in the PIN pad, else that of the file")->type_name("NAME");
    app.add_option("--type", options->type, "png, jpg or gif, else what the file's name says")->type_name("TYPE");
    return [options](Context& context) { return run_put(context, *options); };
}

Run media_list(CLI::App&) { return run_list; }

Run media_show(CLI::App& app) {
    const auto name = std::make_shared<std::string>();
    app.add_option("name", *name, "The file's name in the PIN pad")->required();
    return [name](Context& context) { return run_show(context, *name); };
}

Run media_delete(CLI::App& app) {
    const auto names = std::make_shared<std::vector<std::string>>();
    app.add_option("name", *names, "The files' names in the PIN pad")->required();
    return [names](Context& context) { return run_delete(context, *names); };
}

}  // namespace quorvel::cli::setup
