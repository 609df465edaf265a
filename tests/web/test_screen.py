"""The home on the screen: seen, walked through with a remote control's keys, and changing as it should."""
import json
import tempfile
import unittest
from urllib.parse import urlsplit

from desk import ScreenTest, Tv, apartment

# A card of each control type, and what it says after its main action.
ACTIONS = [
    ("device:washer", "PlayPauseButton", "Washing · 42 min left"),
    ("device:ceiling-light", "ToggleSwitch", "Off"),
    ("device:coffee-plug", "StandbyPowerSwitch", "On"),
    ("device:blind", "OpenCloseButton", "Closed"),
    ("device:front-door", "LockButton", "Unlocked"),
    ("device:robot", "CleanButton", None),
    ("device:oven", "StartButton", "Baking at 180°C · 30 min left"),
    ("device:oven", "StopButton", "Hot · 180°C"),
    ("device:ir-fan", "PushButton", "Signal sent"),
    ("device:thermostat", "ModeButton", None),
    ("part:aircon#1", "ToggleSwitch", None),
    ("routine:night-watch", "", "Enabled"),
]


class Walk(ScreenTest):
    def walk(self):
        """Line by line with the arrow keys alone; returns the keys of all cards."""
        screen, seen = self.screen, []
        screen.press("HOME")
        while True:
            line = [screen.focused()]
            while True:
                screen.press("ARROW_RIGHT")
                if screen.focused() == line[-1]:
                    break
                line.append(screen.focused())
            seen += line
            screen.press(*["ARROW_LEFT"] * (len(line) - 1))
            self.assertEqual(screen.focused(), line[0])
            screen.press("ARROW_DOWN")
            if screen.focused() == line[0]:
                return seen

    def test_reaches_all_cards_by_keys_alone(self):
        screen = self.screen
        screen.until(lambda: screen.card("favorite:home/washer"), "the favorites are there")
        screen.until(lambda: screen.js("return document.querySelector('hl-list')._order.includes('service:installed-savings')"),
                     "the services are there")
        seen = self.walk()
        self.assertEqual(len(seen), len(set(seen)))
        home = self.tv.get("v1/home")["home"]
        visible = {f"device:{device['id']}" for device in home["devices"] if device["cloud_device_status"] != 3}
        wanted = visible | {f"scene:{scene['id']}" for scene in home["scenes"]} | {
            f"routine:{routine['id']}" for routine in home["routines"]} | {
            "part:aircon#0", "part:aircon#1", "service:installed-savings", "service:installed-dr-parents",
            "favorite:home/washer", "favorite:home/ceiling-light", "favorite:home/good-night"}
        self.assertEqual(set(seen), wanted)
        screen.press("ESCAPE")
        self.assertEqual(screen.focused(), "favorite:home/washer")
        screen.press("ARROW_UP")
        self.assertEqual(screen.js("return document.activeElement.dataset.name"), "location:home")
        screen.press("ARROW_RIGHT", "ENTER")
        self.assertEqual(screen.js("return document.activeElement.dataset.name || document.activeElement.dataset.key"),
                         "scene:parents-welcome")
        self.assertEqual(self.complaints(), [])

    def test_each_control_does_its_main_action(self):
        for key, control, wanted in ACTIONS:
            with self.subTest(key):
                device = key.split(":")[1]
                if control and key.startswith("device"):
                    self.assertEqual(self.tv.device(device)["control_type"], control)
                self.screen.focus(key)
                before = self.screen.card(key)
                self.screen.press("ENTER")
                self.screen.until(lambda: self.screen.card(key) != before, f"{key} changes from {before}")
                if wanted:
                    self.screen.until(lambda: self.screen.state(key) == wanted, f"{key} says {wanted}")
                if key.startswith("device"):
                    self.screen.until(lambda: self.screen.state(key) == self.tv.device(device)["state_text"],
                                      f"{key} says what is reported")

    def test_shows_what_is_not_known_yet_and_acts_on_it(self):
        screen, home = self.screen, apartment()
        fan = next(device for device in home["devices"] if device["id"] == "ir-fan")
        fan["resources"] = {"/capability/statelessPowerToggleButton/main/0": {"button": None, "pressed": None}}
        self.tv.stop()
        with tempfile.NamedTemporaryFile("w", suffix=".json") as file:
            file.write(json.dumps(home))
            file.flush()
            self.tv = Tv("--home", file.name)
        screen.open(self.tv.url)
        screen.focus("device:ir-fan")
        screen.until(lambda: screen.state("device:ir-fan") == "No state yet", "nothing is known of the fan")
        screen.press("ENTER")
        screen.until(lambda: screen.state("device:ir-fan") == "Signal sent", "and yet it can be switched")

    def test_is_readable_in_high_contrast(self):
        screen = self.screen
        screen.focus("device:washer")
        screen.press("k")
        ratios = screen.js("""const canvas = document.createElement('canvas').getContext('2d', {willReadFrequently: true});
            const ground = getComputedStyle(document.body).backgroundColor;
            const light = (color) => {
                canvas.fillStyle = ground;
                canvas.fillRect(0, 0, 1, 1);
                canvas.fillStyle = color;
                canvas.fillRect(0, 0, 1, 1);
                return [...canvas.getImageData(0, 0, 1, 1).data].slice(0, 3).map((part) => part / 255)
                    .map((part) => part <= 0.04045 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4)
                    .reduce((sum, part, place) => sum + part * [0.2126, 0.7152, 0.0722][place], 0);
            };
            return [...document.querySelectorAll('.card')].filter((card) => card.getClientRects().length > 0)
                .flatMap((card) => [...card.querySelectorAll('.card-title, .card-state')].map((text) => {
                    const [a, b] = [light(getComputedStyle(text).color), light(getComputedStyle(card).backgroundColor)];
                    return (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
                }));""")
        self.assertGreater(len(ratios), 20)
        self.assertGreater(min(ratios), 7)
        screen.press("k")

    def test_asks_only_its_own_door(self):
        loaded = [json.loads(entry["message"])["message"] for entry in self.screen.driver.get_log("performance")]
        urls = [urlsplit(event["params"]["request"]["url"]) for event in loaded
                if event["method"] == "Network.requestWillBeSent"]
        self.assertGreater(len(urls), 20)
        # The browser's own first page is none of ours.
        self.assertEqual({url.hostname for url in urls if url.scheme != "chrome"} - {"127.0.0.1", None}, set())

    def test_says_names_and_roles_to_a_screen_reader(self):
        self.screen.press("d")
        tree = self.screen.driver.execute_cdp_cmd("Accessibility.getFullAXTree", {})["nodes"]
        named = [(node["role"]["value"], node.get("name", {}).get("value", "")) for node in tree
                 if not node["ignored"] and "role" in node]
        for role, name in named:
            if role in ("button", "textbox", "combobox", "tab", "searchbox", "dialog", "link"):
                self.assertNotEqual(name, "", role)
        self.assertIn(("button", "Washer, Ready"), named)
        self.assertTrue({"grid", "status", "complementary", "navigation", "heading"} <= {role for role, _ in named})
        letters = {name for role, name in named if role == "StaticText" and "_" in name}
        self.assertEqual(letters, set(), "an icon's ligature is read aloud")


class Changes(ScreenTest):
    def test_shows_what_happens_outside(self):
        screen = self.screen
        screen.focus("device:washer")
        self.tv.command("sim set washer state=Run")
        screen.until(lambda: screen.state("device:washer") == "Washing · 42 min left", "the washer washes")
        self.assertIn("running", screen.card("device:washer")["look"])
        screen.until(lambda: screen.js("return document.querySelector('hl-speaker').textContent").startswith(
            "Washer, Washing"), "the change of what is focused is spoken")
        self.tv.command("sim status washer disconnected")
        screen.until(lambda: "disconnected" in screen.card("device:washer")["look"], "it looks disconnected")

    def test_follows_the_tvs_language_and_its_direction(self):
        screen = self.screen
        screen.focus("device:coffee-plug")
        self.tv.command("setting db/menu_widget/language ko_KR.utf8")
        screen.until(lambda: screen.js("return document.documentElement.lang") == "ko", "the page speaks Korean")
        screen.until_shown(".heading-title", "즐겨찾기")
        screen.until(lambda: screen.state("favorite:home/washer") == "대기 중", "the plug-in does, too")
        self.assertEqual(screen.focused(), "device:coffee-plug")
        screen.press("l")
        screen.until(lambda: screen.js("return document.documentElement.dir") == "rtl", "Arabic comes from the right")
        screen.press("ARROW_LEFT")
        self.assertEqual(screen.focused(), "device:dishwasher")
        screen.press("ARROW_RIGHT")
        self.assertEqual(screen.focused(), "device:coffee-plug")
        words = screen.js("""return Promise.all(['en', 'ko', 'ar'].map((code) => import(`/js/words/${code}.js`)))
            .then((all) => all.map(({default: words}) => Object.keys(words).sort()))""")
        self.assertEqual(words[1], words[0])
        self.assertEqual(words[2], words[0])

    def test_keeps_the_focus_when_the_list_changes_under_it(self):
        screen = self.screen
        screen.focus("device:dryer")
        self.tv.command("sim add device first HL-WASHER-WF24 laundry")
        screen.until(lambda: screen.card("device:first"), "the new device is there")
        self.assertEqual(screen.focused(), "device:dryer")
        self.tv.command("sim move dryer kitchen")
        screen.until(lambda: screen.js("""const card = document.activeElement.closest('.row');
            return card && card.getAttribute('aria-label') === 'Kitchen'"""), "the focus went along")
        self.assertEqual(screen.focused(), "device:dryer")
        self.tv.command("sim remove device dryer")
        self.tv.command("scan")
        screen.until(lambda: screen.focused() == "device:speaker" or screen.focused() == "device:dishwasher",
                     "the focus is on a neighbour")
        self.tv.command("sim rename device speaker Zebra")
        screen.until(lambda: (screen.card("device:speaker") or {}).get("title") == "Zebra", "the new name")
        self.assertTrue(screen.focused().startswith("device:"))

    def test_holds_the_same_home_as_the_door(self):
        # What only notifies of state bring isn't in the door's home, and of the context it keeps less.
        left_out = ("subdevice_type", "accesstoken", "context_value")

        def plain(home):
            """An absent text is an empty one, and documents are compared by what they say."""
            def items(things):
                return {thing["id"]: json.loads(thing["document"]) for thing in things}
            return {"devices": [{key: value for key, value in device.items() if value != "" and key not in left_out}
                                for device in home["devices"]],
                    "locations": home["locations"], "scenes": items(home["scenes"]), "routines": items(home["routines"])}
        held = """const {store} = document.querySelector('hl-drawer')._page;
            const items = (things) => [...things.values()].map(({id, document}) => ({id, document: JSON.stringify(document)}));
            return {devices: [...store.devices.values()], locations: store.locations,
                    scenes: items(store.scenes), routines: items(store.routines)}"""
        for line in ["do aircon", "sim status dryer disconnected", "sim add device new HL-LIGHT-DIM living", "sim move fridge parlor",
                     "sim remove device oven", "sim add room home Attic", "do hub-plug", "sim agent io-error",
                     "sim agent connected", "sim status hub-plug disconnected", "sim sign-out", "sim sign-in", "do blind"]:
            with self.subTest(line):
                self.tv.command(line)
                self.screen.until(lambda: plain(self.screen.js(held)) == plain(self.tv.get("v1/home")["home"]),
                                  f"the same home after {line}")

    def test_signs_out_and_in(self):
        screen = self.screen
        screen.focus("device:coffee-plug")
        screen.press("o")
        screen.until_shown("#notice", "Nobody is signed in")
        screen.until(lambda: screen.js("return document.activeElement.textContent").endswith("Sign in"), "the way back has the focus")
        self.assertIsNone(screen.card("device:coffee-plug"))
        screen.press("ENTER")
        screen.until_gone("#notice", "Nobody")
        screen.until(lambda: screen.focused() != "", "a card has the focus again")
        screen.until_shown(".toast", "Signed in")

    def test_says_when_the_agent_gives_no_answer(self):
        screen = self.screen
        self.tv.command("scan")  # no list of the start is still to come: a key pressed on a neighbour would be a wish for it
        screen.focus("scene:good-night")
        screen.until(lambda: screen.focused() == "scene:good-night", "the scene has the focus")
        self.tv.command("sim agent io-error")
        screen.press("ENTER")
        screen.until_shown(".toast", "No answer")
        self.tv.command("sim agent connected")
        # The home that comes with the connection begins without scenes: the focus waits with a neighbour.
        self.tv.command("scan")
        screen.until(lambda: screen.focused() == "scene:good-night", "the focus is back")
        screen.press("ENTER")
        screen.until_shown(".toast", "Good Night was run")

    def test_comes_back_with_the_server(self):
        screen = self.screen
        screen.focus("device:washer")
        port = self.tv.port
        self.tv.stop()
        screen.until_shown("#banner", "does not answer")
        self.tv = Tv(port=port)
        self.tv.command("sim set washer state=Run")
        screen.until_gone("#banner")
        screen.until(lambda: screen.state("device:washer") == "Washing · 42 min left", "the fresh state")
        self.assertEqual(screen.focused(), "device:washer")


if __name__ == "__main__":
    unittest.main()
