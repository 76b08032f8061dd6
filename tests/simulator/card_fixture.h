// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SIMULATOR_CARD_FIXTURE_H
#define QUORVEL_TESTS_SIMULATOR_CARD_FIXTURE_H

#include <string>
#include <utility>
#include <vector>

#include "simulator/cards/cards.h"
#include "tests/simulator/cipher_fixture.h"

namespace quorvel::sim {

// A virtual PIN pad with the tables that the standard cards select their applications in.
class CardTest : public CipherTest {
protected:
    static Device loaded_device() {
        Device device = Device::standard();
        Tables::Records records;
        for (const auto& [acquirer, index] :
             {std::pair(1, "01"), {2, "01"}, {3, "01"}, {3, "02"}, {3, "03"}, {4, "01"}}) {
            records[{.table = 1, .acquirer = acquirer, .index = index}] = {};
        }
        device.tables.load(Tables::allAcquirers, "TABLES0001", std::move(records));
        return device;
    }

    void play_loaded(Device device = loaded_device()) {
        play({.device = std::move(device), .second = std::chrono::milliseconds(1)});
    }

    // What the cardholder does while the command waits; the notices that the host is told come before the answer.
    void call_while(const Gestures& gestures, const std::string& request, const std::string& response,
                    const std::vector<std::string>& notices = {}) {
        SCOPED_TRACE(request);
        pinPad_->when(request.substr(0, 3), gestures);
        std::string due = ack;
        for (const std::string& notice : notices) {
            const std::string length = std::to_string(notice.size());
            due += support::frame("NTM000" + std::string(3 - length.size(), '0') + length + notice);
        }
        exchange(support::frame(request), due + support::frame(response));
    }

    static Card card(std::string_view name) { return Cards::standard().at(name); }
    static Gestures inserted(std::string_view name) { return Gestures().insert(card(name)); }

    // A text at the start of its field.
    static std::string field(std::string text, size_t width) {
        text.resize(width, ' ');
        return text;
    }
};

}  // namespace quorvel::sim

#endif
