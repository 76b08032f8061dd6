// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_ABECS_DATA_SPE_MTHD_PIN_H
#define QUORVEL_ABECS_DATA_SPE_MTHD_PIN_H

#include "quorvel/abecs/spe_mthd_pin.h"

namespace abecs {

// The enumerator's name. RUNTIME_ERROR "Unhandled case" for any other number.
[[nodiscard]] const char* mthd_pin_to_string(AbecsSpeMthdPin_E mthdPin);

}  // namespace abecs

#endif
