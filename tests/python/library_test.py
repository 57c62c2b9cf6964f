"""A library receives, holds, shows and is asked."""

import sqlite3
from collections.abc import Callable
from contextlib import closing
from pathlib import Path

import pytest
from conftest import EXAMPLES
from hypothesis import given
from hypothesis import strategies as some

import bda

PLACE = "voice:user1:1"
ascii_but_nul = some.characters(min_codepoint=1, max_codepoint=127)


@pytest.mark.parametrize("file", sorted(EXAMPLES.glob("*.syx")), ids=lambda file: str(file.stem))
def test_what_is_received_is_requested_back_the_same(library: bda.Library, file: Path) -> None:
    library.receive(file.read_bytes())
    with bda.Files(file) as files:
        addresses = [line["address"] for line in files.listing()]
    # A unit by its header, what is whole by itself; blocks and footers come with their header.
    wanted = [address for address in addresses if address[:2] in ("00", "0C", "0E", "11")]
    assert b"".join(library.request(*wanted)) == file.read_bytes()


def framed(address: bytes, data: bytes = b"") -> bytes:
    """A dump, with its byte count and checksum."""
    body = bytes([len(data) >> 7, len(data) & 0x7F]) + address + data
    return b"\xf0\x7d\x00\x7f\x14" + body + bytes([-sum(body) & 0x7F]) + b"\xf7"


@given(some.integers(0x0A, 0x0C), some.integers(0, 127), some.text(ascii_but_nul, min_size=20, max_size=20))
def test_any_voice_is_requested_back_the_same(bank: int, number: int, name: str) -> None:
    with bda.Files(EXAMPLES / "normal-voice.syx") as files:
        _, common, *others, _ = files
    messages = [
        framed(bytes([0x0E, bank, number])),
        framed(common[7:10], name.encode() + common[10 + len(name) : -2]),
        *others,
        framed(bytes([0x0F, bank, number])),
    ]
    with bda.Library() as library:
        library.receive(b"".join(messages))
        assert library.request(messages[0][7:10].hex()) == messages


def test_a_library_that_fails_ends_it(tmp_path: Path, voice: bytes) -> None:
    with bda.Library(tmp_path / "library.db") as library, closing(sqlite3.connect(tmp_path / "library.db")) as other:
        library.receive(voice)
        other.execute("BEGIN IMMEDIATE")
        with pytest.raises(bda.Failed, match="locked") as caught:
            library.receive(b"\x01" + (EXAMPLES / "drum-voice.syx").read_bytes())
        assert caught.value.answer == []
        assert len(caught.value.answer.problems) == 2
        other.rollback()
        assert [line["content"] for line in library.contents()] == [PLACE]


def test_each_message_has_a_line(library: bda.Library, voice: bytes) -> None:
    lines = library.receive(voice)
    assert len(lines) == voice.count(b"\xf0")
    assert lines[-1]["outcome"] == "stored"
    assert lines[-1]["contents"] == [PLACE]


def test_what_is_refused_or_lost_is_raised_when_all_was_handled(library: bda.Library, voice: bytes) -> None:
    wrong = voice[:-2] + bytes([voice[-2] ^ 1]) + voice[-1:]
    with pytest.raises(bda.Refused) as caught:
        library.receive(b"\x01\x02" + wrong + voice)
    assert len(caught.value.problems) == 2
    assert "2 bytes at offset 0" in caught.value.problems[0]
    assert "checksum" in caught.value.problems[1]
    assert caught.value.answer[-1]["outcome"] == "stored"
    assert len(library.receive(wrong, strict=False).problems) == 1


def test_what_the_instrument_sends_is_given_to_send(library: bda.Library, voice: bytes) -> None:
    sent: list[bda.Sent] = []
    lines = library.receive(voice, send=sent.append)
    assert [(message.hex(" ").upper(), message.port) for message in sent] == [
        (told["bytes"], told["port"]) for line in lines for told in line["sent"]
    ]


def test_what_send_raises_comes_out_and_leaves_the_rest(library: bda.Library, voice: bytes) -> None:
    def full(_: bda.Sent) -> None:
        raise BufferError("full")

    with pytest.raises(BufferError, match="full"):
        library.receive(voice, send=full)
    assert library.contents() == []


def test_what_is_not_stored_is_not_answered(library: bda.Library, voice: bytes) -> None:
    library.receive(voice)
    with pytest.raises(bda.Refused, match="voice:user1:2") as caught:
        library.request("voice:user1:2", PLACE)
    assert b"".join(caught.value.answer) == voice
    asked = library.request("voice:user1:2", PLACE, strict=False)
    assert (list(asked), asked.problems) == (list(caught.value.answer), caught.value.problems)


def test_contents_are_those_of_the_places(library: bda.Library, voice: bytes) -> None:
    library.receive(voice)
    assert [line["content"] for line in library.contents()] == [PLACE]
    assert [line["content"] for line in library.contents("voice:user1", "voice:user2")] == [PLACE]
    assert library.contents("voice:user2") == []


def test_a_target_is_shown(library: bda.Library, voice: bytes) -> None:
    library.receive(voice)
    assert library.show(PLACE)["voice"]["name"] == library.contents()[0]["name"]


def test_a_target_that_is_several_is_refused_by_name(library: bda.Library, voice: bytes) -> None:
    library.receive(voice)
    with pytest.raises(bda.Unusable, match="show_all"):
        library.show("voice:user1")
    assert [line["target"] for line in library.show_all("voice:user1", "voice:edit")] == [PLACE, "voice:edit"]


def test_what_has_no_answer_is_raised_however_it_is_asked(library: bda.Library) -> None:
    with pytest.raises(bda.Refused, match="voice:user1:1") as caught:
        library.show_all(PLACE, strict=False)
    assert caught.value.answer is None


def test_what_is_stored_is_on_disk_and_read_only_is_kept(tmp_path: Path, voice: bytes) -> None:
    path = tmp_path / "library.db"
    with bda.Library(path) as library:
        library.receive(voice)
    with bda.Library(str(path), read_only=True) as library:
        assert b"".join(library.request(PLACE)) == voice
        with pytest.raises(bda.Refused):
            library.receive((EXAMPLES / "drum-voice.syx").read_bytes())


def test_what_cannot_be_opened_says_why(tmp_path: Path) -> None:
    with pytest.raises(bda.Unusable, match="folder"):
        bda.Library(tmp_path)
    with pytest.raises(bda.Unusable):
        bda.Library(tmp_path / "none.db", read_only=True)
    with pytest.raises(bda.Unusable, match="NUL"):
        bda.Library("a\0b")


def test_files_are_a_library(voice: bytes) -> None:
    with bda.Files(EXAMPLES / "normal-voice.syx") as files, bda.Library.of_files(files) as library:
        assert b"".join(library.request(PLACE)) == voice


def test_what_of_files_is_broken_is_raised_with_the_rest(voice: bytes) -> None:
    with bda.Files(EXAMPLES / "normal-voice.syx") as files:
        files.add("cut.syx", voice[:300])
        with pytest.raises(bda.Refused, match="cut.syx") as caught:
            bda.Library.of_files(files)
        with caught.value.answer as library:
            assert [line["content"] for line in library.contents()] == [PLACE]
        with bda.Library.of_files(files, strict=False) as library:
            assert library.problems == caught.value.problems


def test_any_place_is_an_answer_or_an_exception() -> None:
    with bda.Library() as library:

        @given(some.text())
        def ask(place: str) -> None:
            questions: list[Callable[[str], object]] = [library.contents, library.request, library.show]
            for question in questions:
                try:
                    question(place)
                except (bda.Unusable, bda.Refused) as error:
                    assert error.text

        ask()


@given(some.binary(max_size=100), some.booleans())
def test_any_bytes_are_handled_or_lost(data: bytes, in_a_message: bool) -> None:
    stream = b"\xf0\x7d\x00" + data + b"\xf7" if in_a_message else data
    with bda.Library() as library:
        answer = library.receive(stream, strict=False)
    assert len(answer) == sum(isinstance(piece, bda.Found) for piece in bda.cut([stream]))
