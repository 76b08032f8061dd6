// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "fuzz/link.h"
#include "quorvel/abecs/packet.h"
#include "tests/sweeps/rig.h"

using namespace quorvel::fuzz;

// What an enciphered answer holds: with its right length and check, or as it is.
int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Ends ends;
    static AbecsPacket* packet = abecs_packet_new();
    Input input(data, size);
    const bool whole = (input.byte() & 1) != 0;
    std::string content = input.rest();
    if (whole) { content = sweeps::content_of(content); }
    content.resize((content.size() + 15) / 16 * 16);
    abecs_comm_set_key(ends.link, reinterpret_cast<const uint8_t*>(sweeps::kSession.data()));
    ends.pad.answer({sweeps::sealed(content)});
    ends.pad.speak();
    const support::Raised raised = raised_by([&] { abecs_comm_read_packet(ends.link, packet); }, [] {});
    const size_t length = abecs_packet_available_read(packet);
    require(raised.code != KOR_RESULT_OK || length + 4 <= content.size(), "no more than there was");
    require(!whole || size > 2000 || raised.code == KOR_RESULT_OK, "what is right is read");
    ends.line.heal();
    return 0;
}
