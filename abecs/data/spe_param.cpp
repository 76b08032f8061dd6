// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/data/spe_param.h"

using namespace abecs;

void abecs::write_number(AbecsParam* param, SpeNumber id, uint64_t value) {
    const SpeParam& row = spe_param(id.id);
    if (row.form == SpeForm::kBinary) {
        return abecs_param_write_field_x(param, static_cast<uint32_t>(value), row.width);
    }
    abecs_param_write_field_n(param, value, row.width);
}
