/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_ABECS_DATA_H
#define QUORVEL_ABECS_DATA_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "quorvel/kor/buffer.h"
#include "quorvel/kor/defs.h"

KOR_BEGIN_DECLS

/*
 * The protocol's fields: runs of characters or bytes of a fixed length, written to and read from a byte buffer.
 *
 * - N: decimal digits, right-justified, padded with leading zero digits; at most 13 digits
 * - A: text of 0x20 to 0x7E, left-justified, padded with trailing blanks
 * - S: as A, of bytes 0x20 to 0xFF
 * - H: bytes as pairs of hexadecimal digits, right-justified, padded with leading pairs "30"
 * - X: a big-endian unsigned integer of 1, 2 or 4 bytes
 * - B: bytes as they are
 *
 * 1. A field's length `fieldLen` counts characters on the wire (bytes for X and B). A null text raises
 *    ILLEGAL_ARGUMENT "'data' is NULL", and so do null bytes or digits of a given length other than 0. A null buffer
 *    raises ILLEGAL_ARGUMENT "buffer is NULL", unless nothing has to be written.
 * 2. A value that does not fit its field or has a wrong character is an ILLEGAL_ARGUMENT on writing. A writer that
 *    raises may have appended a part of its field: discard what is being built. A buffer that is full raises its own
 *    IO_ERROR.
 * 3. Readers raise IO_ERROR "Buffer does not have enough data (requested: %zu, available: %zu)", consuming nothing,
 *    when fewer bytes than the field wait. When a field's content is wrong they raise IO_ERROR with the field
 *    consumed; the destination of a text then holds what was received and a NUL, that of H an empty text.
 * 4. Where a raise returns to its raiser, number readers return 0 and text readers their destination, emptied if it
 *    has any room.
 */

/* A date; year is its last two digits. */
typedef struct AbecsDate {
    uint8_t year;  /* 0 to 99 */
    uint8_t month; /* 1 to 12 */
    uint8_t day;   /* 1 to 31 */
} AbecsDate;

/* A time of day. */
typedef struct AbecsTime {
    uint8_t hours;   /* 0 to 23 */
    uint8_t minutes; /* 0 to 59 */
    uint8_t seconds; /* 0 to 59 */
} AbecsTime;

/*
 * Writes a number. ILLEGAL_ARGUMENT: "'i' (%llu) is too long (maximum: 9999999999999" from 10^13 on; "Number length
 * (%zu) is greater than field length (%zu)", nothing being written in either case.
 */
KOR_API void abecs_data_write_field_n(KorBuffer* buffer, uint64_t i, size_t fieldLen);

/*
 * Reads a number. After the check for data: ILLEGAL_ARGUMENT "field length (%zu) is too big (maximum: %zu)" above 13,
 * with nothing consumed; IO_ERROR "Invalid char (0x%02X) at index %zu" for what is no digit.
 */
KOR_API uint64_t abecs_data_read_field_n(KorBuffer* buffer, size_t fieldLen);

/*
 * Reads a status, an N field of 3, and returns an AbecsRspStat_E. PROTOCOL_ERROR "Unknown value for RSP_STAT: %03d"
 * for a number that is none (ABECS_RSP_STAT_ST_INTERR is returned where a raise returns).
 */
KOR_API int32_t abecs_data_read_rsp_stat(KorBuffer* buffer);

/*
 * Writes a text of A up to its NUL; CR is allowed only with `allowCr`. ILLEGAL_ARGUMENT: "Field does not have enough
 * room for data", with the field full; "Invalid character (0x%02X) at position %zu", with what precedes it written.
 */
KOR_API void abecs_data_write_field_a(KorBuffer* buffer, const char* data, size_t fieldLen, bool allowCr);

/* The same; `dataLen` is not consulted, the text ends at its NUL. */
KOR_API void abecs_data_write_field_a_cdata(KorBuffer* buffer, const char* data, size_t dataLen, size_t fieldLen,
                                            bool allowCr);

/*
 * Reads a text of A into `to`, which has room for `sizeTo` bytes, without its trailing blanks; returns `to`. A null
 * `to` skips the field unchecked and returns null. Before the check for data: ILLEGAL_ARGUMENT "sizeTo (%zu) is not
 * enough to store field data" when sizeTo is below fieldLen + 1. IO_ERROR "Invalid character (0x%02X) at position
 * %zu".
 */
KOR_API char* abecs_data_read_field_a(KorBuffer* buffer, char* to, size_t sizeTo, size_t fieldLen, bool allowCr);

/* S: as the functions of A. */
KOR_API void abecs_data_write_field_s(KorBuffer* buffer, const char* data, size_t fieldLen, bool allowCr);
KOR_API void abecs_data_write_field_s_cdata(KorBuffer* buffer, const char* data, size_t dataLen, size_t fieldLen,
                                            bool allowCr);
KOR_API char* abecs_data_read_field_s(KorBuffer* buffer, char* to, size_t sizeTo, size_t fieldLen, bool allowCr);

/*
 * Writes a text of hexadecimal digits, of either case, in upper case. ILLEGAL_ARGUMENT, nothing being written:
 * "fieldLen (%zu) is not even"; "Field does not have enough room for data"; "Invalid hex byte at index %zu" for a pair
 * that is not two hexadecimal digits, or is cut by the end of the text.
 */
KOR_API void abecs_data_write_field_h(KorBuffer* buffer, const char* data, size_t fieldLen);

/* The same of at most `dataLen` characters, or up to a NUL before them. */
KOR_API void abecs_data_write_field_h_cdata(KorBuffer* buffer, const char* data, size_t dataLen, size_t fieldLen);

/*
 * Reads the digits, as received, into `to` (room for `sizeTo` bytes, or null to skip) with a NUL; returns `to`.
 * Leading pairs "30" are dropped as padding: a value whose first byte is 0x30 loses it. After the check for data:
 * ILLEGAL_ARGUMENT "fieldLen (%zu) is not an even number"; ILLEGAL_ARGUMENT "sizeTo (%zu) is not enough to store field
 * (length: %zu)" when sizeTo is below fieldLen + 1; IO_ERROR "Invalid data: %s" with the pair that is no hexadecimal.
 */
KOR_API char* abecs_data_read_field_h(KorBuffer* buffer, char* to, size_t sizeTo, size_t fieldLen);

/*
 * Writes `dataLen` bytes as digits in upper case. ILLEGAL_ARGUMENT, nothing being written: "fieldLen (%zu) must be
 * even"; "fieldLen < (dataLen * 2) ==> (%zu < (%zu * 2))".
 */
KOR_API void abecs_data_write_field_h_raw(KorBuffer* buffer, const uint8_t* data, size_t dataLen, size_t fieldLen);

/*
 * Reads the bytes into `to` (room for `sizeTo` bytes, or null to count only); returns how many they are without the
 * dropped leading pairs "30". After the check for data: ILLEGAL_ARGUMENT "fieldLen (%zu) must be even";
 * ILLEGAL_ARGUMENT "sizeTo (%zu) < (fieldLen / 2) (%zu)"; IO_ERROR "Invalid data: %s" with the pair that is no
 * hexadecimal.
 */
KOR_API size_t abecs_data_read_field_h_raw(KorBuffer* buffer, uint8_t* to, size_t sizeTo, size_t fieldLen);

/*
 * Writes an integer of `fieldLen` bytes. ILLEGAL_ARGUMENT: "fieldLen (1) is not enough for data (%u)"; "fieldLen (2)
 * is not enough for data (%u)"; "Unsupported fieldLen: %zu (accepted values are 1, 2, or 4)".
 */
KOR_API void abecs_data_write_field_x(KorBuffer* buffer, uint32_t data, size_t fieldLen);

/*
 * Reads an integer of `fieldLen` bytes. ILLEGAL_ARGUMENT "Unsupported fieldLen: %zu (accepted values are 1, 2, or 4)".
 */
KOR_API uint32_t abecs_data_read_field_x(KorBuffer* buffer, size_t fieldLen);

/* Writes `dataLen` bytes. */
KOR_API void abecs_data_write_field_b(KorBuffer* buffer, const void* data, size_t dataLen);

/*
 * Reads `dataLen` bytes into `to` (room for `sizeTo` bytes, or null to skip); returns dataLen. Before the check for
 * data: ILLEGAL_ARGUMENT "Destination array does not have enough size to store all data (requested: %zu, available:
 * %zu)".
 */
KOR_API size_t abecs_data_read_field_b(KorBuffer* buffer, void* to, size_t sizeTo, size_t dataLen);

/*
 * Checks that `text` is minLen to maxLen digits; `argName` names it in the messages. ILLEGAL_ARGUMENT: "'%s' is NULL";
 * "'%s' is too long (maximum: %zu, requested: %zu)"; "'%s' is too short (minimum: %zu, requested: %zu)"; "%s: invalid
 * char (0x%02X) at index %zu".
 */
KOR_API void abecs_data_check_n_string(const char* text, const char* argName, size_t maxLen, size_t minLen);

/*
 * Whether the first `length` characters are digits. If not, stores the index of the first that is none in `outIndex`
 * (which may be null); if so, leaves it untouched. A null text has none: false at index 0, unless `length` is 0.
 */
KOR_API bool abecs_data_is_numeric_field(const char* text, size_t length, size_t* outIndex);

/* Whether a character is a digit or an unaccented letter, whatever the locale. */
KOR_API bool abecs_data_is_alphanumeric(char c);

/* As abecs_data_is_numeric_field, of digits and unaccented letters. */
KOR_API bool abecs_data_is_alphanumeric_field(const char* text, size_t length, size_t* outIndex);

/*
 * Checks a date; every fourth year, 00 included, is a leap year. ILLEGAL_ARGUMENT: "'date' is NULL"; "Invalid year:
 * %d" above 99; "Invalid month: %d"; "Invalid date (YY-MM-DD): %02d-%02d-%02d" for a day that the month does not have.
 */
KOR_API void abecs_data_validate_date(const AbecsDate* date);

/*
 * Checks a time of day. ILLEGAL_ARGUMENT: "'time' is NULL"; "Invalid hours: %d"; "Invalid minutes: %d"; "Invalid
 * seconds: %d".
 */
KOR_API void abecs_data_validate_time(const AbecsTime* time);

/*
 * Writes `szData` bytes as digits in lower case with a NUL into `to`; returns `to`. ILLEGAL_ARGUMENT: "'data' is NULL"
 * with a count other than 0; "'szData' is zero" with data; "'to' is NULL"; "Destination buffer does not have enough
 * room for encoded data" when sizeTo is below 2 * szData + 1.
 */
KOR_API char* abecs_data_to_hex(const uint8_t* data, size_t szData, char* to, size_t sizeTo);

/*
 * Converts a text of hexadecimal digits, of either case, into half as many bytes in `out` (room for `sizeOut`);
 * returns `out`. A null text is an empty one. ILLEGAL_ARGUMENT: "'out' is NULL"; "Destination buffer does not have
 * enough room for decoded data"; "Invalid hex string".
 */
KOR_API uint8_t* abecs_data_from_hex(const char* hex, uint8_t* out, size_t sizeOut);

/*
 * The same of `szHex` characters. Before the others, ILLEGAL_ARGUMENT: "'hex' is NULL" with a length other than 0;
 * "'szHex' is zero" with a text that is not empty.
 */
KOR_API uint8_t* abecs_data_from_hex2(const char* hex, size_t szHex, uint8_t* out, size_t sizeOut);

KOR_END_DECLS

#endif
