"""The schemas say of documents what the program does with them. Run by ctest, which names the program."""

import copy
import json
import os
import pathlib
import subprocess
import tempfile
import unittest
from typing import Any

import jsonschema

PROGRAM = os.environ["HOMELOOM_TV"]
HOMES = pathlib.Path(os.environ["HOMELOOM_HOMES_DIR"])

GOOD: Any = {
    "$schema": "home.json",
    "_comment": {"any": "thing"},
    "account": {"login_id": "a@home.example", "user_id": "u", "access_token": "t"},
    "locations": [{"id": "l", "name": "L", "_comment": 1, "rooms": [{"id": "r", "name": "R"}]}],
    "models": [
        {
            "vid": "m",
            "types": ["oic.d.light"],
            "resources": {"/x": {"on": True, "level": 5, "options": {"type": "Object", "value": {}}}, "_comment": ""},
            "reactions": [{"when": {"/x": {"on": None}}, "set": {"/x": {"level": 9}}, "after_ms": 10}],
            "commands": [{"capability": "switch", "command": "on", "set": {"/x": {"on": True}}}],
            "confirms": [
                {"when": {"/x": {"on": None}}, "refuses": True, "after_ms": 10, "set": {"/x": {"level": None}}}
            ],
        }
    ],
    "devices": [{"id": "d", "vid": "m", "location": "l", "status": "hidden", "resources": {"/x": {"level": 7}}}],
    "scenes": [
        {"id": "s", "location": "l", "document": {}, "actions": [{"device": "d", "set": {"/x": {"on": False}}}]}
    ],
}
GONE = object()

# Where the good document is changed to what, and whether the result has the right form and loads.
CHANGES: list[tuple[str, Any, bool, bool]] = [
    ("devices.0.energy_this_month", 12, True, True),
    ("devices.0.energy_this_month", 12.0, True, True),
    ("devices.0.energy_this_month", 12.5, False, False),
    ("devices.0.energy_this_month", 2**31, False, False),
    ("devices.0.status", "asleep", False, False),
    ("devices.0.nick", None, False, False),
    ("devices.0.types", ["oic.d.light", 3], False, False),
    ("devices.0.colour", "red", False, False),
    ("devices.0.id", "", False, False),
    ("devices.0.id", GONE, False, False),
    ("devices.0.location", GONE, False, False),
    ("devices.0.resources", ["/x"], False, False),
    ("devices.0.core", {"type": "light", "icons": [1]}, True, True),
    ("devices", {}, False, False),
    ("account", GONE, False, False),
    ("account.login_id", GONE, False, False),
    ("locations.0.favorites_migrated", {"date": 5}, False, False),
    ("models.0", 5, False, False),
    ("models.0.vid", GONE, False, False),
    ("models.0.resources./x.options", {"type": "Object"}, False, False),
    ("models.0.resources./x.on", [None], True, True),
    ("models.0.reactions.0.when", GONE, False, False),
    ("models.0.commands.0.set", [], False, False),
    ("models.0.confirms.0.refuses", "yes", False, False),
    ("models.0.confirms.0.set", {"/x": {"lvel": 9}}, True, False),
    ("scenes.0.document", GONE, False, False),
    ("scenes.0.document", None, True, True),
    ("key_values", {"theme": 1}, False, False),
    ("third_party_notification", "yes", False, False),
    ("", [], False, False),
    # What a form can't tell
    ("devices.0.vid", "other", True, False),
    ("devices.0.room", "attic", True, False),
    ("devices.0.resources./x.level", "high", True, False),
    ("models.0.types", GONE, True, False),
    ("models.0.reactions.0.when", {"/x": {"on": True, "level": 1}}, True, False),
    ("scenes.0.actions.0.device", "e", True, False),
]


def changed(path: str, value: Any) -> Any:
    document = copy.deepcopy(GOOD)
    if not path:
        return value
    *way, last = (int(step) if step.isdigit() else step for step in path.split("."))
    place = document
    for step in way:
        place = place[step]
    if value is GONE:
        del place[last]
    else:
        place[last] = value
    return document


def run(*arguments: str) -> "subprocess.CompletedProcess[str]":
    return subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, check=False)


def validator(name: str) -> Any:
    schema = json.loads(run("--schema", name).stdout)
    jsonschema.Draft202012Validator.check_schema(schema)
    return jsonschema.Draft202012Validator(schema)


class SchemaTest(unittest.TestCase):
    def test_homes_are_judged_as_the_loader_judges_them(self) -> None:
        schema = validator("home")
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder, "home.json")
            for path, value, fits, loads in [("scenes.0.id", "s", True, True), *CHANGES]:
                document = changed(path, value)
                file.write_text(json.dumps(document))
                result = run("--home", str(file), "--hub", "off", "--exec", "help help")
                with self.subTest(path=path, value=value, said=result.stderr):
                    self.assertEqual(schema.is_valid(document), fits)
                    self.assertEqual(result.returncode, 0 if loads else 2)

    def test_the_apartment_and_its_models_fit(self) -> None:
        validator("home").validate(json.loads((HOMES / "apartment.json").read_text()))
        model = validator("model")
        for file in sorted((HOMES / "models").glob("*.json")):
            model.validate(json.loads(file.read_text()))

    def test_the_catalogue_fits_and_its_requests_answer_as_it_says(self) -> None:
        catalogue = json.loads(run("--catalogue").stdout)
        validator("catalogue").validate(catalogue)
        examples = [request["example"] for request in catalogue["requests"] if request.get("answer", {}).get("tied")]
        commands = ["do washer", *examples[:8], *examples[12:17]]
        options = [word for command in commands for word in ("--exec", command)]
        schema = validator("event")
        seen = set()
        for mode in ("--json", "--json --settled"):
            for line in run(*mode.split(), *options).stdout.splitlines():
                event = json.loads(line)
                schema.validate(event)
                seen.add(event.get("call", next(iter(event))))
        self.assertEqual(seen, {"load_result", "device_list", "notify", "result", "home", "command"})
        for wrong in (
            {"call": "notify", "name": "sign_in_state_changed", "properties": {"is_sign_in": 1}},
            {"call": "notify", "name": "sign_in_state_changed", "properties": {"signed_in": True}},
            {"call": "notify", "name": "no_such_notify", "properties": {}},
            {"command": "do washer", "succeeded": True},
        ):
            self.assertFalse(schema.is_valid(wrong), wrong)


if __name__ == "__main__":
    unittest.main()
