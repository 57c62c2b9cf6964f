"""The C library: where it is, how it is called, and who frees what."""

from __future__ import annotations

import functools
import json
import os
from collections.abc import Callable, Iterator, Mapping
from pathlib import Path
from types import TracebackType
from typing import Any, ClassVar, NamedTuple, TypeAlias, TypeVar

import cffi

from bda import _header
from bda._answers import Answer, Json, parsed
from bda._errors import Error, Failed, Misused, Refused, Unusable

T = TypeVar("T")
Self = TypeVar("Self", bound="Handle")
#: What C has is of no type here; cffi looks at each argument when it is handed over.
CData: TypeAlias = Any
#: Bytes, or what shares its memory as such.
Bytes: TypeAlias = bytes | bytearray | memoryview

#: The file of the C library, before all that is looked for, where it is set.
LIBRARY_VARIABLE = "BDA_EDITOR_LIBRARY"

ffi: Any = cffi.FFI()
ffi.cdef(_header.declarations())

_FILE = f"libbda-editor.so.{_header.soversion()}"
_ERRORS: dict[str, type[Error]] = {
    "BDA_FAILED": Failed,
    "BDA_UNUSABLE": Unusable,
    "BDA_REFUSED": Refused,
    "BDA_MISUSED": Misused,
}


def _places() -> Iterator[Path]:
    """Where the library may lie: beside this package, as in a wheel, or in the prefix that has the package."""
    here = Path(__file__).resolve().parent
    yield here / _FILE
    for folder in here.parents:
        if folder.name in ("lib", "lib64"):
            yield from sorted(folder.parent.glob(f"lib*/{_FILE}"))
            yield from sorted(folder.glob(f"*/{_FILE}"))


def library_file() -> str:
    """The file that is loaded. One without a folder is looked for by the system."""
    chosen = os.environ.get(LIBRARY_VARIABLE)
    return chosen or str(next((place for place in _places() if place.exists()), _FILE))


@functools.cache
def native() -> Any:
    """The functions of the library, which is loaded by the first call. Each is looked up when it is first used."""
    file = library_file()
    try:
        library: Any = ffi.dlopen(file)
    except OSError as error:
        raise Failed(f"the library cannot be loaded: {error}") from error
    version = ffi.string(library.bda_version()).decode()
    if version.rpartition(".")[0] != _header.soversion():
        raise Failed(f"{file} has version {version}: this package needs {_header.soversion()}")
    return library


def text(value: str, what: str) -> bytes:
    """A text as C takes it."""
    try:
        encoded = value.encode()
    except UnicodeEncodeError as error:
        raise Unusable(f"{what} is not UTF-8: {error.reason}") from error
    if b"\0" in encoded:
        raise Unusable(f"{what} has a NUL in it")
    return encoded


def view(data: Bytes) -> tuple[CData, int]:
    """Bytes as C takes them, and how many."""
    array = ffi.from_buffer("uint8_t[]", data)
    return array, len(array)


def options(members: Mapping[str, Any]) -> bytes:
    """Options as C takes them: `same_as` is "same-as"; None is as if it were not there."""
    named = {name.replace("_", "-"): value for name, value in members.items() if value is not None}
    try:
        return json.dumps(named, allow_nan=False).encode()
    except (TypeError, ValueError, RecursionError) as error:
        raise Unusable(f"the options are no JSON: {error}") from error


def taken(out: CData, size: CData | None = None) -> bytes | None:
    """What a call has handed out, text or that many bytes; it is freed. None: there is no answer."""
    pointer = out[0]
    if pointer == ffi.NULL:
        return None
    try:
        return bytes(ffi.string(pointer)) if size is None else bytes(ffi.buffer(pointer, size[0]))
    finally:
        native().bda_free(pointer)


class Callbacks:
    """Functions that C calls back. What the first of them raises comes out of the `with` that calls C."""

    def __init__(self) -> None:
        self._raised: BaseException | None = None

    def of(self, kind: str, function: Callable[..., None]) -> CData:
        """`function` for C, which must not call it any longer than this lives."""
        return ffi.callback(kind, function, onerror=self._keep)

    def _keep(self, _kind: Any, error: BaseException, _trace: Any) -> None:
        self._raised = self._raised or error

    def __enter__(self) -> Callbacks:
        return self

    def __exit__(self, *_: object) -> None:
        raised, self._raised = self._raised, None
        if raised is not None:
            raise raised


class Outcome(NamedTuple):
    """What became of a call: the name of its result, and what was wrong."""

    result: str
    text: str

    @property
    def problems(self) -> list[str]:
        """What was wrong, line by line."""
        return self.text.splitlines()

    def settle(self, answer: T | None, strict: bool = True) -> T:
        """The answer, or what is raised instead: only an answer with problems may be asked for all the same."""
        if self.result != "BDA_OK" and (strict or answer is None or self.result != "BDA_REFUSED"):
            raise _ERRORS[self.result](self.text, answer)
        if answer is None:
            raise Failed("there is no answer")
        return answer


def outcome(code: int, words: str = "") -> Outcome:
    """The outcome of a call that has returned that."""
    result: str = ffi.typeof("bda_result").elements[code]
    return Outcome(result, "" if result == "BDA_OK" else words or result)


class Handle:
    """What belongs to somebody until it is closed: by close(), at the end of a `with`, or when nobody has it any more.

    It is used by one thread at a time, which is the caller's duty; different ones may be used side by side.
    """

    _close: ClassVar[str]  # the function that gives it back
    _handle: CData | None = None

    def _own(self, handle: CData) -> None:
        self._handle = ffi.gc(handle, getattr(native(), self._close))

    @property
    def _open(self) -> CData:
        if self._handle is None:
            raise Misused("it is closed")
        return self._handle

    def close(self) -> None:
        """Gives it back; what is closed already may be closed again."""
        if self._handle is not None:
            ffi.release(self._handle)
            self._handle = None

    def __enter__(self: Self) -> Self:
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        self.close()


class Asked(Handle):
    """A handle that knows what was wrong with its last call."""

    _error: ClassVar[str]  # the function that says it

    def _call(self, function: str, *arguments: Any) -> Outcome:
        handle = self._open
        code = getattr(native(), function)(handle, *arguments)
        return outcome(code, ffi.string(getattr(native(), self._error)(handle)).decode())

    def _ask(self, function: str, *arguments: Any, strict: bool = True) -> Answer[Json]:
        out = ffi.new("char**")
        became = self._call(function, *arguments, out)
        lines = taken(out)
        return became.settle(None if lines is None else Answer(parsed(lines), became.problems), strict)
