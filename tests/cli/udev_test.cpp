// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "cli/udev.h"

#include <gtest/gtest.h>
#include <sys/sysmacros.h>

#include "tests/core/temp_dir.h"

namespace {

using quorvel::cli::Prober;
using quorvel::cli::System;

const std::string kUsb = "E:ID_BUS=usb\nE:ID_VENDOR_ID=1234\nE:ID_MODEL_ID=abcd\n";
const std::string kLinks = "S:quorvel/counter\nS:serial/by-id/usb-1234\nS:quorvel/Maker_Model_1-if00\n";

struct Case {
    const char* what;
    // What is noted of the port; nothing at all without it.
    std::string record;
    bool proberRuns;
    bool rulesInstalled;
    std::string found;
    std::string remedy;
};

// On a system in a folder, on which `one` holds.
Prober prober_in(const TempDir& folder, const Case& one) {
    const System system{folder.dir("data"), {folder.dir("etc"), folder.dir("lib")}, folder.dir("proc")};
    if (!one.record.empty()) { folder.file("data/c166:3", one.record); }
    folder.file("data/c166:4", "E:ID_MM_PORT_IGNORE=1\n");
    if (one.rulesInstalled) { folder.file("lib/70-quorvel.rules"); }
    for (const char* process : {"proc/1", "proc/2", "proc/sys"}) { folder.dir(process); }
    folder.file("proc/1/comm", "ModemManagerX\n");
    folder.file("proc/2/comm", one.proberRuns ? "ModemManager\n" : "bash\n");
    return prober_at(system, makedev(166, 3), "ttyACM3");
}

TEST(ProberTest, TellsWhetherAProberMayBeOnThePortAndWhichRuleKeepsItOff) {
    const std::string write =
        "Write this line to /etc/udev/rules.d/65-pinpads.rules, run `sudo udevadm control "
        "--reload`, and unplug and plug the PIN pad: ";
    const std::string name = R"(, ENV{QUORVEL_PIN_PAD}="pinpad")";
    const std::string usb = write + R"(SUBSYSTEM=="usb|tty", ATTRS{idVendor}=="1234", ATTRS{idProduct}=="abcd")" + name;
    const std::string other = write + R"(SUBSYSTEM=="tty", KERNEL=="ttyACM3")" + name;
    const std::string copy = "Copy 70-quorvel.rules of quorvel to /etc/udev/rules.d. ";
    const std::string prober = "ModemManager runs and may open the port, and send to it, when it appears";
    const std::string off = "a rule keeps modem probers off the port";
    const std::string linked = off + "; it is /dev/quorvel/counter, /dev/quorvel/Maker_Model_1-if00";
    const std::string ours = kUsb + kLinks + "E:ID_MM_DEVICE_IGNORE=1\nE:ID_MM_PORT_IGNORE=1\n";
    for (const Case& one : std::vector<Case>{
             {"no prober", kUsb, false, false, "none runs", ""},
             {"a prober, no line", kUsb, true, true, prober, usb},
             {"nor our rules", kUsb, true, false, prober, copy + usb},
             {"not on USB", "E:ID_BUS=pci\nE:ID_VENDOR_ID=0x8086\n", true, true, prober, other},
             {"unknown", "", true, true, prober, other},
             {"somebody's rule, off", kUsb + "E:ID_MM_PORT_IGNORE=0\n", true, true, prober, usb},
             {"our rule", ours, true, true, linked, ""},
             {"somebody's rule", "E:ID_MM_DEVICE_IGNORE=1\n", true, false, off, ""},
         }) {
        SCOPED_TRACE(one.what);
        const TempDir folder;
        const Prober told = prober_in(folder, one);
        EXPECT_EQ(told.found, one.found);
        EXPECT_EQ(told.remedy, one.remedy);
    }
}

}  // namespace
