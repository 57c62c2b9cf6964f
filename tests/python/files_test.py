"""Files of messages: what they have, whether it is good, and what can be kept."""

from pathlib import Path
from typing import Any

import pytest
from conftest import EXAMPLES
from hypothesis import given
from hypothesis import strategies as some

import bda

json_values = some.recursive(
    some.none() | some.booleans() | some.integers() | some.floats() | some.text(),
    lambda inner: some.lists(inner, max_size=3) | some.dictionaries(some.text(), inner, max_size=3),
    max_leaves=6,
)


@pytest.fixture
def broken(voice: bytes) -> bytes:
    """The voice, one of its blocks with a wrong checksum."""
    at = voice.index(b"\xf7", 200) - 1
    return voice[:at] + bytes([voice[at] ^ 1]) + voice[at + 1 :]


def test_each_message_has_its_number_and_offset(voice: bytes) -> None:
    with bda.Files(EXAMPLES / "normal-voice.syx", EXAMPLES / "system.syx") as files:
        found = list(files)
    assert b"".join(found) == voice + (EXAMPLES / "system.syx").read_bytes()
    assert [message.number for message in found] == [*range(1, len(found) + 1)]
    assert found[1].offset == len(found[0])


def test_what_is_no_file_of_messages_is_not_added() -> None:
    with bda.Files() as files:
        with pytest.raises(bda.Unusable, match="letter.txt"):
            files.add("letter.txt", b"Dear reader")
        assert files.messages() == []


def test_a_list_has_a_line_for_each_message(voice: bytes) -> None:
    with bda.Files(EXAMPLES / "normal-voice.syx") as files:
        listed = files.listing()
    assert [line["message"] for line in listed] == [*range(1, voice.count(b"\xf0") + 1)]
    assert listed[0]["file"] == str(EXAMPLES / "normal-voice.syx")


def test_what_is_whole_is_verified() -> None:
    answer = bda.verify(EXAMPLES / "normal-voice.syx")
    assert answer[-1]["state"] == "complete"
    assert answer.problems == ()


def test_what_is_broken_is_raised_with_the_answer(tmp_path: Path, broken: bytes) -> None:
    file = tmp_path / "broken.syx"
    file.write_bytes(broken)
    with pytest.raises(bda.Refused) as caught:
        bda.verify(file)
    assert any(line["verdict"] == "checksum wrong" for line in caught.value.answer if "verdict" in line)
    assert str(file) in caught.value.problems[0]
    asked = bda.verify(file, strict=False)
    assert asked == caught.value.answer
    assert asked.problems == caught.value.problems


def test_a_byte_is_explained() -> None:
    [line] = bda.explain(EXAMPLES / "normal-voice.syx", 2, 1)
    assert (line["offset"], line["part"]) == (2, "device")


def test_all_bytes_are_explained(voice: bytes) -> None:
    answer = bda.explain(EXAMPLES / "normal-voice.syx")
    assert bytes(line["byte"] for line in answer) == voice


def test_names_of_parameters_are_told() -> None:
    with bda.Files(EXAMPLES / "normal-voice.syx") as files:
        carried = [parameter for line in files.explain() for parameter in line.get("parameters", [])]
        path = carried[-1]["path"]
        assert not any("name" in parameter for parameter in carried)
        files.name_parameters(f"parameter {path} Sparkle\n")
        named = [parameter for line in files.explain() for parameter in line.get("parameters", [])]
    assert {parameter["path"] for parameter in named if parameter.get("name") == "Sparkle"} == {path}


def test_what_is_whole_is_salvaged(voice: bytes) -> None:
    with bda.Files(EXAMPLES / "normal-voice.syx") as files:
        kept = files.salvage()
    assert (kept.whole, kept.requests, kept.units[0]["state"]) == (voice, b"", "whole")


def test_what_is_lost_is_raised_with_what_is_left(broken: bytes) -> None:
    with bda.Files() as files:
        files.add("broken.syx", broken)
        with pytest.raises(bda.Refused) as caught:
            files.salvage()
        assert caught.value.answer.units[0]["state"] == "lost"
        assert caught.value.answer.requests[:1] == b"\xf0"
        mended = files.salvage(fix_checksums=True)
    assert mended.units[0]["corrected"]


def test_captures_complete_each_other(voice: bytes) -> None:
    """Either lacks a message that the other has."""
    messages = [part + b"\xf7" for part in voice.split(b"\xf7")[:-1]]
    with bda.Files() as files:
        files.add("a.syx", b"".join(messages[:5] + messages[6:]))
        files.add("b.syx", b"".join(messages[:9] + messages[10:]))
        kept = files.salvage(prefer="b.syx")
    assert kept.units[0]["state"] == "completed"
    assert kept.whole == voice


def test_files_are_converted(voice: bytes) -> None:
    with bda.Files(EXAMPLES / "normal-voice.syx") as files:
        moved = files.convert(place="voice:user2:7")
        assert moved.units[0]["unit"] == "voice:user2:7"
        text = files.convert(format="txt").data
    with bda.Files() as files, bda.Library() as library:
        files.add("text", text)
        assert b"".join(files) == voice
        library.receive(moved.data)
        assert [line["content"] for line in library.contents()] == ["voice:user2:7"]


def test_an_option_that_does_not_exist_is_refused_with_the_nearest() -> None:
    with bda.Files(EXAMPLES / "normal-voice.syx") as files, pytest.raises(bda.Unusable, match="prefer"):
        files.salvage(prefr="a")


@given(some.dictionaries(some.text() | some.sampled_from(["prefer", "merge", "fix_checksums"]), json_values))
def test_any_options_are_an_answer_or_an_exception(members: dict[str, Any]) -> None:
    members.pop("strict", None)
    with bda.Files(EXAMPLES / "normal-voice.syx") as files:
        try:
            assert files.salvage(**members).units
        except bda.Unusable as error:
            assert error.text


@given(some.binary(max_size=200))
def test_any_bytes_are_a_file_or_an_exception(data: bytes) -> None:
    with bda.Files() as files:
        try:
            files.add("some", data)
        except bda.Unusable as error:
            assert error.text
        files.verify(strict=False)


@pytest.mark.parametrize("name", ["a\0b", "\ud800"])
def test_a_name_that_c_cannot_have_is_refused(name: str) -> None:
    with bda.Files() as files, pytest.raises(bda.Unusable, match="the name"):
        files.add(name, b"\xf0\xf7")
