/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */

/*
 * Asks a PIN pad who it is, in a plain session and in an encrypted one:
 *
 *     first_light /dev/ttyACM0
 *
 * Every function of the library raises its errors. Each function here lets them pass, after it has released what it
 * holds; main catches whatever arrives.
 */

#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>

#include "quorvel/quorvel.h"

static const int32_t wanted[] = {
    ABECS_CMD_GIX_ID_PP_SERNUM,    ABECS_CMD_GIX_ID_PP_PARTNBR, ABECS_CMD_GIX_ID_PP_MODEL,
    ABECS_CMD_GIX_ID_PP_MNNAME,    ABECS_CMD_GIX_ID_PP_CAPAB,   ABECS_CMD_GIX_ID_PP_SOVER,
    ABECS_CMD_GIX_ID_PP_SPECVER,   ABECS_CMD_GIX_ID_PP_MANVERS, ABECS_CMD_GIX_ID_PP_APPVERS,
    ABECS_CMD_GIX_ID_PP_KSNTDESP0,
};
static const size_t wanted_count = sizeof wanted / sizeof wanted[0];

/* A status is a result, not an error of the library; this program can do nothing with any but OK. */
static void require_ok(const char* command, int32_t status) {
    if (status == ABECS_RSP_STAT_ST_OK) { return; }
    kor_exception_fthrow(KOR_RESULT_RUNTIME_ERROR, "%s was answered with %s", command,
                         abecs_rsp_stat_to_string(status));
}

static void print_identification(AbecsComm* pinpad) {
    AbecsCmdGinOut gin;
    require_ok("GIN", abecs_cmd_gin(pinpad, 0, &gin));
    printf("manufacturer   %s\n", gin.idx00.mnName);
    printf("model          %s %s\n", gin.idx00.model, gin.idx00.modelDetail);
    printf("contactless    %s\n", gin.idx00.ctlsSup ? "yes" : "no");
    printf("system         %s\n", gin.idx00.soVer);
    printf("specification  %s\n", gin.idx00.specVer);
    printf("version        %s\n", gin.idx00.manVers);
    printf("serial number  %s\n", gin.idx00.serNum);
}

static void print_item(int32_t id, const AbecsRspParamValue* value) {
    printf("%-31s ", abecs_rsp_dat_id_to_string((AbecsRspDatId_E)id));
    if (value == NULL) {
        printf("-\n");
    } else if (abecs_rsp_dat_id_is_binary((AbecsRspDatId_E)id)) {
        for (uint32_t i = 0; i < value->size; ++i) { printf("%02X", value->data[i]); }
        printf("\n");
    } else {
        /* A value has a length and no terminator. */
        printf("%.*s\n", (int)value->size, (const char*)value->data);
    }
}

static void print_items(AbecsComm* pinpad) {
    /* Volatile: set inside the block and read after an error may have jumped out of it. */
    AbecsRspParamMap* volatile items = NULL;
    KOR_TRY {
        items = abecs_rsp_param_map_new();
        require_ok("GIX", abecs_cmd_gix(pinpad, wanted, wanted_count, items));
        for (size_t i = 0; i < wanted_count; ++i) {
            print_item(wanted[i], abecs_rsp_param_map_get(items, (uint16_t)wanted[i]));
        }
    }
    KOR_CLEANUP {
        AbecsRspParamMap* map = items;
        kor_map_delete(&map);
    }
    KOR_END_TRY;
}

/* An error leaves the session open; closing the link ends it on this side, and the next OPN on the other. */
static void print_in_session(AbecsComm* pinpad, bool secure) {
    printf("-- %s session\n", secure ? "encrypted" : "plain");
    require_ok("OPN", abecs_cmd_opn(pinpad, secure));
    print_identification(pinpad);
    print_items(pinpad);
    require_ok("CLO", abecs_cmd_clo(pinpad, "FIRST LIGHT"));
}

static void ask(const char* port) {
    AbecsComm* volatile pinpad = NULL;
    KOR_TRY {
        pinpad = abecs_comm_open(port);
        print_in_session(pinpad, false);
        print_in_session(pinpad, true);
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
        ask(argv[1]);
        result = EXIT_SUCCESS;
    }
    KOR_CATCH(KOR_RESULT_OK) { fprintf(stderr, "%s: %s\n", argv[1], kor_exception_get_message()); }
    KOR_END_TRY;
    return result;
}
