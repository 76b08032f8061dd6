// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/commands/params.h"

#include <algorithm>
#include <fmt/format.h>

#include "simulator/commands/command.h"

namespace quorvel::sim {

Params::Params(std::string_view command, Reader& request, Ids once, Ids atMostOnce, std::initializer_list<Rule> others)
    : params_(request.params()) {
    std::vector<Rule> rules;
    for (const uint16_t id : once) { rules.push_back({id, 1, 1}); }
    for (const uint16_t id : atMostOnce) { rules.push_back({id, 0, 1}); }
    rules.insert(rules.end(), others);
    for (const Param& param : params_) {
        const auto rule = std::ranges::find(rules, param.id, &Rule::id);
        const auto count = static_cast<size_t>(std::ranges::count(params_, param.id, &Param::id));
        if (rule == rules.end() || count > rule->most) { throw out_of_place(command, param.id); }
    }
    for (const Rule& rule : rules) {
        if (static_cast<size_t>(std::ranges::count(params_, rule.id, &Param::id)) >= rule.fewest) { continue; }
        throw LayoutError(fmt::format("{}: no {}", command, param_name(rule.id)), Status::kMandat);
    }
}

std::optional<std::chrono::seconds> Params::timeout() const {
    return find(spe::kTimeout, [](Reader& value) { return std::chrono::seconds(value.x("seconds", 1)); });
}

std::optional<PanMask> Params::pan_mask() const {
    return find(spe::kPanMask, [](Reader& value) {
        const size_t leading = value.n("leading", 2);
        return PanMask{leading, value.n("trailing", 2)};
    });
}

}  // namespace quorvel::sim
