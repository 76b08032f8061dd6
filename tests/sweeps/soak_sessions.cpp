// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/quorvel.h"
#include "tests/sweeps/soak.h"

namespace {

constexpr long kSessions = 1000;
constexpr long kFirst = 100;

// A secure session from its first command to its last.
void talk(AbecsComm* link) {
    AbecsCmdGinOut out;
    if (abecs_cmd_opn(link, true) != ABECS_RSP_STAT_ST_OK || abecs_cmd_gin(link, 0, &out) != ABECS_RSP_STAT_ST_OK
        || abecs_cmd_clo(link, "BYE") != ABECS_RSP_STAT_ST_OK) {
        kor_exception_throw(KOR_RESULT_RUNTIME_ERROR, "refused");
    }
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) { return std::fputs("usage: soak_sessions PORT\n", stderr), 2; }
    AbecsComm* link = nullptr;
    Held early;
    Held late;
    KOR_TRY {
        link = abecs_comm_open(arguments[1]);
        for (long round = 1; round <= kSessions; ++round) {
            talk(link);
            if (round == kFirst) { early = Held(); }
        }
        late = Held();
    }
    KOR_CATCH(KOR_RESULT_OK) { fail("a session", kSessions); }
    KOR_END_TRY;
    compare("sessions", kSessions, early, late);
    abecs_comm_close(&link);
    return 0;
}
