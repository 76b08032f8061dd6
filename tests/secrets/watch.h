// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SECRETS_WATCH_H
#define QUORVEL_TESTS_SECRETS_WATCH_H

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/raised.h"

// What a call of the library wipes, and what of a secret it leaves behind. For programs that link the layers as objects
// and name the functions of watch.cpp to the linker (see CMakeLists.txt).
namespace secrets {

// A secret in the forms in which the library and the libraries under it hold it. Eight successive bytes of any of them
// give it away; a form that is shorter is not looked for.
struct Secret {
    std::string name;
    std::vector<std::string> forms;
};

// The bytes as they are, as words of four bytes the other way round, as ciphers load them, and as digits; and the other
// way round as a whole, as they stand in a number.
Secret of_bytes(std::string name, std::string_view bytes);

// Digits as text, and what of_bytes has for the bytes that they name.
Secret of_digits(std::string name, std::string_view digits);

// Once with a try block around the call, once without: the raise then returns to the raiser.
enum class Raising { kCaught, kReturning };

struct Seen {
    std::vector<support::Raised> raised;
    // Each wipe of memory that held a secret just before, sorted: "16: key" for one of 16 bytes.
    std::vector<std::string> wiped;
    // Where a secret still stands right after the call: the stack below it, blocks as they were freed, by whomever, and
    // the program's variables. Objects that live on are not looked at; with a sanitizer, the variables only.
    std::vector<std::string> left;
};

// Runs `call` on a stack of its own and looks before anything else runs. Secrets must stand nowhere in the program's
// variables but in constants, and `call` gets at them through pointers only.
Seen watch(const std::vector<Secret>& secrets, Raising raising, const std::function<void()>& call);

}  // namespace secrets

#endif
