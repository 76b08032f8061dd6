// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_CMD_PARAM_TEXT_H
#define QUORVEL_ABECS_CMD_PARAM_TEXT_H

#include <cstdint>

#include "quorvel/abecs/rsp_param_map.h"

namespace abecs {

// The bytes of an answer's parameter, which the frame has put a zero behind; null when it did not come.
[[nodiscard]] inline const char* param_text(const AbecsRspParamMap* map, uint16_t id) {
    const AbecsRspParamValue* value = abecs_rsp_param_map_get(map, id);
    if (value == nullptr) { return nullptr; }
    return value->data != nullptr ? reinterpret_cast<const char*>(value->data) : "";
}

}  // namespace abecs

#endif
