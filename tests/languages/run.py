#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""run.py <language> <root> <folder of the library>: builds the till of examples/languages and has it work with virtual
PIN pads. Ends with 77 where the language is not installed."""
import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

NAME, ROOT, LIBRARY = sys.argv[1], Path(sys.argv[2]).resolve(), Path(sys.argv[3]).resolve()
sys.path.insert(0, str(ROOT / "python"))
from quorvel.testing import virtual_pin_pad  # noqa: E402

SOURCES = ROOT / "examples/languages"
JNA = Path("/usr/share/java/jna.jar")
# What it needs, the Debian packages that have that, how it is built in a folder of its own, and how it is run there.
LANGUAGES = {
    "lua": (["luajit"], "luajit", [], ["luajit", SOURCES / "till.lua"]),
    "pascal": (["fpc"], "fp-compiler and fp-units-rtl",
               [["fpc", "-v0", "-FE.", f"-Fl{LIBRARY}", f"-k-rpath={LIBRARY}", SOURCES / "till.pas"]], ["./till"]),
    "go": (["go"], "golang-go", [["go", "build", "-o", "till", SOURCES / "till.go"]], ["./till"]),
    "java": (["javac", JNA], "default-jdk-headless and libjna-java",
             [["javac", "-Xlint:all", "-Werror", "-cp", JNA, "-d", ".", SOURCES / "Till.java"]],
             ["java", f"-Djna.library.path={LIBRARY}", "-cp", f"{JNA}:.", "Till"]),
}
ENVIRONMENT = {
    **os.environ, "QUORVEL_LIBRARY": str(LIBRARY / "libquorvel0.so.0"), "LD_LIBRARY_PATH": str(LIBRARY),
    "CGO_CFLAGS": f"-I{ROOT / 'include'}", "CGO_LDFLAGS": f"-L{LIBRARY} -Wl,-rpath,{LIBRARY}", "GO111MODULE": "off",
}
WHO = "QUORVEL VIRTUAL QV00000001\n"
# What happens, what the till says of it, how it ends and what it says on standard error.
CASES = [
    ("a key, behind a notice", lambda pad: pad.when("CKE", ("notify", "HELLO"), ("press", "f2")), 30,
     WHO + "notice: HELLO\nkey 5\n", 0, ""),
    ("a stripe", lambda pad: pad.when("CKE", ("swipe", "visa-magnetic")), 30, WHO + "a stripe\n", 0, ""),
    ("a chip", lambda pad: pad.when("CKE", ("insert", "visa-chip")), 30, WHO + "a chip\n", 0, ""),
    ("nobody", lambda pad: None, 1, WHO + "nobody came\n", 0, ""),
    ("a status", lambda pad: pad.fault("status", status=40, command="DSP"), 30, WHO, 1, "40: DSP was refused\n"),
    ("an error", lambda pad: pad.fault("nak", command="DSP", times=3), 30, WHO, 1,
     "12: [KOR_RESULT_PROTOCOL_ERROR] Packet was rejected\n"),
    ("an error while it waits", lambda pad: (pad.fault("wrong-id", command="CKE"), pad.when("CKE", ("press", "f1"))), 30,
     WHO, 1, "12: [KOR_RESULT_PROTOCOL_ERROR] (CKE) Invalid RSP_ID: XXX)\n"),
]


def run(command: list, folder: str, patience: int = 60) -> tuple:
    done = subprocess.run([str(part) for part in command], cwd=folder, env={**ENVIRONMENT, "HOME": folder},
                          stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=patience)
    return done.stdout, done.returncode, done.stderr


def till_at(folder: str, start: list, case: tuple) -> bool:
    name, happens, seconds, *due = case
    with virtual_pin_pad() as pad:
        happens(pad)
        ended = run([*start, pad.port, seconds], folder)
        state, findings = pad.state(), pad.findings()
    # Whatever happened: the session is closed and nothing was sent out of order.
    good = list(ended) == due and state["session"] == "none" and not findings
    if not good:
        print(f"{NAME}, {name}: {ended}, expected {due}; session {state['session']}, findings {findings}")
    return good


def main() -> int:
    needs, packages, build, start = LANGUAGES[NAME]
    missing = [str(each) for each in needs if not (each.is_file() if isinstance(each, Path) else shutil.which(each))]
    if missing:
        print(f"SKIPPED: {', '.join(missing)} is not installed (Debian: {packages})")
        return 77
    with tempfile.TemporaryDirectory(prefix="quorvel-") as folder:
        for command in build:
            said, code, problems = run(command, folder, 240)
            if code != 0:
                print(f"{NAME} does not build: {said}{problems}")
                return 1
        good = [till_at(folder, start, case) for case in CASES]
        nowhere = run([*start, "/dev/nowhere"], folder)
        if nowhere != ("", 1, "8: [KOR_RESULT_FILE_NOT_FOUND] No such port: /dev/nowhere\n"):
            print(f"{NAME}, no port: {nowhere}")
            return 1
    return 0 if all(good) else 1


sys.exit(main())
