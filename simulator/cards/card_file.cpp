// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <array>
#include <fmt/format.h>
#include <stdexcept>
#include <string>
#include <utility>

#include "simulator/cards/card_source.h"
#include "simulator/cards/cards.h"
#include "simulator/files/toml_table.h"
#include "simulator/keys/pin_block.h"
#include "wire/hex.h"

namespace quorvel::sim {

namespace {

constexpr std::array kVerifications{
    Named{"none", Verification::kNone},
    Named{"signature", Verification::kSignature},
    Named{"offline-pin", Verification::kOfflinePin},
    Named{"online-pin", Verification::kOnlinePin},
    Named{"device", Verification::kDevice},
};

constexpr std::array kFirstDecisions{
    Named{"as-asked", Chip::First::kAsAsked},
    Named{"online", Chip::First::kOnline},
    Named{"declined", Chip::First::kDeclined},
};

constexpr std::array kSecondDecisions{
    Named{"as-asked", Chip::Second::kAsAsked},
    Named{"approved", Chip::Second::kApproved},
    Named{"declined", Chip::Second::kDeclined},
};

constexpr std::array kChipFaults{
    Named{"none", Status::kOk},
    Named{"mute", Status::kDumbcard},
    Named{"unreadable", Status::kErrcard},
    Named{"invalidated", Status::kCardinvalidat},
    Named{"problems", Status::kCardproblems},
    Named{"invalid-data", Status::kCardinvdata},
    Named{"not-accepted", Status::kCardappnaut},
    Named{"fallback", Status::kErrfallback},
    Named{"blocked", Status::kCardblocked},
};

constexpr std::array kContactlessFaults{
    Named{"none", Status::kOk},
    Named{"multiple", Status::kCtlsmultiple},
    Named{"unreadable", Status::kCtlscommerr},
    Named{"invalidated", Status::kCtlsinvalidat},
    Named{"problems", Status::kCtlsproblems},
    Named{"not-accepted", Status::kCtlsappnaut},
    Named{"confirm-on-device", Status::kCtlsextcvm},
    Named{"use-chip", Status::kCtlsifchg},
};

constexpr std::string_view kDecimalDigits = "0123456789";

// The widths of a PIN pad's answers: nothing of a card may be longer.
constexpr struct { size_t pan = 19, track1 = 76, track2 = 37, track3 = 104, name = 26, label = 16; } kMost;

std::string at_most(TomlTable& table, std::string_view key, size_t length) {
    std::string text = table.text(key);
    if (text.size() > length) { table.refuse(key, fmt::format("longer than {} characters", length)); }
    return text;
}

void require_digits(const TomlTable& table, std::string_view key, std::string_view digits) {
    if (digits.find_first_not_of(kDecimalDigits) != std::string_view::npos) { table.refuse(key, "not only digits"); }
}

// Either none or exactly so many.
std::string digits(TomlTable& table, std::string_view key, size_t count) {
    std::string text = table.text(key);
    require_digits(table, key, text);
    if (!text.empty() && text.size() != count) { table.refuse(key, fmt::format("not of {} digits", count)); }
    return text;
}

DataObjects tags(TomlTable& table) {
    DataObjects objects;
    auto list = table.table("tags");
    if (!list) { return objects; }
    for (const std::string& key : list->keys()) {
        std::vector<Tag> tag;
        list->blame(key, [&] { tag = split_tags(from_hex(key)); });
        if (tag.size() != 1) { list->refuse(key, "no single tag"); }
        objects[tag.front()] = list->hex(key);
    }
    return objects;
}

// CLA, INS, P1 and P2 stand before the data; two bytes of status behind the response.
std::map<Bytes, Bytes> script(TomlTable& table) {
    static constexpr size_t kHeader = 4;
    static constexpr size_t kStatusWord = 2;
    std::map<Bytes, Bytes> script;
    auto list = table.table("script");
    if (!list) { return script; }
    for (const std::string& key : list->keys()) {
        Bytes command;
        list->blame(key, [&] { command = from_hex(key); });
        Bytes response = list->hex(key);
        if (command.size() < kHeader || response.size() < kStatusWord) { list->refuse(key, "no command and response"); }
        script[std::move(command)] = std::move(response);
    }
    return script;
}

Application application(TomlTable table) {
    static constexpr size_t kRecordIndex = 2;
    Application application;
    application.aid = table.required_hex("aid");
    application.label = at_most(table, "label", kMost.label);
    application.type = static_cast<unsigned>(table.number("type", 1, 98, 1));
    application.acquirer = static_cast<unsigned>(table.number("acquirer", 1, 99, std::nullopt));
    application.record = table.required_text("record");
    if (application.record.size() != kRecordIndex) { table.refuse("record", "not of two characters"); }
    application.objects = tags(table);
    table.end();
    return application;
}

Chip chip(TomlTable table) {
    Chip chip;
    chip.atr = table.hex("atr");
    if (chip.atr.empty()) { chip.atr = Chip::standard().atr; }
    chip.script = script(table);
    chip.objects = tags(table);
    chip.pin = at_most(table, "pin", kMaxPinDigits);
    require_digits(table, "pin", chip.pin);
    chip.pinTries = static_cast<int>(table.number("tries", 0, 9, 3));
    chip.verification = table.choice("verification", kVerifications);
    if (chip.verification == Verification::kOfflinePin && chip.pin.empty()) { table.refuse("pin", "is missing"); }
    if (chip.verification == Verification::kDevice) { table.refuse("verification", "it would need a device"); }
    chip.first = table.choice("first", kFirstDecisions);
    chip.second = table.choice("second", kSecondDecisions);
    chip.fault = table.choice("fault", kChipFaults);
    table.end();
    return chip;
}

Contactless contactless(TomlTable table) {
    Contactless contactless;
    contactless.stripeData = table.choice("mode", std::array{Named{"emv", false}, Named{"stripe", true}});
    contactless.verification = table.choice("verification", kVerifications);
    if (contactless.verification == Verification::kOfflinePin) {
        table.refuse("verification", "it would need the chip");
    }
    contactless.fault = table.choice("fault", kContactlessFaults);
    table.end();
    return contactless;
}

// SELECT of an application, and its file control information.
void let_select(Chip& chip, const Application& application) {
    Bytes command = from_hex("00A40400");
    append(command, application.aid);
    const Bytes proprietary = encode({{0x50, to_bytes(application.label)}}, {0x50});
    const Bytes content = encode({{0x84, application.aid}, {0xA5, proprietary}}, {0x84, 0xA5});
    Bytes response = encode({{0x6F, content}}, {0x6F});
    append(response, from_hex("9000"));
    chip.script.try_emplace(command, response);
}

Card card(TomlTable table) {
    Card card;
    card.pan = table.required_text("pan");
    require_digits(table, "pan", card.pan);
    if (card.pan.empty() || card.pan.size() > kMost.pan) { table.refuse("pan", "no card number"); }
    card.track1 = at_most(table, "track1", kMost.track1);
    card.track2 = at_most(table, "track2", kMost.track2);
    card.track3 = at_most(table, "track3", kMost.track3);
    for (const std::string_view key : {"track2", "track3"}) {
        const std::string track = table.text(key);
        if (track.find_first_not_of("0123456789=") != std::string::npos) { table.refuse(key, "not only digits and ="); }
    }
    card.expiry = digits(table, "expiry", 6);
    card.name = at_most(table, "name", kMost.name);
    card.serviceCode = digits(table, "service_code", 3);
    card.issuerCountry = static_cast<unsigned>(table.number("country", 0, 999, 0));
    card.panSequence = static_cast<unsigned>(table.number("sequence", 0, 99, 0));
    for (TomlTable& each : table.tables("applications")) { card.applications.push_back(application(std::move(each))); }
    if (auto inner = table.table("chip")) { card.chip = chip(std::move(*inner)); }
    if (auto inner = table.table("contactless")) { card.contactless = contactless(std::move(*inner)); }
    table.end();
    if (card.chip) {
        for (const Application& each : card.applications) { let_select(*card.chip, each); }
    }
    return card;
}

}  // namespace

Cards Cards::from_table(TomlTable table) {
    Cards cards;
    for (const std::string& name : table.keys()) {
        Card read = card(*table.table(name));
        cards.cards_[name] = {std::move(read), std::make_shared<Source>(Source{*table.node(name)->as_table()})};
    }
    return cards;
}

Cards Cards::from_toml(std::string_view text) { return from_document<Cards>(text); }

Cards Cards::from_file(const std::string& path) { return from_document_file<Cards>(path); }

}  // namespace quorvel::sim
