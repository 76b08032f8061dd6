// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/cli/tool.h"

namespace {

using namespace std::string_literals;

using ErrorTest = ToolTest;

TEST_F(ErrorTest, SaysWhatIsWrongAndEndsWithACodeForIt) {
    const std::string missing = folder_ / "missing";
    // What is said contains this; nothing of it goes where results go.
    const std::tuple<Arguments, int, std::string> cases[]{
        {{}, 2, "A subcommand is required"},
        {{"dance"}, 2, "There is no command or option 'dance' here."},
        {{"info", "--loud"}, 2, "'--loud'"},
        {{"tables"}, 2, "A subcommand is required"},
        {{"info"}, 2, "No port is named."},
        {{"info", "--port", missing}, 3, "No such port: " + missing},
        {{"info", "--config", missing}, 2, "There is no configuration file"},
        {{"info", "--port", "/dev/null"}, 3, "/dev/null is no serial port."},
        {{"display", std::string(129, 'x')}, 2, "at most 128 characters"},
        {{"display", "5 €"}, 2, "a character that the PIN pad does not have"},
        {{"display", "\xE9"}, 2, "a character that the PIN pad does not have"},
        {{"menu", "TEA", "two words"}, 2, "takes 1 to 24 letters and digits"},
        {{"menu", "TEA", std::string(25, 'x')}, 2, "takes 1 to 24 letters and digits"},
        {{"event", "earthquake"}, 2, "kind takes key, stripe, chip, tap or removal."},
        {{"event", "--timeout", "0"}, 2, "--timeout takes a number from 1 to 255."},
        {{"event", "chip", "removal"}, 2, "not for both"},
        {{"pin", "--method", "mk-des"}, 2, "16 hexadecimal digits for mk-des"},
        {{"pin", "--method", "3"}, 2, "--method takes mk-des, mk-tdes, dukpt-des or dukpt-tdes."},
        {{"pin", "--key", "1x"}, 2, "--key takes a number from 0 to 99."},
        {{"pin", "--pan", "-"}, 2, "Standard input has no line with the card number."},
        {{"pin", "--pan", "@" + missing}, 2, "The card number cannot be read"},
        {{"sale"}, 2, "--amount is required"},
        {{"sale", "--amount", "1.5"}, 2, "'1.5' is no amount."},
        {{"gix", "nonsense"}, 2, "There is no item 'nonsense'."},
        {{"tables", "load"}, 2, "No file is named."},
        {{"tables", "load", missing}, 2, "cannot be read"},
        {{"media", "put", missing + ".png"}, 2, "cannot be read"},
        {{"media", "put", missing}, 2, "cannot be read"},
        {{"media", "put", folder_.file("logo", "x")}, 2, "tells no format"},
        {{"media", "put", folder_.file("logo.png", "x")}, 2, "logo.png is no PNG image."},
        {{"media", "put", folder_ / "logo.png", "--type", "jpg"}, 2, "is no JPEG image."},
        {{"tables", "load", folder_.file("none", "version 1\n")}, 2, "wipes the tables of the PIN pad"},
        {{"decode", "4"}, 2, "not in hexadecimal"},
    };
    for (const auto& [arguments, exit, said] : cases) {
        const Ended human = run(arguments);
        EXPECT_EQ(human.exit, exit) << said;
        EXPECT_NE(human.err.find(said), std::string::npos) << human.err;
        EXPECT_EQ(human.out, "");
        const Json object = run_json(arguments);
        EXPECT_EQ(object.value("exit", -1), exit);
        EXPECT_NE(object["error"].value("text", "").find(said), std::string::npos) << object;
    }
}

TEST_F(ErrorTest, AValueThatIsMissingIsNamed) {
    EXPECT_EQ(run({"info", "--config"}).err.substr(0, 33), "quorvel: --config needs a value.\n");
}

TEST_F(ErrorTest, WhatIsPrivateInTheCommandLineIsNotRepeated) {
    const std::string number = "4111111111111111";
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"pin", "--pan", number},
          {"pin", "--pan", "@" + folder_.file("pan", number + "x")},
          {"pin", "--pan", "@" + folder_.file("long", number + number)},
          {"pin", "--method", "mk-tdes", "--working-key", "@" + folder_.file("key", number)}}) {
        const Ended ended = run(arguments);
        EXPECT_EQ(ended.exit, 2) << ended.err;
        EXPECT_EQ(ended.err.find(number), std::string::npos) << ended.err;
    }
}

TEST_F(ErrorTest, AFileIsRefusedWithTheLine) {
    const std::tuple<bool, std::string, std::string> cases[]{
        {false, "version 1\n009103AB\n", ":2: the record says that it has 9 characters, but it has 8"},
        {false, "version 1\n0081\n", ":2: a record has at least 8 characters"},
        {false, "version 1\n008x03AB\n", ":2: a record begins with its length"},
        {false, "version 1\n\n008103AB\n008103AB\n", ":4: the same table, acquirer and index as in line 3"},
        {false, "version 12345678901\n", ":1: a version has 1 to 10 characters"},
        {false, "acquirer 100\n", ":1: an acquirer is a number from 0 to 99"},
        {false, "008103AB\n", ":1: there is no line `version`"},
        {false, "version 1\n998103AB" + std::string(990, 'x') + "\n", ":2: a record has at most 997 characters"},
        {true, "port = 7\n", ":1: 'port' must be a text"},
        {true, "secure = true\nsecrets = 1\n", ":2: there is no key 'secrets'"},
        {true, "port = \n", ":1: "},
    };
    for (const auto& [configuration, contents, said] : cases) {
        const std::string file = folder_.file("wrong", contents);
        const Ended ended = run(configuration ? Arguments{"info", "--config", file}
                                              : Arguments{"tables", "load", file, "--port", "/nowhere"});
        EXPECT_EQ(ended.exit, 2);
        EXPECT_NE(ended.err.find("wrong" + said), std::string::npos) << ended.err;
    }
}

// Each names another port, which is not there: the message tells whose word counts.
TEST_F(ErrorTest, ThePortIsNamedByOptionThenEnvironmentThenFile) {
    std::filesystem::create_directories(folder_ / ".config/quorvel");
    folder_.file(".config/quorvel/config.toml", "port = '/of/file'\n");
    const std::string other = folder_.file("other.toml", "port = '/of/other'\n");
    const std::string variable = "QUORVEL_PORT=/of/environment";
    const std::tuple<Arguments, Arguments, const char*> cases[]{
        {{"info"}, {}, "/of/file"},
        {{"info"}, {variable}, "/of/environment"},
        {{"info", "--port", "/of/option"}, {variable}, "/of/option"},
        {{"info", "--config", other}, {}, "/of/other"},
    };
    for (const auto& [arguments, environment, due] : cases) {
        const std::string said = run(arguments, environment).err;
        EXPECT_NE(said.find("No such port: "s + due), std::string::npos) << said;
    }
}

}  // namespace
