// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <array>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>

#include "simulator/pin_pad.h"

namespace {

struct Outcome {
    int status = -1;
    std::string output;
};

Outcome first_light(const std::string& port) {
    Outcome run;
    FILE* pipe = popen((QUORVEL_FIRST_LIGHT " " + port + " 2>&1").c_str(), "r");
    if (pipe == nullptr) return run;
    std::array<char, 256> line{};
    while (std::fgets(line.data(), line.size(), pipe) != nullptr) run.output += line.data();
    const int ended = pclose(pipe);
    run.status = WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
    return run;
}

TEST(FirstLight, PrintsWhatThePinPadTellsOfItself) {
    quorvel::sim::PinPad pinPad;
    pinPad.start();
    const Outcome run = first_light(pinPad.path());
    EXPECT_EQ(run.status, EXIT_SUCCESS);
    const std::string answers =
        "manufacturer   QUORVEL\n"
        "model          VIRTUAL SIM\n"
        "contactless    yes\n"
        "system         QSO 0.1.0\n"
        "specification  2.12\n"
        "version        001.00 260101\n"
        "serial number  QV00000001\n"
        "ABECS_RSP_DATID_PP_SERNUM       QV00000001\n"
        "ABECS_RSP_DATID_PP_PARTNBR      QV-SIM-1\n"
        "ABECS_RSP_DATID_PP_MODEL        VIRTUAL;SIM\n"
        "ABECS_RSP_DATID_PP_MNNAME       QUORVEL\n"
        "ABECS_RSP_DATID_PP_CAPAB        1111000000\n"
        "ABECS_RSP_DATID_PP_SOVER        QSO 0.1.0\n"
        "ABECS_RSP_DATID_PP_SPECVER      2.12\n"
        "ABECS_RSP_DATID_PP_MANVERS      001.00 260101\n"
        "ABECS_RSP_DATID_PP_APPVERS      001.00 260101\n"
        "ABECS_RSP_DATID_PP_KSNTDESP0    FFFF9876543210E00000\n";
    EXPECT_EQ(run.output, "-- plain session\n" + answers + "-- encrypted session\n" + answers);
    EXPECT_TRUE(pinPad.findings().empty());
}

TEST(FirstLight, PrintsTheErrorAndFails) {
    const Outcome run = first_light("/nowhere/port");
    EXPECT_EQ(run.status, EXIT_FAILURE);
    EXPECT_EQ(run.output, "/nowhere/port: [KOR_RESULT_FILE_NOT_FOUND] No such port: /nowhere/port\n");
}

}  // namespace
