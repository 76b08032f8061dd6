// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "fuzz/link.h"
#include "tests/support/wire.h"

using namespace quorvel::fuzz;

// Table records, versions and names, as a caller gives them: nothing goes over the line unless it is in its form.
int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Ends ends;
    Input input(data, size);
    const uint8_t which = input.byte();
    const std::string text = input.rest();
    const size_t before = ends.pad.requests();
    auto act = [&] {
        switch (which % 5) {
            case 0:
                return static_cast<void>(abecs_cmd_tlr(ends.link, text.c_str()));
            case 1:
                return static_cast<void>(abecs_cmd_tli(ends.link, which, text.c_str()));
            case 2:
                return static_cast<void>(abecs_cmd_mli(ends.link, text.c_str(), 1, 2, 3));
            case 3:
                return static_cast<void>(abecs_cmd_dsp(ends.link, text.c_str()));
            default:
                return static_cast<void>(abecs_cmd_cng(ends.link, text.c_str()));
        }
    };
    constexpr const char* kIds[]{"TLR000", "TLI000", "MLI000", "DSP000", "CNG000"};
    ends.pad.answer({support::frame(kIds[which % 5])});
    const support::Raised raised = raised_by(act, [] {});
    const size_t sent = ends.pad.requests() - before;
    require(sent == (raised.code == KOR_RESULT_OK ? 1 : 0), "it is sent once, or refused");
    ends.line.heal();
    return 0;
}
