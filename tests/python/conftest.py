"""What the tests have in common."""

from collections.abc import Iterator
from pathlib import Path

import pytest
from hypothesis import settings

import bda

settings.register_profile("house", database=None, deadline=None)
settings.load_profile("house")

EXAMPLES = Path(__file__).resolve().parents[2] / "examples"


@pytest.fixture
def library() -> Iterator[bda.Library]:
    """An empty library in memory."""
    with bda.Library() as made:
        yield made


@pytest.fixture
def voice() -> bytes:
    """The messages of a normal voice, for voice:user1:1."""
    return (EXAMPLES / "normal-voice.syx").read_bytes()
