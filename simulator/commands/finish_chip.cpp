// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/commands/finish_chip.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fmt/format.h>

#include "simulator/cards/emv.h"
#include "wire/hex.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t kCodeWidth = 2;
constexpr size_t kHeaderSize = 4;
constexpr std::array<std::string_view, 3> kApprovals{"00", "10", "11"};

Issuer issuer(const FinishRequest& request) {
    if (!request.responseCode) { return Issuer::kUnreachable; }
    const bool approved = std::ranges::find(kApprovals, *request.responseCode) != kApprovals.end();
    return approved ? Issuer::kApproved : Issuer::kDeclined;
}

// An issuer's command has its data behind a length.
bool obeys(Chip& chip, ByteView command) {
    if (command.size() < kHeaderSize) { return false; }
    const ByteView data = command.subspan(std::min(kHeaderSize + 1, command.size()));
    return chip.exchange(command.first(kHeaderSize), data) == from_hex("9000");
}

// How the script went, and at which of its commands it stopped; then its identifier.
Bytes run_script(Chip* chip, ByteView script) {
    static constexpr uint8_t kSucceeded = 0x20;
    static constexpr uint8_t kFailed = 0x10;
    static constexpr size_t kHighestNumber = 0x0F;
    static constexpr size_t kIdentifierSize = 4;
    Bytes identifier(kIdentifierSize);
    size_t number = 0;
    uint8_t result = kSucceeded;
    for (const auto& [tag, value] : decode_list(script)) {
        if (tag == tag::kScriptId && value.size() == kIdentifierSize) { identifier = value; }
        if (tag != tag::kCommand || result != kSucceeded) { continue; }
        ++number;
        if (chip == nullptr || !obeys(*chip, value)) {
            result = static_cast<uint8_t>(kFailed | std::min(number, kHighestNumber));
        }
    }
    Bytes results{result};
    append(results, identifier);
    return results;
}

// Those for before the decision are run before it, the others after it: the results are in the scripts' order.
Bytes run_scripts(Chip* chip, const FinishRequest& request, DataObjects& objects) {
    static constexpr uint8_t kSucceeded = 0x20;
    Bytes results;
    for (const auto& [tag, value] : request.issuerData) {
        if (tag != tag::kEarlyScript && tag != tag::kLateScript) { continue; }
        const Bytes result = run_script(chip, value);
        if (result.front() != kSucceeded) {
            set(objects,
                tag == tag::kEarlyScript ? terminal_result::kEarlyScriptFailed : terminal_result::kLateScriptFailed);
        }
        append(results, result);
    }
    return results;
}

}  // namespace

std::string response_code(Reader& fields, std::string_view field) {
    const Bytes code = fields.b(field, kCodeWidth);
    if (!std::ranges::all_of(code, [](uint8_t c) { return std::isalnum(c) != 0; })) {
        throw LayoutError(fmt::format("{}: not of letters and digits", field));
    }
    return {code.begin(), code.end()};
}

Finished finish_chip(Device& device, const FinishRequest& request) {
    Transaction& transaction = *device.transaction;
    const bool isChip = transaction.interface == Transaction::Interface::kChip;
    Chip* const chip = isChip ? &*device.chip->chip : nullptr;
    DataObjects& objects = transaction.objects;
    Finished finished;
    finished.scriptResults = run_scripts(chip, request, objects);
    finished.decision = final_decision(issuer(request), chip != nullptr ? chip->second : Chip::Second::kAsAsked);
    const bool approved = finished.decision == FinalDecision::kApproved;
    objects[tag::kResponseCode] = to_bytes(request.responseCode.value_or(approved ? "Y3" : "Z3"));
    if (!finished.scriptResults.empty()) { objects[tag::kScriptResults] = finished.scriptResults; }
    generate(objects, approved ? Cryptogram::kApproved : Cryptogram::kDeclined);
    transaction.stage = Transaction::Stage::kFinished;
    finished.objects = objects;
    return finished;
}

Answer finished_answer(const Device& device, const Finished& finished, Answer answer) {
    answer.shows = device.text(finished.decision == FinalDecision::kApproved ? Text::kApproved : Text::kDeclined);
    return answer;
}

}  // namespace quorvel::sim::commands
