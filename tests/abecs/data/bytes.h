// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_ABECS_DATA_BYTES_H
#define QUORVEL_TESTS_ABECS_DATA_BYTES_H

#include <string>
#include <string_view>

#include "quorvel/abecs/param.h"
#include "quorvel/kor/buffer.h"
#include "tests/support/packets.h"

namespace support {

// A byte buffer that is filled and looked at as text. Converts to what the functions under test take, so that they
// can be called inside the raise macros without an object of their own.
class Bytes {
public:
    explicit Bytes(std::string_view content = {}, uint32_t capacity = 64) : buffer_(kor_buffer_new(capacity)) {
        kor_buffer_write(buffer_, content.data(), content.size());
    }
    ~Bytes() { kor_buffer_delete(&buffer_); }
    Bytes(Bytes&&) = delete;

    operator KorBuffer*() const { return buffer_; }

    // What waits, taken out.
    [[nodiscard]] std::string take() const {
        std::string content(kor_buffer_available_read(buffer_), '\0');
        kor_buffer_read(buffer_, content.data(), content.size());
        return content;
    }

private:
    KorBuffer* buffer_;
};

class Param {
public:
    Param() : param_(abecs_param_new()) {}
    ~Param() { abecs_param_delete(&param_); }
    Param(Param&&) = delete;

    operator AbecsParam*() const { return param_; }

    void fill(uint16_t id, std::string_view content) const {
        abecs_param_reset(param_);
        abecs_param_set_id(param_, id);
        abecs_param_write_field_b(param_, content.data(), content.size());
    }

    [[nodiscard]] std::string take() const {
        std::string content(abecs_param_available_read(param_), '\0');
        abecs_param_read_field_b(param_, content.data(), content.size(), content.size());
        return content;
    }

private:
    AbecsParam* param_;
};

}  // namespace support

#endif
