// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_SERIAL_H
#define QUORVEL_CORE_SERIAL_H

#include "quorvel/kor/serial.h"

struct KorSerial {
    int32_t fd;
};

namespace kor {

// kor_serial_list_ports over the entries of `directory`, which ends with a slash.
KorList* list_serial_ports(const char* directory, KorList* out);

}  // namespace kor

#endif
