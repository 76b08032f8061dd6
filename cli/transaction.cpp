// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/transaction.h"

#include <array>

#include "wire/named.h"

namespace quorvel::cli {

CardAnswer read_card(Link& link, const CardRequest& request) {
    CardAnswer card = link.await(Gcx{.amount = request.amount,
                                     .currency = request.currency,
                                     .acquirer = request.acquirer,
                                     .type = 0,
                                     .contactless = request.contactless,
                                     .pan_mask = request.whole ? PanMask{19, 0} : PanMask{6, 4},
                                     .tags = Tags{0x4F, 0x50},
                                     .timeout = request.timeout},
                                 request.timeout + kMargin);
    if (!card.type) { throw Error(Exit::kLink, "The PIN pad does not tell what kind of card it has read."); }
    return card;
}

std::string have_card_removed(Link& link, const std::string& message, std::chrono::seconds timeout) {
    static constexpr std::chrono::milliseconds kMoment{500};
    try {
        const auto status = link.wait_regardless(Rmc{message}, interrupt::requested() ? kMoment : timeout).status();
        return std::string(status.is_ok() ? kRemoved : "still there");
    } catch (const Error& error) { return error.what(); }
}

std::string card_type_words(CardType type) {
    static constexpr std::array kWords{wire::Named{"magnetic stripe", CardType::stripe},
                                       wire::Named{"chip", CardType::chip},
                                       wire::Named{"contactless, stripe data", CardType::contactless_stripe},
                                       wire::Named{"contactless", CardType::contactless}};
    return std::string(wire::name_among(kWords, type));
}

Group card_group(const CardAnswer& card) {
    Group group{{"Read by", card_type_words(*card.type)}};
    const auto add = [&](const char* label, uint16_t id) { add_item(group, label, card.items, id); };
    add("Card number", ABECS_RSP_DATID_PP_PAN);
    add("Cardholder", ABECS_RSP_DATID_PP_CHNAME);
    add("Expires", ABECS_RSP_DATID_PP_CARDEXP);
    add("Sequence number", ABECS_RSP_DATID_PP_PANSEQNO);
    add("Application", ABECS_RSP_DATID_PP_LABEL);
    add("Issuer country", ABECS_RSP_DATID_PP_ISSCNTRY);
    add("Table record", ABECS_RSP_DATID_PP_AIDTABINFO);
    add("Track 1", ABECS_RSP_DATID_PP_TRK1INC);
    add("Track 2", ABECS_RSP_DATID_PP_TRK2INC);
    add("Track 3", ABECS_RSP_DATID_PP_TRK3INC);
    add("EMV data", ABECS_RSP_DATID_PP_EMVDATA);
    return group;
}

}  // namespace quorvel::cli
