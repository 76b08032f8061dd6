// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <string>

#include "simulator/cardholder/digit_entry.h"
#include "simulator/commands/handlers.h"
#include "simulator/device/slots.h"
#include "simulator/keys/block_cipher.h"
#include "simulator/keys/pin_block.h"

namespace quorvel::sim::commands {

namespace {

constexpr int kHighestSlot = 8;
constexpr std::string_view kHexDigits = "0123456789ABCDEF";

Answer refused(Status status) { return {.status = status, .blocks = {}}; }

// What the output's length counts is each sub-command's own.
Answer output(size_t length, const Writer& fields) { return Answer::of(Writer().n(length, 3).b(fields.bytes())); }
Answer output(const Writer& fields) { return output(fields.bytes().size(), fields); }

// For each index of a range whether there is a key.
Outcome key_query(Call& call, Reader fields) {
    static constexpr uint64_t kFirstDukpt = 2;
    const uint64_t type = fields.n("GEN02K3_KEYTYPE", 1, {0, 3});
    const KeyUse use = fields.n("GEN02K3_KEYUSE", 1, {0, 1}) == 0 ? KeyUse::kPin : KeyUse::kData;
    const size_t first = fields.n("GEN02K3_IDXINI", 2);
    const size_t last = fields.n("GEN02K3_IDXEND", 2, {first, 99});
    fields.end();
    const KeyStrength strength = type % 2 == 0 ? KeyStrength::kDes : KeyStrength::kTdes;
    const KeyStore& keys = call.device.keys;
    const std::string map = type < kFirstDukpt ? keys.master_map(strength, use) : keys.dukpt_map(strength, use);
    return output(Writer().a(std::string_view(map).substr(first, last - first + 1), last - first + 1));
}

std::vector<Tag> tags_in(Reader& fields) {
    const Bytes list = fields.h("GEN_TAGS", fields.left());
    return split_tags(list);
}

constexpr size_t kMaxTagOutput = 256;

// Of the card that was read last, whether or not it is still there. The length counts digits.
Outcome read_tags(Call& call, Reader fields) {
    const std::vector<Tag> tags = tags_in(fields);
    const auto& card = call.device.lastCard;
    if (!card || !card->chip) { return refused(Status::kNocard); }
    const auto& transaction = call.device.transaction;
    const Bytes found = encode(transaction ? transaction->objects : card->objects(), tags);
    if (found.size() > kMaxTagOutput) { return refused(Status::kRspovrfl); }
    return output(Writer().h(found, 2 * found.size()));
}

// Once a PAN working key is loaded the host sends the data deciphered under it: that comes off first.
Outcome encipher_data(Call& call, Reader fields) {
    static constexpr uint64_t kDukptTdes = 3;
    static constexpr size_t kMaxDigits = 256;
    fields.n("GEN0303_METHOD", 1, {kDukptTdes, kDukptTdes});
    const auto index = static_cast<int>(fields.n("GEN0303_IDX", 2));
    if (fields.left() > kMaxDigits || fields.left() % (2 * kBlockSize) != 0) {
        throw LayoutError(fmt::format("GEN: GEN0303_INPUT: {} digits", fields.left()));
    }
    const Bytes input = fields.h("GEN0303_INPUT", fields.left());
    const auto& panKey = call.device.panKey;
    const Bytes clear = panKey ? encipher(*panKey, input) : input;
    const auto key = call.device.keys.next_dukpt(KeyStrength::kTdes, KeyUse::kData, index);
    if (!key) { return refused(Status::kErrkey); }
    return output(Writer().h(key->ksn, 2 * key->ksn.size()).h(encipher(key->key, clear), 2 * clear.size()));
}

int slot_in(Reader& fields) { return static_cast<int>(fields.n("GEN_SLOT", 1, {0, kHighestSlot})); }

enum class Power { kOn = 1, kReset = 2, kOff = 3, kQuery = 4 };

// Answers whether there is a chip, whether it has power, and with power what it answered to the reset.
Outcome power(Call& call, Reader fields) {
    static constexpr size_t kMaxAtr = 36;
    const auto operation = static_cast<Power>(fields.n("GEN0401_OPER", 1, {1, 4}));
    const int slot = slot_in(fields);
    fields.end();
    Chip* const chip = chip_in(call.device, slot);
    if (chip == nullptr && operation != Power::kQuery) { return refused(absence(slot)); }
    if (chip != nullptr && operation != Power::kQuery) { chip->powered = operation != Power::kOff; }
    const bool powered = chip != nullptr && chip->powered;
    const Bytes atr = powered ? chip->atr : Bytes();
    return output(Writer().n(chip != nullptr ? 1 : 0, 1).n(powered ? 1 : 0, 1).n(atr.size(), 2).h(atr, 2 * kMaxAtr));
}

enum class Exchange { kDone = 0, kNoPower = 1 };

struct ApduResponse {
    Exchange status = Exchange::kNoPower;
    Bytes statusWord{0, 0};
    Bytes data = {};
};

ApduResponse exchange(Chip& chip, ByteView header, ByteView data) {
    if (!chip.powered) { return {}; }
    const Bytes response = chip.exchange(header, data);
    const auto dataEnd = response.end() - 2;
    return {Exchange::kDone, {dataEnd, response.end()}, {response.begin(), dataEnd}};
}

// As a chip does it: less room than there are data gets none of them, but their number.
void limit(ApduResponse& response, size_t expected) {
    static constexpr uint8_t kWrongLength = 0x6C;
    if (expected == 0) { response.data.clear(); }
    if (response.data.size() <= expected) { return; }
    response.statusWord = {kWrongLength, static_cast<uint8_t>(response.data.size())};
    response.data.clear();
}

constexpr size_t kHeaderDigits = 8;

Outcome exchange_apdu(Call& call, Reader fields) {
    static constexpr size_t kMaxData = 255;
    static constexpr size_t kMaxExpected = 256;
    const int slot = slot_in(fields);
    const Bytes header = fields.h("GEN0402_HEADER", kHeaderDigits);
    const size_t length = fields.n("GEN0402_LC", 3, {0, kMaxData});
    const Bytes data = fields.h("GEN0402_DATA", 2 * length);
    const size_t expected = fields.n("GEN0402_LE", 3, {0, kMaxExpected});
    fields.end();
    Chip* const chip = chip_in(call.device, slot);
    if (chip == nullptr) { return refused(absence(slot)); }
    ApduResponse response = exchange(*chip, header, data);
    limit(response, expected);
    return output(Writer()
                      .n(static_cast<unsigned>(response.status), 1)
                      .h(response.statusWord, 4)
                      .n(response.data.size(), 3)
                      .h(response.data, 2 * response.data.size()));
}

struct PinRequest {
    int slot = 0;
    Bytes header;
    char format = '0';
    size_t fewest = 0;
    size_t most = 0;
    std::string message;
};

PinRequest read_pin_request(Reader& fields) {
    static constexpr size_t kMessageWidth = 32;
    PinRequest request;
    request.slot = slot_in(fields);
    request.header = fields.h("GEN0403_HEADER", kHeaderDigits);
    request.format = static_cast<char>(fields.b("GEN0403_FORMAT", 1).front());
    if (kHexDigits.find(request.format) == std::string_view::npos) {
        throw LayoutError("GEN: GEN0403_FORMAT: no hexadecimal digit");
    }
    request.fewest = fields.n("GEN0403_PINMIN", 2);
    request.most = std::min<size_t>(fields.n("GEN0403_PINMAX", 2, {request.fewest, 99}), kMaxPinDigits);
    request.message = fields.s("GEN0403_MSG", kMessageWidth);
    fields.end();
    return request;
}

Answer show_pin(Device& device, const PinRequest& request, const std::string& pin) {
    Chip* const chip = chip_in(device, request.slot);
    if (chip == nullptr) { return refused(absence(request.slot)); }
    const ApduResponse response = exchange(*chip, request.header, plain_pin_block(request.format, pin));
    return output(Writer().n(static_cast<unsigned>(response.status), 1).h(response.statusWord, 4));
}

// The PIN goes to the chip and nowhere else.
Outcome verify_pin(Call& call, Reader fields) {
    const PinRequest request = read_pin_request(fields);
    if (chip_in(call.device, request.slot) == nullptr) { return refused(absence(request.slot)); }
    DigitEntry entry(call.screen, request.message, request.fewest, request.most, DigitEntry::Echo::kCount);
    return Wait{[&device = call.device, request, entry](const Event& event) mutable -> std::optional<Answer> {
        const auto result = entry.on(event);
        if (!result) { return std::nullopt; }
        return result->status == Status::kOk ? show_pin(device, request, result->digits) : refused(result->status);
    }};
}

// Of the card in the chip reader. The length counts bytes.
Outcome read_slot_tags(Call& call, Reader fields) {
    const size_t count = fields.n("GEN0404_TAGSLEN", 3);
    if (fields.left() != 2 * count) {
        throw LayoutError(fmt::format("GEN: GEN0404_TAGSLEN: {} bytes, {} digits follow", count, fields.left()));
    }
    const std::vector<Tag> tags = tags_in(fields);
    const auto& card = call.device.chip;
    if (!card || !card->chip) { return refused(Status::kNocard); }
    const Bytes found = encode(card->objects(), tags);
    if (found.size() > kMaxTagOutput) { return refused(Status::kRspovrfl); }
    return output(found.size(), Writer().h(found, 2 * found.size()));
}

struct SubCommand {
    std::string_view group;
    std::string_view id;
    Outcome (*handle)(Call& call, Reader fields);
};

constexpr std::array kSubCommands{
    SubCommand{"02", "K3", key_query},      SubCommand{"03", "02", read_tags},
    SubCommand{"03", "03", encipher_data},  SubCommand{"04", "01", power},
    SubCommand{"04", "02", exchange_apdu},  SubCommand{"04", "03", verify_pin},
    SubCommand{"04", "04", read_slot_tags},
};

}  // namespace

Outcome gen(Call& call) {
    Reader envelope = only_block(call);
    const std::string group = envelope.a("GEN_GROUP", 2);
    Reader fields = envelope.block("GEN_LEN");
    envelope.end();
    const std::string id = fields.a("GEN_SUBCMD", 2);
    const auto* found = std::ranges::find_if(
        kSubCommands, [&](const SubCommand& known) { return known.group == group && known.id == id; });
    if (found != kSubCommands.end()) { return found->handle(call, fields); }
    call.journal.record(Finding{Finding::Kind::kUnsupported, fmt::format("GEN: there is no {}/{}", group, id)});
    return refused(Status::kInvcall);
}

}  // namespace quorvel::sim::commands
