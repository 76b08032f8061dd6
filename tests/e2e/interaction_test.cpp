// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/e2e/fixture.h"
#include "tests/simulator/host_key.h"

namespace {

using namespace quorvel::sim;

AbecsCmdGpnCmdData pin_request(AbecsCmdGpnMethod_E method, const std::string& wkEnc, const std::string& pan) {
    AbecsCmdGpnCmdData request{};
    request.method = method;
    wkEnc.copy(request.wkEnc, sizeof request.wkEnc);
    pan.copy(request.pan, sizeof request.pan);
    request.entryCount = 1;
    request.entries[0] = {.min = 4, .max = 12, .msg = "PIN"};
    return request;
}

using Interaction = SecureEndToEnd;

TEST_F(Interaction, BringsAPinBlockThatWhoeverHasTheKeyCanRead) {
    const struct {
        AbecsCmdGpnMethod_E method;
        const char* wkEnc;
        const char* pan;
        const char* pin;
        std::string key;
        const char* ksn;
        std::string block;
    } rows[] = {
        {ABECS_CMD_GPN_METHOD_MK_WK_DES, "B4CC3FD9D8D95214", "4012345678909", "1234", kDes, "00000000000000000000",
         "041274EDCBA9876F"_hex},
        {ABECS_CMD_GPN_METHOD_MK_WK_TDES, "3eb3b72576bbbe834f0b96aaa5a8b548", "6799990100000000019", "123456789012",
         kTdes, "00000000000000000000", "0C123556789012FE"_hex},
        {ABECS_CMD_GPN_METHOD_DUKPT_DES, "", "", "1234", "35FDB4BBAEE6A293 35FDB4BBAEE6A293"_hex,
         "FFFF9876543210E00001", "041234FFFFFFFFFF"_hex},
        {ABECS_CMD_GPN_METHOD_DUKPT_TDES, "", "4111111111111111", "12345", kPinKeys[0], "FFFF9876543210E00001",
         "0512254EEEEEEEEE"_hex},
        {ABECS_CMD_GPN_METHOD_DUKPT_TDES, "", "19", "1234", kPinKeys[1], "FFFF9876543210E00002",
         "041234FFFFFFFFFE"_hex},
    };
    for (const auto& row : rows) {
        const AbecsCmdGpnCmdData request = pin_request(row.method, row.wkEnc, row.pan);
        AbecsCmdGpnRspData out{};
        begin("GPN", Gestures().type(row.pin), abecs_cmd_gpn, &request);
        EXPECT_EQ(call(abecs_cmd_gpn_response, &out, nullptr), ABECS_RSP_STAT_ST_OK);
        EXPECT_EQ(tdes_decipher(row.key, from_digits(out.pinBlk)), row.block);
        EXPECT_STREQ(out.ksn, row.ksn);
        if (row.method != ABECS_CMD_GPN_METHOD_DUKPT_TDES) { continue; }
        EXPECT_EQ(call(abecs_cmd_gdu, ABECS_CMD_GDU_METHOD_3, 0, out.ksn), ABECS_RSP_STAT_ST_OK);
        EXPECT_STREQ(out.ksn, row.ksn) << "of the last PIN block";
    }
}

}  // namespace
