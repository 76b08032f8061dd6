// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/hpp/rows.h"

#include <array>
#include <concepts>

namespace hpp {

namespace {

using namespace quorvel;
using namespace std::chrono_literals;
using namespace support;

constexpr DateTime kWhen{.year = 25, .month = 12, .day = 31, .hour = 23, .minute = 59, .second = 58};
const std::string kMoment = "0015 0006"_hex + "251231" + "0016 0006"_hex + "235958";
constexpr std::array<uint8_t, 8> kBlock{0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF};
constexpr std::array<uint8_t, 16> kKey{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
const Bytes kEmv{kBlock.data(), 2};
const std::string kNoKey = "30303030303030303030303030303030";  // as a field of 32 digits is filled up
const std::string kMediaCrc = [] {
    const uint16_t crc = crc_of(std::string(1000, 'm'));
    return std::string{static_cast<char>(crc >> 8), static_cast<char>(crc)};
}();
const Gpn::Entry kEntries[] = {{.text = "PIN"}};
const std::array<uint8_t, 256> kModulus = [] {
    std::array<uint8_t, 256> all{};
    all.fill(0x55);
    return all;
}();
const std::vector<std::string_view> kNames{"TEA", "COFFEE"};

// An id and the blocks behind it, each with its length.
template <typename... Blocks>
std::string message(const std::string& id, const Blocks&... blocks) {
    std::string all = id;
    for (const std::string& block : {std::string(blocks)...}) {
        const std::string size = std::to_string(block.size());
        all += std::string(3 - size.size(), '0') + size + block;
    }
    return all;
}

std::string shown(const std::string& text) { return text; }
std::string shown(std::string_view text) { return std::string(text); }
std::string shown(const Secret& secret) {
    const std::string_view text = secret.reveal();
    const bool plain = std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
    return plain ? std::string(text) : "#" + to_hex(text);
}
std::string shown(std::integral auto number) { return std::to_string(number); }
template <typename Enum>
requires std::is_enum_v<Enum> std::string shown(Enum value) { return std::to_string(static_cast<int>(value)); }
template <typename Value>
std::string shown(const std::optional<Value>& value) {
    return value ? shown(*value) : "-";
}
template <typename Value>
std::string shown(const std::vector<Value>& values) {
    std::string all;
    for (const auto& value : values) { all += shown(value) + ";"; }
    return all;
}
template <typename... Values>
std::string joined(const Values&... values) {
    std::string all;
    ((all += (all.empty() ? "" : "|") + shown(values)), ...);
    return all;
}
template <typename Value>
std::string outcome(const Answer<Value>& answer) {
    if constexpr (std::is_same_v<Value, Nothing>) {
        return joined(answer.command(), answer.status().code());
    } else if constexpr (std::is_same_v<Value, Items>) {
        return shown(answer->ids());
    } else {
        return shown(answer.value());
    }
}

// A minute is enough on a clock that only waits move.
template <typename Request>
auto go(Session& session, const Request& request) {
    if constexpr (Waiting<Request>) {
        return session.run(request, 60s);
    } else {
        return session.run(request);
    }
}
#define ASKS(...) [](Session& session) { return outcome(go(session, __VA_ARGS__)); }
#define TELLS(request, ...)                                 \
    [](Session& session) {                                  \
        const auto answer = go(session, request).require(); \
        return joined(__VA_ARGS__);                         \
    }

std::string raw_waits(Session& session) {
    const Raw::Parameter parameters[] = {{0x000C, Bytes(kBlock).first(1)}, {0x0021, Bytes(kBlock).first(2)}};
    auto wait = session.start(Raw{.command = "ABC", .parameters = parameters, .waits = true});
    std::string notices;
    wait.on_notice([&](std::string_view text) { notices += text; });
    const auto answer = wait.get(10s).require();
    std::string all = notices;
    for (const auto& [id, value] : answer.parameters()) { all += "|" + joined(id, value); }
    return all;
}

std::string load_tables(Session& session) {
    Tables tables;
    for (int i = 0; i < 100; ++i) { tables.add("008" + std::to_string(100 + i) + "AB"); }
    std::string steps;
    const auto answer =
        tables.load(session, 7, "V1", [&](size_t done, size_t all) { steps += "|" + joined(done, all); });
    return outcome(answer) + steps;
}
std::string batch(int from, int to) {
    std::string all;
    for (int i = from; i < to; ++i) { all += "008" + std::to_string(100 + i) + "AB"; }
    const std::string count = std::to_string(to - from);
    return message("TLR", std::string(2 - count.size(), '0') + count + all);
}

std::string put_media(Session& session) {
    const std::string content(1000, 'm');
    std::string steps;
    const auto answer = Media::put(session, "logo", 1, detail::bytes_of(content),
                                   [&](size_t done, size_t all) { steps += "|" + joined(done, all); });
    return outcome(answer) + steps;
}

std::string read_track(Session&) {
    // The track was made with another program.
    const std::string key = "0123456789ABCDEFFEDCBA9876543210"_hex;
    const WorkingKey working(ABECS_WK_PAN_TYPE_TDES, Secret(key));
    constexpr std::string_view kTrack = "B69D9405C8462F410^DOE/JOHN^25121010000000000";
    return joined(pan_identify("4111 1111=2512"), pan_decrypt_track(kTrack, working),
                  pan_encrypt("411111111111", working));
}

}  // namespace

std::vector<std::string> framed(const std::vector<std::string>& payloads) {
    std::vector<std::string> frames;
    bool open = false;
    for (const std::string& payload : payloads) {
        if (!open) { frames.emplace_back(); }
        frames.back() += frame(payload);
        open = payload.starts_with("NTM");
    }
    return frames;
}

const std::vector<Row>& rows() {
    static const std::string kTrack2 = "4111111111111111=2512";
    static const std::vector<Row> kRows{
        {"Dsp", {"DSP032" + padded("HI", 32)}, {"DSP000"}, ASKS(Dsp{"HI"}), "DSP|0"},
        {"Dex, refused", {"DEX006003A\rB"}, {"DEX011"}, ASKS(Dex{"A\rB"}), "DEX|11"},
        {"Dsi", {message("DSI", "001E 0008"_hex + padded("LOGO", 8))}, {"DSI000"}, ASKS(Dsi{"logo"}), "DSI|0"},
        {"Gky", {"GKY"}, {"NTM000002HI", "GKY013"}, ASKS(Gky{}), "13"},
        {"Gcd", {message("GCD", "000B 0002 0007 000D 0001 04 000E 0001 06 000C 0001 3C"_hex)},
         {message("GCD000", "804D 0004"_hex + "1234")}, ASKS(Gcd{7, 4, 6, 60s}), "1234"},
        {"Mnu", {message("MNU", "000C 0001 05 001B 0080"_hex + padded("DRINK", 128) + "0020 0018"_hex + padded("TEA", 24) + "0020 0018"_hex + padded("COFFEE", 24))},
         {message("MNU000", "804D 0002"_hex + "02")}, ASKS(Mnu{kNames, "DRINK", 5s}), "2"},
        {"Rmc", {"RMC032" + padded("OUT", 32)}, {"RMC000"}, ASKS(Rmc{"OUT"}), "RMC|0"},
        {"Cex", {message("CEX", "0006 0006"_hex + "102100" + "000C 0001 1E 0023 0004"_hex + "0604")},
         {message("CEX000", "8040 0002"_hex + "90" + "8042 0005"_hex + "4=251")},
         TELLS((Cex{.keys = true, .chip = Cex::Chip::inserted, .contactless = true, .timeout = 30s, .pan_mask = PanMask{}}),
               answer.event, answer.track1, answer.track2), "90|-|4=251"},
        {"Cke", {"CKE0041021"}, {"CKE000002" "21"},
         TELLS((Cke{.keys = true, .chip = ABECS_CMD_CKE_ICC_CHECK_TYPE_2, .contactless = ABECS_CMD_CKE_CTLS_CHECK_TYPE_1}),
               answer.event, answer.key, answer.track2, answer.present), "2|-|-|1"},
        {"Cke, a stripe", {"CKE003010"},
         {"CKE000225100" + padded("", 76) + "21" + padded(kTrack2, 37) + "000" + padded("", 104)},
         TELLS((Cke{.stripe = true}), answer.event, answer.track1, answer.track2, answer.track3), "1|-|" + kTrack2 + "|-"},
        {"Gpn", {"GPN093307" + kNoKey + "164111111111111111   " "10412" + padded("PIN", 32)},
         {"GPN000036" "0123456789ABCDEF" "30309876543210E00001"},
         TELLS((Gpn{.key_index = 7, .pan = "4111111111111111", .entries = kEntries}), answer.pin_block, answer.ksn),
         "0123456789ABCDEF|30309876543210E00001"},
        {"Chp", {"CHP01512" "005" "00A404000E"}, {"CHP000009003" "306AFF"},
         ASKS(Chp{1, 2, std::array<uint8_t, 5>{0, 0xA4, 4, 0, 0x0E}}), "#6A FF"},
        {"Gcx", {message("GCX", kMoment + "0021 0001 16 0010 0002"_hex + "03" + "0011 0002"_hex + "01" + "0012 0004"_hex + "0102"
                             + "0013 000C"_hex + "000000001234" + "0014 000C"_hex + "000000000005" + "0022 0003"_hex + "986"
                             + "0017 0005"_hex + "10000" + "0023 0004"_hex + "0604" + "0005 0002 0123 0004 0003 829F26 000C 0001 3C 001B 0002"_hex + "HI")},
         {message("GCX000", "804F 0002"_hex + "03" + "8051 0006"_hex + "030102" + "8052 0004"_hex + "4111" + "8053 0002"_hex + "01"
                      + "805B 0006"_hex + "CREDIT" + "8054 0003 820100"_hex)},
         TELLS((Gcx{.amount = 1234, .cashback = 5, .currency = 986, .acquirer = 3, .application_types = Bytes(kKey).first(1), .applications = "0102",
                    .type = 0x16, .contactless = true, .pan_mask = PanMask{}, .emv_data = kEmv, .tags = Tags{0x82, 0x9F26}, .timeout = 60s,
                    .text = "HI", .when = kWhen}),
               answer.type, answer.acquirer(), answer.pan, answer.pan_sequence, answer.label, answer.emv_data, answer.track1),
         "3|3|4111|1|CREDIT|#82 01 00|-"},
        {"Gox", {message("GOX", "0010 0002"_hex + "03" + "0002 0001"_hex + "1" + "0009 0002"_hex + "02" + "000A 0010"_hex + std::string(kKey.begin(), kKey.end())
                             + "0021 0001 00 0013 000C"_hex + "000000001234" + "0014 000C"_hex + "000000000000" + "0022 0003"_hex + "986" + "0018 0005"_hex
                             + "10000" + "001B 0002"_hex + "HI" + "001A 000A 00001388 32 00000064 63 0005 0002 0123 0004 0001 82 000C 0001 3C"_hex)},
         {message("GOX000", "8056 0006"_hex + "211021" + "8057 0008 0123456789ABCDEF"_hex)},
         TELLS((Gox{.acquirer = 3, .pin_method = PinMethod::mk_wk_tdes, .key_index = 2, .working_key = Bytes(kKey), .type = 0, .amount = 1234, .cashback = 0,
                    .currency = 986, .options = "10000", .text = "HI", .risk = risk(5000, 50, 100, 99), .emv_data = kEmv, .tags = Tags{0x82}, .timeout = 60s}),
               answer.decision, answer.signature, answer.pin_offline, answer.pin_errors, answer.pin_blocked, answer.pin_online, answer.pin_block, answer.ksn),
         "2|1|1|0|1|1|#01 23 45 67 89 AB CD EF|-"},
        {"Fcx", {message("FCX", "0019 0004"_hex + "0000" + "001C 0002"_hex + "00" + "0005 0002 0123 0004 0001 82 000C 0001 3C"_hex)},
         {message("FCX000", "8058 0003"_hex + "001" + "8059 0005 0102030405"_hex)},
         TELLS((Fcx{.response_code = "00", .emv_data = kEmv, .tags = Tags{0x82}, .timeout = 60s}), answer.decision, answer.emv_data, answer.script_results),
         "1|-|#01 02 03 04 05"},
        {"Fcx without an acquirer", {message("FCX", "0019 0004"_hex + "2000")}, {message("FCX000", "8058 0003"_hex + "009")},
         TELLS(Fcx{}, answer.decision), "-"},
        {"Gcr", {"GCR0440300000000001234251231235958" + padded("V1", 10) + "01" "0102" "0"},
         {"GCR000381" "06" "1" "98" "02" "Z1" + padded("00", 78) + padded("21" + kTrack2, 39) + "000" + padded("", 104)
          + padded("164111111111111111", 21) + padded("07CREDIT", 18) + padded("201TEST/CARD", 29) + "301231"
          + std::string(29, '!') + "076" "010" "0123456789"},
         TELLS((Gcr{.acquirer = 3, .amount = 1234, .tables_version = "V1", .applications = "0102", .when = kWhen}),
               answer.type, answer.acquirer, answer.record, answer.track2, answer.pan, answer.label, answer.service_code, answer.expiry_year,
               answer.issuer_country, answer.acquirer_data), "6|2|Z1|" + kTrack2 + "|4111111111111111|CREDIT|201|30|76|0123456789"},
        {"GcrAgain", {"GCR"}, {"GCR012"}, [](Session& session) { return std::string(go(session, GcrAgain{}).status().name()); }, "ST_TIMEOUT"},
        {"Goc", {"GOC086" "000000001234" "000000000005" "110" "3" "07" + kNoKey + "1" "00001388" "50" "00000064" "99" "00" "007" "002" "3082" "005" "001" "9F"},
         {"GOC000050" "2" "1" "0" "1" "0" "0" + std::string(36, 'e') + "004" + "9F260100"_hex + "007"},
         TELLS((Goc{.acquirer = 0, .amount = 1234, .cashback = 5, .excluded = true, .key_index = 7, .risk = Goc::Risk{5000, 50, 100, 99},
                    .tags = Tags{0x3082}, .tags_of_pin = Tags{0x9F}}), answer.decision, answer.signature, answer.pin_errors, answer.emv_data),
         "2|1|1|#9F 26 01 00"},
        {"Fnc", {"FNC012" "00" "00" "001" "01" "000" "007" "002" "0123"}, {"FNC000018" "1" "003" "9F2601" "02" "AB0C" "007"},
         TELLS((Fnc{.response_code = "00", .issuer_data = Bytes(kKey).first(1), .tags = Bytes(kBlock).first(2)}), answer.decision,
               answer.emv_data, answer.script_results), "1|#9F 26 01|#AB 0C"},
        {"Ged", {message("GED", "0004 0003 829F26"_hex)}, {message("GED000", "8054 0003 820101"_hex)}, ASKS(Ged{{0x82, 0x9F26}}), "#82 01 01"},
        {"Cng", {"CNG004" "02" "0123"}, {"CNG000"}, ASKS(Cng{kEmv}), "CNG|0"},
        {"Gtk", {message("GTK", "0007 0004"_hex + "1101" + "0003 0002"_hex + "91" + "001D 0008 0123456789ABCDEF 0008 0001"_hex + "4"
                             + "0024 0100"_hex + std::string(256, '\x55') + "0025 0001 03"_hex)},
         {message("GTK000", "8044 0007"_hex + "TRACK 1" + "804A 0002 0123 8063 0001 61"_hex)},
         TELLS((Gtk{.tracks = "1101", .method = DataMethod::tdes_random_cbc, .iv = kBlock, .open_digits = 4, .modulus = kModulus, .exponent = Bytes(kKey).subspan(2, 1)}),
               answer.track1, answer.pan, answer.random_key, answer.track2, answer.pan_ksn), "TRACK 1|#01 23|a|-|-"},
        {"Gtk with a key", {message("GTK", "0003 0002"_hex + "00" + "0009 0002"_hex + "07" + "000A 0008 0102030405060708"_hex)}, {"GTK042"},
         [](Session& session) {
             return std::string(session.run(Gtk{.method = DataMethod::mk_wk_des_ecb, .key_index = 7, .working_key = Bytes(kKey).first(8)}).status().name());
         }, "ST_ERRKEY"},
        {"Gin", {"GIN00200"}, {message("GIN000", padded("MAKER", 20) + padded("ABC;DEF", 19) + "C" + padded("OS", 20) + "2.12" + padded("MV", 16) + padded("SN", 20))},
         TELLS(Gin{}, answer.manufacturer, answer.model, answer.model_detail, answer.contactless, answer.system_version, answer.protocol_version,
               answer.vendor_version, answer.serial), "MAKER|ABC|DEF|1|OS|2.12|MV|SN"},
        {"Gin, acquirer 3", {"GIN00203"}, {"GIN000042AAAAA BBB CCC DD EE FFFFFFFFFFFF GGG H T42"}, TELLS(Gin{3}, answer.fields, answer.dukpt, answer.number),
         "AAAAA;BBB;CCC;DD;EE;FFFFFFFFFFFF;GGG;H;|1|42"},
        {"Gin, acquirer 2", {"GIN00202"}, {"GIN000042AAAAAAA BBBBBBBBBBB CCCCCCCCCCCC DDD EE 07"}, TELLS(Gin{2}, answer.fields, answer.number),
         "AAAAAAA;BBBBBBBBBBB;CCCCCCCCCCCC;DDD;EE;|7"},
        {"Gin, acquirer 1", {"GIN00201"}, {"GIN000042" + padded("A", 20) + padded("B", 13) + "C   D  08"}, TELLS(Gin{1}, answer.fields, answer.number), "A;B;C;D;|8"},
        {"Gix", {message("GIX", "0001 0004 80018003"_hex)}, {message("GIX000", "8003 0002"_hex + "M " + "8001 0001"_hex + "S")},
         [](Session& session) {
             const int32_t ids[] = {0x8001, 0x8003};
             const Items items = session.run(Gix{ids}).require();
             return joined(items.ids(), items.text(0x8003), items.bytes(0x8003)->size(), items.has(0x8002), items.number(0x8001));
         }, "32769;32771;|M|2|0|-"},
        {"Gts", {"GTS00207"}, {"GTS000010V1        "}, ASKS(Gts{7}), "V1"},
        {"Gdu", {"GDU003299"}, {"GDU000020" "30309876543210E00001"}, ASKS(Gdu{Gdu::Method::des, 99}), "30309876543210E00001"},
        {"Enb", {"ENB051" "107" "0102030405060708090A0B0C0D0E0F10" "0123456789ABCDEF"}, {"ENB000016" "30AB456789ABCDEF"},
         ASKS(Enb{1, 7, kKey, kBlock}), "#30 AB 45 67 89 AB CD EF"},
        {"Ebx", {message("EBX", "000F 0008 0123456789ABCDEF 0003 0002"_hex + "01" + "0009 0002"_hex + "05" + "000A 0008 0102030405060708 001D 0008 0123456789ABCDEF"_hex)},
         {message("EBX000", "804E 0002 0001"_hex)},
         TELLS((Ebx{kBlock, DataMethod::mk_wk_des_cbc, 5, Bytes(kKey).first(8), kBlock}), answer.data, answer.ksn), "#00 01|-"},
        {"GenKeys", {"GEN013" "02" "008" "K3" "31" "01" "03"}, {"GEN000006" "003" "101"}, ASKS(GenKeys{3, 1, 1, 3}), "1;0;1;"},
        {"GenCardData", {"GEN011" "03" "006" "02" "9F17"}, {"GEN000011" "008" "9F170103"}, ASKS(GenCardData{{0x9F17}}), "#9F 17 01 03"},
        {"GenChipData", {"GEN014" "04" "009" "04" "002" "9F17"}, {"GEN000011" "004" "9F170103"}, ASKS(GenChipData{{0x9F17}}), "#9F 17 01 03"},
        {"GenEncrypt", {"GEN026" "03" "021" "03" "3" "07" "0123456789ABCDEF"}, {"GEN000039" "036" "303076543210E0000120" "30CD4E0930CD4E09"},
         TELLS((GenEncrypt{7, kBlock}), answer.ksn, answer.data), "303076543210E0000120|#30 CD 4E 09 30 CD 4E 09"},
        {"GenPower", {"GEN009" "04" "004" "01" "4" "8"}, {"GEN000079" "076" "1109" + std::string(54, '0') + "3B6500002063CB680A"},
         TELLS((GenPower{4, 8}), answer.status1, answer.status2, answer.atr_size), "1|1|9"},
        {"GenApdu", {"GEN026" "04" "021" "02" "8" "00A40400" "002" "0123" "256"}, {"GEN000015" "012" "0" "9000" "002" "3030"},
         TELLS((GenApdu{8, {0, 0xA4, 4, 0}, Bytes(kBlock).first(2), 256}), answer.status, answer.sw, answer.data), "0|9000|00"},
        {"GenPin", {"GEN053" "04" "048" "03" "8" "00200080" "A" "04" "06" + padded("PIN", 32)}, {"GEN000008" "005" "1" "63C2"},
         TELLS((GenPin{8, {0, 0x20, 0, 0x80}, 'A', 4, 6, "PIN"}), answer.status, answer.sw), "1|63C2"},
        {"Dwk1, refused", {"*"}, {"DWK042"},
         [](Session& session) {
             return std::string(session.run(Dwk1{MasterKey(ABECS_MK_TYPE_TDES, 1, Secret(Bytes(kKey)))}).status().name());
         }, "ST_ERRKEY"},
        {"Tables", {"TLI01207" + padded("V1", 10), batch(0, 99), batch(99, 100), "TLE"}, {"TLI000", "TLR000", "TLR000", "TLE000"}, load_tables, "TLE|0|99|100|100|100"},
        {"Media", {message("MLI", "001E 0008"_hex + padded("LOGO", 8) + "001F 000A 000003E8"_hex + kMediaCrc + "01 000000"_hex), message("MLR", "000F 03E3"_hex + std::string(995, 'm')),
                   message("MLR", "000F 0005"_hex + "mmmmm"), "MLE"},
         {"MLI000", "MLR000", "MLR000", "MLE000"}, put_media, "MLE|0|995|1000|1000|1000"},
        {"Lmf", {"LMF"}, {message("LMF000", "805E 0008"_hex + padded("LOGO", 8) + "805E 0008"_hex + padded("B", 8))}, [](Session& session) { return outcome(Media::list(session)); }, "LOGO;B;"},
        {"Dmf", {message("DMF", "001E 0008"_hex + padded("TEA", 8) + "001E 0008"_hex + padded("COFFEE", 8))}, {"DMF000"},
         [](Session& session) { return outcome(Media::remove(session, kNames)); }, "DMF|0"},
        {"Raw", {"ABC" "002XY" "000"}, {"NTM000002HI", "ABC000" "003" "800" "001" "z"},
         [](Session& session) {
             const Bytes blocks[] = {detail::bytes_of("XY"), Bytes()};
             return joined(session.run(Raw{.command = "ABC", .blocks = blocks}).require().blocks());
         }, "800;z;"},
        {"Raw, waiting", {message("ABC", "000C 0001 01 0021 0002 0123"_hex)}, {"NTM000002HI", message("ABC000", "8040 0002"_hex + "90")}, raw_waits, "HI|32832|90"},
        {"PAN functions", {}, {}, read_track, "41111111|B4111111111111111^DOE/JOHN^25121010000000000|411111111111"},
    };
    return kRows;
}

}  // namespace hpp
