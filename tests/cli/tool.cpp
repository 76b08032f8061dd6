// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/cli/tool.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;
namespace sim = quorvel::sim;

namespace {

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> all;
    for (std::string& text : texts) all.push_back(text.data());
    all.push_back(nullptr);
    return all;
}

}  // namespace

Tool::Tool(std::vector<std::string> arguments, const fs::path& home, std::vector<std::string> environment) {
    std::array<int, 2> out{};
    std::array<int, 2> err{};
    EXPECT_EQ(pipe2(out.data(), O_CLOEXEC), 0);
    EXPECT_EQ(pipe2(err.data(), O_CLOEXEC), 0);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err[1], STDERR_FILENO);
    arguments.insert(arguments.begin(), QUORVEL_CLI);
    environment.push_back("HOME=" + home.string());
    for (const char* kept : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"}) {
        if (const char* value = std::getenv(kept)) environment.push_back(std::string(kept) + "=" + value);
    }
    EXPECT_EQ(posix_spawn(&process_, QUORVEL_CLI, &actions, nullptr, pointers(arguments).data(),
                          pointers(environment).data()),
              0);
    posix_spawn_file_actions_destroy(&actions);
    close(out[1]);
    close(err[1]);
    out_ = out[0];
    err_ = err[0];
}

Tool::~Tool() {
    if (process_ > 0) {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    close(out_);
    close(err_);
}

void Tool::signal(int number) const { kill(process_, number); }

Ended Tool::wait() {
    Ended ended;
    std::array<pollfd, 2> polled{pollfd{out_, POLLIN, 0}, pollfd{err_, POLLIN, 0}};
    std::array<std::string*, 2> texts{&ended.out, &ended.err};
    while (polled[0].fd >= 0 || polled[1].fd >= 0) {
        if (poll(polled.data(), polled.size(), -1) < 0) continue;
        for (size_t i = 0; i < polled.size(); ++i) {
            if (polled[i].fd < 0 || polled[i].revents == 0) continue;
            std::array<char, 4096> bytes{};
            const ssize_t count = read(polled[i].fd, bytes.data(), bytes.size());
            if (count > 0) texts[i]->append(bytes.data(), static_cast<size_t>(count));
            if (count == 0) polled[i].fd = -1;
        }
    }
    int status = 0;
    waitpid(process_, &status, 0);
    process_ = -1;
    ended.exit = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return ended;
}

ToolTest::ToolTest() {
    std::string name = (fs::temp_directory_path() / "quorvel-cli-XXXXXX").string();
    folder_ = mkdtemp(name.data());
}

ToolTest::~ToolTest() { fs::remove_all(folder_); }

Ended ToolTest::run(Arguments arguments, std::vector<std::string> environment) const {
    return Tool(std::move(arguments), folder_, std::move(environment)).wait();
}

ToolTest::Json ToolTest::run_json(Arguments arguments) const {
    arguments.emplace_back("--json");
    const Ended ended = run(std::move(arguments));
    Json object = Json::parse(ended.out, nullptr, false);
    EXPECT_FALSE(object.is_discarded()) << ended.out << ended.err;
    if (object.is_discarded()) return {};
    EXPECT_EQ(object.value("quorvel", 0), 1);
    EXPECT_EQ(object.value("exit", -1), ended.exit);
    EXPECT_EQ(object.value("ok", false), ended.exit == 0) << ended.out;
    return object;
}

std::string ToolTest::write(const std::string& name, const std::string& contents) const {
    const fs::path path = folder_ / name;
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << contents;
    return path.string();
}

ToolTest::Arguments PinPadToolTest::with_port(Arguments arguments) const {
    arguments.insert(arguments.begin(), {"--port", pinPad_.path()});
    return arguments;
}

std::vector<std::string> PinPadToolTest::sent() {
    std::vector<std::string> ids;
    for (const sim::Traffic& traffic : pinPad_.traffic()) {
        if (traffic.sender == sim::Sender::host) ids.push_back(traffic.words.substr(0, 3));
    }
    return ids;
}

void PinPadToolTest::expect_no_findings() {
    for (const sim::Finding& finding : pinPad_.findings()) ADD_FAILURE() << finding.text;
}
