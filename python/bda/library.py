"""A library: what an instrument holds, on disk or in memory."""

from __future__ import annotations

import json
import os
from collections.abc import Callable, Mapping
from typing import Any, NamedTuple

from bda._answers import Answer, Json, Lost, Sent, SysexMessage, parsed
from bda._errors import Error, Unusable
from bda._native import Asked, Bytes, Callbacks, CData, Outcome, ffi, native, options, outcome, taken, text, view
from bda.files import FileName, Files
from bda.stream import cut


class Backup(NamedTuple):
    """The whole of a library as messages, and what is in them."""

    data: bytes
    manifest: Json


def _bytes_of(data: Bytes | SysexMessage) -> Bytes:
    if isinstance(data, bytes | bytearray | memoryview):
        return data
    kind = getattr(data, "type", None)
    if kind is None:
        raise TypeError(f"bytes or a message of mido, not {type(data).__name__}")
    if kind != "sysex":
        raise Unusable(f"{kind} is no System Exclusive message")
    return bytes(data.bytes())


def _joined(places: tuple[str, ...]) -> bytes:
    return text(" ".join(places), "a place")


class Library(Asked):
    """What an instrument holds. It takes its messages, answers its requests, and shows and changes its contents.

        with bda.Library("library.db") as library:
            library.receive(open("dump.syx", "rb").read())
            voice = library.show("voice:user1:6")

    `path`: the file; one that does not exist is made by the first change. None: in memory, gone when it is closed.
    `read_only`: it must exist, and nothing is written.

    Places are written as on the command line of `bda`: "voice:user1:6", "voice:user1:1..16", "voice:user1", "0E 0A 05".
    Each change is one entry of the history and on disk when its method returns, or nothing is changed; it answers with
    an object for each place that holds something else than before.
    """

    _close = "bda_library_close"
    _error = "bda_library_error"
    #: What was refused or broken in the files of which it was made, with `strict=False`.
    problems: tuple[str, ...] = ()

    def __init__(self, path: FileName | None = None, *, read_only: bool = False) -> None:
        name: Any = ffi.NULL if path is None else os.fsencode(path)
        if path is not None and b"\0" in name:
            raise Unusable("the path has a NUL in it")
        out = ffi.new("bda_library**")
        code = native().bda_library_open(name, native().BDA_OPEN_READ if read_only else 0, out)
        self._begin(out[0], code)

    def _begin(self, handle: CData, code: int) -> None:
        if handle == ffi.NULL:
            outcome(code).settle(None)
        self._own(handle)
        became = outcome(code, ffi.string(native().bda_library_error(handle)).decode())
        try:
            became.settle(())
        except Error:
            self.close()
            raise

    @classmethod
    def of_files(cls, files: Files, *, strict: bool = True) -> Library:
        """One in memory that has received all dumps of the files, whatever device they are for.

        `Refused` where something was refused or broken; its `answer` is the library with all the rest.
        """
        out = ffi.new("bda_library**")
        became = files._call("bda_library_of_files", out)
        if out[0] == ffi.NULL:
            return became.settle(None)
        library = cls.__new__(cls)
        library._own(out[0])
        library.problems = tuple(became.problems)
        return became.settle(library, strict)

    @property
    def entry(self) -> int:
        """The number of the entry of the history that the last change by this object is; 0: it has changed nothing."""
        return int(native().bda_library_entry(self._open))

    def copy(self) -> Library:
        """A copy in memory: what is changed there tells what the same call would do here."""
        out = ffi.new("bda_library**")
        became = self._call("bda_library_clone", out)
        library = type(self).__new__(type(self))
        if out[0] != ffi.NULL:
            library._own(out[0])
        return became.settle(library)

    def name_parameters(self, names: str | None) -> None:
        """The text of a file of names: parameters and values have these from now on. None: no names."""
        self._call("bda_library_name_parameters", ffi.NULL if names is None else text(names, "names")).settle(())

    # ---- What comes and goes

    def receive(
        self,
        data: Bytes | SysexMessage,
        *,
        port: int = 1,
        send: Callable[[Sent], object] | None = None,
        strict: bool = True,
    ) -> Answer[Json]:
        """Hands messages to the instrument, one after another, as if they had come on that port (1 is the main one).

        `data`: one message or several, F0 to F7 each, or a sysex message of mido. What a message stores is on disk
        before the next is handed over; in the history they are one entry. The answer has a line of the trace for each.
        `send` gets what the instrument sends for a message when that was handled; what it raises comes out of this, and
        leaves the rest unhandled.

        `Refused` where the instrument refused a message, where one is broken, or where bytes are in no message: that is
        raised when all the others were handled. `Failed` ends it at once: that message has changed nothing.
        """
        lines: list[Json] = []
        problems: list[str] = []
        for piece in cut([_bytes_of(data)]):
            if isinstance(piece, Lost):
                problems.append(str(piece))
                continue
            became, line, sent = self._handle_one(piece, port)
            lines += line
            if send is not None:
                for message in sent:
                    send(message)
            problems += [f"message {piece.number}: {problem}" for problem in became.problems]
            if became.result != "BDA_REFUSED":
                became.settle(Answer(lines, problems))
        return Outcome("BDA_REFUSED" if problems else "BDA_OK", "\n".join(problems)).settle(
            Answer(lines, problems), strict
        )

    def _handle_one(self, message: bytes, port: int) -> tuple[Outcome, list[Json], list[Sent]]:
        out = ffi.new("char**")
        sent, became = self._sending("bda_library_handle", port, *view(message), after=(out,))
        return became, parsed(taken(out) or b""), sent

    def request(self, *places: str, strict: bool = True) -> Answer[Sent]:
        """The messages that the instrument sends when it is asked for these places, as `bda request`.

        `Refused` where some place is not answered, for nothing is stored there; its `answer` has those of the others.
        """
        sent, became = self._sending("bda_library_request", _joined(places))
        return became.settle(Answer(sent, became.problems), strict)

    def _sending(self, function: str, *arguments: Any, after: tuple[Any, ...] = ()) -> tuple[list[Sent], Outcome]:
        sent: list[Sent] = []

        def send(_: CData, port: int, message: CData, size: int) -> None:
            sent.append(Sent(bytes(ffi.buffer(message, size)), port))

        with Callbacks() as callbacks:
            became = self._call(function, *arguments, callbacks.of("bda_send", send), ffi.NULL, *after)
        return sent, became

    def restore(self, files: Files, *, any_device: bool = False) -> Answer[Json]:
        """Receives all dumps of the files, or none of them: where one is broken or refused, or a unit is open here."""
        chosen = options({"any_device": any_device or None})
        return self._ask("bda_library_restore", files._open, chosen)

    def backup(self, *, strict: bool = True) -> Backup:
        """The whole of it as messages, as `bda backup`. `Refused` where something is not in the backup."""
        data, size, manifest = ffi.new("uint8_t**"), ffi.new("size_t*"), ffi.new("char**")
        became = self._call("bda_library_backup", data, size, manifest)
        messages, words = taken(data, size), taken(manifest)
        if messages is None or words is None:
            return became.settle(None)
        return became.settle(Backup(messages, json.loads(words)), strict)

    # ---- What it holds

    def contents(self, *places: str, strict: bool = True) -> Answer[Json]:
        """What it holds, as `bda contents --json`: everything, or what stands in these places."""
        return self._ask("bda_library_contents", _joined(places) if places else ffi.NULL, strict=strict)

    def show(self, target: str) -> Json:
        """The parameters of one target, as `bda show --json`; apply() takes them back."""
        shown = self.show_all(target)
        if len(shown) != 1 or "target" in shown[0]:
            raise Unusable(f"{target} is not one target, but several: show_all() shows them", shown)
        return shown[0]

    def show_all(self, *targets: str, strict: bool = True) -> Answer[Json]:
        """The parameters of several targets, banks or ranges; each object says of which `target`."""
        return self._ask("bda_library_show", _joined(targets), strict=strict)

    def find(self, *terms: str, strict: bool = True, **members: Any) -> Answer[Json]:
        """Contents by what is asked of them, as `bda find --json`. `Refused` where nothing is found.

        Options: kind, where (conditions), favourite, same_as, like, duplicates, edit_buffers.
        """
        chosen = options({**members, "terms": list(terms) or None})
        return self._ask("bda_library_find", chosen, strict=strict)

    def diff(self, other: Library, *, strict: bool = True) -> Answer[Json]:
        """What two libraries do not have in common, as `bda diff --json`. `Refused` where they differ."""
        return self._ask("bda_library_diff", other._open, strict=strict)

    def explain(self, place: str, path: str) -> Answer[Json]:
        """The data bytes that carry a parameter, as `bda explain ADDRESS PATH --json`."""
        return self._ask("bda_library_explain", text(place, "the place"), text(path, "the path"))

    def check(self, *, strict: bool = True) -> Answer[Json]:
        """Whether everything in it can be read, as `bda check --json`. `Refused` where something is damaged."""
        return self._ask("bda_library_check", strict=strict)

    def history(self, most: int = 0, *, strict: bool = True) -> Answer[Json]:
        """The newest entries of its history, as `bda history --json`; 0: all of them."""
        return self._ask("bda_library_history", most, strict=strict)

    def settings(self) -> dict[str, str]:
        """Its settings, by their names."""
        return {line["setting"]: line["value"] for line in self._ask("bda_library_settings", ffi.NULL)}

    def setting(self, name: str) -> str:
        """One of its settings."""
        value: str = self._ask("bda_library_settings", text(name, "the name"))[0]["value"]
        return value

    # ---- Changes

    def apply(self, target: str, parameters: Mapping[str, Any]) -> Answer[Json]:
        """Replaces a whole target by what show() has shown, changed or not."""
        try:
            chosen = json.dumps(parameters, allow_nan=False).encode()
        except (TypeError, ValueError, RecursionError) as error:
            raise Unusable(f"the parameters are no JSON: {error}") from error
        return self._ask("bda_library_apply", text(target, "the target"), chosen)

    def rename(self, place: str, name: str) -> Answer[Json]:
        """Gives a content or an edit buffer another name."""
        return self._ask("bda_library_rename", text(place, "the place"), text(name, "the name"))

    def favourite(self, *places: str, on: bool = True) -> Answer[Json]:
        """Makes voices favourites, or no longer."""
        return self._ask("bda_library_favourite", _joined(places), int(on))

    def copy_places(self, source: str, to: str, *, strict: bool = True) -> Answer[Json]:
        """What `source` holds, to `to`: a place, a bank or a range each. `Refused`: what is damaged was left there."""
        return self._ask("bda_library_copy_places", text(source, "the source"), text(to, "to"), strict=strict)

    def move_places(self, source: str, to: str, *, strict: bool = True) -> Answer[Json]:
        """The same, and empties `source`."""
        return self._ask("bda_library_move_places", text(source, "the source"), text(to, "to"), strict=strict)

    def swap_places(self, source: str, to: str, *, strict: bool = True) -> Answer[Json]:
        """What `source` holds, to `to`, and the other way round."""
        return self._ask("bda_library_swap_places", text(source, "the source"), text(to, "to"), strict=strict)

    def remove(self, *places: str) -> Answer[Json]:
        """Removes what stands there."""
        return self._ask("bda_library_remove", _joined(places))

    def undo(self, entry: int = 0, *, force: bool = False) -> Answer[Json]:
        """Takes an entry of the history back; 0: the newest that is neither undone nor an undo.

        `force`: though places changed since.
        """
        return self._ask("bda_library_undo", entry, int(force))

    def set(self, name: str, value: str) -> Answer[Json]:
        """Sets a setting: "device-number", "6"."""
        return self._ask("bda_library_set", text(name, "the name"), text(value, "the value"))


def places() -> list[Json]:
    """The banks of contents that an instrument has: `bank`, `kind`, `first` and `last` place, and how many `places`."""
    out = ffi.new("char**")
    return outcome(native().bda_places(out)).settle(parsed(taken(out) or b""))
