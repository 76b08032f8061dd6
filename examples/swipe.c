/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */

/*
 * Takes a magnetic card and its PIN, and shows what may be seen of them: the masked number and the PIN block.
 *
 *     swipe /dev/ttyACM0
 */

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "quorvel/quorvel.h"

/* All that is secret in one place, so that one call wipes it. */
typedef struct Sale {
    AbecsWkPan key;
    AbecsCmdCkeOut event;
    char pan[20];
    AbecsCmdGpnCmdData request;
    AbecsCmdGpnRspData pin;
} Sale;

/* Through a volatile pointer, because a compiler may leave out what it thinks nobody reads. */
static void wipe(void* secret, size_t size) {
    volatile unsigned char* bytes = secret;
    while (size-- != 0) { *bytes++ = 0; }
}

static void require_ok(const char* command, int32_t status) {
    if (status == ABECS_RSP_STAT_ST_OK) { return; }
    kor_exception_fthrow(KOR_RESULT_RUNTIME_ERROR, "%s was answered with %s", command,
                         abecs_rsp_stat_to_string((AbecsRspStat_E)status));
}

/* The tracks come under the working key on the line, and in clear out of the library. */
static void take_card(AbecsComm* pinpad, Sale* sale) {
    int32_t status = abecs_cmd_dwk2(pinpad, &sale->key, true);
    require_ok("DWK", status);
    abecs_cmd_cke(pinpad, false, true, ABECS_CMD_CKE_ICC_CHECK_TYPE_0, ABECS_CMD_CKE_CTLS_CHECK_TYPE_NOT_SENT);
    do { status = abecs_cmd_cke_response(pinpad, &sale->event, NULL); } while (status < ABECS_RSP_STAT_ST_OK);
    require_ok("CKE", status);
    snprintf(sale->pan, sizeof sale->pan, "%s", abecs_pan_identify(sale->event.track2));
    abecs_pan_identify(""); /* the text it returned is its own, and stays until the next call */
}

/* A PIN pad that has the working key takes card numbers in protected form, too. */
static void take_pin(AbecsComm* pinpad, Sale* sale) {
    sale->request.method = ABECS_CMD_GPN_METHOD_DUKPT_TDES;
    sale->request.entryCount = 1;
    sale->request.entries[0] = (AbecsCmdGpnEntry){4, 12, "ENTER YOUR PIN"};
    snprintf(sale->request.pan, sizeof sale->request.pan, "%s", abecs_pan_encrypt(sale->pan, &sale->key));
    int32_t status = ABECS_RSP_STAT_ST_PROCESSING;
    abecs_cmd_gpn(pinpad, &sale->request);
    do { status = abecs_cmd_gpn_response(pinpad, &sale->pin, NULL); } while (status < ABECS_RSP_STAT_ST_OK);
    require_ok("GPN", status);
}

static void print(const Sale* sale) {
    const size_t length = strlen(sale->pan);
    if (length < 10) { return; }
    printf("card       %.6s...%s\n", sale->pan, sale->pan + length - 4);
    printf("PIN block  %s, key %s\n", sale->pin.pinBlk, sale->pin.ksn);
}

static void run(const char* port) {
    Sale sale = {0};
    AbecsComm* volatile pinpad = NULL;
    KOR_TRY {
        pinpad = abecs_comm_open(port);
        require_ok("OPN", abecs_cmd_opn(pinpad, true));
        take_card(pinpad, &sale);
        take_pin(pinpad, &sale);
        print(&sale);
        require_ok("CLO", abecs_cmd_clo(pinpad, NULL));
    }
    KOR_CLEANUP {
        wipe(&sale, sizeof sale);
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
