// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <climits>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <set>
#include <string>

#include "quorvel/abecs/data.h"
#include "quorvel/abecs/pp_event.h"
#include "quorvel/abecs/rsp_dat_id.h"
#include "quorvel/abecs/rsp_stat.h"
#include "quorvel/abecs/spe_mthd_dat.h"
#include "tests/abecs/data/bytes.h"
#include "tests/support/refused.h"

namespace {

using namespace support;

// The texts of the enumerators by their numbers, as a header spells them; of the families, the first and the last ones.
using Names = std::map<int32_t, std::string>;

Names names_in(const char* header, const std::string& prefix) {
    std::ifstream file(std::string(QUORVEL_HEADERS "/abecs/") + header);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const std::regex enumerator("(" + prefix + R"(\w+) = (-?\w+))");
    Names names;
    for (auto at = std::sregex_iterator(text.begin(), text.end(), enumerator); at != std::sregex_iterator(); ++at) {
        names[std::stoi((*at)[2], nullptr, 0)] = (*at)[1];
    }
    return names;
}

// Every number from `from` to `to`, and the ends of what a caller in C can pass.
template <typename Enum>
void sweep(const Names& names, int32_t from, int32_t to, const char* (*toString)(Enum), const std::string& unhandled) {
    const auto probe = [&](int32_t value) {
        const auto known = names.find(value);
        if (known != names.end()) {
            EXPECT_EQ(toString(Enum{value}), known->second);
        } else {
            EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, unhandled + std::to_string(value) + "\n", toString(Enum{value}));
        }
    };
    for (int32_t value = from; value <= to; ++value) { probe(value); }
    for (const int32_t value : {INT_MIN, -1, 0, 0x18001, INT_MAX}) { probe(value); }
    const ReturningRaises raises;
    EXPECT_STREQ(toString(Enum{INT_MAX}), "");
    EXPECT_EQ(raises.all().size(), 1U);
}

TEST(Enumerations, NameTheirValuesAndRefuseOthers) {
    sweep(names_in("rsp_stat.h", "ABECS_RSP_STAT_ST_"), -300, 300, abecs_rsp_stat_to_string,
          "Unhandled AbecsRspStat_E: ");
    sweep(names_in("pp_event.h", "ABECS_PP_EVENT_"), -300, 300, abecs_pp_event_to_string, "Unhandled event: ");
    sweep(names_in("spe_mthd_dat.h", "ABECS_SPE_MTHD_DAT_"), -300, 300, abecs_spe_mthd_dat_to_string,
          "Unhandled mthdDat: ");
}

TEST(RspDatId, NameAndFormOfEveryIdAndNoOther) {
    std::set<int32_t> binary{0x8044, 0x8045, 0x8046, 0x8047, 0x8048, 0x8049, 0x804A, 0x804B, 0x804C,
                             0x804E, 0x8054, 0x8057, 0x8059, 0x805A, 0x8061, 0x8062, 0x8063};
    Names all = names_in("rsp_dat_id.h", "ABECS_RSP_DATID_PP_");
    const std::string families[] = {"KSNDESP", "KSNTDESP", "KSNTDESD", "TABVER"};
    for (int32_t n = 0; n < 400; ++n) {
        const int32_t id = 0x9000 + n / 100 * 0x100 + n % 100;
        all[id] = "ABECS_RSP_DATID_PP_" + families[n / 100] + std::to_string(n % 100);
        if (n < 300) { binary.insert(id); }
    }
    sweep(all, 0x7F00, 0x9500, abecs_rsp_dat_id_to_string, "Unhandled id: ");
    for (const auto& [id, name] : all) {
        EXPECT_EQ(abecs_rsp_dat_id_is_binary(AbecsRspDatId_E{id}), binary.contains(id)) << name;
    }
    EXPECT_RAISES(KOR_RESULT_RUNTIME_ERROR, "Unhandled id: 36964\n",
                  abecs_rsp_dat_id_is_binary(AbecsRspDatId_E{0x9064}));
}

TEST(FieldRspStat, OnlyWireStatusesPass) {
    const std::set<int32_t> known{0,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 19,  20,  21,
                                  40, 41, 42, 43, 44, 45, 46, 51, 60, 61, 67, 68, 69,  70,  71,
                                  76, 77, 78, 79, 80, 81, 82, 83, 84, 85, 86, 87, 100, 101, 102};
    for (int32_t stat = 0; stat < 1000; ++stat) {
        const std::string digits = std::to_string(1000 + stat).substr(1);
        const Bytes bytes(digits + "!");
        if (known.contains(stat)) {
            EXPECT_EQ(abecs_data_read_rsp_stat(bytes), stat);
        } else {
            EXPECT_RAISES(kProtocol, "Unknown value for RSP_STAT: " + digits, abecs_data_read_rsp_stat(bytes));
        }
        EXPECT_EQ(bytes.take(), "!") << digits;
    }
    const Bytes tooShort("1");
    expect_refused(too_few(3, 1), [&] { return abecs_data_read_rsp_stat(tooShort); });
}

}  // namespace
