"""What is raised."""

from typing import Any


class Error(Exception):
    """A call that did not do all that was asked; `text` says why, a line for each reason."""

    def __init__(self, text: str, answer: Any = None) -> None:
        super().__init__(text)
        self.text = text
        #: What the call answered all the same, of the type that it returns; None: nothing.
        self.answer = answer

    @property
    def problems(self) -> tuple[str, ...]:
        """The lines of the text."""
        return tuple(self.text.splitlines())


class Failed(Error):
    """The system failed: no space, no memory, a library that can no longer be read or written."""


class Unusable(Error):
    """What was handed over is no address, no message file, no library, no UTF-8, or no option."""


class Refused(Error):
    """Something is refused, broken, damaged, different, lost or not found.

    What is asked is answered all the same, in `answer`, as far as it goes; of a change it says what was changed. None:
    there is no answer, and nothing is changed.
    """


class Misused(Error):
    """A handle that is closed, or calls in an order that is not allowed."""
