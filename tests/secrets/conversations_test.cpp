// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/comm/comm.h"
#include "quorvel/additions.h"
#include "quorvel/quorvel.h"
#include "tests/abecs/cmd/rsa_peer.h"
#include "tests/core/owned.h"
#include "tests/secrets/table.h"
#include "tests/support/link.h"
#include "tests/support/malloc/failing_malloc.h"
#include "tests/support/scratch.h"
#include "tests/support/wire.h"

using namespace secrets;

namespace {

using namespace support::literals;
using support::padded;

// A link, its PIN pad, and all records that a call fills or is given.
struct Talk {
    support::Link link;
    AbecsComm* comm = link.comm;
    AbecsWkPan key{ABECS_WK_PAN_TYPE_TDES, {}};
    AbecsMk master{ABECS_MK_TYPE_TDES, 0, {1, 2, 3}};
    Owned<AbecsRspParamMap, kor_map_delete> map{abecs_rsp_param_map_new()};
    AbecsCmdGpnCmdData pin{ABECS_CMD_GPN_METHOD_MK_WK_TDES, 0, "", "", 1, {{4, 12, "PIN"}}};
    AbecsTagList tags{{0x5A}, 1};
    support::Scratch out;
    Owned<AbecsPacket, abecs_packet_delete> packet{abecs_packet_new()};

    Talk() {
        copy_digits(kKey, key.key);
        kNumber.copy(pin.pan, sizeof pin.pan - 1);
        kKey.copy(pin.wkEnc, sizeof pin.wkEnc - 1);
    }
};

using Script = std::function<void(Talk& talk)>;

// The PIN pad has been asked before, and answers; the link may have a working key.
Script answer(const std::string& response, bool withKey = false) {
    return [=](Talk& t) {
        if (withKey) { abecs_comm_set_wk_pan(t.comm, &t.key); }
        abecs_comm_lock(t.comm, response.substr(0, 3).c_str());
        t.link.peer.response(response);
        t.link.peer.settle();
    };
}

std::string param(const std::string& id, std::string_view data) {
    return id + '\0' + static_cast<char>(data.size()) + std::string(data);
}

std::string block(const std::string& params) {
    const std::string size = std::to_string(params.size());
    return std::string(3 - size.size(), '0') + size + params;
}

// The number, and what becomes of it under the working key.
const std::string kClear(kNumber);
const std::string kProtectedTrack = "1EF75EFB90247489=3012";
const std::string kNumberParam = param("8052"_hex, kNumber);
const std::string kTracks = padded("00", 78) + padded("21" + kProtectedTrack, 42) + padded("", 104);
const std::string kCard = padded("00", 21) + padded("07CREDIT", 18) + padded("201TEST/CARD", 29) + "301231"
                          + std::string(28, ' ') + "!076000";

void read_gcx(Talk& t) { abecs_cmd_gcx_response(t.comm, t.map, nullptr); }
void read_gcr(Talk& t) { abecs_cmd_gcr_response(t.comm, t.out, nullptr); }
void read_cke(Talk& t) { abecs_cmd_cke_response(t.comm, t.out, nullptr); }
void read_goc(Talk& t) { abecs_cmd_goc_response(t.comm, t.out, nullptr); }
void read_gpn(Talk& t) { abecs_cmd_gpn_response(t.comm, t.out, nullptr); }
void read_gcd(Talk& t) { abecs_cmd_gcd_response(t.comm, t.out, nullptr); }
void gpn(Talk& t) { abecs_cmd_gpn(t.comm, &t.pin); }
void ged(Talk& t) { abecs_cmd_ged(t.comm, &t.tags, t.out); }

void take_gpn(Talk& t) {
    t.link.peer.request("GPN093100" + std::string(kKey) + "16" + padded(kClear, 19) + "10412" + padded("PIN", 32));
}
void take_gpn_whole(Talk& t) {
    take_gpn(t);
    abecs_comm_set_whole_frames(t.comm, true);
}
void answer_ged(Talk& t) {
    t.link.peer.request("GED005" + "0004 0001 5A"_hex)
        .response("GED000" + block(param("8054"_hex, "\x5A\x08" + from_digits(kNumber))));
}

// OPN and DWK2: the block of the right size with the key in it, under the host's public key.
Script answer_opn(const std::string& block) {
    return [=](Talk& t) {
        t.link.peer.reply(1 + 6 + 4 + 512 + 1 + 6 + 3, [=](const std::string& request) {
            return "06"_hex + support::frame("OPN000515256" + support::rsa_encipher(block, request.substr(11, 512)));
        });
    };
}
Script answer_dwk2(char end) {
    return [=](Talk& t) {
        t.link.peer.reply(1 + 6 + 1 + 256 + 6 + 3, [=](const std::string& request) {
            const std::string block = "T19 filling" + std::string(kKey) + std::string(84, '\xA5') + end;
            return "06"_hex + support::frame("DWK000256" + support::rsa_encipher(block, request.substr(8, 256)));
        });
    };
}
std::string session_block(size_t filling, const char* before) {
    return "0002"_hex + std::string(filling, '\x5A') + '\0' + before + from_digits(kKey);
}

void open_session(Talk& t) { abecs_cmd_opn(t.comm, true); }
void take_rsa_key(Talk& t) { abecs_cmd_dwk2(t.comm, nullptr, true); }
void load_key(Talk& t) { abecs_cmd_dwk1(t.comm, &t.master, nullptr, true); }

// What DWK1 draws once the generator has been set to 1.
Secret drawn_key() {
    std::srand(1);
    std::string bytes(16, '\0');
    for (char& byte : bytes) { byte = static_cast<char>(std::rand() % 256); }
    return of_bytes("drawn", bytes);
}
Script answer_dwk1(const char* response) {
    return [=](Talk& t) {
        kor_system_random(0, 1);
        std::srand(1);
        if (response == nullptr) { return; }
        t.link.peer.discard(1 + 6 + 1 + 1 + 2 + 32 + 1 + 2).send("06"_hex + support::frame(response));
    };
}

void set_key(Talk& t) { abecs_comm_set_key(t.comm, t.key.key); }
void take_key(Talk& t) { abecs_comm_set_key(t.comm, nullptr); }
void take_pan_key(Talk& t) { abecs_comm_set_wk_pan(t.comm, nullptr); }
void close_link(Talk& t) { abecs_comm_close(&t.link.comm); }
void protect_and_hang_up(Talk& t) {
    abecs_comm_set_wk_pan(t.comm, &t.key);
    t.link.peer.hang_up().settle();
}

// In a session: what is sent comes back as the answer.
void begin_session(Talk& t) {
    set_key(t);
    abecs_packet_write_field_b(t.packet, "ABC", 3);
    abecs_packet_write_field_b(t.packet, kNumber.data(), kNumber.size());
}
void echo(Talk& t) {
    begin_session(t);
    t.link.peer.reply(1 + 1 + 32 + 1 + 2, [](const std::string& request) { return "06"_hex + request; });
}
void send(Talk& t) { abecs_comm_send_packet(t.comm, t.packet); }
void talk_in_session(Talk& t) {
    send(t);
    abecs_comm_read_packet(t.comm, t.packet);
    abecs_packet_delete(&t.packet.object);
}

On<Talk> talk(const Script& script, On<Talk>::Step call, const char* failing = nullptr) {
    return {call, script, failing};
}

support::Raised io(const char* detail) { return support::error(KOR_RESULT_IO_ERROR, detail); }
support::Raised protocol(const char* detail) { return support::error(KOR_RESULT_PROTOCOL_ERROR, detail); }

// Two answers in one piece, of which the second is read ahead.
void read_ahead(Talk& t) {
    const std::string answer = support::frame("GIN000", 0xB695);
    t.link.peer.send(answer + "\x16GIN" + std::string(kNumber)).settle();
    abecs_comm_read_packet(t.comm, t.packet);
}

const std::string kLink = std::to_string(sizeof(AbecsComm));
const std::vector<Secret> kNumbers{number()};
const std::vector<Secret> kKeys{key()};
const std::vector<Secret> kBoth{number(), key()};
const std::vector<Secret> kDrawn{drawn_key()};
using Wiped = std::vector<std::string>;
const Wiped kUnprotected{"168: number", "20: key", "20: key", "20: key", "28: key", "8360: number"};
const Wiped kTaken{"11664: key", "128: key", "128: key", "20: key", "256: key"};

// 2044 is the storage of a packet, 999 that of a parameter or of a builder's block, 16 the value in a map or a key. A
// frame goes from the stack, and what was read ahead from the link.
const Table kRows{
    row("GcxAnswer", kNumbers, talk(answer("GCX000" + block(kNumberParam)), read_gcx),
        {"1048: number", "2044: number", "32: number"}),
    row("GcxAnswerThatIsMalformedBehindTheNumber", kNumbers,
        talk(answer("GCX000" + block(kNumberParam + "00")), read_gcx),
        {"1048: number", "16: number", "2044: number", "34: number"},
        io("Malformed packet (remaining bytes on BLK1 cannot be used)")),
    row("GcrAnswer", kBoth, talk(answer("GCR0009990619803Z1" + kTracks + kCard, true), read_gcr),
        {"168: number", "20: key", "20: key", "20: key", "20: key", "28: key", "8360: number"}),
    row("GcrAnswerThatEndsBehindTheTracks", kBoth, talk(answer("GCR0009990619803Z1" + kTracks, true), read_gcr),
        kUnprotected, io("Buffer does not have enough data (requested: 2, available: 0)")),
    row("CkeAnswer", kBoth,
        talk(answer("CKE000225100" + padded("", 76) + "21" + padded(kProtectedTrack, 40) + padded("", 104), true),
             read_cke),
        kUnprotected),
    row("GocAnswer", kNumbers, talk(answer("GOC000999000000" + padded(kClear, 36) + "016" + kClear + "000"), read_goc),
        {"2044: number", "76: number"}),
    row("GpnRequest", kBoth, talk(take_gpn, gpn), {"103: number, key", "2044: number, key"}),
    row("GpnRequestInOneWrite", kBoth, talk(take_gpn_whole, gpn), {"103: number, key", "2044: number, key"}),
    row("GpnAnswer", kNumbers, talk(answer("GPN000036" + kClear + "FFFF9876543210E00001"), read_gpn),
        {"2044: number", "48: number"}),
    row("GcdAnswer", kNumbers, talk(answer("GCD000" + block(param("804D"_hex, kNumber))), read_gcd),
        {"1048: number", "2044: number", "32: number"}),
    row("GedAnswer", kNumbers, talk(answer_ged, ged), {"1048: number", "2044: number", "26: number"}),
    row("OpnAnswer", kKeys, talk(answer_opn(session_block(237, "")), open_session),
        {"11664: key", "256: key", "256: key"}),
    row("OpnAnswerWithALongerKey", kKeys, talk(answer_opn(session_block(236, "x")), open_session),
        {"11664: key", "256: key", "256: key"}, protocol("(OPN) Invalid Ksec length (expected: 16, read: 17)")),
    row("Dwk2Answer", kKeys, talk(answer_dwk2('X'), take_rsa_key), kTaken),
    row("Dwk2AnswerWithABadEnd", kKeys, talk(answer_dwk2('Y'), take_rsa_key), kTaken,
        protocol("(DWK) Invalid block end (expected: 'X', read: 'Y')")),
    row("Dwk1Answer", kDrawn, talk(answer_dwk1("DWK000"), load_key), {"20: drawn"}),
    row("Dwk1AnswerThatRefuses", kDrawn, talk(answer_dwk1("DWK042"), load_key), {"20: drawn"}),
    row("Dwk1AnswerOfAnotherCommand", kDrawn, talk(answer_dwk1("OPN000"), load_key), {"20: drawn"},
        protocol("(DWK) Invalid RSP_ID: OPN)")),
    row("Dwk1KeyNotEnciphered", kDrawn, talk(answer_dwk1(nullptr), load_key, "3des"), {"16: drawn", "20: drawn"},
        kFailed),
    row("LinkKeyTaken", kKeys, talk(set_key, take_key), {"16: key"}),
    row("LinkPanKeyTaken", kKeys, talk(set_key, take_pan_key), {"16: key"}),
    row("LinkClosed", kKeys, talk(set_key, close_link), {kLink + ": key"}),
    row("LinkClosedThatHasReadANumberAhead", kNumbers, talk(read_ahead, close_link), {kLink + ": number"}),
    row("LinkClosedAfterItHungUp", kKeys, talk(protect_and_hang_up, close_link), {kLink + ": key"},
        io("tcflush() error: 5")),
    row("SessionTalk", kBoth, talk(echo, talk_in_session),
        {"2088: number", "36: key", "36: key", "8488: key", "8488: key"}),
    row("SessionCommandNotEnciphered", kBoth, talk(begin_session, send, "aes"),
        {"2088: number", "36: key", "8488: key"}, kFailed),
};

INSTANTIATE_TEST_SUITE_P(Conversations, Secrets, testing::ValuesIn(kRows), name_of);

// Wherever memory ends, what has been read so far goes, and none of it is kept.
TEST(Secrets, AreWipedWhereverMemoryEnds) {
    for (const Raising raising : {Raising::kCaught, Raising::kReturning}) {
        bool failed = true;
        for (size_t n = 1; failed; ++n) {
            Talk talk;
            answer("GCX000" + block(param("8045"_hex, "first") + kNumberParam))(talk);
            const support::FailingMalloc failing(n);
            const Seen seen = watch({number()}, raising, [&] {
                read_gcx(talk);
                kor_map_clear(talk.map);
            });
            failed = failing.failed();
            EXPECT_EQ(seen.raised.size(), failed ? 1U : 0U) << n;
            EXPECT_EQ(seen.left, std::vector<std::string>{}) << n;
            EXPECT_EQ(failing.kept(), 0U) << n;
            abecs_comm_release(talk.comm);
        }
    }
}

}  // namespace
