"""Bytes as they come from a wire, cut into messages."""

from __future__ import annotations

from collections.abc import Iterable, Iterator

from bda._answers import Found, Lost
from bda._native import Bytes, Callbacks, CData, Handle, ffi, native, outcome, view


class Joiner(Handle):
    """Cuts bytes, in pieces of any size, into messages. Every byte is part of a message or told as lost."""

    _close = "bda_joiner_close"

    def __init__(self) -> None:
        self._pieces: list[Found | Lost] = []
        self._callbacks = Callbacks()
        # C has these as long as the handle.
        self._visit = self._callbacks.of("bda_visit", self._found)
        self._drop = self._callbacks.of("bda_drop", self._lost)
        out = ffi.new("bda_joiner**")
        outcome(native().bda_joiner_new(self._visit, self._drop, ffi.NULL, out)).settle(())
        self._own(out[0])

    def feed(self, data: Bytes) -> list[Found | Lost]:
        """What these bytes end, in the order of the stream."""
        with self._callbacks:
            code = native().bda_joiner_feed(self._open, *view(data))
        return self._taken(code)

    def finish(self) -> list[Found | Lost]:
        """The stream ends: what had begun is lost. What is fed afterwards begins anew, its offsets go on."""
        with self._callbacks:
            code = native().bda_joiner_finish(self._open)
        return self._taken(code)

    def _found(self, _: CData, number: int, offset: int, message: CData, size: int) -> None:
        self._pieces.append(Found(bytes(ffi.buffer(message, size)), number, offset))

    def _lost(self, _: CData, offset: int, size: int, reason: CData) -> None:
        self._pieces.append(Lost(offset, size, bytes(ffi.string(reason)).decode()))

    def _taken(self, code: int) -> list[Found | Lost]:
        pieces, self._pieces = self._pieces, []
        return outcome(code).settle(pieces)


def cut(chunks: Iterable[Bytes]) -> Iterator[Found | Lost]:
    """The messages of a stream and what is lost of it, each as soon as it is known: `cut(iter(read, b""))`."""
    with Joiner() as joiner:
        for chunk in chunks:
            yield from joiner.feed(chunk)
        yield from joiner.finish()
