// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <vector>

#include "quorvel/quorvel.h"
#include "simulator/scenario/performance.h"
#include "tests/support/raised.h"

namespace {

using namespace quorvel::sim;

// Sells as a till does, and keeps what each command was answered with: "GCX 000 GOX 000 ".
class Till {
public:
    explicit Till(const std::string& path) { EXPECT_NO_RAISE(link_ = abecs_comm_open(path.c_str())); }
    virtual ~Till() { EXPECT_NO_RAISE(abecs_comm_close(&link_)); }
    Till(const Till&) = delete;
    Till& operator=(const Till&) = delete;

    std::string sell(bool reachable) {
        call("OPN", abecs_cmd_opn, false);
        take_card();
        const int16_t decision = chip_ ? decide() : int16_t{-1};
        if (decision == 2) finish(reachable);
        if (chip_) {
            EXPECT_NO_RAISE(abecs_cmd_rmc(link_, "REMOVE THE CARD"));
            poll("RMC", [&](char* note) { return abecs_cmd_rmc_response(link_, note); });
        }
        call("CLO", abecs_cmd_clo, nullptr);
        return said_;
    }

protected:
    static constexpr const char* version = "TILLS00001";

    // Sets chip_ when there is a chip, or an antenna, to go on with.
    virtual void take_card() = 0;
    virtual int16_t decide() = 0;
    virtual void finish(bool reachable) = 0;

    void keep(const char* id, int32_t status) { said_ += std::string(id) + " " + std::to_string(status) + "; "; }

    template <typename... Parameters>
    int32_t call(const char* id, int32_t (*command)(AbecsComm*, Parameters...),
                 std::type_identity_t<Parameters>... arguments) {
        int32_t status = -3;
        EXPECT_NO_RAISE(status = command(link_, arguments...));
        keep(id, status);
        return status;
    }

    template <typename Response>
    int32_t poll(const char* id, const Response& response) {
        int32_t status = ABECS_RSP_STAT_ST_PROCESSING;
        while (status == ABECS_RSP_STAT_ST_PROCESSING || status == ABECS_RSP_STAT_ST_NOTIFICATION) {
            char note[33] = "";
            status = -3;
            EXPECT_NO_RAISE(status = response(&note[0]));
        }
        keep(id, status);
        return status;
    }

    void load_tables() {
        call("TLI", abecs_cmd_tli, 0, version);
        call("TLR", abecs_cmd_tlr, "01010301AB01010302AB");
        call("TLE", abecs_cmd_tle);
    }

    AbecsComm* link_ = nullptr;
    bool chip_ = false;
    std::string said_;
};

// With commands of fields, which compare the tables' versions by themselves.
class FieldTill : public Till {
public:
    using Till::Till;

private:
    int32_t card_response() {
        return poll("GCR", [&](char* note) { return abecs_cmd_gcr_response(link_, &card_, note); });
    }

    void take_card() override {
        AbecsCmdGcrData request{0, 99, 1234, {26, 11, 21}, {10, 20, 30}, "", true};
        std::string(version).copy(request.tabVer, sizeof request.tabVer - 1);
        EXPECT_NO_RAISE(abecs_cmd_gcr(link_, &request, nullptr));
        int32_t status = card_response();
        if (status == ABECS_RSP_STAT_ST_TABVERDIF) {
            load_tables();
            EXPECT_NO_RAISE(abecs_cmd_gcr_empty(link_));
            status = card_response();
        }
        chip_ = status == ABECS_RSP_STAT_ST_OK && card_.cardType != ABECS_CMD_GCR_CARD_TYPE_MAGNETIC;
    }

    int16_t decide() override {
        AbecsCmdGocData request{};
        request.amount = 1234;
        request.connect = true;
        request.method = ABECS_CMD_GOC_METHOD_DUKPT_TDES;
        std::string(sizeof request.wkenc, '0').copy(request.wkenc, sizeof request.wkenc);
        std::string("00000000").copy(request.flrlimit, sizeof request.flrlimit);
        AbecsCmdGocResponse out{};
        EXPECT_NO_RAISE(abecs_cmd_goc(link_, card_.acqIdx, &request));
        const auto response = [&](char* note) { return abecs_cmd_goc_response(link_, &out, note); };
        return poll("GOC", response) == ABECS_RSP_STAT_ST_OK ? static_cast<int16_t>(out.decision) : int16_t{-1};
    }

    void finish(bool reachable) override {
        AbecsCmdFncData request{};
        request.commSt = reachable ? 0 : 1;
        std::string(reachable ? "00" : "  ").copy(request.arc, sizeof request.arc);
        AbecsCmdFncResponse out{};
        call("FNC", abecs_cmd_fnc, &request, &out);
    }

    AbecsCmdGcrResponse card_{};
};

// With commands of parameters, after a look at the tables' version.
class ParameterTill : public Till {
public:
    using Till::Till;
    ~ParameterTill() override {
        abecs_cmd_gcx_builder_delete(&gcx_);
        abecs_cmd_gox_builder_delete(&gox_);
        abecs_cmd_fcx_builder_delete(&fcx_);
        abecs_cmd_fcx_builder_delete(&reached_);
        kor_map_delete(&items_);
    }

private:
    std::string item(uint16_t id) {
        const AbecsRspParamValue* const value = abecs_rsp_param_map_get(items_, id);
        return value == nullptr ? "" : std::string(value->data, value->data + value->size);
    }

    void take_card() override {
        char loaded[11] = "";
        const int32_t known = call("GTS", abecs_cmd_gts, 0, &loaded[0]);
        if (known != ABECS_RSP_STAT_ST_OK || std::string(loaded) != version) load_tables();
        EXPECT_NO_RAISE(abecs_cmd_gcx_builder_amount(gcx_, 1234));
        EXPECT_NO_RAISE(abecs_cmd_gcx_builder_timeout(gcx_, 30));
        EXPECT_NO_RAISE(abecs_cmd_gcx(link_, gcx_));
        const auto response = [&](char* note) { return abecs_cmd_gcx_response(link_, items_, note); };
        chip_ = poll("GCX", response) == ABECS_RSP_STAT_ST_OK && item(ABECS_RSP_DATID_PP_CARDTYPE) != "00";
    }

    int16_t decide() override {
        EXPECT_NO_RAISE(abecs_cmd_gox(link_, gox_));
        const auto response = [&](char* note) { return abecs_cmd_gox_response(link_, items_, note); };
        if (poll("GOX", response) != ABECS_RSP_STAT_ST_OK) return -1;
        return static_cast<int16_t>(item(ABECS_RSP_DATID_PP_GOXRES).at(0) - '0');
    }

    void finish(bool reachable) override {
        EXPECT_NO_RAISE(abecs_cmd_fcx_builder_arc(reached_, "00"));
        EXPECT_NO_RAISE(abecs_cmd_fcx(link_, reachable ? reached_ : fcx_));
        poll("FCX", [&](char* note) { return abecs_cmd_fcx_response(link_, items_, note); });
    }

    AbecsCmdGcxBuilder* gcx_ = abecs_cmd_gcx_builder_new("261121", "102030");
    AbecsCmdGoxBuilder* gox_ = abecs_cmd_gox_builder_new(3, ABECS_SPE_MTHD_PIN_DUKPT_TDES, 0);
    AbecsCmdFcxBuilder* fcx_ = abecs_cmd_fcx_builder_new("2000");
    AbecsCmdFcxBuilder* reached_ = abecs_cmd_fcx_builder_new("0000");
    AbecsRspParamMap* items_ = abecs_rsp_param_map_new();
};

struct Case {
    const char* name;
    const char* ofFields;
    const char* ofParameters;
    bool reachable = true;
};

const std::vector<Case> cases{
    {"magnetic", "GCR 0; ", "GCX 0; "},
    {"chip-online-pin", "GCR 0; GOC 0; FNC 0; RMC 0; ", "GCX 0; GOX 0; FCX 0; RMC 0; "},
    {"chip-offline-pin", "GCR 0; GOC 0; RMC 0; ", "GCX 0; GOX 0; RMC 0; "},
    {"contactless", "GCR 0; GOC 0; FNC 0; RMC 0; ", "GCX 0; GOX 0; FCX 0; RMC 0; "},
    {"user-cancel", "GCR 0; GOC 13; RMC 0; ", "GCX 0; GOX 13; RMC 0; "},
    {"time-out", "GCR 12; ", "GCX 12; "},
    {"card-removed", "GCR 0; GOC 43; RMC 0; ", "GCX 0; GOX 43; RMC 0; "},
    {"pin-blocked", "GCR 0; GOC 0; RMC 0; ", "GCX 0; GOX 0; RMC 0; "},
    {"tables-differ", "GCR 0; GOC 0; RMC 0; ", "GCX 0; GOX 0; RMC 0; "},
    {"acquirer-unreachable", "GCR 0; GOC 0; FNC 0; RMC 0; ", "GCX 0; GOX 0; FCX 0; RMC 0; ", false},
};

// What the commands were answered with, and what the scenario has to say of them.
template <typename SomeTill>
std::string sell(const Case& scenario) {
    Performance performance(Scenario::find(scenario.name));
    PinPad pinPad(performance.prepare({}));
    pinPad.start();
    std::string said = SomeTill(pinPad.path()).sell(scenario.reachable);
    pinPad.stop();
    for (const std::string& complaint : performance.complaints(pinPad.findings())) said += complaint + "\n";
    return said;
}

TEST(Scenarios, HoldForATillWithCommandsOfFields) {
    EXPECT_EQ(cases.size(), shipped_scenarios().size());
    for (const Case& each : cases) {
        EXPECT_EQ(sell<FieldTill>(each),
                  std::string("OPN 0; GCR 20; TLI 0; TLR 0; TLE 0; ") + each.ofFields + "CLO 0; ")
            << each.name;
    }
}

TEST(Scenarios, HoldForATillWithCommandsOfParameters) {
    for (const Case& each : cases) {
        EXPECT_EQ(sell<ParameterTill>(each),
                  std::string("OPN 0; GTS 0; TLI 0; TLR 0; TLE 0; ") + each.ofParameters + "CLO 0; ")
            << each.name;
    }
}

TEST(Scenarios, FailForATillThatDoesOtherwise) {
    EXPECT_EQ(sell<ParameterTill>({"acquirer-unreachable", "", "", true}),
              "OPN 0; GTS 0; TLI 0; TLR 0; TLE 0; GCX 0; GOX 0; FCX 0; RMC 0; CLO 0; "
              "acquirer-unreachable.toml:30: expected never: FCX with SPE_ARC=; it came once\n");
}

}  // namespace
