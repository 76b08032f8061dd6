// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/port.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "cli/names.h"

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

bool is_usb_port(const std::string& name) { return name.starts_with("ttyUSB") || name.starts_with("ttyACM"); }

std::string state_of(const std::string& path) {
    try {
        probe_port(path);
    } catch (const Error& error) { return error.what(); }
    return "ready";
}

bool has_open(const fs::path& process, const fs::path& device) {
    std::error_code unseen;
    for (const fs::directory_entry& entry : fs::directory_iterator(process / "fd", unseen)) {
        std::error_code closed;
        if (fs::read_symlink(entry.path(), closed) == device) { return true; }
    }
    return false;
}

}  // namespace

std::vector<PortInfo> list_ports() {
    const Names names;
    call([&] { kor_serial_list_ports(names.get()); });
    std::vector<PortInfo> ports;
    for (const std::string& path : names.all()) { ports.push_back({path, description(path), "ready"}); }
    std::error_code unreadable;
    for (const fs::directory_entry& entry : fs::directory_iterator("/dev", unreadable)) {
        const std::string path = entry.path().string();
        if (!is_usb_port(entry.path().filename().string())) { continue; }
        if (std::ranges::find(ports, path, &PortInfo::path) != ports.end()) { continue; }
        ports.push_back({path, description(path), state_of(path)});
    }
    std::ranges::sort(ports, {}, &PortInfo::path);
    return ports;
}

void probe_port(const std::string& path) {
    call([&] {
        KorSerial* port = kor_serial_open(path.c_str());
        kor_serial_close(&port);
    });
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
        if (has_open(entry.path(), device)) { holders.push_back({process, first_line(entry.path() / "comm")}); }
    }
    std::ranges::sort(holders, {}, &Holder::process);
    return holders;
}

Access access_of(const std::string& path) {
    struct stat info = {};
    if (stat(path.c_str(), &info) != 0) { return {}; }
    const passwd* owner = getpwuid(info.st_uid);
    const group* members = getgrgid(info.st_gid);
    return {owner != nullptr ? owner->pw_name : fmt::format("{}", info.st_uid),
            members != nullptr ? members->gr_name : fmt::format("{}", info.st_gid),
            fmt::format("{:04o}", info.st_mode & 07777)};
}

}  // namespace quorvel::cli
