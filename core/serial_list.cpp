// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include <algorithm>
#include <array>
#include <cstring>

#include "core/attempt.h"
#include "core/check.h"
#include "core/serial.h"
#include "quorvel/kor/path.h"
#include "quorvel/kor/regex.h"
#include "quorvel/kor/string.h"
#include "quorvel/kor/string_list.h"

using namespace kor;

namespace {

constexpr std::array<const char*, 3> kLinuxPortNames{"ttyS", "ttyUSB", "ttyACM"};

// Compiled on first use and kept for the life of the process.
const KorRegex* port_name_expression() {
    static KorRegex* expression = nullptr;
    if (expression == nullptr) { expression = kor_regex_new("(tty.(serial|usbserial|usbmodem).*)"); }
    return expression;
}

bool is_port_name(const char* name, const KorRegex* expression) {
    return kor_regex_match(name, expression)
           || std::any_of(kLinuxPortNames.begin(), kLinuxPortNames.end(),
                          [=](const char* prefix) { return std::strncmp(name, prefix, std::strlen(prefix)) == 0; });
}

// Whether the path can be opened and closed as a port. Whatever is wrong with it, it is only left out.
bool is_port(const char* path) {
    bool usable = false;
    KorSerial* port = nullptr;
    attempt([&] {
        if (kor_path_is_dir(path) || kor_path_is_file(path)) { return; }
        port = kor_serial_open(path);
        kor_serial_close(&port);
        usable = true;
    }).on_any([&] {
      }).run();
    return usable;
}

void append_ports(const char* directory, const KorList* names, const KorRegex* expression, KorList* out) {
    for (const KorListNode* node = kor_string_list_first(names); node != nullptr; node = kor_string_list_next(node)) {
        const char* name = kor_string_list_item(node);
        // The name comes first: opening a stranger could wait, or have effects.
        if (name == nullptr || !is_port_name(name, expression)) { continue; }
        char path[128];
        kor_string_format(path, sizeof path, "%s%s", directory, name);
        if (is_port(path)) { kor_string_list_append(out, path); }
    }
}

}  // namespace

KorList* kor::list_serial_ports(const char* directory, KorList* out) {
    if (refuse_null(out, "'out' is NULL")) { return nullptr; }
    const KorRegex* expression = port_name_expression();
    if (expression == nullptr) { return out; }
    KorList* names = nullptr;
    attempt([&] {
        if (!kor_path_exists(directory) || !kor_path_is_dir(directory)) { return; }
        names = kor_string_list_new();
        kor_path_list_entries(directory, names);
        append_ports(directory, names, expression, out);
    }).cleanup([&] {
          kor_string_list_delete(&names);
      }).run();
    return out;
}

KorList* kor_serial_list_ports(KorList* out) { return list_serial_ports("/dev/", out); }
