// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_ABECS_DATA_BYTES_H
#define QUORVEL_TESTS_ABECS_DATA_BYTES_H

#include <string>
#include <string_view>

#include "quorvel/abecs/param.h"
#include "quorvel/kor/buffer.h"
#include "tests/core/owned.h"
#include "tests/support/packets.h"

namespace support {

// A byte buffer that is filled and looked at as text. Converts to what the functions under test take, so that they
// can be called inside the raise macros without an object of their own.
class Bytes : public Owned<KorBuffer, kor_buffer_delete> {
public:
    explicit Bytes(std::string_view content = {}, uint32_t capacity = 64) : Owned(kor_buffer_new(capacity)) {
        kor_buffer_write(object, content.data(), content.size());
    }

    // What waits, taken out.
    [[nodiscard]] std::string take() const {
        std::string content(kor_buffer_available_read(object), '\0');
        kor_buffer_read(object, content.data(), content.size());
        return content;
    }
};

class Param : public Owned<AbecsParam, abecs_param_delete> {
public:
    Param() : Owned(abecs_param_new()) {}

    void fill(uint16_t id, std::string_view content) const {
        abecs_param_reset(object);
        abecs_param_set_id(object, id);
        abecs_param_write_field_b(object, content.data(), content.size());
    }

    [[nodiscard]] std::string take() const {
        std::string content(abecs_param_available_read(object), '\0');
        abecs_param_read_field_b(object, content.data(), content.size(), content.size());
        return content;
    }
};

}  // namespace support

#endif
