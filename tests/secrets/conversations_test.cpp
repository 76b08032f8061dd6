// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/comm/comm.h"
#include "quorvel/quorvel.h"
#include "tests/abecs/cmd/rsa_peer.h"
#include "tests/secrets/failing_cipher.h"
#include "tests/secrets/table.h"
#include "tests/support/link.h"
#include "tests/support/malloc/failing_malloc.h"
#include "tests/support/wire.h"

namespace secrets {

namespace {

using namespace support::literals;

// A link, its PIN pad, and all records that a call fills or is given.
struct Talk {
    support::Link link;
    AbecsComm* comm = link.comm;
    std::string number = std::string(kNumber);
    AbecsWkPan key{ABECS_WK_PAN_TYPE_TDES, {}};
    AbecsMk master{ABECS_MK_TYPE_TDES, 0, {1, 2, 3}};
    AbecsRspParamMap* map = abecs_rsp_param_map_new();
    AbecsCmdGcrResponse gcr{};
    AbecsCmdCkeOut cke{};
    AbecsCmdGocResponse goc{};
    AbecsCmdGpnCmdData pin{ABECS_CMD_GPN_METHOD_MK_WK_TDES, 0, "", "", 1, {{4, 12, "PIN"}}};
    AbecsCmdGpnRspData block{};
    AbecsEmvData emv{};
    AbecsTagList tags{{0x5A}, 1};
    char digits[1024]{};
    AbecsPacket* packet = abecs_packet_new();

    Talk() {
        copy_digits(kKey, key.key);
        kNumber.copy(pin.pan, sizeof pin.pan - 1);
        kKey.copy(pin.wkEnc, sizeof pin.wkEnc - 1);
    }
    ~Talk() {
        kor_map_delete(&map);
        abecs_packet_delete(&packet);
    }
    Talk(Talk&&) = delete;

    // The PIN pad has been asked before, and answers.
    void answers(const char* id, const std::string& response) {
        abecs_comm_lock(comm, id);
        link.peer.response(id + response);
        link.peer.settle();
    }
};

using Script = void (*)(Talk& talk);

std::function<Row::Call()> talk(Script script, Script call) {
    return [=] {
        const auto talk = std::make_shared<Talk>();
        script(*talk);
        return [=] { call(*talk); };
    };
}

std::string field(std::string text, size_t width) {
    text.resize(width, ' ');
    return text;
}

std::string n(std::string_view text) { return std::string(text); }

std::string param(const std::string& id, const std::string& data) {
    return id + '\0' + static_cast<char>(data.size()) + data;
}

std::string block(const std::string& params) {
    const std::string size = std::to_string(params.size());
    return std::string(3 - size.size(), '0') + size + params;
}

// 5412751234567894 under the working key.
constexpr const char* kProtectedTrack = "1EF75EFB90247489=3012";

// As far as the card number, or to the end.
std::string gcr_answer(bool whole) {
    return "00099906198" + n("03Z1") + field("00", 78) + field(n("21") + kProtectedTrack, 42) + field("", 104)
           + (whole ? field("00", 21) + field("07CREDIT", 18) + field("201TEST/CARD", 29) + "301231"
                          + std::string(28, ' ') + "!076000"
                    : "");
}

void read_gcx(Talk& talk) { abecs_cmd_gcx_response(talk.comm, talk.map, nullptr); }
void read_gcr(Talk& talk) { abecs_cmd_gcr_response(talk.comm, &talk.gcr, nullptr); }

// The link has a working key.
void protect(Talk& talk) { abecs_comm_set_wk_pan(talk.comm, &talk.key); }

// 2044 is the storage of a packet, 999 that of a parameter or of a builder's block, 16 the value in a map.
const Table kCards{
    {"GcxAnswer",
     {number()},
     talk([](Talk& t) { t.answers("GCX", "000" + block(param("8052"_hex, n(kNumber)))); }, read_gcx),
     {"2044: number", "999: number"}},
    {"GcxAnswerThatIsMalformedBehindTheNumber",
     {number()},
     talk([](Talk& t) { t.answers("GCX", "000" + block(param("8052"_hex, n(kNumber)) + "00")); }, read_gcx),
     {"16: number", "2044: number", "999: number"},
     support::error(6, "Malformed packet (remaining bytes on BLK1 cannot be used)")},
    {"GcxAnswerWithTheNumberTwice",
     {number()},
     talk([](Talk& t) { t.answers("GCX", "000" + block(param("8052"_hex, n(kNumber)) + param("8052"_hex, "none"))); },
          read_gcx),
     {"16: number", "2044: number", "999: number"}},
    {"GcrAnswer",
     {number(), key()},
     talk([](Talk& t) { protect(t), t.answers("GCR", gcr_answer(true)); }, read_gcr),
     {"168: number", "20: key", "20: key", "20: key", "20: key", "28: key", "8360: number"}},
    {"GcrAnswerThatEndsBehindTheTracks",
     {number(), key()},
     talk([](Talk& t) { protect(t), t.answers("GCR", gcr_answer(false)); }, read_gcr),
     {"168: number", "20: key", "20: key", "20: key", "28: key", "8360: number"},
     support::error(6, "Buffer does not have enough data (requested: 2, available: 0)")},
    {"CkeAnswer",
     {number(), key()},
     talk(
         [](Talk& t) {
             protect(t);
             t.answers("CKE", "000225100" + field("", 76) + "21" + field(kProtectedTrack, 40) + field("", 104));
         },
         [](Talk& t) { abecs_cmd_cke_response(t.comm, &t.cke, nullptr); }),
     {"168: number", "20: key", "20: key", "20: key", "28: key", "8360: number"}},
    {"GocAnswer",
     {number()},
     talk([](Talk& t) { t.answers("GOC", "000999000000" + field(n(kNumber), 36) + "016" + n(kNumber) + "000"); },
          [](Talk& t) { abecs_cmd_goc_response(t.comm, &t.goc, nullptr); }),
     {"2044: number"}},
    {"GpnRequest",
     {number(), key()},
     talk(
         [](Talk& t) {
             t.link.peer.request("GPN093100" + n(kKey) + "16" + field(n(kNumber), 19) + "10412" + field("PIN", 32));
         },
         [](Talk& t) { abecs_cmd_gpn(t.comm, &t.pin); }),
     {"2044: number, key"}},
    {"GpnAnswer",
     {number()},
     talk([](Talk& t) { t.answers("GPN", "000036" + n(kNumber) + "FFFF9876543210E00001"); },
          [](Talk& t) { abecs_cmd_gpn_response(t.comm, &t.block, nullptr); }),
     {"2044: number"}},
    {"GcdAnswer",
     {number()},
     talk([](Talk& t) { t.answers("GCD", "000" + block(param("804D"_hex, n(kNumber)))); },
          [](Talk& t) { abecs_cmd_gcd_response(t.comm, t.digits, nullptr); }),
     {"2044: number", "999: number"}},
    {"GedAnswer",
     {number()},
     talk(
         [](Talk& t) {
             t.link.peer.request("GED005" + "0004 0001 5A"_hex)
                 .response("GED000" + block(param("8054"_hex, "\x5A\x08" + from_digits(kNumber))));
         },
         [](Talk& t) { abecs_cmd_ged(t.comm, &t.tags, &t.emv); }),
     {"2044: number", "999: number"}},
};

INSTANTIATE_TEST_SUITE_P(Cards, Secrets, testing::ValuesIn(kCards), name_of);

// OPN and DWK2: the block of the right size with the key in it, under the host's public key.
std::string modulus_of(const std::string& request, size_t at, size_t digits) { return request.substr(at, digits); }

std::string session_block() { return "0002"_hex + std::string(256 - 3 - 16, '\x5A') + '\0' + from_digits(kKey); }

std::string working_key_block(char end) { return "T19 filling" + n(kKey) + std::string(84, '\xA5') + end; }

void answer_opn(Talk& talk, const std::string& block) {
    talk.link.peer.reply(1 + 6 + 4 + 512 + 1 + 6 + 3, [=](const std::string& request) {
        return "06"_hex + support::frame("OPN000515256" + support::rsa_encipher(block, modulus_of(request, 11, 512)));
    });
}

void answer_dwk2(Talk& talk, const std::string& block) {
    talk.link.peer.reply(1 + 6 + 1 + 256 + 6 + 3, [=](const std::string& request) {
        return "06"_hex + support::frame("DWK000256" + support::rsa_encipher(block, modulus_of(request, 8, 256)));
    });
}

void open_session(Talk& talk) { abecs_cmd_opn(talk.comm, true); }
void take_rsa_key(Talk& talk) { abecs_cmd_dwk2(talk.comm, nullptr, true); }
void load_key(Talk& talk) { abecs_cmd_dwk1(talk.comm, &talk.master, nullptr, true); }

// What DWK1 draws once the generator has been set to 1.
Secret drawn_key() {
    std::srand(1);
    std::string bytes(16, '\0');
    for (char& byte : bytes) { byte = static_cast<char>(std::rand() % 256); }
    return of_bytes("drawn", bytes);
}

void answer_dwk1(Talk& talk, const char* response) {
    kor_system_random(0, 1);
    std::srand(1);
    if (response == nullptr) { return; }
    const std::string frame = support::frame(response);
    talk.link.peer.discard(1 + 6 + 1 + 1 + 2 + 32 + 1 + 2).send("06"_hex + frame);
}

std::function<Row::Call()> with_failing_cipher(const char* cipher, Script script, Script call) {
    return [=] {
        const Row::Call whole = talk(script, call)();
        const auto failing = std::make_shared<FailingCipher>(cipher, CRYPT_INVALID_KEYSIZE, CRYPT_OK);
        return [=] { whole(), static_cast<void>(failing); };
    };
}

const support::Raised kFailed = support::error(13, "Invalid key size.");

const Table kKeys{
    {"OpnAnswer",
     {key()},
     talk([](Talk& t) { answer_opn(t, session_block()); }, open_session),
     {"11664: key", "256: key", "256: key"}},
    {"OpnAnswerWithALongerKey",
     {key()},
     talk([](Talk& t) { answer_opn(t, "0002"_hex + std::string(236, '\x5A') + '\0' + "x" + from_digits(kKey)); },
          open_session),
     {"11664: key", "256: key", "256: key"},
     support::error(12, "(OPN) Invalid Ksec length (expected: 16, read: 17)")},
    {"Dwk2Answer",
     {key()},
     talk([](Talk& t) { answer_dwk2(t, working_key_block('X')); }, take_rsa_key),
     {"11664: key", "128: key", "128: key", "20: key", "256: key"}},
    {"Dwk2AnswerWithABadEnd",
     {key()},
     talk([](Talk& t) { answer_dwk2(t, working_key_block('Y')); }, take_rsa_key),
     {"11664: key", "128: key", "128: key", "20: key", "256: key"},
     support::error(12, "(DWK) Invalid block end (expected: 'X', read: 'Y')")},
    {"Dwk1Answer", {drawn_key()}, talk([](Talk& t) { answer_dwk1(t, "DWK000"); }, load_key), {"20: drawn"}},
    {"Dwk1AnswerThatRefuses", {drawn_key()}, talk([](Talk& t) { answer_dwk1(t, "DWK042"); }, load_key), {"20: drawn"}},
    {"Dwk1AnswerOfAnotherCommand",
     {drawn_key()},
     talk([](Talk& t) { answer_dwk1(t, "OPN000"); }, load_key),
     {"20: drawn"},
     support::error(12, "(DWK) Invalid RSP_ID: OPN)")},
    {"Dwk1KeyNotEnciphered",
     {drawn_key()},
     with_failing_cipher(
         "3des", [](Talk& t) { answer_dwk1(t, nullptr); }, load_key),
     {"16: drawn", "20: drawn"},
     kFailed},
    {"LinkKeyTaken",
     {key()},
     talk([](Talk& t) { abecs_comm_set_key(t.comm, t.key.key); }, [](Talk& t) { abecs_comm_set_key(t.comm, nullptr); }),
     {"16: key"}},
    {"LinkPanKeyTaken",
     {key()},
     talk([](Talk& t) { abecs_comm_set_key(t.comm, t.key.key); },
          [](Talk& t) { abecs_comm_set_wk_pan(t.comm, nullptr); }),
     {"16: key"}},
    {"LinkClosed",
     {key()},
     talk([](Talk& t) { abecs_comm_set_key(t.comm, t.key.key); }, [](Talk& t) { abecs_comm_close(&t.link.comm); }),
     {"80: key"}},
    {"LinkClosedAfterItHungUp",
     {key()},
     talk([](Talk& t) { protect(t), t.link.peer.hang_up().settle(); }, [](Talk& t) { abecs_comm_close(&t.link.comm); }),
     {"80: key"},
     support::error(6, "tcflush() error: 5")},
};

INSTANTIATE_TEST_SUITE_P(Keys, Secrets, testing::ValuesIn(kKeys), name_of);

// In a session: what is sent comes back as the answer.
void begin_session(Talk& talk) {
    abecs_comm_set_key(talk.comm, talk.key.key);
    abecs_packet_write_field_b(talk.packet, "ABC", 3);
    abecs_packet_write_field_b(talk.packet, kNumber.data(), kNumber.size());
}

void echo(Talk& talk) {
    begin_session(talk);
    talk.link.peer.reply(1 + 1 + 32 + 1 + 2, [](const std::string& request) { return "06"_hex + request; });
}

void talk_in_session(Talk& talk) {
    abecs_comm_send_packet(talk.comm, talk.packet);
    abecs_comm_read_packet(talk.comm, talk.packet);
    abecs_packet_delete(&talk.packet);
}

const Table kSession{
    {"SessionTalk",
     {number(), key()},
     talk(echo, talk_in_session),
     {"2044: number", "36: key", "36: key", "8488: key", "8488: key"}},
    {"SessionCommandNotEnciphered",
     {number(), key()},
     with_failing_cipher("aes", begin_session, [](Talk& t) { abecs_comm_send_packet(t.comm, t.packet); }),
     {"2044: number", "36: key", "8488: key"},
     kFailed},
};

INSTANTIATE_TEST_SUITE_P(Session, Secrets, testing::ValuesIn(kSession), name_of);

// Wherever memory ends, what has been read so far goes, and none of it is kept.
TEST(Secrets, AreWipedWhereverMemoryEnds) {
    for (const Raising raising : {Raising::kCaught, Raising::kReturning}) {
        bool failed = true;
        for (size_t n = 1; failed; ++n) {
            Talk talk;
            talk.answers("GCX", "000" + block(param("8045"_hex, "first") + param("8052"_hex, std::string(kNumber))));
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

}  // namespace secrets
