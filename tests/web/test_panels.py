"""What opens over the home and beside it, and texts of a home that try to be more than text."""
import json
import tempfile
import unittest
from pathlib import Path

from desk import ScreenTest, apartment

MARKUP = '<img src="x" onerror="window.hit = true"><script>window.hit = true</script>\'"&amp;'


def poisoned_home():
    """The apartment with markup in every text that somebody may choose."""
    home = apartment()
    for location in home["locations"]:
        location["name"] += MARKUP
        location["owner"]["name"] += MARKUP
        for room in location["rooms"]:
            room["name"] += MARKUP
    for device in home["devices"]:
        device["nick"] += MARKUP
    for item in home["scenes"] + home["routines"]:
        item["document"]["name"] += MARKUP
    for app in home["installed_apps"]:
        if app["app"] != "app-energy":
            app["name"] += MARKUP
    for model in home["models"]:
        for language in model.get("ui_metadata", {}).get("data", {}).get("language", []):
            for code in language["poCodes"]:
                code["label"] += MARKUP
    return home


class Panels(ScreenTest):
    def open_details(self, key):
        self.screen.focus(key)
        self.screen.press("i")
        self.screen.until_shown(".panel-title")

    def press_button(self, text):
        """With the keys alone: along each line and down to the next one, until the focus is on that button."""
        here = "return document.activeElement.textContent"
        for sideways in ["ARROW_RIGHT", "ARROW_LEFT"] * 4:
            before = None
            while before != self.screen.js(here):
                before = self.screen.js(here)
                if text in before:
                    self.screen.press("ENTER")
                    return
                self.screen.press(sideways)
            self.screen.press("ARROW_DOWN")
        self.fail(f"{text} can't be reached")

    def test_shows_a_camera_and_the_inside_of_a_refrigerator(self):
        screen = self.screen
        for key, address in [("living-camera", "rtsps://streams.home.example/living-camera"),
                             ("porch-camera", "rtsp://192.0.2.40/live"), ("doorbell", "rtsp://192.0.2.40/live")]:
            self.open_details(f"device:{key}")
            self.press_button("Watch")
            screen.until_shown(".fact dd", address)
            screen.press("ESCAPE")
            screen.until_gone(".panel")
            self.assertEqual(screen.focused(), f"device:{key}")
        self.open_details("device:fridge")
        self.press_button("Look inside")
        screen.until(lambda: screen.js("""const all = [...document.querySelectorAll('.pictures img')];
            return all.length === 8 && all.every((one) => one.naturalWidth > 0)"""), "eight pictures")
        self.assertEqual(self.complaints(), [])

    def test_shows_the_hub_and_the_energy(self):
        screen = self.screen
        self.tv.command("sim hub pace 20ms")
        screen.press("h")
        screen.until_shown(".panel-state", "not a hub")
        self.press_button("Become a hub")
        screen.until_shown(".panel-state", "has become a hub")
        screen.until_shown(".fact dd", "tv-hub")
        screen.press("ESCAPE")
        screen.focus("service:installed-savings")
        screen.press("ENTER")
        screen.until_shown(".bar", "61 kWh")
        screen.until_shown(".bar", "Saving")

    def test_changes_a_device_as_its_user_may(self):
        screen = self.screen
        self.open_details("device:coffee-plug")
        self.press_button("Rename")
        screen.until_shown(".panel input")
        screen.js("document.activeElement.select()")
        screen.press("Espresso", "ENTER")
        screen.until(lambda: (screen.card("device:coffee-plug") or {}).get("title") == "Espresso", "the new name")
        self.open_details("device:coffee-plug")
        self.press_button("Add to favorites")
        screen.until(lambda: screen.card("favorite:home/coffee-plug"), "a favorite more")
        self.open_details("device:leak-sensor")
        self.press_button("Delete")
        screen.until_shown(".panel-title", "Delete Leak Sensor?")
        self.press_button("Delete")
        screen.until(lambda: not screen.card("device:leak-sensor"), "it has gone")
        self.assertNotEqual(screen.focused(), "")
        screen.press("/")
        screen.press("espr", "ENTER")
        screen.until(lambda: screen.focused() == "device:coffee-plug", "found by its name")

    def test_says_what_comes_unasked(self):
        screen = self.screen
        self.tv.command("request hl_create_scene location_id=home scene_json=" + json.dumps({"name": "Reading"}))
        screen.until_shown(".row-pills .card-title", "Reading")
        for kind, text in [("sign-out", "Signed out"), ("sign-in", "Signed in")]:
            self.tv.command(f"sim {kind}")
            screen.until_shown(".toast", text)


class Markup(ScreenTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls._folder = tempfile.TemporaryDirectory()
        path = Path(cls._folder.name) / "poisoned.json"
        path.write_text(json.dumps(poisoned_home()))
        cls.arguments = ["--home", str(path)]

    @classmethod
    def tearDownClass(cls):
        super().tearDownClass()
        cls._folder.cleanup()

    def test_takes_no_text_for_markup(self):
        screen = self.screen
        titles = [("device:washer", "Washer"), ("part:aircon#0", ""), ("scene:good-night", "Good Night"),
                  ("routine:night-watch", "Night watch"), ("service:installed-savings", "Savings Together")]
        for key, title in titles:
            screen.focus(key)
            card = screen.card(key)
            self.assertEqual(card["title"], title + MARKUP if title else card["title"])
        self.assertTrue(screen.state("device:washer").endswith(MARKUP))
        for key in ["i", "ESCAPE", "h", "ESCAPE", "/", "ESCAPE", "e", "c", "d", "l", "o", "o"]:
            screen.press(key)
        screen.focus("device:fridge")
        self.tv.command("request hl_execute_scene location_id=home scene_id=good-night")
        screen.focus("scene:good-night")
        screen.press("ENTER")
        screen.until_shown(".toast", MARKUP)
        found = screen.js("""return [window.hit ?? null, document.querySelectorAll('img').length,
            document.querySelectorAll('script').length]""")
        self.assertEqual(found, [None, 0, 1])
        self.assertEqual([line for line in self.complaints() if "404" not in line], [])


if __name__ == "__main__":
    unittest.main()
