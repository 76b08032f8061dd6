// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <cerrno>
#include <functional>

#include "quorvel/additions.h"
#include "tests/sweeps/rig.h"

namespace {

using namespace sweeps;
using namespace support;
using namespace std::chrono_literals;

// Opens a link and closes it, and says where it has left something.
class Opening {
public:
    using Open = AbecsComm* (*)(const char*);

    explicit Opening(Open open) : open_(open) {}

    // False once nothing has gone wrong.
    bool fails(size_t allocation, size_t call, int fault, Raise raise, const std::string& what) {
        line_.heal();
        AbecsComm* link = nullptr;
        std::vector<Raised> raised;
        auto act = [&] {
            link = open_(memory::kPath);
            abecs_comm_close(&link);
        };
        const FailingMalloc memory(allocation);
        line_.fail(call, fault);
        if (raise == Raise::kCaught) {
            raised = {raised_by(act)};
            raised_by([&] { abecs_comm_close(&link); });
        } else {
            const ReturningRaises raises;
            act();
            raised = raises.all();
        }
        EXPECT_EQ(link, nullptr) << what;
        EXPECT_EQ(memory.kept(), 0U) << what;
        EXPECT_EQ(line_.open_descriptors(), 0U) << what;
        EXPECT_EQ(kor_exception_get_frame_node(), nullptr) << what;
        const bool failed = memory.failed() || line_.failed();
        const bool mayFail = failed && fault != EINTR && fault != memory::kShort;
        EXPECT_TRUE(mayFail || raised.empty() || raised[0] == Raised{}) << what << ": " << raised[0];
        EXPECT_TRUE(!memory.failed() || raised[0] == error(KOR_RESULT_MALLOC_ERROR, "")) << what;
        return failed;
    }

private:
    Open open_;
    memory::Line line_;
    memory::Pad pad_{line_};
};

TEST(Opening, LeavesNothingBehindWhereverItFails) {
    EXPECT_EQ((allocations_of(make<abecs_rsp_parser_new, abecs_rsp_parser_delete>)), 1U);
    for (const Opening::Open open : {abecs_comm_open, abecs_comm_claim}) {
        Opening opening(open);
        for (const Raise raise : kBothRaises) {
            size_t allocations = 0;
            while (opening.fails(allocations + 1, SIZE_MAX, 0, raise, "allocation")) { ++allocations; }
            EXPECT_GE(allocations, 2U);
            for (const int fault : {EIO, EINTR, EAGAIN, ENODEV, EACCES, EBUSY, +memory::kShort, +memory::kHangUp}) {
                const std::string what = std::to_string(fault) + " in call ";
                size_t calls = 0;
                while (opening.fails(0, calls + 1, fault, raise, what + std::to_string(calls + 1))) { ++calls; }
                EXPECT_GE(calls, 15U);
            }
        }
    }
}

// Each of the four purges gives up after 3 s, having looked at the line a few times rather than at each byte.
TEST(Opening, OfALineThatNeverFallsSilentFailsInTimeAndAtLittleCost) {
    memory::Line line;
    std::string heard;
    line.listen([&](uint8_t byte) { heard += static_cast<char>(byte); });
    line.send_in_bytes(true);
    line.send(std::string(40'000, 'U'));
    const memory::Time before = line.now();
    AbecsComm* link = nullptr;
    EXPECT_EQ(raised_by([&] { link = abecs_comm_open(memory::kPath); }),
              error(KOR_RESULT_IO_ERROR, "Communication error while sending CAN"));
    EXPECT_EQ(link, nullptr);
    EXPECT_EQ(heard, "\x18\x18\x18");
    EXPECT_GE(line.now() - before, 12s);
    EXPECT_LT(line.now() - before, 13s);
    EXPECT_LT(line.calls(), 3000U);
}

// Whatever the line does, within the limit and the little that a byte takes.
TEST(Limit, IsKept) {
    Rig rig;
    rig.limit = 700;
    rig.most = 710ms;
    const auto any = [](const Outcome&, const Outcome&) { return true; };
    for (const char* name :
         {"abecs_cmd_gin", "abecs_cmd_gix", "abecs_cmd_gky", "abecs_cmd_gky_response", "abecs_cmd_mlx"}) {
        const Command& command = command_of(name);
        rig.begin(command);
        for (const Raise raise : kBothRaises) {
            for (const int fault : {EIO, EINTR, EAGAIN, +memory::kShort, +memory::kHangUp}) {
                for (size_t n = 1; n == 1 || rig.call_failed(); ++n) {
                    rig.fail_call(n, fault, false);
                    if (!rig.run(raise, std::to_string(fault) + " in call " + std::to_string(n), any)) { return; }
                }
            }
            if (command.answers.empty()) { continue; }
            const std::string frame = support::frame(command.answers[0]);
            for (size_t size = 0; size < frame.size(); ++size) {
                rig.say({frame.substr(0, size)});
                if (!rig.run(raise, std::to_string(size) + " bytes", any)) { return; }
            }
            for (const std::string& babble : {std::string(3000, 'x'), "\x16" + std::string(3000, 'x')}) {
                rig.say({babble});
                if (!rig.run(raise, "babble", any)) { return; }
            }
        }
    }
}

}  // namespace
