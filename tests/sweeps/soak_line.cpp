// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <random>

#include "quorvel/quorvel.h"
#include "tests/support/memory/line.h"
#include "tests/support/memory/pad.h"
#include "tests/support/wire.h"
#include "tests/sweeps/soak.h"

namespace {

constexpr long kExchanges = 1'000'000;
constexpr long kOpenings = 100'000;
constexpr long kFirst = 1000;

// A fixed seed: what fails once fails again.
std::mt19937 chance(20260101);

// One in so many.
bool once_in(unsigned count) { return chance() % count == 0; }

bool does(void (*step)(AbecsComm** link), AbecsComm** link) {
    volatile bool done = false;
    KOR_TRY {
        step(link);
        done = true;
    }
    KOR_CATCH(KOR_RESULT_OK) {}
    KOR_END_TRY;
    return done;
}

void open(AbecsComm** link) { *link = abecs_comm_open(memory::kPath); }

void ask(AbecsComm** link) {
    AbecsCmdGinOut out;
    if (abecs_cmd_gin(*link, 2, &out) != ABECS_RSP_STAT_ST_OK || out.idx02.number != 7) {
        kor_exception_throw(KOR_RESULT_RUNTIME_ERROR, "another answer");
    }
}

}  // namespace

int main() {
    memory::Line line;
    memory::Pad pad(line);
    const std::string answer = support::frame("GIN000042AAAAAAA BBBBBBBBBBB CCCCCCCCCCCC DDD EE 07");
    long refused = 0;
    long damaged = 0;
    long hungUp = 0;
    pad.refuses = [&] { return once_in(20) && ++refused != 0; };
    pad.noise = [&](std::string wire) {
        if (once_in(100)) { wire[chance() % wire.size()] ^= 1, ++damaged; }
        return wire;
    };
    AbecsComm* link = nullptr;
    if (!does(open, &link)) { fail("no link", 0); }
    Held early;
    long failed = 0;
    for (long round = 1; round <= kExchanges; ++round) {
        pad.answer({answer});
        if (once_in(1000)) { line.hang_up_after(chance() % 60), ++hungUp; }
        if (!does(ask, &link)) {
            // A noisy line may fail three times; then CAN, or a new link where the old one is dead.
            ++failed;
            const bool dead = line.hung_up();
            line.heal();
            if (dead) { does(abecs_comm_close, &link), does(open, &link); }
            if (link == nullptr || !does([](AbecsComm** each) { abecs_comm_send_can(*each); }, &link)) {
                fail("the link does not come back", round);
            }
        }
        line.heal();
        if (round == kFirst) { early = Held(); }
    }
    compare("exchanges", kExchanges, early, Held());
    std::printf("  of which %ld frames refused, %ld damaged, %ld hang-ups; %ld calls raised\n", refused, damaged,
                hungUp, failed);
    does(abecs_comm_close, &link);
    for (long round = 1; round <= kOpenings; ++round) {
        if (!does(open, &link) || !does(abecs_comm_close, &link)) { fail("opening", round); }
        if (round == kFirst) { early = Held(); }
    }
    compare("openings", kOpenings, early, Held());
    if (line.open_descriptors() != 0) { fail("a port is still open", kOpenings); }
    return 0;
}
