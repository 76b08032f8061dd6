// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
// An exchange by the library beside the same bytes by plain loops of system calls. What counts are the ratios of the
// medians, of repetitions that are interleaved: scripts/bench makes the table.
#include <array>
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <string>
#include <termios.h>
#include <unistd.h>
#include <vector>

#include "bench/pin_pad.h"
#include "quorvel/additions.h"
#include "quorvel/quorvel.h"
#include "wire/frame.h"

namespace {

using quorvel::bench::PinPad;
namespace wire = quorvel::wire;

[[noreturn]] void give_up(const char* what) {
    std::perror(what);
    std::exit(1);
}

std::string frame(const std::string& payload) {
    const wire::Bytes bytes = wire::encode({.encrypted = false, .data = wire::Bytes(payload.begin(), payload.end())});
    return {bytes.begin(), bytes.end()};
}

struct Exchange {
    std::string name;
    std::string request;  // as it goes over the line
    std::string answer;
    int32_t (*call)(AbecsComm*);
};

const std::string kMessage = "PLEASE WAIT WHILE WE CONNECT YOU";
const std::string kRecord = "894" + std::string(891, '1');
AbecsRspParamMap* values = nullptr;

std::string param(const std::string& id, size_t size) {
    const std::string length{static_cast<char>(size >> 8), static_cast<char>(size & 0xFF)};
    return id + length + std::string(size, '5');
}

// Each with an answer of no error, or with data that one parameter of the answer holds.
std::vector<Exchange> exchanges() {
    const std::string params = param("\x80\x01", 932);
    return {
        {"TLE", frame("TLE"), frame("TLE000"), [](AbecsComm* link) { return abecs_cmd_tle(link); }},
        {"DSP", frame("DSP032" + kMessage), frame("DSP000"),
         [](AbecsComm* link) { return abecs_cmd_dsp(link, kMessage.c_str()); }},
        {"TLR", frame("TLR89601" + kRecord), frame("TLR000"),
         [](AbecsComm* link) { return abecs_cmd_tlr(link, kRecord.c_str()); }},
        {"GIX", frame("GIX"), frame("GIX000" + std::to_string(params.size()) + params),
         [](AbecsComm* link) { return abecs_cmd_gix(link, nullptr, 0, values); }},
    };
}

PinPad& pin_pad_of(const Exchange& exchange) {
    static std::vector<std::unique_ptr<PinPad>> all;
    all.push_back(
        std::make_unique<PinPad>(exchange.request.size(), static_cast<char>(wire::control::kAck) + exchange.answer));
    return *all.back();
}

void by_library(benchmark::State& state, AbecsComm* link, const Exchange& exchange) {
    for (auto _ : state) {
        if (const int32_t status = exchange.call(link); status != 0) { state.SkipWithError("not 000"); }
    }
}

enum class Drain { kEachByte, kOnce };

void write_bytes(int fd, const std::string& bytes, Drain drain) {
    for (const char& byte : bytes) {
        if (write(fd, &byte, 1) != 1) { give_up("write"); }
        if (drain == Drain::kEachByte) { tcdrain(fd); }
    }
    if (drain == Drain::kOnce) { tcdrain(fd); }
}

void by_bytes(benchmark::State& state, int fd, const Exchange& exchange, Drain drain) {
    for (auto _ : state) {
        write_bytes(fd, exchange.request, drain);
        char byte = 0;
        for (size_t left = exchange.answer.size() + 1; left > 0; --left) {
            if (read(fd, &byte, 1) != 1) { give_up("read"); }
        }
    }
}

void by_frames(benchmark::State& state, int fd, const Exchange& exchange) {
    std::array<char, 4096> bytes;
    for (auto _ : state) {
        if (write(fd, exchange.request.data(), exchange.request.size()) < 0) { give_up("write"); }
        for (size_t got = 0; got < exchange.answer.size() + 1;) {
            const ssize_t count = read(fd, bytes.data(), bytes.size());
            if (count <= 0) { give_up("read"); }
            got += static_cast<size_t>(count);
        }
    }
}

int open_line(const Exchange& exchange) {
    const int fd = open(pin_pad_of(exchange).path().c_str(), O_RDWR | O_NOCTTY);
    if (fd < 0) { give_up("open"); }
    return fd;
}

AbecsComm* open_link(const Exchange& exchange) {
    AbecsComm* link = abecs_comm_open(pin_pad_of(exchange).path().c_str());
    if (link == nullptr) { give_up("abecs_comm_open"); }
    return link;
}

void add(const Exchange& exchange) {
    AbecsComm* link = open_link(exchange);
    AbecsComm* wholeLink = open_link(exchange);
    abecs_comm_set_whole_frames(wholeLink, true);
    const int stepped = open_line(exchange);
    const int flowing = open_line(exchange);
    const int whole = open_line(exchange);
    const auto named = [&](const char* way) { return exchange.name + "/" + way; };
    benchmark::RegisterBenchmark(named("library").c_str(),
                                 [=](benchmark::State& state) { by_library(state, link, exchange); });
    benchmark::RegisterBenchmark(named("library, whole frames").c_str(),
                                 [=](benchmark::State& state) { by_library(state, wholeLink, exchange); });
    benchmark::RegisterBenchmark(named("bytes, each drained").c_str(), [=](benchmark::State& state) {
        by_bytes(state, stepped, exchange, Drain::kEachByte);
    });
    benchmark::RegisterBenchmark(named("bytes, drained once").c_str(),
                                 [=](benchmark::State& state) { by_bytes(state, flowing, exchange, Drain::kOnce); });
    benchmark::RegisterBenchmark(named("whole frames").c_str(),
                                 [=](benchmark::State& state) { by_frames(state, whole, exchange); });
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) { return 2; }
    values = abecs_rsp_param_map_new();
    for (const Exchange& exchange : exchanges()) { add(exchange); }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
