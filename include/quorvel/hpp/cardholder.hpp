// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_HPP_CARDHOLDER_HPP
#define QUORVEL_HPP_CARDHOLDER_HPP

#include "quorvel/hpp/receivers.hpp"

/// @file
/// Requests that speak to whoever stands before the PIN pad: display, keys, menus, cards coming and going. What each
/// member may be, and what is an error, stands with the C function in quorvel/abecs/cmd.

namespace quorvel {

/// DSP: shows up to 32 characters.
struct Dsp {
    std::string_view text = {};  ///< what is shown

    static constexpr std::string_view id = "DSP";  ///< the command's name on the line
    Answer<Nothing> on(detail::Line& line) const {
        const detail::CText shown(text);
        return detail::answered(id, line.exchange([&] { return abecs_cmd_dsp(line.get(), shown.get()); }));
    }
};

/// DEX: shows up to 160 characters; carriage returns break the lines.
struct Dex {
    std::string_view text = {};  ///< what is shown

    static constexpr std::string_view id = "DEX";  ///< the command's name on the line
    Answer<Nothing> on(detail::Line& line) const {
        const detail::CText shown(text);
        return detail::answered(id, line.exchange([&] { return abecs_cmd_dex(line.get(), shown.get()); }));
    }
};

/// DSI: shows a media file.
struct Dsi {
    std::string_view file = {};  ///< name of the media file

    static constexpr std::string_view id = "DSI";  ///< the command's name on the line
    Answer<Nothing> on(detail::Line& line) const {
        const detail::CText name(file);
        return detail::answered(id, line.exchange([&] { return abecs_cmd_dsi(line.get(), name.get()); }));
    }
};

/// The keys that GKY and CKE tell of.
enum class Key : int32_t { enter = 0, f1 = 4, f2 = 5, f3 = 6, f4 = 7, clear = 8, cancel = 13 };

/// The name on the key.
[[nodiscard]] constexpr std::string_view name(Key key) noexcept {
    switch (key) {
        case Key::enter:
            return "ENTER";
        case Key::f1:
            return "F1";
        case Key::f2:
            return "F2";
        case Key::f3:
            return "F3";
        case Key::f4:
            return "F4";
        case Key::clear:
            return "CLEAR";
        case Key::cancel:
            return "CANCEL";
    }
    return "unknown";
}

/// GKY: waits for a function key, CLEAR, CANCEL or ENTER. Its status is the key, so ok() says whether there was one.
struct Gky {
    static constexpr std::string_view id = "GKY";  ///< the command's name on the line
    auto on(detail::Line& line) const {
        struct Reader final : detail::Receiver<Key> {
            int32_t poll(AbecsComm* link, char* text) override { return abecs_cmd_gky_response(link, text); }
            bool is_good(int32_t status) const override { return quorvel::name(static_cast<Key>(status)) != "unknown"; }
            Key value(int32_t status) override { return static_cast<Key>(status); }
        };
        return detail::started<Reader>(line, [](AbecsComm* link) { abecs_cmd_gky(link); });
    }
};

/// GCD: has digits typed in. `prompt` is the index of one of the PIN pad's own texts.
struct Gcd {
    uint16_t prompt = 0;              ///< index of one of the PIN pad's own texts
    uint8_t min_digits = 0;           ///< the least digits
    uint8_t max_digits = 32;          ///< the most digits
    std::chrono::seconds timeout{0};  ///< 0 is the PIN pad's own

    static constexpr std::string_view id = "GCD";  ///< the command's name on the line
    auto on(detail::Line& line) const {
        constexpr size_t kRoom = 33;
        struct Reader final : detail::Receiver<Secret> {
            int32_t poll(AbecsComm* link, char* text) override {
                return abecs_cmd_gcd_response_sized(link, typed.record, kRoom, text);
            }
            Secret value(int32_t) override { return Secret(detail::taken(typed.record)); }
            detail::Wiped<char[kRoom]> typed;
        };
        const uint8_t seconds = detail::seconds_of(timeout);
        return detail::started<Reader>(
            line, [&](AbecsComm* link) { abecs_cmd_gcd(link, prompt, min_digits, max_digits, seconds); });
    }
};

/// MNU: shows 1 to 20 options of up to 24 characters, and waits for the choice: its number, counted from 1.
struct Mnu {
    std::span<const std::string_view> options = {};  ///< what is offered
    std::string_view title = {};                     ///< up to 128 characters
    std::chrono::seconds timeout{0};                 ///< 0 is the PIN pad's own

    static constexpr std::string_view id = "MNU";  ///< the command's name on the line
    auto on(detail::Line& line) const {
        constexpr size_t kMostOptions = 20;
        if (options.size() > kMostOptions) { detail::refuse_argument("a menu has 1 to 20 options"); }
        char rows[kMostOptions][25] = {};
        for (size_t i = 0; i < options.size(); ++i) { detail::put(rows[i], options[i], "an option of a menu"); }
        const detail::CText shown(title);
        const uint8_t seconds = detail::seconds_of(timeout);
        using Reader = detail::RecordReceiver<uint32_t, abecs_cmd_mnu_response, [](const uint32_t& n) { return n; }>;
        return detail::started<Reader>(
            line, [&](AbecsComm* link) { abecs_cmd_mnu(link, seconds, shown.get(), rows, options.size()); });
    }
};

/// RMC: shows up to 32 characters until no card is left in the PIN pad.
struct Rmc {
    std::string_view text = {};  ///< what is shown

    static constexpr std::string_view id = "RMC";  ///< the command's name on the line
    auto on(detail::Line& line) const {
        const detail::CText shown(text);
        return detail::started<detail::StatusReceiver<abecs_cmd_rmc_response>>(
            line, [&](AbecsComm* link) { abecs_cmd_rmc(link, shown.get()); });
    }
};

/// What has ended the wait of CEX.
enum class CexEvent : int32_t {
    key = ABECS_PP_EVENT_PRESSED_KEY,
    key_up = ABECS_PP_EVENT_PRESSED_KEY_ARROW_UP,
    key_down = ABECS_PP_EVENT_PRESSED_KEY_ARROW_DOWN,
    key_f1 = ABECS_PP_EVENT_PRESSED_KEY_F1,
    key_f2 = ABECS_PP_EVENT_PRESSED_KEY_F2,
    key_f3 = ABECS_PP_EVENT_PRESSED_KEY_F3,
    key_f4 = ABECS_PP_EVENT_PRESSED_KEY_F4,
    key_clear = ABECS_PP_EVENT_PRESSED_KEY_CLEAR,
    key_cancel = ABECS_PP_EVENT_PRESSED_KEY_CANCEL,
    stripe = ABECS_PP_EVENT_MAGNETIC_CARD,
    chip_removed = ABECS_PP_EVENT_ICC_REMOVED,
    chip_inserted = ABECS_PP_EVENT_ICC_INSERTED,
    contactless_gone = ABECS_PP_EVENT_CTLS_NOT_DETECTED,
    contactless = ABECS_PP_EVENT_CTLS_DETECTED,
};

/// What has ended the wait, and what belongs to it.
struct CexAnswer {
    CexEvent event;                                ///< what has happened
    std::optional<Secret> track1, track2, track3;  ///< the tracks, those that are there
    Items items;                                   ///< the whole answer
};

/// CEX: waits for the first of the events that are asked for.
struct Cex {
    /// Which event of the chip ends the wait.
    enum class Chip : char { none = '0', removed = '1', inserted = '2' };

    bool keys = false;                                 ///< whether a key ends the wait
    bool stripe = false;                               ///< whether a swiped card ends the wait
    Chip chip = Chip::none;                            ///< whether a chip ends the wait, and how
    bool contactless = false;                          ///< whether a contactless card counts
    std::optional<std::chrono::seconds> timeout = {};  ///< the PIN pad's own, when there is none
    std::optional<PanMask> pan_mask = {};              ///< how many digits of the card number come in clear
    std::string_view options = {};  ///< the six characters themselves, in place of the four members above

    static constexpr std::string_view id = "CEX";  ///< the command's name on the line
    auto on(detail::Line& line) const {
        const auto digit = [](bool on) { return on ? '1' : '0'; };
        const std::string flags{digit(keys), digit(stripe), static_cast<char>(chip), digit(contactless), '0', '0'};
        const detail::CText chosen(options.empty() ? std::string_view(flags) : options);
        const uint8_t seconds = detail::seconds_of(timeout.value_or(std::chrono::seconds(0)));
        const PanMask mask = pan_mask.value_or(PanMask{});
        const uint8_t digits[] = {mask.leading, mask.trailing};
        return detail::started<detail::ItemsReceiver<abecs_cmd_cex_response, answer_of>>(line, [&](AbecsComm* link) {
            abecs_cmd_cex(link, chosen.get(), timeout ? &seconds : nullptr, pan_mask ? digits : nullptr);
        });
    }

private:
    static CexAnswer answer_of(const Items& items) {
        const auto event = detail::call([&] { return abecs_cmd_cex_response_get_event(items.native()); });
        return {static_cast<CexEvent>(event), items.secret(ABECS_RSP_DATID_PP_TRK1INC),
                items.secret(ABECS_RSP_DATID_PP_TRK2INC), items.secret(ABECS_RSP_DATID_PP_TRK3INC), items};
    }
};

/// What has ended the wait, and what belongs to it.
struct CkeAnswer {
    /// What has happened: a key, or a card of some kind.
    enum class Event : int32_t {
        key = ABECS_CMD_CKE_EVENT_KEY,
        stripe = ABECS_CMD_CKE_EVENT_MAGNETIC_CARD,
        chip = ABECS_CMD_CKE_EVENT_ICC,
        contactless = ABECS_CMD_CKE_EVENT_CTLS,
    };

    Event event;                        ///< what has happened
    std::optional<Key> key = {};        ///< of a key
    std::optional<Secret> track1 = {};  ///< of a stripe, those that are there
    std::optional<Secret> track2 = {};  ///< track 2
    std::optional<Secret> track3 = {};  ///< track 3
    std::optional<bool> present = {};   ///< of a chip or a contactless card
};

/// CKE: waits for the first of the events that are asked for.
struct Cke {
    bool keys = false;                                                ///< whether a key ends the wait
    bool stripe = false;                                              ///< whether a swiped card ends the wait
    AbecsCmdCkeIccCheckType_E chip = ABECS_CMD_CKE_ICC_CHECK_TYPE_0;  ///< whether a chip ends the wait, and how
    /// Whether a contactless card ends the wait.
    AbecsCmdCkeCtlsCheckType_E contactless = ABECS_CMD_CKE_CTLS_CHECK_TYPE_NOT_SENT;

    static constexpr std::string_view id = "CKE";  ///< the command's name on the line
    auto on(detail::Line& line) const {
        return detail::started<detail::RecordReceiver<AbecsCmdCkeOut, abecs_cmd_cke_response, answer_of>>(
            line, [&](AbecsComm* link) { abecs_cmd_cke(link, keys, stripe, chip, contactless); });
    }

private:
    static CkeAnswer answer_of(const AbecsCmdCkeOut& out) {
        CkeAnswer answer{.event = static_cast<CkeAnswer::Event>(out.event)};
        const auto track = [](std::string_view text) {
            return text.empty() ? std::nullopt : std::optional<Secret>(text);
        };
        switch (out.event) {
            case ABECS_CMD_CKE_EVENT_KEY:
                answer.key = static_cast<Key>(out.key);
                break;
            case ABECS_CMD_CKE_EVENT_MAGNETIC_CARD:
                answer.track1 = track(detail::taken(out.track1));
                answer.track2 = track(detail::taken(out.track2));
                answer.track3 = track(detail::taken(out.track3));
                break;
            case ABECS_CMD_CKE_EVENT_ICC:
                answer.present = out.iccPresent;
                break;
            case ABECS_CMD_CKE_EVENT_CTLS:
                answer.present = out.ctlsPresent;
                break;
        }
        return answer;
    }
};

/// A PIN, enciphered.
struct GpnAnswer {
    Secret pin_block;  ///< 16 hexadecimal digits
    std::string ksn;   ///< 20 hexadecimal digits
};

/// GPN: has the cardholder enter the PIN, which comes enciphered.
struct Gpn {
    /// One entry of a PIN.
    struct Entry {
        uint8_t min_digits = 4;      ///< the least digits
        uint8_t max_digits = 12;     ///< the most digits
        std::string_view text = {};  ///< the prompt, up to 32 characters
    };

    PinMethod method = PinMethod::dukpt_tdes;  ///< how it is enciphered
    uint8_t key_index = 0;                     ///< of the key in the PIN pad, 0 to 99
    std::optional<Bytes> working_key = {};     ///< under the master key, for the methods that take one: 8 or 16 bytes
    std::string_view pan = {};                 ///< the card number in the PIN block
    std::span<const Entry> entries = {};       ///< 1 to 9

    static constexpr std::string_view id = "GPN";  ///< the command's name on the line
    auto on(detail::Line& line) const {
        detail::Wiped<AbecsCmdGpnCmdData> held;
        AbecsCmdGpnCmdData& data = held.record;
        data.method = static_cast<AbecsCmdGpnMethod_E>(method);
        data.keyIdx = key_index;
        if (working_key) {
            detail::put(data.wkEnc, detail::to_hex(*working_key).reveal(), "the working key in digits");
        }
        detail::put(data.pan, pan, "the card number");
        if (entries.size() > std::size(data.entries)) { detail::refuse_argument("up to 9 entries"); }
        data.entryCount = static_cast<uint8_t>(entries.size());
        for (size_t i = 0; i < entries.size(); ++i) {
            data.entries[i].min = entries[i].min_digits;
            data.entries[i].max = entries[i].max_digits;
            detail::put(data.entries[i].msg, entries[i].text, "a prompt");
        }
        return detail::started<detail::RecordReceiver<AbecsCmdGpnRspData, abecs_cmd_gpn_response, answer_of>>(
            line, [&](AbecsComm* link) { abecs_cmd_gpn(link, &data); });
    }

private:
    static GpnAnswer answer_of(const AbecsCmdGpnRspData& out) {
        return {detail::refilled(detail::taken(out.pinBlk), 16),
                std::string(detail::refilled(detail::taken(out.ksn), 20).reveal())};
    }
};

/// CHP: speaks to a chip in a slot, or has a PIN taken for it. Its answer are the bytes that the chip gave, without
/// leading bytes 30.
struct Chp {
    uint8_t slot = 0;            ///< 0 is the chip reader, 1 to 8 hold security modules
    uint8_t operation = 0;       ///< the protocol's number
    Bytes command = {};          ///< bytes for the chip
    uint8_t pin_format = 0;      ///< of operation 3
    std::string_view text = {};  ///< of operation 3, up to 32 characters

    static constexpr std::string_view id = "CHP";  ///< the command's name on the line
    auto on(detail::Line& line) const {
        detail::Wiped<AbecsCmdChpParam> held;
        AbecsCmdChpParam& param = held.record;
        param.slot = static_cast<AbecsCmdChpSlot_E>(slot);
        param.oper = static_cast<AbecsCmdChpOper_E>(operation);
        param.pinFmt = static_cast<AbecsCmdChpPinFmt_E>(pin_format);
        detail::put(param.chpCmd, detail::to_hex(command).reveal(), "the command in digits");
        detail::put(param.message, text, "the prompt");
        return detail::started<detail::TextReceiver<515, abecs_cmd_chp_response, answer_of>>(
            line, [&](AbecsComm* link) { abecs_cmd_chp(link, &param); });
    }

private:
    static Secret answer_of(std::string_view digits) { return detail::refilled_bytes(digits, digits.size() / 2); }
};

}  // namespace quorvel

#endif
