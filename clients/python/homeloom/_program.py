"""Starts and ends desk TVs."""

import os
import pathlib
import re
import shutil
import signal
import subprocess
import threading
from collections.abc import Sequence
from types import TracebackType

from ._client import TV


class ProgramError(Exception):
    """The desk TV didn't start, or ended otherwise than well; the message holds what it said."""


def find_program() -> str:
    """What HOMELOOM_TV names, or else `homeloom-tv` on the PATH."""
    program = os.environ.get("HOMELOOM_TV") or shutil.which("homeloom-tv")
    if program is None:
        raise ProgramError("there is no homeloom-tv on the PATH, and HOMELOOM_TV names none")
    return program


class Program:
    """A desk TV that runs as a process of this one."""

    def __init__(
        self,
        home: str | os.PathLike[str] | None = None,
        arguments: Sequence[str] = (),
        program: str | None = None,
    ) -> None:
        """`home` is a home document, the apartment if none is given; `arguments` go to the program as they are."""
        command = [program or find_program(), "--serve", "0", *arguments]
        if home is not None:
            command += ["--home", str(pathlib.Path(home))]
        self._said: list[str] = []
        self._process = subprocess.Popen(
            command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True
        )
        self._has_url = threading.Event()
        self.url = ""
        self._listener = threading.Thread(target=self._listen, daemon=True)
        self._listener.start()
        self._has_url.wait()
        if not self.url:
            raise ProgramError(f"homeloom-tv ended with {self._process.wait()}:\n{self.output}")

    @property
    def output(self) -> str:
        """What it has printed so far."""
        return "".join(self._said)

    def stop(self, timeout: float = 30) -> None:
        """Ends it as a TV that is switched off. Raises ProgramError unless all went well and nothing was left behind."""
        if self._process.poll() is None:
            self._process.send_signal(signal.SIGTERM)
        try:
            status = self._process.wait(timeout)
        except subprocess.TimeoutExpired:
            self._process.kill()
            status = self._process.wait()
        self._listener.join()
        if status != 0:
            raise ProgramError(f"homeloom-tv ended with {status}:\n{self.output}")

    def __enter__(self) -> "Program":
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        self.stop()

    def _listen(self) -> None:
        assert self._process.stdout is not None
        with self._process.stdout as lines:
            for line in lines:
                self._said.append(line)
                if not self.url and re.fullmatch(r"http://\S+/\n", line):
                    self.url = line.strip()
                    self._has_url.set()
        self._has_url.set()


class _OwnTV(TV):
    """A TV that ends with its client."""

    def __init__(self, program: Program, timeout: float) -> None:
        super().__init__(program.url, timeout=timeout)
        self._program = program

    def close(self) -> None:
        self._program.stop()


def start(
    home: str | os.PathLike[str] | None = None,
    arguments: Sequence[str] = (),
    program: str | None = None,
    timeout: float = 60,
) -> TV:
    """Starts a desk TV and gives its client; `close`, or the end of a `with`, ends it. See Program."""
    return _OwnTV(Program(home, arguments, program), timeout)
