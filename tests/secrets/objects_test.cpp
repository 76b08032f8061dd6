// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/cmd/card_data.h"
#include "abecs/comm/comm.h"
#include "quorvel/abecs/cmd/builder.h"
#include "quorvel/abecs/cmd/ebx.h"
#include "quorvel/abecs/cmd/enb.h"
#include "quorvel/abecs/cmd/gen.h"
#include "quorvel/abecs/pan.h"
#include "quorvel/abecs/param.h"
#include "quorvel/abecs/rsp_param_map.h"
#include "quorvel/kor/buffer.h"
#include "quorvel/kor/heap.h"
#include "tests/secrets/failing_cipher.h"
#include "tests/secrets/table.h"

namespace secrets {

namespace {

// What a row's call works with.
struct Objects {
    KorBuffer* buffer = kor_buffer_new(48);
    AbecsParam* param = abecs_param_new();
    AbecsPacket* packet = abecs_packet_new();
    AbecsCmdBuilder* builder = abecs_cmd_builder_new();
    AbecsRspParamMap* map = abecs_rsp_param_map_new();
    uint8_t elsewhere[1];

    Objects() {
        kor_buffer_write(buffer, kNumber.data(), kNumber.size());
        abecs_param_write_field_b(param, kNumber.data(), kNumber.size());
        abecs_packet_write_field_b(packet, kNumber.data(), kNumber.size());
        const AbecsRspParamValue value = number_value();
        abecs_rsp_param_map_put(map, 1, &value, true);
    }
    ~Objects() {
        kor_buffer_delete(&buffer);
        abecs_param_delete(&param);
        abecs_packet_delete(&packet);
        abecs_cmd_builder_delete(&builder);
        kor_map_delete(&map);
    }
    Objects(Objects&&) = delete;

    static AbecsRspParamValue number_value() {
        auto* bytes = static_cast<uint8_t*>(kor_heap_alloc(kNumber.size(), 0));
        std::memcpy(bytes, kNumber.data(), kNumber.size());
        return {static_cast<uint32_t>(kNumber.size()), bytes, false};
    }
};

std::function<Row::Call()> with_objects(void (*call)(Objects& objects)) {
    return [=] {
        const auto objects = std::make_shared<Objects>();
        return [=] { call(*objects); };
    };
}

void add_number(Objects& objects, uint16_t id) {
    abecs_param_set_id(objects.param, id);
    abecs_param_write_field_b(objects.param, kNumber.data(), kNumber.size());
    abecs_cmd_builder_add_param(objects.builder, objects.param);
}

const Table kContainers{
    {"BufferDeleted", {number()}, with_objects([](Objects& o) { kor_buffer_delete(&o.buffer); }), {"48: number"}},
    {"BufferGivenAnotherStorage",
     {number()},
     with_objects([](Objects& o) { kor_buffer_set_storage(o.buffer, o.elsewhere, 1, false); }),
     {"48: number"}},
    {"ParamDeleted", {number()}, with_objects([](Objects& o) { abecs_param_delete(&o.param); }), {"999: number"}},
    {"PacketDeleted", {number()}, with_objects([](Objects& o) { abecs_packet_delete(&o.packet); }), {"2044: number"}},
    // What moves from one to the other leaves nothing on the way.
    {"ParamWritten", {number()}, with_objects([](Objects& o) { abecs_packet_write_param(o.packet, o.param); }), {}},
    {"ParamRead",
     {number()},
     with_objects([](Objects& o) {
         abecs_packet_clear(o.packet);
         abecs_packet_write_param(o.packet, o.param);
         abecs_packet_read_param(o.packet, o.param);
     }),
     {}},
    {"CommandBuilt",
     {number()},
     with_objects([](Objects& o) {
         abecs_cmd_builder_set_cmd_id(o.builder, "GOX");
         add_number(o, 1);
         abecs_cmd_builder_build(o.builder, o.packet);
     }),
     {}},
    {"BuilderDeleted",
     {number()},
     with_objects([](Objects& o) {
         for (uint16_t id = 0; id < 60; ++id) { add_number(o, id); }
         abecs_cmd_builder_delete(&o.builder);
     }),
     {"999: number", "999: number"}},
};

const Table kMaps{
    {"MapValueReplaced",
     {number()},
     with_objects([](Objects& o) {
         const AbecsRspParamValue value{};
         abecs_rsp_param_map_put(o.map, 1, &value, false);
     }),
     {"16: number"}},
    {"MapCleared", {number()}, with_objects([](Objects& o) { kor_map_clear(o.map); }), {"16: number"}},
    {"MapDeleted", {number()}, with_objects([](Objects& o) { kor_map_delete(&o.map); }), {"16: number"}},
};

INSTANTIATE_TEST_SUITE_P(Containers, Secrets, testing::ValuesIn(kContainers), name_of);
INSTANTIATE_TEST_SUITE_P(Maps, Secrets, testing::ValuesIn(kMaps), name_of);

// Keys and what they are used on, outside of the program's variables.
struct Keys {
    std::string text = std::string(kNumber);
    std::string wide = "54127512345678940000000000000000";
    std::string protectedTrack = "1EF75EFB90247489=3012";
    std::string track = std::string(kNumber) + "=3012";
    std::string digits = std::string(kKey);
    AbecsWkPan pan{ABECS_WK_PAN_TYPE_TDES, {}};
    AbecsWkPan unknown{static_cast<AbecsWkPanType_E>(9), {}};
    AbecsMk master{ABECS_MK_TYPE_TDES, 0, {1, 2, 3}};
    AbecsCmdGen0303Data data{32, {}};
    AbecsComm link{};
    char out[64];

    Keys() {
        copy_digits(kKey, pan.key);
        wide.copy(data.data, sizeof data.data);
        link.panKeyInstalled = true;
        link.wkPanType = pan.type;
        std::copy(std::begin(pan.key), std::end(pan.key), link.wkPanKey.begin());
    }
};

using OnKeys = void (*)(Keys& keys);

std::function<Row::Call()> with_keys(OnKeys call) {
    return [=] {
        const auto keys = std::make_shared<Keys>();
        return [=] { call(*keys); };
    };
}

std::function<Row::Call()> with_failing_cipher(OnKeys call) {
    return [=] {
        const auto keys = std::make_shared<Keys>();
        const auto failing = std::make_shared<FailingCipher>("3des", CRYPT_INVALID_KEYSIZE, CRYPT_OK);
        return [=] { call(*keys), static_cast<void>(failing); };
    };
}

const support::Raised kFailed = support::error(13, "Invalid key size.");

void encrypt(Keys& keys) { abecs_pan_encrypt(keys.wide.c_str(), &keys.pan); }
void decrypt(Keys& keys) { abecs_pan_decrypt_track(keys.protectedTrack.c_str(), &keys.pan); }
void decrypt_clear(Keys& keys) { abecs_pan_decrypt_track(keys.track.c_str(), &keys.pan); }
void identify(Keys& keys) { abecs_pan_identify(keys.track.c_str()); }
void decipher_card_data(Keys& keys) {
    abecs::decipher_card_data(&keys.link, keys.protectedTrack.data(), keys.protectedTrack.size());
}
void decipher_clear_card_data(Keys& keys) {
    abecs::decipher_card_data(&keys.link, keys.track.data(), keys.track.size());
}

// 28 is the key as triple DES takes it, 20 a record of a working key, 8360 the stack under a cipher.
const Table kPan{
    // The texts stay until the same function is called again.
    {"PanEncrypted", {key(), number()}, with_keys(encrypt), {"104: number", "28: key"}, {}, {"variables: number"}},
    {"PanEncryptedAndCleared",
     {key(), number()},
     with_keys([](Keys& keys) {
         encrypt(keys);
         abecs_pan_encrypt("", &keys.pan);
     }),
     {"104: number", "28: key"}},
    {"PanNotEncrypted", {key(), number()}, with_failing_cipher(encrypt), {"104: number", "28: key"}, kFailed},
    {"TrackDecrypted",
     {key(), number()},
     with_keys(decrypt),
     {"168: number", "28: key", "8360: number"},
     {},
     {"variables: number"}},
    {"TrackDecryptedAndCleared",
     {key(), number()},
     with_keys([](Keys& keys) {
         decrypt(keys);
         abecs_pan_decrypt_track("", &keys.pan);
     }),
     {"168: number", "28: key", "8360: number"}},
    {"TrackNotDecrypted", {key(), number()}, with_failing_cipher(decrypt_clear), {"168: number", "28: key"}, kFailed},
    {"NumberIdentified", {number()}, with_keys(identify), {"256: number"}, {}, {"variables: number"}},
    {"NumberIdentifiedAndCleared",
     {number()},
     with_keys([](Keys& keys) {
         identify(keys);
         abecs_pan_identify("");
     }),
     {"256: number"}},
    {"CardDataDeciphered",
     {key(), number()},
     with_keys(decipher_card_data),
     {"168: number", "20: key", "28: key", "8360: number"}},
    {"CardDataNotDeciphered",
     {key(), number()},
     with_failing_cipher(decipher_clear_card_data),
     {"168: number", "20: key", "28: key"},
     kFailed},
};

INSTANTIATE_TEST_SUITE_P(Pan, Secrets, testing::ValuesIn(kPan), name_of);

void encrypt_working_key(Keys& keys) { abecs_cmd_enb_encrypt_wk(keys.digits.c_str(), &keys.master, keys.out); }
void encode_data(Keys& keys) { abecs_cmd_enb_encode_data(keys.text.c_str(), &keys.pan, keys.out); }
void encode_gen_data(Keys& keys) { abecs_cmd_gen_03_03_encode_data(&keys.data, &keys.pan, &keys.data); }

// What is enciphered where it stands is clear as long as that fails, and not secret any more afterwards.
const Table kData{
    {"WorkingKeyEncrypted", {key()}, with_keys(encrypt_working_key), {}},
    {"WorkingKeyNotEncrypted", {key()}, with_failing_cipher(encrypt_working_key), {"16: key"}, kFailed},
    {"DataEncoded", {key(), number()}, with_keys(encode_data), {"28: key"}},
    {"DataNotEncoded", {key(), number()}, with_failing_cipher(encode_data), {"28: key", "8: number"}, kFailed},
    {"GenDataEncoded", {key(), number()}, with_keys(encode_gen_data), {"28: key"}},
    {"GenDataNotEncoded", {key(), number()}, with_failing_cipher(encode_gen_data), {"128: number", "28: key"}, kFailed},
    {"EbxBuilderDeleted",
     {number()},
     with_keys([](Keys& keys) {
         const auto* data = reinterpret_cast<const uint8_t*>(keys.text.data());
         auto* builder = abecs_cmd_ebx_builder_new(data, keys.text.size(), ABECS_SPE_MTHD_DAT_DUKPT_DAT3_CBC, 5);
         abecs_cmd_ebx_builder_delete(&builder);
     }),
     {"999: number", "999: number"}},
};

INSTANTIATE_TEST_SUITE_P(Data, Secrets, testing::ValuesIn(kData), name_of);

}  // namespace

}  // namespace secrets
