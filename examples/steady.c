/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */

/*
 * Shows a text on the PIN pad, and tries again when the line or the PIN pad fails; while the cable is out, for as long
 * as that takes:
 *
 *     steady /dev/ttyACM0 "CLOSED TODAY"
 */

#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>

#include "quorvel/quorvel.h"

#define PAUSE 500 /* milliseconds from one look for the port to the next */

typedef struct Till {
    const char* port;
    AbecsComm* pinpad;
    bool session; /* on this link */
} Till;

static void require_ok(int32_t status) {
    if (status == ABECS_RSP_STAT_ST_OK) { return; }
    kor_exception_fthrow(KOR_RESULT_RUNTIME_ERROR, "the PIN pad answers %s",
                         abecs_rsp_stat_to_string((AbecsRspStat_E)status));
}

static void connect(Till* till) {
    if (till->pinpad == NULL) { till->pinpad = abecs_comm_open(till->port); }
    if (till->session) { return; }
    require_ok(abecs_cmd_opn(till->pinpad, false));
    till->session = true;
}

/* A link that cannot even be closed in order is gone all the same. */
static void disconnect(Till* till) {
    KOR_TRY { abecs_comm_close(&till->pinpad); }
    KOR_CATCH(KOR_RESULT_OK) {}
    KOR_END_TRY;
    till->session = false;
}

/*
 * After an error the PIN pad may still be at work, and its answer may still come. CAN ends both, and the session
 * goes on; when nobody confirms it, only a new link helps.
 */
static void make_ready(Till* till) {
    volatile bool ready = false;
    KOR_TRY {
        abecs_comm_send_can(till->pinpad);
        ready = true;
    }
    KOR_CATCH(KOR_RESULT_OK) {}
    KOR_END_TRY;
    if (!ready) { disconnect(till); }
}

static bool try_to_show(Till* till, const char* text) {
    volatile bool shown = false;
    KOR_TRY {
        connect(till);
        require_ok(abecs_cmd_dsp(till->pinpad, text));
        shown = true;
    }
    KOR_CATCH(KOR_RESULT_OK) { fprintf(stderr, "%s\n", kor_exception_get_message()); }
    KOR_END_TRY;
    return shown;
}

/* Closing the session leaves a text on the display. */
static void finish(Till* till, const char* text) {
    KOR_TRY {
        if (till->session) { require_ok(abecs_cmd_clo(till->pinpad, text)); }
    }
    KOR_CATCH(KOR_RESULT_OK) { fprintf(stderr, "%s\n", kor_exception_get_message()); }
    KOR_END_TRY;
    disconnect(till);
}

int main(int argc, char** argv) {
    if (argc != 3) {
        fprintf(stderr, "usage: %s PORT TEXT\n", argv[0]);
        return EXIT_FAILURE;
    }
    Till till = {argv[1], NULL, false};
    bool shown = try_to_show(&till, argv[2]);
    for (int tries = 2; !shown && tries != 0;) {
        const bool opened = till.pinpad != NULL;
        make_ready(&till);
        /* Nobody was there to refuse anything: that is no try. */
        if (opened) {
            --tries;
        } else {
            kor_thread_sleep(PAUSE);
        }
        shown = try_to_show(&till, argv[2]);
    }
    finish(&till, shown ? argv[2] : NULL);
    return shown ? EXIT_SUCCESS : EXIT_FAILURE;
}
