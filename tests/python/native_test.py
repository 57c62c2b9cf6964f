"""The library is found, what it hands out is freed, and what a callback raises comes out."""

import gc
import os
import resource
import shutil
import sqlite3
import subprocess
import sys
import weakref
from collections.abc import Callable
from pathlib import Path
from typing import Any

import pytest

import bda
from bda import _native
from bda._native import Callbacks, ffi, native

PACKAGE = Path(bda.__file__).parent
SAY = "import bda; print(bda.library_file()); bda.Library().close()"


def run(package_in: Path, **environment: str) -> subprocess.CompletedProcess[str]:
    """Imports the package that lies in that folder, in a process of its own."""
    kept = {name: value for name, value in os.environ.items() if name != _native.LIBRARY_VARIABLE}
    variables = {**kept, "PYTHONPATH": str(package_in), **environment}
    return subprocess.run(
        [sys.executable, "-B", "-c", SAY], env=variables, capture_output=True, text=True, check=False, cwd=package_in
    )


@pytest.fixture
def prefix(tmp_path: Path) -> Path:
    """A prefix that has the package, and no library yet."""
    shutil.copytree(PACKAGE, tmp_path / "lib/python3/dist-packages/bda", ignore=shutil.ignore_patterns("*.so.*"))
    return tmp_path


@pytest.fixture
def loaded() -> Path:
    """The library that these tests are run with, by a path."""
    native()
    return next(
        Path(line.split(maxsplit=5)[5].strip())
        for line in Path("/proc/self/maps").read_text().splitlines()
        if "libbda-editor.so" in line
    )


@pytest.mark.parametrize("folder", ["lib", "lib64", "lib/some-machine", "lib/python3/dist-packages/bda"])
def test_the_library_lies_in_the_prefix_or_beside_the_package(prefix: Path, loaded: Path, folder: str) -> None:
    (prefix / folder).mkdir(exist_ok=True)
    for file in [*loaded.parent.glob("libbda*.so.*"), *loaded.parent.glob("libfmt.so.*")]:
        (prefix / folder / file.name).symlink_to(file)
    told = run(prefix / "lib/python3/dist-packages")
    assert (told.stdout.strip(), told.stderr) == (str(prefix / folder / _native._FILE), "")


def test_the_variable_wins(prefix: Path, loaded: Path) -> None:
    (prefix / "lib" / _native._FILE).write_text("no library")
    told = run(prefix / "lib/python3/dist-packages", BDA_EDITOR_LIBRARY=str(loaded))
    assert (told.stdout.strip(), told.stderr) == (str(loaded), "")


def test_what_is_no_library_is_told(prefix: Path) -> None:
    (prefix / "lib" / _native._FILE).write_text("no library")
    told = run(prefix / "lib/python3/dist-packages")
    assert "bda._errors.Failed: the library cannot be loaded" in told.stderr


def test_a_library_of_another_version_is_refused(prefix: Path, loaded: Path) -> None:
    header = prefix / "lib/python3/dist-packages/bda/version.h"
    header.write_text(header.read_text().replace("BDA_VERSION_MINOR 2", "BDA_VERSION_MINOR 99"))
    told = run(prefix / "lib/python3/dist-packages", BDA_EDITOR_LIBRARY=str(loaded))
    assert "this package needs 0.99" in told.stderr


def test_import_needs_no_library(prefix: Path) -> None:
    told = run(prefix / "lib/python3/dist-packages", BDA_EDITOR_LIBRARY="/nowhere.so")
    assert told.stdout.strip() == "/nowhere.so"
    assert "/nowhere.so" in told.stderr


def test_what_a_callback_raises_comes_out_and_is_not_printed(capfd: pytest.CaptureFixture[str], voice: bytes) -> None:
    calls = []

    def fail(_: object, number: int, *__: object) -> None:
        calls.append(number)
        raise KeyboardInterrupt(f"at {number}")

    files = bda.Files()
    files.add("voice.syx", voice)
    with pytest.raises(KeyboardInterrupt, match="at 1"), Callbacks() as callbacks:
        files._call("bda_files_each", callbacks.of("bda_visit", fail), ffi.NULL)
    assert len(calls) > 1
    assert capfd.readouterr() == ("", "")


def test_what_is_handed_out_is_freed(voice: bytes) -> None:
    def used() -> int:
        return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss  # KB

    with bda.Files() as files:
        files.add("voice.syx", voice)
        files.verify()
        size = len(str(files.verify()))
        before = used()
        for _ in range(32_000_000 // size):
            files.verify()
        assert used() - before < 16_000


def test_a_handle_that_nobody_has_any_more_is_closed(tmp_path: Path, voice: bytes) -> None:
    def open_files() -> int:
        return sum("forgotten.db" in os.path.realpath(file) for file in Path("/proc/self/fd").iterdir())

    forgotten = bda.Library(tmp_path / "forgotten.db")
    forgotten.receive(voice)
    assert open_files() > 0
    del forgotten
    gc.collect()
    assert open_files() == 0


def test_a_stream_that_nobody_has_any_more_is_closed() -> None:
    forgotten = weakref.ref(bda.Joiner())
    gc.collect()
    assert forgotten() is None


def test_sqlite_is_that_of_python() -> None:
    """Two of them in one process would lose each other's locks."""
    with sqlite3.connect(":memory:"), bda.Library():
        mapped = Path("/proc/self/maps").read_text().splitlines()
    assert len({line.split()[-1] for line in mapped if "libsqlite3" in line}) == 1


@pytest.mark.parametrize(
    ("made", "ask"),
    [(bda.Files, bda.Files.verify), (bda.Library, bda.Library.contents), (bda.Joiner, bda.Joiner.finish)],
)
def test_what_is_closed_says_so_and_may_be_closed_again(made: type[Any], ask: Callable[[Any], object]) -> None:
    with made() as handle:
        ask(handle)
    handle.close()
    with pytest.raises(bda.Misused, match="closed"):
        ask(handle)
