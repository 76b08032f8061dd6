// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/transaction.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <fmt/chrono.h>
#include <fmt/format.h>

namespace quorvel::cli {

namespace {

// A request of the library's that is put together piece by piece.
template <typename Request, void (*end)(Request**)>
class Builder {
public:
    explicit Builder(Request* request) : request_(request) {}
    ~Builder() { end(&request_); }
    Builder(const Builder&) = delete;
    Builder& operator=(const Builder&) = delete;
    [[nodiscard]] Request* get() const noexcept { return request_; }

private:
    Request* request_;
};

template <size_t size>
AbecsTagList tag_list(const std::array<uint8_t, size>& tags) {
    AbecsTagList list{};
    std::ranges::copy(tags, list.data);
    list.szData = size;
    return list;
}

// What an acquirer wants to see; never the card number nor the track. 5F24, 84, 82, 95, 9A, 9C, 5F2A, 5F34, 9F02, 9F03,
// 9F10, 9F1A, 9F26, 9F27, 9F33, 9F34, 9F35, 9F36, 9F37.
constexpr std::array<uint8_t, 33> kAuthorisationTags{0x5F, 0x24, 0x84, 0x82, 0x95, 0x9A, 0x9C, 0x5F, 0x2A, 0x5F, 0x34,
                                                     0x9F, 0x02, 0x9F, 0x03, 0x9F, 0x10, 0x9F, 0x1A, 0x9F, 0x26, 0x9F,
                                                     0x27, 0x9F, 0x33, 0x9F, 0x34, 0x9F, 0x35, 0x9F, 0x36, 0x9F, 0x37};
// 8A, 95, 9B, 9F26, 9F27.
constexpr std::array<uint8_t, 7> kFinalTags{0x8A, 0x95, 0x9B, 0x9F, 0x26, 0x9F, 0x27};
// 4F, 50.
constexpr std::array<uint8_t, 2> kApplicationTags{0x4F, 0x50};

// Floor limit, target percentage, threshold and maximum percentage of the random selection, which is not used.
std::array<uint8_t, 10> risk_parameters(uint32_t floorLimit) {
    std::array<uint8_t, 10> parameters{};
    for (size_t i = 0; i < 4; ++i) { parameters[i] = static_cast<uint8_t>(floorLimit >> (24 - 8 * i)); }
    return parameters;
}

void require_ok(const char* id, int32_t status) {
    if (status != ABECS_RSP_STAT_ST_OK) { throw StatusError(id, status); }
}

constexpr auto kCardTypes = std::to_array<std::pair<CardType, std::string_view>>({
    {CardType::kStripe, "magnetic stripe"},
    {CardType::kChip, "chip"},
    {CardType::kContactlessStripe, "contactless, stripe data"},
    {CardType::kContactless, "contactless"},
});

}  // namespace

void read_card(Link& link, const CardRequest& request, Items& card) {
    const std::tm now = fmt::localtime(std::time(nullptr));
    const std::string date = fmt::format("{:%y%m%d}", now);
    const std::string time = fmt::format("{:%H%M%S}", now);
    const Builder<AbecsCmdGcxBuilder, abecs_cmd_gcx_builder_delete> builder(
        call([&] { return abecs_cmd_gcx_builder_new(date.c_str(), time.c_str()); }));
    const AbecsTagList tags = tag_list(kApplicationTags);
    call([&] {
        abecs_cmd_gcx_builder_trntype(builder.get(), 0);
        if (request.acquirer) { abecs_cmd_gcx_builder_acqref(builder.get(), *request.acquirer); }
        abecs_cmd_gcx_builder_amount(builder.get(), request.amount);
        abecs_cmd_gcx_builder_trncurr(builder.get(), request.currency);
        abecs_cmd_gcx_builder_gcxopt(builder.get(), request.contactless ? "10000" : "00000");
        abecs_cmd_gcx_builder_panmask(builder.get(), request.whole ? "1900" : "0604");
        abecs_cmd_gcx_builder_taglist(builder.get(), &tags);
        abecs_cmd_gcx_builder_timeout(builder.get(), request.timeout);
    });
    require_ok("GCX", link.wait([&] { abecs_cmd_gcx(link.get(), builder.get()); },
                                [&](char* notification) {
                                    return abecs_cmd_gcx_response(link.get(), card.get(), notification);
                                }));
}

CardType card_type(const Items& card) {
    const auto* found = std::ranges::find(kCardTypes, card.number(ABECS_RSP_DATID_PP_CARDTYPE).value_or(-1),
                                          [](const auto& each) { return static_cast<int>(each.first); });
    if (found == kCardTypes.end()) {
        throw Error(Exit::kLink, "The PIN pad does not tell what kind of card it has read.");
    }
    return found->first;
}

std::string card_type_words(CardType type) {
    return std::string(std::ranges::find(kCardTypes, type, [](const auto& each) { return each.first; })->second);
}

Group card_group(const Items& card) {
    Group group{{"Read by", card_type_words(card_type(card))}};
    card.add(group, "Card number", ABECS_RSP_DATID_PP_PAN);
    card.add(group, "Cardholder", ABECS_RSP_DATID_PP_CHNAME);
    card.add(group, "Expires", ABECS_RSP_DATID_PP_CARDEXP);
    card.add(group, "Sequence number", ABECS_RSP_DATID_PP_PANSEQNO);
    card.add(group, "Application", ABECS_RSP_DATID_PP_LABEL);
    card.add(group, "Issuer country", ABECS_RSP_DATID_PP_ISSCNTRY);
    card.add(group, "Table record", ABECS_RSP_DATID_PP_AIDTABINFO);
    card.add(group, "Track 1", ABECS_RSP_DATID_PP_TRK1INC);
    card.add(group, "Track 2", ABECS_RSP_DATID_PP_TRK2INC);
    card.add(group, "Track 3", ABECS_RSP_DATID_PP_TRK3INC);
    card.add(group, "EMV data", ABECS_RSP_DATID_PP_EMVDATA);
    return group;
}

void go_on_chip(Link& link, const GoRequest& request, Items& decision) {
    const Builder<AbecsCmdGoxBuilder, abecs_cmd_gox_builder_delete> builder(
        call([&] { return abecs_cmd_gox_builder_new(request.acquirer, request.pinMethod, request.pinKey); }));
    const AbecsTagList tags = tag_list(kAuthorisationTags);
    const auto risk = risk_parameters(request.floorLimit);
    call([&] {
        abecs_cmd_gox_builder_trntype(builder.get(), 0);
        abecs_cmd_gox_builder_amount(builder.get(), request.amount);
        abecs_cmd_gox_builder_trncurr(builder.get(), request.currency);
        abecs_cmd_gox_builder_trmpar(builder.get(), risk.data());
        abecs_cmd_gox_builder_taglist(builder.get(), &tags);
    });
    require_ok("GOX", link.wait([&] { abecs_cmd_gox(link.get(), builder.get()); },
                                [&](char* notification) {
                                    return abecs_cmd_gox_response(link.get(), decision.get(), notification);
                                }));
}

void finish_chip(Link& link, const std::optional<std::string>& responseCode, Items& decision) {
    const char* options = responseCode ? "0000" : "2000";
    const Builder<AbecsCmdFcxBuilder, abecs_cmd_fcx_builder_delete> builder(
        call([&] { return abecs_cmd_fcx_builder_new(options); }));
    const AbecsTagList tags = tag_list(kFinalTags);
    call([&] {
        if (responseCode) { abecs_cmd_fcx_builder_arc(builder.get(), responseCode->c_str()); }
        abecs_cmd_fcx_builder_taglist(builder.get(), &tags);
    });
    require_ok("FCX", link.wait([&] { abecs_cmd_fcx(link.get(), builder.get()); },
                                [&](char* notification) {
                                    return abecs_cmd_fcx_response(link.get(), decision.get(), notification);
                                }));
}

}  // namespace quorvel::cli
