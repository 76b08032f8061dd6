// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/sweeps/rig.h"

#include <algorithm>
#include <openssl/evp.h>
#include <stdexcept>

#include "quorvel/additions.h"
#include "tests/sweeps/host_keys.h"

namespace sweeps {

namespace {

using namespace support;

template <typename Call>
int32_t status_of(Call&& call) {
    if constexpr (std::is_void_v<decltype(call())>) {
        return call(), 0;
    } else {
        return call();
    }
}

std::vector<std::string> framed(const std::vector<std::string>& payloads, bool inSession) {
    std::vector<std::string> frames;
    frames.reserve(payloads.size());
    for (const std::string& payload : payloads) {
        frames.push_back(inSession ? sealed(content_of(payload)) : frame(payload));
    }
    return frames;
}

std::string shown(const AbecsRspParamMap* map) {
    std::string all;
    AbecsRspParamMapIt at;
    for (bool more = abecs_rsp_param_map_begin(map, &at) != nullptr; more;
         more = abecs_rsp_param_map_next(&at) != nullptr) {
        all += std::to_string(at.id) + '=';
        all.append(reinterpret_cast<const char*>(at.value.data), at.value.size);
    }
    return all;
}

}  // namespace

const std::string kSession = "000102030405060708090A0B0C0D0E0F"_hex;

std::string content_of(const std::string& payload) {
    std::string content;
    content += static_cast<char>(payload.size() >> 8);
    content += static_cast<char>(payload.size());
    const uint16_t crc = crc_of(payload);
    content += static_cast<char>(crc >> 8);
    content += static_cast<char>(crc);
    content += payload;
    return content.append(16 - content.size() % 16, '\0');
}

std::string sealed(const std::string& content) {
    std::string out(content.size(), '\0');
    const auto bytes = [](const std::string& text) { return reinterpret_cast<const unsigned char*>(text.data()); };
    const std::string vector(16, '\0');
    const std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> cipher(EVP_CIPHER_CTX_new(),
                                                                                 EVP_CIPHER_CTX_free);
    int length = 0;
    EVP_EncryptInit_ex(cipher.get(), EVP_aes_128_cbc(), nullptr, bytes(kSession), bytes(vector));
    EVP_CIPHER_CTX_set_padding(cipher.get(), 0);
    EVP_EncryptUpdate(cipher.get(), reinterpret_cast<unsigned char*>(out.data()), &length, bytes(content),
                      static_cast<int>(content.size()));
    return encrypted_frame(out.substr(0, static_cast<size_t>(length)));
}

const std::vector<Command>& commands() {
    static const std::vector<Command> kCommands{
#define POLLS(id, answer, function, ...)                             \
    {#function, id, {answer}, []([[maybe_unused]] CommandWorld& w) { \
         return status_of([&] { return (function)(__VA_ARGS__); });  \
     }},
#define TALKS(answers, function, ...) \
    {#function, nullptr, answers,     \
     []([[maybe_unused]] CommandWorld& w) { return status_of([&] { return (function)(__VA_ARGS__); }); }},
#define ASKS(answer, function, ...) TALKS({answer}, function, __VA_ARGS__)
#define SENDS(function, ...) TALKS({}, function, __VA_ARGS__)
#define TOO(...) __VA_ARGS__
#include "tests/support/commands.inc"
        {"abecs_cmd_opn", nullptr, {session_answer()}, [](auto& w) { return abecs_cmd_opn(w.link, true); }, true},
        {"abecs_cmd_dwk2",
         nullptr,
         {pan_key_answer()},
         [](auto& w) { return abecs_cmd_dwk2(w.link, w.out, true); },
         true},
    };
    return kCommands;
}

const Command& command_of(std::string_view name) {
    const auto found = std::find_if(commands().begin(), commands().end(), [&](auto& row) { return row.name == name; });
    if (found == commands().end()) { throw std::out_of_range(std::string(name)); }
    return *found;
}

Rig::Rig() {
    connect();
    world_ = std::make_unique<CommandWorld>(link, path_.c_str());
}

Rig::~Rig() {
    line.heal();
    raised_by([&] { abecs_comm_close(&link); });
}

void Rig::connect() {
    EXPECT_NO_RAISE(link = abecs_comm_open(memory::kPath));
    if (world_ != nullptr) { world_->link = link; }
}

// Both keys and the blocked state belong to the link and may have changed.
void Rig::arrange(const Wire& wire) {
    abecs_comm_release(link);
    abecs_comm_set_wk_pan(link, &support::kKey);
    abecs_comm_set_key(link, key);
    abecs_comm_set_whole_frames(link, wholeFrames_);
    abecs_comm_set_limit(link, limit);
    pad.answer(wire);
    if (command_->waits != nullptr) {
        abecs_comm_lock(link, command_->waits);
        pad.speak();
    }
    world_->out = {};
    std::fill(std::begin(world_->text), std::end(world_->text), '\0');
    kor_string_list_append(world_->list, "a");
}

Outcome Rig::act(Raise raise) {
    Outcome outcome;
    const memory::Time start = line.now();
    const FailingMalloc memory(wrong_.allocation, wrong_.onwards);
    line.fail(wrong_.call, wrong_.fault, wrong_.onwards);
    line.hang_up_after(wrong_.traffic);

    if (raise == Raise::kCaught) {
        outcome.raised = raised_by([&] { outcome.status = command_->act(*world_); });
    } else {
        const ReturningRaises raises;
        outcome.status = command_->act(*world_);
        if (raises.all().size() > 1) { ADD_FAILURE() << command_->name << " raised more than once"; }
        if (!raises.all().empty()) { outcome.raised = raises.all().front(); }
    }
    outcome.noMemory = memory.failed();
    outcome.took = line.now() - start;
    const bool kept = outcome.raised == Raised{};
    if (kept) {
        outcome.results = shown(world_->params) + world_->text;
        // A key that was drawn is another one each time.
        if (command_->name != std::string_view("abecs_cmd_dwk1")) {
            outcome.results.append(world_->out.room, sizeof world_->out.room);
        }
        kor_map_clear(world_->params);
    }
    kor_list_clear(world_->list);
    outcome.kept = memory.kept();
    return outcome;
}

void Rig::begin(const Command& command, bool wholeFrames) {
    command_ = &command;
    wholeFrames_ = wholeFrames;
    good_ = framed(command.answers, key != nullptr);
    wire_ = good_;
    line.heal();
    EXPECT_NO_RAISE(abecs_comm_send_can(link));
    arrange(good_);
    reference_ = act(Raise::kCaught);
    EXPECT_EQ(reference_.raised, Raised{}) << command.name;
}

std::string Rig::fault_in(const Outcome& outcome) const {
    if (kor_exception_get_frame_node() != nullptr) { return "a try block is open"; }
    if (outcome.kept != 0) { return std::to_string(outcome.kept) + " blocks of memory are left"; }
    if (outcome.took > most) { return "it took " + std::to_string(outcome.took.count()) + " us"; }
    if (line.open_descriptors() != 2) {
        return "there are " + std::to_string(line.open_descriptors()) + " descriptors";
    }
    return "";
}

bool Rig::run(Raise raise, const std::string& what, Judge judge) {
    arrange(wire_);
    const Outcome outcome = act(raise);
    ++runs_;
    wrong_ = {};
    std::string fault = fault_in(outcome);
    if (fault.empty() && !judge(outcome, reference_)) { fault = "it came to this"; }
    allocationFailed_ = outcome.noMemory;
    callFailed_ = line.failed();
    hungUp_ = line.hung_up();
    line.heal();
    wire_ = good_;
    if (hungUp_) {
        raised_by([&] { abecs_comm_close(&link); });
        connect();
    }
    abecs_comm_set_limit(link, 0);
    Outcome again;
    again.raised = raised_by([&] { abecs_comm_send_can(link); });
    if (again.raised == Raised{}) {
        arrange(good_);
        again = act(Raise::kCaught);
    }
    if (fault.empty()) { fault = fault_in(again); }
    const bool usable =
        again.raised == Raised{} && again.status == reference_.status && again.results == reference_.results;
    if (fault.empty() && !usable) { fault = "afterwards it is another"; }
    if (fault.empty()) { return true; }
    ADD_FAILURE() << command_->name << ", " << what << (raise == Raise::kCaught ? "" : ", returning") << ": " << fault
                  << "; status " << outcome.status << ", " << outcome.raised << "; then status " << again.status << ", "
                  << again.raised;
    return false;
}

}  // namespace sweeps
