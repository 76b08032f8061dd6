// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_SIMULATOR_COMMANDS_HANDLERS_H
#define QUORVEL_SIMULATOR_COMMANDS_HANDLERS_H

#include "simulator/command.h"

// One function for each command. It reads the whole request before it changes anything: what does not have its layout
// leaves as a LayoutError and is answered in one place.
namespace quorvel::sim::commands {

Answer clo(Call& call);
Answer clx(Call& call);
Answer gin(Call& call);
Answer gix(Call& call);
Answer opn(Call& call);

}  // namespace quorvel::sim::commands

#endif
