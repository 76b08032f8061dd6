// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SIMULATOR_PIN_PAD_FIXTURE_H
#define QUORVEL_TESTS_SIMULATOR_PIN_PAD_FIXTURE_H

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "simulator/pin_pad.h"
#include "tests/simulator/host.h"

namespace quorvel::sim {

inline void PrintTo(const Finding& finding, std::ostream* out) {
    *out << kind_name(finding.kind) << ": " << finding.text;
}

inline const std::string ack = "\x06";
inline const std::string nak = "\x15";
inline const std::string can = "\x18";
inline const std::string eot = "\x04";

// A virtual PIN pad and the bare end of its line.
class PinPadTest : public testing::Test {
protected:
    using Kind = Finding::Kind;

    void play(PinPad::Options options = {}) {
        pinPad_.emplace(std::move(options));
        pinPad_->start();
        host_.emplace(pinPad_->path());
    }

    void exchange(const std::string& sent, const std::string& due) {
        host_->send(sent);
        expect(due);
    }

    void expect(const std::string& due) { EXPECT_EQ(host_->receive(due.size()), due); }

    // The answer to CAN comes next only if nothing else was sent that no test expected.
    void TearDown() override {
        if (pinPad_) exchange(can, eot);
    }

    void expect_findings(const std::vector<Finding>& due) { EXPECT_EQ(pinPad_->findings(), due); }

    std::optional<PinPad> pinPad_;
    std::optional<Host> host_;
};

}  // namespace quorvel::sim

#endif
