// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_E2E_CPP_CLIENT_H
#define QUORVEL_TESTS_E2E_CPP_CLIENT_H

#include <functional>
#include <string>

// What a program in C++ comes to at a virtual PIN pad. In a source of their own, because both have words such as
// Status.
namespace client {

// A plain session that shows a text.
std::string plain(const std::string& port);
// An encrypted one with a working key for card numbers, which waits for a key of the keypad.
std::string encrypted(const std::string& port);
// A plain one on the link of an encrypted one that cannot be closed, once this has happened: its status, and E for each
// frame that was enciphered and P for each that was not.
std::string plain_after_encrypted(const std::string& port, const std::function<void()>& spoil);

}  // namespace client

#endif
