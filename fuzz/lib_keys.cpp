// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <cstring>

#include "fuzz/link.h"
#include "quorvel/crypt/rsa.h"
#include "tests/support/wire.h"

using namespace quorvel::fuzz;

// The deciphered blocks of OPN and DWK2: what RSA would have made of the cryptogram is the cryptogram itself.
extern "C" {
size_t __wrap_crypt_rsa_private_exp(const CryptRsaKey* key, const uint8_t* in, size_t inLen, uint8_t* out,
                                    size_t outLen);
}

size_t __wrap_crypt_rsa_private_exp(const CryptRsaKey*, const uint8_t* in, size_t inLen, uint8_t* out, size_t) {
    std::memmove(out, in, inLen);
    return inLen;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Ends ends;
    Input input(data, size);
    const uint8_t how = input.byte();
    const bool session = (how & 1) != 0;
    std::string block = input.rest();
    // Of the right size, unless the input says otherwise; filled in the middle, where neither begin nor end is lost.
    const size_t whole = session ? 256 : 128;
    if ((how & 2) == 0) {
        const std::string end = block.substr(block.size() / 2, whole);
        block.resize(std::min(block.size() / 2, whole - end.size()));
        block = block + std::string(whole - block.size() - end.size(), '\x5A') + end;
    }
    std::string digits = support::to_hex(block);
    std::erase(digits, ' ');
    ends.pad.answer({support::frame((session ? "OPN000515256" : "DWK000256") + digits)});
    AbecsWkPan key;
    int32_t status = 0;
    const support::Raised raised = raised_by(
        [&] { status = session ? abecs_cmd_opn(ends.link, true) : abecs_cmd_dwk2(ends.link, &key, true); }, [] {});
    require(raised.code != KOR_RESULT_OK || status == ABECS_RSP_STAT_ST_OK, "it is a key or an error");
    ends.line.heal();
    abecs_comm_set_key(ends.link, nullptr);
    return 0;
}
