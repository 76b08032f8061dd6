// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_FUZZ_LINK_H
#define QUORVEL_FUZZ_LINK_H

#include <algorithm>
#include <string>

#include "fuzz/harness.h"
#include "quorvel/additions.h"
#include "quorvel/quorvel.h"
#include "tests/support/malloc/failing_malloc.h"
#include "tests/support/memory/line.h"
#include "tests/support/memory/pad.h"
#include "tests/support/raised.h"

// What the harnesses of the library share.
namespace quorvel::fuzz {

// Taken from the front, piece by piece; what is not there is zeros and empty texts.
class Input {
public:
    Input(const uint8_t* data, size_t size) : text_(reinterpret_cast<const char*>(data), size) {}

    [[nodiscard]] bool empty() const { return at_ == text_.size(); }
    uint8_t byte() { return empty() ? uint8_t{0} : static_cast<uint8_t>(text_[at_++]); }
    std::string take(size_t count) {
        const std::string piece = text_.substr(at_, count);
        at_ += piece.size();
        return piece;
    }
    // As long as its first two bytes say, at most.
    std::string text() {
        const size_t high = byte();
        return take(high << 8 | byte());
    }
    std::string rest() { return take(text_.size() - at_); }

private:
    std::string text_;
    size_t at_ = 0;
};

// What a call raises, or code 0; it must leave no try block open, and no memory that `release` does not free.
template <typename Call, typename Release>
support::Raised raised_by(Call&& call, Release&& release) {
    const support::FailingMalloc memory(0);
    const support::Raised raised = support::raised_by(call);
    release();
    require(memory.kept() == 0, "no memory is left");
    require(kor_exception_get_frame_node() == nullptr, "no try block is open");
    return raised;
}

// A link and the PIN pad at its other end.
struct Ends {
    Ends() { link = abecs_comm_open(memory::kPath); }
    ~Ends() {
        line.heal();
        abecs_comm_close(&link);
    }
    Ends(Ends&&) = delete;

    memory::Line line;
    memory::Pad pad{line};
    AbecsComm* link = nullptr;
};

}  // namespace quorvel::fuzz

#endif
