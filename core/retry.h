// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_RETRY_H
#define QUORVEL_CORE_RETRY_H

#include <cerrno>

namespace kor {

// A signal does not end a call that can be made again.
template <typename Call>
auto retry(Call&& call) {
    auto result = call();
    while (result < 0 && errno == EINTR) { result = call(); }
    return result;
}

}  // namespace kor

#endif
