// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors

// Errors of the library as exceptions:
//
//     in_cpp /dev/ttyACM0

#include <cstdlib>
#include <iostream>
#include <memory>
#include <stdexcept>

#include "quorvel/quorvel.h"

// Runs `step`, which calls the library, and throws what that raises. A raise jumps out of `step` without running
// destructors: let it own nothing that has one.
template <typename Step>
void checked(const Step& step) {
    KorException error{};
    KOR_TRY { step(); }
    KOR_CATCH(KOR_RESULT_OK) { kor_exception_get(&error); }
    KOR_END_TRY;
    if (error.error != KOR_RESULT_OK) { throw std::runtime_error(error.message); }
}

// While an exception is on its way, an error in closing must not become another one.
struct Close {
    void operator()(AbecsComm* link) const noexcept {
        try {
            checked([&] { abecs_comm_close(&link); });
        } catch (const std::runtime_error&) {}
    }
};
using Link = std::unique_ptr<AbecsComm, Close>;

Link open_link(const char* port) {
    AbecsComm* link = nullptr;
    checked([&] { link = abecs_comm_open(port); });
    return Link(link);
}

int main(int argc, char** argv) {
    try {
        const Link link = open_link(argc > 1 ? argv[1] : "/dev/ttyACM0");
        AbecsCmdGinOut who{};
        int32_t status = ABECS_RSP_STAT_ST_INTERR;
        checked([&] { status = abecs_cmd_gin(link.get(), 0, &who); });
        if (status != ABECS_RSP_STAT_ST_OK) { return EXIT_FAILURE; }
        std::cout << who.idx00.mnName << ' ' << who.idx00.serNum << '\n';
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
