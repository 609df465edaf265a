"""A lamp: a program that stands behind a device of a desk TV and carries out what the TV wants of it.

    homeloom-tv --serve 8080
    PYTHONPATH=clients/python python3 clients/python/examples/lamp.py http://127.0.0.1:8080/ bedside-lamp

It takes a moment to warm up, can't be dimmer than 20 %, and trips when it is overloaded. Ends with Ctrl-C.
"""

import sys
import time
from typing import Any

import homeloom

SWITCH = "/capability/switch/main/0"
DIMMEST = 20
BRIGHTEST = 100


class Lamp:
    def __init__(self, tv: homeloom.TV, device: str) -> None:
        self._tv = tv
        self._device = device
        self._is_on = False
        self._level = 80

    def run(self) -> None:
        # The first event is the state of everything: from there on no command is missed.
        events = self._tv.events()
        next(events)
        self._tv.command("sim driver", self._device, "on")
        try:
            self._tv.set(self._device, switch="off", level=self._level)
            self._shine()
            for event in events:
                if event.type == "device_command" and event.data["device_command"]["device_id"] == self._device:
                    self._obey(event.data["device_command"])
        finally:
            self._tv.command("sim driver", self._device, "off")

    def _obey(self, command: dict[str, Any]) -> None:
        number, values = str(command["number"]), command["values"]
        if command["uri"] == SWITCH:
            time.sleep(0.3)  # the TV waits, as for any device
            self._is_on = values["switch"] == "on"
            self._tv.command("sim driver confirm", number)
        elif values["level"] > BRIGHTEST:
            self._tv.command("sim driver refuse", number)
        else:
            self._level = max(DIMMEST, values["level"])
            self._tv.command("sim driver confirm", number, f"level={self._level}")
        self._shine()

    def _shine(self) -> None:
        print("*" * (self._level // 10) if self._is_on else "(dark)", flush=True)


if __name__ == "__main__":
    try:
        Lamp(homeloom.connect(sys.argv[1]), sys.argv[2]).run()
    except KeyboardInterrupt:
        pass
