// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_HPP_PAYMENT_HPP
#define QUORVEL_HPP_PAYMENT_HPP

#include "quorvel/hpp/receivers.hpp"

/// @file
/// Requests of a payment: the card is read (GCX or GCR), its application decides (GOX or GOC), and the acquirer's
/// answer is handed to it (FCX or FNC). Amounts are in the smallest unit of their currency. What each member may be,
/// and what is an error, stands with the C functions in quorvel/abecs/cmd.

namespace quorvel {

/// How a card was read.
enum class CardType : uint8_t {
    stripe = ABECS_CMD_GCR_CARD_TYPE_MAGNETIC,
    chip = ABECS_CMD_GCR_CARD_TYPE_ICC_EMV,
    contactless_stripe = ABECS_CMD_GCR_CARD_TYPE_CTLS_MAGSTRIPE,
    contactless = ABECS_CMD_GCR_CARD_TYPE_CTLS_EMV,
};

/// What GCX has read of a card: the members of which the PIN pad has told. `items` has them all, as they came.
struct CardAnswer {
    std::optional<CardType> type;                  ///< how it was read
    std::optional<uint64_t> chip_status;           ///< how the last reading of a chip ended
    std::optional<std::string> table_record;       ///< acquirer, record and type of application: PP_AIDTABINFO
    std::optional<Secret> pan;                     ///< the card number
    std::optional<uint64_t> pan_sequence;          ///< its sequence number
    std::optional<Secret> cardholder;              ///< the cardholder's name
    std::optional<std::string> label;              ///< the application's
    std::optional<std::string> expiry;             ///< YYMMDD
    std::optional<uint64_t> issuer_country;        ///< its numeric code
    std::optional<Secret> track1, track2, track3;  ///< the tracks, those that are there
    std::optional<Secret> emv_data;                ///< EMV data objects, one behind the other
    std::optional<std::string> device_type;        ///< what holds the card: a card, a phone or something else
    Items items;                                   ///< the whole answer

    /// The acquirer's index in the table record, for Gox; nothing when there is none.
    [[nodiscard]] std::optional<uint8_t> acquirer() const noexcept {
        const auto digit = [](char c) { return c >= '0' && c <= '9'; };
        if (!table_record || table_record->size() < 2) { return std::nullopt; }
        const char tens = (*table_record)[0];
        const char ones = (*table_record)[1];
        if (!digit(tens) || !digit(ones)) { return std::nullopt; }
        return static_cast<uint8_t>((tens - '0') * 10 + (ones - '0'));
    }

    /// For Gcx: what an answer tells.
    [[nodiscard]] static CardAnswer of(const Items& items) {
        const auto text = [&](int32_t id) {
            const auto value = items.text(id);
            return value ? std::optional<std::string>(*value) : std::nullopt;
        };
        const auto type = items.number(ABECS_RSP_DATID_PP_CARDTYPE);
        const bool known = type && (*type == 0 || *type == 3 || *type == 5 || *type == 6);
        return {.type = known ? std::optional(static_cast<CardType>(*type)) : std::nullopt,
                .chip_status = items.number(ABECS_RSP_DATID_PP_ICCSTAT),
                .table_record = text(ABECS_RSP_DATID_PP_AIDTABINFO),
                .pan = items.secret(ABECS_RSP_DATID_PP_PAN),
                .pan_sequence = items.number(ABECS_RSP_DATID_PP_PANSEQNO),
                .cardholder = items.secret(ABECS_RSP_DATID_PP_CHNAME),
                .label = text(ABECS_RSP_DATID_PP_LABEL),
                .expiry = text(ABECS_RSP_DATID_PP_CARDEXP),
                .issuer_country = items.number(ABECS_RSP_DATID_PP_ISSCNTRY),
                .track1 = items.secret(ABECS_RSP_DATID_PP_TRK1INC),
                .track2 = items.secret(ABECS_RSP_DATID_PP_TRK2INC),
                .track3 = items.secret(ABECS_RSP_DATID_PP_TRK3INC),
                .emv_data = items.secret_bytes(ABECS_RSP_DATID_PP_EMVDATA),
                .device_type = text(ABECS_RSP_DATID_PP_DEVTYPE),
                .items = items};
    }
};

/// GCX: has a card inserted, swiped or tapped, and reads it.
struct Gcx {
    std::optional<Whole<uint64_t>> amount = {};         ///< in the currency's smallest unit
    std::optional<Whole<uint64_t>> cashback = {};       ///< in the currency's smallest unit
    std::optional<Whole<uint16_t>> currency = {};       ///< its numeric code, 986 for instance
    std::optional<Whole<uint8_t>> acquirer = {};        ///< any, when there is none
    std::optional<Bytes> application_types = {};        ///< 1 to 10 of them, each 1 to 98
    std::optional<std::string_view> applications = {};  ///< records of the AID table, four characters each
    std::optional<Whole<uint8_t>> type = {};            ///< of the transaction
    std::optional<bool> contactless = {};               ///< takes a contactless card: the first digit of the options
    std::optional<std::string_view> options = {};       ///< all five digits, in place of `contactless`
    std::optional<PanMask> pan_mask = {};               ///< how many digits of the card number come in clear
    std::optional<Bytes> emv_data = {};                 ///< EMV data objects, one behind the other
    std::optional<Tags> tags = {};                      ///< whose values are to be in the answer
    std::optional<std::chrono::seconds> timeout = {};   ///< the PIN pad's own, when there is none
    std::optional<std::string_view> text = {};          ///< on the display, up to 128 characters
    std::optional<DateTime> when = {};                  ///< the time of sending, when there is none

    static constexpr std::string_view id = "GCX";  ///< the command's name on the line
    auto on(detail::Line& line) const {
        const auto built = builder(line);
        return detail::started<detail::ItemsReceiver<abecs_cmd_gcx_response, CardAnswer::of>>(
            line, [&](AbecsComm* link) { abecs_cmd_gcx(link, built.get()); });
    }

private:
    using Builder = detail::Owned<abecs_cmd_gcx_builder_delete>;

    [[nodiscard]] Builder builder(detail::Line& line) const {
        char date[16];
        char time[16];
        const DateTime moment = when.value_or(DateTime::now());
        std::snprintf(date, sizeof date, "%02d%02d%02d", moment.year, moment.month, moment.day);
        std::snprintf(time, sizeof time, "%02d%02d%02d", moment.hour, moment.minute, moment.second);
        Builder built(line.call([&] { return abecs_cmd_gcx_builder_new(date, time); }));
        AbecsCmdGcxBuilder* const to = built.get();
        const detail::CText records(applications);
        const std::string_view implied = contactless.value_or(false) ? "10000" : "00000";
        const detail::CText choice(options ? options : contactless ? std::optional(implied) : std::nullopt);
        const PanMask digits = pan_mask.value_or(PanMask{});
        char mask[16];
        std::snprintf(mask, sizeof mask, "%02d%02d", digits.leading, digits.trailing);
        const detail::EmvData data(emv_data.value_or(Bytes()));
        const uint8_t seconds = detail::seconds_of(timeout.value_or(std::chrono::seconds(0)));
        const detail::CText shown(text);
        line.call([&] {
            if (type) { abecs_cmd_gcx_builder_trntype(to, *type); }
            if (acquirer) { abecs_cmd_gcx_builder_acqref(to, *acquirer); }
            if (application_types) {
                abecs_cmd_gcx_builder_apptype(to, application_types->data(), application_types->size());
            }
            if (applications) { abecs_cmd_gcx_builder_aidlist(to, records.get()); }
            if (amount) { abecs_cmd_gcx_builder_amount(to, *amount); }
            if (cashback) { abecs_cmd_gcx_builder_cashback(to, *cashback); }
            if (currency) { abecs_cmd_gcx_builder_trncurr(to, *currency); }
            if (choice.get() != nullptr) { abecs_cmd_gcx_builder_gcxopt(to, choice.get()); }
            if (pan_mask) { abecs_cmd_gcx_builder_panmask(to, mask); }
            if (emv_data) { abecs_cmd_gcx_builder_emvdata(to, &data.record); }
            if (tags) { abecs_cmd_gcx_builder_taglist(to, &tags->native()); }
            if (timeout) { abecs_cmd_gcx_builder_timeout(to, seconds); }
            if (text) { abecs_cmd_gcx_builder_dspmsg(to, shown.get()); }
        });
        return built;
    }
};

/// The terminal's risk management, for Gox: amounts in the currency's smallest unit, percentages up to 99.
[[nodiscard]] inline std::array<uint8_t, 10> risk(uint32_t floor_limit, uint8_t target_percent = 0,
                                                  uint32_t threshold = 0, uint8_t most_percent = 0) noexcept {
    const auto byte = [](uint32_t number, int shift) { return static_cast<uint8_t>(number >> shift); };
    return {byte(floor_limit, 24), byte(floor_limit, 16), byte(floor_limit, 8), byte(floor_limit, 0), target_percent,
            byte(threshold, 24),   byte(threshold, 16),   byte(threshold, 8),   byte(threshold, 0),   most_percent};
}

/// What the card has decided at first. `decision` is nothing when the PIN pad does not tell one that the protocol
/// knows.
struct GoxAnswer {
    /// The application's decision.
    enum class Decision { approved = 0, declined = 1, online = 2 };

    std::optional<Decision> decision = {};  ///< what was decided
    bool signature = false;                 ///< is asked for
    bool pin_offline = false;               ///< the card has verified a PIN
    uint8_t pin_errors = 0;                 ///< wrong PINs entered for the card
    bool pin_blocked = false;               ///< after too many wrong PINs
    bool pin_online = false;                ///< `pin_block` is for the acquirer
    std::optional<Secret> pin_block;        ///< the PIN, enciphered
    std::optional<Secret> ksn;              ///< serial number of a DUKPT key
    std::optional<Secret> emv_data;         ///< EMV data objects, one behind the other
    Items items;                            ///< the whole answer

    /// For Gox: what an answer tells.
    [[nodiscard]] static GoxAnswer of(const Items& items) {
        GoxAnswer answer{.pin_block = items.secret_bytes(ABECS_RSP_DATID_PP_PINBLK),
                         .ksn = items.secret_bytes(ABECS_RSP_DATID_PP_KSN),
                         .emv_data = items.secret_bytes(ABECS_RSP_DATID_PP_EMVDATA),
                         .items = items};
        const std::string_view digits = items.text(ABECS_RSP_DATID_PP_GOXRES).value_or("");
        if (digits.size() < 6 || digits[0] < '0' || digits[0] > '2') { return answer; }
        answer.decision = static_cast<Decision>(digits[0] - '0');
        answer.signature = digits[1] != '0';
        answer.pin_offline = digits[2] != '0';
        answer.pin_errors = static_cast<uint8_t>(digits[3] - '0');
        answer.pin_blocked = digits[4] != '0';
        answer.pin_online = digits[5] != '0';
        return answer;
    }
};

/// GOX: after GCX has read a chip, or a contactless card with EMV data, has its application take its first decision.
struct Gox {
    uint8_t acquirer = 0;                          ///< CardAnswer::acquirer()
    PinMethod pin_method = PinMethod::dukpt_tdes;  ///< how the PIN is enciphered
    uint8_t key_index = 0;                         ///< of the key in the PIN pad, 0 to 99
    std::optional<Bytes> working_key = {};       ///< under the master key, for the methods that take one: 8 or 16 bytes
    std::optional<Whole<uint8_t>> type = {};     ///< of the transaction
    std::optional<Whole<uint64_t>> amount = {};  ///< in the currency's smallest unit
    std::optional<Whole<uint64_t>> cashback = {};      ///< in the currency's smallest unit
    std::optional<Whole<uint16_t>> currency = {};      ///< its numeric code
    std::optional<std::string_view> options = {};      ///< five digits
    std::optional<std::string_view> text = {};         ///< on the display, up to 128 characters
    std::optional<std::array<uint8_t, 10>> risk = {};  ///< see quorvel::risk
    std::optional<Bytes> emv_data = {};                ///< EMV data objects, one behind the other
    std::optional<Tags> tags = {};                     ///< whose values are to be in the answer
    std::optional<std::chrono::seconds> timeout = {};  ///< the PIN pad's own, when there is none

    static constexpr std::string_view id = "GOX";  ///< the command's name on the line
    auto on(detail::Line& line) const {
        const auto built = builder(line);
        return detail::started<detail::ItemsReceiver<abecs_cmd_gox_response, GoxAnswer::of>>(
            line, [&](AbecsComm* link) { abecs_cmd_gox(link, built.get()); });
    }

private:
    using Builder = detail::Owned<abecs_cmd_gox_builder_delete>;

    [[nodiscard]] Builder builder(detail::Line& line) const {
        const auto method = static_cast<AbecsSpeMthdPin_E>(pin_method);
        Builder built(line.call([&] { return abecs_cmd_gox_builder_new(acquirer, method, key_index); }));
        AbecsCmdGoxBuilder* const to = built.get();
        const detail::CText choice(options);
        const detail::CText shown(text);
        const detail::EmvData data(emv_data.value_or(Bytes()));
        const uint8_t seconds = detail::seconds_of(timeout.value_or(std::chrono::seconds(0)));
        line.call([&] {
            if (working_key) { abecs_cmd_gox_builder_wkenc(to, working_key->data(), working_key->size()); }
            if (type) { abecs_cmd_gox_builder_trntype(to, *type); }
            if (amount) { abecs_cmd_gox_builder_amount(to, *amount); }
            if (cashback) { abecs_cmd_gox_builder_cashback(to, *cashback); }
            if (currency) { abecs_cmd_gox_builder_trncurr(to, *currency); }
            if (options) { abecs_cmd_gox_builder_goxopt(to, choice.get()); }
            if (text) { abecs_cmd_gox_builder_dspmsg(to, shown.get()); }
            if (risk) { abecs_cmd_gox_builder_trmpar(to, risk->data()); }
            if (emv_data) { abecs_cmd_gox_builder_emvdata(to, &data.record); }
            if (tags) { abecs_cmd_gox_builder_taglist(to, &tags->native()); }
            if (timeout) { abecs_cmd_gox_builder_timeout(to, seconds); }
        });
        return built;
    }
};

/// The card's last word. `decision` is nothing when the PIN pad does not tell one that the protocol knows.
struct FcxAnswer {
    /// The last decision.
    enum class Decision { approved = 0, declined_by_card = 1, declined_by_acquirer = 2 };

    std::optional<Decision> decision;      ///< what was decided
    std::optional<Secret> emv_data;        ///< EMV data objects, one behind the other
    std::optional<Secret> script_results;  ///< results of the issuer's scripts
    Items items;                           ///< the whole answer

    /// For Fcx: what an answer tells.
    [[nodiscard]] static FcxAnswer of(const Items& items) {
        const auto result = items.number(ABECS_RSP_DATID_PP_FCXRES);
        return {.decision = result && *result <= 2 ? std::optional(static_cast<Decision>(*result)) : std::nullopt,
                .emv_data = items.secret_bytes(ABECS_RSP_DATID_PP_EMVDATA),
                .script_results = items.secret_bytes(ABECS_RSP_DATID_PP_ISRESULTS),
                .items = items};
    }
};

/// FCX: hands the acquirer's answer to the chip, which has the last word.
struct Fcx {
    std::optional<std::string_view> response_code = {};  ///< two characters; without one the acquirer was not reached
    std::optional<std::string_view> options = {};        ///< four digits; "0000" with a response code, else "2000"
    std::optional<Bytes> emv_data = {};                  ///< the issuer's authentication data and scripts
    std::optional<Tags> tags = {};                       ///< whose values are to be in the answer
    std::optional<std::chrono::seconds> timeout = {};    ///< the PIN pad's own, when there is none

    static constexpr std::string_view id = "FCX";  ///< the command's name on the line
    auto on(detail::Line& line) const {
        const auto built = builder(line);
        return detail::started<detail::ItemsReceiver<abecs_cmd_fcx_response, FcxAnswer::of>>(
            line, [&](AbecsComm* link) { abecs_cmd_fcx(link, built.get()); });
    }

private:
    using Builder = detail::Owned<abecs_cmd_fcx_builder_delete>;

    [[nodiscard]] Builder builder(detail::Line& line) const {
        const detail::CText choice(options.value_or(response_code ? "0000" : "2000"));
        Builder built(line.call([&] { return abecs_cmd_fcx_builder_new(choice.get()); }));
        AbecsCmdFcxBuilder* const to = built.get();
        const detail::CText code(response_code);
        const detail::EmvData data(emv_data.value_or(Bytes()));
        const uint8_t seconds = detail::seconds_of(timeout.value_or(std::chrono::seconds(0)));
        line.call([&] {
            if (response_code) { abecs_cmd_fcx_builder_arc(to, code.get()); }
            if (emv_data) { abecs_cmd_fcx_builder_emvdata(to, &data.record); }
            if (tags) { abecs_cmd_fcx_builder_taglist(to, &tags->native()); }
            if (timeout) { abecs_cmd_fcx_builder_timeout(to, seconds); }
        });
        return built;
    }
};

/// What GCR has read of a card.
struct GcrAnswer {
    CardType type;                                  ///< how it was read
    AbecsCmdGcrStatChip_E chip_status;              ///< how the last reading of a chip ended
    uint8_t application_type;                       ///< of the card's application
    uint8_t acquirer;                               ///< the acquirer's index
    std::string record;                             ///< of the AID table
    Secret track1, track2, track3;                  ///< the tracks
    Secret pan;                                     ///< the card number
    uint8_t pan_sequence;                           ///< its sequence number
    std::string label;                              ///< the application's name
    uint16_t service_code;                          ///< the service code
    Secret cardholder;                              ///< the cardholder's name
    uint8_t expiry_year, expiry_month, expiry_day;  ///< of the year the last two digits
    std::array<uint8_t, 29> extra;                  ///< what the acquirer adds
    uint16_t issuer_country;                        ///< its numeric code
    std::string acquirer_data;                      ///< hexadecimal digits, of the acquirers 1 and 2 only
    std::string acquirer_text1;                     ///< of acquirer 1 only
    std::string acquirer_text2;                     ///< of acquirer 1 only

    /// For Gcr: what an answer tells.
    [[nodiscard]] static GcrAnswer of(const AbecsCmdGcrResponse& out) {
        const auto text = [](const auto& member) { return std::string(detail::taken(member)); };
        const auto secret = [](const auto& member) { return Secret(detail::taken(member)); };
        GcrAnswer answer{.type = static_cast<CardType>(out.cardType),
                         .chip_status = out.statChip,
                         .application_type = out.appType,
                         .acquirer = out.acqIdx,
                         .record = text(out.recIdx),
                         .track1 = secret(out.track1),
                         .track2 = secret(out.track2),
                         .track3 = secret(out.track3),
                         .pan = secret(out.pan),
                         .pan_sequence = out.panSeqNum,
                         .label = text(out.appLabel),
                         .service_code = out.serviceCode,
                         .cardholder = secret(out.cardholderName),
                         .expiry_year = out.expYear,
                         .expiry_month = out.expMonth,
                         .expiry_day = out.expDay,
                         .extra = {},
                         .issuer_country = out.issuerCountry,
                         .acquirer_data = {},
                         .acquirer_text1 = {},
                         .acquirer_text2 = {}};
        std::copy_n(out.extData, answer.extra.size(), answer.extra.begin());
        if (out.acqIdx == 1) {
            answer.acquirer_data = text(out.acqRd01Data);
            answer.acquirer_text1 = text(out.acqRd01Text1);
            answer.acquirer_text2 = text(out.acqRd01Text2);
        } else if (out.acqIdx == 2) {
            answer.acquirer_data = text(out.acqRd02Data);
        }
        return answer;
    }
};

/// GCR: reads a card as GCX does, with a request and an answer of fixed fields.
struct Gcr {
    uint8_t acquirer = 0;                               ///< the acquirer's index, 0 to 99
    uint8_t application_type = 0;                       ///< one type of application, or 0 for any
    uint64_t amount = 0;                                ///< in the currency's smallest unit
    std::string_view tables_version = {};               ///< that the caller knows
    bool contactless = false;                           ///< whether contactless cards are taken
    std::optional<std::string_view> applications = {};  ///< records of the AID table, four characters each
    std::optional<DateTime> when = {};                  ///< the time of sending, when there is none

    static constexpr std::string_view id = "GCR";  ///< the command's name on the line
    /// For GcrAgain.
    using Reader = detail::RecordReceiver<AbecsCmdGcrResponse, abecs_cmd_gcr_response, GcrAnswer::of>;
    auto on(detail::Line& line) const {
        const DateTime moment = when.value_or(DateTime::now());
        AbecsCmdGcrData data{.acqIdxReq = acquirer,
                             .appTypReq = application_type,
                             .amount = amount,
                             .date = {moment.year, moment.month, moment.day},
                             .time = {moment.hour, moment.minute, moment.second},
                             .tabVer = {},
                             .ctlsOn = contactless};
        detail::put(data.tabVer, tables_version, "the version of the tables");
        const detail::CText records(applications);
        return detail::started<Reader>(line, [&](AbecsComm* link) { abecs_cmd_gcr(link, &data, records.get()); });
    }
};

/// GCR without data: the PIN pad takes its defaults.
struct GcrAgain {
    static constexpr std::string_view id = "GCR";  ///< the command's name on the line
    auto on(detail::Line& line) const {
        return detail::started<Gcr::Reader>(line, [](AbecsComm* link) { abecs_cmd_gcr_empty(link); });
    }
};

/// What the card has decided at first; numbers as they came.
struct GocAnswer {
    uint8_t decision;    ///< what was decided
    bool signature;      ///< is asked for
    bool pin_offline;    ///< the card has verified a PIN
    uint8_t pin_errors;  ///< wrong PINs entered for the card
    bool pin_blocked;    ///< after too many wrong PINs
    bool pin_online;     ///< `pin_block` is for the acquirer
    Secret pin_block;    ///< 16 characters
    Secret ksn;          ///< 20 characters
    Secret emv_data;     ///< EMV data objects, one behind the other

    /// For Goc: what an answer tells.
    [[nodiscard]] static GocAnswer of(const AbecsCmdGocResponse& out) {
        return {out.decision,
                out.signature,
                out.pinOffline,
                out.pinOfflineErrors,
                out.pinBlocked,
                out.pinOnline,
                Secret(Bytes(out.pinBlock)),
                Secret(Bytes(out.ksn)),
                Secret(Bytes(out.emvData, out.emvDataLen))};
    }
};

/// GOC: after GCR, has the chip's application take its first decision.
struct Goc {
    /// The terminal's risk management.
    struct Risk {
        uint32_t floor_limit = 0;    ///< above which the acquirer is asked
        uint8_t target_percent = 0;  ///< for random selection, up to 99
        uint32_t threshold = 0;      ///< below which selection is by the target alone
        uint8_t most_percent = 0;    ///< for random selection near the floor limit, up to 99
    };

    uint8_t acquirer = 0;                      ///< GcrAnswer::acquirer
    uint64_t amount = 0;                       ///< in the currency's smallest unit
    uint64_t cashback = 0;                     ///< in the currency's smallest unit
    bool excluded = false;                     ///< the card is on an exception list
    bool online = true;                        ///< the acquirer can be reached
    PinMethod method = PinMethod::dukpt_tdes;  ///< how it is enciphered
    uint8_t key_index = 0;                     ///< of the key in the PIN pad, 0 to 99
    std::optional<Bytes> working_key = {};     ///< under the master key, for the methods that take one: 8 or 16 bytes
    std::optional<Risk> risk = {};             ///< the terminal's risk management
    uint8_t type = 0;                          ///< of the transaction, for acquirer 1
    bool flag = false;                         ///< for acquirer 1
    std::string_view acquirer_data = {};       ///< up to 32 characters, for acquirer 2
    std::optional<Tags> tags = {};             ///< whose values are to be in the answer
    std::optional<Tags> tags_of_pin = {};      ///< further ones, when a PIN was taken for the acquirer

    static constexpr std::string_view id = "GOC";  ///< the command's name on the line
    auto on(detail::Line& line) const {
        detail::Wiped<AbecsCmdGocData> held;
        AbecsCmdGocData& data = held.record;
        data.amount = amount;
        data.cashback = cashback;
        data.exclist = excluded ? 1 : 0;
        data.connect = online;
        data.method = static_cast<AbecsCmdGocMethod_E>(method);
        data.keyidx = key_index;
        if (working_key) {
            detail::put(data.wkenc, detail::to_hex(*working_key).reveal(), "the working key in digits");
        }
        data.riskman = risk.has_value();
        const Risk limits = risk.value_or(Risk{});
        std::snprintf(data.flrlimit, sizeof data.flrlimit, "%08X", limits.floor_limit);
        std::snprintf(data.thrbrs, sizeof data.thrbrs, "%08X", limits.threshold);
        data.tpbrs = limits.target_percent;
        data.mtpbrs = limits.most_percent;
        if (acquirer == 1) {
            data.acqpr.acqpr01.transactionType = type;
            data.acqpr.acqpr01.flag = flag;
        } else {
            detail::put(data.acqpr.acqpr02.data, acquirer_data, "the acquirer's data");
        }
        put_tags(data.tags1, data.tags1len, tags);
        put_tags(data.tags2, data.tags2len, tags_of_pin);
        return detail::started<detail::RecordReceiver<AbecsCmdGocResponse, abecs_cmd_goc_response, GocAnswer::of>>(
            line, [&](AbecsComm* link) { abecs_cmd_goc(link, acquirer, &data); });
    }

private:
    static void put_tags(char (&to)[257], uint16_t& length, const std::optional<Tags>& tags) {
        if (!tags) { return; }
        detail::put(to, detail::to_hex(tags->bytes()).reveal(), "tags");
        length = static_cast<uint16_t>(tags->bytes().size());
    }
};

/// The card's last word; the number as it came.
struct FncAnswer {
    uint32_t decision;      ///< what was decided
    Secret emv_data;        ///< EMV data objects, one behind the other
    Secret script_results;  ///< results of the issuer's scripts
};

/// FNC: after GOC, hands the acquirer's answer to the chip.
struct Fnc {
    int32_t communication = 0;            ///< how the acquirer was reached: 0, 1 or 9
    std::string_view response_code = {};  ///< two characters
    Bytes issuer_data = {};               ///< up to 494 bytes
    Bytes tags = {};                      ///< up to 498 bytes

    static constexpr std::string_view id = "FNC";  ///< the command's name on the line
    Answer<FncAnswer> on(detail::Line& line) const {
        detail::Wiped<AbecsCmdFncData> held;
        AbecsCmdFncData& data = held.record;
        data.commSt = communication;
        detail::put(data.arc, response_code, "the response code");
        detail::put(data.issDat, detail::to_hex(issuer_data).reveal(), "the issuer's data in digits");
        data.issDatLen = issuer_data.size();
        detail::put(data.tags, detail::to_hex(tags).reveal(), "tags in digits");
        data.tagsLen = tags.size();
        detail::Wiped<AbecsCmdFncResponse> response;
        AbecsCmdFncResponse& out = response.record;
        const int32_t status = line.exchange([&] { return abecs_cmd_fnc(line.get(), &data, &out); });
        return detail::answered(id, status, [&] {
            return FncAnswer{out.decision, detail::refilled_bytes(detail::taken(out.emvData), out.emvDataLen),
                             detail::refilled_bytes(detail::taken(out.isResults), out.isResultsLen)};
        });
    }
};

/// GED: the values of tags of the card in process, tag by tag.
struct Ged {
    Tags tags;  ///< whose values are to be in the answer

    static constexpr std::string_view id = "GED";  ///< the command's name on the line
    Answer<Secret> on(detail::Line& line) const {
        detail::Wiped<AbecsEmvData> held;
        AbecsEmvData& out = held.record;
        const int32_t status = line.exchange([&] { return abecs_cmd_ged(line.get(), &tags.native(), &out); });
        return detail::answered(id, status, [&] { return Secret(Bytes(out.data, out.szData)); });
    }
};

/// CNG: changes EMV data of the transaction, up to 99 bytes.
struct Cng {
    Bytes emv_data = {};  ///< what is changed, at most 99 bytes

    static constexpr std::string_view id = "CNG";  ///< the command's name on the line
    Answer<Nothing> on(detail::Line& line) const {
        const Secret digits = detail::to_hex(emv_data);
        const detail::CText data(digits.reveal());
        return detail::answered(id, line.exchange([&] { return abecs_cmd_cng(line.get(), data.get()); }));
    }
};

/// The tracks and the number of the card that was read last, those that were asked for and are there.
struct GtkAnswer {
    std::optional<Secret> pan, track1, track2, track3;                  ///< the card number; then the tracks
    std::optional<Secret> pan_ksn, track1_ksn, track2_ksn, track3_ksn;  ///< serial numbers of their keys
    std::optional<Secret> random_key;                                   ///< under the host's RSA key
    Items items;                                                        ///< the whole answer
};

/// GTK: asks for the tracks and the number of the card that was read last, in clear or enciphered.
struct Gtk {
    std::optional<std::string_view> tracks = {};           ///< four digits: tracks 1, 2 and 3 and the number
    std::optional<DataMethod> method = {};                 ///< how it is enciphered
    std::optional<std::array<uint8_t, 8>> iv = {};         ///< what the chain of blocks starts from: 8 bytes
    std::optional<Whole<int32_t>> open_digits = {};        ///< how many digits of the card number stay open
    std::optional<Whole<uint8_t>> key_index = {};          ///< of the key in the PIN pad, 0 to 99
    std::optional<Bytes> working_key = {};                 ///< under the master key: 8 or 16 bytes
    std::optional<std::array<uint8_t, 256>> modulus = {};  ///< of the host's RSA key, for the methods with a random key
    std::optional<Bytes> exponent = {};                    ///< up to 3 bytes

    static constexpr std::string_view id = "GTK";  ///< the command's name on the line
    Answer<GtkAnswer> on(detail::Line& line) const {
        const detail::Owned<abecs_cmd_gtk_builder_delete> built(line.call([] { return abecs_cmd_gtk_builder_new(); }));
        AbecsCmdGtkBuilder* const to = built.get();
        const detail::CText wanted(tracks);
        const auto key = record_of<AbecsCmdGtkWkEnc>(working_key, "a working key has 8 or 16 bytes");
        const auto exp = record_of<AbecsCmdGtkPbkExp>(exponent, "an exponent has up to 3 bytes");
        line.call([&] {
            if (tracks) { abecs_cmd_gtk_builder_tracks(to, wanted.get()); }
            if (method) { abecs_cmd_gtk_builder_mthd_dat(to, static_cast<AbecsSpeMthdDat_E>(*method)); }
            if (iv) { abecs_cmd_gtk_builder_iv_cbc(to, iv->data()); }
            if (open_digits) { abecs_cmd_gtk_builder_opn_dig(to, *open_digits); }
            if (key_index) { abecs_cmd_gtk_builder_key_idx(to, *key_index); }
            if (working_key) { abecs_cmd_gtk_builder_wk_enc(to, &key->record); }
            if (modulus) { abecs_cmd_gtk_builder_pbk_mod(to, modulus->data()); }
            if (exponent) { abecs_cmd_gtk_builder_pbk_exp(to, &exp->record); }
        });
        const Items items;
        const int32_t status = line.exchange([&] { return abecs_cmd_gtk(line.get(), to, items.native()); });
        return detail::answered(id, status, [&] { return answer_of(items); });
    }

private:
    template <typename Record>
    static std::unique_ptr<detail::Wiped<Record>> record_of(std::optional<Bytes> bytes, const char* rule) {
        auto held = std::make_unique<detail::Wiped<Record>>();
        if (!bytes) { return held; }
        if (bytes->size() > sizeof held->record.data) { detail::refuse_argument(rule); }
        held->record.size = static_cast<uint32_t>(bytes->size());
        std::copy(bytes->begin(), bytes->end(), held->record.data);
        return held;
    }
    template <typename Record, Record* (*kRead)(const AbecsRspParamMap*, Record*)>
    static std::optional<Secret> read(const Items& items) {
        detail::Wiped<Record> held;
        Record& out = held.record;
        const bool there = detail::call([&] { return kRead(items.native(), &out) != nullptr; });
        return there ? std::optional<Secret>(Bytes(out.data, out.size)) : std::nullopt;
    }
    static GtkAnswer answer_of(const Items& items) {
        // NOLINTBEGIN(clang-analyzer-cplusplus.NewDeleteLeaks): the answer frees what it holds
        return {.pan = read<AbecsCmdGtkEncPan, abecs_cmd_gtk_response_enc_pan>(items),
                .track1 = read<AbecsCmdGtkTrack1, abecs_cmd_gtk_response_track1>(items),
                .track2 = read<AbecsCmdGtkTrack2, abecs_cmd_gtk_response_track2>(items),
                .track3 = read<AbecsCmdGtkTrack3, abecs_cmd_gtk_response_track3>(items),
                .pan_ksn = read<AbecsCmdGtkKsn, abecs_cmd_gtk_response_enc_pan_ksn>(items),
                .track1_ksn = read<AbecsCmdGtkKsn, abecs_cmd_gtk_response_trk1_ksn>(items),
                .track2_ksn = read<AbecsCmdGtkKsn, abecs_cmd_gtk_response_trk2_ksn>(items),
                .track3_ksn = read<AbecsCmdGtkKsn, abecs_cmd_gtk_response_trk3_ksn>(items),
                .random_key = read<AbecsCmdGtkEncKrand, abecs_cmd_gtk_response_enc_krand>(items),
                .items = items};
        // NOLINTEND(clang-analyzer-cplusplus.NewDeleteLeaks)
    }
};

}  // namespace quorvel

#endif
