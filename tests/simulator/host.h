// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SIMULATOR_HOST_H
#define QUORVEL_TESTS_SIMULATOR_HOST_H

#include <cstddef>
#include <string>
#include <string_view>

// The host's end of the line, as bare as can be: what it sends and expects is spelled in the tests.
class Host {
public:
    explicit Host(const std::string& path);
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    void send(std::string_view bytes);

    // The next `count` bytes, or fewer when they do not come.
    std::string receive(size_t count);

    // Sends without reading anything until nothing more goes out.
    void flood(std::string_view bytes);

private:
    int descriptor_;
};

#endif
