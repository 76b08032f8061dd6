// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_BENCH_EXCHANGE_H
#define QUORVEL_BENCH_EXCHANGE_H

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bench/far_end.h"
#include "quorvel/additions.h"
#include "quorvel/quorvel.h"

namespace quorvel::bench {

// A link of the library, and what its exchanges work with.
class Link {
public:
    Link(std::shared_ptr<FarEnd> far, size_t line, bool wholeFrames, bool encrypted);
    ~Link();
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

    AbecsComm* comm;
    AbecsPacket* packet = abecs_packet_new();
    AbecsRspParamMap* values = abecs_rsp_param_map_new();

private:
    std::shared_ptr<FarEnd> far_;
};

struct Exchange {
    std::string name;
    Traffic traffic;
    std::function<bool(Link&)> run;  // by the library: whether it went as it must
    bool encrypted = false;
};

// Commands: a short request, a display's text, a long request, a long answer.
std::vector<Exchange> commands();
// GIX, answered with so many parameters.
Exchange ask_for(size_t params);
// A packet of so many bytes each way, by the functions of the link.
Exchange packets(size_t sent, size_t received, bool encrypted);

// One exchange, on a line that is open.
using Run = std::function<void()>;

// Ways to do an exchange: by the library, and by loops of system calls that know how much will come and look at none of
// it.
enum class Way {
    kLibrary,
    kLibraryWholeFrames,
    kBytesDrained,      // write one byte and drain, read one byte
    kBytesDrainedOnce,  // write one byte; drain once at the end; read what there is
    kWholeFrames,       // write all, read what there is: an ideal, with nobody's checks in it
};

inline constexpr std::array kWays{Way::kLibrary, Way::kLibraryWholeFrames, Way::kBytesDrained, Way::kBytesDrainedOnce,
                                  Way::kWholeFrames};
inline constexpr std::array kLibraryWays{Way::kLibrary, Way::kLibraryWholeFrames};

std::string name_of(Way way);
Run open(const Exchange& exchange, Way way, const std::shared_ptr<FarEnd>& far, size_t line = 0);

}  // namespace quorvel::bench

#endif
