// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <optional>
#include <stdexcept>
#include <string>

#include "simulator/commands/data_cipher.h"
#include "simulator/commands/handlers.h"
#include "simulator/keys/block_cipher.h"
#include "wire/param_id.h"

// Track 1 is given as characters, filled up with blanks to whole blocks when it is enciphered. Of tracks 2 and 3 and of
// the card number a byte holds two characters, each as its lower four bits, so that '=' is D; F fills them up. In front
// of an enciphered track stand, in clear and in the track's own form, as many of the card number's first digits as the
// host asked for.
namespace quorvel::sim::commands {

namespace {

enum class Form { kCharacters, kPacked };

struct Item {
    std::string Card::*text;
    uint16_t id;
    uint16_t ksnId;
    Form form;
    bool openDigits;
};

// One for each digit of SPE_TRACKS.
constexpr std::array kItems{
    Item{&Card::track1, pp::kTrack1, pp::kTrk1Ksn, Form::kCharacters, true},
    Item{&Card::track2, pp::kTrack2, pp::kTrk2Ksn, Form::kPacked, true},
    Item{&Card::track3, pp::kTrack3, pp::kTrk3Ksn, Form::kPacked, true},
    Item{&Card::pan, pp::kEncPan, pp::kEncPanKsn, Form::kPacked, false},
};

struct Request {
    std::string wanted;
    size_t openDigits = 0;
    DataCipher cipher{"GTK"};
};

Bytes packed(std::string_view text) {
    Bytes bytes((text.size() + 1) / 2, 0x0F);
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c < '0' || c > '?') {
            throw std::invalid_argument(fmt::format("no character for a packed track at {}", i));
        }
        const auto digit = static_cast<uint8_t>(c - '0');
        bytes[i / 2] = static_cast<uint8_t>(i % 2 == 0 ? (digit << 4) | 0x0F : (bytes[i / 2] & 0xF0) | digit);
    }
    return bytes;
}

Bytes in_form(Form form, std::string_view text) { return form == Form::kPacked ? packed(text) : to_bytes(text); }

Bytes whole_blocks(Form form, Bytes bytes) {
    bytes.resize((bytes.size() + kBlockSize - 1) / kBlockSize * kBlockSize, form == Form::kPacked ? 0xFF : ' ');
    return bytes;
}

std::string tracks(const Param& param) {
    Reader reader("SPE_TRACKS", param.data);
    std::string digits = reader.a("digits", kItems.size());
    reader.end();
    if (digits.size() != kItems.size() || digits.find_first_not_of("01") != std::string::npos) {
        throw LayoutError("SPE_TRACKS: digits other than 0 and 1");
    }
    return digits;
}

size_t open_digits(const Param& param) {
    Reader reader("SPE_OPNDIG", param.data);
    const size_t digits = reader.n("digits", 1, {0, 8});
    reader.end();
    if (digits % 2 != 0) { throw LayoutError("SPE_OPNDIG: an odd number"); }
    return digits;
}

Request read(Reader& reader, Random& random) {
    Request request;
    std::optional<size_t> openDigits;
    for (const Param& param : reader.params()) {
        if (request.cipher.take(param)) { continue; }
        if (param.id == spe::kTracks && request.wanted.empty()) {
            request.wanted = tracks(param);
        } else if (param.id == spe::kOpnDig && !openDigits) {
            openDigits = open_digits(param);
        } else {
            throw out_of_place("GTK", param.id);
        }
    }
    request.cipher.settle(random);
    request.openDigits = openDigits.value_or(0);
    if (request.wanted.empty()) { throw LayoutError("GTK: SPE_TRACKS is missing", Status::kMandat); }
    if (request.wanted.back() == '1' && request.cipher.method() == nullptr) {
        throw LayoutError("GTK: SPE_MTHDDAT is missing for the card number", Status::kMandat);
    }
    return request;
}

// False when the PIN pad does not have the key.
bool add_item(std::vector<Param>& answer, const Item& item, const Card& card, const Request& request, KeyStore& keys) {
    const Bytes clear = in_form(item.form, card.*item.text);
    if (request.cipher.method() == nullptr) {
        answer.push_back({item.id, clear});
        return true;
    }
    const auto enciphered = request.cipher.encipher(keys, whole_blocks(item.form, clear));
    if (!enciphered) { return false; }
    const size_t open = item.openDigits ? request.openDigits : 0;
    Bytes value = in_form(item.form, std::string_view(card.pan).substr(0, open));
    append(value, enciphered->bytes);
    answer.push_back({item.id, std::move(value)});
    if (enciphered->ksn) { answer.push_back({item.ksnId, *enciphered->ksn}); }
    return true;
}

}  // namespace

// A track that the card does not have is left out.
Answer gtk(Call& call) {
    const Request request = read(call.request, call.device.random);
    const auto& card = call.device.lastCard;
    if (!card) { return {.status = Status::kNocard, .blocks = {}}; }
    std::vector<Param> answer;
    for (size_t i = 0; i < kItems.size(); ++i) {
        if (request.wanted[i] != '1' || (*card.*kItems[i].text).empty()) { continue; }
        if (!add_item(answer, kItems[i], *card, request, call.device.keys)) {
            return {.status = Status::kErrkey, .blocks = {}};
        }
    }
    const DataMethod* method = request.cipher.method();
    if (method != nullptr && method->source == KeySource::kRandomKey) {
        answer.push_back({pp::kEncKRand, request.cipher.enciphered_random_key(call.device.random)});
    }
    return Answer::of(answer);
}

}  // namespace quorvel::sim::commands
