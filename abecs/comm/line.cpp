// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "abecs/comm/line.h"

#include <algorithm>
#include <cstring>

#include "core/serial.h"

void abecs::discard_ahead(Line& line) {
    explicit_bzero(line.ahead.data(), line.end);
    line.next = 0;
    line.end = 0;
}

bool abecs::refill(Line& line, kor::Deadline deadline, kor::Waker* waker) {
    discard_ahead(line);
    line.end = kor::read_arrived(line.serial, std::min(deadline, line.limit), line.ahead, waker);
    return line.end != 0;
}
