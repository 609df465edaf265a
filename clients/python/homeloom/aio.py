"""The client for asyncio; see `homeloom` for what everything does.

    async with await homeloom.aio.start() as tv:
        await tv.do("washer")
        async for event in tv.events():
            ...
"""

import asyncio
import os
import urllib.parse
from collections.abc import AsyncIterator, Sequence
from types import TracebackType
from typing import Any, Self

from . import _protocol as protocol
from ._program import Program
from ._protocol import Answer, CommandResult, Device, Event

__all__ = ["TV", "connect", "start"]


class _Reply:
    """An answer of the door, its body still to be read."""

    def __init__(self, reader: asyncio.StreamReader, writer: asyncio.StreamWriter) -> None:
        self._reader = reader
        self._writer = writer
        self.status = 0
        self.headers: dict[str, str] = {}

    async def read_head(self) -> None:
        self.status = int((await self._line()).split(" ", 2)[1])
        while line := await self._line():
            name, _, value = line.partition(":")
            self.headers[name.lower()] = value.strip()

    async def chunks(self) -> AsyncIterator[bytes]:
        if self.headers.get("transfer-encoding") != "chunked":
            yield await self._reader.readexactly(int(self.headers.get("content-length", "0")))
            return
        while size := int(await self._line(), 16):
            yield await self._reader.readexactly(size)
            await self._line()

    async def body(self) -> bytes:
        return b"".join([chunk async for chunk in self.chunks()])

    async def lines(self) -> AsyncIterator[str]:
        begun = b""
        async for chunk in self.chunks():
            *lines, begun = (begun + chunk).split(b"\n")
            for line in lines:
                yield line.decode().removesuffix("\r")

    def close(self) -> None:
        self._writer.close()

    async def _line(self) -> str:
        line = await self._reader.readline()
        if not line:
            raise ConnectionError("the TV has closed the connection")
        return line.decode().removesuffix("\n").removesuffix("\r")


class TV:
    """A desk TV, of one event loop."""

    def __init__(self, url: str, token: str | None = None, timeout: float = 60, program: Program | None = None) -> None:
        parts = urllib.parse.urlsplit(url)
        self.url = url
        self._host = parts.hostname or "127.0.0.1"
        self._port = parts.port or 80
        self._headers = protocol.headers(token)
        self._timeout = timeout
        self._program = program

    async def command(self, *words: str) -> CommandResult:
        return protocol.read_result(await self._exchange("POST", "/v1/commands", protocol.command_body(words)))

    async def do(self, device: str) -> CommandResult:
        return await self.command("do", device)

    async def request(self, name: str, **arguments: Any) -> Answer:
        return protocol.answer_of(await self.command("request", name, *protocol.assignments(arguments)))

    async def set(self, device: str, **values: Any) -> CommandResult:
        return await self.command("sim set", device, *protocol.assignments(values))

    async def home(self) -> dict[str, Any]:
        home: dict[str, Any] = (await self._exchange("GET", "/v1/home"))["home"]
        return home

    async def device(self, device_id: str) -> Device:
        return protocol.read_device(await self._exchange("GET", protocol.device_path(device_id)))

    async def catalogue(self) -> dict[str, Any]:
        return await self._exchange("GET", "/v1/catalogue")

    async def events(self) -> AsyncIterator[Event]:
        """All that happens, from the first step of the iteration on; the first event is `hello`."""
        last: int | None = None
        while True:
            headers = {} if last is None else {"Last-Event-ID": str(last)}
            reply = await self._ask("GET", "/v1/events", None, headers)
            try:
                if reply.status != 200:
                    protocol.read_document(reply.status, await reply.body())
                parser = protocol.EventParser()
                async for line in reply.lines():
                    event = parser.line(line)
                    if event is not None:
                        last = event.id
                        yield event
            except (ConnectionError, asyncio.IncompleteReadError):
                pass  # a connection that was lost is made anew, without a gap
            finally:
                reply.close()

    async def wait_for_state(self, device_id: str, pattern: str, timeout: float = 10) -> Device:
        device: Device | None = None
        try:
            async with asyncio.timeout(timeout):
                async for event in self.events():
                    if protocol.changes_device(event, device_id):
                        device = await self._device_if_there(device_id)
                        if device is not None and device.matches(pattern):
                            return device
        except TimeoutError:
            pass
        raise protocol.not_in_time(device_id, pattern, device)

    async def close(self) -> None:
        if self._program is not None:
            await asyncio.to_thread(self._program.stop)

    async def __aenter__(self) -> Self:
        return self

    async def __aexit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        await self.close()

    async def _device_if_there(self, device_id: str) -> Device | None:
        try:
            return await self.device(device_id)
        except protocol.DoorError as error:
            if error.status != 404:
                raise
            return None

    async def _ask(self, method: str, path: str, body: bytes | None, headers: dict[str, str]) -> _Reply:
        reader, writer = await asyncio.open_connection(self._host, self._port)
        reply = _Reply(reader, writer)
        try:
            sent = {"Host": f"{self._host}:{self._port}", **self._headers, **headers}
            if body is not None:
                sent |= {"Content-Type": "application/json", "Content-Length": str(len(body))}
            head = "".join(f"{name}: {value}\r\n" for name, value in sent.items())
            writer.write(f"{method} {path} HTTP/1.1\r\n{head}\r\n".encode() + (body or b""))
            await writer.drain()
            await reply.read_head()
        except BaseException:
            reply.close()
            raise
        return reply

    async def _exchange(self, method: str, path: str, body: bytes | None = None) -> dict[str, Any]:
        async with asyncio.timeout(self._timeout):
            reply = await self._ask(method, path, body, {"Connection": "close"})
            try:
                return protocol.read_document(reply.status, await reply.body())
            finally:
                reply.close()


def connect(url: str, token: str | None = None, timeout: float = 60) -> TV:
    """A desk TV that runs already."""
    return TV(url, token, timeout)


async def start(
    home: str | os.PathLike[str] | None = None,
    arguments: Sequence[str] = (),
    program: str | None = None,
    timeout: float = 60,
) -> TV:
    """Starts a desk TV; the end of the `async with` ends it."""
    started = await asyncio.to_thread(Program, home, arguments, program)
    return TV(started.url, timeout=timeout, program=started)
