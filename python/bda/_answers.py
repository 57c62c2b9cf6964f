"""What is answered."""

from __future__ import annotations

import json
from collections.abc import Iterable
from typing import TYPE_CHECKING, Any, NamedTuple, Protocol, TypeAlias, TypeVar

if TYPE_CHECKING:
    import mido

T = TypeVar("T")

#: One object of an answer, as docs/json.md describes those of the program's verb of the same name.
Json: TypeAlias = dict[str, Any]


class Answer(list[T]):
    """A list, and in `problems` what of it is missing or wrong, in words; empty: nothing.

    Problems are raised, as `Refused`, unless one asks with `strict=False`.
    """

    def __init__(self, items: Iterable[T] = (), problems: Iterable[str] = ()) -> None:
        super().__init__(items)
        self.problems = tuple(problems)


def parsed(lines: bytes) -> list[Json]:
    """JSON, an object on each line."""
    return [json.loads(line) for line in lines.splitlines()]


class Message(bytes):
    """A System Exclusive message, F0 and F7 included."""

    def mido(self) -> mido.Message:
        """The same for mido, which is imported for it."""
        from mido import Message as MidoMessage

        return MidoMessage.from_bytes(self)


class Sent(Message):
    """A message that the instrument sends, on that port: 1, 4, 5 or 6."""

    port: int

    def __new__(cls, data: bytes, port: int = 1) -> Sent:
        self = super().__new__(cls, data)
        self.port = port
        return self


class Found(Message):
    """A message in a file or a stream: its number from 1, and the offset of its F0."""

    number: int
    offset: int

    def __new__(cls, data: bytes, number: int = 1, offset: int = 0) -> Found:
        self = super().__new__(cls, data)
        self.number = number
        self.offset = offset
        return self


class Lost(NamedTuple):
    """Bytes of a stream that became no message: where the first stands, how many there are, and why."""

    offset: int
    size: int
    reason: str

    def __str__(self) -> str:
        return f"{self.size} bytes at offset {self.offset}: {self.reason}"


class SysexMessage(Protocol):
    """A message of mido, or of whoever has the same: its type is "sysex"."""

    type: str

    def bytes(self) -> list[int]:
        """All its bytes, F0 and F7 included."""
