// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_ATTEMPT_H
#define QUORVEL_CORE_ATTEMPT_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "core/function_ref.h"
#include "quorvel/kor/exception.h"
#include "quorvel/kor/result.h"

namespace kor {

using Branch = FunctionRef<void()>;

// A try block. The branches are lambdas that capture by reference:
//
//     AbecsPacket* packet = nullptr;
//     kor::attempt([&] { packet = abecs_packet_new(); ... })
//         .on(KOR_RESULT_TIMEOUT_ERROR, [&] { ... })
//         .cleanup([&] { abecs_packet_delete(&packet); })
//         .run();
//
// The clean-up runs on every way out, before the catch branches when there is an error. An error that no branch catches
// goes on to the enclosing block after the clean-up. A `return` inside a lambda only leaves that branch.
//
// An error that is pending when the block is opened is pending again once it is over, unless another one leaves it. So
// whatever calls the library in a clean-up or a catch branch loses nothing by it.

// `code` or, with KOR_RESULT_OK, every error.
struct CatchBranch {
    KorResult_E code = KOR_RESULT_OK;
    Branch branch;
};

void run_attempt(Branch body, std::span<const CatchBranch> catches, Branch cleanup);

template <size_t kCatches>
class [[nodiscard("a try block does nothing until run()")]] Attempt {
public:
    explicit Attempt(Branch body) : body_(body) {}

    // Catch `code`, or every error with KOR_RESULT_OK. Branches are tried in the order given.
    Attempt<kCatches + 1> on(KorResult_E code, Branch branch) const {
        Attempt<kCatches + 1> longer(body_);
        std::copy(catches_.begin(), catches_.end(), longer.catches_.begin());
        longer.catches_[kCatches] = {code, branch};
        longer.cleanup_ = cleanup_;
        return longer;
    }

    Attempt<kCatches + 1> on_any(Branch branch) const { return on(KOR_RESULT_OK, branch); }

    Attempt cleanup(Branch branch) const {
        Attempt same = *this;
        same.cleanup_ = branch;
        return same;
    }

    void run() const { run_attempt(body_, catches_, cleanup_); }

private:
    template <size_t>
    friend class Attempt;

    Branch body_;
    std::array<CatchBranch, kCatches> catches_{};
    Branch cleanup_;
};

template <typename Body>
Attempt<0> attempt(Body&& body) {
    return Attempt<0>(Branch(body));
}

// How many errors have gone to the uncaught handler so far: their raises returned.
[[nodiscard]] uint32_t uncaught_errors();

// False when `step` raised and came back all the same, as it can outside every try block. No block is opened for it.
template <typename Step>
[[nodiscard]] bool completes(Step&& step) {
    const uint32_t before = uncaught_errors();
    step();
    return uncaught_errors() == before;
}

}  // namespace kor

#endif
