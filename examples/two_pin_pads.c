/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */

/*
 * Serves two PIN pads from one thread: asks for a key at both, tells each key as it is pressed, and ends with the
 * second:
 *
 *     two_pin_pads /dev/ttyACM0 /dev/ttyACM1
 */

#include <poll.h>
#include <stdio.h>
#include <stdlib.h>

#include "quorvel/additions.h"
#include "quorvel/quorvel.h"

enum { LANES = 2, PATIENCE_MS = 60000 };

typedef struct Lane {
    const char* port;
    AbecsComm* pinpad;
    bool waiting; /* for a key */
} Lane;

static void require_ok(const char* command, int32_t status) {
    if (status == ABECS_RSP_STAT_ST_OK) { return; }
    kor_exception_fthrow(KOR_RESULT_RUNTIME_ERROR, "%s was answered with %s", command,
                         abecs_rsp_stat_to_string((AbecsRspStat_E)status));
}

static void begin(Lane* lane) {
    lane->pinpad = abecs_comm_claim(lane->port);
    require_ok("OPN", abecs_cmd_opn(lane->pinpad, false));
    require_ok("DSP", abecs_cmd_dsp(lane->pinpad, "PRESS A KEY"));
    abecs_comm_set_poll_time(lane->pinpad, 0);
    abecs_cmd_gky(lane->pinpad);
    lane->waiting = true;
}

/* Takes what has come; there may be nothing yet, or a notice that this program does not show. */
static void serve(Lane* lane) {
    const int32_t status = abecs_cmd_gky_response(lane->pinpad, NULL);
    if (status == ABECS_RSP_STAT_ST_PROCESSING || status == ABECS_RSP_STAT_ST_NOTIFICATION) { return; }
    printf("%s: %s\n", lane->port, abecs_rsp_stat_to_string((AbecsRspStat_E)status));
    lane->waiting = false;
    require_ok("CLO", abecs_cmd_clo(lane->pinpad, "THANK YOU"));
}

/* Until both are served. What a link has read already does not make its descriptor readable. */
static void loop(Lane* lanes) {
    while (lanes[0].waiting || lanes[1].waiting) {
        struct pollfd descriptors[LANES];
        int wait = PATIENCE_MS;
        for (int i = 0; i < LANES; ++i) {
            descriptors[i].fd = lanes[i].waiting ? abecs_comm_get_fd(lanes[i].pinpad) : -1;
            descriptors[i].events = POLLIN;
            if (lanes[i].waiting && abecs_comm_has_input(lanes[i].pinpad)) { wait = 0; }
        }
        if (poll(descriptors, LANES, wait) == 0 && wait != 0) {
            kor_exception_throw(KOR_RESULT_TIMEOUT_ERROR, "nobody has pressed a key");
        }
        for (int i = 0; i < LANES; ++i) {
            if (lanes[i].waiting) { serve(&lanes[i]); }
        }
    }
}

/* The PIN pad is left idle if it can be reached, and the port is closed in any case. */
static void end(Lane* lane) {
    KOR_TRY {
        if (lane->waiting) { abecs_comm_send_can(lane->pinpad); }
    }
    KOR_CATCH(KOR_RESULT_OK) { fprintf(stderr, "%s: %s\n", lane->port, kor_exception_get_message()); }
    KOR_CLEANUP { abecs_comm_close(&lane->pinpad); }
    KOR_END_TRY;
}

int main(int argc, char** argv) {
    static Lane lanes[LANES];
    volatile int result = EXIT_FAILURE;
    if (argc != 1 + LANES) {
        fprintf(stderr, "usage: %s PORT PORT\n", argv[0]);
        return result;
    }
    KOR_TRY {
        KOR_TRY {
            for (int i = 0; i < LANES; ++i) {
                lanes[i].port = argv[1 + i];
                begin(&lanes[i]);
            }
            loop(lanes);
            result = EXIT_SUCCESS;
        }
        KOR_CLEANUP {
            for (int i = 0; i < LANES; ++i) { end(&lanes[i]); }
        }
        KOR_END_TRY;
    }
    KOR_CATCH(KOR_RESULT_OK) { fprintf(stderr, "%s\n", kor_exception_get_message()); }
    KOR_END_TRY;
    return result;
}
