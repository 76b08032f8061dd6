// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/cmd/card_data.h"
#include "abecs/comm/comm.h"
#include "quorvel/quorvel.h"
#include "tests/core/owned.h"
#include "tests/secrets/table.h"

using namespace secrets;

namespace {

AbecsRspParamValue number_value() {
    auto* bytes = static_cast<uint8_t*>(kor_heap_alloc(kNumber.size(), 0));
    std::memcpy(bytes, kNumber.data(), kNumber.size());
    return {static_cast<uint32_t>(kNumber.size()), bytes, false};
}

// Objects that hold the number.
struct Objects {
    Owned<KorBuffer, kor_buffer_delete> buffer{kor_buffer_new(48)};
    Owned<AbecsParam, abecs_param_delete> param{abecs_param_new()};
    Owned<AbecsPacket, abecs_packet_delete> packet{abecs_packet_new()};
    Owned<AbecsCmdBuilder, abecs_cmd_builder_delete> builder{abecs_cmd_builder_new()};
    Owned<AbecsRspParamMap, kor_map_delete> map{abecs_rsp_param_map_new()};
    uint8_t elsewhere[1];

    Objects() {
        kor_buffer_write(buffer, kNumber.data(), kNumber.size());
        abecs_param_write_field_b(param, kNumber.data(), kNumber.size());
        abecs_packet_write_field_b(packet, kNumber.data(), kNumber.size());
        const AbecsRspParamValue value = number_value();
        abecs_rsp_param_map_put(map, 1, &value, true);
    }
};

using OnObjects = On<Objects>;

void give_other_storage(Objects& o) { kor_buffer_set_storage(o.buffer, o.elsewhere, 1, false); }
void write_param(Objects& o) { abecs_packet_clear(o.packet), abecs_packet_write_param(o.packet, o.param); }
void read_param(Objects& o) { write_param(o), abecs_packet_read_param(o.packet, o.param); }
void add_number(Objects& o, uint16_t id) {
    abecs_param_set_id(o.param, id);
    abecs_param_write_field_b(o.param, kNumber.data(), kNumber.size());
    abecs_cmd_builder_add_param(o.builder, o.param);
}
void build(Objects& o) {
    abecs_cmd_builder_set_cmd_id(o.builder, "GOX");
    add_number(o, 1);
    abecs_cmd_builder_build(o.builder, o.packet);
}
void delete_builder(Objects& o) {
    for (uint16_t id = 0; id < 60; ++id) { add_number(o, id); }
    abecs_cmd_builder_delete(&o.builder.object);
}
void replace_value(Objects& o) {
    const AbecsRspParamValue value{};
    abecs_rsp_param_map_put(o.map, 1, &value, false);
}

// What moves from one object to the other leaves nothing on the way.
const Table kObjects{
    row("BufferDeleted", {number()}, OnObjects{[](Objects& o) { kor_buffer_delete(&o.buffer.object); }},
        {"48: number"}),
    row("BufferGivenAnotherStorage", {number()}, OnObjects{give_other_storage}, {"48: number"}),
    row("ParamWritten", {number()}, OnObjects{write_param}, {}),
    row("ParamRead", {number()}, OnObjects{read_param}, {}),
    row("CommandBuilt", {number()}, OnObjects{build}, {}),
    row("BuilderDeleted", {number()}, OnObjects{delete_builder}, {"2088: number"}),
    row("MapValueReplaced", {number()}, OnObjects{replace_value}, {"16: number"}),
    row("MapDeleted", {number()}, OnObjects{[](Objects& o) { kor_map_delete(&o.map.object); }}, {"16: number"}),
};

INSTANTIATE_TEST_SUITE_P(Objects, Secrets, testing::ValuesIn(kObjects), name_of);

// Keys and what they are used on, outside of the program's variables.
struct Keys {
    std::string text = std::string(kNumber);
    std::string wide = "54127512345678940000000000000000";
    std::string protectedTrack = "1EF75EFB90247489=3012";
    std::string track = std::string(kNumber) + "=3012";
    std::string digits = std::string(kKey);
    AbecsWkPan pan{ABECS_WK_PAN_TYPE_TDES, {}};
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

void encrypt(Keys& k) { abecs_pan_encrypt(k.wide.c_str(), &k.pan); }
void decrypt(Keys& k) { abecs_pan_decrypt_track(k.protectedTrack.c_str(), &k.pan); }
void decrypt_clear(Keys& k) { abecs_pan_decrypt_track(k.track.c_str(), &k.pan); }
void identify(Keys& k) { abecs_pan_identify(k.track.c_str()); }
void decipher(Keys& k) { abecs::decipher_card_data(&k.link, k.protectedTrack.data(), k.protectedTrack.size()); }
void decipher_clear(Keys& k) { abecs::decipher_card_data(&k.link, k.track.data(), k.track.size()); }
void encrypt_working_key(Keys& k) { abecs_cmd_enb_encrypt_wk(k.digits.c_str(), &k.master, k.out); }
void encode(Keys& k) { abecs_cmd_enb_encode_data(k.text.c_str(), &k.pan, k.out); }
void encode_gen(Keys& k) { abecs_cmd_gen_03_03_encode_data(&k.data, &k.pan, &k.data); }
void delete_ebx(Keys& k) {
    const auto* data = reinterpret_cast<const uint8_t*>(k.text.data());
    auto* builder = abecs_cmd_ebx_builder_new(data, k.text.size(), ABECS_SPE_MTHD_DAT_DUKPT_DAT3_CBC, 5);
    abecs_cmd_ebx_builder_delete(&builder);
}

On<Keys> on(On<Keys>::Step call) { return {call}; }
On<Keys> failing(On<Keys>::Step call) { return {call, {}, "3des"}; }

// 28 is the key as triple DES takes it, 20 a record of a working key, 8360 the stack under a cipher. Texts stay until
// the same function is called again. What is enciphered where it stands is clear as long as that fails, and not secret
// any more afterwards.
const std::vector<Secret> kBoth{key(), number()};
const Table kKeys{
    row("PanEncrypted", kBoth, on(encrypt), {"104: number", "28: key"}, {}, {"variables: number"}),
    row("PanNotEncrypted", kBoth, failing(encrypt), {"104: number", "28: key"}, kFailed),
    row("TrackDecrypted", kBoth, on(decrypt), {"168: number", "28: key", "8360: number"}, {}, {"variables: number"}),
    row("TrackNotDecrypted", kBoth, failing(decrypt_clear), {"168: number", "28: key"}, kFailed),
    row("NumberIdentified", {number()}, on(identify), {"256: number"}, {}, {"variables: number"}),
    row("CardDataDeciphered", kBoth, on(decipher), {"168: number", "20: key", "28: key", "8360: number"}),
    row("CardDataNotDeciphered", kBoth, failing(decipher_clear), {"168: number", "20: key", "28: key"}, kFailed),
    row("WorkingKeyEncrypted", {key()}, on(encrypt_working_key), {}),
    row("WorkingKeyNotEncrypted", {key()}, failing(encrypt_working_key), {"16: key"}, kFailed),
    row("DataEncoded", kBoth, on(encode), {"28: key"}),
    row("DataNotEncoded", kBoth, failing(encode), {"28: key", "8: number"}, kFailed),
    row("GenDataEncoded", kBoth, on(encode_gen), {"28: key"}),
    row("GenDataNotEncoded", kBoth, failing(encode_gen), {"128: number", "28: key"}, kFailed),
    row("EbxBuilderDeleted", {number()}, on(delete_ebx), {"1048: number", "2088: number"}),
};

INSTANTIATE_TEST_SUITE_P(Keys, Secrets, testing::ValuesIn(kKeys), name_of);

}  // namespace
