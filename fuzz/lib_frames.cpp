// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "fuzz/link.h"
#include "quorvel/abecs/packet.h"

using namespace quorvel::fuzz;

// Bytes on the line as they are: the first one says whether the link is in a session and how much of a read there is.
int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const uint8_t how = input.byte();
    Ends ends;
    constexpr uint8_t kKey[16]{};
    if ((how & 1) != 0) { abecs_comm_set_key(ends.link, kKey); }
    if ((how & 2) != 0) { abecs_comm_set_limit(ends.link, 1 + how); }
    ends.line.send_in_bytes((how & 4) != 0);
    AbecsPacket* packet = abecs_packet_new();
    while (!input.empty()) {
        ends.pad.answer({input.text()});
        ends.pad.speak();
        const memory::Time start = ends.line.now();
        raised_by([&] { abecs_comm_read_packet(ends.link, packet); }, [] {});
        require(ends.line.now() - start < std::chrono::seconds(120), "a read ends");
    }
    ends.line.heal();
    support::raised_by([&] { abecs_comm_set_limit(ends.link, 0); });
    require(support::raised_by([&] { abecs_comm_send_can(ends.link); }) == support::Raised{}, "CAN is confirmed");
    abecs_packet_delete(&packet);
    return 0;
}
