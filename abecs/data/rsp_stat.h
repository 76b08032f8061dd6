// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_DATA_RSP_STAT_H
#define QUORVEL_ABECS_DATA_RSP_STAT_H

#include <cstdint>

#include "quorvel/abecs/rsp_stat.h"

namespace abecs {

// Whether a PIN pad may answer with this status: the host's own values below 0 never travel.
[[nodiscard]] bool is_rsp_stat(int32_t stat);

}  // namespace abecs

#endif
