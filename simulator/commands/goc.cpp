// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <fmt/format.h>
#include <string>
#include <utility>
#include <vector>

#include "simulator/cards/emv.h"
#include "simulator/commands/go_on_chip.h"
#include "simulator/commands/handlers.h"
#include "simulator/commands/plausible.h"
#include "simulator/commands/widths.h"
#include "wire/hex.h"

namespace quorvel::sim::commands {

namespace {

constexpr size_t kLimitDigits = 8;

struct GocRequest {
    GoRequest go;
    // In every answer, and only with an online PIN.
    std::vector<Tag> tags;
    std::vector<Tag> pinTags;
};

bool flag(Reader& fields, std::string_view field) { return fields.n(field, 1, {0, 1}) == 1; }

uint64_t limit(Reader& fields, std::string_view field) {
    uint64_t value = 0;
    for (const uint8_t byte : fields.h(field, kLimitDigits)) { value = value << 8 | byte; }
    return value;
}

// A DES key fills half of its field: the end, behind the pairs that fill the field up, or else the front.
PinKey pin_key(Reader& fields) {
    static constexpr size_t kFieldDigits = 32;
    static constexpr std::ptrdiff_t kHalf = 8;
    static constexpr uint8_t kFilling = 0x30;
    PinKey key;
    key.method = static_cast<int>(fields.n("GOC_METHOD", 1, {0, 3}));
    key.index = static_cast<int>(fields.n("GOC_KEYIDX", 2));
    const Bytes field = fields.h("GOC_WKENC", kFieldDigits);
    const auto middle = field.begin() + kHalf;
    const bool filled = std::all_of(field.begin(), middle, [](uint8_t byte) { return byte == kFilling; });
    if (key.method == 0) { key.workingKey = filled ? Bytes(middle, field.end()) : Bytes(field.begin(), middle); }
    if (key.method == 1) { key.workingKey = field; }
    return key;
}

void read_risk_management(Reader& fields, Risk& risk) {
    risk.managed = flag(fields, "GOC_RISKMAN");
    risk.floorLimit = limit(fields, "GOC_FLRLIMIT");
    risk.targetPercentage = static_cast<unsigned>(fields.n("GOC_TPBRS", 2));
    risk.threshold = limit(fields, "GOC_TVBRS");
    risk.maxPercentage = static_cast<unsigned>(fields.n("GOC_MTPBRS", 2));
}

void read_transaction_type(Reader& fields, DataObjects& objects) {
    objects[tag::kType] = bcd(fields.n("GOC_TRNTYPE", 2), 1);
    static_cast<void>(flag(fields, "GOC_FLAG"));
}

// Its size is that of the acquirer that the card was read for.
size_t read_acquirer_fields(Reader& fields, unsigned acquirer, DataObjects& objects) {
    static constexpr size_t kFirstSize = 3;
    static constexpr size_t kSecondSize = 32;
    const size_t due = acquirer == 1 ? kFirstSize : acquirer == 2 ? kSecondSize : 0;
    fields.n("GOC_ACQPRLEN", 2, {due, due});
    if (acquirer == 1) { read_transaction_type(fields, objects); }
    if (acquirer == 2) { static_cast<void>(fields.s("GOC_ACQPR", kSecondSize)); }
    return due;
}

std::vector<Tag> read_tags(Reader& request, std::string_view block, std::string_view field) {
    Reader fields = request.block(block);
    const size_t count = fields.n(field, 3, {0, kMaxTagList});
    const Bytes tags = fields.h(field, 2 * count);
    fields.end();
    return split_tags(tags);
}

// The first length counts one byte more than there is, so the fields are read past it.
GocRequest goc_request(Reader& request, unsigned acquirer) {
    static constexpr size_t kDeclaredSize = 86;
    GocRequest read;
    const size_t declared = request.n("CMD_LEN1", 3);
    Risk& risk = read.go.risk;
    DataObjects& objects = read.go.objects;
    risk.amount = request.n("GOC_AMOUNT", kAmountDigits);
    objects[tag::kAmount] = bcd(risk.amount, kAmountDigits / 2);
    objects[tag::kCashback] = bcd(request.n("GOC_CASHBACK", kAmountDigits), kAmountDigits / 2);
    risk.onExceptionList = flag(request, "GOC_EXCLIST");
    risk.canGoOnline = flag(request, "GOC_CONNECT");
    request.n("GOC_RESERVED", 1, {0, 0});
    read.go.key = pin_key(request);
    read_risk_management(request, risk);
    const size_t size = kDeclaredSize + read_acquirer_fields(request, acquirer, objects);
    if (declared != size) { throw LayoutError(fmt::format("GOC: CMD_LEN1: {} instead of {}", declared, size)); }
    read.tags = read_tags(request, "CMD_LEN2", "GOC_TAGS1");
    read.pinTags = read_tags(request, "CMD_LEN3", "GOC_TAGS2");
    request.end();
    return read;
}

// Sixteen and twenty digits, zeros without an online PIN.
void write_pin(Writer& fields, const std::optional<PinBlock>& pin) {
    const PinBlock block = pin.value_or(PinBlock{.block = Bytes(8)});
    fields.h(block.block, 2 * block.block.size()).h(block.ksn, 2 * block.ksn.size());
}

Answer goc_answer(const Gone& gone, std::vector<Tag> tags, const std::vector<Tag>& pinTags) {
    if (gone.pin) { tags.insert(tags.end(), pinTags.begin(), pinTags.end()); }
    const Bytes found = encode(gone.objects, tags);
    if (found.size() > kMaxEmvData) { return {.status = Status::kRspovrfl}; }
    const Verified& verified = gone.verified;
    Writer fields;
    fields.n(static_cast<unsigned>(gone.decision), 1).n(verified.signature ? 1 : 0, 1);
    fields.n(verified.pinOffline ? 1 : 0, 1).n(static_cast<unsigned>(verified.pinErrors), 1);
    fields.n(verified.pinBlocked ? 1 : 0, 1).n(verified.pinOnline ? 1 : 0, 1);
    write_pin(fields, gone.pin);
    return Answer::of(fields.n(found.size(), 3).b(found).n(0, 3));
}

}  // namespace

Outcome goc(Call& call) {
    const auto& transaction = call.device.transaction;
    const GocRequest request = goc_request(call.request, transaction ? transaction->application.acquirer : 0);
    if (auto unfit = unfit_transaction(call, Transaction::Stage::kSelected, "GOC")) { return *unfit; }
    judge_money(call, "GOC", request.go.objects);
    return go_on_chip(
        call, request.go, std::nullopt,
        [tags = request.tags, pinTags = request.pinTags](const Gone& gone) { return goc_answer(gone, tags, pinTags); });
}

}  // namespace quorvel::sim::commands
