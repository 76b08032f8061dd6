// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <climits>
#include <csignal>
#include <cstdarg>
#include <fstream>
#include <memory>
#include <regex>
#include <set>

#include "quorvel/additions.h"
#include "quorvel/quorvel.h"
#include "tests/core/counted.h"
#include "tests/core/owned.h"
#include "tests/core/temp_dir.h"
#include "tests/interface/exported_names.h"
#include "tests/support/commands.h"
#include "tests/support/peer.h"
#include "tests/support/raised.h"

// A function that succeeds leaves the pending error as it is, unless exception.h names it. So a clean-up can store,
// send and close whatever it likes, and a catch branch can do so before it looks at what it caught. Checked over the
// whole interface, through the shared library.
namespace {

using namespace std::string_literals;
using namespace support;

constexpr KorSerialConfig kConfig{
    20, 19200, 8, KOR_SERIAL_STOP_BITS_ONE, KOR_SERIAL_PARITY_NONE, KOR_SERIAL_FLOW_CONTROL_NONE};
constexpr Crypt3DesKey kTdesKey{{1, 2, 3}, 16};
constexpr AbecsEmvData kEmvData{{0x82}, 1};
constexpr AbecsCmdGtkPbkExp kExponent{3, {1, 0, 1}};
constexpr AbecsCmdGtkWkEnc kWkEnc{16, {1}};

KOR_PRINTF(3, 4) void format_list(char* to, size_t size, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    kor_string_vformat(to, size, format, arguments);
    va_end(arguments);
}

void open_and_close_a_block() {
    KOR_TRY {}
    KOR_END_TRY;
}

template <auto kDelete, typename Object>
void discard(Object* made) {
    kDelete(&made);
}

// What takes long to make, made once.
struct Bench {
    Bench() {
        peer.accept_can();
        link = abecs_comm_open(peer.path().c_str());
    }
    ~Bench() {
        peer.finish();
        abecs_comm_close(&link);
        crypt_rsa_key_delete(&rsa);
    }
    Bench(Bench&&) = delete;

    Peer peer;
    Peer line;  // for what is done to a port
    AbecsComm* link = nullptr;
    CryptRsaKey* rsa = crypt_rsa_key_new(128, 65537);
    TempDir directory;
    std::string folder = directory / "";
    std::string path = directory.file("a.b", "content");
};

// Everything that the calls of succeeding_functions.inc take and fill.
struct World : CommandWorld {
    explicit World(Bench& given) : CommandWorld(given.link, given.path.c_str()), bench(given) {
        kor_serial_config(port, &kConfig);
        abecs_comm_release(link);
        abecs_comm_set_wk_pan(link, &kKey);
        kor_buffer_write_str(buffer, "000001234567890", true);
        holds("000001234567890");
        abecs_param_set_id(param, 1);
        abecs_param_write_field_b(param, "0000", 4);
        kor_list_append(plain, "a");
        item = kor_list_first(list);
        kor_map_put(map, "a", "1");
        kor_string_set_put(texts, "a");
        kor_int_set_put(numbers, 1);
        for (const auto id : {0x8040, 0x8041, 0x8042, 0x8043, 0x8044, 0x8045, 0x8046, 0x8047, 0x8048, 0x8049, 0x804A,
                              0x804B, 0x804C, 0x804E, 0x8063}) {
            abecs_rsp_param_map_put(params, static_cast<uint16_t>(id), &value, false);
        }
    }
    ~World() {
        kor_test_signal(SIGABRT, nullptr);
        abecs_comm_close(&spareLink);
        peer.settle();
        line.settle();
    }
    World(World&&) = delete;

    // The packet's content.
    void holds(const std::string& bytes) {
        abecs_packet_clear(packet);
        abecs_packet_write_field_b(packet, bytes.data(), bytes.size());
    }
    void parses(const std::string& bytes) {
        holds(bytes);
        abecs_rsp_parser_set_packet(parser, packet);
    }
    void waits_for(const char* id, const std::string& answer) {
        abecs_comm_lock(link, id);
        peer.response(answer);
    }
    void takes(const std::vector<std::string>& answers) {
        for (const std::string& answer : answers) { peer.any_request().response(answer); }
    }
    void await_spare() {
        spare = std::make_unique<Peer>();
        spare->accept_can();
    }
    void open_spare() {
        await_spare();
        spareLink = abecs_comm_open(spare->path().c_str());
    }
    // A message for the RSA key.
    void seal() {
        crypt_rsa_get_public_key(rsa, &publicKey);
        crypt_rsa_encrypt(&publicKey, block, 16, block, 128);
    }
    void rule_ebx(AbecsSpeMthdDat_E method) { abecs_cmd_ebx_builder_reset(ebx, block, 8, method, 5); }
    void rule_gtk(AbecsSpeMthdDat_E method) { abecs_cmd_gtk_builder_mthd_dat(gtk, method); }

    Bench& bench;
    Peer& peer = bench.peer;
    Peer& line = bench.line;
    CryptRsaKey* rsa = bench.rsa;
    const char* directory = bench.folder.c_str();
    std::unique_ptr<Peer> spare;
    AbecsComm* spareLink = nullptr;
    Made<kor_serial_close> port{kor_serial_open(line.path().c_str())};

    char place[4096] = "";
    KorExceptionFrameNode node{};

    Made<kor_buffer_delete> buffer{kor_buffer_new(64)};
    Made<kor_list_delete> plain{kor_list_new(counted::copy, kor_collection_destroy, counted::equals)};
    KorListNode* item = nullptr;
    Made<kor_map_delete> map{counted::new_map(2)};
    Made<kor_set_delete> texts{kor_string_set_new(2)};
    Made<kor_set_delete> numbers{kor_int_set_new(2)};
    Made<kor_regex_delete> regex{kor_regex_new("b")};
    Made<kor_file_close> file{kor_file_open(path, "r+b")};
    Made<kor_test_suite_delete> suite{kor_test_suite_new()};

    Made<abecs_packet_delete> packet{abecs_packet_new()};
    Made<abecs_param_delete> param{abecs_param_new()};
    Made<abecs_rsp_parser_delete> parser{abecs_rsp_parser_new()};
    uint8_t data[3] = "00";
    AbecsRspParamValue value{2, data, false};
    Made<crypt_aes_cipher_delete> aes{crypt_aes_cipher_new(block, 16)};
    CryptRsaKey* rsa2 = nullptr;
    CryptRsaPublicKey publicKey{};

    Made<abecs_cmd_builder_delete> builder{abecs_cmd_builder_new()};
    Made<abecs_cmd_fcx_builder_delete> fcx{abecs_cmd_fcx_builder_new("1000")};
};

struct Function {
    const char* name;
    void (*prepare)(World&);
    void (*act)(World&);
};

const Function kFunctions[] = {
#define AFTER_DOES(step, function, ...) \
    {#function, [](World& w) { step, static_cast<void>(w); }, [](World& w) { (__VA_ARGS__), static_cast<void>(w); }},
#define AFTER(step, function, ...) AFTER_DOES(step, function, static_cast<void>((function)(__VA_ARGS__)))
#define CALL(function, ...) AFTER(static_cast<void>(0), function, __VA_ARGS__)
#define DOES(function, ...) AFTER_DOES(static_cast<void>(0), function, __VA_ARGS__)
#define TALKS(answers, function, ...) AFTER(w.takes(answers), function, __VA_ARGS__)
#define ASKS(answer, function, ...) TALKS({answer}, function, __VA_ARGS__)
#define SENDS(function, ...) AFTER(w.peer.any_request(), function, __VA_ARGS__)
#define POLLS(id, answer, function, ...) AFTER(w.waits_for(id, answer), function, __VA_ARGS__)
#define NOT_CALLED(name) {#name, [](World&) {}, [](World&) {}},
#define TOO(...)
#include "tests/interface/succeeding_functions.inc"
#include "tests/support/commands.inc"
};

// What became of an error that was pending during the call, in a clean-up or in a catch branch.
void act_with_error(const Function& function, World& world, bool inCleanup, KorException* left) {
    KOR_TRY { kor_exception_throw(KOR_RESULT_TIMEOUT_ERROR, "pending"); }
    KOR_CATCH(KOR_RESULT_OK) {
        if (!inCleanup) { function.act(world); }
        kor_exception_get(left);
    }
    KOR_CLEANUP {
        if (inCleanup) { function.act(world); }
    }
    KOR_END_TRY;
}

const support::Raised kPending{KOR_RESULT_TIMEOUT_ERROR, "pending"};

// Those that exception.h names.
std::set<std::string> promised() {
    std::ifstream header(QUORVEL_EXCEPTION_H);
    const std::string text((std::istreambuf_iterator<char>(header)), {});
    const std::string before = "Only these clear it when they succeed:";
    const size_t begin = text.find(before);
    EXPECT_NE(begin, std::string::npos);
    const std::string list = text.substr(begin + before.size(), text.find('.', begin) - begin - before.size());
    const std::regex name("\\w*(kor|abecs|crypt)_\\w+");
    std::set<std::string> names;
    for (auto it = std::sregex_iterator(list.begin(), list.end(), name); it != std::sregex_iterator(); ++it) {
        names.insert(it->str());
    }
    return names;
}

TEST(PendingError, OutlivesEverySuccessButThoseThatTheHeaderNames) {
    Bench bench;
    for (const bool inCleanup : {true, false}) {
        std::set<std::string> clearing;
        for (const Function& function : kFunctions) {
            World world(bench);
            KorException left{};
            EXPECT_NO_RAISE(function.prepare(world)) << function.name;
            EXPECT_NO_RAISE(act_with_error(function, world, inCleanup, &left)) << function.name;
            EXPECT_EQ(kor_exception_get_frame_node(), nullptr) << function.name;
            if (left.error == KOR_RESULT_OK) {
                clearing.insert(function.name);
            } else {
                EXPECT_EQ((support::Raised{left.error, left.message}), kPending) << function.name;
            }
        }
        EXPECT_EQ(clearing, promised());
        EXPECT_FALSE(clearing.empty());
    }
}

TEST(PendingError, IsTriedWithEveryExportedFunction) {
    std::set<std::string> listed;
    for (const Function& function : kFunctions) { EXPECT_TRUE(listed.insert(function.name).second) << function.name; }
    EXPECT_EQ(listed, exported_names());
}

}  // namespace
