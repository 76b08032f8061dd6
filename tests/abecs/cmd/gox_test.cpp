// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/cmd/gox.h"

#include <gtest/gtest.h>
#include <string>

#include "abecs/data/spe_mthd_pin.h"
#include "tests/abecs/cmd/card_command.h"
#include "tests/support/wire.h"

namespace {

using namespace support::literals;
using support::Link;

constexpr uint8_t kKey[16] = {0x13, 0x16, 0x17, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};

AbecsSpeMthdPin_E method(int32_t value) { return static_cast<AbecsSpeMthdPin_E>(value); }

class Gox : public support::BuiltCommand<AbecsCmdGoxBuilder, abecs_cmd_gox_builder_delete, abecs_cmd_gox,
                                         abecs_cmd_gox_response> {
protected:
    Gox() { builder_ = abecs_cmd_gox_builder_new(4, ABECS_SPE_MTHD_PIN_DUKPT_TDES, 12); }
};

const std::string kFirst = "0010 0002 3034 0002 0001 33 0009 0002 3132"_hex;

TEST_F(Gox, SendsWhatWasSetInTheOrderOfTheCalls) {
    const AbecsEmvData emvData{{0x9F, 0x03}, 2};
    const AbecsTagList tagList{{0x9F, 0x26}, 2};
    expect_sent("GOX017" + kFirst);
    set(abecs_cmd_gox_builder_timeout, 0);
    set(abecs_cmd_gox_builder_taglist, &tagList);
    set(abecs_cmd_gox_builder_emvdata, &emvData);
    set(abecs_cmd_gox_builder_trmpar, kKey);
    set(abecs_cmd_gox_builder_dspmsg, "");
    set(abecs_cmd_gox_builder_goxopt, "01234");
    set(abecs_cmd_gox_builder_trncurr, 986);
    set(abecs_cmd_gox_builder_cashback, 100);
    set(abecs_cmd_gox_builder_amount, 12345);
    set(abecs_cmd_gox_builder_trntype, 9);
    expect_sent("GOX105" + kFirst + "000C 0001 00 0004 0002 9F26 0005 0002 9F03"_hex
                + "001A 000A 1316 1704 0506 0708 090A 001B 0000 0018 0005"_hex + "01234" + "0022 0003"_hex + "986"
                + "0014 000C"_hex + "000000000100" + "0013 000C"_hex + "000000012345" + "0021 0001 09"_hex);
}

TEST_F(Gox, NeedsTheWorkingKeyOfItsMethod) {
    const std::string sizes[] = {"(expected: 8, available: 16)", "(expected: 16, available: 8)"};
    const std::string requests[] = {
        "GOX029" + "0010 0002 3939 0002 0001 30 0009 0002 3939 000A 0008 1316 1704 0506 0708"_hex,
        "GOX037" + "0010 0002 3939 0002 0001 31 0009 0002 3939 000A 0010 1316 1704 0506 0708 090A 0B0C 0D0E 0F10"_hex};
    Link link;
    for (const int32_t i : {0, 1}) {
        const size_t size = i == 0 ? 8 : 16;
        set(abecs_cmd_gox_builder_reset, 99, method(i), 99);
        refused(2, "'wkenc' is NULL", abecs_cmd_gox_builder_wkenc, nullptr, 24 - size);
        refused(2, "'szWkenc' is invalid " + sizes[i], abecs_cmd_gox_builder_wkenc, kKey, 24 - size);
        EXPECT_REFUSED(3, "SPE_WKENC not set", abecs_cmd_gox(link.comm, builder_));
        set(abecs_cmd_gox_builder_wkenc, kKey, size);
        refused(3, "SPE_WKENC already set", abecs_cmd_gox_builder_wkenc, kKey, size);
        expect_sent(requests[i]);
        set(abecs_cmd_gox_builder_reset, 99, method(i), 99);
        EXPECT_REFUSED(3, "SPE_WKENC not set", abecs_cmd_gox(link.comm, builder_));
    }
    for (const int32_t i : {2, 3}) {
        set(abecs_cmd_gox_builder_reset, 99, method(i), 99);
        const std::string name = i == 2 ? "ABECS_SPE_MTHD_PIN_DUKPT_DES" : "ABECS_SPE_MTHD_PIN_DUKPT_TDES";
        refused(3, "PIN encryption method (" + name + ") does not use SPE_WKENC parameter", abecs_cmd_gox_builder_wkenc,
                nullptr, 0);
    }
}

TEST_F(Gox, ChecksEveryArgumentInOrder) {
    const auto reset = abecs_cmd_gox_builder_reset;
    refused(2, "Invalid 'acqRef': 100 (min: 0, max: 99)", reset, 100, method(4), 100);
    refused(2, "Invalid enumerator for AbecsSpeMthdPin_E: 4", reset, 99, method(4), 100);
    refused(2, "Invalid enumerator for AbecsSpeMthdPin_E: -1", reset, 99, method(-1), 100);
    refused(2, "Invalid 'keyIdx': 100 (min: 0, max: 99)", reset, 99, method(0), 100);
    refused(2, "Number length (13) is greater than field length (12)", abecs_cmd_gox_builder_amount, 1000000000000);
    refused(2, "'i' (10000000000000) is too long (maximum: 9999999999999", abecs_cmd_gox_builder_cashback,
            10000000000000);
    refused(2, "Invalid 'trnCurr' (maximum: 999, requested: 1000)", abecs_cmd_gox_builder_trncurr, 1000);
    refused(2, "goxOpt: invalid char (0x61) at index 4", abecs_cmd_gox_builder_goxopt, "0123a");
    refused(2, "'dspMsg' is NULL", abecs_cmd_gox_builder_dspmsg, nullptr);
    refused(2, "'trmPar' is NULL", abecs_cmd_gox_builder_trmpar, nullptr);
    expect_sent("GOX017" + kFirst);
    EXPECT_RAISES(2, "Invalid 'keyIdx': 100 (min: 0, max: 99)", abecs_cmd_gox_builder_new(0, method(0), 100));
}

TEST(MthdPin, NamesItsEnumerators) {
    EXPECT_STREQ(abecs::mthd_pin_to_string(ABECS_SPE_MTHD_PIN_MK_WK_DES), "ABECS_SPE_MTHD_PIN_MK_WK_DES");
    EXPECT_STREQ(abecs::mthd_pin_to_string(ABECS_SPE_MTHD_PIN_MK_WK_TDES), "ABECS_SPE_MTHD_PIN_MK_WK_TDES");
    EXPECT_RAISES(1, "Unhandled case", abecs::mthd_pin_to_string(method(4)));
}

}  // namespace
