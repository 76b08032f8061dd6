# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""Drives an ABECS PIN pad on a serial line, by the library libquorvel0."""
from ._native import call as _call
from ._request import Answer, Request, Seconds
from .errors import Code, Ended, Error, Incomplete, Refused, Status, Why
from .immediate import (ChipAnswer, Cng, DataMethod, Dex, Dmf, Dsi, Dsp, Dwk1, Dwk2, Ebx, EbxAnswer, Enb, FinalDecision,
                        Fnc, FncAnswer, Gdu, Ged, GenApdu, GenCardData, GenChipData, GenEncrypt, GenEncrypted, GenKeys,
                        GenPower, Gin, GinAnswer, Gix, GixAnswer, Gtk, GtkAnswer, Gts, Lmf, MasterKey, MasterKeyType,
                        Mle, Mli, Mlr, Reached, SlotPower, Tle, Tli, Tlr, WorkingKey, WorkingKeyType)
from .items import ItemId, Items
from .link import Link, Session, Wait
from .loads import Media, Tables
from .observer import EventType, LinkEvent
from .ports import ports, probe
from .protection import (pan_decrypt_track, pan_encrypt, pan_identify, prepare_block, prepare_data,
                         prepare_working_key)
from .raw import Raw, RawAnswer
from .repeat import Advice, Failure, Repeat, failure_of, repeat_safety
from .secret import Octets, Secret
from .waiting import (CardAnswer, CardType, Cex, CexAnswer, CexEvent, ChipCheck, ChipOperation, ChipStatus, Chp, Cke,
                      CkeAnswer, CkeEvent, Decision, Fcx, FcxAnswer, Gcd, Gcr, GcrAgain, GcrAnswer, Gcx, GenPin, Gky,
                      Goc, GocAnswer, Gox, GoxAnswer, Gpn, GpnAnswer, Key, Mnu, PinEntry, PinMethod, Risk, Rmc,
                      TableRecord)

__all__ = [
    "Advice", "Answer", "CardAnswer", "CardType", "Cex", "CexAnswer", "CexEvent", "ChipAnswer", "ChipCheck",
    "ChipOperation", "ChipStatus", "Chp", "Cke", "CkeAnswer", "CkeEvent", "Cng", "Code", "DataMethod", "Decision",
    "Dex", "Dmf", "Dsi", "Dsp", "Dwk1", "Dwk2", "Ebx", "EbxAnswer", "Enb", "Ended", "Error", "EventType", "Failure",
    "Fcx", "FcxAnswer", "FinalDecision", "Fnc", "FncAnswer", "Gcd", "Gcr", "GcrAgain", "GcrAnswer", "Gcx", "Gdu",
    "Ged", "GenApdu", "GenCardData", "GenChipData", "GenEncrypt", "GenEncrypted", "GenKeys", "GenPin", "GenPower",
    "Gin", "GinAnswer", "Gix", "GixAnswer", "Gky", "Goc", "GocAnswer", "Gox", "GoxAnswer", "Gpn", "GpnAnswer",
    "Gtk", "GtkAnswer", "Gts", "Incomplete", "ItemId", "Items", "Key", "Link", "LinkEvent", "Lmf", "MasterKey",
    "MasterKeyType", "Media", "Mle", "Mli", "Mlr", "Mnu", "Octets", "PinEntry", "PinMethod", "Raw", "RawAnswer",
    "Reached", "Refused", "Repeat", "Request", "Risk", "Rmc", "Seconds", "Secret", "Session", "SlotPower", "Status",
    "TableRecord", "Tables", "Tle", "Tli", "Tlr", "Wait", "Why", "WorkingKey", "WorkingKeyType", "failure_of",
    "library_version", "pan_decrypt_track", "pan_encrypt", "pan_identify", "ports", "prepare_block", "prepare_data",
    "prepare_working_key", "probe", "repeat_safety",
]


def library_version() -> str:
    """The version of the library that was loaded."""
    return _call("kor_version_project").decode()
