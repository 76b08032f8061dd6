// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <cerrno>

#include "fuzz/link.h"
#include "tests/sweeps/rig.h"

using namespace quorvel::fuzz;

namespace {

constexpr int kFaults[]{EIO, EINTR, EAGAIN, ENODEV, memory::kShort};

// One call, of which any may raise at any time.
void call(Input& input, Ends& ends, support::CommandWorld& world) {
    const uint8_t what = input.byte();
    const uint8_t more = input.byte();
    switch (what % 16) {
        case 0:
            return abecs_comm_send_can(ends.link);
        case 1:
            return abecs_comm_set_limit(ends.link, 10 * more);
        case 2:
            return abecs_comm_set_whole_frames(ends.link, (more & 1) != 0);
        case 3:
            return abecs_comm_set_key(
                ends.link, (more & 1) != 0 ? reinterpret_cast<const uint8_t*>(sweeps::kSession.data()) : nullptr);
        case 4:
            return abecs_comm_release(ends.link);
        case 5:
            return abecs_comm_set_poll_time(ends.link, more);
        case 6:
            return abecs_comm_set_send_interval(ends.link, more);
        case 7:
            return ends.line.fail(1 + more / 5U, kFaults[more % 5]);
        case 8:
            return ends.pad.speak();
        case 9: {
            const AbecsWkPan key{ABECS_WK_PAN_TYPE_TDES, {more}};
            return abecs_comm_set_wk_pan(ends.link, (more & 1) != 0 ? &key : nullptr);
        }
        default: {
            const sweeps::Command& command = sweeps::commands()[more % sweeps::commands().size()];
            if (!command.takesLong) { command.act(world); }
        }
    }
}

}  // namespace

// A program that calls this and that, with what the PIN pad says in between: its answers come first in the input.
int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    Ends ends;
    support::CommandWorld world(ends.link, "/dev/null");
    std::vector<std::string> answers;
    for (size_t count = input.byte() % 8; count != 0; --count) {
        const std::string answer = input.text();
        answers.push_back((answer.size() & 1) != 0 ? answer : support::frame(answer));
    }
    ends.pad.answer(answers);
    for (int left = 64; left != 0 && !input.empty(); --left) {
        const memory::Time start = ends.line.now();
        raised_by([&] { call(input, ends, world); },
                  [&] {
                      kor_map_clear(world.params);
                      kor_list_clear(world.list);
                  });
        require(ends.line.now() - start < std::chrono::minutes(3), "a call ends");
    }
    return 0;
}
