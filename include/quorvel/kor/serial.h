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

typedef struct KorSerial KorSerial;

typedef enum KorSerialStopBits_E KOR_ENUM_INT32 {
    KOR_SERIAL_STOP_BITS_ONE = 1,
    KOR_SERIAL_STOP_BITS_TWO = 2,
    KOR_SERIAL_STOP_BITS_ONE_AND_HALF = 3
} KorSerialStopBits_E;

typedef enum KorSerialParity_E KOR_ENUM_INT32 {
    KOR_SERIAL_PARITY_NONE = 0,
    KOR_SERIAL_PARITY_ODD = 1,
    KOR_SERIAL_PARITY_EVEN = 2
} KorSerialParity_E;

typedef enum KorSerialFlowControl_E KOR_ENUM_INT32 {
    KOR_SERIAL_FLOW_CONTROL_NONE = 0,
    KOR_SERIAL_FLOW_CONTROL_SOFTWARE = 1,
    KOR_SERIAL_FLOW_CONTROL_HARDWARE = 2
} KorSerialFlowControl_E;

typedef enum KorSerialPurge_E KOR_ENUM_INT32 {
    KOR_SERIAL_PURGE_INPUT = 0,
    KOR_SERIAL_PURGE_OUTPUT = 1,
    KOR_SERIAL_PURGE_BOTH = 2
} KorSerialPurge_E;

typedef struct KorSerialConfig {
    uint8_t readTimeout;
    int32_t baudRate;
    int32_t dataBits;
    int32_t stopBits;
    int32_t parity;
    int32_t flowControl;
} KorSerialConfig;

KOR_API KorList* kor_serial_list_ports(KorList* out);
KOR_API KorSerial* kor_serial_open(const char* path);
KOR_API void kor_serial_close(KorSerial** handle);
KOR_API void kor_serial_config(KorSerial* handle, const KorSerialConfig* config);
KOR_API void kor_serial_set_read_timeout(KorSerial* handle, uint8_t tenths);
KOR_API void kor_serial_set_baud_rate(KorSerial* handle, int32_t baudRate);
KOR_API void kor_serial_set_data_bits(KorSerial* handle, int32_t dataBits);
KOR_API void kor_serial_set_stop_bits(KorSerial* handle, int32_t stopBits);
KOR_API void kor_serial_set_parity(KorSerial* handle, int32_t parity);
KOR_API void kor_serial_set_flow_control(KorSerial* handle, int32_t flowControl);
KOR_API void kor_serial_purge(KorSerial* handle, int32_t purgeType);
KOR_API size_t kor_serial_available(KorSerial* handle);
KOR_API void kor_serial_write(KorSerial* handle, const void* bytes, size_t length);
KOR_API void kor_serial_write_byte(KorSerial* handle, uint8_t byte);
KOR_API void kor_serial_write_str(KorSerial* handle, const char* text, bool withTerminator);
KOR_API void kor_serial_write_i16(KorSerial* handle, int16_t value, int32_t byteOrder);
KOR_API void kor_serial_write_ui16(KorSerial* handle, uint16_t value, int32_t byteOrder);
KOR_API void kor_serial_write_i32(KorSerial* handle, int32_t value, int32_t byteOrder);
KOR_API void kor_serial_write_ui32(KorSerial* handle, uint32_t value, int32_t byteOrder);
KOR_API size_t kor_serial_read(KorSerial* handle, void* buffer, size_t length);
KOR_API uint8_t kor_serial_read_byte(KorSerial* handle);
KOR_API uint16_t kor_serial_read_ui16(KorSerial* handle, int32_t byteOrder);
KOR_API int16_t kor_serial_read_i16(KorSerial* handle, int32_t byteOrder);
KOR_API uint32_t kor_serial_read_ui32(KorSerial* handle, int32_t byteOrder);
KOR_API int32_t kor_serial_read_i32(KorSerial* handle, int32_t byteOrder);
KOR_API char* kor_serial_read_str(KorSerial* handle, char* buffer, size_t size);

KOR_END_DECLS

#endif
