// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/device/texts.h"

#include <fmt/format.h>

namespace quorvel::sim {

namespace {

using wire::Status;

// Two bytes stand for each character above 0x7F, as none of them is beyond ISO 8859-1.
std::string to_latin1(std::string_view text) {
    std::string latin;
    unsigned lead = 0;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte >= 0xC0) {
            lead = byte & 0x03U;
        } else {
            latin.push_back(static_cast<char>(byte < 0x80 ? byte : lead << 6 | (byte & 0x3FU)));
        }
    }
    return latin;
}

struct Reason {
    Status status;
    Text text;
};

constexpr std::array kReasons{
    Reason{Status::kTimeout, Text::kTimeOut},
    Reason{Status::kCancel, Text::kCancelled},
    Reason{Status::kMcdataerr, Text::kCardReadError},
    Reason{Status::kNocard, Text::kCardRemoved},
    Reason{Status::kDumbcard, Text::kCardReadError},
    Reason{Status::kErrcard, Text::kCardReadError},
    Reason{Status::kCardinvalidat, Text::kCardInvalid},
    Reason{Status::kCardproblems, Text::kCardReadError},
    Reason{Status::kCardinvdata, Text::kCardInvalid},
    Reason{Status::kCardappnav, Text::kCardNotAccepted},
    Reason{Status::kCardappnaut, Text::kCardNotAccepted},
    Reason{Status::kErrfallback, Text::kCardReadError},
    Reason{Status::kCardblocked, Text::kCardBlocked},
    Reason{Status::kCtlsmultiple, Text::kOneCardOnly},
    Reason{Status::kCtlscommerr, Text::kCardReadError},
    Reason{Status::kCtlsinvalidat, Text::kCardInvalid},
    Reason{Status::kCtlsproblems, Text::kCardReadError},
    Reason{Status::kCtlsappnav, Text::kCardNotAccepted},
    Reason{Status::kCtlsappnaut, Text::kCardNotAccepted},
    Reason{Status::kCtlsextcvm, Text::kSeePhone},
    Reason{Status::kCtlsifchg, Text::kAskForCardWithoutTap},
};

struct Currency {
    unsigned number;
    std::string_view name;
    unsigned decimals = 2;
};

// A card that is read for no currency in particular is read for that of the country.
constexpr unsigned kNone = 0;
constexpr std::array kCurrencies{
    Currency{kNone, "R$"},   Currency{986, "R$"},     Currency{32, "ARS"},     Currency{48, "BHD", 3},
    Currency{68, "BOB"},     Currency{124, "CAD"},    Currency{152, "CLP", 0}, Currency{170, "COP"},
    Currency{188, "CRC"},    Currency{320, "GTQ"},    Currency{392, "JPY", 0}, Currency{400, "JOD", 3},
    Currency{410, "KRW", 0}, Currency{414, "KWD", 3}, Currency{484, "MXN"},    Currency{512, "OMR", 3},
    Currency{600, "PYG", 0}, Currency{604, "PEN"},    Currency{704, "VND", 0}, Currency{756, "CHF"},
    Currency{788, "TND", 3}, Currency{826, "GBP"},    Currency{840, "USD"},    Currency{858, "UYU"},
    Currency{928, "VES"},    Currency{978, "EUR"},
};

}  // namespace

std::string text_of(Text text, Language language) {
    const TextEntry& entry = kTexts.at(static_cast<size_t>(text));
    return to_latin1(language == Language::kEnglish ? entry.english : entry.portuguese);
}

std::optional<Text> text_for(Status status) noexcept {
    const auto* found = std::ranges::find(kReasons, status, &Reason::status);
    return found != kReasons.end() ? std::optional(found->text) : std::nullopt;
}

std::string amount_text(uint64_t amount, unsigned currency, Language language) {
    const auto* found = std::ranges::find(kCurrencies, currency, &Currency::number);
    const bool known = found != kCurrencies.end();
    const unsigned decimals = known ? found->decimals : 2;
    const std::string name = known ? std::string(found->name) : fmt::format("{:03}", currency);
    std::string digits = fmt::format("{:0{}}", amount, decimals + 1);
    if (decimals != 0) { digits.insert(digits.size() - decimals, 1, language == Language::kEnglish ? '.' : ','); }
    return fmt::format("{} {}", name, digits);
}

}  // namespace quorvel::sim
