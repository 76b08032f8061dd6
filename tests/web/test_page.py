# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""The page, used as a person would use it, in a real browser; a till sells at the PIN pad meanwhile."""
import os
import shutil
import subprocess
from pathlib import Path

import pytest
from conftest import PHONE, ROOT, SECONDS, TABLES, WIDE, Page, Relay, until
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.keys import Keys

HERE = Path(__file__).resolve().parent
OPEN, GIN = b"OPN", b"GIN00200"
BAD_GOX = b"GOX000"  # it lacks all that it must have
LAYOUT_ERROR = b"DSP005HELLO"  # the text has 32 characters


def ended(till, status):
    output = till.communicate(timeout=SECONDS)[0]
    assert till.returncode == status, output
    return output


def insert_and_type_pin(page):
    page.shows("R$ 12.34", "INSERT")
    page.type("i")
    page.shows("ENTER THE PIN")
    page.type("1234")
    page.shows("****")


def test_a_sale_by_clicks(pin_pad, page):
    till = pin_pad.sale()
    page.shows("R$ 12.34", "INSERT, SWIPE OR TAP THE CARD")
    page.says("#waiting", "GCX read a card")
    page.click("[data-card=visa-signature]", "[data-card=visa-chip]", "#slot")
    page.shows("ENTER THE PIN")
    assert page.text("#card-inside") == "visa-chip"
    page.press("1", "2", "9", "clear", "1", "2", "3", "4")
    page.shows("****")
    assert "4 digits typed" in page.find("#display-words").get_attribute("textContent")
    page.picture("sale")
    page.press("enter")
    page.shows("REMOVE THE CARD")
    page.click("#slot")
    assert "approved" in ended(till, 0)
    until(lambda: "CLO" in page.texts("#lines .host b")[-1])
    assert page.text("#finding-count") == "none" and page.find("#card-inside").is_displayed() is False
    assert [page.texts("#lines .host b").count(each) for each in ("GCX", "GOX", "FCX", "RMC")] == [1] * 4
    assert "4111111111111111" not in page.driver.page_source


def test_a_sale_by_keys(pin_pad, page):
    till = pin_pad.sale()
    page.shows("INSERT")
    page.type(Keys.ARROW_RIGHT, Keys.ARROW_LEFT, "i")
    page.shows("ENTER THE PIN")
    page.type("19")
    page.shows("**")
    page.type(Keys.BACKSPACE, "1234", Keys.ENTER)
    page.shows("REMOVE THE CARD")
    page.type("i")
    assert "approved" in ended(till, 0)


def test_a_cancelled_sale(pin_pad, page):
    till = pin_pad.sale()
    insert_and_type_pin(page)
    page.type(Keys.ESCAPE)
    page.shows("REMOVE THE CARD")
    page.picture("cancelled")
    page.click("[data-act=remove]")
    assert "CANCEL" in ended(till, 1)
    assert any("GOX 013 CANCEL" in each for each in page.texts("#lines .words"))


@pytest.mark.parametrize("card, act, by", [("visa-magnetic", "swipe", "button"), ("visa-magnetic", "swipe", "drag"),
                                           ("visa-contactless", "tap", "reader")])
def test_a_card_is_swiped_or_tapped(pin_pad, page, card, act, by):
    if act == "tap":
        ended(pin_pad.till("tables", "load", TABLES), 0)
    till = pin_pad.till("card", "--keep-card")
    page.shows("SWIPE")
    reader = {"swipe": "#stripe", "tap": "#field"}[act]
    if by == "drag":
        ActionChains(page.driver, duration=50).drag_and_drop(page.find(f"[data-card={card}]"), page.find(reader)).perform()
    else:
        page.click(f"[data-card={card}]", f"[data-act={act}]" if by == "button" else reader)
    assert ended(till, 0)
    assert page.find("[data-act=insert]").is_enabled() is False
    page.click("#slot")
    assert page.text("#said") == f"{card} has no chip"


def test_a_fault_is_switched_on_and_strikes(pin_pad, page):
    def choose(name, value):
        page.click(f"#fault-form select[name={name}] option[value='{value}']")
    choose("fault", "delay")
    choose("when", "every")
    page.click("#fault-on")
    page.says("#fault-list", "delay 1500 ms, every 2, until switched off")
    page.click("#faults-off")
    until(lambda: page.text("#fault-list") == "")
    choose("fault", "status")
    choose("command", "GOX")
    choose("when", "once")
    page.click("#fault-on")
    page.says("#fault-list", "status 12, in GOX, once")
    till = pin_pad.sale()
    insert_and_type_pin(page)
    page.type(Keys.ENTER)
    page.says("#lines .badge", "fault: status")
    page.picture("fault")
    page.shows("REMOVE THE CARD")
    page.type("i")
    assert "TIMEOUT" in ended(till, 1)
    until(lambda: page.text("#fault-list") == "")


def test_a_plan_serves_the_till(pin_pad, page):
    page.click("#plan-form select[name=command] option[value=GKY]", "#plan-form select[name=act] option[value=press]",
               "#plan-form select[name=key] option[value=f2]", "#plan")
    page.says("#plan-list", "GKY: 1 act")
    assert "F2" in ended(pin_pad.till("key"), 0)
    until(lambda: page.text("#plan-list") == "")
    till = pin_pad.till("key")
    page.says("#waiting", "GKY")
    page.find("#notify-text").send_keys("PLEASE WAIT", Keys.ENTER)
    page.says("#said", "Told")
    page.type(Keys.F3)
    assert "PLEASE WAIT" in (output := ended(till, 0)) and "F3" in output


def test_a_menu_and_an_image_are_shown(pin_pad, page):
    ended(pin_pad.till("media", "put", "--name", "WELCOME", ROOT / "examples/welcome.png"), 0)
    ended(pin_pad.till("media", "show", "WELCOME"), 0)
    until(lambda: page.script("return document.querySelector('#display img')?.naturalWidth"), "the image")
    assert "image WELCOME" in page.find("#display-words").get_attribute("textContent")
    page.picture("image")
    till = pin_pad.till("menu", "--title", "A DRINK", "TEA", "MATE", "JUICE")
    page.shows("1>TEA", "2 MATE")
    page.type(Keys.ARROW_DOWN)
    page.shows("2>MATE")
    page.press("enter")
    assert "MATE" in ended(till, 0)


def test_what_a_till_does_wrong_stands_in_red_with_the_field(pin_pad, page):
    pin_pad.sends(OPEN, LAYOUT_ERROR, b"XYZ")
    page.says("#finding-count", "3")
    assert "layout" in page.text("#finding-list li:nth-child(3)") and page.text("#finding-list code").startswith("DSP")
    assert page.texts("#lines .finding code")[0].startswith("DSP")
    red = page.script("return getComputedStyle(document.querySelector('#finding-list li')).color")
    assert red == "rgb(179, 25, 31)"
    page.click("#clear-findings")
    page.says("#finding-count", "none")


def test_the_session_and_the_tables_are_told_and_reset(pin_pad, page):
    ended(pin_pad.till("--secure", "tables", "load", TABLES), 0)
    page.says("#tables-summary", "6 records")
    page.click("#tables-summary")
    page.says("#tables", "A0000000031010")
    pin_pad.sends(OPEN, GIN)
    until(lambda: "plain" in page.texts("#facts dd"))
    page.find("#unplug-ms").clear()
    page.find("#unplug-ms").send_keys("10")
    page.click("#unplug button")
    until(lambda: "plain" not in page.texts("#facts dd"), "the end of the session")
    page.click("#reset-what option[value=tables]", "#reset button")
    page.says("#tables-summary", "0 records")


@pytest.mark.parametrize("pin_pad", [("--scenario", "chip-online-pin", "--ends", "stop")], indirect=True)
def test_a_scenario_is_seen_to_pass(pin_pad, page):
    assert {"▸", "○"} <= set(page.texts("#scenario .sign"))
    ended(pin_pad.sale(), 0)
    until(lambda: set(page.texts("#scenario .sign")) == {"✓"}, "the end of the scenario")
    page.picture("scenario")


@pytest.mark.parametrize("pin_pad", [("--scenario", "card-removed", "--ends", "stop")], indirect=True)
def test_a_scenario_is_seen_to_fail(pin_pad, page):
    pin_pad.sends(OPEN, BAD_GOX)
    until(lambda: page.texts("#scenario .complaints li"), "a complaint")
    assert page.texts("#scenario .failed")
    page.picture("failed")


def test_the_page_comes_back_after_a_restart(pin_pad, page):
    pin_pad.sends(OPEN, GIN)
    until(lambda: page.texts("#lines .host"))
    pin_pad.stop()
    page.says("#link", "Trying again")
    page.picture("gone")
    page.press("1")
    page.says("#notice", "quorvel-sim does not answer")
    pin_pad.start(pin_pad.address)
    page.says("#link", "Connected")
    page.says("#lines", "quorvel-sim was started anew")
    assert not page.texts("#lines .host")
    pin_pad.sends(OPEN)
    until(lambda: page.texts("#lines .host b") == ["OPN"])
    page.driver.get_log("browser")  # which has told of the broken link


def test_lines_are_neither_lost_nor_doubled_when_the_link_breaks(pin_pad, browser):
    relay = Relay(pin_pad.address)
    with relay.listener:
        page = browser.open(pin_pad.url.replace(pin_pad.address, relay.address)).connected()
        pin_pad.sends(OPEN, GIN)
        until(lambda: page.texts("#lines .host b") == ["OPN", "GIN"])
        relay.cut()
        page.says("#link", "Trying again")
        pin_pad.sends(GIN)
        relay.whole = True
        until(lambda: page.texts("#lines .host b") == ["OPN", "GIN", "GIN"])
        assert not page.texts("#lines .remark")
        relay.cut()
    page.driver.get("about:blank")
    page.driver.get_log("browser")


def test_the_link_is_a_key(pin_pad, browser, tmp_path):
    browser.open(pin_pad.url).connected()
    assert browser.driver.current_url == f"http://{pin_pad.address}/"
    browser.driver.refresh()
    browser.connected()
    for url in (f"http://{pin_pad.address}/#token=0000", f"http://{pin_pad.address.replace('127.0.0.1', 'localhost')}/"):
        browser.open(url)
        browser.says("#notice", "This link is not this PIN pad's (any more)")
        assert browser.text("#link") == "Not connected"
    browser.driver.get_log("browser")


def test_two_browsers_see_and_play_the_same_pin_pad(pin_pad, page, tmp_path):
    other = Page(tmp_path / "profile")
    try:
        other.open(pin_pad.url).connected()
        till = pin_pad.sale()
        for each in (page, other):
            each.shows("R$ 12.34", "INSERT")
        page.type("i")
        other.shows("ENTER THE PIN")
        other.type("12")
        page.shows("**")
        page.type("34")
        other.shows("****")
        other.picture("two")
        other.type(Keys.ENTER)
        page.shows("REMOVE THE CARD")
        page.type("i")
        ended(till, 0)
        until(lambda: page.texts("#lines .words") == other.texts("#lines .words"))
    finally:
        other.driver.quit()


def test_a_phone_has_all_of_it_and_nothing_beside_the_screen(pin_pad, browser):
    page = browser.open(pin_pad.url, size=PHONE).connected()
    till = pin_pad.sale()
    page.shows("INSERT")
    assert page.script("return document.documentElement.scrollWidth <= innerWidth")
    assert min(page.script("return [...document.querySelectorAll('.digit')].map((key) => key.offsetHeight)")) >= 44
    page.click("#slot")
    page.shows("ENTER THE PIN")
    page.press("1", "2", "3", "4")
    page.shows("****")
    page.picture("phone")
    page.press("enter")
    page.shows("REMOVE THE CARD")
    page.click("#slot")
    ended(till, 0)


def test_dark_and_light_follow_the_system_and_the_switch(pin_pad, browser):
    def ground():
        return page.script("return getComputedStyle(document.body).backgroundColor")
    dark, light = "rgb(20, 23, 27)", "rgb(236, 238, 241)"
    page = browser.open(pin_pad.url, theme="dark").connected()
    assert ground() == dark
    page.picture("dark")
    page.click("#theme")
    assert ground() == light and page.text("#theme") == "Theme: light"
    page.driver.refresh()
    assert ground() == light
    page.click("#theme")
    browser.open(pin_pad.url).connected()
    assert ground() == dark
    page.click("#theme")
    assert ground() == light and page.text("#theme") == "Theme: system"


def test_ten_thousand_lines_stay_smooth(pin_pad, page):
    pin_pad.sends(OPEN)
    pin_pad.sends(GIN, rounds=3500)
    until(lambda: page.script("return document.querySelectorAll('#lines li').length") >= 9900)
    assert page.script("return document.querySelectorAll('#lines li').length") <= 10000
    till = pin_pad.sale()
    page.shows("INSERT")
    at_end = "const list = document.getElementById('lines'); return list.scrollHeight - list.scrollTop - list.clientHeight"
    until(lambda: page.script(at_end) < 5)
    page.type("i")
    page.shows("ENTER THE PIN")
    # What takes time is to draw lines anew; how much, scripts/bench measures.
    page.script("""
        window.drawn = 0;
        const count = (changes) => changes.forEach((change) => { window.drawn += change.addedNodes.length; });
        new MutationObserver(count).observe(document.getElementById("lines"), {childList: true, subtree: true});
    """)
    for digits in range(1, 10):
        page.click_to_display("*" * digits)
    assert page.script("return window.drawn") < 200
    for query in ("g", "gc", "gcx"):
        page.script("""
            const input = document.getElementById("search");
            input.value = arguments[0];
            input.dispatchEvent(new Event("input"));
        """, query)
    assert set(page.texts("#lines .line b")) == {"GCX"}
    page.script("""
        document.getElementById("search").value = "";
        document.getElementById("search").dispatchEvent(new Event("input"));
        document.getElementById("lines").scrollTop -= 500;
    """)
    until(lambda: page.find("#newest").is_displayed())
    read = """
        const {left, top} = document.getElementById("lines").getBoundingClientRect();
        return document.elementFromPoint(left + 20, top + 20).closest("li").textContent;
    """
    before = page.script(read)
    page.type(Keys.ESCAPE)
    page.says("#newest", "more")
    assert page.script(read) == before
    page.click("#newest")
    until(lambda: page.script(at_end) < 5)
    page.type("i")
    ended(till, 1)


def test_the_traffic_is_filtered_and_searched(pin_pad, page):
    pin_pad.sends(OPEN, GIN, LAYOUT_ERROR)
    until(lambda: len(page.texts("#lines .finding")) == 2)
    all_lines = page.texts("#lines .line")
    for name, kind in (("host", "till"), ("pin-pad", "pad"), ("finding", "finding")):
        page.click(f"[data-filter={name}]")
        assert all(kind not in each for each in page.texts("#lines .from [aria-hidden]"))
        page.click(f"[data-filter={name}]")
    page.click("[data-filter=control]")
    assert len(page.texts("#lines .line")) < len(all_lines) and "ACK" not in page.texts("#lines .words")
    page.click("[data-filter=control]", "[data-filter=bytes]")
    assert page.texts("#lines .bytes")[0].startswith("16 4F 50 4E 17")
    page.click("[data-filter=bytes]")
    for query, found in (("gin", "GIN"), ("16 4f 50", "OPN")):
        page.find("#search").clear()
        page.find("#search").send_keys(query)
        until(lambda: set(page.texts("#lines .host b")) == {found})
    assert f"of {len(all_lines)} lines" in page.text("#shown")
    page.find("#search").clear()
    page.find("#search").send_keys("nonsense")
    until(lambda: page.text("#shown").startswith("0 of"))
    pin_pad.sends(b"DSP032NONSENSE" + b" " * 24)
    until(lambda: page.texts("#lines .line"))
    assert all("NONSENSE" in each for each in page.texts("#lines .words"))
    page.click("[data-filter=bytes]", "[data-filter=bytes]")
    page.script("""
        document.getElementById("search").value = "";
        document.getElementById("search").dispatchEvent(new Event("input"));
    """)
    until(lambda: len(page.texts("#lines .line")) > len(all_lines))


def test_keys_are_pressed_only_where_they_are_meant(pin_pad, page):
    till = pin_pad.till("--reveal", "number")
    page.shows("NUMBER")
    typed = page.texts("#display > div")
    page.click("#search")
    page.type("77", Keys.ENTER)
    page.find("#search").clear()
    page.click("#keyboard")
    page.type("8")
    page.click("#keyboard")
    assert page.texts("#display > div") == typed
    page.press("5")
    page.type("/", "6")
    page.press("7")
    page.type(Keys.ENTER)
    assert "57" in ended(till, 0)


def test_each_key_of_the_keyboard_presses_its_own(page):
    page.script("""
        const fetch_it = window.fetch;
        window.pressed = [];
        window.fetch = (path, more) => {
            if (more?.body) { window.pressed.push(JSON.parse(more.body).key); }
            return fetch_it(path, more);
        };
    """)
    page.type("0123456789", Keys.ENTER, Keys.BACKSPACE, Keys.DELETE, Keys.ESCAPE, Keys.ARROW_UP, Keys.ARROW_DOWN,
              Keys.F1, Keys.F2, Keys.F3, Keys.F4, "abcd")
    keys = [f"f{i}" for i in range(1, 5)]
    until(lambda: page.script("return window.pressed.length") == 24)
    assert page.script("return window.pressed") == [*"0123456789", "enter", "clear", "clear", "cancel", "up", "down"] + 2 * keys


def test_the_recording_is_downloaded(pin_pad, browser, tmp_path_factory):
    folder = tmp_path_factory.mktemp("downloads")
    page = browser.open(pin_pad.url).connected()
    page.driver.execute_cdp_cmd("Browser.setDownloadBehavior", {"behavior": "allow", "downloadPath": str(folder)})
    pin_pad.sends(OPEN, GIN)
    until(lambda: page.texts("#lines .host"))
    page.click("#recording")
    until(lambda: (folder / "session.rec").is_file() and "GIN" in (folder / "session.rec").read_text())


@pytest.fixture(scope="session")
def axe():
    folder = Path(os.environ.get("QUORVEL_AXE", "axe"))
    source = folder / "node_modules/axe-core/axe.min.js"
    if not source.is_file():
        if not shutil.which("npm"):
            pytest.skip("accessibility is not checked: there is no npm")
        folder.mkdir(parents=True, exist_ok=True)
        for name in ("package.json", "package-lock.json"):
            shutil.copy(HERE / name, folder)
        fetched = subprocess.run(["npm", "ci", "--ignore-scripts", "--no-audit", "--no-fund"], cwd=folder, text=True,
                                 stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=60)
        if fetched.returncode != 0:
            pytest.skip(f"accessibility is not checked: npm could not fetch axe-core: {fetched.stdout.strip()[-200:]}")
    return source.read_text()


@pytest.mark.parametrize("theme", ["light", "dark"])
@pytest.mark.parametrize("size", [WIDE, PHONE], ids=["wide", "phone"])
@pytest.mark.parametrize("pin_pad", [("--scenario", "card-removed", "--ends", "stop", "--reveal")], indirect=True)
def test_the_page_is_accessible(pin_pad, browser, axe, theme, size):
    page = browser.open(pin_pad.url, size=size, theme=theme).connected()
    pin_pad.sends(OPEN, LAYOUT_ERROR, GIN, BAD_GOX)
    page.click("#fault-on", "#plan", "[data-filter=bytes]", "#tables-summary", "[data-card=visa-chip]", "#slot")
    page.says("#slot-words", "Take out")
    until(lambda: page.texts("#scenario .complaints li"))
    page.press("enter")
    page.script(axe)
    found = page.driver.execute_async_script("axe.run().then(arguments[arguments.length - 1])")
    assert [(each["id"], [node["html"][:150] for node in each["nodes"]]) for each in found["violations"]] == []
    assert len(found["passes"]) > 20
    page.driver.get_log("browser")
