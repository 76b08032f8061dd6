# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""A virtual PIN pad with its page, a till, and a real browser; all of it is skipped where there is no browser."""
import binascii
import os
import select
import shutil
import socket
import subprocess
import threading
import time
from datetime import date
from pathlib import Path

import pytest

try:
    from selenium import webdriver
    from selenium.common.exceptions import StaleElementReferenceException
    from selenium.webdriver.chrome.service import Service
    from selenium.webdriver.common.action_chains import ActionChains
except ImportError:
    webdriver = None

ROOT = Path(__file__).resolve().parents[2]
PICTURES = Path(os.environ.get("QUORVEL_PICTURES", "pictures"))
TABLES = ROOT / "examples/virtual.tables"
SECONDS = 10
WIDE = {"width": 1440, "height": 900, "deviceScaleFactor": 1, "mobile": False}
PHONE = {"width": 390, "height": 844, "deviceScaleFactor": 2, "mobile": True}
FLAGS = ("--headless --no-sandbox --disable-gpu --disable-dev-shm-usage --disable-quic --no-first-run --disable-sync "
         "--disable-background-networking --disable-component-update --force-prefers-reduced-motion --lang=en "
         "--window-size=1440,1000").split()


def pytest_configure(config):
    lacks = ("python3-selenium" if webdriver is None else
             next((name for name in ("chromium", "chromedriver") if not shutil.which(name)), None))
    if lacks:
        pytest.exit(f"skipped: {lacks} is not installed; packages-browser.txt has what the page's tests need", returncode=77)


def until(holds, what="what was waited for"):
    """What `holds` gives as soon as it is true."""
    deadline = time.monotonic() + SECONDS
    while True:
        try:
            result = holds()
        except StaleElementReferenceException:
            result = None
        if result:
            return result
        assert time.monotonic() < deadline, f"{what} did not come"
        time.sleep(0.02)


def frame(command: bytes) -> bytes:
    return b"\x16" + command + b"\x17" + binascii.crc_hqx(command + b"\x17", 0).to_bytes(2, "big")


class PinPad:
    def __init__(self, folder: Path, *options, web="127.0.0.1:0"):
        self.folder, self.options = folder, options
        self.port = folder / "pinpad"
        self.start(web)

    def start(self, web):
        self.process = subprocess.Popen(
            [os.environ["QUORVEL_SIM"], "--web", web, "--web-token", self.folder / "token", "--link", self.port,
             "--seed", "7", "--clock", f"{date.today()}T10:00:00Z", *self.options],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.url = next(line.split()[1] for line in iter(self.process.stdout.readline, "") if line.startswith("WEB "))
        self.address = self.url.split("/")[2]

    def stop(self):
        self.process.terminate()
        self.process.wait(SECONDS)
        self.process.stdout.close()

    def start_again(self):
        self.stop()
        self.start(self.address)

    def till(self, *arguments):
        """The command-line tool at work, which is a till."""
        return subprocess.Popen([os.environ["QUORVEL_CLI"], "--port", self.port, *map(str, arguments)],
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)

    def sale(self):
        return self.till("sale", "--amount", "12.34", "--tables", TABLES)

    def sends(self, *commands: bytes, rounds=1):
        """A till that sends these commands one by one, each as soon as the one before is answered."""
        line = os.open(self.port, os.O_RDWR | os.O_NOCTTY)
        try:
            for command in commands * rounds:
                os.write(line, frame(command))
                answer = b""
                while b"\x17" not in answer or len(answer.split(b"\x17")[-1]) < 2:
                    assert select.select([line], [], [], SECONDS)[0], f"{command} was not answered"
                    answer += os.read(line, 4096)
        finally:
            os.close(line)


class Relay:
    """A line between browser and PIN pad that can be cut."""

    def __init__(self, address):
        host, port = address.split(":")
        self.target, self.whole, self.sockets = (host, int(port)), True, []
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.address = f"127.0.0.1:{self.listener.getsockname()[1]}"
        threading.Thread(target=self.accept, daemon=True).start()

    def accept(self):
        while True:
            try:
                near = self.listener.accept()[0]
            except OSError:
                return
            if not self.whole:
                near.close()
                continue
            far = socket.create_connection(self.target)
            self.sockets += [near, far]
            for pair in ((near, far), (far, near)):
                threading.Thread(target=self.pump, args=pair, daemon=True).start()

    @staticmethod
    def pump(source, target):
        try:
            while data := source.recv(65536):
                target.sendall(data)
            target.shutdown(socket.SHUT_WR)
        except OSError:
            pass

    def cut(self):
        self.whole = False
        while self.sockets:
            with self.sockets.pop() as each:
                try:
                    each.shutdown(socket.SHUT_RDWR)
                except OSError:
                    pass


class Page:
    """What a person sees and does in a browser of his own."""

    def __init__(self, profile: Path):
        options = webdriver.ChromeOptions()
        options.binary_location = shutil.which("chromium")
        for flag in [*FLAGS, f"--user-data-dir={profile}"]:
            options.add_argument(flag)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        self.driver = webdriver.Chrome(options=options, service=Service(shutil.which("chromedriver")))
        self.driver.execute_cdp_cmd("Browser.setDownloadBehavior", {"behavior": "allow", "downloadPath": str(profile)})

    def open(self, url, *, size=WIDE, theme="light"):
        self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", size)
        self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia",
                                    {"features": [{"name": "prefers-color-scheme", "value": theme}]})
        self.driver.get("about:blank")
        self.driver.get(url)
        return self

    def connected(self):
        until(lambda: self.text("#link") == "Connected" and self.script("return document.querySelector('.card') !== null"),
              "the link")
        return self

    def find(self, css):
        return self.driver.find_element("css selector", css)

    def text(self, css):
        return self.script("return document.querySelector(arguments[0])?.innerText ?? ''", css)

    def texts(self, css):
        return self.script("return [...document.querySelectorAll(arguments[0])].filter((each) => each.checkVisibility())"
                           ".map((each) => each.textContent)", css)

    def click(self, *selectors):
        for css in selectors:
            element = self.find(css)
            self.script("arguments[0].scrollIntoView({block: 'center'})", element)
            element.click()

    def press(self, *keys):
        """Keys of the PIN pad, by the mouse."""
        self.click(*(f"[data-key='{key}']" for key in keys))

    def type(self, *keys):
        """Keys of the keyboard."""
        ActionChains(self.driver, duration=0).send_keys(*keys).perform()

    def shows(self, *words):
        """Waits for words on the display, however they are broken into lines."""
        until(lambda: all(word in self.display() for word in words), f"{words} on the display")

    def display(self):
        return " ".join(" ".join(self.texts("#display > div")).split())

    def says(self, css, words):
        until(lambda: words in self.text(css), f"{words!r} in {css}")

    def script(self, source, *arguments):
        return self.driver.execute_script(source, *arguments)

    def click_to_display(self, typed):
        """Milliseconds from a click on a digit until the display shows what is typed then."""
        return self.driver.execute_async_script("""
            const [typed, done] = arguments;
            const start = performance.now();
            new MutationObserver((_, observer) => {
                if (!document.getElementById("display").textContent.includes(typed)) { return; }
                observer.disconnect();
                requestAnimationFrame(() => done(performance.now() - start));
            }).observe(document.getElementById("display"), {childList: true, subtree: true});
            document.querySelector("[data-key='7']").click();
        """, typed)

    def picture(self, name):
        PICTURES.mkdir(parents=True, exist_ok=True)
        self.driver.save_screenshot(str(PICTURES / f"{name}.png"))

    def complaints(self):
        """What the browser complains of: errors of the scripts, what the page's policy forbids."""
        return [each["message"] for each in self.driver.get_log("browser") if "/api/" not in each["message"]]


@pytest.fixture
def pin_pad(tmp_path, request):
    made = PinPad(tmp_path, *getattr(request, "param", ()))
    yield made
    made.stop()


@pytest.fixture(scope="session")
def browser(tmp_path_factory):
    page = Page(tmp_path_factory.mktemp("profile"))
    yield page
    page.driver.quit()


@pytest.fixture
def page(browser, pin_pad):
    yield browser.open(pin_pad.url).connected()
    assert browser.complaints() == []
