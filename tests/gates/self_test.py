#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""The checks of the sources find what they are for: each case is a small tree with one file more."""
import subprocess
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).parent
CPP_HEAD = "// SPDX-License-Identifier: MIT\n// Copyright (c) 2026 the quorvel authors\n"
C_HEAD = "/* SPDX-License-Identifier: MIT */\n/* Copyright (c) 2026 the quorvel authors */\n"
SOUND = {
    "core/exception.cpp": CPP_HEAD + '#include "quorvel/kor/heap.h"\n// new, throw and setjmp() stand in words only\n'
                          'const char* text = "throw new std::string";\nint f() { return setjmp(jump); }\n',
    "core/raise.h": CPP_HEAD,
    "include/quorvel/kor/heap.h": C_HEAD,
    "include/quorvel/abecs/comm.h": C_HEAD + '#include "quorvel/kor/heap.h"\n',
    "include/quorvel/abecs/packet.h": C_HEAD,
    "abecs/comm/comm.cpp": CPP_HEAD + '#include "quorvel/abecs/comm.h"\n#include "quorvel/abecs/packet.h"\n',
    "abecs/cmd/exchange.h": CPP_HEAD + '#include "quorvel/abecs/comm.h"\n',
    "wire/x.h": CPP_HEAD, "cli/commands/x.h": CPP_HEAD, "simulator/engine.h": CPP_HEAD,
    "simulator/keys/x.h": CPP_HEAD, "simulator/commands/x.h": CPP_HEAD, "simulator/scenario/x.h": CPP_HEAD,
}
DOCS = {
    "cmake/exports.txt": "abecs_cmd_gin\nabecs_cmd_gcx_builder_new\nkor_list_new\n",
    "include/quorvel/kor/result.h": C_HEAD + "enum { KOR_RESULT_OK = 0 };\n",
    "include/quorvel/abecs/rsp_stat.h": C_HEAD + "enum { ABECS_RSP_STAT_ST_OK = 0 };\n",
    "examples/a.c": C_HEAD + "int a;\nint b;\nint c;\n",
    "README.md": "See [the guides](docs/README.md) and `kor_list_new`.\n",
    "docs/README.md": "[one](errors.md) [two](commands.md)\n",
    "docs/errors.md": "# On errors\n`KOR_RESULT_OK`, `ABECS_RSP_STAT_ST_OK`, all `kor_list_`; [here](#on-errors)\n"
                      "\n<!-- from examples/a.c -->\n```c\nint b;\nint c;\n```\n",
    "docs/commands.md": "`abecs_cmd_gin`, `abecs_cmd_gcx_builder_*`; [names](errors.md#on-errors)\n",
}
# As they lie when they are installed.
GUIDES = {
    "share/doc/quorvel/README.md": '[a](docs/a.md#x)\n<img src="docs/b.png">\n```\n[c](docs/c.md)\n```\n[d](https://d.example/e)\n',
    "share/doc/quorvel/docs/a.md": "[h](../include/a.h), [here](#x)\n![b](b.png)\n",
    "share/doc/quorvel/docs/b.png": "",
    "share/doc/quorvel/include/a.h": "",
}
PAGE = ("`abecs_cmd_abc`\n<!-- exchange: abc, in time -->\n```\n"
        '> 00\n  ABC a: ABC_N "it, 013 ST_CANCEL"\n< 01\n  ABC a, 000 ST_OK: 1\n```\n'
        "| ABC_N | 2 | N |\n| SPE_TIMEOUT | 000C | 1 |\n| PP_SERNUM | 8001 | |\n"
        "| 0 ST_OK |\n| 12 ST_TIMEOUT |\n")
COMMANDS = {
    "cmake/exports.txt": "abecs_cmd_abc\n",
    "wire/command.h": 'Command{"ABC", "a"}, Command{"ERR", "error"},\n',
    "wire/command.cpp": 'constexpr std::array kAbcRequest{kBlock, digits("ABC_N", 2)};\n',
    "wire/param_id.h": "namespace spe {\ninline constexpr uint16_t kTimeout = 0x000C;\n}\n",
    "wire/param_id.cpp": 'Row{spe::kTimeout, "SPE_TIMEOUT"}, Row{0x8001, "PP_SERNUM"},\n',
    "wire/status.h": "enum { kOk = 0, kTimeout = 12, kCancel = 13, };\n",
    "abecs/data/spe_param.h": "{QUORVEL_SPE(TIMEOUT), SpeForm::kBinary, 1},\n",
    "abecs/cmd/abc.cpp": "ABECS_SPE_ID_TIMEOUT\n",
    "simulator/commands/abc.cpp": "Status::kTimeout, spe::kTimeout\n",
    "docs/commands.md": "[a](commands/abc.md) [b](commands/parameters.md) [c](commands/statuses.md)\n",
    "docs/commands/abc.md": PAGE,
    "docs/commands/parameters.md": "| SPE_TIMEOUT | 000C | 1 | X | seconds | [ABC](abc.md) |\n"
                                   "| PP_SERNUM | 8001 | A | serial number |\n",
    "docs/commands/statuses.md": "## All of them\n| 0 ST_OK | done | every command |\n"
                                 "| 12 ST_TIMEOUT | late | [ABC](abc.md) |\n| 13 ST_CANCEL | gone | none |\n",
}
# Check, file, its text and what is said of it; nothing said means that it passes.
CASES = [
    ("sources", "core/x.cpp", "int* a = new int;", "core/x.cpp:3: operator new"),
    ("sources", "core/x.cpp", "#include <new>\nauto* a = new (memory) A{};", ""),
    ("sources", "core/x.cpp", "void f() { delete a; }", "operator delete"),
    ("sources", "core/x.h", "struct A { A(const A&) = delete; };", ""),
    ("sources", "crypt/x.cpp", "void f() { throw 1; }", "a C++ exception"),
    ("sources", "abecs/data/x.cpp", "std::string a;", "a library type with a destructor"),
    ("sources", "abecs/data/x.cpp", "std::string_view a;", ""),
    ("sources", "abecs/data/x.cpp", "auto b = a.at(0);", "a member that throws"),
    ("sources", "abecs/cmd/x.cpp", "#include <vector>", "a header of the C++ runtime"),
    ("sources", "abecs/cmd/x.h", "struct A { ~A(); };", "a destructor"),
    ("sources", "core/x.cpp", "auto* b = dynamic_cast<B*>(a);", "run-time type information"),
    ("sources", "core/x.cpp", "void* a = std::malloc(1);", "memory that is not of kor_heap_alloc"),
    ("sources", "core/heap.cpp", "void* a = std::malloc(1);", ""),
    ("sources", "core/x.cpp", 'void f() { std::printf("x"); }', "printing"),
    ("sources", "core/x.cpp", "void f() { exit(1); }", "an end of the process"),
    ("sources", "core/x.cpp", "int b = toupper(a);", "what the locale decides"),
    ("sources", "abecs/data/x.cpp", "int b = strncasecmp(a, c, 2);", "what the locale decides"),
    ("sources", "abecs/data/x.cpp", "kor_string_to_upper(a, a); is_digit(b);", ""),
    ("sources", "core/x.cpp", "[[gnu::constructor]] void f() {}", "an initialiser"),
    ("sources", "core/x.cpp", "int f() { return sigsetjmp(jump, 0); }", "2 calls of setjmp"),
    ("sources", "core/x.cpp", "int f() { /* a\nb */ throw 1; }", "core/x.cpp:4: a C++ exception"),
    ("layers", "core/x.cpp", '#include "abecs/cmd/exchange.h"', "core must not include abecs/cmd/exchange.h of cmd"),
    ("layers", "core/x.cpp", '#include "core/raise.h"', ""),
    ("layers", "include/quorvel/kor/x.h", '#include "quorvel/abecs/packet.h"', "must not include"),
    ("layers", "abecs/data/x.cpp", "#include <quorvel/abecs/comm.h>", "of comm"),
    ("layers", "abecs/comm/x.cpp", '#include "abecs/cmd/exchange.h"', "of cmd"),
    ("layers", "abecs/cmd/x.cpp", '#include "frame.h"\n#include "quorvel/abecs/comm.h"', ""),
    ("layers", "simulator/commands/x.cpp", '#include "quorvel/abecs/packet.h"', "simulator/commands must not include"),
    ("layers", "simulator/x.cpp", '#include "core/raise.h"', "simulator must not include"),
    ("layers", "wire/x.cpp", '#include "quorvel/abecs/packet.h"', "wire must not include"),
    ("layers", "simulator/x.cpp", "#include <tomcrypt.h>", "a crypto library of its own"),
    ("layers", "simulator/keys/x.cpp", "#include <tomcrypt.h>", "a crypto library of its own"),
    ("layers", "simulator/keys/x.cpp", '#include "simulator/commands/x.h"', "of simulator/commands"),
    ("layers", "simulator/keys/x.cpp", '#include "simulator/engine.h"', "of simulator/pin pad"),
    ("layers", "simulator/commands/x.cpp", '#include "simulator/keys/x.h"\n#include "wire/x.h"', ""),
    ("layers", "simulator/engine.cpp", '#include "simulator/scenario/x.h"', "of simulator/scenario"),
    ("layers", "simulator/attic/x.cpp", "", "a room that has no place"),
    ("layers", "wire/x.cpp", '#include "simulator/keys/x.h"', "wire must not include"),
    ("layers", "wire/x.cpp", '#include "quorvel/kor/heap.h"', "wire must not include"),
    ("docs", "docs/README.md", DOCS["docs/README.md"], ""),
    ("docs", "docs/README.md", "[one](errors.md)", "docs/README.md:1: leaves out commands.md"),
    ("docs", "docs/errors.md", "`KOR_RESULT_OK`", "docs/errors.md:1: leaves out ABECS_RSP_STAT_ST_OK"),
    ("docs", "docs/commands.md", "`abecs_cmd_gin`", "leaves out abecs_cmd_gcx_builder_new"),
    ("docs", "docs/commands.md", "`abecs_cmd_gi`, `abecs_cmd_*`", "there is no abecs_cmd_gi"),
    ("docs", "docs/commands.md", "`abecs_cmd_*`, `KOR_RESULT_O`", "there is no KOR_RESULT_O"),
    ("docs", "docs/commands.md", "\n`abecs_cmd_*`, [x](x.md)", "docs/commands.md:2: a link to x.md"),
    ("docs", "docs/commands.md", "`abecs_cmd_*`, [x](errors.md#off)", "a link to #off"),
    ("docs", "docs/commands.md", "`abecs_cmd_*`\n```c\nint b;\n```", "code without the file"),
    ("docs", "docs/commands.md", "`abecs_cmd_*`\n<!-- from examples/a.c -->\n```c\nint d;\n```", "code that is not in"),
    ("docs", "docs/commands.md", "`abecs_cmd_*`\n<!-- from examples/b.c -->\n```c\nint b;\n```", "code from examples"),
    ("docs", "docs/commands.md", "`abecs_cmd_*`\n<!-- from examples/a.c -->\n```c\nnt b;\n```", "code that is not in"),
    ("docs", "README.md", "[x](docs/x.md)", "a link to docs/x.md"),
    ("docs", "README.md", "[x](docs/README.md)\n```java\nint b;\n```", "docs/../README.md:2: code without the file"),
    ("docs", "docs/commands.md", "`abecs_cmd_*`\n```lua\na[b](c)\n```\n<!-- from examples/a.c -->", "code without the file"),
    ("docs", "docs/commands/abc.md", "[x](x.md)", "docs/commands/abc.md:1: a link to x.md"),
    ("docs", "docs/commands.md", "`abecs_cmd_*`\n<img width=1\n src='x.png'>", "docs/commands.md:2: a link to x.png"),
    ("docs", "docs/commands.md", '`abecs_cmd_*` <img src="errors.md"> <img src="https://x.example/x.png">', ""),
    ("docs", "docs/commands.md", '`abecs_cmd_*`\n```html\n<img src="x.png">\n```\n# X\n# X\n', ""),
    ("docs", "docs/commands.md", "`abecs_cmd_*`\n# X\n## x!\n[x](#x)", "docs/commands.md:4: a link to #x, which commands.md has 2 times"),
    ("docs", "docs/errors.md", DOCS["docs/errors.md"].replace("[here](#on-errors)", "") + "# On errors\n",
     "docs/commands.md:1: a link to #on-errors, which errors.md has 2 times"),
    ("guides", "share/doc/quorvel/docs/b.md", "[a](a.md)", ""),
    ("guides", "share/doc/quorvel/docs/b.md", "[a](../a.md)", "docs/b.md:1: a link to ../a.md, which is not installed"),
    ("guides", "share/doc/quorvel/docs/b.md", '\n<img src="a.png">', "docs/b.md:2: a link to a.png"),
    ("guides", "share/doc/quorvel/docs/b.md", "[a](../../../../..)", "a link to ../../../../.., which is not installed"),
    ("guides", "share/doc/quorvel/python/README.md", "[a](a.md)", "python/README.md:1: a link to a.md"),
    ("commands", "docs/commands/abc.md", PAGE, ""),
    ("commands", "docs/commands/abc.md", PAGE.replace("abecs_cmd_abc", "abecs_cmd_ab"), "leaves out abecs_cmd_abc"),
    ("commands", "docs/commands/abc.md", PAGE.replace("ABC_N", "ABC_M"), "leaves out the field ABC_N"),
    ("commands", "docs/commands/abc.md", PAGE.replace("| 2 |", "| 3 |"), "ABC_N has 2 characters"),
    ("commands", "docs/commands/abc.md", PAGE.replace("000C", "000D"), "SPE_TIMEOUT is 000C"),
    ("commands", "docs/commands/abc.md", PAGE.replace("000C | 1", "000C | 2"), "SPE_TIMEOUT has 1 characters"),
    ("commands", "docs/commands/abc.md", PAGE.replace("SPE_T", "SPE_S"), "abc.md: leaves out SPE_TIMEOUT"),
    ("commands", "docs/commands/abc.md", PAGE.replace("PP_SER", "PP_S"), "there is no PP_SNUM"),
    ("commands", "docs/commands/abc.md", PAGE.replace("12 ST_TIMEOUT", "13 ST_CANCEL"), "leaves out status 12"),
    ("commands", "docs/commands/abc.md", PAGE.replace("12 ST_TIMEOUT", "12 ST_TIMEUP"), "there is no 12 ST_TIMEUP"),
    ("commands", "docs/commands/abc.md", PAGE + "| 13 ST_CANCEL |\n", "statuses.md: 13 is answered by abc"),
    ("commands", "docs/commands/abc.md", PAGE.replace("exchange", "change"), "shows no exchange"),
    ("commands", "docs/commands/abc.md", PAGE.replace(": abc,", ": abd,"), "shows no exchange"),
    ("commands", "docs/commands/abc.md", PAGE.replace("000 ST_OK", "done"), "shows no status in the exchange 'abc, in time'"),
    ("commands", "docs/commands/abc.md", PAGE.replace("000 ST_OK: 1", "013 ST_CANCEL"),
     "abc.md: leaves out status 13, which the exchange 'abc, in time' shows"),
    ("commands", "docs/commands/abc.md", PAGE.replace("000 ST_OK: 1", "012 ST_TIMEOUT"), ""),
    ("commands", "docs/commands/abd.md", PAGE, "abd.md: there is no such command"),
    ("commands", "docs/commands/parameters.md", "| PP_SERNUM | 8001 |", "parameters.md: leaves out SPE_TIMEOUT"),
    ("commands", "docs/commands/parameters.md", COMMANDS["docs/commands/parameters.md"].replace("abc.md", "abd.md"),
     "parameters.md: SPE_TIMEOUT is in abc"),
    ("commands", "docs/commands.md", "[a](commands/abc.md) [c](commands/statuses.md)", "no link to commands/parameters.md"),
    ("commands", "wire/command.h", 'Command{"ABC", "a"}, Command{"XYZ", "x"},', "no page for XYZ"),
    ("layers", "cli/x.cpp", '#include "quorvel/quorvel.hpp"\n#include "wire/x.h"', ""),
    ("layers", "cli/x.cpp", '#include "quorvel/quorvel.h"', "cli must not include quorvel/quorvel.h"),
    ("layers", "cli/x.cpp", '#include "simulator/keys/x.h"', "cli must not include"),
    ("layers", "cli/x.cpp", '#include "cli/commands/x.h"', "of cli/commands"),
    ("layers", "cli/commands/x.cpp", '#include "quorvel/kor/heap.h"', "cli/commands must not include quorvel/kor/heap.h"),
    ("layers", "tests/support/peer.cpp", '#include "abecs/cmd/exchange.h"', "peer must not include"),
]


SCRIPTS = {"guides": HERE.parents[1] / "debian/tests/guides"}
TREES = {"commands": COMMANDS, "docs": SOUND | DOCS, "guides": GUIDES}


def verdict(check: str, files: dict) -> tuple:
    with tempfile.TemporaryDirectory() as root:
        for name, text in files.items():
            path = Path(root, name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text)
        done = subprocess.run([sys.executable, SCRIPTS.get(check, HERE / f"{check}.py"), root], capture_output=True, text=True)
        return done.returncode, done.stdout.strip() + done.stderr


wrong = 0
UNLICENSED = [("sources", name, None, f"{name}:1: no licence head") for name in ("core/x.cpp", "cli/x.cpp", "wire/x.h")]
for check, name, text, said in [*CASES, *UNLICENSED]:
    head = "" if check in TREES else CPP_HEAD
    body = "int a;\n" if text is None else head + text + "\n"
    code, output = verdict(check, TREES.get(check, SOUND) | {name: body})
    if code != (1 if said else 0) or said not in output or (not said and output):
        wrong += 1
        print(f"{check} on {name} with {text!r}: exit {code}, {output!r}; expected {said!r}")
sys.exit(1 if wrong else 0)
