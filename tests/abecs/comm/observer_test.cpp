// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "quorvel/abecs/observer.h"

#include <array>
#include <sstream>

#include "quorvel/abecs/line.h"
#include "tests/abecs/comm/line.h"

namespace {

using namespace support;

constexpr std::array<uint8_t, 16> kKey{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};

// Keeps what it is told, a line for each event.
struct Log {
    std::vector<std::string> lines;
    std::vector<int64_t> durations;
};

void note(const AbecsLinkEvent* event, void* context) {
    static constexpr const char* kNames[] = {"sent", "received", "rejected", "damaged", "cancelled", "time-out"};
    auto& log = *static_cast<Log*>(context);
    log.durations.push_back(event->duration);
    std::ostringstream line;
    line << kNames[event->type] << ' ' << event->cmdId << ' ' << event->status
         << (event->encrypted ? " encrypted " : " ") << event->packetSize << '/' << event->frameSize;
    if (event->packet != nullptr) { line << ' ' << std::string(event->packet, event->packet + event->packetSize); }
    log.lines.push_back(line.str());
}

using Lines = std::vector<std::string>;

class Observer : public OnLink {
protected:
    void SetUp() override { EXPECT_NO_RAISE(abecs_comm_set_observer(link.comm, note, &log)); }

    const Packet request{"GIN00200"};
    Log log;
};

TEST_F(Observer, IsToldOfFramesAndRepetitionsAndNoData) {
    link.peer.expect(kGin).send(kNak).expect(kGin).wait(50ms).send(kAck).send(kBad).expect(kNak).send(kGood);
    EXPECT_NO_RAISE(abecs_comm_send_packet(link.comm, request));
    EXPECT_NO_RAISE(abecs_comm_read_packet(link.comm, packet));
    EXPECT_EQ(log.lines,
              (Lines{"rejected GIN -1 0/12", "sent GIN -1 8/12", "damaged GIN -1 0/10", "received GIN 0 6/10"}));
    ASSERT_EQ(log.durations.size(), 4U);
    EXPECT_GE(log.durations[1], 50'000);
    EXPECT_GE(log.durations[3], 450'000) << "a purge comes first";
}

TEST_F(Observer, SeesClearPacketsOnlyIfAskedTo) {
    abecs_comm_set_key(link.comm, kKey.data());
    const std::string sealed = encrypted_frame("B77D14F3 6CF7E650 2B922EE6 C135B0F1"_hex, 0x21B9);
    for (const bool show : {true, false}) {
        EXPECT_NO_RAISE(abecs_comm_show_clear_packets(link.comm, show));
        log = {};
        link.peer.expect(sealed).send(kAck).response("NTM000032" + std::string(32, '*')).send(kGood);
        request.fill("GIN00200");
        EXPECT_NO_RAISE(abecs_comm_send_packet(link.comm, request));
        EXPECT_NO_RAISE(abecs_comm_read_packet(link.comm, packet));
        EXPECT_NO_RAISE(abecs_comm_read_packet(link.comm, packet));
        const auto shown = [=](const std::string& bytes) { return show ? " " + bytes : ""; };
        EXPECT_EQ(log.lines, (Lines{"sent GIN -1 encrypted 8/" + std::to_string(sealed.size()) + shown("GIN00200"),
                                    "received NTM 0 41/45" + shown("NTM000032" + std::string(32, '*')),
                                    "received GIN 0 6/10" + shown("GIN000")}));
    }
}

TEST_F(Observer, IsToldOfCancelAndTimeOutsButNotOfPolls) {
    link.peer.request("GIN00200");
    EXPECT_NO_RAISE(abecs_comm_send_packet(link.comm, request));
    EXPECT_NO_RAISE(abecs_comm_set_poll_time(link.comm, 0));
    EXPECT_NO_RAISE(abecs_comm_lock(link.comm, "GIN"));
    log = {};
    EXPECT_EQ(read(), kTimeout);
    EXPECT_EQ(log.lines, Lines{});
    link.peer.accept_can();
    EXPECT_NO_RAISE(abecs_comm_send_can(link.comm));
    EXPECT_NO_RAISE(abecs_comm_set_limit(link.comm, 100));
    EXPECT_EQ(read().code, KOR_RESULT_TIMEOUT_ERROR);
    EXPECT_EQ(log.lines, (Lines{"cancelled GIN -1 0/0", "time-out GIN -1 0/0"}));
    EXPECT_NO_RAISE(abecs_comm_set_poll_time(link.comm, 2000));
    EXPECT_NO_RAISE(abecs_comm_lock(link.comm, "GIN"));
    EXPECT_EQ(read().code, KOR_RESULT_TIMEOUT_ERROR);
    EXPECT_EQ(log.lines.size(), 2U) << "a poll that the limit has ended";
    EXPECT_NO_RAISE(abecs_comm_set_observer(link.comm, nullptr, nullptr));
    EXPECT_EQ(read().code, KOR_RESULT_TIMEOUT_ERROR);
    EXPECT_EQ(log.lines.size(), 2U);
}

TEST_F(Observer, IsToldOfEachCanThatNobodyConfirms) {
    link.peer.expect(kCan).expect(kCan);
    EXPECT_NO_RAISE(abecs_comm_set_limit(link.comm, 2500));
    EXPECT_EQ(raised_by([&] { abecs_comm_send_can(link.comm); }).code, KOR_RESULT_TIMEOUT_ERROR);
    EXPECT_EQ(log.lines, (Lines{"time-out  -1 0/0", "time-out  -1 0/0"}));
}

// An answer that is no response has no status.
TEST_F(Observer, IsToldOfWhatCannotBeRead) {
    for (const std::string& payload : {std::string("GI"), std::string("GIN0A0"), "47 0A 1B 303030"_hex}) {
        link.peer.response(payload);
        EXPECT_NO_RAISE(abecs_comm_read_packet(link.comm, packet));
    }
    link.peer.send(encrypted_frame("B77D14F3 6CF7E650 2B922EE6 C135B0F1"_hex, 0x21B9));
    EXPECT_NO_RAISE(abecs_comm_read_packet(link.comm, packet));
    EXPECT_EQ(log.lines, (Lines{"received GI -1 2/6", "received GIN -1 6/10", "received G?? 0 6/10",
                                "received  -1 encrypted 0/21"}));
}

}  // namespace
