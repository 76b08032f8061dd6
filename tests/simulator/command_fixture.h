// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SIMULATOR_COMMAND_FIXTURE_H
#define QUORVEL_TESTS_SIMULATOR_COMMAND_FIXTURE_H

#include <string>
#include <utility>
#include <vector>

#include "tests/simulator/pin_pad_fixture.h"
#include "tests/support/wire.h"

namespace quorvel::sim {

// Speaks to the virtual PIN pad in packets: what stands around them is tested elsewhere.
class CommandTest : public PinPadTest {
protected:
    void call(const std::string& request, const std::string& response) {
        SCOPED_TRACE(request);
        exchange(support::frame(request), ack + support::frame(response));
    }

    // Requests that are all answered so, and what is found in each.
    void refuse(const std::string& response, Kind kind,
                const std::vector<std::pair<std::string, std::string>>& requests) {
        std::vector<Finding> due = pinPad_->findings();
        for (const auto& [request, finding] : requests) {
            call(request, response);
            due.push_back({kind, finding});
            ASSERT_EQ(pinPad_->findings(), due);
        }
    }

    // Ends the PIN pad and returns what became of it.
    Device retire() {
        pinPad_->stop();
        Device device = pinPad_->device();
        pinPad_.reset();
        return device;
    }
};

}  // namespace quorvel::sim

#endif
