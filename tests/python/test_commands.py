# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""What each request puts on the line, with all its options, and what is made of an answer."""
from datetime import datetime, timedelta

import pytest
from quorvel import *
from quorvel.link import Session

WHEN = datetime(2026, 3, 4, 5, 6, 7)
KSN = bytes.fromhex("FFFF9876543210E00001")
MASKED = b"411111******1111"


def p(id, value):
    """A parameter."""
    return id.to_bytes(2, "big") + len(value).to_bytes(2, "big") + value


def block(*parts):
    return b"%03d" % len(b"".join(parts)) + b"".join(parts)


SALE = p(0x21, b"\4") + p(0x13, b"000000000001") + p(0x14, b"000000000002") + p(0x22, b"986")
COMMON = p(5, b"\x9A\3\x26\3\4") + p(4, b"\x82\x9F\2") + p(0xC, b"\x1F")
OPTIONS = dict(type=4, amount=1, cashback=2, currency=986, text="A\nB", emv_data="9A03260304", tags="82 9F02",
               timeout=timedelta(seconds=30.5))
CASES = [
    (Dsp("Olá"), b"DSP032Ol\xE1" + b" " * 29, b"DSP000", None),
    (Dex("A\nB"), b"DEX006003A\rB", b"DEX000", None),
    (Dsi("logo"), b"DSI012" + p(0x1E, b"LOGO    "), b"DSI000", None),
    (Gin(), b"GIN00200", b"GIN000100" + b"MAKER".ljust(20) + b"ABC;DEF".ljust(19) + b"C" + b"OS 1".ljust(20) + b"2.12"
     + b"MV 7".ljust(16) + b"SN-1".ljust(20), GinAnswer("MAKER", "ABC", "DEF", True, "OS 1", "2.12", "MV 7", "SN-1")),
    (Gin(3), b"GIN00203", b"GIN000042AAAAA BBB CCC DD EE FFFFFFFFFFFF GGG H T42", GinAnswer(
        texts=("AAAAA", "BBB", "CCC", "DD", "EE", "FFFFFFFFFFFF", "GGG", "H"), number=42, dukpt=True)),
    (Gix([ItemId.SERNUM, ItemId.TABVER0 + 99]), b"GIX008" + p(1, b"\x80\1\x93\x63"),
     b"GIX000" + block(p(0x8001, b"SN 42 "), p(0x9363, b"V1")), dict(serial="SN 42", model=None)),
    (Gts(12), b"GTS00212", b"GTS000010VERSION 1 ", "VERSION 1"),
    (Gdu(3, 4), b"GDU003304", b"GDU000020" b"30309876543210E00001", "30309876543210E00001"),
    (Ged("82 9F02"), b"GED007" + p(4, b"\x82\x9F\2"), b"GED000" + block(p(0x8054, b"\x82\1\0")), b"\x82\1\0"),
    (Cng("9f0206"), b"CNG005039F0206", b"CNG000", None),
    (Fnc(Reached.NO, "05", "8A023035", "95"), b"FNC018" b"10" b"05" b"0048A023035" b"000" b"005" b"00195",
     b"FNC000019" b"1" b"0039F2601" b"02AB0C" b"000",
     FncAnswer(FinalDecision.DECLINED_BY_CARD, b"\x9F\x26\1", b"\xAB\x0C")),
    (Gtk("1101", DataMethod.MK_WK_TDES_CBC, b"12345678", 4, 9, b"k" * 16),
     b"GTK057" + p(7, b"1101") + p(3, b"11") + p(0x1D, b"12345678") + p(8, b"4") + p(9, b"09") + p(0xA, b"k" * 16),
     b"GTK000" + block(p(0x8044, b"T1"), p(0x8045, b"T2"), p(0x8046, b"T3"), p(0x804A, b"PAN"), p(0x8047, b"1"),
                       p(0x8048, b"2"), p(0x8049, b"3"), p(0x804B, b"4"), p(0x8063, b"RND")),
     GtkAnswer(b"PAN", b"T1", b"T2", b"T3", b"1", b"2", b"3", b"4", b"RND")),
    (Gtk(method=DataMethod.TDES_RANDOM_ECB, modulus=b"m" * 256, exponent="010001"),
     b"GTK273" + p(3, b"90") + p(0x24, b"m" * 256) + p(0x25, b"\1\0\1"), b"GTK043", Status.NOCARD),
    (Ebx(b"12345678", DataMethod.MK_WK_TDES_CBC, 5, b"k" * 16, b"87654321"), b"EBX056" + p(0xF, b"12345678")
     + p(3, b"11") + p(9, b"05") + p(0xA, b"k" * 16) + p(0x1D, b"87654321"),
     b"EBX000" + block(p(0x804E, b"z\0z"), p(0x804C, KSN)), EbxAnswer(b"z\0z", KSN)),
    (Enb(1, 3, b"w" * 16, "0123456789ABCDEF"), b"ENB051103" + b"77" * 16 + b"0123456789ABCDEF",
     b"ENB000016" b"3023456789ABCDEF", Secret("3023456789ABCDEF")),
    (Lmf(), b"LMF", b"LMF000" + block(p(0x805E, b"LOGO    "), p(0x805E, b"LOGO2   ")), ["LOGO", "LOGO2"]),
    (Dmf(["a", "b"]), b"DMF024" + p(0x1E, b"A       ") + p(0x1E, b"B       "), b"DMF100", Status.MFNFOUND),
    (Mli("logo", 0x102030, 0xABCD, 2), b"MLI026" + p(0x1E, b"LOGO    ") + p(0x1F, b"\0\x10\x20\x30\xAB\xCD\2\0\0\0"),
     b"MLI000", None),
    (Mlr(b"xyz\0"), b"MLR008" + p(0xF, b"xyz\0"), b"MLR000", None),
    (Mle(), b"MLE", b"MLE000", None),
    (Tli(1, "V1"), b"TLI01201V1        ", b"TLI000", None),
    (Tlr(["00810101", "00910102X"]), b"TLR019020081010100910102X", b"TLR000", None),
    (Tle(), b"TLE", b"TLE000", None),
    (GenKeys(1, 0, 2, 3), b"GEN01302008K3100203", b"GEN00000500201", "01"),
    (GenCardData("82 9F02"), b"GEN0130300802829F02", b"GEN000011008" b"9F170103", b"\x9F\x17\1\3"),
    (GenChipData("82"), b"GEN012040070400182", b"GEN000011004" b"9F170103", b"\x9F\x17\1\3"),
    (GenEncrypt(6, b"12345678"), b"GEN026030210330" b"63132333435363738", b"GEN000031028" b"303076543210E0000120"
     b"30CD4E09", GenEncrypted(bytes.fromhex("303076543210E0000120"), b"\x30\xCD\x4E\x09")),
    (GenPower(2, 1), b"GEN009040040121", b"GEN000079076" b"1" b"2" b"36" + b"AB" * 36, SlotPower(1, 2, "AB" * 18)),
    (GenApdu(1, "00A40400", b"\xA0\1", 256), b"GEN0260402102100A40400002A001256", b"GEN00001501209000002" b"3030",
     ChipAnswer(0, "9000", b"00")),
    (Raw("ABC", parameters=[(0x1B, b"HI")]), b"ABC006" + p(0x1B, b"HI"), b"ABC000" + block(p(0x8001, b"X")),
     dict(blocks=(p(0x8001, b"X"),))),
    (Raw("ABC", blocks=[b"12", b"3"]), b"ABC002120013", b"ABC000" b"001A" b"002BC", RawAnswer((b"A", b"BC"))),
    (Gcx(acquirer=3, application_types=[1, 2], applications=["0102", "03A4"], options="10000", pan_mask=(6, 4),
         when=WHEN, **OPTIONS), b"GCX135" + p(0x15, b"260304") + p(0x16, b"050607") + SALE + p(0x10, b"03")
     + p(0x11, b"0102") + p(0x12, b"010203A4") + p(0x17, b"10000") + p(0x23, b"0604") + p(0x1B, b"A\rB") + COMMON,
     b"GCX000" + block(p(0x804F, b"03"), p(0x8050, b"1"), p(0x8051, b"010201"), p(0x8052, MASKED), p(0x8053, b"07"),
                       p(0x8055, b"NAME "), p(0x805B, b"CREDIT"), p(0x805D, b"301231"), p(0x805C, b"076"),
                       p(0x8041, b"T1"), p(0x8042, b"T2"), p(0x8043, b"T3"), p(0x8054, b"\x9A"), p(0x8060, b"01")),
     dict(type=CardType.CHIP, chip_status=ChipStatus.ERROR_FALLBACK, table_record=TableRecord(1, "02", 1),
          pan=MASKED.decode(), pan_sequence=7, cardholder="NAME", label="CREDIT", expiry="301231", issuer_country=76,
          track1="T1", track2="T2", track3="T3", emv_data=b"\x9A", device_type=1)),
    (Gox(1, PinMethod.MK_WK_TDES, 5, b"k" * 16, options="01000", risk=b"0123456789", **OPTIONS),
     b"GOX132" + p(0x10, b"01") + p(2, b"1") + p(9, b"05") + p(0xA, b"k" * 16) + SALE + p(0x18, b"01000")
     + p(0x1B, b"A\rB") + p(0x1A, b"0123456789") + COMMON, b"GOX000" + block(
         p(0x8056, b"210301"), p(0x8057, b"12345678"), p(0x804C, KSN), p(0x8054, b"\x9A")),
     dict(decision=Decision.ONLINE, signature=True, pin_offline=False, pin_errors=3, pin_blocked=False, pin_online=True,
          pin_block=b"12345678", ksn=KSN, emv_data=b"\x9A")),
    (Fcx("0000", "00", "9A03260304", "829F02", 31), b"FCX035" + p(0x19, b"0000") + p(0x1C, b"00") + COMMON,
     b"FCX000" + block(p(0x8058, b"002"), p(0x8054, b"\x9A"), p(0x8059, b"\xAB")),
     dict(decision=FinalDecision.DECLINED_BY_ACQUIRER, emv_data=b"\x9A", script_results=b"\xAB")),
    (Gcr(1, 0, 0, WHEN), b"GCR0400100000000000000260304050607" + b" " * 10 + b"00" b"0", b"GCR013", Status.CANCEL),
    (Cex(options="012345"), b"CEX010" + p(6, b"012345"), b"CEX000" + block(p(0x8040, b"04"), p(0x9001, b"X")),
     dict(event=CexEvent.F1)),
    (GenApdu(1, "00A40400"), b"GEN02204017021" b"00A40400" b"000" b"256", b"GEN020", Status.TABVERDIF),
    (Gcr(1, 0, 12, WHEN, "V1", True, ["0102"]), b"GCR0440100000000000012260304050607V1        010102", b"GCR000"
     + b"414" b"03" b"1" b"06" b"01" b"Z1" + b"02T1".ljust(78) + b"02T2".ljust(39) + b"002" + b"T3".ljust(104)
     + b"164111111111111111".ljust(21) + b"07CREDIT".ljust(18) + b"201" + b"NAME".ljust(26) + b"301231" + b"!" * 29
     + b"076" b"066" b"04ABCD" + b"0" * 28 + b"TEXT 1".ljust(16) + b"TEXT 2".ljust(16), GcrAnswer(
         CardType.CHIP, ChipStatus.ERROR_FALLBACK, 6, 1, "Z1", "T1", "T2", "T3", "4111111111111111", 7, "CREDIT", 201,
         "NAME", "301231", b"!" * 29, 76, "ABCD", ("TEXT 1", "TEXT 2"))),
    (GcrAgain(), b"GCR", b"GCR013", Status.CANCEL),
    (Goc(1, PinMethod.MK_WK_TDES, 5, b"\x11" * 16, 1, 2, True, False, Risk(0x10, 3, 0x20, 4), "82", "9F02", 5, True),
     b"GOC089" b"000000000001" b"000000000002" b"1" b"0" b"0" b"1" b"05" + b"11" * 16 + b"1" b"00000010" b"03"
     b"00000020" b"04" b"03051" b"005001" b"82" b"007002" b"9F02",
     b"GOC000050" b"201301" + b"30" * 8 + KSN.hex().encode() + b"004" b"\x9F\x26\1\0" b"000",
     GocAnswer(Decision.ONLINE, False, True, 3, False, True, b"0" * 8, KSN, b"\x9F\x26\1\0")),
    (Goc(2, PinMethod.DUKPT_TDES, 5, acquirer_data="X"), b"GOC118" + b"0" * 24 + b"0" b"1" b"0" b"3" b"05"
     + b"30" * 16 + b"0" * 21 + b"32X" + b" " * 31 + b"003000" b"003000", b"GOC043", Status.NOCARD),
    (Gpn(PinMethod.MK_WK_TDES, 2, "4111111111111111", [PinEntry(4, 12, "PIN?")], b"\x22" * 16), b"GPN093102"
     + b"22" * 16 + b"16" b"4111111111111111   " b"1" b"0412" + b"PIN?".ljust(32),
     b"GPN000036" b"3023456789ABCDEF" + KSN.hex().encode(),
     GpnAnswer(bytes.fromhex("3023456789ABCDEF"), KSN)),
    (Gcd(3, 4, 5, 6), b"GCD021" + p(0xB, b"\0\3") + p(0xD, b"\4") + p(0xE, b"\5") + p(0xC, b"\6"),
     b"GCD000" + block(p(0x804D, b"0042")), Secret("0042")),
    (Gky(), b"GKY", b"GKY008", Key.CLEAR),
    (Mnu(["A", "B"], "T", 7), b"MNU193" + p(0xC, b"\7") + p(0x1B, b"T".ljust(128)) + p(0x20, b"A".ljust(24))
     + p(0x20, b"B".ljust(24)), b"MNU000" + block(p(0x804D, b"02")), 2),
    (Cke(True, True, ChipCheck.INSERTION, False), b"CKE0041120", b"CKE000225" b"102" + b"T1".ljust(76) + b"02"
     + b"T2".ljust(37) + b"002" + b"T3".ljust(104), CkeAnswer(CkeEvent.MAGNETIC_CARD, None, "T1", "T2", "T3")),
    (Cke(keys=True), b"CKE003100", b"CKE000003004", CkeAnswer(CkeEvent.KEY, Key.F1)),
    (Cke(chip=ChipCheck.REMOVAL), b"CKE003001", b"CKE00000221", CkeAnswer(CkeEvent.CHIP, present=True)),
    (Cex(True, False, ChipCheck.INSERTION, True, 8, (6, 4)), b"CEX023" + p(6, b"102100") + p(0xC, b"\x08")
     + p(0x23, b"0604"), b"CEX000" + block(p(0x8040, b"90"), p(0x8042, b"T2")),
     CexAnswer(CexEvent.MAGNETIC_CARD, None, "T2", None)),
    (Rmc("OUT"), b"RMC032" + b"OUT".ljust(32), b"RMC000", None),
    (Chp(1, ChipOperation.VERIFY, "00200080", 9, "PIN"), b"CHP04613004002000809" + b"PIN".ljust(32),
     b"CHP000009003" b"306AFF", b"\x6A\xFF"),
    (GenPin(1, "00200080", "2", 4, 12, "PIN"), b"GEN053040480310020008020412" + b"PIN".ljust(32), b"GEN000008005163C2",
     ChipAnswer(1, "63C2")),
    (Raw("ABC", blocks=[b"x"], waits=True), b"ABC001x", b"ABC000" + block(p(0x8001, b"X")), dict()),
]


@pytest.mark.parametrize("request_, sent, answered, expected", CASES, ids=[repr(case[0])[:40] for case in CASES])
def test_a_request_and_its_answer(peer, link, request_, sent, answered, expected):
    peer.answers.append([b"NTM000002HI", answered] if request_.waits else [answered])
    answer = Session(link, False).run(request_, deadline=10 if request_.waits else None)
    assert peer.requests == [sent]
    if isinstance(expected, Status):
        assert (answer.ok, answer.status) == (False, expected)
        with pytest.raises(Refused, match=f"^{request_.id} was answered with {expected.name}$"):
            answer.require()
    elif isinstance(expected, dict):
        assert {name: getattr(answer.value, name) for name in expected} == expected
    elif isinstance(expected, Secret):
        assert answer.value.equals(expected)
    else:
        assert answer.value == expected
    assert link.waiting_for == ""
