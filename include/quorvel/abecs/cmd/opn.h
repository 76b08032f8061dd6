/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_CMD_OPN_H
#define QUORVEL_ABECS_CMD_OPN_H

#include <stdbool.h>
#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * OPN: opens a session and returns RSP_STAT. With `secure`, a fresh RSA-2048 key pair is made (a tenth of a second or
 * more), the PIN pad answers with a session key under it, and from then on every command but OPN itself travels
 * enciphered, until abecs_cmd_clo or abecs_cmd_clx. A plain OPN leaves the link's session key as it was. A PIN pad that
 * accepts a secure OPN without sending a key makes the result ABECS_RSP_STAT_ST_INVCALL. One that refuses it and sends
 * a key all the same has its key taken, which opens the session, with its status as the result.
 *
 * ILLEGAL_ARGUMENT "'pinpad' is NULL". PROTOCOL_ERROR "Unrecognized response" for an answer under six bytes, "(%s)
 * Invalid RSP_ID: %s" for that of another command, and for a key that is not what it should be: "(%s) Invalid RSP_LEN1:
 * %d", "(%s) Invalid OPN_CRKSLEN: %d", "(%s) Invalid PCKS#1 block header", "(%s) Invalid Ksec length (expected: %d,
 * read: %d)". Those of abecs_packet_read_rsp_stat; CRYPT_ERROR when a cipher operation fails; IO_ERROR for malformed
 * fields; and what the link raises. After an error the link's session key is as it was.
 */
KOR_API int32_t abecs_cmd_opn(AbecsComm* pinpad, bool secure);

KOR_END_DECLS

#endif
