// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <array>

#include "tests/abecs/cmd/commands.h"

namespace {

using namespace support;
using Items = ParamMap::Items;

constexpr std::array<uint8_t, 264> kData{0x13, 0x16, 0x17, 0x00, 0xFF, 0x12, 0x18, 0x30};
constexpr uint8_t kVector[8] = {0xA1, 0xB2, 0xC3, 0xD4, 0xE5, 0xF6, 0x07, 0x18};
constexpr uint8_t kKey[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
const std::string kKeyBytes(kKey, kKey + 16);
const std::string kVectorParam = "001D 0008 A1B2C3D4E5F60718"_hex;

AbecsSpeMthdDat_E method_of(int32_t value) { return static_cast<AbecsSpeMthdDat_E>(value); }

struct Method {
    int32_t number;
    std::string digits;
    std::string name;
    uint32_t keySize;  // of the working key
    bool chained;
    bool publicKey = false;
};

const Method kMethods[] = {
    {0, "00", "ABECS_SPE_MTHD_DAT_MK_WK_DES_ECB", 8, false},
    {1, "01", "ABECS_SPE_MTHD_DAT_MK_WK_DES_CBC", 8, true},
    {10, "10", "ABECS_SPE_MTHD_DAT_MK_WK_TDES_ECB", 16, false},
    {11, "11", "ABECS_SPE_MTHD_DAT_MK_WK_TDES_CBC", 16, true},
    {30, "30", "ABECS_SPE_MTHD_DAT_DUKPT_DAT1_ECB", 0, false},
    {50, "50", "ABECS_SPE_MTHD_DAT_DUKPT_DAT3_ECB", 0, false},
    {51, "51", "ABECS_SPE_MTHD_DAT_DUKPT_DAT3_CBC", 0, true},
    {90, "90", "ABECS_SPE_MTHD_DAT_TDES_RANDOM_ECB", 0, false, true},
    {91, "91", "ABECS_SPE_MTHD_DAT_TDES_RANDOM_CBC", 0, true, true},
};

// An id and the three digits of the length in front of the parameters.
std::string with_length(const std::string& id, const std::string& params) {
    const std::string length = std::to_string(params.size());
    return id + std::string(3 - length.size(), '0') + length + params;
}

std::string key_param(size_t size) { return "000A 00"_hex + static_cast<char>(size) + kKeyBytes.substr(0, size); }

class Ebx : public Built<AbecsCmdEbxBuilder, abecs_cmd_ebx_builder_delete, abecs_cmd_ebx> {
protected:
    Ebx() { builder_ = abecs_cmd_ebx_builder_new(kData.data(), 8, ABECS_SPE_MTHD_DAT_DUKPT_DAT3_CBC, 5); }

    void reset(int32_t number) { set(abecs_cmd_ebx_builder_reset, kData.data(), 8, method_of(number), 5); }

    // The request's first three parameters, with the key at index 5.
    static std::string head(const std::string& digits) {
        return "000F 0008 13161700FF121830 0003 0002"_hex + digits + "0009 0002"_hex + "05";
    }

    // The map first holds something else, which goes whatever happens.
    void answered(const std::string& response, const Outcome& expected, const Items& items) {
        map_.put(1);
        exchanges("EBX024" + head("51"), response, expected, abecs_cmd_ebx, builder_, map_.get());
        EXPECT_EQ(map_.items(), items) << response;
    }
};

TEST_F(Ebx, SendsWhatWasSetInTheOrderOfTheCalls) {
    expect_sent("EBX024" + head("51"));
    set(abecs_cmd_ebx_builder_reset, kData.data(), 256, ABECS_SPE_MTHD_DAT_MK_WK_TDES_CBC, 99);
    set(abecs_cmd_ebx_builder_ivcbc, kVector);
    set(abecs_cmd_ebx_builder_wkenc, kKey, 16);
    expect_sent("EBX304" + "000F 0100 13161700FF121830"_hex + std::string(248, '\0') + "0003 0002"_hex + "11"
                + "0009 0002"_hex + "99" + kVectorParam + key_param(16));
}

// Which of the two further parameters each method takes; every method that has a working key needs it.
TEST_F(Ebx, TakesWhatItsMethodTakes) {
    const auto wkenc = abecs_cmd_ebx_builder_wkenc;
    const auto ivcbc = abecs_cmd_ebx_builder_ivcbc;
    for (const Method& method : kMethods) {
        if (method.publicKey) { continue; }
        const size_t keySize = method.keySize;
        const Raised missing =
            error(kState, "Missing parameter SPE_WKENC (required due to SPE_MTHDDAT == " + method.name + ")");
        const std::string unaccepted = "current SPE_MTHDDAT (" + method.name + ") does not accept ";
        std::string sent = head(method.digits);
        reset(method.number);
        if (keySize == 0) {
            refused(error(kState, unaccepted + "SPE_WKENC"), wkenc, nullptr, 0);
        } else {
            const size_t other = 24 - keySize;
            expect_incomplete(missing, 0);
            refused("'wkEnc' is NULL", wkenc, nullptr, other);
            refused("Invalid 'szWkEnc': " + std::to_string(other) + " (expected: " + std::to_string(keySize) + ")",
                    wkenc, kKey, other);
            set(wkenc, kKey, keySize);
            refused(error(kState, "SPE_WKENC already set"), wkenc, kKey, keySize);
            sent += key_param(keySize);
        }
        if (method.chained) {
            refused("'ivCbc' is NULL", ivcbc, nullptr);
            set(ivcbc, kVector);
            refused(error(kState, "SPE_IVCBC already set"), ivcbc, kVector);
            sent += kVectorParam;
        } else {
            refused(error(kState, unaccepted + "SPE_IVCBC"), ivcbc, nullptr);
        }
        expect_sent(with_length("EBX", sent));
    }
}

// Numbers that are no methods get through until something has to be known about them, which is the error then.
TEST_F(Ebx, RefusesNumbersThatAreNoMethodsWhenItMeetsThem) {
    const auto unhandled = [](int32_t number) {
        return error(kRuntime, "Unhandled mthdDat: " + std::to_string(number) + "\n");
    };
    reset(9);
    refused(error(kRuntime, "Missing case"), abecs_cmd_ebx_builder_wkenc, kKey, 8);
    refused(unhandled(9), abecs_cmd_ebx_builder_ivcbc, kVector);
    expect_incomplete(unhandled(9), 0);
    reset(12);
    refused(unhandled(12), abecs_cmd_ebx_builder_wkenc, kKey, 8);
    expect_sent("EBX024" + head("12"));
    refused(unhandled(52), abecs_cmd_ebx_builder_reset, kData.data(), 8, method_of(52), 100);
    EXPECT_RAISES(kArgument, "'i' (18446744073709551615) is too long (maximum: 9999999999999",
                  abecs_cmd_ebx_builder_reset(builder_, kData.data(), 8, method_of(-1), 0));
}

TEST_F(Ebx, ChecksEveryArgumentInOrder) {
    const auto wrong = [&](const Refusal& refusal, const uint8_t* data, size_t size, int32_t number, uint8_t index) {
        refused(refusal, abecs_cmd_ebx_builder_reset, data, size, method_of(number), index);
    };
    const uint8_t* data = kData.data();
    wrong("'data' is NULL", nullptr, 0, 90, 100);
    wrong("Invalid 'szData': 0 (min: 1, max: 256)", data, 0, 90, 100);
    wrong("Invalid 'szData': 257 (min: 1, max: 256)", data, 257, 90, 100);
    wrong("Invalid 'szData': 12 (it must be a multiple of 8)", data, 12, 90, 100);
    wrong("Unsupported 'mthdDat': ABECS_SPE_MTHD_DAT_TDES_RANDOM_ECB", data, 8, 90, 100);
    wrong("Invalid 'keyIdx': 100 (min: 0, max: 99)", data, 8, 51, 100);
    refuses("'out' is NULL", abecs_cmd_ebx, builder_, nullptr);
    expect_sent("EBX024" + head("51"));
}

TEST_F(Ebx, CopiesTheAnswerIntoTheMap) {
    const std::string data = "CIPHER\x16\x17";
    answered("EBX000026" + "804E 0008"_hex + data + "804C 000A FF0041"_hex + "SERIAL0", kOk,
             {{0x804E, data}, {0x804C, "FF0041"_hex + "SERIAL0"}});
    EXPECT_EQ(abecs_cmd_ebx_response_get_dataout(map_.get()), data);
    EXPECT_STREQ(abecs_cmd_ebx_response_get_ksn(map_.get()), "\xFF");
    answered("EBX000004" + "804E 0000"_hex, kOk, {{0x804E, ""}});
    EXPECT_EQ(abecs_cmd_ebx_response_get_ksn(map_.get()), nullptr);
}

const std::string kModulus(256, '\xA7');
const uint8_t* const kModulusBytes = reinterpret_cast<const uint8_t*>(kModulus.data());
const AbecsCmdGtkPbkExp kExponent{3, {1, 0, 1}};

AbecsCmdGtkWkEnc working_key(uint32_t size) {
    AbecsCmdGtkWkEnc key{size, {}};
    std::copy(std::begin(kKey), std::end(kKey), key.data);
    return key;
}

class Gtk : public Built<AbecsCmdGtkBuilder, abecs_cmd_gtk_builder_delete, abecs_cmd_gtk> {
protected:
    Gtk() { builder_ = abecs_cmd_gtk_builder_new(); }

    template <typename... Parameters>
    void set_or_refused(bool taken, const std::string& refusal, void (*setter)(AbecsCmdGtkBuilder*, Parameters...),
                        std::type_identity_t<Parameters>... arguments) {
        if (taken) { return set(setter, arguments...); }
        refused(error(kState, refusal), setter, arguments...);
    }
};

TEST_F(Gtk, SendsWhatWasSetInTheOrderOfTheCalls) {
    exchanges("GTK", "GTK000008" + "8045 0004 41110000"_hex, kOk, abecs_cmd_gtk, builder_, map_.get());
    EXPECT_EQ(map_.items(), (Items{{0x8045, "41110000"_hex}}));
    set(abecs_cmd_gtk_builder_tracks, "1110");
    const AbecsCmdGtkWkEnc key = working_key(16);
    set(abecs_cmd_gtk_builder_opn_dig, 8);
    set(abecs_cmd_gtk_builder_mthd_dat, ABECS_SPE_MTHD_DAT_MK_WK_TDES_CBC);
    set(abecs_cmd_gtk_builder_iv_cbc, kVector);
    set(abecs_cmd_gtk_builder_wk_enc, &key);
    set(abecs_cmd_gtk_builder_key_idx, 99);
    expect_sent("GTK057" + "0007 0004"_hex + "1110" + "0008 0001"_hex + "8" + "0003 0002"_hex + "11" + kVectorParam
                + key_param(16) + "0009 0002"_hex + "99");
}

// Together with what it needs to be sent. A chain may also start from the PIN pad's own block.
TEST_F(Gtk, TakesWithEachMethodWhatItUses) {
    for (const Method& method : kMethods) {
        const bool random = method.publicKey;
        const bool exponentFirst = random && method.chained;
        const AbecsCmdGtkWkEnc key = working_key(method.keySize);
        const std::string unused = "SPE_MTHDDAT (" + method.name + ") does not ";
        const auto missing = [&](bool needed, const char* name) {
            if (needed) { expect_incomplete(std::string("Missing ") + name + " (SPE_MTHDDAT: " + method.name + ")"); }
        };
        const auto exponent = [&] {
            set_or_refused(random, unused + "use SPE_not SPE_PBKEXP", abecs_cmd_gtk_builder_pbk_exp, &kExponent);
        };
        set(abecs_cmd_gtk_builder_reset);
        set(abecs_cmd_gtk_builder_mthd_dat, method_of(method.number));
        missing(!random, "SPE_KEYIDX");
        set_or_refused(!random, unused + "use SPE_KEYIDX", abecs_cmd_gtk_builder_key_idx, 7);
        missing(method.keySize != 0, "SPE_WKENC");
        set_or_refused(method.keySize != 0, unused + "uses SPE_WKENC", abecs_cmd_gtk_builder_wk_enc, &key);
        missing(random, "SPE_PBKMOD");
        if (exponentFirst) { exponent(), missing(random, "SPE_PBKMOD"); }
        set_or_refused(random, unused + "use SPE_not SPE_PBKMOD", abecs_cmd_gtk_builder_pbk_mod, kModulusBytes);
        if (!exponentFirst) { missing(random, "SPE_PBKEXP"), exponent(); }
        const std::string modulusParam = "0024 0100"_hex + kModulus;
        const std::string exponentParam = "0025 0003 010001"_hex;
        std::string sent = "0003 0002"_hex + method.digits;
        if (!random) { sent += "0009 0002"_hex + "07"; }
        if (method.keySize != 0) { sent += key_param(method.keySize); }
        if (random) { sent += exponentFirst ? exponentParam + modulusParam : modulusParam + exponentParam; }
        expect_sent(with_length("GTK", sent));
        set_or_refused(method.chained, unused + "uses SPE_IVCBC", abecs_cmd_gtk_builder_iv_cbc, kVector);
        if (method.chained) { sent += kVectorParam; }
        expect_sent(with_length("GTK", sent));
    }
}

TEST_F(Gtk, ChecksEveryArgumentInOrder) {
    const Raised notYet = error(kState, "SPE_MTHDDAT not set yet");
    const auto restart = [&](AbecsSpeMthdDat_E method) {
        set(abecs_cmd_gtk_builder_reset);
        set(abecs_cmd_gtk_builder_mthd_dat, method);
    };
    refused(notYet, abecs_cmd_gtk_builder_iv_cbc, nullptr);
    refused(notYet, abecs_cmd_gtk_builder_key_idx, 100);
    refused("'tracks' is NULL", abecs_cmd_gtk_builder_tracks, nullptr);
    refused("Invalid length for 'tracks' (expected: 4, requested: 5)", abecs_cmd_gtk_builder_tracks, "11111");
    refused("SPE_TRACKS: Invalid N field", abecs_cmd_gtk_builder_tracks, "111:");
    for (const int32_t number : {-1, 12, 92}) {
        refused("Invalid enumerator for AbecsSpeMthdDat_E: " + std::to_string(number), abecs_cmd_gtk_builder_mthd_dat,
                method_of(number));
    }
    for (const int32_t digits : {-2, 3, 9, 10}) {
        refused("Invalid enumerator for SPE_OPNDIG: " + std::to_string(digits), abecs_cmd_gtk_builder_opn_dig, digits);
    }
    const AbecsCmdGtkWkEnc shortKey = working_key(8);
    restart(ABECS_SPE_MTHD_DAT_MK_WK_TDES_CBC);
    refused("'ivCbc' is NULL", abecs_cmd_gtk_builder_iv_cbc, nullptr);
    refused("Invalid key index (max: 99, requested: 100)", abecs_cmd_gtk_builder_key_idx, 100);
    refused("'wkEnc' is NULL", abecs_cmd_gtk_builder_wk_enc, nullptr);
    refused("Invalid size of SPE_WKENC (expected: 16, requested: 8)", abecs_cmd_gtk_builder_wk_enc, &shortKey);
    const AbecsCmdGtkPbkExp longExponent{4, {}};
    restart(ABECS_SPE_MTHD_DAT_TDES_RANDOM_CBC);
    refused("'pbkMod' is NULL", abecs_cmd_gtk_builder_pbk_mod, nullptr);
    refused("'pbkExp' is NULL", abecs_cmd_gtk_builder_pbk_exp, nullptr);
    refused("Invalid size for SPE_PBKEXP (max: 3, requested: 4)", abecs_cmd_gtk_builder_pbk_exp, &longExponent);
    refuses("'builder' is NULL", abecs_cmd_gtk, nullptr, map_.get());
    refuses("'out' is NULL", abecs_cmd_gtk, builder_, nullptr);
}

template <typename Out>
void expect_reads(uint16_t id, uint32_t capacity, const std::string& name,
                  Out* (*read)(const AbecsRspParamMap*, Out*)) {
    const ParamMap map;
    std::string bytes(capacity + 1, '\x5A');
    Out out;
    std::memset(&out, 0xEE, sizeof out);
    const auto put = [&](uint32_t size) {
        const AbecsRspParamValue value{size, size != 0 ? reinterpret_cast<uint8_t*>(bytes.data()) : nullptr, false};
        EXPECT_NO_RAISE(abecs_rsp_param_map_put(map.get(), id, &value, false));
    };
    EXPECT_RAISES(kArgument, "'out' is NULL", read(map.get(), nullptr));
    EXPECT_EQ(read(map.get(), &out), nullptr) << name;
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&out), sizeof out), std::string(sizeof out, '\xEE')) << name;
    for (const uint32_t size : {capacity, 0U}) {
        put(size);
        EXPECT_EQ(read(map.get(), &out), &out) << name;
        EXPECT_EQ(std::string(out.data, out.data + out.size), bytes.substr(0, size)) << name;
    }
    put(capacity + 1);
    out.data[0] = 0xEE;
    const Raised tooLong =
        error(kProtocol, "'Parameter size violation for ABECS_RSP_DATID_PP_" + name
                             + " (size: " + std::to_string(capacity + 1) + ", max: " + std::to_string(capacity) + ")");
    expect_refused(tooLong, [&] { return read(map.get(), &out); });
    EXPECT_EQ(out.size, capacity + 1) << name;
    EXPECT_EQ(out.data[0], 0xEE) << name;
}

TEST(GtkResponse, ReadsEachItemUpToItsCapacity) {
    expect_reads(0x804A, 16, "ENCPAN", abecs_cmd_gtk_response_enc_pan);
    expect_reads(0x8044, 88, "TRACK1", abecs_cmd_gtk_response_track1);
    expect_reads(0x8045, 28, "TRACK2", abecs_cmd_gtk_response_track2);
    expect_reads(0x8046, 60, "TRACK3", abecs_cmd_gtk_response_track3);
    expect_reads(0x8047, 10, "TRK1KSN", abecs_cmd_gtk_response_trk1_ksn);
    expect_reads(0x8048, 10, "TRK2KSN", abecs_cmd_gtk_response_trk2_ksn);
    expect_reads(0x8049, 10, "TRK3KSN", abecs_cmd_gtk_response_trk3_ksn);
    expect_reads(0x804B, 10, "ENCPANKSN", abecs_cmd_gtk_response_enc_pan_ksn);
    expect_reads(0x8063, 256, "ENCKRAND", abecs_cmd_gtk_response_enc_krand);
}

}  // namespace
