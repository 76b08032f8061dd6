// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <fmt/format.h>
#include <span>
#include <string>

#include "simulator/cardholder/digit_entry.h"
#include "simulator/commands/handlers.h"
#include "simulator/commands/params.h"
#include "wire/param_id.h"

namespace quorvel::sim::commands {

namespace {

constexpr uint64_t kMaxDigits = 32;

std::string prompt(const Device& device, uint64_t index) {
    return fmt::format("{} {:04X}", device.text(Text::kNumber), index);
}

}  // namespace

Outcome gcd(Call& call) {
    const Params params("GCD", call.request, {spe::kMsgIdx, spe::kMinDig, spe::kMaxDig}, {spe::kTimeout});
    const uint64_t message = params.get(spe::kMsgIdx, [](Reader& r) { return r.x("index", 2); });
    const uint64_t fewest = params.get(spe::kMinDig, [](Reader& r) { return r.x("digits", 1, {0, kMaxDigits}); });
    const uint64_t most = params.get(spe::kMaxDig, [&](Reader& r) { return r.x("digits", 1, {fewest, kMaxDigits}); });
    const auto limit = params.timeout();
    DigitEntry entry(call.screen, prompt(call.device, message), fewest, most, DigitEntry::Echo::kDigits);
    return Wait{[entry](const Event& event) mutable -> std::optional<Answer> {
                    const auto result = entry.on(event);
                    if (!result) { return std::nullopt; }
                    if (result->status != Status::kOk) { return Answer{.status = result->status}; }
                    const Param value{pp::kValue, to_bytes(result->digits)};
                    return Answer::of(std::span(&value, 1));
                },
                limit};
}

}  // namespace quorvel::sim::commands
