# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""Whole conversations with the virtual PIN pad, the examples, and the package as it is installed."""
import copy
import ctypes
import os
import pickle
import shutil
import subprocess
import sys
from pathlib import Path

import pytest
from quorvel import *
from quorvel import _native
from quorvel.testing import ControlError, virtual_pin_pad

ROOT = Path(__file__).resolve().parents[2]
KEY = WorkingKey(WorkingKeyType.DES, Secret(bytes.fromhex("0123456789ABCDEFFEDCBA9876543210")))
CARD = "insert the card\ncard 411111******1111\n"
RECORD = "0561{:02}{:02}07A000000003101000000000000000000001VISA CREDITO".format


def run(*command, **environment):
    done = subprocess.run([sys.executable, *map(str, command)], env={
        **os.environ, "PYTHONPATH": str(ROOT / "python"), **environment}, stdin=subprocess.DEVNULL, capture_output=True,
        text=True, timeout=60)
    return done.returncode, done.stdout + done.stderr


def test_the_virtual_pin_pad_is_played(pin_pad, session):
    with session.start(Gky()) as wait:
        pin_pad.wait_for("GKY")
        assert pin_pad.state()["waiting"] == "GKY"
        pin_pad.notify("HI")
        pin_pad.press("f3")
        assert wait.get(5).require() == Key.F3
    pin_pad.when("MNU", ("choose", 2), ("remove",))
    assert session.run(Mnu(["TEA", "MATE"]), deadline=5).require() == 2
    pin_pad.when("CEX", ("swipe", "visa-magnetic"))
    event = session.run(Cex(stripe=True, pan_mask=(6, 4)), deadline=5).require()
    assert (event.event, event.track2[:16]) == (CexEvent.MAGNETIC_CARD, "401288******1881")
    assert "1881" not in repr(event)
    session.run(Dsp("OLA"))
    assert pin_pad.screen()["text"].startswith("OLA") and "visa-chip" in pin_pad.cards()
    pin_pad.fault("status", status=12, command="GIN")
    assert len(pin_pad.faults()) == 1 and session.run(Gin()).status == Status.TIMEOUT
    with pytest.raises(ControlError, match='there is no key "any"'):
        pin_pad.press("any")
    pin_pad.when("GKY", ("press", "f1"), keep=True)
    assert pin_pad.state()["plans"] == 1
    pin_pad.reset("plans")
    assert pin_pad.state()["plans"] == 0


def test_tables_and_media_are_loaded_and_tell_how_far_they_came(pin_pad, session):
    told = []
    tables = Tables([RECORD(1, number) for number in range(40)])
    assert Tables.version(session, 1) is None
    tables.load(session, 1, "V1", on_progress=lambda *at: told.append(at))
    assert told == [(17, 40), (34, 40), (40, 40)] and Tables.version(session, 1) == "V1"
    pin_pad.fault("status", status=21, command="TLR", every=2)
    with pytest.raises(Incomplete, match="the load of tables ended after 17 of 40") as error:
        tables.load(session, 1, "V2")
    assert error.value.__cause__.status == Status.TABERR
    told.clear()
    data = (ROOT / "examples/welcome.png").read_bytes()
    Media.put(session, ROOT / "examples/welcome.png", "welcome", 1, on_progress=lambda *at: told.append(at))
    assert told[0] == (min(995, len(data)), len(data)) and told[-1] == (len(data), len(data))
    Media.show(session, "welcome")
    assert Media.list(session) == ["WELCOME"] and pin_pad.screen()["media"] == "WELCOME"
    Media.remove(session, "welcome")
    with pytest.raises(Refused, match="DSI was answered with ST_MFNFOUND"):
        Media.show(session, "welcome")


def test_an_encrypted_session_that_was_cut_off_does_not_keep_a_plain_one_away(pin_pad):
    for first in (Dsp("HI"), Gky()):
        with Link(pin_pad.port) as link:
            assert link.open(secure=True).encrypted and pin_pad.state()["session"] == "encrypted"
        with Link(pin_pad.port, claim=True, whole_frames=True) as link, link.open() as session:
            assert link.whole_frames
            pin_pad.when("GKY", ("press", "enter"))
            assert session.run(first).ok and pin_pad.state()["session"] == "plain"
            with pytest.raises(Error, match="Port is busy"):
                Link(pin_pad.port, claim=True)
    with Link(pin_pad.port) as link:
        session = link.open(secure=True)
        pin_pad.fault("nak", command="CLO", times=3)
        with pytest.raises(Error, match="rejected"):
            session.close()
        assert link.open().run(Dsp("HI")).ok and pin_pad.state()["session"] == "plain"


def test_a_working_key_protects_card_numbers_and_both_sides_agree_on_it(pin_pad, session):
    key = session.run(Dwk2()).require()
    assert key.type == WorkingKeyType.TDES_RSA and len(key.key.reveal_bytes()) == 16
    pin_pad.when("CKE", ("swipe", "visa-magnetic"))
    track = session.run(Cke(stripe=True), deadline=5).require().track2
    assert track.startswith("4012888888881881=") and pan_identify(track).equals("4012888888881881")
    ciphered = prepare_working_key(bytes(16), MasterKey(MasterKeyType.DES, 0, KEY.key))
    assert ciphered == "d5d44ff720683d0d" * 2  # DES of zeros under that key


def test_card_numbers_under_a_working_key():
    assert pan_encrypt("4111111111111111", KEY).equals("BEC8C7B720B1ED83")
    assert pan_decrypt_track(Secret("F0157C5DA1787BED=2512201"), KEY).reveal() == "4111111111111111=2512201"
    assert prepare_block("4111111111111111", KEY).upper() == "BEC8C7B720B1ED83"
    with pytest.raises(Error, match="NUL"):
        pan_identify("4111\x00")
    assert prepare_data("4111111111111111" * 2, KEY).upper() == "BEC8C7B720B1ED83" * 2


@pytest.mark.parametrize("name, ask", [("decrypt_track", lambda: pan_decrypt_track("F0157C5DA1787BED=2512201", KEY)),
                                       ("identify", lambda: pan_identify("4111111111111111=2512201"))])
def test_the_library_keeps_no_card_number(monkeypatch, name, ask):
    call, results = _native.call, {}
    monkeypatch.setattr(_native, "call", lambda *all: results.setdefault(all[0], []).append(call(*all)) or
                        results[all[0]][-1])
    assert ask().reveal().startswith("4111111111111111")
    assert b"1111" not in ctypes.string_at(results[f"abecs_pan_{name}"][0], 64)


def test_a_secret_is_hard_to_lose():
    secret = Secret("4111")
    assert {repr(secret), str(secret), f"{secret}", f"{[secret]}"[1:-1]} == {"Secret(withheld)"}
    assert secret.equals("4111") and secret.equals(b"4111") and not secret.equals(Secret("4112"))
    for forbidden in (lambda: secret == "4111", lambda: hash(secret), lambda: copy.deepcopy(secret),
                      lambda: pickle.dumps(secret)):
        with pytest.raises(TypeError):
            forbidden()
    with secret:
        held = secret._value
    assert held == b"\0\0\0\0" and "4111" not in repr([
        Gpn(0, 0, "4111", []), Ebx("4111", 0, 0), KEY, Gcx(emv_data="4111"), Gox(1, 1, 1, emv_data="4111"), Cng("4111"),
        Fcx("0000", emv_data="4111"), Fnc(0, issuer_data="4111"), GenEncrypted(b"", b"4111"), EbxAnswer(b"4111", b"")])


@pytest.mark.parametrize("example, arguments, scenario, status, output", [
    ("sale.py", ["1234"], "chip-online-pin", 0, CARD + "the acquirer answers: 00\nAPPROVED\n"),
    ("sale.py", ["1234"], "user-cancel", 1, CARD + "GOX was answered with ST_CANCEL\nNOT APPROVED\n"),
    ("cancel_button.py", ["30"], None, 0, "waiting for a key\nthe cashier has cancelled\n"),
    ("two_pin_pads.py", [], None, 0, "lane 1: F1\nlane 2: CLEAR\n")])
def test_an_example_does_what_it_says(example, arguments, scenario, status, output):
    with virtual_pin_pad(scenario=scenario) as first, virtual_pin_pad() as second:
        first.when("GKY", ("press", "f1")) if example == "two_pin_pads.py" else None
        second.when("GKY", ("press", "clear"))
        ports = [first.port, second.port][:2 if example == "two_pin_pads.py" else 1]
        told = run(ROOT / "examples/python" / example, *ports, *arguments)
        assert (told[0], sorted(told[1].splitlines())) == (status, sorted(output.splitlines()))
        assert first.process.wait(10) == 0 if scenario else not first.findings() + second.findings()


@pytest.mark.parametrize("answer, fault, told, outcome", [
    ("00", dict(fault="hang-up", command="FCX", ms=1), True, "UNKNOWN"), ("none", None, True, "NOT APPROVED"),
    ("05", None, False, "NOT APPROVED"), ("interrupt", None, True, "NOT APPROVED")])
def test_an_acquirer_that_may_have_approved_is_told_that_there_was_no_sale(tmp_path, answer, fault, told, outcome):
    sale = ROOT / "examples/python/sale.py"
    if answer == "interrupt":  # Ctrl-C while it is asked
        text = sale.read_text().replace('    print("the acq', '    raise KeyboardInterrupt\n    print("the acq', 1)
        sale = tmp_path / "sale.py"
        sale.write_text(text)
    with virtual_pin_pad() as pad:
        for command, act in dict(GCX=("insert", "visa-chip"), GOX=("type", "1234"), RMC=("remove",)).items():
            pad.when(command, act)
        fault and pad.fault(**fault)
        code, output = run(sale, pad.port, "1234", answer)
    last = "the acquirer must be told that there was no sale\n" * told + f"{outcome}\n"
    assert code == 1 and output.endswith(last) and output.count("must be told") == told, output


def test_a_library_that_is_not_there_is_told_of():
    code, output = run("-c", "import quorvel; quorvel.library_version()", QUORVEL_LIBRARY="/nowhere/libquorvel0.so.0")
    assert code == 1 and "ImportError: quorvel: cannot load /nowhere/libquorvel0.so.0" in output


def test_the_wheel_is_built_offline_and_works(tmp_path):
    source = shutil.copytree(ROOT / "python", tmp_path / "source")  # where pip leaves things
    code, output = run("-m", "pip", "wheel", "--no-build-isolation", "--no-deps", "--no-index", "-w", tmp_path,
                       source)
    assert code == 0, output
    wheel, = tmp_path.glob(f"quorvel-{library_version()}-py3-none-any.whl")
    assert run("-c", "import importlib.resources as r, quorvel; print(quorvel.library_version(), quorvel.__file__, "
               "(r.files('quorvel') / 'py.typed').is_file())", PYTHONPATH=str(wheel)) == (
                   0, f"{library_version()} {wheel}/quorvel/__init__.py True\n")
