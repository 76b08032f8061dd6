// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_DEVICE_TEXTS_H
#define QUORVEL_SIMULATOR_DEVICE_TEXTS_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "wire/named.h"
#include "wire/status.h"

namespace quorvel::sim {

// In which the PIN pad talks to the cardholder.
enum class Language { kEnglish, kPortuguese };

inline constexpr std::array kLanguages{wire::Named{"en", Language::kEnglish}, wire::Named{"pt", Language::kPortuguese}};

// What the PIN pad shows of its own.
enum class Text {
    kIdle,
    kAskForCard,
    kAskForCardWithoutTap,
    kInsertChip,
    kChoose,
    kEnterPin,
    kWrongPin,
    kLastTry,
    kPinBlocked,
    kNumber,
    kProcessing,
    kCardReadError,
    kCardRemoved,
    kCardNotAccepted,
    kCardBlocked,
    kCardInvalid,
    kOneCardOnly,
    kSeePhone,
    kRemoveCard,
    kApproved,
    kDeclined,
    kCancelled,
    kTimeOut,
};

struct TextEntry {
    Text text;
    std::string_view english;
    // In UTF-8 here, and in ISO 8859-1 on the display.
    std::string_view portuguese;
};

// CR ends a line, of which a usual display has four of 16 characters.
inline constexpr std::array kTexts{
    TextEntry{Text::kIdle, "WELCOME", "BEM-VINDO"},
    TextEntry{Text::kAskForCard, "INSERT, SWIPE OR TAP THE CARD", "INSIRA, PASSE OU\rAPROXIME CARTÃO"},
    TextEntry{Text::kAskForCardWithoutTap, "INSERT OR SWIPE THE CARD", "INSIRA OU PASSE\rO CARTÃO"},
    TextEntry{Text::kInsertChip, "INSERT THE CHIP", "INSIRA O CHIP"},
    TextEntry{Text::kChoose, "CHOOSE", "ESCOLHA"},
    TextEntry{Text::kEnterPin, "ENTER THE PIN", "DIGITE A SENHA"},
    TextEntry{Text::kWrongPin, "WRONG PIN", "SENHA INCORRETA"},
    TextEntry{Text::kLastTry, "LAST TRY", "ÚLTIMA TENTATIVA"},
    TextEntry{Text::kPinBlocked, "PIN BLOCKED", "SENHA BLOQUEADA"},
    TextEntry{Text::kNumber, "NUMBER", "NÚMERO"},
    TextEntry{Text::kProcessing, "PROCESSING", "PROCESSANDO"},
    TextEntry{Text::kCardReadError, "CARD READ ERROR", "ERRO DE LEITURA\rDO CARTÃO"},
    TextEntry{Text::kCardRemoved, "CARD REMOVED", "CARTÃO RETIRADO"},
    TextEntry{Text::kCardNotAccepted, "CARD NOT\rACCEPTED", "CARTÃO NÃO\rACEITO"},
    TextEntry{Text::kCardBlocked, "CARD BLOCKED", "CARTÃO BLOQUEADO"},
    TextEntry{Text::kCardInvalid, "INVALID CARD", "CARTÃO INVÁLIDO"},
    TextEntry{Text::kOneCardOnly, "ONE CARD ONLY", "UM CARTÃO SÓ"},
    TextEntry{Text::kSeePhone, "SEE YOUR PHONE", "VEJA O CELULAR"},
    TextEntry{Text::kRemoveCard, "REMOVE THE CARD", "RETIRE O CARTÃO"},
    TextEntry{Text::kApproved, "APPROVED", "APROVADO"},
    TextEntry{Text::kDeclined, "DECLINED", "RECUSADO"},
    TextEntry{Text::kCancelled, "CANCELLED", "CANCELADO"},
    TextEntry{Text::kTimeOut, "TIME IS OVER", "TEMPO ESGOTADO"},
};

static_assert(std::ranges::is_sorted(kTexts, {}, &TextEntry::text)
                  && kTexts.size() == static_cast<size_t>(Text::kTimeOut) + 1,
              "each in its place");
static_assert(
    std::ranges::none_of(kTexts, [](const TextEntry& each) { return each.english.empty() || each.portuguese.empty(); }),
    "in both languages");

// In the display's characters.
[[nodiscard]] std::string text_of(Text text, Language language);

// What the cardholder is told of a card that is answered so; nothing for what is no concern of theirs.
[[nodiscard]] std::optional<Text> text_for(wire::Status status) noexcept;

// With the currency's decimals: "R$ 12,34", "R$ 12.34", "USD 12.34", and by its number a currency that is not known
// by name. 0 stands for none.
[[nodiscard]] std::string amount_text(uint64_t amount, unsigned currency, Language language);

}  // namespace quorvel::sim

#endif
