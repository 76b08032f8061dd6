// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/port.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <grp.h>
#include <pwd.h>
#include <sstream>
#include <string_view>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>

namespace quorvel::cli {

namespace fs = std::filesystem;

namespace {

std::string first_line(const fs::path& file) {
    std::string line;
    std::getline(std::ifstream(file), line);
    return line;
}

// USB devices tell their maker and their name two or three folders above the port.
std::string description(const std::string& path) {
    const fs::path port = fs::path("/sys/class/tty") / fs::path(path).filename() / "device";
    for (const char* up : {"..", "../..", "../../.."}) {
        const std::string product = first_line(port / up / "product");
        if (product.empty()) { continue; }
        const std::string maker = first_line(port / up / "manufacturer");
        return maker.empty() ? product : fmt::format("{}, {}", product, maker);
    }
    return "";
}

bool is_usb_port(std::string_view name) { return name.starts_with("ttyUSB") || name.starts_with("ttyACM"); }
bool is_port(std::string_view name) { return is_usb_port(name) || name.starts_with("ttyS"); }

// Open for a look; what comes of it is errno, or 0.
class Look {
public:
    explicit Look(const std::string& path)
        : descriptor_(open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
        termios settings{};
        error_ = descriptor_ < 0 || tcgetattr(descriptor_, &settings) != 0 ? errno : 0;
    }
    ~Look() {
        if (descriptor_ >= 0) { close(descriptor_); }
    }
    Look(const Look&) = delete;
    Look& operator=(const Look&) = delete;

    [[nodiscard]] int get() const noexcept { return descriptor_; }
    [[nodiscard]] int error() const noexcept { return error_; }

private:
    int descriptor_;
    int error_;
};

// The descriptors of a process that lead to the device, or to the other end of the pseudo-terminal that it is.
struct Ends {
    bool own = false;
    bool other = false;
};

// "tty-index: 7" of the other end of /dev/pts/7.
bool is_other_end(const fs::path& process, const fs::path& descriptor, const fs::path& device) {
    std::ifstream info(process / "fdinfo" / descriptor.filename());
    for (std::string line; std::getline(info, line);) {
        if (!line.starts_with("tty-index:")) { continue; }
        return device == "/dev/pts/" + line.substr(line.find_last_of(" \t") + 1);
    }
    return false;
}

Ends ends_in(const fs::path& process, const fs::path& device) {
    Ends ends;
    std::error_code unseen;
    for (const fs::directory_entry& entry : fs::directory_iterator(process / "fd", unseen)) {
        std::error_code closed;
        const fs::path target = fs::read_symlink(entry.path(), closed);
        ends.own |= target == device;
        ends.other |= target.filename() == "ptmx" && is_other_end(process, entry.path(), device);
    }
    return ends;
}

PortInfo info_of(const std::string& path) {
    const std::vector<Holder> holders = holders_of(path);
    if (!holders.empty()) { return {path, description(path), "held by " + words_for(holders)}; }
    const int error = Look(path).error();
    return {path, description(path), error == 0 ? "ready" : std::generic_category().message(error)};
}

// Whether the user has joined the group, but this session began before that.
bool has_joined(gid_t team) {
    const passwd* user = getpwuid(geteuid());
    if (user == nullptr) { return false; }
    int count = 0;
    getgrouplist(user->pw_name, user->pw_gid, nullptr, &count);
    std::vector<gid_t> teams(static_cast<std::size_t>(std::max(count, 0)));
    return getgrouplist(user->pw_name, user->pw_gid, teams.data(), &count) >= 0
           && std::ranges::find(teams, team) != teams.end();
}

// Who may open it, and what is to be done by who may not.
std::string permission_remedy(const std::string& path) {
    struct stat info = {};
    if (stat(path.c_str(), &info) != 0) { return "It cannot even be looked at."; }
    const passwd* owner = getpwuid(info.st_uid);
    const group* members = getgrgid(info.st_gid);
    const std::string user = owner != nullptr ? owner->pw_name : fmt::format("{}", info.st_uid);
    const std::string team = members != nullptr ? members->gr_name : fmt::format("{}", info.st_gid);
    const std::string who = fmt::format("It belongs to {}, group {}, mode {:04o}. ", user, team, info.st_mode & 07777);
    // Joining root's group would open far more than a port.
    const bool helps = (info.st_mode & (S_IRGRP | S_IWGRP)) == (S_IRGRP | S_IWGRP) && info.st_gid != 0;
    if (helps && group_member(info.st_gid) == 0 && has_joined(info.st_gid)) {
        return who + "You have joined the group since you logged in: log out and in again.";
    }
    return who
           + (helps ? fmt::format("Join the group and log in again: sudo usermod -aG {} $USER", team)
                    : "Give it to a group of yours, dialout for instance, by a rule of udev: GROUP=\"dialout\", "
                      "MODE=\"0660\"");
}

PortError no_such(const std::string& path) {
    return {PortError::Reason::kMissing, "No such port: " + path,
            "Plug the PIN pad in and see its port with `quorvel ports`; without one, start the virtual PIN pad: "
            "quorvel-sim"};
}

PortError no_terminal(const std::string& path) {
    return {PortError::Reason::kNoTerminal, fmt::format("{} is no serial port.", path),
            "See some with `quorvel ports`."};
}

// Told by the number of its driver, as opening it might disturb who has it open. In doubt it is one.
bool is_terminal(const struct stat& info) {
    if (!S_ISCHR(info.st_mode)) { return false; }
    std::ifstream drivers("/proc/tty/drivers");
    bool known = false;
    for (std::string line; std::getline(drivers, line);) {
        std::istringstream words(line);
        std::string name;
        std::string device;
        unsigned number = 0;
        known |= static_cast<bool>(words >> name >> device >> number);
        if (number == major(info.st_rdev)) { return true; }
    }
    return !known;
}

PortError held(const std::string& path, const std::vector<Holder>& holders) {
    return {
        PortError::Reason::kHeld,
        fmt::format("{} is held by {}.", path, holders.empty() ? "a program that you cannot see" : words_for(holders)),
        "Nothing was sent to the PIN pad, which may be in the middle of a sale. End that program, or name another "
        "port; --force goes on all the same."};
}

}  // namespace

std::vector<PortInfo> list_ports() {
    std::vector<PortInfo> ports;
    std::error_code unreadable;
    for (const fs::directory_entry& entry : fs::directory_iterator("/dev", unreadable)) {
        const std::string name = entry.path().filename().string();
        if (!is_port(name)) { continue; }
        PortInfo port = info_of(entry.path().string());
        // Of built-in ports there are more names than ports.
        if (is_usb_port(name) || port.state == "ready" || port.state.starts_with("held")) {
            ports.push_back(std::move(port));
        }
    }
    std::ranges::sort(ports, {}, &PortInfo::path);
    return ports;
}

std::vector<Holder> holders_of(const std::string& path) {
    std::vector<Holder> holders;
    std::error_code unseen;
    const fs::path device = fs::canonical(path, unseen);
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc", unseen)) {
        const std::string name = entry.path().filename().string();
        int process = 0;
        const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), process);
        if (error != std::errc() || end != name.data() + name.size() || process == getpid()) { continue; }
        const Ends ends = ends_in(entry.path(), device);
        if (ends.own && !ends.other) { holders.push_back({process, first_line(entry.path() / "comm")}); }
    }
    std::ranges::sort(holders, {}, &Holder::process);
    return holders;
}

std::string words_for(const std::vector<Holder>& holders) {
    std::string text;
    for (const Holder& holder : holders) {
        text += fmt::format("{}{} (process {})", text.empty() ? "" : ", ", holder.program, holder.process);
    }
    return text;
}

void require_free(const std::string& path) {
    struct stat info = {};
    if (stat(path.c_str(), &info) != 0) { throw no_such(path); }
    if (!is_terminal(info)) { throw no_terminal(path); }
    if (const std::vector<Holder> holders = holders_of(path); !holders.empty()) { throw held(path, holders); }
}

void explain_opening(const std::string& path, const quorvel::Error& error) {
    switch (error.code()) {
        case ErrorCode::not_found:
            throw no_such(path);
        case ErrorCode::busy:
            throw held(path, holders_of(path));
        case ErrorCode::permission:
            throw PortError(PortError::Reason::kForbidden, fmt::format("You may not open {}.", path),
                            permission_remedy(path));
        default:
            if (error.detail() == fmt::format("tcgetattr() error: {}", ENOTTY)) { throw no_terminal(path); }
    }
}

bool babbles(const std::string& path) {
    constexpr int kSlices = 10;
    constexpr int kSliceMs = 100;
    const Look port(path);
    if (port.error() != 0) { return false; }
    int loud = 0;
    for (int i = 0; i < kSlices; ++i) {
        usleep(kSliceMs * 1000);
        std::array<char, 4096> bytes{};
        if (read(port.get(), bytes.data(), bytes.size()) > 0) { ++loud; }
    }
    return loud > kSlices / 2;
}

}  // namespace quorvel::cli
