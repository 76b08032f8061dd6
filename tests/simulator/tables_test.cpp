// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "simulator/device/tables.h"

#include "tests/simulator/fixture.h"

using namespace quorvel::sim;

namespace {

using TablesTest = PinPadTest;

TEST_F(TablesTest, ALoadCountsFromItsEnd) {
    Device device;
    device.tables.load(3, "V0", {{{1, 3, "99"}, {}}});
    device.tables.load(4, "V4");
    play(device);
    call("TLI01203V1        ", "TLI000");
    call("TLR0210201110301xyz008203A ", "TLR000");
    call("TLR00200", "TLR000");
    call("TLR0130101110302" + "16 FF 00"_hex, "TLR000");
    call("GTS00203", "GTS000010V0        ");
    call("TLE", "TLE000");
    call("GTS00203", "GTS000010V1        ");
    call("GIX012" + "0001 0008 9303 9300 9304 9305"_hex,
         "GIX000028" + "9303 000A"_hex + "V1        " + "9304 000A"_hex + "V4        ");
    const Tables::Records due{{{1, 3, "01"}, to_bytes("xyz")}, {{1, 3, "02"}, {0x16, 0xFF, 0}}, {{2, 3, "A"}, {}}};
    EXPECT_EQ(retire().tables.records(), due);
}

TEST_F(TablesTest, RefusesWhatIsOutOfPlaceOrShape) {
    play();
    refuse("010", Kind::kSequence, {{"TLR00200", "TLR: no load was begun"}, {"TLE", "TLE: no load was begun"}});
    refuse("011", Kind::kLayout, {{"GTS003003", "GTS: 1 bytes too many"}});
    call("TLI01203V1        ", "TLI000");
    call("TLR0100100810301", "TLR000");
    refuse("021", Kind::kLayout,
           {{"TLR0100100710302", "TLR: record 1: length: 7 is not from 8 to 999"},
            {"TLR018020081030200910303", "TLR: record 2: body: 1 bytes due, 0 left"},
            {"TLR0100200810302", "TLR: record 2: length: 3 bytes due, 0 left"},
            {"TLR018010081030200810303", "TLR: 8 bytes too many"},
            {"TLR0100100810X02", "TLR: record 1: TAB_ACQ: 0x58 is no digit"},
            {"TLR019020081030200910302x", "TLR: record 2: another one has its key"},
            {"TLR018020081030200810301", "TLR: record 10301 is in the load already"},
            {"TLR018020081030200810402", "TLR: a record of acquirer 04 in a load for 03"}});
    refuse("011", Kind::kLayout, {{"TLE000", "TLE: 3 bytes too many"}});
    call("TLE", "TLE000");
    EXPECT_EQ(retire().tables.records(), (Tables::Records{{{1, 3, "01"}, {}}}));
}

TEST(Tables, ALoadReplacesWhatItsAcquirersHad) {
    Tables tables;
    tables.load(0, "ALL", {{{1, 3, "01"}, {}}, {{1, 4, "01"}, {}}});
    EXPECT_EQ(tables.version(0), "ALL");
    EXPECT_EQ(tables.version(7), "ALL");
    tables.begin(3, "LOST");
    tables.add({{{1, 3, "02"}, {}}});
    tables.begin(3, "NEW");
    tables.add({{{2, 3, "03"}, {}}});
    EXPECT_TRUE(tables.has_record(3, "01"));
    tables.end();
    EXPECT_EQ(tables.records(), (Tables::Records{{{1, 4, "01"}, {}}, {{2, 3, "03"}, {}}}));
    EXPECT_TRUE(tables.has_record(3, "03"));
    EXPECT_FALSE(tables.has_record(3, "01"));
    EXPECT_EQ(tables.version(3), "NEW");
    EXPECT_EQ(tables.version(4), "ALL");
    EXPECT_EQ(tables.version(0), std::nullopt);
    tables.load(0, "");
    EXPECT_EQ(tables.records(), Tables::Records{});
    EXPECT_EQ(tables.version(3), "");
}

}  // namespace
