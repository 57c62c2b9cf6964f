"""Streams are cut into messages, and nothing of them gets lost untold."""

import pytest
from hypothesis import given
from hypothesis import strategies as some

import bda

# Bytes as a wire has them: some of anything, many of what begins and ends messages.
wire_bytes = some.lists(
    some.one_of(
        some.binary(max_size=8), some.sampled_from([b"\xf0", b"\xf7", b"\xf8", b"\xf0\x7d\x00\xf7", b"\x01" * 30])
    )
).map(b"".join)


def test_messages_have_a_number_and_an_offset() -> None:
    joiner = bda.Joiner()
    assert joiner.feed(b"\xf0\x01") == []
    [first] = joiner.feed(b"\xf7")
    [lost, second] = joiner.feed(b"\x05\x06\xf0\xf7")
    assert isinstance(first, bda.Found) and isinstance(second, bda.Found) and isinstance(lost, bda.Lost)
    assert (first, first.number, first.offset) == (b"\xf0\x01\xf7", 1, 0)
    assert (lost.offset, lost.size) == (3, 2)
    assert (second, second.number, second.offset) == (b"\xf0\xf7", 2, 5)
    assert joiner.finish() == []


def test_what_has_begun_is_lost_at_the_end() -> None:
    joiner = bda.Joiner()
    assert joiner.feed(b"\xf0\x01\x02") == []
    [lost] = joiner.finish()
    assert isinstance(lost, bda.Lost)
    assert (lost.offset, lost.size) == (0, 3)
    assert lost.reason in str(lost)


@pytest.mark.parametrize("data", [bytearray(b"\xf0\xf7"), memoryview(b"\xf0\xf7"), b"\xf0\xf7"])
def test_whatever_shares_its_bytes_is_fed(data: bytes | bytearray | memoryview) -> None:
    assert bda.Joiner().feed(data) == [b"\xf0\xf7"]


@given(some.lists(wire_bytes))
def test_every_byte_is_of_a_message_or_lost(chunks: list[bytes]) -> None:
    stream = b"".join(chunks)
    pieces = list(bda.cut(chunks))
    messages = [piece for piece in pieces if isinstance(piece, bda.Found)]
    lost = sum(piece.size for piece in pieces if isinstance(piece, bda.Lost))
    assert sum(map(len, messages)) + lost == len(stream)
    assert [message.number for message in messages] == [*range(1, len(messages) + 1)]
    for message in messages:
        assert (message[0], stream[message.offset], message[-1]) == (0xF0, 0xF0, 0xF7)


@given(wire_bytes, some.integers(1, 7))
def test_how_a_stream_is_cut_makes_no_difference(stream: bytes, size: int) -> None:
    chunks = [stream[at : at + size] for at in range(0, len(stream), size)]
    assert [m for m in bda.cut(chunks) if isinstance(m, bda.Found)] == [
        m for m in bda.cut([stream]) if isinstance(m, bda.Found)
    ]
