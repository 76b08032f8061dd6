/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */

/* Has a card inserted, swiped or tapped, and tells its number, masked: read_card [PORT] */
#include <quorvel/quorvel.h>
#include <stdio.h>
#include <time.h>

/* Not a local variable of a function with a try block, which would have to be volatile. */
static struct {
    AbecsComm* link;
    AbecsCmdGcxBuilder* request;
    AbecsRspParamMap* card;
    int32_t status;
} till = {.status = ABECS_RSP_STAT_ST_INTERR};

static void read_card(const char* port, const char* date, const char* daytime) {
    till.link = abecs_comm_open(port);
    abecs_cmd_opn(till.link, false);
    till.request = abecs_cmd_gcx_builder_new(date, daytime);
    abecs_cmd_gcx_builder_amount(till.request, 1234); /* cents */
    abecs_cmd_gcx_builder_panmask(till.request, "0604");
    till.card = abecs_rsp_param_map_new();
    abecs_cmd_gcx(till.link, till.request);
    do { till.status = abecs_cmd_gcx_response(till.link, till.card, NULL); } while (till.status < ABECS_RSP_STAT_ST_OK);
    const AbecsRspParamValue* number = abecs_rsp_param_map_get(till.card, ABECS_RSP_DATID_PP_PAN);
    if (number != NULL) { printf("%.*s\n", (int)number->size, (const char*)number->data); }
    abecs_cmd_clo(till.link, "THANK YOU");
}

int main(int argc, char** argv) {
    const time_t now = time(NULL);
    char date[16];
    char daytime[16];
    strftime(date, sizeof date, "%y%m%d", localtime(&now));
    strftime(daytime, sizeof daytime, "%H%M%S", localtime(&now));
    KOR_TRY { read_card(argc > 1 ? argv[1] : "/dev/ttyACM0", date, daytime); }
    KOR_CLEANUP {
        abecs_cmd_gcx_builder_delete(&till.request);
        kor_map_delete(&till.card);
        abecs_comm_close(&till.link);
    }
    KOR_CATCH(KOR_RESULT_OK) { /* every error */
        fprintf(stderr, "%s\n", kor_exception_get_message());
        till.status = ABECS_RSP_STAT_ST_INTERR;
    }
    KOR_END_TRY;
    if (till.status != ABECS_RSP_STAT_ST_OK) { fprintf(stderr, "%s\n", abecs_rsp_stat_to_string(till.status)); }
    return till.status != ABECS_RSP_STAT_ST_OK;
}
