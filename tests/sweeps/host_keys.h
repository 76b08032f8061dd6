// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SWEEPS_HOST_KEYS_H
#define QUORVEL_TESTS_SWEEPS_HOST_KEYS_H

#include <string>

// The library makes a key for each OPN and DWK2, which takes long. In this program it gets the same one each time, made
// once by another library; what it makes by itself is for the tests of crypt/.
namespace sweeps {

// A PIN pad's answers to the public keys.
std::string session_answer();
std::string pan_key_answer();

}  // namespace sweeps

#endif
