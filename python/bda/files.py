"""Files of messages, in memory."""

from __future__ import annotations

import os
from collections.abc import Iterator
from pathlib import Path
from typing import Any, NamedTuple, TypeAlias

from bda._answers import Answer, Found, Json, parsed
from bda._native import Asked, Bytes, Callbacks, CData, ffi, native, options, outcome, taken, text, view

#: The name of a file.
FileName: TypeAlias = str | os.PathLike[str]


class Salvaged(NamedTuple):
    """What was kept of broken captures: messages, requests for what is lost, and what became of each unit."""

    whole: bytes
    requests: bytes
    units: Answer[Json]


class Converted(NamedTuple):
    """Messages in another form, and what each unit has become."""

    data: bytes
    units: Answer[Json]


class Files(Asked):
    """One or more files: .syx, .mid, .rmi, or text of hex digits. Messages are numbered through all of them.

        with bda.Files("a.syx", "b.mid") as files:
            for message in files:
                print(message.number, message.offset, message.hex(" "))
    """

    _close = "bda_files_close"
    _error = "bda_files_error"

    def __init__(self, *paths: FileName) -> None:
        out = ffi.new("bda_files**")
        outcome(native().bda_files_new(out)).settle(())
        self._own(out[0])
        for path in paths:
            self.add(os.fsencode(path).decode(errors="replace"), Path(path).read_bytes())

    def add(self, name: str, data: Bytes) -> None:
        """Adds a file, which answers call `name`. `Unusable` for what is no file of messages: it is not added."""
        self._call("bda_files_add", text(name, "the name"), *view(data)).settle(())

    def name_parameters(self, names: str | None) -> None:
        """The text of a file of names, for explain(); None: none."""
        self._call("bda_files_name_parameters", ffi.NULL if names is None else text(names, "names")).settle(())

    def messages(self, *, strict: bool = True) -> Answer[Found]:
        """Each message. `Refused` where bytes are lost in a way that breaks a message or a file."""
        found: list[Found] = []

        def visit(_: CData, number: int, offset: int, message: CData, size: int) -> None:
            found.append(Found(bytes(ffi.buffer(message, size)), number, offset))

        with Callbacks() as callbacks:
            became = self._call("bda_files_each", callbacks.of("bda_visit", visit), ffi.NULL)
        return became.settle(Answer(found, became.problems), strict)

    def __iter__(self) -> Iterator[Found]:
        return iter(self.messages())

    def listing(self, *, strict: bool = True) -> Answer[Json]:
        """What each message is, as `bda list --json`. `Refused` where one is broken or bytes are lost."""
        return self._ask("bda_files_list", strict=strict)

    def verify(self, *, strict: bool = True) -> Answer[Json]:
        """Each message and each unit, as `bda verify --json`. `Refused` where something is broken."""
        return self._ask("bda_files_verify", strict=strict)

    def explain(
        self, offset: int = 0, count: int | None = None, *, file: int = 0, strict: bool = True
    ) -> Answer[Json]:
        """What the bytes of a file are, `count` of them from `offset` on; None: all. `file` counts from 0."""
        return self._ask("bda_files_explain", file, offset, 2**64 - 1 if count is None else count, strict=strict)

    def salvage(self, *, strict: bool = True, **members: Any) -> Salvaged:
        """What is whole, as a backup has it. Options: prefer, merge, fix_checksums. `Refused`: something is lost."""
        whole, requests = ffi.new("uint8_t**"), ffi.new("uint8_t**")
        whole_size, requests_size, out = ffi.new("size_t*"), ffi.new("size_t*"), ffi.new("char**")
        became = self._call("bda_files_salvage", options(members), whole, whole_size, requests, requests_size, out)
        parts = taken(whole, whole_size), taken(requests, requests_size), taken(out)
        if parts[2] is None:
            return became.settle(None)
        units = Answer(parsed(parts[2]), became.problems)
        return became.settle(Salvaged(parts[0] or b"", parts[1] or b"", units), strict)

    def convert(self, *, strict: bool = True, **members: Any) -> Converted:
        """The same messages in another form or to other places. Options: format, place, select, device, pause."""
        data, size, out = ffi.new("uint8_t**"), ffi.new("size_t*"), ffi.new("char**")
        became = self._call("bda_files_convert", options(members), data, size, out)
        converted, lines = taken(data, size), taken(out)
        if converted is None:
            return became.settle(None)
        return became.settle(Converted(converted, Answer(parsed(lines or b""), became.problems)), strict)

def verify(*paths: FileName, strict: bool = True) -> Answer[Json]:
    """Each message and each unit of files, as `bda verify --json`. `Refused` where something is broken."""
    with Files(*paths) as files:
        return files.verify(strict=strict)


def explain(path: FileName, offset: int = 0, count: int | None = None, *, strict: bool = True) -> Answer[Json]:
    """What the bytes of a file are, `count` of them from `offset` on, as `bda explain FILE --json`; None: all."""
    with Files(path) as files:
        return files.explain(offset, count, strict=strict)
