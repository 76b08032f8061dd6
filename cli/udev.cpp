// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/udev.h"

#include <algorithm>
#include <fmt/format.h>
#include <fstream>
#include <map>
#include <sys/sysmacros.h>
#include <system_error>

namespace quorvel::cli {

namespace fs = std::filesystem;

namespace {

constexpr const char* kProber = "ModemManager";
constexpr const char* kRules = "70-quorvel.rules";

// What the system's rules have noted of a device.
struct Record {
    std::map<std::string, std::string> properties;
    // Relative to /dev.
    std::vector<std::string> links;

    [[nodiscard]] std::string property(const std::string& name) const {
        const auto found = properties.find(name);
        return found == properties.end() ? "" : found->second;
    }
};

// Lines as "E:ID_VENDOR_ID=1234" and "S:serial/by-id/...".
Record record_of(const fs::path& folder, dev_t port) {
    Record record;
    std::ifstream file(folder / fmt::format("c{}:{}", major(port), minor(port)));
    for (std::string line; std::getline(file, line);) {
        const std::size_t equals = line.find('=');
        if (line.starts_with("S:")) { record.links.push_back(line.substr(2)); }
        if (line.starts_with("E:") && equals != std::string::npos) {
            record.properties[line.substr(2, equals - 2)] = line.substr(equals + 1);
        }
    }
    return record;
}

bool runs(const fs::path& processes, const std::string& program) {
    std::error_code unseen;
    for (const fs::directory_entry& entry : fs::directory_iterator(processes, unseen)) {
        std::string name;
        if (std::getline(std::ifstream(entry.path() / "comm"), name) && name == program) { return true; }
    }
    return false;
}

// The line of the administrator's rules that names this device.
std::string rule_for(const Record& record, const std::string& name) {
    const std::string vendor = record.property("ID_VENDOR_ID");
    const std::string model = record.property("ID_MODEL_ID");
    const std::string device =
        record.property("ID_BUS") == "usb" && !vendor.empty() && !model.empty()
            ? fmt::format(R"(SUBSYSTEM=="usb|tty", ATTRS{{idVendor}}=="{}", ATTRS{{idProduct}}=="{}")", vendor, model)
            : fmt::format(R"(SUBSYSTEM=="tty", KERNEL=="{}")", name);
    return device + R"(, ENV{QUORVEL_PIN_PAD}="pinpad")";
}

std::string remedy_for(const System& system, const Record& record, const std::string& name) {
    const bool installed =
        std::ranges::any_of(system.rules, [](const fs::path& folder) { return fs::exists(folder / kRules); });
    return fmt::format(
        "{}Write this line to /etc/udev/rules.d/65-pinpads.rules, run `sudo udevadm control --reload`, and unplug and "
        "plug the PIN pad: {}",
        installed ? "" : fmt::format("Copy {} of quorvel to /etc/udev/rules.d. ", kRules), rule_for(record, name));
}

std::string links_of(const Record& record) {
    std::string text;
    for (const std::string& link : record.links) {
        if (link.starts_with("quorvel/")) { text += (text.empty() ? "; it is " : ", ") + ("/dev/" + link); }
    }
    return text;
}

}  // namespace

Prober prober_at(const System& system, dev_t port, const std::string& name) {
    const Record record = record_of(system.devices, port);
    if (record.property("ID_MM_PORT_IGNORE") == "1" || record.property("ID_MM_DEVICE_IGNORE") == "1") {
        return {"a rule keeps modem probers off the port" + links_of(record), ""};
    }
    if (!runs(system.processes, kProber)) { return {"none runs", ""}; }
    return {fmt::format("{} runs and may open the port, and send to it, when it appears", kProber),
            remedy_for(system, record, name)};
}

}  // namespace quorvel::cli
