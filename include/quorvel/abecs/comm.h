/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_COMM_H
#define QUORVEL_ABECS_COMM_H

#include <stddef.h>
#include <stdint.h>

#include "quorvel/abecs/packet.h"
#include "quorvel/abecs/wk_pan.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * The link to a PIN pad: the serial port, the frames on it, the encrypted session and the blocked state.
 *
 * 1. A command is abecs_comm_send_packet and then abecs_comm_read_packet. One that waits for the cardholder locks the
 *    link after it was sent: abecs_comm_lock. Its response is then polled for with abecs_comm_read_packet, and the
 *    final one ends with abecs_comm_release. While the link is locked ("blocked"), nothing but abecs_comm_send_can can
 *    be sent. The functions of quorvel/abecs/cmd do all this.
 *
 * 2. A frame or a CAN is tried three times in all. The PIN pad has 2 s to acknowledge, 10 s to begin a response, or 2 s
 *    while the link is blocked (abecs_comm_set_poll_time), then 2 s for each further byte and 30 s for all of them.
 *    Before a response is asked for again, or CAN is sent again because of a wrong answer, the line is purged: what
 *    arrives is discarded until nothing has come for half a second, or for 3 s if the line never falls silent. Signals
 *    by themselves shorten none of these times.
 *
 * 3. A null handle raises ILLEGAL_ARGUMENT "'pinpad' is NULL", before anything else, except where another text is
 *    given.
 *
 * 4. All that send, receive or purge raise IO_ERROR when the line fails: "read() error: %d", "write() error: %d",
 *    "tcdrain() error: %d" or "tcflush() error: %d", with 5 for a line that hung up (quorvel/kor/serial.h). Where an
 *    answer is waited for, TIMEOUT_ERROR "Timeout waiting for data" means that no byte of it came in time. With a limit
 *    (abecs_comm_set_limit) all of them raise TIMEOUT_ERROR "The limit of %d ms has passed", too.
 *
 * 5. All of these can stand in a clean-up branch, to cancel or to close, for instance: what succeeds leaves the pending
 *    error as it is. What is raised takes its place, but for abecs_comm_close.
 *
 * 6. One thread at a time uses a link.
 */

/* A link; abecs_comm_open makes it. */
typedef struct AbecsComm AbecsComm;

/*
 * Opens the port at 19200 baud, 8 data bits, no parity, 1 stop bit, no flow control, purges the line and sends CAN,
 * which the PIN pad must answer. Returns the link, the caller's to abecs_comm_close: no session, no PAN working key,
 * not blocked, send interval 0. When it fails, the port is closed again and null is returned; that takes about 6.5 s
 * where nobody answers, and up to 14 s on a line that never falls silent. Errors: those of kor_serial_open,
 * kor_serial_config and abecs_comm_send_can; IO_ERROR "eventfd() error: %d"; MALLOC_ERROR.
 */
KOR_API AbecsComm* abecs_comm_open(const char* portName);

/*
 * Discards what is queued in the port, closes it, wipes the keys, frees the link and sets the caller's variable to
 * null; a null address or link is ignored. All of it is done even when the port fails, whose first IO_ERROR is raised
 * at the end. While another error is pending, in a clean-up or catch branch, that one stays and nothing is raised.
 */
KOR_API void abecs_comm_close(AbecsComm** pinpad);

/*
 * Aborts what the PIN pad is doing, and ends the blocked state once it confirms. What it had sent before is discarded.
 * IO_ERROR "Communication error while sending CAN" when it has not confirmed the third one; the link then stays as it
 * was.
 */
KOR_API void abecs_comm_send_can(AbecsComm* pinpad);

/*
 * Sends one command and waits until the PIN pad has acknowledged it. Waits out the send interval first. With a session
 * key every command but OPN travels encrypted, and may then have 2,027 bytes at most (a packet holds 2,044). An
 * acknowledged CLO or CLX removes the session key and the PAN working key (abecs_comm_set_key and abecs_comm_set_wk_pan
 * with null).
 *
 * A packet that travels encrypted is left as it was, whatever happens. One that travels plain is consumed, also when
 * its answer is wrong or missing; it is left as it was when it was refused before anything was written, or rejected.
 *
 * ILLEGAL_ARGUMENT "'packet' is NULL". Those of abecs_comm_get_cmd_id. IO_ERROR "No enough space in buffer (available:
 * %zu, requested: %zu)" for more than 2,027 bytes to be encrypted; CRYPT_ERROR when the cipher fails; MALLOC_ERROR.
 * ILLEGAL_STATE "Connection is blocked waiting for %s response", after the interval and before anything is written.
 * PROTOCOL_ERROR: "Packet was rejected" after three NAKs; "Protocol error (unknown packet response: 0x%hhx)" for any
 * byte but ACK and NAK. TIMEOUT_ERROR "Timeout waiting for data" when neither comes.
 */
KOR_API void abecs_comm_send_packet(AbecsComm* pinpad, AbecsPacket* packet);

/*
 * Replaces what `out` holds by the next response, in clear, and returns it. Responses that are damaged, stop arriving
 * or do not come to their end are asked for again with NAK; a good one is not acknowledged. The blocked state stays as
 * it is. In a session a plain response is taken too; without one an encrypted response is given as it came. After an
 * error the content of `out` means nothing, and null is returned.
 *
 * ILLEGAL_ARGUMENT "'out' is NULL". PROTOCOL_ERROR: "Protocol error (expected SYN, read 0x%hhx)" when a response
 * begins with another byte, which is the only one taken off the line; "Malformed encrypted response" for one of no
 * whole cipher blocks; "Malformed encrypted response (caused by %s)" when its decryption gives no packet.
 * TIMEOUT_ERROR: "Timeout waiting for data" when none begins in time, the first one or one asked for again; "No
 * response in %d attempts" when the third one was damaged too. IO_ERROR "No enough space in buffer (available: %zu,
 * requested: %zu)" when it is longer than a packet, after its rest was purged.
 */
KOR_API AbecsPacket* abecs_comm_read_packet(AbecsComm* pinpad, AbecsPacket* out);

/*
 * Raises when the link is blocked, and does nothing else. ILLEGAL_STATE "Connection is blocked waiting for %s
 * response".
 */
KOR_API void abecs_comm_check_busy(const AbecsComm* pinpad);

/*
 * Blocks the link until the response of the command `cmdId`, a text of 1 to 12 characters, which is copied. First what
 * abecs_comm_check_busy does. ILLEGAL_ARGUMENT: "NULL/empty 'cmdId'"; "'cmdId' is too long: %s".
 */
KOR_API void abecs_comm_lock(AbecsComm* pinpad, const char* cmdId);

/* Ends the blocked state, if there is one. The PIN pad does not hear of it. */
KOR_API void abecs_comm_release(AbecsComm* pinpad);

/* What the link is blocked on, "" when it is not. The text belongs to the link and changes with its state. */
KOR_API const char* abecs_comm_get_blk_wait_id(const AbecsComm* pinpad);

/*
 * Copies the packet's first three characters, the id of its command or response, without trailing blanks into `out`,
 * which holds `sizeOut` characters and needs 4, and returns it; null after an error. Nothing is consumed.
 * ILLEGAL_ARGUMENT: "'packet' is NULL"; "'out' is NULL"; further those of abecs_packet_read_field_a.
 */
KOR_API char* abecs_comm_get_cmd_id(AbecsPacket* packet, char* out, size_t sizeOut);

/*
 * The least time from one acknowledgement to the next send, in milliseconds; 0 or less for none. There is no upper
 * limit, and no signal ends the wait. The opening counts as a send, one that failed does not. The time is that of
 * kor_system_current_time_millis; when it is set back, the wait is still no longer than the interval.
 */
KOR_API void abecs_comm_set_send_interval(AbecsComm* pinpad, int64_t interval);
KOR_API int64_t abecs_comm_get_send_interval(const AbecsComm* pinpad);

/*
 * Begins an encrypted session with a copy of the 16 bytes at `key` (AES-128), or ends it with null. ILLEGAL_ARGUMENT
 * "pinpad is NULL" for a null handle.
 */
KOR_API void abecs_comm_set_key(AbecsComm* pinpad, const uint8_t* key);

/*
 * With a record: copies the PAN working key, with which card data will be deciphered. With null: card data is left as
 * it comes again; the bytes of the session key are zeroed with it while its session stays open, so remove the key
 * outside of a session, or give the session a new key. ILLEGAL_ARGUMENT "pinpad is NULL" for a null handle.
 */
KOR_API void abecs_comm_set_wk_pan(AbecsComm* pinpad, const AbecsWkPan* wkPan);

/*
 * The CRC-16 (quorvel/abecs/crc16.h) of the byte at `prefix`, the packet's unread bytes and the byte at `suffix`; a
 * null one is left out. Nothing is consumed. ILLEGAL_ARGUMENT "'packet' is NULL".
 */
KOR_API uint16_t abecs_comm_crc16(AbecsPacket* packet, const uint8_t* prefix, const uint8_t* suffix);

KOR_END_DECLS

#endif
