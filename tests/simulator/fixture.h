// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SIMULATOR_FIXTURE_H
#define QUORVEL_TESTS_SIMULATOR_FIXTURE_H

#include <chrono>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "simulator/cards/cards.h"
#include "simulator/pin_pad.h"
#include "tests/simulator/bare_engine.h"
#include "tests/simulator/ends.h"
#include "tests/support/wire.h"

namespace quorvel::sim {

using namespace std::string_literals;
using namespace support::literals;
using support::frame;
using support::padded;

inline void PrintTo(const Finding& finding, std::ostream* out) {
    *out << kind_name(finding.kind) << ": " << finding.text;
}

inline const std::string kAck = "\x06";
inline const std::string kNak = "\x15";
inline const std::string kCan = "\x18";
inline const std::string kEot = "\x04";
inline const std::string kOpn = "\x16OPN\x17\xA8\xA9";
inline const std::string kOpnDone = "\x16OPN000\x17\x77\x5E";

// Whoever has no use for the session key needs no key pair.
inline const std::string kOpenSession = "OPN5230256" + std::string(512, 'F') + "3010001";

inline Card card(std::string_view name) { return Cards::standard().at(name); }
inline Gestures inserted(std::string_view name) { return Gestures().insert(card(name)); }

// What the call says that it throws; nothing if it returns.
template <typename Error = std::runtime_error>
std::string thrown(const auto& call) {
    try {
        call();
    } catch (const Error& error) { return error.what(); }
    return "";
}

// A virtual PIN pad and the bare end of its line.
class PinPadTest : public testing::Test {
protected:
    using Kind = Finding::Kind;

    void play(PinPad::Options options = {}) {
        if (pinPad_) { expect_findings({}); }
        findings_.clear();
        options.session = sessions_;
        // By which the dates in these tests are of today.
        if (!options.clock) {
            options.clock = [] { return std::chrono::sys_days(std::chrono::year(2024) / 3 / 1); };
        }
        pinPad_.emplace(std::move(options));
        pinPad_->start();
        host_.emplace(pinPad_->path());
    }
    void play(Device device) { play(PinPad::Options{.device = std::move(device)}); }

    void exchange(const std::string& sent, const std::string& due) {
        host_->send(sent);
        expect(due);
    }
    void expect(const std::string& due) { EXPECT_EQ(host_->receive(due.size()), due); }

    // In packets: what stands around them is tested elsewhere.
    void call(const std::string& request, const std::string& response) {
        SCOPED_TRACE(request);
        exchange(frame(request), kAck + frame(response));
    }

    // What the cardholder does while the command waits; the notices that the host is told come before the answer.
    void call_while(const Gestures& gestures, const std::string& request, const std::string& response,
                    const std::vector<std::string>& notices = {}) {
        SCOPED_TRACE(request);
        if (!gestures.events().empty()) { pinPad_->when(request.substr(0, 3), gestures); }
        std::string due = kAck;
        for (const std::string& notice : notices) { due += frame(fmt::format("NTM000{:03}{}", notice.size(), notice)); }
        exchange(frame(request), due + frame(response));
    }

    // A command that goes on waiting behind this notice.
    void begin(const Gestures& gestures, const std::string& request, const std::string& notice) {
        pinPad_->when(request.substr(0, 3), gestures);
        exchange(frame(request), kAck + frame(notice));
    }

    // For answers that nobody can spell, because something random is in them.
    std::string ask(const std::string& request) {
        host_->send(frame(request));
        EXPECT_EQ(host_->receive(2), kAck + "\x16");
        std::string packet;
        for (std::string byte = host_->receive(1); byte != "\x17"; byte = host_->receive(1)) {
            if (byte.empty()) { return packet; }
            if (byte == "\x13") { byte = static_cast<char>(host_->receive(1)[0] - 0x20); }
            packet += byte;
        }
        EXPECT_EQ(host_->receive(2).size(), 2U);
        return packet;
    }

    // What was found since the last time. In the end there is nothing else.
    void expect_findings(const std::vector<Finding>& next) {
        findings_.insert(findings_.end(), next.begin(), next.end());
        EXPECT_EQ(pinPad_->findings(), findings_);
    }

    // Requests that are all answered with the status, and what is found in each. Behind ERR, what is no command.
    void refuse(const std::string& status, Kind kind,
                const std::vector<std::pair<std::string, std::string>>& requests) {
        for (const auto& [request, finding] : requests) {
            call(request, status.starts_with("ERR") ? status : request.substr(0, 3) + status);
            expect_findings({{kind, finding}});
        }
    }

    // The answer to CAN comes next only if nothing else was sent that no test expected.
    void TearDown() override {
        if (!pinPad_) { return; }
        exchange(kCan, kEot);
        expect_findings({});
    }

    // Ends the PIN pad and returns what became of it.
    Device retire() {
        expect_findings({});
        pinPad_->stop();
        Device device = pinPad_->device();
        pinPad_.reset();
        return device;
    }

    // Most tests are not about sessions.
    Sessions sessions_ = Sessions::kLenient;
    std::optional<PinPad> pinPad_;
    std::optional<Host> host_;

private:
    std::vector<Finding> findings_;
};

}  // namespace quorvel::sim

#endif
