// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <fmt/format.h>
#include <string>
#include <utility>

#include "simulator/cardholder/digit_entry.h"
#include "simulator/commands/handlers.h"
#include "simulator/device/slots.h"
#include "simulator/keys/pin_block.h"
#include "wire/hex.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t kHeaderSize = 4;
constexpr size_t kFewestPinDigits = 4;

enum class Operation { kOff = 0, kOn = 1, kExchange = 2, kVerify = 3 };

struct ChpRequest {
    int slot = 0;
    Operation operation = Operation::kOff;
    Bytes command;
    char format = '2';
    std::string message;
};

void read_pin_fields(Reader& fields, ChpRequest& request) {
    static constexpr size_t kMessageWidth = 32;
    static constexpr std::string_view kFormats = "0129";
    if (request.command.size() != kHeaderSize) { throw LayoutError("CHP: CHP_CMDLEN: no header of four bytes"); }
    request.format = static_cast<char>(fields.b("CHP_PINFMT", 1).front());
    if (kFormats.find(request.format) == std::string_view::npos) {
        throw LayoutError("CHP: CHP_PINFMT: no such format");
    }
    request.message = fields.s("CHP_MSG", kMessageWidth);
}

ChpRequest chp_request(Call& call) {
    static constexpr size_t kMaxCommand = 260;
    Reader fields = only_block(call);
    ChpRequest request;
    request.slot = static_cast<int>(fields.n("CHP_SLOT", 1));
    request.operation = static_cast<Operation>(fields.n("CHP_OPER", 1, {0, 3}));
    const bool commands = request.operation >= Operation::kExchange;
    const size_t size = fields.n("CHP_CMDLEN", 3, {0, commands ? kMaxCommand : 0});
    request.command = fields.h("CHP_CMD", 2 * size);
    if (request.operation == Operation::kVerify) { read_pin_fields(fields, request); }
    fields.end();
    return request;
}

// What the card answered to the reset or to a command; nothing when it lost its power.
Answer output(ByteView data) { return Answer::of(Writer().n(data.size(), 3).h(data, 2 * data.size())); }

Outcome power_on(Chip& chip) {
    if (chip.fault != Status::kOk) { return Answer{.status = chip.fault}; }
    chip.powered = true;
    return output(chip.atr);
}

// Behind the header stand the length of the data and the data, and the length that is expected, each if any.
Answer send_command(Chip& chip, ByteView command) {
    if (command.size() < kHeaderSize) { return output(from_hex("6700")); }
    const ByteView body = command.subspan(kHeaderSize);
    const size_t length = body.size() > 1 ? body.front() : 0;
    if (body.size() > 1 && (length == 0 || body.size() < length + 1 || body.size() > length + 2)) {
        return output(from_hex("6700"));
    }
    return output(chip.exchange(command.first(kHeaderSize), length == 0 ? ByteView() : body.subspan(1, length)));
}

// The last format has the digits alone.
Bytes pin_data(char format, const std::string& pin) {
    static constexpr char kDigitsAlone = '9';
    static constexpr size_t kDigits = 16;
    if (format != kDigitsAlone) { return plain_pin_block(format, pin); }
    std::string data = pin;
    data.resize(kDigits, 'F');
    return from_hex(data);
}

// The PIN goes to the chip and nowhere else.
Outcome verify(Call& call, const ChpRequest& request) {
    DigitEntry entry(call.screen, text_or(call, request.message, Text::kEnterPin), kFewestPinDigits, kMaxPinDigits,
                     DigitEntry::Echo::kCount);
    return Wait{[&device = call.device, request, entry](const Event& event) mutable -> std::optional<Answer> {
        if (request.slot == 0 && std::holds_alternative<CardRemoved>(event)) {
            return Answer{.status = Status::kNocard};
        }
        const auto typed = entry.on(event);
        if (!typed) { return std::nullopt; }
        if (typed->status != Status::kOk) { return Answer{.status = typed->status}; }
        return output(
            chip_in(device, request.slot)->exchange(request.command, pin_data(request.format, typed->digits)));
    }};
}

}  // namespace

Outcome chp(Call& call) {
    const ChpRequest request = chp_request(call);
    Chip* const chip = chip_in(call.device, request.slot);
    if (chip == nullptr) { return Answer{.status = absence(request.slot)}; }
    if (request.operation == Operation::kOn) { return power_on(*chip); }
    if (request.operation == Operation::kOff) {
        chip->powered = false;
        return Answer{.blocks = {Bytes()}};
    }
    if (!chip->powered) { return out_of_sequence(call, "CHP: a command to a chip without power"); }
    if (request.operation == Operation::kExchange) { return send_command(*chip, request.command); }
    return verify(call, request);
}

}  // namespace quorvel::sim::commands
