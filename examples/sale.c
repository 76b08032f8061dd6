/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */

/*
 * A complete sale by chip card, of so many cents:
 *
 *     sale /dev/ttyACM0 1234
 *
 * The acquirer is played. A third argument is its response code: 00, as without it, approves, any other declines, and
 * "none" stands for an acquirer that cannot be reached. Ctrl-C gives up.
 */

#include <signal.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include "quorvel/quorvel.h"

/* Passed on by pointer, so that an error, which jumps, leaves what was set before it as it is. */
typedef struct Sale {
    const char* port;
    uint64_t amount;
    const char* host_answer;
    AbecsComm* pinpad;
    AbecsRspParamMap* items; /* of the last answer */
    AbecsCmdGcxBuilder* gcx;
    AbecsCmdGoxBuilder* gox;
    AbecsCmdFcxBuilder* fcx;
    uint8_t acquirer;
    bool asked;    /* the acquirer, and it has not declined: it may believe in a sale */
    bool approved; /* by the card, which has the last word */
    bool in_doubt; /* the card was told, and has not answered */
} Sale;

enum { REAIS = 986, SECONDS = 60 };

static volatile sig_atomic_t stopped;

static void stop(int signal) { stopped = signal; }

static void require_ok(const char* command, int32_t status) {
    if (status == ABECS_RSP_STAT_ST_OK) { return; }
    kor_exception_fthrow(KOR_RESULT_RUNTIME_ERROR, "%s was answered with %s", command,
                         abecs_rsp_stat_to_string((AbecsRspStat_E)status));
}

/* A value has a length and no terminator. */
static void get(const Sale* sale, AbecsRspDatId_E id, char* out, size_t size) {
    const AbecsRspParamValue* value = abecs_rsp_param_map_get(sale->items, (uint16_t)id);
    if (value != NULL) {
        snprintf(out, size, "%.*s", (int)value->size, (const char*)value->data);
    } else {
        kor_exception_fthrow(KOR_RESULT_RUNTIME_ERROR, "the answer lacks %s", abecs_rsp_dat_id_to_string(id));
    }
}

typedef int32_t Poll(AbecsComm* pinpad, AbecsRspParamMap* items, char* notice);

/* The PIN pad has time-outs of its own; the deadline is for one that never answers. */
static void wait_for(const char* command, Poll* poll, Sale* sale) {
    const int64_t deadline = kor_system_current_time_millis() + INT64_C(1000) * (SECONDS + 30);
    char notice[33];
    int32_t status;
    while ((status = poll(sale->pinpad, sale->items, notice)) < ABECS_RSP_STAT_ST_OK) {
        if (status == ABECS_RSP_STAT_ST_NOTIFICATION) { printf("the PIN pad says: %s\n", notice); }
        if (stopped) { kor_exception_throw(KOR_RESULT_RUNTIME_ERROR, "given up at the till"); }
        if (kor_system_current_time_millis() >= deadline) {
            kor_exception_fthrow(KOR_RESULT_TIMEOUT_ERROR, "%s takes too long", command);
        }
    }
    sale->in_doubt = false;
    require_ok(command, status);
}

static void open_session(Sale* sale) {
    sale->items = abecs_rsp_param_map_new();
    sale->pinpad = abecs_comm_open(sale->port);
    require_ok("OPN", abecs_cmd_opn(sale->pinpad, true));
}

/* A till gets the records from its acquirer. These make two applications known, by what the virtual PIN pad reads. */
static void load_tables(Sale* sale) {
    static const char version[] = "FIRSTSALE1";
    static const char records[] =
        "0561030107A000000003101000000000000000000001VISA CREDITO"
        "0541030207A000000004101000000000000000000001MASTERCARD";
    char loaded[11];
    const int32_t status = abecs_cmd_gts(sale->pinpad, 0, loaded);
    if (status == ABECS_RSP_STAT_ST_OK && strcmp(loaded, version) == 0) { return; }
    require_ok("TLI", abecs_cmd_tli(sale->pinpad, 0, version));
    require_ok("TLR", abecs_cmd_tlr(sale->pinpad, records));
    require_ok("TLE", abecs_cmd_tle(sale->pinpad));
}

static void read_card(Sale* sale) {
    char date[7], clock[7], type[3], acquirer[3], number[20];
    const time_t now = time(NULL);
    strftime(date, sizeof date, "%y%m%d", localtime(&now));
    strftime(clock, sizeof clock, "%H%M%S", localtime(&now));
    sale->gcx = abecs_cmd_gcx_builder_new(date, clock);
    abecs_cmd_gcx_builder_trntype(sale->gcx, 0);
    abecs_cmd_gcx_builder_amount(sale->gcx, sale->amount);
    abecs_cmd_gcx_builder_trncurr(sale->gcx, REAIS);
    abecs_cmd_gcx_builder_gcxopt(sale->gcx, "00000"); /* no contactless cards */
    abecs_cmd_gcx_builder_panmask(sale->gcx, "0604"); /* six digits and four */
    abecs_cmd_gcx_builder_timeout(sale->gcx, SECONDS);
    abecs_cmd_gcx(sale->pinpad, sale->gcx);
    wait_for("GCX", abecs_cmd_gcx_response, sale);

    get(sale, ABECS_RSP_DATID_PP_CARDTYPE, type, sizeof type);
    if (strcmp(type, "03") != 0) { kor_exception_throw(KOR_RESULT_RUNTIME_ERROR, "only chip cards are taken here"); }
    get(sale, ABECS_RSP_DATID_PP_AIDTABINFO, acquirer, sizeof acquirer); /* in front of the record's index */
    sale->acquirer = (uint8_t)atoi(acquirer);
    get(sale, ABECS_RSP_DATID_PP_PAN, number, sizeof number);
    printf("card %s\n", number);
}

/* The card's first decision: '0' approved, '1' declined, '2' if the acquirer is to be asked. */
static char let_card_decide(Sale* sale) {
    static const uint8_t risk[10] = {0}; /* begins with the floor limit: ask about every amount */
    /* 82, 95, 9A, 9C, 5F2A, 9F02, 9F10, 9F26, 9F27, 9F36, 9F37 */
    static const AbecsTagList tags = {
        {0x82, 0x95, 0x9A, 0x9C, 0x5F, 0x2A, 0x9F, 0x02, 0x9F, 0x10, 0x9F, 0x26, 0x9F, 0x27, 0x9F, 0x36, 0x9F, 0x37},
        18};
    char result[7];
    sale->gox = abecs_cmd_gox_builder_new(sale->acquirer, ABECS_SPE_MTHD_PIN_DUKPT_TDES, 0);
    abecs_cmd_gox_builder_trntype(sale->gox, 0);
    abecs_cmd_gox_builder_amount(sale->gox, sale->amount);
    abecs_cmd_gox_builder_trncurr(sale->gox, REAIS);
    abecs_cmd_gox_builder_trmpar(sale->gox, risk);
    abecs_cmd_gox_builder_taglist(sale->gox, &tags);
    abecs_cmd_gox_builder_timeout(sale->gox, SECONDS);
    abecs_cmd_gox(sale->pinpad, sale->gox);
    wait_for("GOX", abecs_cmd_gox_response, sale);
    get(sale, ABECS_RSP_DATID_PP_GOXRES, result, sizeof result);
    return result[0];
}

/*
 * Played: returns the response code, or null when nobody answers. A till sends the amount and what the card has given
 * for it, which is in sale->items: EMV data, PIN block and the serial number of its key.
 */
static const char* ask_acquirer(Sale* sale) {
    sale->asked = true;
    const char* code = strcmp(sale->host_answer, "none") != 0 ? sale->host_answer : NULL;
    if (code != NULL && strcmp(code, "00") != 0) { sale->asked = false; }
    printf("the acquirer answers: %s\n", code != NULL ? code : "nothing");
    return code;
}

/* The card's last decision. */
static bool tell_card(Sale* sale, const char* code) {
    char result[4];
    sale->fcx = abecs_cmd_fcx_builder_new(code != NULL ? "0000" : "2000");
    if (code != NULL) { abecs_cmd_fcx_builder_arc(sale->fcx, code); }
    abecs_cmd_fcx_builder_timeout(sale->fcx, SECONDS);
    sale->in_doubt = true; /* whatever happens from here on, only an answer tells */
    abecs_cmd_fcx(sale->pinpad, sale->fcx);
    wait_for("FCX", abecs_cmd_fcx_response, sale);
    get(sale, ABECS_RSP_DATID_PP_FCXRES, result, sizeof result);
    return strcmp(result, "000") == 0;
}

static void sell(Sale* sale) {
    load_tables(sale);
    printf("insert the card\n");
    read_card(sale);
    const char decision = let_card_decide(sale);
    sale->approved = decision == '2' ? tell_card(sale, ask_acquirer(sale)) : decision == '0';
}

static int32_t poll_removal(AbecsComm* pinpad, AbecsRspParamMap* items, char* notice) {
    (void)items;
    return abecs_cmd_rmc_response(pinpad, notice);
}

static const char* outcome(const Sale* sale) {
    return sale->approved ? "APPROVED" : sale->in_doubt ? "UNKNOWN" : "NOT APPROVED";
}

static void give_back(Sale* sale) {
    char text[33];
    snprintf(text, sizeof text, "%-16sREMOVE THE CARD", outcome(sale));
    abecs_cmd_rmc(sale->pinpad, text);
    wait_for("RMC", poll_removal, sale);
}

static void close_session(Sale* sale) { require_ok("CLO", abecs_cmd_clo(sale->pinpad, outcome(sale))); }

static void cancel(Sale* sale) {
    stopped = 0;
    abecs_comm_send_can(sale->pinpad);
}

/* An error ends this step only. */
static bool done(void (*step)(Sale*), Sale* sale) {
    volatile bool finished = false;
    KOR_TRY {
        step(sale);
        finished = true;
    }
    KOR_CATCH(KOR_RESULT_OK) { fprintf(stderr, "%s\n", kor_exception_get_message()); }
    KOR_END_TRY;
    return finished;
}

/* After an error the PIN pad may still wait for something; only when it has confirmed CAN it takes commands again. */
static void run(Sale* sale) {
    if (!done(open_session, sale)) { return; }
    if (!done(sell, sale) && !done(cancel, sale)) { return; }
    if (!done(give_back, sale) && !done(cancel, sale)) { return; }
    done(close_session, sale);
}

static void disconnect(Sale* sale) {
    kor_map_delete(&sale->items);
    abecs_cmd_gcx_builder_delete(&sale->gcx);
    abecs_cmd_gox_builder_delete(&sale->gox);
    abecs_cmd_fcx_builder_delete(&sale->fcx);
    abecs_comm_close(&sale->pinpad);
}

int main(int argc, char** argv) {
    Sale sale = {.host_answer = argc == 4 ? argv[3] : "00"};
    if (argc >= 3) { sale.amount = strtoull(argv[2], NULL, 10); }
    if (argc > 4 || sale.amount == 0) {
        fprintf(stderr, "usage: %s PORT CENTS [ANSWER]\n", argv[0]);
        return EXIT_FAILURE;
    }
    sale.port = argv[1];
    setvbuf(stdout, NULL, _IOLBF, BUFSIZ); /* "insert the card" cannot wait, in a pipe neither */
    signal(SIGINT, stop);
    run(&sale);
    done(disconnect, &sale);
    if (sale.asked && !sale.approved) { printf("the acquirer must be told that there was no sale\n"); }
    printf("%s\n", outcome(&sale));
    return sale.approved ? EXIT_SUCCESS : EXIT_FAILURE;
}
