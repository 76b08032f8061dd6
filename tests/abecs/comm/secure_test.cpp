// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <array>
#include <tuple>

#include "quorvel/kor/exception.h"
#include "tests/abecs/comm/line.h"

namespace {

using namespace support;

// Session key 00 01 .. 0F; the enciphered bytes and frame CRCs come from the openssl program.
constexpr std::array<uint8_t, 16> kKey{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};

class SecureChannel : public OnLink {
protected:
    SecureChannel() { abecs_comm_set_key(link.comm, kKey.data()); }

    std::string deciphered(const std::string& response) {
        link.peer.send(response);
        return receive();
    }
};

// With four bytes of padding, one, and a whole block. Each packet begins a chain of its own, and a repetition is the
// same bytes.
TEST_F(SecureChannel, EnciphersCommandsWithTheirPadding) {
    const std::tuple<std::string, std::string, uint16_t> rows[] = {
        {"GIN00200", "B77D14F3 6CF7E650 2B922EE6 C135B0F1"_hex, 0x21B9},
        {"ABC12345678", "ED0EA0F9 0A717D0E 624AAF95 1BC1315F"_hex, 0x5A66},
        {"GIX006" + "0001 0002 8001"_hex, "939936B4 25C89CCC 88D75E3B B37AAF5D 7537EAE4 B0420730 AF4DD001 5000228C"_hex,
         0x8162},
    };
    for (const auto& [plain, cryptogram, crc] : rows) {
        const std::string sealed = encrypted_frame(cryptogram, crc);
        link.peer.expect(sealed).send(kNak).expect(sealed).send(kAck).expect(sealed).send(kAck);
        packet.fill(plain);
        for (int i = 0; i < 2; ++i) {
            EXPECT_NO_RAISE(abecs_comm_send_packet(link.comm, packet));
            EXPECT_EQ(abecs_packet_available_read(packet), plain.size()) << "what goes enciphered is not consumed";
        }
    }
}

// Of the enciphered bytes 19 are escaped.
TEST_F(SecureChannel, EnciphersCommandsOfUpTo2027Bytes) {
    const std::string longest = "ABC" + std::string(2024, 'x');
    std::string sent;
    link.peer.reply(2 + 2032 + 19 + 3, [&](const std::string& bytes) { return sent = bytes, kAck; });
    packet.fill(longest);
    EXPECT_NO_RAISE(abecs_comm_send_packet(link.comm, packet));
    link.peer.settle();
    EXPECT_EQ(to_hex(sent.substr(0, 18)), to_hex("16 12 E52FAE0D99440AB974E95058CEA3DF2E"_hex));
    EXPECT_EQ(to_hex(sent.substr(sent.size() - 3)), "17 81 9D");
    for (const size_t more : {1U, 17U}) {
        const std::string plain = longest + std::string(more, 'x');
        packet.fill(plain);
        EXPECT_EQ(raised_by_sending(link, packet), too_full(1, 0));
        EXPECT_EQ(packet.take(), plain) << "what could not be enciphered is left as it was";
    }
}

TEST_F(SecureChannel, OpnTravelsPlainAndClosingEndsTheSession) {
    const std::string sealed =
        "4D1068AD97E8779FA16448D2AC874E180E28D1EC5B2E1FCFB0CFD97D515D4D6A8A5F29DD8F163C42EB133280197F8098"_hex;
    link.peer.request("OPN").expect(encrypted_frame(sealed)).send(kAck).request("GIN00200");
    packet.fill("OPN");
    EXPECT_NO_RAISE(abecs_comm_send_packet(link.comm, packet));
    EXPECT_TRUE(link.comm->keySet);
    packet.fill("CLO032BYE                             ");
    EXPECT_NO_RAISE(abecs_comm_send_packet(link.comm, packet));
    EXPECT_FALSE(link.comm->keySet);
    EXPECT_EQ(link.comm->key, (std::array<uint8_t, 16>{}));
    packet.fill("GIN00200");
    EXPECT_NO_RAISE(abecs_comm_send_packet(link.comm, packet));
}

TEST_F(SecureChannel, DeciphersResponses) {
    EXPECT_EQ(deciphered(
                  encrypted_frame("D8E9CE990FD5E9A8E012873B064CE4DDA6CA21DAC4C3356C97B3C8D4994A2E557106902CDF4E6128F65E"
                                  "6BE8FD945F4881B73CCE84791E70468A18F71A6EF46E"_hex,
                                  0x93D3)),
              "GIN000042ACQUIRER            BBBBBBBBBBBB CCC DD 99");
    EXPECT_EQ(deciphered(encrypted_frame("ECE1BDBDAB797287876EFD4C4B271F6989809C087A55368FC0496B8F6672AAF6"_hex)),
              "GIN011")
        << "more padding than needed";
    EXPECT_EQ(deciphered(encrypted_frame("C6A13B37878F5B826F4F8162A1C8D879"_hex)), "") << "no data at all";
    EXPECT_EQ(deciphered(frame("GIN011")), "GIN011") << "a plain response is taken in a session too";
}

TEST_F(SecureChannel, WithoutAKeyAnEncipheredResponseStaysAsItIs) {
    abecs_comm_set_key(link.comm, nullptr);
    const std::string sealed = "ECE1BDBDAB797287876EFD4C4B271F69"_hex;
    EXPECT_EQ(deciphered(encrypted_frame(sealed)), sealed);
    link.peer.send(encrypted_frame(sealed + "x"));
    EXPECT_RAISES(kProtocol, "Malformed encrypted response", abecs_comm_read_packet(link.comm, packet));
}

TEST_F(SecureChannel, RefusesMalformedResponses) {
    const std::pair<std::string, const char*> rows[] = {
        {std::string(17, 'x'), "Malformed encrypted response"},
        {"D76D38BAEDAED7D0A45863653A41240F"_hex, "Malformed encrypted response (caused by Invalid DATACRC)"},
        {"661AE9A4157DFC6E9827498BD2ACA169"_hex,
         "Malformed encrypted response (caused by Encrypted packet is not complete)"},
        {"", "Malformed encrypted response (caused by [KOR_RESULT_ILLEGAL_ARGUMENT] 'len' is zero)"},
    };
    for (const auto& [sealed, detail] : rows) {
        link.peer.send(encrypted_frame(sealed));
        EXPECT_RAISES(kProtocol, detail, abecs_comm_read_packet(link.comm, packet));
        EXPECT_EQ(kor_exception_get_frame_node(), nullptr);
    }
}

}  // namespace
