"""What the documentation shows is what happens."""

import doctest
import re
from pathlib import Path

import pytest
from conftest import EXAMPLES

ROOT = EXAMPLES.parent


@pytest.fixture(autouse=True)
def beside_the_examples(tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    (tmp_path / "examples").symlink_to(EXAMPLES)
    monkeypatch.chdir(tmp_path)


def test_the_first_steps() -> None:
    result = doctest.testfile(str(ROOT / "docs" / "python.md"), module_relative=False)
    assert (result.failed, result.attempted) == (0, 9)


@pytest.mark.filterwarnings("ignore:unclosed file")
def test_the_five_lines_of_the_first_page(capsys: pytest.CaptureFixture[str]) -> None:
    [lines] = re.findall(r"```python\n(.*?)```", (ROOT / "README.md").read_text(), flags=re.DOTALL)
    assert lines.count("\n") == 5
    shown: dict[str, list[object]] = {}
    exec(lines, shown)
    assert capsys.readouterr().out == "Amber Strings\n"
    assert len(shown["messages"]) == 26
