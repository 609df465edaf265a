"""Talks to a desk TV, `homeloom-tv --serve PORT`.

    import homeloom

    with homeloom.start() as tv:
        tv.do("washer")
        tv.wait_for_state("washer", "Washing*")

`connect` talks to a desk TV that runs already; `homeloom.aio` has both for asyncio.
"""

from ._client import TV, Events, connect
from ._program import Program, ProgramError, start
from ._protocol import Answer, CommandFailed, CommandResult, Device, DoorError, Event, Value

__version__ = "1.0.0"
__all__ = [
    "TV",
    "Answer",
    "CommandFailed",
    "CommandResult",
    "Device",
    "DoorError",
    "Event",
    "Events",
    "Program",
    "ProgramError",
    "Value",
    "connect",
    "start",
]
