// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_CORE_ATTEMPT_H
#define QUORVEL_CORE_ATTEMPT_H

#include <array>
#include <cstddef>

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
// The clean-up runs on every way out, before the catch branches when there is an error. What it calls must not open a
// try block: opening one clears the pending error, and the error would be lost. An error that no branch catches goes
// on to the enclosing block after the clean-up. A `return` inside a lambda only leaves that branch.
class Attempt {
public:
    explicit Attempt(Branch body) : body_(body) {}

    // Catch `code`, or every error with KOR_RESULT_OK. Branches are tried in the order given.
    Attempt& on(KorResult_E code, Branch branch) {
        catches_[catchCount_++] = {code, branch};
        return *this;
    }

    Attempt& on_any(Branch branch) { return on(KOR_RESULT_OK, branch); }

    Attempt& cleanup(Branch branch) {
        cleanup_ = branch;
        return *this;
    }

    void run() const;

private:
    struct Catch {
        KorResult_E code = KOR_RESULT_OK;
        Branch branch;
    };

    void step(KorExceptionFrameNode* frame) const;

    Branch body_;
    std::array<Catch, 2> catches_{};
    size_t catchCount_ = 0;
    Branch cleanup_;
};

template <typename Body>
Attempt attempt(Body&& body) {
    return Attempt(Branch(body));
}

}  // namespace kor

#endif
