// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_DATA_PP_EVENT_H
#define QUORVEL_ABECS_DATA_PP_EVENT_H

#include <cstdint>

#include "quorvel/abecs/pp_event.h"

namespace abecs {

[[nodiscard]] bool is_pp_event(int32_t event);

}  // namespace abecs

#endif
