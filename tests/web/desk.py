"""What the browser tests share: a desk TV behind its door, and a browser with the screen."""
import json
import os
import subprocess
import tempfile
import time
import unittest
import urllib.request
from pathlib import Path

from selenium import webdriver
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.keys import Keys

ROOT = Path(__file__).resolve().parents[2]
PROGRAM = os.environ.get("HOMELOOM_TV", str(ROOT / "build/dev/bin/homeloom-tv"))
LIMIT = 20  # seconds until a condition counts as never met

FLAGS = ["--headless=new", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
         "--disable-background-networking", "--disable-component-update", "--disable-sync", "--hide-scrollbars",
         "--force-prefers-reduced-motion", "--window-size=1920,1080"]


def apartment():
    """The apartment's document, its models in place."""
    home = json.loads((ROOT / "homes/apartment.json").read_text())
    home["models"] = [json.loads((ROOT / "homes" / name).read_text()) for name in home["models"]]
    return home


class Tv:
    """A desk TV with its door open; `port` 0 takes any free one."""

    def __init__(self, *arguments, port=0):
        self._process = subprocess.Popen([PROGRAM, "--serve", str(port), *arguments], stdin=subprocess.DEVNULL,
                                         stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.url = next(line.strip() for line in self._process.stdout if line.startswith("http://"))
        # Nobody may fill the pipe.
        self._reader = subprocess.Popen(["cat"], stdin=self._process.stdout, stdout=subprocess.DEVNULL)

    @property
    def port(self):
        return int(self.url.rstrip("/").rsplit(":", 1)[1])

    def get(self, path):
        with urllib.request.urlopen(self.url + path, timeout=LIMIT) as response:
            return json.load(response)

    def command(self, line):
        request = urllib.request.Request(self.url + "v1/commands", line.encode(), {"Content-Type": "text/plain"})
        with urllib.request.urlopen(request, timeout=LIMIT) as response:
            answer = json.load(response)
        assert answer["succeeded"], answer
        return answer

    def device(self, device_id):
        return next(device for device in self.get("v1/home")["home"]["devices"] if device["id"] == device_id)

    def stop(self):
        self._process.terminate()
        self._process.wait(LIMIT)
        self._process.stdout.close()
        self._reader.wait(LIMIT)


class Screen:
    """The page in a browser, driven by keys."""

    def __init__(self, traced=""):
        """`traced`: categories of the browser's own tracing, which its performance log has then."""
        self._profile = tempfile.TemporaryDirectory()
        options = webdriver.ChromeOptions()
        for flag in [*FLAGS, f"--user-data-dir={self._profile.name}"]:
            options.add_argument(flag)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        if traced:
            options.add_experimental_option("perfLoggingPrefs", {"traceCategories": traced})
        self.driver = webdriver.Chrome(options=options)
        self.size(1920, 1080)

    def size(self, width, height):
        self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                                    {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": False})

    def open(self, url):
        self.driver.get(url)
        self.until(lambda: self.focused(), "a card has the focus")

    def js(self, code, *arguments):
        return self.driver.execute_script(code, *arguments)

    def until(self, condition, what):
        end = time.monotonic() + LIMIT
        while True:
            met = condition()
            if met:
                return met
            if time.monotonic() > end:
                raise AssertionError(f"never: {what}; the focus is on {self.js('return document.activeElement.outerHTML')[:300]}")
            time.sleep(0.02)

    def press(self, *keys):
        chain = ActionChains(self.driver, duration=0)
        for key in keys:
            chain.send_keys(getattr(Keys, key, key))
        chain.perform()

    def focused(self):
        """The key of the card that has the focus; empty if none has it."""
        return self.js("return document.activeElement?.dataset?.key ?? ''")

    def focus(self, key):
        """Puts the focus on a card, as a click beside its control would not: nothing is done."""
        self.until(lambda: self.js("return document.querySelector('hl-list').focusEntry(arguments[0], false)", key), key)

    def card(self, key):
        """Title, state and looks of a card among the elements; None if it isn't."""
        return self.js("""
            const card = document.querySelector(`hl-list .row:not([hidden]) hl-card:not([hidden]) [data-key="${CSS.escape(arguments[0])}"]`);
            return card && {title: card.querySelector('.card-title').textContent, label: card.getAttribute('aria-label'),
                            state: card.querySelector('.card-state').textContent, look: card.dataset.look,
                            pressed: card.getAttribute('aria-pressed')}""", key)

    def state(self, key):
        card = self.card(key)
        return card["state"] if card else None

    def shows(self, selector, text=""):
        return self.js("""return [...document.querySelectorAll(arguments[0])].some((element) =>
            element.getClientRects().length > 0 && element.textContent.includes(arguments[1]))""", selector, text)

    def until_shown(self, selector, text=""):
        return self.until(lambda: self.shows(selector, text), f"{selector} with {text!r}")

    def until_gone(self, selector, text=""):
        return self.until(lambda: not self.shows(selector, text), f"no {selector} with {text!r}")

    def close(self):
        self.driver.quit()
        self._profile.cleanup()


class ScreenTest(unittest.TestCase):
    """One browser for all tests of a class, a fresh desk TV for each."""
    arguments = []

    @classmethod
    def setUpClass(cls):
        cls.screen = Screen()

    @classmethod
    def tearDownClass(cls):
        cls.screen.close()

    def setUp(self):
        self.tv = Tv(*self.arguments)
        self.addCleanup(lambda: self.tv.stop())
        self.screen.driver.get_log("browser")
        self.screen.open(self.tv.url)

    def complaints(self):
        """What the browser found wrong, a broken content policy above all."""
        return [entry["message"] for entry in self.screen.driver.get_log("browser") if entry["level"] == "SEVERE"]
