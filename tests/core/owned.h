// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_CORE_OWNED_H
#define QUORVEL_TESTS_CORE_OWNED_H

// Deletes a library object at the end of a test. Keep it outside the lambdas in which a raise may be on its way.
template <typename Object, void (*kDelete)(Object**)>
struct Owned {
    explicit Owned(Object* made) : object(made) {}
    ~Owned() { kDelete(&object); }
    Owned(Owned&&) = delete;
    operator Object*() const { return object; }

    Object* object;
};

#endif
