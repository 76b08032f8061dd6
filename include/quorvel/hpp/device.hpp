// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_HPP_DEVICE_HPP
#define QUORVEL_HPP_DEVICE_HPP

#include "quorvel/hpp/receivers.hpp"

/// @file
/// Requests about the PIN pad itself: who it is, its tables, media and keys, and chips in its slots. What each member
/// may be, and what is an error, stands with the C functions in quorvel/abecs/cmd.

namespace quorvel {

/// The PIN pad's identification. Of acquirer 0 it is the members with names; of any other the fields in their order.
struct GinAnswer {
    std::string manufacturer;         ///< its name
    std::string model;                ///< up to the first semicolon of its field
    std::string model_detail;         ///< behind it
    bool contactless = false;         ///< whether it takes contactless cards
    std::string system_version;       ///< of the operating system
    std::string protocol_version;     ///< of the protocol
    std::string vendor_version;       ///< of the manufacturer's part
    std::string serial;               ///< serial number
    std::vector<std::string> fields;  ///< the fields as they came, of indexes other than 0
    std::optional<bool> dukpt;        ///< of acquirer 3
    std::optional<uint8_t> number;    ///< the last field of acquirers other than 0
};

/// GIN: asks for the identification for an acquirer, 0 to 99.
struct Gin {
    uint8_t acquirer = 0;  ///< the acquirer's index, 0 to 99

    static constexpr std::string_view id = "GIN";  ///< the command's name on the line
    Answer<GinAnswer> on(detail::Line& line) const {
        AbecsCmdGinOut out{};
        const int32_t status = line.exchange([&] { return abecs_cmd_gin(line.get(), acquirer, &out); });
        return detail::answered(id, status, [&] { return answer_of(out); });
    }

private:
    template <typename... Members>
    static std::vector<std::string> texts(const Members&... members) {
        return {std::string(detail::taken(members))...};
    }
    [[nodiscard]] GinAnswer answer_of(const AbecsCmdGinOut& out) const {
        GinAnswer answer;
        const auto text = [](const auto& member) { return std::string(detail::taken(member)); };
        switch (acquirer) {
            case 0:
                answer.manufacturer = text(out.idx00.mnName);
                answer.model = text(out.idx00.model);
                answer.model_detail = text(out.idx00.modelDetail);
                answer.contactless = out.idx00.ctlsSup;
                answer.system_version = text(out.idx00.soVer);
                answer.protocol_version = text(out.idx00.specVer);
                answer.vendor_version = text(out.idx00.manVers);
                answer.serial = text(out.idx00.serNum);
                break;
            case 2:
                answer.fields =
                    texts(out.idx02.text1, out.idx02.text2, out.idx02.text3, out.idx02.text4, out.idx02.text5);
                answer.number = out.idx02.number;
                break;
            case 3:
                answer.fields = texts(out.idx03.text1, out.idx03.text2, out.idx03.text3, out.idx03.text4,
                                      out.idx03.text5, out.idx03.text6, out.idx03.text7, out.idx03.text8);
                answer.dukpt = out.idx03.dukpt;
                answer.number = out.idx03.number;
                break;
            default:
                answer.fields = texts(out.idxOther.text1, out.idxOther.text2, out.idxOther.text3, out.idxOther.text4);
                answer.number = out.idxOther.number;
                break;
        }
        return answer;
    }
};

/// GIX: asks for items by their ids (AbecsCmdGixId_E), up to 64 of them; with none the PIN pad chooses.
struct Gix {
    std::span<const int32_t> ids = {};  ///< of the items that are asked for

    static constexpr std::string_view id = "GIX";  ///< the command's name on the line
    Answer<Items> on(detail::Line& line) const {
        const Items items;
        const int32_t status =
            line.exchange([&] { return abecs_cmd_gix(line.get(), ids.data(), ids.size(), items.native()); });
        return detail::answered(id, status, [&] { return items; });
    }
};

/// GTS: the version of the tables of an acquirer, 0 to 99; empty when there are none.
struct Gts {
    uint8_t acquirer = 0;  ///< the acquirer's index, 0 to 99

    static constexpr std::string_view id = "GTS";  ///< the command's name on the line
    Answer<std::string> on(detail::Line& line) const {
        char version[11]{};
        const int32_t status = line.exchange([&] { return abecs_cmd_gts(line.get(), acquirer, version); });
        return detail::answered(id, status, [&] { return std::string(detail::taken(version)); });
    }
};

/// TLI: opens a load of tables. Tables does it all.
struct Tli {
    uint8_t acquirer = 0;           ///< the acquirer's index, 0 to 99
    std::string_view version = {};  ///< of the tables

    static constexpr std::string_view id = "TLI";  ///< the command's name on the line
    Answer<Nothing> on(detail::Line& line) const {
        const detail::CText text(version);
        return detail::answered(id, line.exchange([&] { return abecs_cmd_tli(line.get(), acquirer, text.get()); }));
    }
};

/// TLR: sends records, up to 99 and up to 997 characters, one behind the other.
struct Tlr {
    std::string_view records = {};  ///< up to 99 of them, one behind the other

    static constexpr std::string_view id = "TLR";  ///< the command's name on the line
    Answer<Nothing> on(detail::Line& line) const {
        const detail::CText text(records);
        return detail::answered(id, line.exchange([&] { return abecs_cmd_tlr(line.get(), text.get()); }));
    }
};

/// TLE: ends a load of tables.
struct Tle {
    static constexpr std::string_view id = "TLE";  ///< the command's name on the line
    Answer<Nothing> on(detail::Line& line) const {
        return detail::answered(id, line.exchange([&] { return abecs_cmd_tle(line.get()); }));
    }
};

/// MLI: announces a media file. Media does it all.
struct Mli {
    std::string_view file = {};  ///< name of the media file
    uint32_t size = 0;           ///< in bytes
    uint16_t crc = 0;            ///< CRC-16 of the file
    uint8_t type = 0;            ///< of the file: see abecs_cmd_mli

    static constexpr std::string_view id = "MLI";  ///< the command's name on the line
    Answer<Nothing> on(detail::Line& line) const {
        const detail::CText name(file);
        return detail::answered(id,
                                line.exchange([&] { return abecs_cmd_mli(line.get(), name.get(), size, crc, type); }));
    }
};

/// MLR: sends the next 1 to 995 bytes of a media file.
struct Mlr {
    Bytes data = {};  ///< 1 to 995 bytes of the file

    static constexpr std::string_view id = "MLR";  ///< the command's name on the line
    Answer<Nothing> on(detail::Line& line) const {
        return detail::answered(id, line.exchange([&] { return abecs_cmd_mlr(line.get(), data.data(), data.size()); }));
    }
};

/// MLE: ends the load of a media file.
struct Mle {
    static constexpr std::string_view id = "MLE";  ///< the command's name on the line
    Answer<Nothing> on(detail::Line& line) const {
        return detail::answered(id, line.exchange([&] { return abecs_cmd_mle(line.get()); }));
    }
};

namespace detail {

// A list of texts of the C interface.
class TextList {
public:
    TextList() : list_(call([] { return kor_string_list_new(); })) {}
    void add(std::string_view text) {
        const CText item(text);
        call([&] { kor_string_list_append(list_.get(), item.get()); });
    }
    [[nodiscard]] KorList* get() const noexcept { return list_.get(); }
    [[nodiscard]] std::vector<std::string> all() const {
        std::vector<std::string> texts;
        for (auto* node = kor_string_list_first(list_.get()); node != nullptr; node = kor_string_list_next(node)) {
            texts.emplace_back(kor_string_list_item(node));
        }
        return texts;
    }

private:
    Owned<kor_string_list_delete> list_;
};

}  // namespace detail

/// LMF: the names of the media files.
struct Lmf {
    static constexpr std::string_view id = "LMF";  ///< the command's name on the line
    Answer<std::vector<std::string>> on(detail::Line& line) const {
        const detail::TextList names;
        const int32_t status = line.exchange([&] { return abecs_cmd_lmf(line.get(), names.get()); });
        return detail::answered(id, status, [&] { return names.all(); });
    }
};

/// DMF: deletes media files.
struct Dmf {
    std::span<const std::string_view> files = {};  ///< names of media files

    static constexpr std::string_view id = "DMF";  ///< the command's name on the line
    Answer<Nothing> on(detail::Line& line) const {
        detail::TextList names;
        for (const std::string_view file : files) { names.add(file); }
        return detail::answered(id, line.exchange([&] { return abecs_cmd_dmf(line.get(), names.get()); }));
    }
};

/// GDU: the serial number of a DUKPT key for PINs, 20 hexadecimal digits.
struct Gdu {
    /// Which cipher the key is for.
    enum class Method : int32_t { des = ABECS_CMD_GDU_METHOD_2, tdes = ABECS_CMD_GDU_METHOD_3 };

    Method method = Method::tdes;  ///< which kind of key
    uint8_t index = 0;             ///< of the key, 0 to 99

    static constexpr std::string_view id = "GDU";  ///< the command's name on the line
    Answer<std::string> on(detail::Line& line) const {
        char ksn[21]{};
        const auto kind = static_cast<AbecsCmdGduMethod_E>(method);
        const int32_t status = line.exchange([&] { return abecs_cmd_gdu(line.get(), kind, index, ksn); });
        return detail::answered(id, status,
                                [&] { return std::string(detail::refilled(detail::taken(ksn), 20).reveal()); });
    }
};

/// DWK, the host making the key: a working key for card numbers under the master key. See quorvel/abecs/cmd/dwk.h for
/// how it is drawn.
struct Dwk1 {
    MasterKey master_key;  ///< under which the working key travels
    bool on_link = true;   ///< the link deciphers with it

    static constexpr std::string_view id = "DWK";  ///< the command's name on the line
    Answer<WorkingKey> on(detail::Line& line) const {
        detail::Wiped<AbecsWkPan> held;
        AbecsWkPan& key = held.record;
        const int32_t status =
            line.exchange([&] { return abecs_cmd_dwk1(line.get(), &master_key.native(), &key, on_link); });
        return detail::answered(id, status, [&] { return WorkingKey(key); });
    }
};

/// DWK, the PIN pad making the key.
struct Dwk2 {
    bool on_link = true;  ///< the link deciphers with it

    static constexpr std::string_view id = "DWK";  ///< the command's name on the line
    Answer<WorkingKey> on(detail::Line& line) const {
        detail::Wiped<AbecsWkPan> held;
        AbecsWkPan& key = held.record;
        const int32_t status = line.exchange([&] { return abecs_cmd_dwk2(line.get(), &key, on_link); });
        return detail::answered(id, status, [&] { return WorkingKey(key); });
    }
};

/// ENB: has one block of 8 bytes enciphered under a working key, which travels under a master key.
struct Enb {
    uint8_t method = 0;      ///< the cipher
    uint8_t key_index = 0;   ///< of the key in the PIN pad, 0 to 99
    Bytes working_key = {};  ///< under the master key: 16 bytes
    Bytes data = {};         ///< 8 bytes

    static constexpr std::string_view id = "ENB";  ///< the command's name on the line
    Answer<Secret> on(detail::Line& line) const {
        detail::Wiped<AbecsCmdEnbCmdData> held;
        AbecsCmdEnbCmdData& request = held.record;
        request.method = static_cast<AbecsCmdEnbMethod_E>(method);
        request.keyIdx = key_index;
        detail::put(request.wkEnc, detail::to_hex(working_key).reveal(), "the working key in digits");
        detail::put(request.data, detail::to_hex(data).reveal(), "the block in digits");
        detail::Wiped<std::array<char, 17>> out;
        char* const text = out.record.data();
        const int32_t status = line.exchange([&] { return abecs_cmd_enb(line.get(), &request, text); });
        return detail::answered(id, status, [&] { return detail::refilled_bytes(text, 8); });
    }

    /// What `working_key` takes: 16 bytes of a key in clear under the master key.
    [[nodiscard]] static Secret encrypt_key(const Secret& clear, const MasterKey& key) {
        return prepared(clear, 16,
                        [&](const char* from, char* to) { abecs_cmd_enb_encrypt_wk(from, &key.native(), to); });
    }
    /// What `data` takes for a PIN pad that has a working key for card numbers: a block of 8 bytes under it.
    [[nodiscard]] static Secret encode_data(const Secret& clear, const WorkingKey& key) {
        return prepared(clear, 8,
                        [&](const char* from, char* to) { abecs_cmd_enb_encode_data(from, &key.native(), to); });
    }

private:
    template <typename Prepare>
    static Secret prepared(const Secret& clear, size_t size, const Prepare& prepare) {
        if (clear.size() != size) { detail::refuse_argument("a key has 16 bytes, a block 8"); }
        const Secret digits = detail::to_hex(clear.bytes());
        const detail::CText from(digits.reveal());
        detail::Wiped<std::array<char, 33>> out;
        char* const to = out.record.data();
        detail::call([&] { prepare(from.get(), to); });
        return detail::refilled_bytes(to, size);
    }
};

/// What was enciphered.
struct EbxAnswer {
    std::optional<Secret> data;  ///< enciphered
    std::optional<Secret> ksn;   ///< of a DUKPT key
    Items items;                 ///< the whole answer
};

/// EBX: has data enciphered, a multiple of 8 bytes.
struct Ebx {
    Bytes data = {};                                 ///< in clear
    DataMethod method = DataMethod::dukpt_dat3_ecb;  ///< how it is enciphered
    uint8_t key_index = 0;                           ///< of the key in the PIN pad, 0 to 99
    std::optional<Bytes> working_key = {};  ///< under the master key, for the methods that take one: 8 or 16 bytes
    std::optional<std::array<uint8_t, 8>> iv = {};  ///< what the chain of blocks starts from: 8 bytes

    static constexpr std::string_view id = "EBX";  ///< the command's name on the line
    Answer<EbxAnswer> on(detail::Line& line) const {
        const auto kind = static_cast<AbecsSpeMthdDat_E>(method);
        const detail::Owned<abecs_cmd_ebx_builder_delete> built(
            line.call([&] { return abecs_cmd_ebx_builder_new(data.data(), data.size(), kind, key_index); }));
        line.call([&] {
            if (working_key) { abecs_cmd_ebx_builder_wkenc(built.get(), working_key->data(), working_key->size()); }
            if (iv) { abecs_cmd_ebx_builder_ivcbc(built.get(), iv->data()); }
        });
        const Items items;
        const int32_t status = line.exchange([&] { return abecs_cmd_ebx(line.get(), built.get(), items.native()); });
        // NOLINTBEGIN(clang-analyzer-cplusplus.NewDeleteLeaks): the answer frees what it holds
        return detail::answered(id, status, [&] {
            return EbxAnswer{items.secret_bytes(ABECS_RSP_DATID_PP_DATAOUT), items.secret_bytes(ABECS_RSP_DATID_PP_KSN),
                             items};
        });
        // NOLINTEND(clang-analyzer-cplusplus.NewDeleteLeaks)
    }
};

/// GEN 02/K3: for each index from `first` to `last` whether there is a key of that type and use.
struct GenKeys {
    uint8_t type = 0;   ///< 0 to 3
    uint8_t use = 0;    ///< 0 or 1
    uint8_t first = 0;  ///< the first index
    uint8_t last = 99;  ///< the last index

    static constexpr std::string_view id = "GEN";  ///< the command's name on the line
    Answer<std::vector<bool>> on(detail::Line& line) const {
        const AbecsCmdGen02K3CmdData request{type, use, first, last};
        char out[101]{};
        const int32_t status = line.exchange([&] { return abecs_cmd_gen_02_k3(line.get(), &request, out); });
        return detail::answered(id, status, [&] {
            std::vector<bool> there;
            for (const char c : detail::taken(out)) { there.push_back(c == '1'); }
            return there;
        });
    }
};

namespace detail {

using GenTagsFn = int32_t (*)(AbecsComm*, const char*, AbecsCmdGenTagsOut*);

// 03/02 and 04/04, whose lengths count digits and bytes.
inline Answer<Secret> data_objects(Line& line, GenTagsFn ask, const Tags& tags, size_t digitsOfLength) {
    const Secret digits = to_hex(tags.bytes());
    const CText wanted(digits.reveal());
    Wiped<AbecsCmdGenTagsOut> held;
    AbecsCmdGenTagsOut& out = held.record;
    const int32_t status = line.exchange([&] { return ask(line.get(), wanted.get(), &out); });
    return answered("GEN", status, [&] { return refilled_bytes(taken(out.data), out.len * digitsOfLength / 2); });
}

}  // namespace detail

/// GEN 03/02: the values of tags of the card that was read last.
struct GenCardData {
    Tags tags;  ///< whose values are to be in the answer

    static constexpr std::string_view id = "GEN";  ///< the command's name on the line
    Answer<Secret> on(detail::Line& line) const { return detail::data_objects(line, abecs_cmd_gen_03_02, tags, 1); }
};

/// GEN 04/04: the same of the card in the chip reader.
struct GenChipData {
    Tags tags;  ///< whose values are to be in the answer

    static constexpr std::string_view id = "GEN";  ///< the command's name on the line
    Answer<Secret> on(detail::Line& line) const { return detail::data_objects(line, abecs_cmd_gen_04_04, tags, 2); }
};

/// What was enciphered, and under which key.
struct GenEncryptAnswer {
    std::string ksn;  ///< 20 hexadecimal digits
    Secret data;      ///< enciphered
};

/// GEN 03/03: has up to 16 blocks of 8 bytes enciphered under a key of the PIN pad.
struct GenEncrypt {
    uint8_t key_index = 0;  ///< of the key in the PIN pad, 0 to 99
    Bytes data = {};        ///< in clear

    static constexpr std::string_view id = "GEN";  ///< the command's name on the line
    Answer<GenEncryptAnswer> on(detail::Line& line) const {
        detail::Wiped<AbecsCmdGen0303CmdData> held;
        held.record.idx = key_index;
        fill(held.record.input, data);
        detail::Wiped<AbecsCmdGen0303RspData> answer;
        const AbecsCmdGen0303CmdData& request = held.record;
        AbecsCmdGen0303RspData& out = answer.record;
        const int32_t status = line.exchange([&] { return abecs_cmd_gen_03_03(line.get(), &request, &out); });
        return detail::answered(id, status, [&] {
            return GenEncryptAnswer{std::string(detail::refilled(detail::taken(out.ksn), 20).reveal()),
                                    detail::refilled_bytes(detail::taken(out.data), out.dataLen / 2)};
        });
    }

    /// What `data` takes for a PIN pad that has a working key for card numbers.
    [[nodiscard]] static Secret encode_data(const Secret& clear, const WorkingKey& key) {
        detail::Wiped<AbecsCmdGen0303Data> held;
        AbecsCmdGen0303Data& in = held.record;
        fill(in, clear.bytes());
        detail::call([&] { abecs_cmd_gen_03_03_encode_data(&in, &key.native(), &in); });
        return detail::refilled_bytes(detail::taken(in.data), in.size / 2);
    }

private:
    static void fill(AbecsCmdGen0303Data& to, Bytes bytes) {
        detail::put(to.data, detail::to_hex(bytes).reveal(), "data in digits");
        to.size = static_cast<uint32_t>(2 * bytes.size());
    }
};

/// How the slot is.
struct GenPowerAnswer {
    uint8_t status1;   ///< of the slot, as the PIN pad tells it
    uint32_t status2;  ///< further status, likewise
    uint8_t atr_size;  ///< of what the chip answered to its reset, in bytes
    std::string atr;   ///< the first `atr_size` hexadecimal digits of that
};

/// GEN 04/01: switches a slot's power or asks for it.
struct GenPower {
    uint8_t operation = ABECS_CMD_GEN_04_01_OPER_1;  ///< 1 to 4
    uint8_t slot = 0;                                ///< 0 is the chip reader, 1 to 8 hold security modules

    static constexpr std::string_view id = "GEN";  ///< the command's name on the line
    Answer<GenPowerAnswer> on(detail::Line& line) const {
        const AbecsCmdGen0401CmdData request{static_cast<AbecsCmdGen0401Oper_E>(operation), slot};
        AbecsCmdGen0401RspData out{};
        const int32_t status = line.exchange([&] { return abecs_cmd_gen_04_01(line.get(), &request, &out); });
        return detail::answered(id, status, [&] {
            return GenPowerAnswer{out.status1, out.status2, out.atrLen, std::string(detail::taken(out.atr))};
        });
    }
};

/// What a chip has answered.
struct ChipAnswer {
    uint8_t status;  ///< of the exchange, as the PIN pad tells it
    std::string sw;  ///< the status word, 4 hexadecimal digits
    Secret data;     ///< what the chip has answered
};

/// GEN 04/02: sends a command to a chip.
struct GenApdu {
    uint8_t slot = 0;                    ///< 0 is the chip reader, 1 to 8 hold security modules
    std::array<uint8_t, 4> header = {};  ///< CLA, INS, P1 and P2
    Bytes data = {};                     ///< up to 255 bytes
    uint16_t most = 256;                 ///< bytes of answer, Le

    static constexpr std::string_view id = "GEN";  ///< the command's name on the line
    Answer<ChipAnswer> on(detail::Line& line) const {
        detail::Wiped<AbecsCmdGen0402CmdData> held;
        AbecsCmdGen0402CmdData& request = held.record;
        request.slot = slot;
        detail::put(request.apduHeader, detail::to_hex(header).reveal(), "the header in digits");
        detail::put(request.apduData, detail::to_hex(data).reveal(), "the data in digits");
        request.lc = static_cast<uint8_t>(data.size());
        request.le = most;
        detail::Wiped<AbecsCmdGen0402RspData> answer;
        AbecsCmdGen0402RspData& out = answer.record;
        const int32_t status = line.exchange([&] { return abecs_cmd_gen_04_02(line.get(), &request, &out); });
        return detail::answered(id, status, [&] {
            return ChipAnswer{out.status, std::string(detail::refilled(detail::taken(out.sw), 4).reveal()),
                              detail::refilled_bytes(detail::taken(out.apduData), out.la)};
        });
    }
};

/// GEN 04/03: has the cardholder enter a PIN that goes to a chip alone.
struct GenPin {
    uint8_t slot = 0;                    ///< 0 is the chip reader, 1 to 8 hold security modules
    std::array<uint8_t, 4> header = {};  ///< of the command that takes the PIN to the chip: four bytes
    char format = 'A';                   ///< of the PIN block, a hexadecimal digit
    uint8_t min_digits = 4;              ///< the least digits
    uint8_t max_digits = 12;             ///< the most digits
    std::string_view text = {};          ///< the prompt, up to 32 characters

    static constexpr std::string_view id = "GEN";  ///< the command's name on the line
    auto on(detail::Line& line) const {
        AbecsCmdGen0403CmdData request{};
        request.slot = slot;
        detail::put(request.apduHeader, detail::to_hex(header).reveal(), "the header in digits");
        request.format = format;
        request.pinMinDigits = min_digits;
        request.pinMaxDigits = max_digits;
        detail::put(request.message, text, "the prompt");
        return detail::started<detail::RecordReceiver<AbecsCmdGen0403RspData, abecs_cmd_gen_04_03_response, answer_of>>(
            line, [&](AbecsComm* link) { abecs_cmd_gen_04_03(link, &request); });
    }

private:
    static ChipAnswer answer_of(const AbecsCmdGen0403RspData& out) {
        return {out.status, std::string(detail::refilled(detail::taken(out.sw), 4).reveal()), Secret()};
    }
};

}  // namespace quorvel

#endif
