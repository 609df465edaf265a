"""What both clients, for threads and for asyncio, know of the door: what is asked, and what an answer means."""

import fnmatch
import json
import urllib.parse
from collections.abc import Iterable, Mapping
from dataclasses import dataclass
from types import TracebackType
from typing import Any, Self

Value = str | int | bool
Json = dict[str, Any]


class DoorError(Exception):
    """The door refused a request; `status` is that of HTTP."""

    def __init__(self, status: int, reason: str) -> None:
        super().__init__(reason)
        self.status = status


class CommandFailed(Exception):
    """A command ran and failed; `result` is all that it told."""

    def __init__(self, result: "CommandResult") -> None:
        super().__init__(f"{result.command}: {result.error}")
        self.result = result


@dataclass(frozen=True)
class Event:
    """A message of the door: `type` is hello, report, command, lost, device_command or sim."""

    id: int
    type: str
    data: Json

    @property
    def name(self) -> str:
        """The name of what the plug-in reported; empty for other events."""
        return str(self.data.get("name", ""))

    @property
    def properties(self) -> Mapping[str, Value]:
        """What a notification or a result holds. An absent key means an empty value."""
        properties: Mapping[str, Value] = self.data.get("properties", {})
        return properties


@dataclass(frozen=True)
class Device:
    """A device as it stands on the screen."""

    id: str
    name: str
    nick: str
    type: str
    fields: Mapping[str, Value]

    @property
    def state_text(self) -> str:
        return str(self.fields.get("state_text", ""))

    @property
    def is_running(self) -> bool:
        return bool(self.fields.get("running_state", False))

    @property
    def is_active(self) -> bool:
        return self.fields.get("active_state") == 1

    @property
    def is_connected(self) -> bool:
        return self.fields.get("cloud_device_status") == 0

    def matches(self, pattern: str) -> bool:
        """Whether its state text is of the pattern, with * and ? as in file names."""
        return fnmatch.fnmatchcase(self.state_text, pattern)


@dataclass(frozen=True)
class CommandResult:
    """The end of a command: what it said, and what the plug-in reported meanwhile."""

    command: str
    succeeded: bool
    output: list[str]
    reports: list[Json]
    error: str


@dataclass(frozen=True)
class Answer:
    """The answer to a request of the plug-in. An absent key means an empty value."""

    name: str
    properties: Mapping[str, Value]

    def __getitem__(self, key: str) -> Value:
        return self.properties[key]


def headers(token: str | None) -> dict[str, str]:
    return {"Authorization": f"Bearer {token}"} if token else {}


def command_body(words: Iterable[str]) -> bytes:
    command, *arguments = words
    return json.dumps({"command": command, "arguments": arguments} if arguments else {"command": command}).encode()


def assignments(values: Mapping[str, Any]) -> list[str]:
    """The values as the console takes them: key=value, with JSON for what is no text, number or flag."""
    return [f"{key}={value if isinstance(value, str) else json.dumps(value)}" for key, value in values.items()]


def device_path(device_id: str) -> str:
    return "/v1/devices/" + urllib.parse.quote(device_id, safe="")


def read_document(status: int, body: bytes) -> Json:
    try:
        document = json.loads(body)
    except ValueError:
        raise DoorError(status, f"the answer is no JSON: {body[:80]!r}") from None
    if status >= 400:
        raise DoorError(status, document.get("error", {}).get("reason", ""))
    assert isinstance(document, dict)
    return document


def read_device(document: Json) -> Device:
    fields = dict(document)
    return Device(fields.pop("id"), fields.pop("name", ""), fields.pop("nick", ""), fields.pop("type", ""), fields)


def read_result(document: Json) -> CommandResult:
    result = CommandResult(
        document["command"],
        document["succeeded"],
        document["output"],
        document.get("reports", []),
        document.get("error", ""),
    )
    if not result.succeeded:
        raise CommandFailed(result)
    return result


def answer_of(result: CommandResult) -> Answer:
    """The report that is tied to the request; one without keys if the request has no such answer."""
    tied = [report for report in result.reports if report.get("request")]
    return Answer(tied[-1]["name"], tied[-1]["properties"]) if tied else Answer("", {})


def changes_device(event: Event, device_id: str) -> bool:
    """Whether the device may stand otherwise after the event."""
    return (
        event.type == "hello"
        or event.data.get("call") == "device_list"
        or (event.name == "hl_device_state_updated" and event.properties.get("device_id") == device_id)
    )


def not_in_time(device_id: str, pattern: str, device: Device | None) -> TimeoutError:
    state = f'says "{device.state_text}"' if device else "isn't there"
    return TimeoutError(f'{device_id} {state}, and not "{pattern}"')


class Closing:
    """What is closed at the end of a `with`."""

    def close(self) -> None:
        raise NotImplementedError

    def __enter__(self) -> Self:
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        self.close()


class EventParser:
    """Makes events of the lines of a stream."""

    def __init__(self) -> None:
        self._fields: dict[str, str] = {}

    def line(self, line: str) -> Event | None:
        if line:
            name, _, value = line.partition(":")
            self._fields[name] = value.removeprefix(" ")
            return None
        fields, self._fields = self._fields, {}
        if "data" not in fields:
            return None
        return Event(int(fields.get("id", "0")), fields.get("event", "message"), json.loads(fields["data"]))
