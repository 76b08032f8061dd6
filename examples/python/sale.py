#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""A complete sale by chip card, of so many cents: sale.py PORT CENTS [ANSWER]

The acquirer is played. ANSWER is its response code: 00, as without it, approves, any other declines, and "none" stands
for an acquirer that cannot be reached. Ctrl-C gives up."""
import sys

from quorvel import Decision, Error, Fcx, FinalDecision, Gcx, Gox, Link, PinMethod, Rmc, Session, Tables

REAIS = 986
SECONDS = 60
# A till gets the records from its acquirer. These make two applications known, by what the virtual PIN pad reads.
TABLES = Tables(["0561030107A000000003101000000000000000000001VISA CREDITO",
                 "0541030207A000000004101000000000000000000001MASTERCARD"])
VERSION = "FIRSTSALE1"


def show(notice: str) -> None:
    print("the PIN pad says:", notice)


def load_tables(session: Session) -> None:
    if Tables.version(session, 0) != VERSION:
        TABLES.load(session, 0, VERSION)


def ask_acquirer(answer: str) -> str | None:
    """Played: the response code, or None when nobody answers. A till sends the amount and what the card has given."""
    print("the acquirer answers:", "nothing" if answer == "none" else answer)
    return None if answer == "none" else answer


class Sale:
    """What is known of the money, whatever goes wrong."""

    asked = False  # the acquirer, which may have approved unless its answer declines
    approved = False  # by the card, which has the last word
    in_doubt = False  # the card was told, and has not answered

    @property
    def outcome(self) -> str:
        return "APPROVED" if self.approved else "UNKNOWN" if self.in_doubt else "NOT APPROVED"


def sell(session: Session, amount: int, answer: str, sale: Sale) -> None:
    """Whatever the PIN pad refuses is raised by require()."""
    load_tables(session)
    print("insert the card", flush=True)
    with session.start(Gcx(amount, currency=REAIS, type=0, options="00000", pan_mask=(6, 4), timeout=SECONDS)) as wait:
        card = wait.on_notice(show).get(deadline=SECONDS + 30).require()
    print("card", card.pan)
    if card.table_record is None:
        return
    go = Gox(card.table_record.acquirer, PinMethod.DUKPT_TDES, 0, amount=amount, currency=REAIS, type=0, risk=bytes(10),
             tags="82 95 9A 9C 5F2A 9F02 9F10 9F26 9F27 9F36 9F37", timeout=SECONDS)
    first = session.run(go, deadline=SECONDS + 30).require()
    sale.approved = first.decision == Decision.APPROVED
    if first.decision != Decision.ONLINE:
        return
    sale.asked = True
    code = ask_acquirer(answer)
    sale.asked = code in ("00", None)
    sale.in_doubt = True
    finish = session.run(Fcx("2000" if code is None else "0000", response_code=code, timeout=SECONDS),
                         deadline=SECONDS + 30)
    sale.in_doubt = False  # a refusal is an answer, too: the card was not told
    sale.approved = finish.require().decision == FinalDecision.APPROVED


def main(port: str, cents: str, answer: str = "00") -> int:
    sale = Sale()
    try:
        with Link(port) as link, link.open(secure=True) as session:
            try:
                sell(session, int(cents), answer, sale)
            except Error as error:
                print(error)
            finally:
                session.leave(sale.outcome)  # on the display, whatever ends the block
            session.run(Rmc(f"{sale.outcome:16}REMOVE THE CARD"), deadline=SECONDS)
    except Error as error:
        print(error)
    except KeyboardInterrupt:
        print("given up at the till")
    if sale.asked and not sale.approved:
        print("the acquirer must be told that there was no sale")
    print(sale.outcome)
    return 0 if sale.approved else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
