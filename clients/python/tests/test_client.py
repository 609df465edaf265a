"""The client against a desk TV as it ships. HOMELOOM_TV names the program."""

import asyncio
import json
import os
import pathlib
import re
import signal
import subprocess
import sys
import threading
import urllib.request

import jsonschema
import pytest

import homeloom
import homeloom.aio

README = pathlib.Path(__file__).parents[1] / "README.md"


def test_commands_requests_and_states(homeloom_tv: homeloom.TV) -> None:
    tv = homeloom_tv
    assert tv.do("washer").succeeded
    assert tv.wait_for_state("washer", "Washing*").is_running
    tv.set("washer", state="Ready")
    assert tv.wait_for_state("washer", "Ready").fields["control_type"] == "PlayPauseButton"
    answer = tv.request(
        "hl_create_favorite", location_id="home", favorite_info={"memberId": "robot", "memberType": "DEVICE"}
    )
    assert answer["create_favorite_result"] is True and json.loads(str(answer["favorite_info"]))
    assert tv.request("hl_move_devices", devices_size=1, dev_ids="washer", location_id="home", room_id="kitchen")
    assert {device["id"] for device in tv.home()["devices"]} >= {"washer", "fridge"}
    assert next(tv.events()).data["hello"]["version"] == homeloom.__version__

    with pytest.raises(homeloom.CommandFailed, match="no device"):
        tv.do("no such thing")
    with pytest.raises(homeloom.DoorError) as refused:
        tv.device("a/b?c")
    assert refused.value.status == 404
    with pytest.raises(TimeoutError, match='washer .*, and not "Drying'):
        tv.wait_for_state("washer", "Drying*", timeout=0.1)


def test_events_come_without_a_gap(homeloom_tv: homeloom.TV) -> None:
    tv = homeloom_tv
    with tv.events() as events:
        assert next(events).type == "hello"
        tv.do("washer")
        seen = [next(events)]
        events._connection.sock.close()  # a network that fails
        while seen[-1].type != "command":
            seen.append(next(events))
    assert [event.id for event in seen] == list(range(seen[0].id, seen[0].id + len(seen)))
    assert "hl_device_state_updated" in {event.name for event in seen}


def test_all_that_the_door_tells_fits_its_schema(homeloom_tv: homeloom.TV) -> None:
    tv = homeloom_tv
    with urllib.request.urlopen(tv.url + "v1/schema/event") as answer:
        schema = jsonschema.Draft202012Validator(json.load(answer))
    commands = ["do washer", "sim driver bedside-lamp on", "sim sign-out", "sim sign-in", "sim remove device dryer"]
    seen = set()
    with tv.events() as events:
        for number, command in enumerate([*commands, "do bedside-lamp"]):
            if command == "do bedside-lamp":
                threading.Thread(target=lambda: tv.do("bedside-lamp")).start()
            else:
                body = json.dumps({"id": number, "command": command}).encode()
                request = urllib.request.Request(tv.url + "v1/commands", body, {"Content-Type": "application/json"})
                with urllib.request.urlopen(request) as answer:
                    schema.validate(json.load(answer))
        for event in events:
            schema.validate(event.data)
            seen.add(event.type)
            if event.type == "device_command":
                tv.command("sim driver confirm", str(event.data["device_command"]["number"]))
            if event.data.get("command") == "do bedside-lamp":
                break
    assert seen >= {"hello", "report", "command", "device_command", "sim"}
    for left_out in (
        {"lost": 3},
        {"command": "x", "succeeded": True, "output": [], "reports": [], "reports_left_out": 2},
    ):
        schema.validate(left_out)


def test_the_same_with_asyncio() -> None:
    async def run() -> None:
        async with await homeloom.aio.start(arguments=["--hub", "off"]) as tv:
            events = tv.events()
            assert (await anext(events)).type == "hello"
            await asyncio.gather(tv.do("washer"), tv.wait_for_state("washer", "Washing*"))
            async for event in events:
                if event.name == "hl_device_state_updated":
                    assert event.properties["device_id"] == "washer"
                    break
            with pytest.raises(TimeoutError, match="toaster isn't there"):
                await tv.wait_for_state("toaster", "*", timeout=0.1)
            with pytest.raises(homeloom.CommandFailed):
                await tv.request("no_such_request")

    asyncio.run(run())


def test_a_lamp_that_is_a_program(homeloom_tv: homeloom.TV) -> None:
    tv = homeloom_tv
    environment = {**os.environ, "PYTHONPATH": str(README.parent)}
    command = [sys.executable, str(README.parent / "examples/lamp.py"), tv.url, "ceiling-light"]
    with subprocess.Popen(command, env=environment, stdout=subprocess.PIPE, text=True) as lamp:
        assert lamp.stdout is not None and lamp.stdout.readline() == "(dark)\n"
        assert tv.do("ceiling-light").reports
        assert lamp.stdout.readline() == "********\n" and tv.device("ceiling-light").state_text == "On · 80%"
        assert tv.request("hl_execute_scene", location_id="home", scene_id="movie-time")["result"] is True
        assert lamp.stdout.readline() == "**\n"
        tv.wait_for_state("ceiling-light", "On · 20%")
        lamp.send_signal(signal.SIGINT)
    assert lamp.returncode == 0
    assert not tv.command("sim driver").output[0].startswith("driven")


def test_a_tv_that_cannot_start_or_is_gone_is_told(tmp_path: pathlib.Path) -> None:
    (tmp_path / "home.json").write_text("{}")
    with pytest.raises(homeloom.ProgramError, match="home.json: account: expected an object"):
        homeloom.start(home=tmp_path / "home.json")
    tv = homeloom.start()
    events = tv.events()
    threading.Thread(target=tv.close).start()
    with pytest.raises(ConnectionError):
        while True:
            next(events)


@pytest.mark.parametrize("example", re.findall(r"```python\n(.*?)```", README.read_text(), re.DOTALL))
def test_the_examples_of_the_readme_run(example: str, tmp_path: pathlib.Path, pytester: pytest.Pytester) -> None:
    if "def test_" in example:
        pytester.makeconftest('pytest_plugins = ["homeloom.pytest_plugin"]')
        pytester.makepyfile(example)
        pytester.runpytest_inprocess().assert_outcomes(passed=1)
    else:
        exec(compile(example, str(README), "exec"), {"__name__": "__main__"})
