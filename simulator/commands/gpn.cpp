// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "simulator/cardholder/digit_entry.h"
#include "simulator/commands/handlers.h"
#include "simulator/keys/pan_cipher.h"
#include "simulator/keys/pin_block.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t kMessageWidth = 32;
constexpr size_t kPanWidth = 19;
constexpr uint64_t kFewestPinDigits = 4;

struct Prompt {
    size_t fewest = 0;
    size_t most = 0;
    std::string message;
};

struct PinRequest {
    PinKey key;
    std::string pan;
    std::vector<Prompt> prompts;
};

// At the end of its field, behind the pairs that fill it up.
Bytes working_key(Reader& fields, int method) {
    static constexpr size_t kFieldSize = 16;
    static constexpr std::array<size_t, 4> kSizes{8, 16, 0, 0};
    static constexpr uint8_t kFilling = 0x30;
    Bytes key = fields.h("GPN_WKENC", 2 * kFieldSize);
    const auto start = key.begin() + static_cast<std::ptrdiff_t>(kFieldSize - kSizes.at(static_cast<size_t>(method)));
    if (std::any_of(key.begin(), start, [](uint8_t byte) { return byte != kFilling; })) {
        throw LayoutError(fmt::format("GPN: GPN_WKENC: longer than method {} has it", method));
    }
    key.erase(key.begin(), start);
    return key;
}

// Once a PAN working key is loaded the host may send the card number under it.
std::string card_number(Reader& fields, const std::optional<Bytes>& panKey) {
    const size_t length = fields.n("GPN_PANLEN", 2, {0, kPanWidth});
    std::string pan = fields.a("GPN_PAN", kPanWidth);
    if (pan.size() != length) {
        throw LayoutError(fmt::format("GPN: GPN_PANLEN: {} for {} characters", length, pan.size()));
    }
    if (panKey) { pan = expose_pan(pan, *panKey); }
    if (pan.size() == 1 || pan.find_first_not_of("0123456789") != std::string::npos) {
        throw LayoutError("GPN: GPN_PAN: no card number");
    }
    return pan;
}

// A PIN has at most 12 digits, however many the host would take.
Prompt prompt(Reader& fields) {
    Prompt prompt;
    prompt.fewest = fields.n("GPN_MIN", 2, {kFewestPinDigits, 99});
    prompt.most = std::min<size_t>(fields.n("GPN_MAX", 2, {prompt.fewest, 99}), kMaxPinDigits);
    prompt.message = fields.s("GPN_MSG", kMessageWidth);
    return prompt;
}

PinRequest pin_request(Call& call) {
    Reader fields = only_block(call);
    PinRequest request;
    request.key.method = static_cast<int>(fields.n("GPN_METHOD", 1, {0, 3}));
    request.key.index = static_cast<int>(fields.n("GPN_KEYIDX", 2));
    request.key.workingKey = working_key(fields, request.key.method);
    request.pan = card_number(fields, call.device.panKey);
    for (uint64_t count = fields.n("GPN_ENTRIES", 1, {1, 9}); count > 0; --count) {
        request.prompts.push_back(prompt(fields));
    }
    fields.end();
    return request;
}

// More than one entry are repetitions of one PIN: one that differs makes the cardholder begin anew.
class Capture {
public:
    Capture(Device& device, Screen& screen, PinRequest request)
        : device_(device), screen_(screen), request_(std::move(request)), entry_(ask()) {}

    std::optional<Answer> on(const Event& event) {
        const auto result = entry_.on(event);
        if (!result) { return std::nullopt; }
        if (result->status != Status::kOk) { return Answer{.status = result->status}; }
        if (at_ == 0) { pin_ = result->digits; }
        at_ = result->digits == pin_ ? at_ + 1 : 0;
        if (at_ == request_.prompts.size()) { return finish(); }
        entry_ = ask();
        return std::nullopt;
    }

private:
    [[nodiscard]] DigitEntry ask() const {
        const Prompt& prompt = request_.prompts[at_];
        const std::string own = device_.text(Text::kEnterPin);
        return {screen_, prompt.message.empty() ? own : prompt.message, prompt.fewest, prompt.most,
                DigitEntry::Echo::kCount};
    }

    [[nodiscard]] Answer finish() const {
        const auto block = encipher_pin(device_.keys, request_.key, request_.pan, pin_);
        if (!block) { return {.status = Status::kErrkey}; }
        return Answer::of(Writer().h(block->block, 2 * block->block.size()).h(block->ksn, 2 * block->ksn.size()));
    }

    Device& device_;
    Screen& screen_;
    PinRequest request_;
    size_t at_ = 0;
    std::string pin_;
    DigitEntry entry_;
};

}  // namespace

Outcome gpn(Call& call) {
    PinRequest request = pin_request(call);
    // Hosts may ask for it, but no cardholder could ever enter it.
    if (std::ranges::any_of(request.prompts, [](const Prompt& prompt) { return prompt.fewest > kMaxPinDigits; })) {
        return Answer{.status = Status::kInvparm};
    }
    const auto capture = std::make_shared<Capture>(call.device, call.screen, std::move(request));
    return Wait{[capture](const Event& event) { return capture->on(event); }};
}

}  // namespace quorvel::sim::commands
