// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "fuzz/harness.h"
#include "fuzz/link.h"
#include "tests/sweeps/rig.h"

using namespace quorvel::fuzz;

namespace {

bool any(const sweeps::Outcome&, const sweeps::Outcome&) { return true; }

}  // namespace

// One command of all, and what the PIN pad answers, under a right check. The second byte says whether it is in a
// session, the raise returns, and the frames go out whole.
int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static sweeps::Rig rig;
    Input input(data, size);
    const sweeps::Command& command = sweeps::commands()[input.byte() % sweeps::commands().size()];
    const uint8_t how = input.byte();
    if (command.takesLong || command.answers.empty()) { return 0; }
    // These end the session, and are answered in clear.
    const bool closes = std::string_view(command.name).starts_with("abecs_cmd_cl");
    rig.key = (how & 1) != 0 && !closes ? reinterpret_cast<const uint8_t*>(sweeps::kSession.data()) : nullptr;
    rig.begin(command, (how & 2) != 0);
    sweeps::Rig::Wire wire;
    for (size_t left = command.answers.size(); left != 0; --left) {
        const std::string answer = left == 1 ? input.rest() : input.text();
        wire.push_back(rig.key != nullptr ? sweeps::sealed(sweeps::content_of(answer)) : support::frame(answer));
    }
    rig.say(wire);
    rig.most = std::chrono::seconds(120);
    require(rig.run((how & 4) != 0 ? support::Raise::kReturns : support::Raise::kCaught, "fuzzed", any),
            "the call leaves nothing behind and the link goes on");
    return 0;
}
