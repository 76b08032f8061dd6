// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <fmt/format.h>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/items.h"
#include "cli/link.h"
#include "wire/param_id.h"

namespace quorvel::cli::setup {

namespace {

struct Wanted {
    AbecsCmdGixId_E id;
    const char* label;
};

constexpr Wanted kWanted[]{
    {ABECS_CMD_GIX_ID_PP_MNNAME, "Manufacturer"},         {ABECS_CMD_GIX_ID_PP_MODEL, "Model"},
    {ABECS_CMD_GIX_ID_PP_SERNUM, "Serial number"},        {ABECS_CMD_GIX_ID_PP_PARTNBR, "Part number"},
    {ABECS_CMD_GIX_ID_PP_SPECVER, "Protocol version"},    {ABECS_CMD_GIX_ID_PP_SOVER, "OS version"},
    {ABECS_CMD_GIX_ID_PP_APPVERS, "Application version"}, {ABECS_CMD_GIX_ID_PP_KRNLVER, "EMV kernel version"},
    {ABECS_CMD_GIX_ID_PP_CTLSVER, "Contactless version"},
};

// "0416" is four lines of sixteen columns.
std::string text_size(const std::string& digits) {
    if (digits.size() != 4) { return digits; }
    return fmt::format("{} lines of {} columns", std::stoi(digits.substr(0, 2)), std::stoi(digits.substr(2)));
}

std::string graphic_size(const std::string& digits) {
    if (digits.size() != 8) { return digits; }
    return fmt::format("{} x {} points", std::stoi(digits.substr(4)), std::stoi(digits.substr(0, 4)));
}

// One digit for each format.
std::string media_formats(const std::string& digits) {
    constexpr const char* kFormats[]{"PNG", "JPG", "GIF"};
    std::string text;
    for (size_t i = 0; i < std::size(kFormats) && i < digits.size(); ++i) {
        if (digits[i] == '1') { text += fmt::format("{}{}", text.empty() ? "" : ", ", kFormats[i]); }
    }
    return text.empty() ? "none" : text;
}

bool all_digits(const std::string& text) { return text.find_first_not_of("0123456789") == std::string::npos; }

void add_sizes(Group& report, const Items& items) {
    const auto add = [&](const char* label, uint16_t id, std::string (*words)(const std::string&)) {
        const std::string digits(items.text(id).value_or(""));
        if (items.has(id)) { report.push_back({label, all_digits(digits) ? words(digits) : digits}); }
    };
    add("Text display", ABECS_RSP_DATID_PP_DSPTXTSZ, text_size);
    add("Graphic display", ABECS_RSP_DATID_PP_DSPGRSZ, graphic_size);
    add("Media formats", ABECS_RSP_DATID_PP_MFSUP, media_formats);
}

Outcome run_info(Context& context) {
    Link link(context.settings, context.output);
    std::vector<int32_t> ids{ABECS_CMD_GIX_ID_PP_DSPTXTSZ, ABECS_CMD_GIX_ID_PP_DSPGRSZ, ABECS_CMD_GIX_ID_PP_MFSUP};
    for (const Wanted& item : kWanted) { ids.push_back(item.id); }
    const Items items = link.ask(Gix{ids});
    link.close();
    Group report;
    for (const Wanted& item : kWanted) { add_item(report, item.label, items, static_cast<uint16_t>(item.id)); }
    add_sizes(report, items);
    report.push_back({"Library version", std::string(quorvel::version())});
    return {report};
}

Outcome run_gix(Context& context, const std::vector<std::string>& names) {
    std::vector<int32_t> ids;
    for (const std::string& name : names) {
        const auto id = item_id(name);
        if (!id) {
            throw Error(Exit::kUsage, fmt::format("There is no item '{}'.", name), "See the names with `quorvel gix`.");
        }
        ids.push_back(*id);
    }
    Link link(context.settings, context.output);
    const Items items = link.ask(Gix{ids});
    link.close();
    Group report;
    const auto add = [&](int32_t id, const auto& value) {
        const std::string name = wire::param_name(static_cast<uint16_t>(id));
        report.push_back({name, value, name});
    };
    for (const int32_t id : items.ids()) { add(id, item_value(items, static_cast<uint16_t>(id))); }
    for (const int32_t id : ids) {
        if (!items.has(id)) { add(id, "not told"); }
    }
    return {report};
}

}  // namespace

Run info(CommandLine&) { return run_info; }

Run gix(CommandLine& line) {
    const auto names = std::make_shared<std::vector<std::string>>();
    line.text("item", *names, "ITEM", "SERNUM, TABVER0, 0x8001, ...; without any, all that the PIN pad tells");
    return [names](Context& context) { return run_gix(context, *names); };
}

}  // namespace quorvel::cli::setup
