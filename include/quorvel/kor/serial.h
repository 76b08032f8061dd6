/* SPDX-License-Identifier: MIT */
/* Copyright (c) 2026 the quorvel authors */
#ifndef QUORVEL_KOR_SERIAL_H
#define QUORVEL_KOR_SERIAL_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "quorvel/kor/defs.h"
#include "quorvel/kor/list.h"

KOR_BEGIN_DECLS

/*
 * Serial ports.
 *
 * 1. Every function raises ILLEGAL_ARGUMENT "'handle' is NULL" for a handle of none, except kor_serial_close, which
 *    ignores it.
 *
 * 2. Failures of the system are IO_ERROR with errno in place of %d.
 *
 * 3. Configure a port before reading from it. Until then a read waits as long as the device's last user wanted, which
 *    may be for ever.
 *
 * 4. Every change of the settings also makes the port raw, whatever state it was left in: no byte is changed, dropped,
 *    added or taken for an order to the terminal, and no modem line is heeded. What has a setter of its own stays as it
 *    is until that setter is called. So kor_serial_set_read_timeout alone leaves the speed, and perhaps characters of 7
 *    bits, a parity, or a software flow control that keeps the bytes 0x11 and 0x13 for itself. After kor_serial_config
 *    with 8 data bits, no parity and no software flow control all 256 byte values pass both ways.
 *
 * 5. `byteOrder` is 0 for big-endian and anything else for little-endian.
 *
 * 6. A call that a signal interrupts goes on; the signal does not lengthen the read time-out.
 */

/* An open port; kor_serial_open makes it. */
typedef struct KorSerial KorSerial;

/* One and a half stop bits are sent as two. */
typedef enum KorSerialStopBits_E KOR_ENUM_INT32 {
    KOR_SERIAL_STOP_BITS_ONE = 1,
    KOR_SERIAL_STOP_BITS_TWO = 2,
    KOR_SERIAL_STOP_BITS_ONE_AND_HALF = 3
} KorSerialStopBits_E;

/* Whether a bit of parity goes with each character, and which. */
typedef enum KorSerialParity_E KOR_ENUM_INT32 {
    KOR_SERIAL_PARITY_NONE = 0,
    KOR_SERIAL_PARITY_ODD = 1,
    KOR_SERIAL_PARITY_EVEN = 2
} KorSerialParity_E;

/* How either side holds the other one up. */
typedef enum KorSerialFlowControl_E KOR_ENUM_INT32 {
    KOR_SERIAL_FLOW_CONTROL_NONE = 0,
    KOR_SERIAL_FLOW_CONTROL_SOFTWARE = 1,
    KOR_SERIAL_FLOW_CONTROL_HARDWARE = 2
} KorSerialFlowControl_E;

/* What kor_serial_purge discards. */
typedef enum KorSerialPurge_E KOR_ENUM_INT32 {
    KOR_SERIAL_PURGE_INPUT = 0,
    KOR_SERIAL_PURGE_OUTPUT = 1,
    KOR_SERIAL_PURGE_BOTH = 2
} KorSerialPurge_E;

/* What kor_serial_config applies; the values are those of the setters below. */
typedef struct KorSerialConfig {
    uint8_t readTimeout; /* in tenths of a second */
    int32_t baudRate;    /* bits in a second */
    int32_t dataBits;    /* 5 to 8 */
    int32_t stopBits;    /* one of KorSerialStopBits_E */
    int32_t parity;      /* one of KorSerialParity_E */
    int32_t flowControl; /* one of KorSerialFlowControl_E */
} KorSerialConfig;

/*
 * Appends the path of every serial port in /dev/ that can be opened to the string list `out`; returns `out`. Each
 * candidate is opened and closed again: names that contain "tty." and then "serial", "usbserial" or "usbmodem", or that
 * start with ttyS, ttyUSB or ttyACM. A device that is busy, forbidden or no terminal is left out.
 *
 * ILLEGAL_ARGUMENT "'out' is NULL"; MALLOC_ERROR; the errors of kor_path_list_entries for /dev/.
 */
KOR_API KorList* kor_serial_list_ports(KorList* out);

/*
 * Opens the terminal device at `path`, with the settings that it has; others may open it too. It does not become the
 * controlling terminal of the process, and programs that the process starts do not inherit it. The handle is the
 * caller's, to kor_serial_close; null after an error, when nothing is left open.
 *
 * DEVICE_BUSY "Port is busy: %s"; PERMISSION_DENIED "Permission denied for port : %s"; FILE_NOT_FOUND "No such port:
 * %s" for every other reason. IO_ERROR "tcgetattr() error: %d" (25 when it is no terminal), "fcntl(F_GETFL) error:
 * %d", "fcntl(F_SETFL) error: %d". MALLOC_ERROR.
 */
KOR_API KorSerial* kor_serial_open(const char* path);

/*
 * Closes the port and sets the caller's variable to none, also when it raises "close() error: %d". A line that hung up
 * closes like any other.
 */
KOR_API void kor_serial_close(KorSerial** handle);

/*
 * Applies all settings in one update. After an error none of them is applied.
 *
 * ILLEGAL_ARGUMENT "'config' is NULL"; the errors of the setters, in the order of the record's fields.
 */
KOR_API void kor_serial_config(KorSerial* handle, const KorSerialConfig* config);

/*
 * Changes one setting at once and leaves the others as they are: the read time-out, in tenths of a second, 0 not
 * waiting; the speed in both directions, 110, 300, 600, 1200, 2400, 4800, 9600, 19200, 38400, 57600 or 115200 baud; the
 * character size, 5 to 8 bits; the stop bits, KorSerialStopBits_E; the parity, KorSerialParity_E; the flow control,
 * KorSerialFlowControl_E, software being XON/XOFF and hardware RTS/CTS.
 *
 * RUNTIME_ERROR "Unsupported baudRate: %d", "Unsupported dataBits: %d", "Unsupported stopBits: %d", "Unsupported
 * parity: %d", "Unsupported flowControl: %d". IO_ERROR "tcgetattr() error: %d", "cfsetispeed() error: %d",
 * "cfsetospeed() error: %d", "tcsetattr(TCSANOW) error: %d".
 */
KOR_API void kor_serial_set_read_timeout(KorSerial* handle, uint8_t tenths);
KOR_API void kor_serial_set_baud_rate(KorSerial* handle, int32_t baudRate);
KOR_API void kor_serial_set_data_bits(KorSerial* handle, int32_t dataBits);
KOR_API void kor_serial_set_stop_bits(KorSerial* handle, int32_t stopBits);
KOR_API void kor_serial_set_parity(KorSerial* handle, int32_t parity);
KOR_API void kor_serial_set_flow_control(KorSerial* handle, int32_t flowControl);

/*
 * Discards what was received and not yet read, written and not yet sent, or both (KorSerialPurge_E).
 *
 * RUNTIME_ERROR "Unsupported purgeType: %d"; IO_ERROR "tcflush() error: %d".
 */
KOR_API void kor_serial_purge(KorSerial* handle, int32_t purgeType);

/* The number of bytes that were received and not yet read. IO_ERROR "ioctl(FIONREAD) error: %d". */
KOR_API size_t kor_serial_available(KorSerial* handle);

/*
 * Writes `length` bytes and waits until they have left.
 *
 * IO_ERROR "tcdrain() error: %d", which is also what a line that hung up gives; "write() error: %d".
 */
KOR_API void kor_serial_write(KorSerial* handle, const void* bytes, size_t length);

/*
 * Write a byte; the characters of `text`, and its NUL if `withTerminator`; a number in the given byte order.
 *
 * The errors are those of kor_serial_write, and ILLEGAL_ARGUMENT "'text' is NULL".
 */
KOR_API void kor_serial_write_byte(KorSerial* handle, uint8_t byte);
KOR_API void kor_serial_write_str(KorSerial* handle, const char* text, bool withTerminator);
KOR_API void kor_serial_write_i16(KorSerial* handle, int16_t value, int32_t byteOrder);
KOR_API void kor_serial_write_ui16(KorSerial* handle, uint16_t value, int32_t byteOrder);
KOR_API void kor_serial_write_i32(KorSerial* handle, int32_t value, int32_t byteOrder);
KOR_API void kor_serial_write_ui32(KorSerial* handle, uint32_t value, int32_t byteOrder);

/*
 * Reads up to `length` bytes; returns how many, which are fewer when the time-out expired or the line hung up. The
 * time-out starts afresh whenever bytes arrive: a slow but steady sender can keep one call going for longer.
 *
 * IO_ERROR "read() error: %d", with 5 for a line that hung up and has given all its bytes: that is no time-out.
 */
KOR_API size_t kor_serial_read(KorSerial* handle, void* buffer, size_t length);

/*
 * Read a byte, or a number in the given byte order. What had arrived of a number that is cut short is lost.
 *
 * TIMEOUT_ERROR "Timeout waiting for data" when a byte did not come for as long as the time-out; IO_ERROR "read()
 * error: %d", with 5 when the line hangs up before the last byte.
 */
KOR_API uint8_t kor_serial_read_byte(KorSerial* handle);
KOR_API uint16_t kor_serial_read_ui16(KorSerial* handle, int32_t byteOrder);
KOR_API int16_t kor_serial_read_i16(KorSerial* handle, int32_t byteOrder);
KOR_API uint32_t kor_serial_read_ui32(KorSerial* handle, int32_t byteOrder);
KOR_API int32_t kor_serial_read_i32(KorSerial* handle, int32_t byteOrder);

/*
 * Reads a text up to its NUL into the `size` bytes at `buffer`; returns `buffer`. The text is always terminated, unless
 * `size` is 0; what does not fit is read and dropped. After an error the bytes read so far stand there without a NUL.
 *
 * ILLEGAL_ARGUMENT "'buffer' is NULL"; the errors of kor_serial_read_byte.
 */
KOR_API char* kor_serial_read_str(KorSerial* handle, char* buffer, size_t size);

KOR_END_DECLS

#endif
