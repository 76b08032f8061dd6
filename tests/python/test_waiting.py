# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""Waiting, ending it, and what goes wrong meanwhile."""
import asyncio
import os
import select
import signal
import threading
import time
from concurrent.futures import ThreadPoolExecutor
from datetime import timedelta
from unittest import mock

import pytest
from peer import Peer, frame
from quorvel import *
from quorvel import _native
from quorvel.link import Session

FREE = ""


@pytest.fixture
def session(link):
    return Session(link, False)


def soon(act, after=0.05):
    threading.Timer(after, act).start()


def cancel_at_once(wait):
    wait.cancel()


def cancel_from_a_thread(wait):
    soon(wait.cancel)


def cancel_from_a_signal_handler(wait):
    signal.signal(signal.SIGALRM, lambda *_: wait.cancel())
    signal.setitimer(signal.ITIMER_REAL, 0.05)


@pytest.mark.parametrize("cancel, deadline, why", [
    (lambda wait: None, 0.4, Why.DEADLINE), (cancel_at_once, None, Why.CANCELLED),
    (cancel_from_a_thread, None, Why.CANCELLED), (cancel_from_a_signal_handler, None, Why.CANCELLED)])
def test_a_wait_is_ended_by_its_caller(peer, session, cancel, deadline, why):
    session.link.limit = 9
    with session.start(Gky()) as wait, mock.patch.object(session.link, "_look", wraps=session.link._look) as look:
        cancel(wait)
        for _ in range(2):
            with pytest.raises(Ended) as ended:
                wait.get(deadline)
            assert (ended.value.why, peer.cans, session.link.waiting_for, session.link.limit) == (why, 1, FREE, 9)
    assert peer.cans == 1 and look.call_count < 5  # it sleeps in between
    session.link.limit = None


def test_a_poll_brings_the_answer_or_nothing(peer, session):
    session.link.poll_time = 0.05
    with session.start(Gky()) as wait:
        assert wait.poll() is None
        session.link.poll_time = timedelta(seconds=10)
        soon(session.link.wake)
        assert wait.poll() is None
        soon(lambda: peer.say(b"GKY004"))
        assert wait.poll().require() == Key.F1 and wait.get().value == Key.F1
    with session.start(Gky()):
        pass
    assert (peer.cans, session.link.waiting_for) == (1, FREE)
    session.link.poll_time = 0
    with session.start(Gky()) as wait:
        peer.say(b"GKY005")
        assert select.select([session.link.descriptor], [], [], 10)[0] and wait.poll().require() == Key.F2


def test_an_answer_that_dribbles_in_holds_nobody_up(peer, session):
    events, other = [], Peer()
    session.link.observe(events.append)
    with Link(other.port) as link, session.start(Gky()) as wait:
        asked = threading.Thread(target=wait.get, args=(30,))
        asked.start()
        os.write(peer.end, frame(b"GKY000")[:4])
        time.sleep(0.1)  # several slices
        for _ in range(3):
            other.answers.append([b"DSP000"])
            assert Session(link, False).run(Dsp("HI")).ok and asked.is_alive()
        os.write(peer.end, frame(b"GKY000")[4:])
        asked.join(10)
        assert wait.get().require() == Key.ENTER
    session.link.observe(None)
    assert [(event.type, event.command, event.status) for event in events] == [
        (EventType.SENT, "GKY", -1), (EventType.RECEIVED, "GKY", 0)]


def test_threads_get_their_own_errors(session):
    def ask(acquirer):
        for _ in range(200):
            with pytest.raises(Error, match=f"acqIdx: {acquirer} "):
                session.run(Gts(acquirer))

    with ThreadPoolExecutor(4) as pool:
        list(pool.map(ask, range(100, 104)))


def test_notices_are_told_in_order_and_what_that_raises_comes_out(peer, session):
    told = []
    peer.answers.append([b"NTM000003ONE", b"NTM000003\xC1!!", b"GKY000"])
    assert session.start(Gky()).on_notice(told.append).get().ok and told == ["ONE", "Á!!"]
    peer.answers.append([b"NTM000003ONE"])
    with pytest.raises(ZeroDivisionError), session.start(Gky()) as wait:
        wait.on_notice(lambda text: 1 / 0).get()
    assert (peer.cans, session.link.waiting_for) == (1, FREE)


def test_one_loop_waits_at_two_pin_pads_and_a_cancelled_task_cancels_its_own(peer, session):
    other = Peer()

    async def both(link):
        first = asyncio.create_task(wait_for(session))
        second = asyncio.create_task(wait_for(Session(link, False)))
        await asyncio.sleep(0.05)
        first.cancel()
        other.say(b"GKY013")
        assert (await second).require() == Key.CANCEL
        with pytest.raises(asyncio.CancelledError):
            await first
        wait = session.start(Gky())
        asyncio.get_running_loop().call_later(0.05, wait.cancel)
        with pytest.raises(Ended):
            await wait

    async def wait_for(at):
        return await at.start(Gky())

    with Link(other.port) as link:
        other.cans = 0
        asyncio.run(both(link))
        assert (peer.cans, other.cans, session.link.waiting_for) == (2, 0, FREE)


def test_a_session_ends_in_order(peer, link):
    def closed(request, *answers):
        assert peer.requests.pop() == request
        peer.answers[:] = answers

    peer.answers[:] = [[b"OPN000"], [b"CLO000"]]
    with link.open() as session:
        session.leave("LEFT")
    closed(b"CLO032LEFT" + b" " * 28, [b"OPN000"], [], [b"CLO000"])
    with pytest.raises(ZeroDivisionError), link.open() as session:
        session.start(Gky())
        1 / 0
    assert peer.cans == 1
    closed(b"CLO032" + b" " * 32, [b"OPN000"], [b"CLX000"])
    with link.open() as session:
        assert session.close("ONE\nTWO", "logo").ok
    closed(b"CLX023\0\x1E\0\x08LOGO    \0\x1B\0\7ONE\rTWO", [b"OPN010"])
    with pytest.raises(Refused, match="OPN was answered with ST_INVCALL"):
        link.open()


def test_the_first_raise_of_a_call_is_the_one_that_comes_out(monkeypatch):
    def raise_three_times():
        for code, text in [(6, b"first"), (2, b"second"), (6, b"third")]:
            _native.library().kor_exception_throw(code, text)

    monkeypatch.setattr(_native._functions["kor_version_project"], "bound", raise_three_times)
    with pytest.raises(Error) as error:
        library_version()
    assert (error.value.code, str(error.value)) == (Code.IO_ERROR, "first")


class Interrupted(BaseException):
    pass


@pytest.mark.parametrize("observer", [None, lambda event: None])
def test_an_interrupt_in_the_middle_of_a_call_is_not_lost(peer, session, observer):
    def interrupt(*_):
        raise Interrupted

    session.link.observe(observer)
    session.link.limit = 1
    signal.signal(signal.SIGALRM, interrupt)
    signal.setitimer(signal.ITIMER_REAL, 0.3)
    with pytest.raises(Interrupted):
        session.run(Gin())  # nobody answers, which is told to the observer and raised
    session.link.observe(None)
    session.link.send_can()
    session.link.limit = 0.05
    with pytest.raises(Error, match="The limit of 50 ms has passed"):
        session.run(Gin())
    session.link.limit = None
    session.link.send_can()


def test_an_observer_that_fails_is_logged_and_sees_packets_only_when_it_asks(peer, session, caplog):
    events = []
    session.link.observe(lambda event: events.append(event) or 1 / 0, packets=True)
    peer.answers.append([b"DSP000"])
    assert session.run(Dsp("HI")).ok
    session.link.observe(events.append)
    peer.answers.append([b"DSP000"])
    assert session.run(Dsp("HI")).ok
    session.link.observe(None)
    assert [event.packet for event in events] == [b"DSP032HI" + b" " * 30, b"DSP000", None, None]
    assert "ZeroDivisionError" in caplog.text and "HI" not in repr(events)


@pytest.mark.parametrize("request_, answered, code, text", [
    (Dsp("x" * 33), None, Code.ILLEGAL_ARGUMENT, r"'msg' it too long \(maximum: 32, requested: 33\)"),
    (Dsp("\u20AC"), None, UnicodeEncodeError, "latin-1"),
    (Dsp("A\0B"), None, Code.ILLEGAL_ARGUMENT, "a text for abecs_cmd_dsp has a NUL"),
    (Gcx(amount=-1), None, Code.ILLEGAL_ARGUMENT, "-1 does not fit into uint64_t of abecs_cmd_gcx_builder_amount"),
    (Gcx(timeout=256), None, Code.ILLEGAL_ARGUMENT, "256 does not fit into uint8_t"),
    (Gcx(application_types=[256]), None, Code.ILLEGAL_ARGUMENT, "does not fit into uint8_t"),
    (Gox(1, PinMethod.DUKPT_DES, 0, risk=b"9 bytes.."), None, Code.ILLEGAL_ARGUMENT, "9 bytes where 10 are due"),
    (Cex(pan_mask=(6,)), None, Code.ILLEGAL_ARGUMENT, "of two numbers"),
    (GenPower(1, 300), None, Code.ILLEGAL_ARGUMENT, "300 does not fit into 'slot'"),
    (Chp(1, 3, "00200080", 0, "x" * 33), None, Code.ILLEGAL_ARGUMENT, "33 bytes do not fit into 'message'"),
    (Mnu(["x" * 25]), None, Code.ILLEGAL_ARGUMENT, "more than 24 characters"),
    (Cng("9F0"), None, Code.ILLEGAL_ARGUMENT, "not of hexadecimal digits"),
    (Gts(100), None, Code.INDEX_OUT_OF_BOUNDS, "Invalid acqIdx: 100"),
    (Raw("ABC", blocks=[b"x" * 1000]), None, Code.ILLEGAL_ARGUMENT, "a block of 1000 bytes"),
    (Gts(1), b"GIN000", Code.PROTOCOL_ERROR, "Invalid RSP_ID"),
    (Gky(), b"DSP000", Code.PROTOCOL_ERROR, "Invalid RSP_ID"),
    (Gox(1, PinMethod.DUKPT_DES, 0), b"GOX000", Code.PROTOCOL_ERROR, "what the card has decided"),
    (Fcx("2000"), b"FCX000007\x80\x58\0\x03009", Code.PROTOCOL_ERROR, "9 is no FinalDecision"),
    (Raw("ABC"), b"ABD000", Code.PROTOCOL_ERROR, "the answer is none to ABC"),
    (Raw("ABC"), b"ABC000005A", Code.PROTOCOL_ERROR, "a block is longer than the answer"),
    (Raw("ABC", waits=True), b"ABC099", Code.PROTOCOL_ERROR, "there is no status 099")])
def test_what_is_wrong_is_raised(peer, session, request_, answered, code, text):
    peer.answers.append([answered])
    with pytest.raises((Error, UnicodeEncodeError), match=text) as error:
        session.run(request_, deadline=10 if request_.waits else None)
    if code is not UnicodeEncodeError:
        assert error.value.code is code and str(error.value).startswith(f"[KOR_RESULT_{code.name}] ")
    assert len(peer.requests) == (answered is not None) and session.link.waiting_for == FREE


def test_a_late_answer_is_not_taken_for_the_next_one(peer, session):
    session.link.limit = 0.2
    with pytest.raises(Error, match="limit of 200 ms"):
        session.run(Gts(1))
    session.link.limit = None
    peer.say(b"GTS000010LATE      ")
    peer.answers.append([b"GTS000010IN TIME   "])
    assert session.run(Gts(2)).value == "IN TIME"


@pytest.mark.parametrize("request_, answered, failure", [
    (Gts(100), b"", Failure.NOT_SENT), (Gky(), b"GIN000", Failure.LOST),
    (Fnc(0, "00"), b"FNC000610" b"0300" + b"AB" * 300 + b"000000", Failure.LOST),
    (Fcx("0000", "00"), b"FCX000007\x80\x59\0\x03100", Failure.LOST)], ids="GTS GKY FNC FCX".split())
def test_an_error_tells_whether_the_request_was_sent(peer, session, request_, answered, failure):
    peer.answers.append([answered])
    wait = session.start(request_) if request_.waits else None
    raised = []
    for _ in range(2 if wait else 1):  # the second get() has the same to tell
        with pytest.raises(Error) as error:
            wait.get(5) if wait else session.run(request_)
        raised.append((str(error.value), failure_of(error.value)))
        wait and wait.close()
    assert {told for _, told in raised} == {failure} and len(set(raised)) == 1


async def awaited(wait):
    return await wait


@pytest.mark.parametrize("get", [lambda wait: wait.get(), lambda wait: asyncio.run(awaited(wait))])
@pytest.mark.parametrize("end, text", [
    (lambda wait: wait._link.send_can(), "cancelled"), (lambda wait: wait.close(), "cancelled"),
    (lambda wait: wait._session.close(), "cancelled"),
    (lambda wait: wait._link.close(), "the link is closed")])
def test_whoever_waits_is_told_when_another_ends_it(end, text, get):
    other = Peer()
    with Link(other.port) as link:
        other.answers[:] = [[], [b"CLO000"]]
        wait = Session(link, False).start(Gky())
        with ThreadPoolExecutor(1) as pool:
            ended = pool.submit(lambda: time.sleep(0.05) or end(wait))
            for _ in range(2):
                with pytest.raises(Error, match=text) as error:
                    get(wait)
                assert failure_of(error.value) is Failure.LOST
            ended.result()


def test_a_loop_that_stands_still_does_not_keep_a_link_from_closing():
    other, loop = Peer(), asyncio.new_event_loop()
    with Link(other.port) as link:
        wait = Session(link, False).start(Gky())
        task = loop.create_task(awaited(wait))
        loop.run_until_complete(asyncio.sleep(0.05))
    with pytest.raises(Error, match="the link is closed"):
        loop.run_until_complete(task)
    loop.close()


def test_an_event_loop_leaves_the_link_free_and_is_not_held_up(peer, session):
    async def use():
        task = asyncio.ensure_future(session.start(Gky()))
        task.cancel()  # before its first step
        with pytest.raises(asyncio.CancelledError):
            await task
        while session.link.waiting_for:
            await asyncio.sleep(0.01)
        peer.answers.append([b"NTM000003ONE"])
        with pytest.raises(ZeroDivisionError):
            await session.start(Gky()).on_notice(lambda text: 1 / 0)
        assert (peer.cans, session.link.waiting_for) == (2, FREE)
        task = asyncio.create_task(awaited(session.start(Gky())))
        held = threading.Event()

        def hold():
            with _native.lock:
                held.set()
                time.sleep(0.5)
        threading.Thread(target=hold).start()
        held.wait()
        begun = time.monotonic()
        await asyncio.sleep(0.05)
        assert time.monotonic() - begun < 0.4
        peer.say(b"GKY000")
        assert (await task).require() == Key.ENTER

    asyncio.run(asyncio.wait_for(use(), 20))


def test_there_is_one_session_at_a_time_and_one_that_is_over_does_nothing(peer, link):
    peer.answers[:] = [[b"OPN000"], [b"CLO000"], [b"OPN000"], [b"CLO000"]]
    first = link.open()
    with pytest.raises(Error, match="a session is open on this link"):
        link.open()
    first.close()
    with link.open():
        for act in (lambda: first.run(Gin()), lambda: first.start(Gky()), first.close):
            with pytest.raises(Error, match="the session is closed"):
                act()
        first.__exit__(None, None, None)
        assert [request[:3] for request in peer.requests] == [b"OPN", b"CLO", b"OPN"]


def test_an_interrupt_leaves_the_link_free_and_a_port_that_nobody_holds_is_closed(peer, session):
    def interrupt(*_):
        raise Interrupted

    signal.signal(signal.SIGALRM, interrupt)
    peer.answers.append([b"DSP000"])
    session.run(Dsp("HI"))
    session.link.send_interval = 0.3
    signal.setitimer(signal.ITIMER_REAL, 0.1)
    with pytest.raises(Interrupted):
        session.start(Gky())
    session.link.send_interval = 0
    assert (peer.cans, session.link.waiting_for, peer.requests[-1]) == (1, FREE, b"GKY")
    other = Peer()
    signal.setitimer(signal.ITIMER_REAL, 0.1)
    with pytest.raises(Interrupted):
        Link(other.port, claim=True)
    Link(other.port, claim=True)  # dropped
    Link(other.port, claim=True).close()


def test_notices_without_end_hold_up_neither_a_deadline_nor_a_cancel(peer, session):
    for why in Why:
        told = []
        peer.answers.append([b"NTM000003ONE"] * 40)
        with pytest.raises(Ended) as ended, session.start(Gky()) as wait:
            wait.on_notice(lambda text: told.append(text) or time.sleep(0.05) or why is Why.CANCELLED and wait.cancel())
            wait.get(0.15 if why is Why.DEADLINE else float("inf"))
        assert ended.value.why is why and len(told) < 10


def test_a_deadline_and_cancel_are_for_what_waits(peer, session):
    with pytest.raises(TypeError, match="takes no deadline"):
        session.run(Gin(), deadline=1)
    peer.answers[:] = [[], [b"CLO000"]]
    with pytest.raises(Ended), session, session.start(Gky()) as wait:
        wait.cancel()
        wait.poll()
    assert peer.cans == 1 and [request[:3] for request in peer.requests] == [b"GKY", b"CLO"]


def test_a_load_whose_first_answer_is_lost_may_have_begun(peer, session):
    session.link.limit = 0.1
    for load, expected in ((lambda: Tables(["x"]).load(session, 1, "V1"), Incomplete),
                           (lambda: Media.put(session, b"x", "NAME", 1), Incomplete),
                           (lambda: Tables(["x"]).load(session, 100, "V1"), Error)):
        with pytest.raises(Error) as error:
            load()
        assert type(error.value) is expected
    session.link.limit = None


def test_a_port_is_probed_and_a_key_for_card_numbers_taken(peer, session, tmp_path):
    other = Peer()
    probe(other.port)
    assert (other.requests, other.cans) == ([], 0) and all(os.path.exists(port) for port in ports())
    with pytest.raises(Error) as error:
        probe(tmp_path / "none")
    assert error.value.code is Code.FILE_NOT_FOUND
    key = WorkingKey(WorkingKeyType.DES, Secret(bytes.fromhex("0123456789ABCDEFFEDCBA9876543210")))
    enciphered = "F0157C5DA1787BED=2512201"
    for given, rest, track in ((key, b" " * 16, "4111111111111111=2512201"), (None, b" " * 13 + b"000", enciphered)):
        session.link.set_pan_key(given)
        peer.answers.append([b"CKE000225" b"100" + b" " * 76 + b"24" + enciphered.encode() + rest + b" " * 104])
        assert session.run(Cke(stripe=True), deadline=5).require().track2 == track


def test_a_child_process_need_not_wait_for_its_parents_thread(session):
    def hold():
        with _native.lock:
            held.set()
            time.sleep(1)

    held = threading.Event()
    threading.Thread(target=hold).start()
    held.wait()
    child = os.fork()
    if child == 0:
        signal.signal(signal.SIGALRM, signal.SIG_DFL)
        signal.alarm(5)
        library_version()
        os._exit(0)
    assert os.waitpid(child, 0)[1] == 0
