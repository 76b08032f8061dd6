// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "bench/exchange.h"

#include <array>
#include <cstring>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

#include "wire/crc.h"
#include "wire/frame.h"
#include "wire/named.h"

namespace quorvel::bench {

namespace {

constexpr std::array<uint8_t, 16> kSessionKey{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
constexpr size_t kCipherBlock = 16;

std::string big_endian(size_t number) { return {static_cast<char>(number >> 8), static_cast<char>(number & 0xFF)}; }

// The content of an enciphered frame.
std::string seal(const std::string& packet) {
    std::string content = big_endian(packet.size()) + big_endian(wire::crc16(wire::to_bytes(packet))) + packet;
    content.append(kCipherBlock - content.size() % kCipherBlock, '\0');
    CryptAesCipher* cipher = crypt_aes_cipher_new(kSessionKey.data(), kSessionKey.size());
    auto* bytes = reinterpret_cast<uint8_t*>(content.data());
    crypt_aes_cbc_encrypt(cipher, bytes, bytes, content.size(), nullptr);
    crypt_aes_cipher_delete(&cipher);
    return content;
}

std::string frame(const std::string& packet, bool encrypted) {
    const std::string content = encrypted ? seal(packet) : packet;
    const wire::Bytes bytes = wire::encode({.encrypted = encrypted, .data = wire::to_bytes(content)});
    return {bytes.begin(), bytes.end()};
}

Traffic traffic(const std::string& request, const std::string& answer, bool encrypted = false) {
    return {frame(request, encrypted), static_cast<char>(wire::control::kAck) + frame(answer, encrypted)};
}

// GIX with one parameter of each of these ids.
Exchange gix(uint8_t params, size_t size) {
    std::string data;
    for (uint8_t i = 0; i < params; ++i) {
        data += std::string{'\x80', static_cast<char>(i)} + big_endian(size) + std::string(size, '5');
    }
    const std::string length = std::to_string(data.size());
    return {.name = "GIX",
            .traffic = traffic("GIX", "GIX000" + std::string(3 - length.size(), '0') + length + data),
            .run = [=](Link& link) {
                return abecs_cmd_gix(link.comm, nullptr, 0, link.values) == ABECS_RSP_STAT_ST_OK
                       && kor_map_size(link.values) == params;
            }};
}

class Port {
public:
    Port(std::shared_ptr<FarEnd> far, size_t line)
        : fd(::open(far->path(line).c_str(), O_RDWR | O_NOCTTY)), far_(std::move(far)) {
        if (fd < 0) { give_up("open"); }
    }
    ~Port() { close(fd); }
    Port(const Port&) = delete;
    Port& operator=(const Port&) = delete;

    const int fd;

private:
    std::shared_ptr<FarEnd> far_;
};

void write_bytes(int fd, const std::string& bytes, bool drainEach) {
    for (const char& byte : bytes) {
        if (write(fd, &byte, 1) != 1) { give_up("write"); }
        if (drainEach) { tcdrain(fd); }
    }
    if (!drainEach) { tcdrain(fd); }
}

void read_bytes(int fd, size_t size) {
    char byte = 0;
    for (; size > 0; --size) {
        if (read(fd, &byte, 1) != 1) { give_up("read"); }
    }
}

void read_in_bulk(int fd, size_t size) {
    std::array<char, 4096> bytes;
    for (size_t got = 0; got < size;) {
        const ssize_t count = read(fd, bytes.data(), bytes.size());
        if (count <= 0) { give_up("read"); }
        got += static_cast<size_t>(count);
    }
}

void exchange_by_loop(Way way, int fd, const Traffic& traffic) {
    if (way == Way::kWholeFrames) {
        if (write(fd, traffic.request.data(), traffic.request.size()) < 0) { give_up("write"); }
    } else {
        write_bytes(fd, traffic.request, way == Way::kBytesDrained);
    }
    way == Way::kBytesDrained ? read_bytes(fd, traffic.answer.size()) : read_in_bulk(fd, traffic.answer.size());
}

}  // namespace

Link::Link(std::shared_ptr<FarEnd> far, size_t line, bool wholeFrames, bool encrypted)
    : comm(abecs_comm_open(far->path(line).c_str())), far_(std::move(far)) {
    if (comm == nullptr) { give_up("abecs_comm_open"); }
    abecs_comm_set_whole_frames(comm, wholeFrames);
    if (encrypted) { abecs_comm_set_key(comm, kSessionKey.data()); }
}

Link::~Link() {
    abecs_comm_close(&comm);
    abecs_packet_delete(&packet);
    kor_map_delete(&values);
}

std::vector<Exchange> commands() {
    static const std::string kMessage = "PLEASE WAIT WHILE WE CONNECT YOU";
    static const std::string kRecord = "894" + std::string(891, '1');
    return {
        {"TLE", traffic("TLE", "TLE000"), [](Link& link) { return abecs_cmd_tle(link.comm) == ABECS_RSP_STAT_ST_OK; }},
        {"DSP", traffic("DSP032" + kMessage, "DSP000"),
         [](Link& link) { return abecs_cmd_dsp(link.comm, kMessage.c_str()) == ABECS_RSP_STAT_ST_OK; }},
        {"TLR", traffic("TLR89601" + kRecord, "TLR000"),
         [](Link& link) { return abecs_cmd_tlr(link.comm, kRecord.c_str()) == ABECS_RSP_STAT_ST_OK; }},
        gix(1, 932),
    };
}

Exchange ask_for(size_t params) { return gix(static_cast<uint8_t>(params), 10); }

Exchange packets(size_t sent, size_t received, bool encrypted) {
    const std::string request = "TLR" + std::string(sent - 3, 'A');
    const std::string answer = "TLR" + std::string(received - 3, 'B');
    return {.name = "packets",
            .traffic = traffic(request, answer, encrypted),
            .run =
                [=](Link& link) {
                    abecs_packet_clear(link.packet);
                    abecs_packet_write_field_b(link.packet, request.data(), request.size());
                    abecs_comm_send_packet(link.comm, link.packet);
                    abecs_comm_read_packet(link.comm, link.packet);
                    return abecs_packet_available_read(link.packet) == received;
                },
            .encrypted = encrypted};
}

std::string name_of(Way way) {
    static constexpr std::array kNames{
        wire::Named{"library", Way::kLibrary},
        wire::Named{"library, whole frames", Way::kLibraryWholeFrames},
        wire::Named{"loop: bytes, each drained", Way::kBytesDrained},
        wire::Named{"loop: bytes, drained once, bulk reads", Way::kBytesDrainedOnce},
        wire::Named{"loop: whole frames, no checks", Way::kWholeFrames},
    };
    return std::string(wire::name_among(kNames, way));
}

Run open(const Exchange& exchange, Way way, const std::shared_ptr<FarEnd>& far, size_t line) {
    if (way != Way::kLibrary && way != Way::kLibraryWholeFrames) {
        auto port = std::make_shared<Port>(far, line);
        return [=, traffic = exchange.traffic] { exchange_by_loop(way, port->fd, traffic); };
    }
    auto link = std::make_shared<Link>(far, line, way == Way::kLibraryWholeFrames, exchange.encrypted);
    return [link, exchange] {
        if (!exchange.run(*link)) { give_up(exchange.name + " by the library"); }
    };
}

}  // namespace quorvel::bench
