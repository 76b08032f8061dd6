/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_LINE_H
#define QUORVEL_ABECS_LINE_H

#include <stdbool.h>
#include <stdint.h>

#include "quorvel/abecs/comm.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * How a link uses its line: who else may, the size of its writes, the time it may take, and what a program with an
 * event loop of its own needs. None of it is needed to work with a PIN pad, and quorvel/quorvel.h does not include it.
 *
 * A null handle raises ILLEGAL_ARGUMENT "'pinpad' is NULL".
 */

/*
 * abecs_comm_open, which takes the port for this link alone before anything is sent or discarded, until it is closed.
 * Meanwhile a second claim, in this process or another, raises DEVICE_BUSY "Port is busy: %s" and leaves the line
 * alone. So does everybody else's opening, but that of root, and of whoever had opened the port before. Errors: those
 * of abecs_comm_open, and IO_ERROR "flock() error: %d" or "ioctl(TIOCEXCL) error: %d".
 */
KOR_API AbecsComm* abecs_comm_claim(const char* portName);

/*
 * Whether a frame goes out in one write, which saves system calls, and transfers on USB adapters that make one of each
 * write. Off at first: a byte a write, waiting once, until the last of them has left. Either way a frame that the PIN
 * pad rejected is sent again byte by byte, waiting until each has left, for one that was outrun.
 */
KOR_API void abecs_comm_set_whole_frames(AbecsComm* pinpad, bool whole);
KOR_API bool abecs_comm_get_whole_frames(const AbecsComm* pinpad);

/*
 * How long a _response function waits for the first byte, in milliseconds: 2000 at first, 0 looks and returns. What has
 * begun to arrive is read to its end, with the waits of quorvel/abecs/comm.h, whatever this time is. ILLEGAL_ARGUMENT
 * "Invalid poll time: %d" when it is negative.
 */
KOR_API void abecs_comm_set_poll_time(AbecsComm* pinpad, int32_t milliseconds);
KOR_API int32_t abecs_comm_get_poll_time(const AbecsComm* pinpad);

/*
 * The longest that a call of this link may use the line, in milliseconds; 0, as at first, is no limit. When it has
 * passed, whatever is in progress ends with TIMEOUT_ERROR "The limit of %d ms has passed": waiting, sending, the pause
 * of abecs_comm_set_send_interval, a frame that dribbles in, a line that is never silent. Send CAN before the next
 * command then, as after any error. A CAN that was ended may still be confirmed: the next one waits until the line is
 * silent.
 *
 * Of a _response function the end is -1, as when nothing has come, and the link stays blocked. Of an answer that was
 * cut short nothing is lost: the next _response goes on where the last one has ended, however short the limit is.
 *
 * What is computed before the first request is sent does not count, such as the key of a secure OPN or the check of a
 * file; nor does closing. ILLEGAL_ARGUMENT "Invalid limit: %d" when it is negative, IO_ERROR "fcntl(F_GETFL) error: %d"
 * or "fcntl(F_SETFL) error: %d" when the port cannot be set.
 */
KOR_API void abecs_comm_set_limit(AbecsComm* pinpad, int32_t milliseconds);
KOR_API int32_t abecs_comm_get_limit(const AbecsComm* pinpad);

/*
 * Ends the wait of a _response function for the first byte at once, from a signal handler or from another thread; it is
 * async-signal-safe. That function returns -1, and the link stays blocked and usable: poll again, or cancel. An answer
 * that is there at the same moment goes first and uses the wake up, and one that has begun is read to its end. A wake
 * is for one wait: the one in progress or, if there is none, the next; several before it count as one. Of
 * abecs_comm_read_packet the wait ends in TIMEOUT_ERROR "The wait was ended". Nothing else is ended: neither a one-call
 * command nor the sending of a request, nor the silence before a damaged answer is asked for again.
 *
 * It is the only function that another thread may call while one uses the link, and not once abecs_comm_close has
 * begun. A null handle is ignored.
 */
KOR_API void abecs_comm_wake(AbecsComm* pinpad);

/*
 * The descriptor to wait at, with poll(2) for instance, while the link is blocked: when it is readable, or has hung up,
 * it is time for the _response function. Nobody else may read from it, write to it or close it. It is the same one
 * until abecs_comm_close. The result of a null handle is -1, where the raise returns.
 */
KOR_API int abecs_comm_get_fd(const AbecsComm* pinpad);

/*
 * Whether there is something for which the descriptor will never become readable: bytes that the link has already read,
 * or an answer that the limit has cut short. Ask before waiting at it, and call the _response function at once if so.
 */
KOR_API bool abecs_comm_has_input(const AbecsComm* pinpad);

KOR_END_DECLS

#endif
