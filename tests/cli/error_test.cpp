// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/cli/tool.h"

namespace {

using ErrorTest = ToolTest;

// What is said contains this; nothing of it goes where results go.
struct Refused {
    std::vector<std::string> arguments;
    int exit;
    std::string said;
};

TEST_F(ErrorTest, SaysWhatIsWrongAndEndsWithACodeForIt) {
    const std::string missing = (folder_ / "missing").string();
    const Refused cases[]{
        {{}, 2, "A subcommand is required"},
        {{"dance"}, 2, "There is no command or option 'dance' here."},
        {{"info", "--loud"}, 2, "'--loud'"},
        {{"tables"}, 2, "A subcommand is required"},
        {{"info"}, 2, "No port is named."},
        {{"info", "--port", missing}, 3, "No such port: " + missing},
        {{"info", "--config", missing}, 2, "There is no configuration file"},
        {{"display", std::string(129, 'x')}, 2, "at most 128 characters"},
        {{"menu", "TEA", std::string(25, 'x')}, 2, "takes 1 to 24 characters"},
        {{"event", "earthquake"}, 2, "earthquake"},
        {{"event", "chip", "removal"}, 2, "not for both"},
        {{"pin", "--method", "mk-des"}, 2, "16 hexadecimal digits for mk-des"},
        {{"pin", "--key", "100"}, 2, "100"},
        {{"sale"}, 2, "--amount is required"},
        {{"sale", "--amount", "1.5"}, 2, "'1.5' is no amount."},
        {{"gix", "nonsense"}, 2, "There is no item 'nonsense'."},
        {{"tables", "load"}, 2, "No file is named."},
        {{"tables", "load", missing}, 2, "cannot be read"},
        {{"media", "put", missing + ".png"}, 2, "cannot be read"},
        {{"media", "put", missing}, 2, "tells no format"},
        {{"decode", "4"}, 2, "not in hexadecimal"},
    };
    for (const Refused& refused : cases) {
        const Ended human = run(refused.arguments);
        EXPECT_EQ(human.exit, refused.exit) << refused.said;
        EXPECT_NE(human.err.find(refused.said), std::string::npos) << human.err;
        EXPECT_EQ(human.out, "");
        const Json object = run_json(refused.arguments);
        EXPECT_EQ(object.value("exit", -1), refused.exit);
        EXPECT_NE(object["error"].value("text", "").find(refused.said), std::string::npos) << object;
    }
}

TEST_F(ErrorTest, WhatIsPrivateInTheCommandLineIsNotRepeated) {
    const std::string number = "4111111111111111";
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"pin", "--pan", number + "x"},
                                                      {"pin", "--pan", number + number},
                                                      {"pin", "--method", "mk-tdes", "--working-key", number}}) {
        const Ended ended = run(arguments);
        EXPECT_EQ(ended.exit, 2);
        EXPECT_EQ(ended.err.find(number), std::string::npos) << ended.err;
    }
}

TEST_F(ErrorTest, ATableFileIsRefusedWithTheLine) {
    const struct {
        std::string contents;
        std::string said;
    } cases[]{
        {"version 1\n009103AB\n", ":2: the record says that it has 9 characters, but it has 8"},
        {"version 1\n0081\n", ":2: a record has at least 8 characters"},
        {"version 1\n008x03AB\n", ":2: a record begins with its length"},
        {"version 1\n\n008103AB\n008103AB\n", ":4: the same table, acquirer and index as in line 3"},
        {"version 12345678901\n", ":1: a version has 1 to 10 characters"},
        {"acquirer 100\n", ":1: an acquirer is a number from 0 to 99"},
        {"008103AB\n", ":1: there is no line `version`"},
        {"version 1\n998103AB" + std::string(990, 'x') + "\n", ":2: a record has at most 997 characters"},
    };
    for (const auto& each : cases) {
        const Ended ended = run({"tables", "load", write("wrong.tables", each.contents), "--port", "/nowhere"});
        EXPECT_EQ(ended.exit, 2);
        EXPECT_NE(ended.err.find("wrong.tables" + each.said), std::string::npos) << ended.err;
    }
}

TEST_F(ErrorTest, AConfigurationFileIsRefusedWithTheLine) {
    const struct {
        std::string contents;
        std::string said;
    } cases[]{
        {"port = 7\n", ":1: 'port' must be a text"},
        {"secure = true\nsecrets = 1\n", ":2: there is no key 'secrets'"},
        {"port = \n", ":1: "},
    };
    for (const auto& each : cases) {
        const Ended ended = run({"info", "--config", write("wrong.toml", each.contents)});
        EXPECT_EQ(ended.exit, 2);
        EXPECT_NE(ended.err.find("wrong.toml" + each.said), std::string::npos) << ended.err;
    }
}

// Each names another port, which is not there: the message tells whose word counts.
TEST_F(ErrorTest, ThePortIsNamedByOptionThenEnvironmentThenFile) {
    write(".config/quorvel/config.toml", "port = \"/of/file\"\n");
    EXPECT_NE(run({"info"}).err.find("No such port: /of/file"), std::string::npos);
    EXPECT_NE(run({"info"}, {"QUORVEL_PORT=/of/environment"}).err.find("/of/environment"), std::string::npos);
    EXPECT_NE(run({"info", "--port", "/of/option"}, {"QUORVEL_PORT=/of/environment"}).err.find("/of/option"),
              std::string::npos);
    const std::string other = write("other.toml", "port = \"/of/other\"\n");
    EXPECT_NE(run({"info", "--config", other}).err.find("/of/other"), std::string::npos);
}

}  // namespace
