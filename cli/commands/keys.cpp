// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <array>
#include <fmt/format.h>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/items.h"
#include "cli/link.h"

namespace quorvel::cli::setup {

namespace {

// A digit for each slot tells whether a key is there.
struct Family {
    AbecsCmdGixId_E map;
    const char* kind;
    const char* cipher;
    const char* use;
};

constexpr std::array kFamilies{
    Family{ABECS_CMD_GIX_ID_PP_MKDESP, "master", "DES", "PIN"},
    Family{ABECS_CMD_GIX_ID_PP_MKDESD, "master", "DES", "data"},
    Family{ABECS_CMD_GIX_ID_PP_MKTDESP, "master", "triple DES", "PIN"},
    Family{ABECS_CMD_GIX_ID_PP_MKTDESD, "master", "triple DES", "data"},
    Family{ABECS_CMD_GIX_ID_PP_DKPTDESP, "DUKPT", "DES", "PIN"},
    Family{ABECS_CMD_GIX_ID_PP_DKPTTDESP, "DUKPT", "triple DES", "PIN"},
    Family{ABECS_CMD_GIX_ID_PP_DKPTTDESD, "DUKPT", "triple DES", "data"},
};

std::string reason(quorvel::Status status) {
    return status == quorvel::Status::key_missing ? "not told" : fmt::format("status {:03}", status.code());
}

std::string pin_ksn(Link& link, Gdu::Method method, size_t slot) {
    const auto answer = link.answer(Gdu{method, static_cast<uint8_t>(slot)});
    return answer.ok() ? *answer : reason(answer.status());
}

// GDU knows the keys for PINs only.
Value data_ksn(Link& link, size_t slot) {
    const int32_t id = ABECS_CMD_GIX_ID_PP_KSNTDESD0 + static_cast<int32_t>(slot);
    return item_value(link.ask(Gix{std::span(&id, 1)}), static_cast<uint16_t>(id));
}

Value ksn(Link& link, const Family& family, size_t slot) {
    switch (family.map) {
        case ABECS_CMD_GIX_ID_PP_DKPTDESP:
            return pin_ksn(link, Gdu::Method::des, slot);
        case ABECS_CMD_GIX_ID_PP_DKPTTDESP:
            return pin_ksn(link, Gdu::Method::tdes, slot);
        case ABECS_CMD_GIX_ID_PP_DKPTTDESD:
            return data_ksn(link, slot);
        default:
            return "";
    }
}

Outcome run_keys(Context& context) {
    Link link(context.settings, context.output);
    std::vector<int32_t> ids;
    ids.reserve(kFamilies.size());
    for (const Family& family : kFamilies) { ids.push_back(family.map); }
    const Items items = link.ask(Gix{ids});
    Table table{{"Kind", "Cipher", "Use", "Index", "Key serial number"}};
    for (const Family& family : kFamilies) {
        const std::string slots(items.text(family.map).value_or(""));
        for (size_t slot = 0; slot < slots.size(); ++slot) {
            if (slots[slot] != '1') { continue; }
            table.rows.push_back({family.kind, family.cipher, family.use, slot, ksn(link, family, slot)});
        }
    }
    link.close();
    return {{{"Keys", table}}};
}

}  // namespace

Run keys(CommandLine&) { return run_keys; }

}  // namespace quorvel::cli::setup
