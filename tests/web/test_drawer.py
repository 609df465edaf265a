"""The other side: whatever the console can do to the home, the drawer can, and the stream of what is reported."""
import unittest

from desk import ScreenTest


class OtherSide(ScreenTest):
    def open_tab(self, name):
        self.screen.js("document.querySelector('hl-drawer').show(arguments[0])", name)

    def click(self, text):
        self.screen.until(lambda: self.screen.js("""
            const button = [...document.querySelectorAll('.drawer-body button')].find((one) => one.textContent.endsWith(arguments[0]));
            button?.click();
            return button !== undefined""", text), f"a button {text}")

    def test_changes_values_and_presence_of_the_focused_device(self):
        screen = self.screen
        screen.focus("device:washer")
        screen.press("d")
        field = 'input[aria-label="/operational/state/vs/0 x.com.norvane.da.state"]'
        screen.until_shown(field)
        screen.js("document.querySelector(arguments[0]).select(); document.querySelector(arguments[0]).focus()", field)
        screen.press("Run", "ENTER")
        screen.until(lambda: screen.state("device:washer") == "Washing · 42 min left", "the washer washes")
        screen.js("""const status = document.querySelector('select[aria-label="Presence"]');
            status.value = 'disconnected';
            status.dispatchEvent(new Event('change'))""")
        screen.until(lambda: "disconnected" in screen.card("device:washer")["look"], "it looks disconnected")
        screen.press("ESCAPE")
        screen.until(lambda: screen.focused() == "device:washer", "back in the home")
        screen.press("ESCAPE")
        screen.until_gone("hl-drawer")

    def test_sets_faults_and_takes_them_back(self):
        screen = self.screen
        self.open_tab("faults")
        screen.until(lambda: screen.js("""const functions = document.querySelector('select[aria-label="Function"]');
            functions.value = 'homeloom_core_execute_scene_async';
            return functions.value"""), "the agent's functions")
        self.click("Set")
        screen.until_shown(".faults", "homeloom_core_execute_scene_async")
        self.assertEqual(self.tv.get("v1/sim")["faults"][0]["code"], -5)
        screen.focus("scene:good-night")
        screen.press("ENTER")
        screen.until_shown(".toast-error")
        # One of the TV's own functions, at its second call.
        screen.js("""const [name, code, , number] = [...document.querySelectorAll('select[aria-label="Function of the TV"]')]
                .flatMap((select) => [select, ...select.closest('.line').querySelectorAll('input')]);
            name.value = 'KRCurlEasy.send';
            [code.value, number.value] = ['-7', '2'];
            name.closest('.line').querySelector('button').click()""")
        screen.until_shown(".faults", "KRCurlEasy.send fail -7")
        self.click("Clear all")
        screen.until_gone(".faults", "KRCurlEasy.send")
        screen.until_gone(".faults", "homeloom_core_execute_scene_async")

    def test_answers_for_a_device_that_it_drives(self):
        screen = self.screen
        screen.focus("device:bedside-lamp")
        screen.press("d")
        self.click("Driven by a program")
        screen.until_shown('.drawer-body button[aria-pressed="true"]', "Driven")
        for verdict, state in [("Confirm", "On · 30%"), ("Refuse", "On · 30%")]:
            screen.focus("device:bedside-lamp")
            screen.press("ENTER")
            screen.until_shown(".command", "bedside-lamp /capability/switch/main/0")
            self.click(verdict)
            screen.until_gone(".command", "bedside-lamp")
            screen.until(lambda: screen.state("device:bedside-lamp") == state, f"{state} after {verdict}")

    def test_works_the_session(self):
        screen = self.screen
        self.open_tab("session")
        self.click("io-error")
        screen.until(lambda: self.tv.get("v1/sim")["agent_state"] == "io-error", "the agent is away")
        screen.until_shown('.drawer-body button[aria-pressed="true"]', "io-error")
        self.click("connected")
        screen.until(lambda: self.tv.get("v1/sim")["agent_state"] == "connected", "and back")
        self.click("한국어")
        screen.until_shown(".drawer-tab", "세션")

    def test_lists_what_is_reported_and_makes_lines_of_tests(self):
        screen = self.screen
        self.open_tab("events")
        self.tv.command("do washer")
        screen.js("""const filter = document.querySelector('.drawer-body input');
            filter.value = 'hl_device_state washer 42';
            filter.dispatchEvent(new Event('input'))""")
        screen.until_shown(".event-text", "washer: Washing · 42 min left")
        self.assertFalse(screen.shows(".event-text", "do washer"))
        screen.js("document.querySelector('.event summary').click()")
        screen.until_shown(".test-line", 'tv.wait_for_state("washer", "Washing · 42 min left")')
        screen.until_shown(".json", '"device_id": "washer"')

    def test_is_a_console(self):
        screen = self.screen
        screen.press("c")
        screen.until(lambda: screen.js("return document.activeElement.matches('.drawer-body input')"), "its line has the focus")
        screen.press("sim set front-door lock=unlocked", "ENTER")
        screen.until(lambda: self.tv.device("front-door")["state_text"] == "Unlocked", "the door is open")
        screen.press("no such command", "ENTER")
        screen.until_shown(".console", "no such command")
        screen.until_shown(".console", "✗")


if __name__ == "__main__":
    unittest.main()
