// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/cards/emv.h"
#include "simulator/cards/restrictions.h"
#include "simulator/device/table_record.h"
#include "tests/simulator/fixture.h"
#include "tests/simulator/guide.h"
#include "wire/hex.h"

using namespace quorvel::sim;

namespace {

using enum RecordField;
using Fields = std::vector<std::pair<RecordField, std::string>>;

// Blank but for those fields.
std::string body(const Fields& fields) {
    std::string body;
    for (const RecordRow& row : kRecordLayout) {
        const auto given = std::ranges::find(fields, row.field, &Fields::value_type::first);
        body += given != fields.end() ? given->second : std::string(row.width, ' ');
    }
    return body;
}

TEST(TableRecord, IsReadAsFarAsItGoes) {
    const std::string whole = "07A000000003101000000000000000000001VISA CREDITO    03008C008D008E8409862"
                              "MERCHANT0000001"s "5411TERM0001E020C86000F0A00125"
                              "0000000001"  "0000000002"  "0000000003"  "00001388R12000027100000006400000BB8008F "
                              + std::string(40, '1') + std::string(40, '2') + "Y1Z1Y3Z3"
                              "000000000A" "000000000B" "000000000C";
    const TableRecord record(to_bytes(whole));
    EXPECT_EQ(record.objects(),
              decode(from_hex("5F2A0209865F3601029F0902008C9F1502541"
                              "19F160F4D45524348414E54303030303030319F1A020840"
                              "9F1B04000013889F1C085445524D303030319F3303E020C89F3501259F40056000F0A0019F530152")));
    EXPECT_EQ(std::tuple(record.limit(kFloorLimit), record.limit(kContactlessLimit), record.limit(kContactlessFloor),
                         record.limit(kContactlessVerification)),
              std::tuple(5000, 10000, 100, 3000));
    const ActionCodes chip = record.action_codes(false);
    const ActionCodes antenna = record.action_codes(true);
    EXPECT_EQ((std::vector{chip.otherwise[4], chip.denial[4], chip.online[4], antenna.otherwise[4], antenna.denial[4],
                           antenna.online[4]}),
              (Bytes{0x01, 0x02, 0x03, 0x0A, 0x0B, 0x0C}));
    // Wherever it ends, what comes before is as it was, and nothing is complained of.
    for (size_t size = 0; size < whole.size(); ++size) {
        const TableRecord shorter(to_bytes(whole.substr(0, size)));
        EXPECT_TRUE(shorter.unreadable().empty()) << size;
        EXPECT_EQ(shorter.text(kCurrency).has_value(), size >= 72) << size;
    }
    const TableRecord odd(to_bytes(body({{kCurrency, "9X6"}, {kFloorLimit, "0000138G"}, {kCountry, "840"}})));
    EXPECT_EQ(odd.unreadable(), (std::vector<std::string_view>{"currency", "floor limit"}));
    EXPECT_EQ(odd.objects(), decode(from_hex("9F1A020840")));
}

TEST(Guide, TellsOfEachFieldOfARecordAndOfEachCard) {
    std::vector<std::vector<std::string>> told = table_of_guide("realism.md", "| field |");
    ASSERT_EQ(told.size(), kRecordLayout.size());
    for (size_t i = 0; i < told.size(); ++i) {
        const RecordRow& row = kRecordLayout[i];
        told[i].pop_back();
        EXPECT_EQ(told[i], (std::vector{std::string(row.name), std::to_string(row.width),
                                        std::string(1, "NHA"[static_cast<size_t>(row.kind)])}));
    }
    std::vector<std::string> names;
    for (const auto& row : table_of_guide("realism.md", "| name |")) { names.push_back(row[0]); }
    std::vector<std::string> due;
    for (const std::string& name : Cards::standard().names()) { due.push_back("`" + name + "`"); }
    EXPECT_EQ(names, due);
}

TEST(Kernel, FindsOutAboutTheCard) {
    for (const auto& [objects, results] : {
             std::pair("9A03260101 5F2403260101 5F2503260101", ""),
             {"9A03260102 5F2403260101", "0040000000"},
             {"9A03260102 5F2403500101", "0040000000"},
             {"9A03260101 5F2503260102", "0020000000"},
             {"5F2403000101", ""},
             {"9C0100 9F07020400 5F28020826 9F1A020076", ""},
             {"9C0100 9F07020400 5F28020076 9F1A020076", "0010000000"},
             {"9C0101 9F07022800 5F28020076 9F1A020076", "0010000000"},
             {"9C0101 9F07028000 5F28020076 9F1A020076", ""},
             {"9C0109 9F0702FF00 5F28020076 9F1A020076", "0010000000"},
             {"9C0109 9F07022880 5F28020076 9F1A020076", ""},
         }) {
        std::string digits = objects;
        std::erase(digits, ' ');
        DataObjects known = decode(from_hex(digits));
        mark_restrictions(known);
        EXPECT_EQ(to_hex(value_of(known, tag::kTerminalResults)), results) << objects;
    }
    for (const auto& [counter, lastOnline, results] :
         {std::tuple(7, 5, ""), {8, 5, "0000004000"}, {9, 5, "0000006000"}, {1, 0, "0008000000"}}) {
        DataObjects known = decode(from_hex("9F1401029F230103"));
        mark_velocity(static_cast<uint16_t>(counter), static_cast<uint16_t>(lastOnline), known);
        EXPECT_EQ(to_hex(value_of(known, tag::kTerminalResults)), results) << counter;
    }
}

// Pays with cards of acquirer 3, record 01, by the commands of parameters.
class KernelTest : public PinPadTest {
protected:
    void play_with(const Fields& fields) {
        Device device = Device::standard();
        device.tables.load(0, "T", {{{.table = 1, .acquirer = 3, .index = "01"}, to_bytes(body(fields))}});
        play(std::move(device));
    }

    // The status; the objects that are asked for stand at the end of the answer.
    std::string read(const Gestures& gestures, unsigned amount, const std::string& tags = "82",
                     const std::string& more = "") {
        if (!gestures.events().empty()) { pinPad_->when("GCX", gestures); }
        const Bytes list = from_hex(tags);
        const std::string tagList(list.begin(), list.end());
        const std::string fields = "0015 0006"_hex + "240229" + "0016 0006"_hex + "235958" + "0013 000C"_hex
                                   + fmt::format("{:012}", amount) + "0004 00"_hex + static_cast<char>(tagList.size())
                                   + tagList + more;
        last_ = ask(fmt::format("GCX{:03}{}", fields.size(), fields));
        return last_.substr(3, 3);
    }

    // The results of GOX, those of the terminal, and those of the verification.
    std::string decide(const Gestures& gestures = {}, const std::string& more = "") {
        if (!gestures.events().empty()) { pinPad_->when("GOX", gestures); }
        const std::string fields =
            "0010 0002"_hex + "03" + "0002 0001"_hex + "3" + "0009 0002"_hex + "00" + "0004 0003 95 9F34"_hex + more;
        const std::string answer = ask(fmt::format("GOX{:03}{}", fields.size(), fields));
        if (answer.substr(3, 3) != "000") { return answer.substr(3, 3); }
        const std::string hex = to_hex(to_bytes(answer));
        return answer.substr(13, 6) + " " + hex.substr(hex.size() - 22, 10) + " " + hex.substr(hex.size() - 6);
    }

    [[nodiscard]] std::string told() const { return to_hex(to_bytes(last_)); }

    std::string last_;
};

Card with(std::string_view name, const std::string& objects) {
    Card changed = card(name);
    for (auto& [tag, value] : decode(from_hex(objects))) { changed.chip->objects[tag] = value; }
    return changed;
}

TEST_F(KernelTest, VerifiesAndDecidesByTheCardAndTheTables) {
    const Gestures none;
    const Gestures pin = Gestures().type("1234");
    const Gestures enter = Gestures().press(Key::kEnter);
    const Fields floor{{kFloorLimit, "00001388"}};
    const std::string noCodes = "9F0D0500000000009F0E0500000000009F0F050000000000";
    const std::string overFloor = "0000008000";
    for (const auto& [used, fields, amount, go, due] : {
             std::tuple(card("visa-signature"), floor, 4999U, none, "010000 0000000000 1E0300"s),
             {card("visa-signature"), floor, 5000, none, "210000 0000008000 1E0300"},
             {with("visa-signature", noCodes), floor, 5000, none, "010000 0000008000 1E0300"},
             {with("visa-signature", noCodes),
              {{kFloorLimit, "00001388"}, {kOnlineCode, overFloor}},
              5000,
              none,
              "210000 0000008000 1E0300"},
             {card("visa-signature"),
              {{kFloorLimit, "00001388"}, {kDenialCode, overFloor}},
              5000,
              none,
              "110000 0000008000 1E0300"},
             {card("expired-chip"), {}, 100, none, "100000 0040000000 1F0302"},
             {card("velocity-chip"), {}, 100, none, "210000 0000004000 1E0300"},
             {card("foreign-chip"), {}, 100, none, "010000 0000000000 1E0300"},
             {card("foreign-chip"), {{kCountry, "826"}}, 100, none, "010000 0000000000 1E0300"},
             {with("foreign-chip", "9F0702A800"), {}, 100, none, "210000 0010000000 1E0300"},
             {card("visa-pin-or-signature"), {}, 100, pin, "200001 0000040000 420300"},
             {card("visa-pin-or-signature"), {}, 100, enter, "210000 0000080000 5E0300"},
             {card("visa-chip"), {}, 100, enter, "100000 0000880000 420301"},
             {with("visa-chip", "8E0C000000000000000002031E03"), {}, 100, enter, "100000 0000880000 020301"},
             {card("visa-offline-pin"), {}, 100, Gestures().type("9999").type("1234"), "001100 0000000000 410302"},
             {card("visa-pin-or-signature"), {{kCapabilities, "E020C8"}}, 100, none, "010000 0000000000 5E0300"},
             {card("visa-chip"), {{kCapabilities, "E000C8"}}, 100, none, "100000 0000800000 3F0000"},
             {with("visa-chip", "8E0C000003E8000000001E064203"), {}, 999, none, "010000 0000000000 1E0600"},
             {with("visa-chip", "8E0C000003E8000000001E064203"), {}, 1000, pin, "200001 0000040000 420300"},
             {with("visa-chip", "8E0C000000000000000060001F00"), {}, 100, none, "200000 0000400000 1F0002"},
             {with("visa-offline-pin", "8E0A00000000000000000300"), {}, 100, pin, "011000 0000000000 030002"},
             {with("visa-chip", "8E080000000000000000"), {}, 100, none, "000000 0000000000 3F0000"},
             {with("visa-offline-pin", "8E0C000000000000000044031E03"),
              {{kCapabilities, "E0A0C8"}},
              100,
              none,
              "010000 0000000000 1E0300"},
             {with("visa-offline-pin", "8E0C000000000000000041034503"),
              {{kCapabilities, "E030C8"}},
              100,
              pin,
              "011000 0000000000 450302"},
             {with("visa-offline-pin", "8E0A00000000000000000403"),
              {{kCapabilities, "E010C8"}},
              100,
              pin,
              "001000 0000000000 040302"},
         }) {
        SCOPED_TRACE(due);
        play_with(fields);
        ASSERT_EQ(read(Gestures().insert(used), amount), "000");
        EXPECT_EQ(decide(go), due);
    }
}

// What the card's code for default lets pass is approved without the issuer.
TEST_F(KernelTest, GoesByTheDefaultCodesWhenNobodyCanBeAsked) {
    const Fields fields{{kFloorLimit, "00000001"}, {kOnlineCode, "0000008000"}};
    for (const auto& [objects, due] : {std::pair("9F0D050000000000", "000"), {"9F0D050000008000", "001"}}) {
        play_with(fields);
        ASSERT_EQ(read(Gestures().insert(with("visa-signature", objects)), 100), "000");
        EXPECT_EQ(decide().front(), '2');
        call("FCX008" + "0019 0004"_hex + "2000", "FCX000007" + "8058 0003"_hex + due);
        // A till that says it is offline from the start.
        pinPad_->remove();
        ASSERT_EQ(read(Gestures().insert(with("visa-signature", objects)), 100), "000");
        EXPECT_EQ(decide({}, "0018 0005"_hex + "01000").front(), due[2]);
    }
}

TEST_F(KernelTest, TheHostsLimitsStandAboveTheTables) {
    play_with({{kFloorLimit, "00000001"}});
    ASSERT_EQ(read(inserted("visa-signature"), 100), "000");
    EXPECT_EQ(decide({}, "001A 000A 00000065 00 00000065 00"_hex), "010000 0000000000 1E0300");
}

TEST_F(KernelTest, TapsByTheTablesLimits) {
    const Fields limits{{kContactlessZero, "1"},
                        {kContactlessMode, "2"},
                        {kContactlessLimit, "00002710"},
                        {kContactlessVerification, "00001388"}};
    const Gestures pin = Gestures().type("1234");
    play_with(limits);
    for (const auto& [name, amount, status, go, due] : {
             std::tuple("visa-contactless", 4999U, "000", Gestures(), "000000 0000000000 1F0302"),
             {"visa-contactless", 5000, "000", pin, "200001 0000040000 420300"},
             {"visa-contactless", 0, "000", {}, "200000 0000000800 1F0302"},
             {"visa-contactless", 10001, "087", {}, ""},
             {"phone", 4999, "000", {}, "000000 0000000000 1F0302"},
             {"phone", 5000, "086", {}, ""},
             {"phone", 5000, "000", {}, "000000 0000000000 010002"},
             {"phone", 5000, "086", {}, ""},
         }) {
        SCOPED_TRACE(fmt::format("{} {}", name, amount));
        EXPECT_EQ(read(Gestures().tap(card(name)), amount), status);
        if (*due != '\0') { EXPECT_EQ(decide(go), due); }
    }
    play_with({{kContactlessMode, "0"}});
    EXPECT_EQ(read(Gestures().tap(card("phone")), 100), "084");
    play_with({{kContactlessZero, "0"}, {kContactlessFloor, "00000064"}});
    EXPECT_EQ(read(Gestures().tap(card("visa-contactless")), 0), "087");
    EXPECT_EQ(read(Gestures().tap(card("visa-contactless")), 99, "9F669F6C"), "000");
    EXPECT_TRUE(told().ends_with("9F6604364040009F6C028000")) << told();
    EXPECT_EQ(decide(pin), "200001 0000040000 420300");
    EXPECT_EQ(read(Gestures().tap(card("visa-contactless")), 100, "9F66"), "000");
    EXPECT_TRUE(told().ends_with("9F660436C04000")) << told();
    EXPECT_EQ(decide(pin), "200001 0000048000 420300");
}

TEST_F(KernelTest, TellsTheTerminalByTheTableAndCountsEachCard) {
    play_with({{kCountry, "840"}, {kCurrency, "986"}, {kFloorLimit, "0000G000"}});
    EXPECT_EQ(read(inserted("visa-chip"), 1, "9F1A5F2A9F36"), "000");
    EXPECT_TRUE(told().ends_with("9F1A0208405F2A0209869F36020001")) << told();
    const Finding unreadable{Kind::kLayout, "record 10301 of the tables: floor limit: no such value"};
    const auto another = [](const std::string& currency) {
        return Finding{Kind::kMoney, "the currency is " + currency + ", but 986 in record 10301 of the tables"};
    };
    expect_findings({unreadable});
    EXPECT_EQ(read({}, 1, "5F2A9F36", "0022 0003"_hex + "840"), "000");
    EXPECT_TRUE(told().ends_with("5F2A0208409F36020002")) << told();
    expect_findings({unreadable, another("840")});
    static_cast<void>(decide(Gestures().type("1234"), "0022 0003"_hex + "032"));
    expect_findings({{Kind::kMoney, "GOX: the currency is 032, but was 840"}, another("032")});
    pinPad_->remove();
    EXPECT_EQ(read(inserted("velocity-chip"), 1, "9F369F13"), "000");
    EXPECT_TRUE(told().ends_with("9F360200089F13020005")) << told();
    expect_findings({unreadable});
    // The issuer approves: the count begins anew.
    EXPECT_EQ(decide().front(), '2');
    call("FCX014" + "0019 0004"_hex + "0000" + "001C 0002"_hex + "00", "FCX000007" + "8058 0003"_hex + "000");
    EXPECT_EQ(read({}, 1, "9F369F13"), "000");
    EXPECT_TRUE(told().ends_with("9F360200099F13020008")) << told();
    expect_findings({unreadable});
}

}  // namespace
