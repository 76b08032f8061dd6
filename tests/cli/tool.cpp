// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/cli/tool.h"

#include <cstdlib>

namespace {

std::vector<std::string> with_name(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), QUORVEL_CLI);
    return arguments;
}

std::vector<std::string> with_home(std::vector<std::string> environment, const std::string& home) {
    environment.push_back("HOME=" + home);
    for (const char* kept : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"}) {
        if (const char* value = std::getenv(kept)) { environment.push_back(std::string(kept) + "=" + value); }
    }
    return environment;
}

}  // namespace

Tool::Tool(std::vector<std::string> arguments, const std::string& home, std::vector<std::string> environment)
    : Child(with_name(std::move(arguments)), with_home(std::move(environment), home)) {}

Ended Tool::wait() {
    const int exit = Child::wait();
    return {.exit = exit, .out = output(), .err = errors()};
}

Ended ToolTest::run(Arguments arguments, std::vector<std::string> environment) const {
    return Tool(std::move(arguments), folder_ / "", std::move(environment)).wait();
}

Ended ToolTest::redirected(const std::string& streams, Arguments arguments) const {
    arguments.insert(arguments.begin(), {"/bin/sh", "-c", R"(exec "$0" "$@" )" + streams, QUORVEL_CLI});
    support::Child child(std::move(arguments), with_home({}, folder_ / ""));
    const int exit = child.wait();
    return {.exit = exit, .out = child.output(), .err = child.errors()};
}

ToolTest::Json ToolTest::run_json(Arguments arguments) const {
    arguments.emplace_back("--json");
    const Ended ended = run(std::move(arguments));
    Json object = Json::parse(ended.out, nullptr, false);
    EXPECT_FALSE(object.is_discarded()) << ended.out << ended.err;
    if (object.is_discarded()) { return {}; }
    EXPECT_EQ(object.value("quorvel", 0), 1);
    EXPECT_EQ(object.value("exit", -1), ended.exit);
    EXPECT_EQ(object.value("ok", false), ended.exit == 0) << ended.out;
    return object;
}

ToolTest::Arguments PinPadToolTest::with_port(Arguments arguments) const {
    arguments.insert(arguments.begin(), {"--port", pinPad_.path()});
    return arguments;
}

std::vector<std::string> PinPadToolTest::sent() {
    std::vector<std::string> ids;
    for (const sim::Traffic& traffic : pinPad_.traffic()) {
        if (traffic.sender == sim::Sender::kHost) { ids.push_back(traffic.words.substr(0, 3)); }
    }
    return ids;
}

void PinPadToolTest::TearDown() {
    for (const sim::Finding& finding : pinPad_.findings()) { ADD_FAILURE() << finding.text; }
}
