// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CLI_LIBRARY_H
#define QUORVEL_CLI_LIBRARY_H

#include <type_traits>

#include "cli/error.h"
#include "quorvel/quorvel.h"

namespace quorvel::cli {

namespace detail {

// Runs body(context) in a try block. Throws LibraryError once that is closed again.
void run(void (*body)(void*), void* context);

}  // namespace detail

// What `body` returns, which calls the library; throws LibraryError for what it raises. A raise is a longjmp: nothing
// that has a destructor may be made inside, so hand over c_str() and records by reference.
template <typename Body>
auto call(Body body) {
    using Result = std::invoke_result_t<Body&>;
    static_assert(std::is_trivially_destructible_v<Body>, "capture by reference");
    if constexpr (std::is_void_v<Result>) {
        detail::run([](void* context) { (*static_cast<Body*>(context))(); }, &body);
    } else {
        static_assert(std::is_trivially_destructible_v<Result>, "return what a longjmp may pass over");
        struct Frame {
            Body& body;
            Result result;
        } frame{body, Result{}};
        detail::run(
            [](void* context) {
                auto& inner = *static_cast<Frame*>(context);
                inner.result = inner.body();
            },
            &frame);
        return frame.result;
    }
}

}  // namespace quorvel::cli

#endif
