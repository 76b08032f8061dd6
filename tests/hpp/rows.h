// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_HPP_ROWS_H
#define QUORVEL_TESTS_HPP_ROWS_H

#include <string>
#include <vector>

#include "quorvel/quorvel.hpp"
#include "tests/support/memory/line.h"
#include "tests/support/memory/pad.h"
#include "tests/support/wire.h"

namespace hpp {

// A request, all that goes over the line for it and back, and what its answer holds, in words.
struct Row {
    const char* name;
    std::vector<std::string> requests;  // or "*" for one that is another each time
    std::vector<std::string> answers;
    std::string (*act)(quorvel::Session& session);
    std::string result;
};

const std::vector<Row>& rows();

// As frames; a notification comes together with what follows it.
std::vector<std::string> framed(const std::vector<std::string>& payloads);

// A link and a plain session with a PIN pad at the other end of a line in memory.
struct World {
    memory::Line line;
    memory::Pad pad{line};
    quorvel::Link link = opened();
    quorvel::Session session = link.open();

    // In the order in which the frames are asked for.
    void answer(const std::vector<std::string>& payloads) { pad.answer(framed(payloads)); }

private:
    quorvel::Link opened() {
        quorvel::Link made(memory::kPath);
        pad.answer(framed({"OPN000", "GTS0000101234567890"}));
        return made;
    }
};

}  // namespace hpp

#endif
