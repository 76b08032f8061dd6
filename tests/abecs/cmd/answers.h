// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_ABECS_CMD_ANSWERS_H
#define QUORVEL_TESTS_ABECS_CMD_ANSWERS_H

#include <initializer_list>
#include <string>

#include "tests/support/link.h"

namespace support {

// An answer that a command refuses, and the error it gives.
struct BadAnswer {
    std::string answer;
    int16_t code;
    std::string detail;
};

// `call` sends just this request, and each of the answers is an error. It may send and then wait for the answer.
template <typename Call>
void expect_bad_answers(const std::string& request, Call call, std::initializer_list<BadAnswer> answers) {
    for (const BadAnswer& bad : answers) {
        Link link;
        link.peer.request(request).response(bad.answer);
        EXPECT_RAISES(bad.code, bad.detail, call(link.comm)) << bad.answer;
    }
}

}  // namespace support

#endif
