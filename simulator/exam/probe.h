// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_EXAM_PROBE_H
#define QUORVEL_SIMULATOR_EXAM_PROBE_H

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/wire.h"
#include "wire/descriptor.h"

namespace quorvel::sim::exam {

// Another program at the port, of the simplest kind.
class Probe {
public:
    // Throws std::system_error when the port cannot be opened.
    explicit Probe(const std::string& port);

    void send(ByteView bytes) const;
    void send_command(std::string_view packet) const;
    // Whether these bytes come in time; what comes before them is passed over.
    [[nodiscard]] bool hears(ByteView due, std::chrono::milliseconds limit) const;
    // Whether the PIN pad confirms that it waits for nothing.
    [[nodiscard]] bool cancels() const;
    // Whether it opens a session in clear.
    [[nodiscard]] bool opens_session() const;

    // Has the port for itself as far as programs heed it.
    void lock() const;
    // Who has it so; empty when nobody has.
    [[nodiscard]] std::string lock_left() const;

private:
    wire::Descriptor port_;
};

}  // namespace quorvel::sim::exam

#endif
