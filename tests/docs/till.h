// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_DOCS_TILL_H
#define QUORVEL_TESTS_DOCS_TILL_H

#include <string>
#include <vector>

// The exchanges that the pages of the commands show, each as a till has it with the PIN pad at that port. In a source
// of their own, because the virtual PIN pad has words of the same name.
namespace till {

// "gcx, a chip": the command and what the exchange shows of it.
std::vector<std::string> exchanges();
// Has the exchange, in a session that it opens and closes.
void play(const std::string& exchange, const std::string& port);

}  // namespace till

#endif
