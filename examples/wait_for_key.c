/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */

/*
 * Waits a number of seconds for a key of the PIN pad, and gives up then:
 *
 *     wait_for_key /dev/ttyACM0 30
 */

#include <stdio.h>
#include <stdlib.h>

#include "quorvel/quorvel.h"

/* The status of GKY, which tells the key; ABECS_RSP_STAT_ST_TIMEOUT when none was pressed for so long. */
static int32_t wait_for_key(AbecsComm* pinpad, int seconds) {
    const int64_t deadline = kor_system_current_time_millis() + INT64_C(1000) * seconds;
    char notice[33] = "";
    abecs_cmd_gky(pinpad);
    for (;;) {
        const int32_t status = abecs_cmd_gky_response(pinpad, notice);
        if (status == ABECS_RSP_STAT_ST_NOTIFICATION) {
            printf("the PIN pad says: %s\n", notice);
        } else if (status != ABECS_RSP_STAT_ST_PROCESSING) {
            return status;
        }
        if (kor_system_current_time_millis() >= deadline) {
            abecs_comm_send_can(pinpad);
            return ABECS_RSP_STAT_ST_TIMEOUT;
        }
    }
}

/* The first status that is not OK, or the key's. */
static int32_t ask(AbecsComm* pinpad, int seconds) {
    int32_t status = abecs_cmd_opn(pinpad, false);
    if (status == ABECS_RSP_STAT_ST_OK) { status = abecs_cmd_dsp(pinpad, "PRESS A KEY"); }
    if (status == ABECS_RSP_STAT_ST_OK) { status = wait_for_key(pinpad, seconds); }
    abecs_cmd_clo(pinpad, NULL);
    return status;
}

static void run(const char* port, int seconds) {
    AbecsComm* volatile pinpad = NULL;
    KOR_TRY {
        pinpad = abecs_comm_open(port);
        printf("%s\n", abecs_rsp_stat_to_string((AbecsRspStat_E)ask(pinpad, seconds)));
    }
    KOR_CLEANUP {
        AbecsComm* link = pinpad;
        abecs_comm_close(&link);
    }
    KOR_END_TRY;
}

int main(int argc, char** argv) {
    volatile int result = EXIT_FAILURE;
    if (argc != 3) {
        fprintf(stderr, "usage: %s PORT SECONDS\n", argv[0]);
        return result;
    }
    KOR_TRY {
        run(argv[1], atoi(argv[2]));
        result = EXIT_SUCCESS;
    }
    KOR_CATCH(KOR_RESULT_OK) { fprintf(stderr, "%s\n", kor_exception_get_message()); }
    KOR_END_TRY;
    return result;
}
