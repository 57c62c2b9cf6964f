"""Messages of mido come and go."""

import subprocess
import sys

import mido
import pytest

import bda


def test_messages_of_mido_are_received(library: bda.Library, voice: bytes) -> None:
    parser = mido.Parser()
    parser.feed(voice)
    for message in parser:
        library.receive(message)
    assert b"".join(library.request("voice:user1:1")) == voice


def test_other_messages_of_mido_are_refused(library: bda.Library) -> None:
    with pytest.raises(bda.Unusable, match="note_on"):
        library.receive(mido.Message("note_on"))


def test_what_is_requested_goes_out_by_mido(library: bda.Library, voice: bytes) -> None:
    library.receive(voice)
    messages = [message.mido() for message in library.request("voice:user1:1")]
    assert all(message.type == "sysex" for message in messages)
    assert b"".join(bytes(message.bytes()) for message in messages) == voice
    assert bytes(messages[0].data) == voice[1 : voice.index(b"\xf7")]


def test_what_is_neither_is_refused(library: bda.Library) -> None:
    with pytest.raises(TypeError, match="str"):
        library.receive("F0 F7")  # type: ignore[arg-type]


def test_mido_is_imported_by_whoever_asks_for_it_only() -> None:
    code = "import sys, bda; bda.Library().receive(b'\\xf0\\xf7', strict=False); sys.exit('mido' in sys.modules)"
    assert subprocess.run([sys.executable, "-c", code], check=False).returncode == 0
