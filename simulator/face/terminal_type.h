// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_FACE_TERMINAL_TYPE_H
#define QUORVEL_SIMULATOR_FACE_TERMINAL_TYPE_H

namespace quorvel::sim {

// Whether TERM names a terminal whose cursor can be moved. Asked before newterm(), which keeps some memory for good
// where it cannot serve.
[[nodiscard]] bool moves_cursor(int descriptor);

}  // namespace quorvel::sim

#endif
