// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
// What the library's work takes, beside the same work by others. What counts are the ratios of the medians, of
// repetitions that are interleaved: report.py has them. A name is group/what/who.
#include <benchmark/benchmark.h>
#include <modbus/modbus.h>
#include <optional>
#include <span>
#include <spawn.h>
#include <sys/wait.h>
#include <tomcrypt.h>

#include "bench/exchange.h"
#include "bench/workers.h"

namespace {

using namespace quorvel::bench;
using Row = benchmark::internal::Benchmark;

// Opens what it runs when the first repetition needs it, as a line takes the library half a second. Of a paced line it
// also tells the use, which is the time that the bytes of one run are on it in the time that the run takes.
Row* time(const std::string& name, const std::function<Run()>& open, std::chrono::duration<double> onLine = {}) {
    const auto measure = [=, run = Run()](benchmark::State& state) mutable {
        if (!run) { run = open(); }
        std::optional<OnOneProcessor> here;
        if (onLine.count() == 0) { here.emplace(OnOneProcessor::End::kHost); }
        for (auto _ : state) { run(); }
        if (onLine.count() == 0) { return; }
        state.counters["line_use"] = benchmark::Counter(onLine.count(), benchmark::Counter::kIsIterationInvariantRate);
    };
    return benchmark::RegisterBenchmark(name.c_str(), measure)->UseRealTime();
}

void time_exchange(const std::string& name, const Exchange& exchange, std::span<const Way> ways) {
    for (const Way way : ways) {
        time(name + "/" + name_of(way),
             [=] { return open(exchange, way, std::make_shared<FarEnd>(exchange.traffic)); });
    }
}

void time_exchanges() {
    for (const Exchange& exchange : commands()) { time_exchange("exchange/" + exchange.name, exchange, kWays); }
    constexpr size_t kSize = 1024;
    for (const bool encrypted : {false, true}) {
        time_exchange(encrypted ? "cipher/encrypted" : "cipher/plain", packets(kSize, kSize, encrypted), kLibraryWays);
    }
}

constexpr int kPacedRepetitions = 3;

void time_paced_line(const std::string& name, const Exchange& exchange, Way way) {
    constexpr size_t kBytes = 2000;  // or so, in one repetition
    const auto openLine = [=] { return open(exchange, way, std::make_shared<FarEnd>(exchange.traffic, kByteTime, 1)); };
    time(name + "/" + name_of(way), openLine, kByteTime * exchange.traffic.size())
        ->Iterations(static_cast<int64_t>(std::max(kBytes / exchange.traffic.size(), size_t{1})))
        ->Repetitions(kPacedRepetitions);
}

void time_many_lines(size_t lines) {
    constexpr int kExchanges = 30;
    const Exchange exchange = packets(32, 32, false);
    const auto openAll = [=] {
        const auto far = std::make_shared<FarEnd>(exchange.traffic, kByteTime, lines);
        const auto workers =
            std::make_shared<Workers>(lines, [&](size_t line) { return open(exchange, Way::kLibrary, far, line); });
        return [far, workers] { workers->run(kExchanges); };
    };
    time("lines/" + std::to_string(lines) + "/library", openAll, kByteTime * exchange.traffic.size() * kExchanges)
        ->Iterations(1)
        ->Repetitions(kPacedRepetitions);
}

void time_paced_lines() {
    for (const size_t size : {32U, 128U, 1000U}) {
        for (const bool encrypted : {false, true}) {
            const std::string name =
                "line/" + std::to_string(size) + (encrypted ? " bytes, encrypted" : " bytes, plain");
            for (const Way way : {Way::kLibrary, Way::kLibraryWholeFrames, Way::kBytesDrained}) {
                time_paced_line(name, packets(size, size, encrypted), way);
            }
        }
    }
    for (const size_t lines : {1U, 64U}) { time_many_lines(lines); }
}

// What an RTU frame needs at its end.
std::string with_modbus_crc(const std::string& frame) {
    uint16_t crc = 0xFFFF;
    for (const char byte : frame) {
        crc = static_cast<uint16_t>(crc ^ static_cast<uint8_t>(byte));
        for (int bit = 0; bit < 8; ++bit) { crc = static_cast<uint16_t>((crc >> 1) ^ ((crc & 1) != 0 ? 0xA001 : 0)); }
    }
    return frame + static_cast<char>(crc & 0xFF) + static_cast<char>(crc >> 8);
}

std::string modbus_head(char function, uint8_t registers) {
    return std::string{'\x01', function, '\0', '\0', '\0', static_cast<char>(registers)};
}

Traffic modbus_write(uint8_t registers) {
    const size_t bytes = size_t{2} * registers;
    const std::string head = modbus_head('\x10', registers);
    return {with_modbus_crc(head + static_cast<char>(bytes) + std::string(bytes, 'A')), with_modbus_crc(head)};
}

Traffic modbus_read(uint8_t registers) {
    const size_t bytes = size_t{2} * registers;
    return {with_modbus_crc(modbus_head('\x03', registers)),
            with_modbus_crc(std::string{'\x01', '\x03', static_cast<char>(bytes)} + std::string(bytes, 'A'))};
}

template <typename Transfer>
void time_modbus(const std::string& name, const Traffic& traffic, int registers, Transfer&& transfer) {
    time(name + "/libmodbus", [=] {
        const auto far = std::make_shared<FarEnd>(traffic);
        modbus_t* modbus = modbus_new_rtu(far->path(0).c_str(), 19200, 'N', 8, 1);
        if (modbus_set_slave(modbus, 1) != 0 || modbus_connect(modbus) != 0) { give_up("modbus_connect"); }
        return [far, modbus, registers, transfer, name] {
            std::array<uint16_t, MODBUS_MAX_READ_REGISTERS> values;
            values.fill(0x4141);
            if (transfer(modbus, registers, values.data()) != registers) { give_up(name); }
        };
    });
}

// Packets whose frames are as long as those of Modbus, the answer's with its acknowledgement.
Exchange packets_like(const Traffic& traffic) {
    constexpr size_t kFraming = 4;
    Exchange alike = packets(traffic.request.size() - kFraming, traffic.answer.size() - kFraming - 1, false);
    if (alike.traffic.size() != traffic.size()) { give_up("not as long as Modbus"); }
    return alike;
}

void time_modbus_of(const char* size, uint8_t registers) {
    const std::string sent = std::string("modbus/send ") + size;
    time_modbus(sent, modbus_write(registers), registers, [](modbus_t* modbus, int count, uint16_t* values) {
        return modbus_write_registers(modbus, 0, count, values);
    });
    time_exchange(sent, packets_like(modbus_write(registers)), kLibraryWays);
    const std::string received = std::string("modbus/receive ") + size;
    time_modbus(received, modbus_read(registers), registers, [](modbus_t* modbus, int count, uint16_t* values) {
        return modbus_read_registers(modbus, 0, count, values);
    });
    time_exchange(received, packets_like(modbus_read(registers)), kLibraryWays);
}

void make_key() {
    CryptRsaKey* key = crypt_rsa_key_new(256, 65537);
    crypt_rsa_key_delete(&key);
}

// The library has registered what this needs.
void make_key_by_libtomcrypt() {
    rsa_key key;
    if (rsa_make_key(nullptr, find_prng("sprng"), 256, 65537, &key) != CRYPT_OK) { give_up("rsa_make_key"); }
    rsa_free(&key);
}

void time_keys() {
    constexpr int kKeys = 8;
    constexpr int kRepetitions = 9;
    time("key/RSA-2048/library", [] { return make_key; })->Iterations(kKeys)->Repetitions(kRepetitions);
    time("key/RSA-2048/libtomcrypt", [] { return make_key_by_libtomcrypt; })
        ->Iterations(kKeys)
        ->Repetitions(kRepetitions);
}

void start_and_await(const std::string& program) {
    pid_t child = 0;
    std::array<char*, 2> arguments{const_cast<char*>(program.c_str()), nullptr};
    int status = 1;
    if (posix_spawn(&child, program.c_str(), nullptr, nullptr, arguments.data(), environ) != 0
        || waitpid(child, &status, 0) != child || status != 0) {
        give_up(program);
    }
}

// Few at a time and often, as whatever else runs delays a start by much.
void time_loading() {
    constexpr int kStarts = 5;
    constexpr int kRepetitions = 101;
    for (const std::string library : {"libc", "libtomcrypt", "libquorvel0"}) {
        const std::string program = QUORVEL_EMPTY_PROGRAMS "/empty_" + library;
        time("load/empty program/" + library, [=] { return [=] { start_and_await(program); }; })
            ->Iterations(kStarts)
            ->Repetitions(kRepetitions);
    }
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) { return 2; }
    time_exchanges();
    time_modbus_of("45 bytes", 18);
    time_modbus_of("249 bytes", 120);
    time_keys();
    time_loading();
    time_paced_lines();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
