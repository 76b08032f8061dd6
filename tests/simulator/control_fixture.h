// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#ifndef QUORVEL_TESTS_SIMULATOR_CONTROL_FIXTURE_H
#define QUORVEL_TESTS_SIMULATOR_CONTROL_FIXTURE_H

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "simulator/control/control_server.h"
#include "tests/simulator/command_fixture.h"
#include "tests/simulator/control_client.h"

namespace quorvel::sim {

// A virtual PIN pad with a host and a client of its control socket.
class ControlTest : public CommandTest {
protected:
    ControlTest() {
        std::string name = (std::filesystem::temp_directory_path() / "quorvel-control-XXXXXX").string();
        folder_ = mkdtemp(name.data());
        path_ = folder_ / "control";
    }
    ~ControlTest() override { std::filesystem::remove_all(folder_); }

    void serve(PinPad::Options options = {}) {
        play(std::move(options));
        control_.emplace(*pinPad_);
        server_.emplace(path_, *control_);
        client_.emplace(path_);
    }

    void TearDown() override {
        CommandTest::TearDown();
        server_.reset();
    }

    // Once it has been told to; nothing of it is left to tear down.
    void await_end() {
        server_.reset();
        retire();
    }

    std::filesystem::path folder_;
    std::string path_;
    std::optional<Control> control_;
    std::optional<ControlServer> server_;
    std::optional<ControlClient> client_;
};

}  // namespace quorvel::sim

#endif
