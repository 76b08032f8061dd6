// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "simulator/control/control_server.h"
#include "tests/simulator/control_fixture.h"

using namespace support::literals;

namespace quorvel::sim {

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

const std::string done = R"({"ok":true})";

std::string refused(const std::string& error) { return R"({"error":)" + json(error).dump() + R"(,"ok":false})"; }

class ControlVerbsTest : public ControlTest {
protected:
    void expect_answers(const std::vector<std::pair<std::string, std::string>>& cases) {
        for (const auto& [request, due] : cases) EXPECT_EQ(client_->ask(request), due) << request;
    }
};

TEST_F(ControlVerbsTest, DoesWhatThePersonDoes) {
    serve();
    const auto during = [&](const std::string& request, const std::string& act, const std::string& response) {
        exchange(support::frame(request), ack);
        EXPECT_EQ(client_->ask(R"({"do":"await","command":")" + request.substr(0, 3) + "\"}"), done);
        EXPECT_EQ(client_->ask(act), done);
        expect(support::frame(response));
    };
    const std::string menu = "MNU112" + "0020 0018"_hex + "TEA                     " + "0020 0018"_hex
                             + "COFFEE                  " + "0020 0018"_hex + "WATER                   "
                             + "0020 0018"_hex + "MILK                    ";
    during("GKY", R"({"do":"press","key":"f4"})", "GKY007");
    during("CKE003100", R"({"do":"press","key":"cancel"})", "CKE000003013");
    during("CKE003002", R"({"do":"insert","card":"visa-chip"})", "CKE00000221");
    during("CKE003001", R"({"do":"remove"})", "CKE00000220");
    during("CKE0040001", R"({"do":"tap","card":"visa-contactless"})", "CKE00000231");
    during(menu, R"({"do":"choose","option":3})", "MNU000006" + "804D 0002"_hex + "03");
    during("GCD016" + "000B 0002 0007 000D 0001 02 000E 0001 03"_hex, R"({"do":"type","digits":"042"})",
           "GCD000007" + "804D 0003"_hex + "042");
    expect_findings({});
}

TEST_F(ControlVerbsTest, RefusesWhatIsNoRequest) {
    serve();
    expect_answers({
        {"{", refused("no JSON")},
        {"\xFF\xFE", refused("no JSON")},
        {"[]", refused("a request is an object")},
        {"{}", refused("no \"do\"")},
        {R"({"do":1})", refused("\"do\" is no text")},
        {R"({"do":"dance"})", refused("there is no \"dance\"")},
        {R"({"do":"press"})", refused("no \"key\"")},
        {R"({"do":"press","key":"any"})", refused("there is no key \"any\"")},
        {R"({"do":"press","key":"1","twice":true})", refused("\"twice\" has no place in it")},
        {R"({"do":"type","digits":"12x"})", refused("\"digits\" is not up to 32 digits")},
        {R"({"do":"choose","option":0})", refused("\"option\" is not from 1 to 99")},
        {R"({"do":"choose","option":18446744073709551615})", refused("\"option\" is not from 1 to 99")},
        {R"({"do":"choose","option":1.5})", refused("\"option\" is no whole number")},
        {R"({"do":"tap","card":"library"})", refused("there is no card \"library\"")},
        {R"({"do":"notify","text":""})", refused("\"text\" is not 1 to 32 characters of ASCII")},
        {R"({"do":"notify","text":"é"})", refused("\"text\" is not 1 to 32 characters of ASCII")},
        {R"({"do":"when","command":"XYZ","acts":[]})", refused("there is no command \"XYZ\"")},
        {R"({"do":"when","command":"GKY","acts":1})", refused("\"acts\" is no list")},
        {R"({"do":"when","command":"GKY","acts":[{"do":"stop"}]})",
         refused("\"stop\" is nothing that a cardholder does")},
        {R"({"do":"when","command":"GKY","acts":[{"do":"press","key":"f1"},{"do":"remove","in":3}]})",
         refused("\"in\" has no place in it")},
        {R"({"do":"await","command":"GKY","ms":0})", refused("GKY did not wait in time")},
        {R"({"do":"await","ms":-1})", refused("\"ms\" is not from 0 to 86400000")},
        {R"({"do":"fault","fault":"delay"})", refused("\"delay\" needs a time")},
        {R"({"do":"fault","fault":"nak","chance":"high"})", refused("\"chance\" is no number")},
        {R"({"do":"traffic","last":1001})", refused("\"last\" is not from 1 to 1000")},
    });
    // None of it has left a trace.
    exchange(support::frame("GKY"), ack);
    exchange(can, eot);
    EXPECT_EQ(pinPad_->faults(), std::vector<Fault>{});
    expect_findings({});
}

TEST_F(ControlVerbsTest, ShowsTheStateOfTheCommandThatWaits) {
    serve();
    const auto state = [&] { return json::parse(client_->ask(R"({"do":"state"})")); };
    EXPECT_EQ(
        state(),
        json({{"ok", true}, {"port", pinPad_->path()}, {"waiting", nullptr}, {"session", "plain"}, {"card", false}}));
    client_->send("{\"do\":\"await\"}\n");
    pinPad_->insert(Cards::standard().at("visa-chip"));
    exchange(support::frame("GKY"), ack);
    EXPECT_EQ(client_->line(), done);
    EXPECT_EQ(state().at("waiting"), "GKY");
    EXPECT_EQ(state().at("card"), true);
    host_->send(support::frame("OPN5230256" + std::string(512, 'F') + "3010001"));
    host_->receive(1 + 1 + 6 + 3 + 515 + 3);
    EXPECT_EQ(state().at("waiting"), nullptr);
    EXPECT_EQ(state().at("session"), "encrypted");
    EXPECT_EQ(json::parse(client_->ask(R"({"do":"findings"})")).at("findings"),
              json::parse(R"([{"kind":"sequence","text":"a command came while GKY waited"}])"));
    expect_answers({{R"({"do":"clear-findings"})", done}, {R"({"do":"findings"})", R"({"findings":[],"ok":true})"}});
}

TEST_F(ControlVerbsTest, NoticesACommandHoweverShortItWaits) {
    serve();
    expect_answers(
        {{R"({"do":"when","command":"GKY","acts":[{"do":"notify","text":"HELLO"},{"do":"press","key":"f1"}]})", done}});
    ControlClient other(path_);
    client_->send("{\"do\":\"await\",\"command\":\"GKY\"}\n{\"do\":\"screen\"}\n");
    other.send("{\"do\":\"await\",\"command\":\"RMC\",\"ms\":1}\n");
    EXPECT_EQ(other.line(), refused("RMC did not wait in time"));
    exchange(support::frame("GKY"), ack + support::frame("NTM000005HELLO") + support::frame("GKY004"));
    EXPECT_EQ(client_->line(), done);
    EXPECT_EQ(client_->line(), R"({"media":"","menu":[],"ok":true,"selected":0,"text":"","typed":""})");
}

TEST_F(ControlVerbsTest, ServesSeveralClientsWhateverTheyDo) {
    serve();
    ControlClient silent(path_);
    {
        ControlClient broken(path_);
        broken.send("{\"do\":\"await\"}\n{\"do\":");
    }
    ControlClient long_winded(path_);
    long_winded.send_what_goes(std::string(200000, 'x') + "\n" R"({"do":"remove"})" "\r\n\n");
    EXPECT_EQ(long_winded.line(), refused("more than 65536 bytes"));
    EXPECT_EQ(long_winded.line(), done);
    ControlClient half_closed(path_);
    half_closed.send("{\"do\":\"remove\"}\n{\"do\":\"await\",\"ms\":1}\n{\"do\":\"remove\"}");
    half_closed.shut_down_sending();
    EXPECT_EQ(half_closed.line(), done);
    EXPECT_EQ(half_closed.line(), refused("a command did not wait in time"));
    EXPECT_EQ(half_closed.line(), done);
    EXPECT_EQ(half_closed.line(), "");
    // Whose answers nobody reads is not listened to for ever.
    ControlClient deaf(path_);
    std::string flood;
    for (int i = 0; i < 100000; ++i) flood += "{\"do\":\"screen\"}\n";
    EXPECT_LT(deaf.send_what_goes(flood), flood.size());
    expect_answers({{R"({"do":"remove"})", done}});
    EXPECT_EQ(silent.ask(R"({"do":"remove"})"), done);
}

TEST_F(ControlVerbsTest, DoesWhatAClientAsksThatGoesAtOnce) {
    serve();
    { ControlClient(path_).send(R"({"do":"when","command":"GKY","acts":[{"do":"press","key":"f2"}]})"); }
    // Clients are served in the order of their coming.
    EXPECT_EQ(ControlClient(path_).ask(R"({"do":"remove"})"), done);
    call("GKY", "GKY005");
}

TEST_F(ControlVerbsTest, InjectsFaults) {
    serve();
    expect_answers({
        {R"({"do":"fault","fault":"wrong-id","command":"OPN"})", done},
        {R"({"do":"fault","fault":"status","status":42,"every":2})", done},
        {R"({"do":"fault","fault":"delay","ms":1,"chance":0.5,"times":3})", done},
        {R"({"do":"faults"})",
         R"({"faults":[{"command":"OPN","fault":"wrong-id","times":1},{"every":2,"fault":"status","status":42},)"
         R"({"chance":0.5,"fault":"delay","ms":1,"times":3}],"ok":true})"},
    });
    for (const char* due : {"XXX000", "OPN000", "OPN042", "OPN000", "OPN042"}) call("OPN", due);
    expect_answers({{R"({"do":"clear-faults"})", done}, {R"({"do":"faults"})", R"({"faults":[],"ok":true})"}});
    call("OPN", "OPN000");
    expect_answers({{R"({"do":"traffic","last":1})",
                     R"({"ok":true,"traffic":[{"bytes":"16 4F 50 4E 30 30 30 17 77 5E","from":"pin-pad",)"
                     R"("words":"OPN 000 OK"}]})"}});
}

TEST_F(ControlVerbsTest, IsForItsUserAlone) {
    serve();
    struct stat status {};
    ASSERT_EQ(stat(path_.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
}

TEST_F(ControlVerbsTest, TakesThePlaceOnlyOfASocketThatNobodyServes) {
    serve();
    const auto fault = [&](const std::string& path) -> std::string {
        try {
            const ControlServer second(path, *control_);
            return "";
        } catch (const std::runtime_error& error) { return error.what(); }
    };
    EXPECT_EQ(fault(path_), path_ + " is in use");
    const std::string file = folder_ / "file";
    std::ofstream(file) << "kept";
    EXPECT_EQ(fault(file), file + " is there and no socket");
    EXPECT_EQ(fs::file_size(file), 4U);
    const std::string longest(200, 'x');
    EXPECT_EQ(fault(longest), "\"" + longest + "\" is no path for a socket: 1 to 107 bytes");
    const std::string stale = folder_ / "stale";
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    stale.copy(address.sun_path, sizeof address.sun_path - 1);
    const int left = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(left, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    close(left);
    EXPECT_EQ(fault(stale), "");
    EXPECT_FALSE(fs::exists(stale));
    EXPECT_EQ(client_->ask(R"({"do":"remove"})"), done);
}

}  // namespace

}  // namespace quorvel::sim
