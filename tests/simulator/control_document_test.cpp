// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "tests/simulator/control_fixture.h"

namespace quorvel::sim {

namespace {

using nlohmann::json;

class ControlDocumentTest : public ControlTest {
protected:
    // What the host does before an example that would otherwise have nothing to tell of.
    void prepare(const std::string& verb) {
        if (verb == "await" && !awaited_) exchange(support::frame("GKY"), ack);
        if (verb == "findings") exchange(support::frame("XYZ"), ack + support::frame("ERR010"));
        awaited_ |= verb == "await";
    }

    void expect_example(const std::string& request, std::string due) {
        SCOPED_TRACE(request);
        const std::string verb = json::parse(request).at("do");
        prepare(verb);
        const json answer = json::parse(client_->ask(request));
        told_.insert(verb);
        // Too many to spell.
        if (verb == "cards") due = json{{"ok", true}, {"cards", control_->cards().names()}}.dump();
        if (const size_t port = due.find("/dev/pts/7"); port != std::string::npos)
            due.replace(port, 10, pinPad_->path());
        EXPECT_EQ(answer, json::parse(due));
    }

    bool awaited_ = false;
    std::set<std::string> told_;
};

TEST_F(ControlDocumentTest, HasExamplesThatHold) {
    serve();
    std::ifstream document(QUORVEL_DOCS "/control-socket.md");
    std::string request;
    for (std::string line; std::getline(document, line);) {
        if (line.starts_with("> ")) request = line.substr(2);
        if (line.starts_with("< ")) expect_example(request, line.substr(2));
    }
    const auto verbs = Control::verbs();
    EXPECT_EQ(told_, std::set<std::string>(verbs.begin(), verbs.end()));
    await_end();
}

}  // namespace

}  // namespace quorvel::sim
