// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_CORE_OWNED_H
#define QUORVEL_TESTS_CORE_OWNED_H

// Deletes a library object at the end of a test. Keep it outside the lambdas in which a raise may be on its way.
template <typename Object, void (*kDelete)(Object**)>
class Owned {
public:
    explicit Owned(Object* object) : object_(object) {}
    ~Owned() { kDelete(&object_); }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;

    operator Object*() const { return object_; }

private:
    Object* object_;
};

#endif
