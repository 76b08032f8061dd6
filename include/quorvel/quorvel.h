/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_QUORVEL_H
#define QUORVEL_QUORVEL_H

/*
 * The whole interface of libquorvel0, which drives an ABECS PIN pad on a serial line.
 *
 * Conventions that hold everywhere:
 *
 * 1. Errors. Every failure is raised through the try blocks of kor/exception.h: a KOR_RESULT_* code and a text that
 *    reads "[KOR_RESULT_NAME] detail" (abecs_cmd_tlr has one without the name). The comments here name the code and the
 *    detail ("%d" and the like stand for what is filled in). What takes memory can raise MALLOC_ERROR even where its
 *    comment does not say so. With no try block open and an uncaught handler that returns, a function that raised
 *    leaves at once with a harmless result: where a status is due, ABECS_RSP_STAT_ST_INTERR; from abecs_cmd_gcr,
 *    abecs_cmd_gcr_empty and abecs_cmd_gen_04_03, which return no status but KOR_RESULT_OK, the code that was raised;
 *    from abecs_cmd_cex_response_get_event -1; from all others null, 0, false, an empty text or the destination that
 *    they were given.
 * 2. A status is not an error. Command functions return RSP_STAT, the PIN pad's status (AbecsRspStat_E, 0 is success);
 *    they raise for arguments, for the link, and when there is no valid answer, a status that the protocol does not
 *    know being none: PROTOCOL_ERROR "Unknown value for RSP_STAT: %03d". An id or a status of other characters than its
 *    field has is an IO_ERROR (abecs/data.h). Only abecs_cmd_mlx, which sends several commands, returns none and raises
 *    when one of them does not succeed.
 * 3. Blocking commands, which wait for the cardholder, come as a sending function and one that ends in _response. The
 *    link is blocked from the one to the other. Poll the latter: -1 nothing yet (after two seconds, or after three
 *    damaged frames), -2 a notification was read into the text argument (33 bytes, or none), else the final RSP_STAT.
 *    abecs_comm_send_can aborts the wait.
 * 4. Ownership. What a function ending in _new, _open or _load returns is the caller's, to be ended by the matching
 *    _delete or _close, which takes the address of the variable and sets it to none; none is ignored. Sets of integers
 *    and texts end by kor_set_delete, parameter maps by kor_map_delete, and a text of kor_string_new by kor_heap_free.
 *    Containers copy what is put into them, but a parameter map takes bytes as they are, to own or to borrow. Pointers
 *    returned by accessors belong to the object and live until it changes.
 * 5. Arguments are checked before a byte is sent, in the order the comments give. "none" is a null pointer.
 * 6. Texts are NUL-terminated; lengths count characters or bytes without the NUL; the size of a destination counts it.
 *    A field's width is what travels on the line.
 * 7. Byte order arguments: 0 is big-endian, any other value little-endian.
 * 8. Threads: none are started and nothing is guarded. Use the library from one thread at a time.
 * 9. Secrets. The link handle (session key, PAN working key), cipher and RSA key objects overwrite what they keep when
 *    they end; the functions overwrite their work areas before they return. The texts that the abecs_pan_* functions
 *    return hold clear card numbers until the next call of the same function.
 */

#include "quorvel/abecs/cmd/builder.h"
#include "quorvel/abecs/cmd/cex.h"
#include "quorvel/abecs/cmd/chp.h"
#include "quorvel/abecs/cmd/cke.h"
#include "quorvel/abecs/cmd/clo.h"
#include "quorvel/abecs/cmd/clx.h"
#include "quorvel/abecs/cmd/cng.h"
#include "quorvel/abecs/cmd/dex.h"
#include "quorvel/abecs/cmd/dmf.h"
#include "quorvel/abecs/cmd/dsi.h"
#include "quorvel/abecs/cmd/dsp.h"
#include "quorvel/abecs/cmd/dwk.h"
#include "quorvel/abecs/cmd/ebx.h"
#include "quorvel/abecs/cmd/enb.h"
#include "quorvel/abecs/cmd/fcx.h"
#include "quorvel/abecs/cmd/fnc.h"
#include "quorvel/abecs/cmd/gcd.h"
#include "quorvel/abecs/cmd/gcr.h"
#include "quorvel/abecs/cmd/gcx.h"
#include "quorvel/abecs/cmd/gdu.h"
#include "quorvel/abecs/cmd/ged.h"
#include "quorvel/abecs/cmd/gen.h"
#include "quorvel/abecs/cmd/gin.h"
#include "quorvel/abecs/cmd/gix.h"
#include "quorvel/abecs/cmd/gky.h"
#include "quorvel/abecs/cmd/goc.h"
#include "quorvel/abecs/cmd/gox.h"
#include "quorvel/abecs/cmd/gpn.h"
#include "quorvel/abecs/cmd/gtk.h"
#include "quorvel/abecs/cmd/gts.h"
#include "quorvel/abecs/cmd/lmf.h"
#include "quorvel/abecs/cmd/mle.h"
#include "quorvel/abecs/cmd/mli.h"
#include "quorvel/abecs/cmd/mlr.h"
#include "quorvel/abecs/cmd/mlx.h"
#include "quorvel/abecs/cmd/mnu.h"
#include "quorvel/abecs/cmd/opn.h"
#include "quorvel/abecs/cmd/rmc.h"
#include "quorvel/abecs/cmd/tle.h"
#include "quorvel/abecs/cmd/tli.h"
#include "quorvel/abecs/cmd/tlr.h"
#include "quorvel/abecs/comm.h"
#include "quorvel/abecs/crc16.h"
#include "quorvel/abecs/data.h"
#include "quorvel/abecs/emv_data.h"
#include "quorvel/abecs/mk.h"
#include "quorvel/abecs/packet.h"
#include "quorvel/abecs/pan.h"
#include "quorvel/abecs/param.h"
#include "quorvel/abecs/pp_event.h"
#include "quorvel/abecs/rsp_dat_id.h"
#include "quorvel/abecs/rsp_param_map.h"
#include "quorvel/abecs/rsp_parser.h"
#include "quorvel/abecs/rsp_stat.h"
#include "quorvel/abecs/spe_id.h"
#include "quorvel/abecs/spe_mthd_dat.h"
#include "quorvel/abecs/spe_mthd_pin.h"
#include "quorvel/abecs/wk_pan.h"
#include "quorvel/crypt/aes.h"
#include "quorvel/crypt/des.h"
#include "quorvel/crypt/init.h"
#include "quorvel/crypt/rsa.h"
#include "quorvel/crypt/tdes.h"
#include "quorvel/kor/buffer.h"
#include "quorvel/kor/collection.h"
#include "quorvel/kor/endianness.h"
#include "quorvel/kor/enum.h"
#include "quorvel/kor/exception.h"
#include "quorvel/kor/file.h"
#include "quorvel/kor/heap.h"
#include "quorvel/kor/int_set.h"
#include "quorvel/kor/list.h"
#include "quorvel/kor/map.h"
#include "quorvel/kor/path.h"
#include "quorvel/kor/regex.h"
#include "quorvel/kor/result.h"
#include "quorvel/kor/serial.h"
#include "quorvel/kor/set.h"
#include "quorvel/kor/string.h"
#include "quorvel/kor/string_list.h"
#include "quorvel/kor/string_set.h"
#include "quorvel/kor/system.h"
#include "quorvel/kor/test.h"
#include "quorvel/kor/thread.h"
#include "quorvel/kor/version.h"

#endif
