/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */

/*
 * Shows a text on the PIN pad and tells of each frame what crosses the line: no data.
 *
 *     log_frames /dev/ttyACM0
 */

#include <stdio.h>
#include <stdlib.h>

#include "quorvel/additions.h"
#include "quorvel/quorvel.h"

static void log_event(const AbecsLinkEvent* event, void* context) {
    static const char* const NAMES[] = {"sent", "received", "rejected", "damaged", "cancelled", "timed out"};
    FILE* out = context;
    fprintf(out, "%-9s %3s %s%zu bytes, %lld us", NAMES[event->type], event->cmdId,
            event->encrypted ? "encrypted, " : "", event->packetSize, (long long)event->duration);
    if (event->type == ABECS_LINK_EVENT_RECEIVED) { fprintf(out, ", status %d", (int)event->status); }
    fputc('\n', out);
}

/* The first status that is not OK. */
static int32_t show(AbecsComm* pinpad) {
    int32_t status = abecs_cmd_opn(pinpad, false);
    if (status == ABECS_RSP_STAT_ST_OK) { status = abecs_cmd_dsp(pinpad, "GOOD MORNING"); }
    if (status == ABECS_RSP_STAT_ST_OK) { status = abecs_cmd_clo(pinpad, NULL); }
    return status;
}

static void run(const char* port) {
    AbecsComm* volatile pinpad = NULL;
    KOR_TRY {
        pinpad = abecs_comm_open(port);
        abecs_comm_set_observer(pinpad, log_event, stdout);
        printf("%s\n", abecs_rsp_stat_to_string((AbecsRspStat_E)show(pinpad)));
    }
    KOR_CLEANUP {
        AbecsComm* link = pinpad;
        abecs_comm_close(&link);
    }
    KOR_END_TRY;
}

int main(int argc, char** argv) {
    volatile int result = EXIT_FAILURE;
    if (argc != 2) {
        fprintf(stderr, "usage: %s PORT\n", argv[0]);
        return result;
    }
    KOR_TRY {
        run(argv[1]);
        result = EXIT_SUCCESS;
    }
    KOR_CATCH(KOR_RESULT_OK) { fprintf(stderr, "%s\n", kor_exception_get_message()); }
    KOR_END_TRY;
    return result;
}
