"""The client for programs with threads, or with one."""

import http.client
import socket
import time
import urllib.parse
from typing import Any, Self

from . import _protocol as protocol
from ._protocol import Answer, CommandResult, Device, Event


# The door says something every 15 seconds; a connection that is silent for so many is lost.
SILENCE = 45.0


class Events(protocol.Closing):
    """The events of a TV from now on, as an iterator without end. The first one is `hello`, the state of everything.

    A connection that is lost is made anew, without a gap; ConnectionError tells that the TV is gone.
    """

    def __init__(self, tv: "TV") -> None:
        self._tv = tv
        self._parser = protocol.EventParser()
        self._last: int | None = None
        self._closed = False
        self._open()

    def __iter__(self) -> Self:
        return self

    def __next__(self) -> Event:
        return self.next(None)

    def next(self, timeout: float | None) -> Event:
        """The next event; TimeoutError if none comes for so many seconds."""
        deadline = None if timeout is None else time.monotonic() + timeout
        while not self._closed:
            line = self._line(deadline)
            if line is None:
                self._open()
                continue
            event = self._parser.line(line)
            if event is not None:
                self._last = event.id
                return event
        raise StopIteration

    def close(self) -> None:
        self._closed = True
        self._response.close()
        self._connection.close()

    def _open(self) -> None:
        headers = {} if self._last is None else {"Last-Event-ID": str(self._last)}
        self._connection = self._tv._connection()
        self._response = self._tv._ask(self._connection, "GET", "/v1/events", None, headers)
        if self._response.status != 200:
            protocol.read_document(self._response.status, self._response.read())
        self._begun = b""
        self._parser = protocol.EventParser()

    def _line(self, deadline: float | None) -> str | None:
        """The next line; None when the connection has ended."""
        while b"\n" not in self._begun:
            left = float("inf") if deadline is None else deadline - time.monotonic()
            if left <= 0:
                raise TimeoutError("no event came in time")
            try:
                self._socket().settimeout(min(left, SILENCE))
                more = self._response.read1()
            except TimeoutError:
                if left > SILENCE:
                    return None
                raise TimeoutError("no event came in time") from None
            except (OSError, http.client.HTTPException):
                return None
            if not more:
                return None
            self._begun += more
        line, _, self._begun = self._begun.partition(b"\n")
        return line.decode().removesuffix("\r")

    def _socket(self) -> socket.socket:
        if self._connection.sock is None:
            raise OSError("the connection has ended")
        sock: socket.socket = self._connection.sock
        return sock


class TV(protocol.Closing):
    """A desk TV. Of any thread: each request has a connection of its own."""

    def __init__(self, url: str, token: str | None = None, timeout: float = 60) -> None:
        parts = urllib.parse.urlsplit(url)
        self.url = url
        self._address = (parts.hostname or "127.0.0.1", parts.port or 80)
        self._headers = protocol.headers(token)
        self._timeout = timeout

    def command(self, *words: str) -> CommandResult:
        """Runs a command of the console: command("sim set", "washer", "state=Ready"). Raises CommandFailed."""
        return protocol.read_result(self._exchange("POST", "/v1/commands", protocol.command_body(words)))

    def do(self, device: str) -> CommandResult:
        """Runs the main action of a device, as OK on its card does."""
        return self.command("do", device)

    def request(self, name: str, **arguments: Any) -> Answer:
        """Sends a request to the plug-in and waits for its answer. Raises CommandFailed if it wasn't carried out."""
        return protocol.answer_of(self.command("request", name, *protocol.assignments(arguments)))

    def set(self, device: str, **values: Any) -> CommandResult:
        """Changes values as somebody at the device would: set("washer", state="Ready")."""
        return self.command("sim set", device, *protocol.assignments(values))

    def home(self) -> dict[str, Any]:
        """Everything on the screen: locations, devices, scenes and routines."""
        home: dict[str, Any] = self._exchange("GET", "/v1/home")["home"]
        return home

    def device(self, device_id: str) -> Device:
        """Raises DoorError with status 404 if there is none."""
        return protocol.read_device(self._exchange("GET", protocol.device_path(device_id)))

    def catalogue(self) -> dict[str, Any]:
        """All requests, notifies, endpoint fields and commands that there are."""
        return self._exchange("GET", "/v1/catalogue")

    def events(self) -> Events:
        """All that happens from now on."""
        return Events(self)

    def wait_for_state(self, device_id: str, pattern: str, timeout: float = 10) -> Device:
        """Waits until the device's state text is of the pattern ("Washing*"). Raises TimeoutError."""
        deadline = time.monotonic() + timeout
        device: Device | None = None
        with self.events() as events:
            try:
                while True:
                    event = events.next(deadline - time.monotonic())
                    if protocol.changes_device(event, device_id):
                        device = self._device_if_there(device_id)
                        if device is not None and device.matches(pattern):
                            return device
            except TimeoutError:
                raise protocol.not_in_time(device_id, pattern, device) from None

    def close(self) -> None:
        """Does nothing: no connection outlives its request. The clients that own a TV stop it here."""

    def _device_if_there(self, device_id: str) -> Device | None:
        try:
            return self.device(device_id)
        except protocol.DoorError as error:
            if error.status != 404:
                raise
            return None

    def _connection(self) -> http.client.HTTPConnection:
        return http.client.HTTPConnection(*self._address, timeout=self._timeout)

    def _ask(
        self,
        connection: http.client.HTTPConnection,
        method: str,
        path: str,
        body: bytes | None,
        headers: dict[str, str],
    ) -> http.client.HTTPResponse:
        if body is not None:
            headers = {**headers, "Content-Type": "application/json"}
        connection.request(method, path, body, {**self._headers, **headers})
        return connection.getresponse()

    def _exchange(self, method: str, path: str, body: bytes | None = None) -> dict[str, Any]:
        connection = self._connection()
        try:
            response = self._ask(connection, method, path, body, {})
            return protocol.read_document(response.status, response.read())
        finally:
            connection.close()


def connect(url: str, token: str | None = None, timeout: float = 60) -> TV:
    """A desk TV that runs already. `timeout` is for each request, in seconds."""
    return TV(url, token, timeout)
