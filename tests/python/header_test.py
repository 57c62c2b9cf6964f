"""The package has what the header has."""

import re
from pathlib import Path

import bda
from bda import _header
from bda._native import ffi, native

ROOT = Path(__file__).resolve().parents[2]
PACKAGE = Path(bda.__file__).parent


def declared() -> set[str]:
    return set(re.findall(r"\b(bda_\w+)\(", _header.declarations()))


def test_the_headers_are_those_of_the_library() -> None:
    for name, of in {"editor.h": "editor", "version.h": "bulk-dump-assistant"}.items():
        assert (PACKAGE / name).read_text() == (ROOT / of / "include" / "bda" / name).read_text()


def test_every_function_that_the_library_shows_is_declared() -> None:
    symbols = (ROOT / "tests" / "installed" / "libbda-editor.symbols").read_text()
    assert declared() == set(re.findall(r"^bda_\w+", symbols, flags=re.MULTILINE))


def test_every_function_is_used_but_those_of_a_wire() -> None:
    code = "".join(file.read_text() for file in PACKAGE.glob("*.py"))
    unused = declared() - set(re.findall(r"bda_\w+", code))
    assert unused == {name for name in declared() if name.startswith("bda_wire_")}


def test_results_have_the_names_of_the_header() -> None:
    assert ffi.typeof("bda_result").elements == dict(
        enumerate(["BDA_OK", "BDA_FAILED", "BDA_UNUSABLE", "BDA_REFUSED", "BDA_MISUSED"])
    )


def test_version_is_that_of_the_library() -> None:
    assert bda.__version__ == ffi.string(native().bda_version()).decode()
