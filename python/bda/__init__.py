"""The library of an instrument, its messages and what they carry.

    with bda.Library("library.db") as library:
        library.receive(open("dump.syx", "rb").read())   # bytes, or a sysex message of mido
        voice = library.show("voice:user1:6")
        voice["voice"]["name"] = "Piano"
        library.apply("voice:user1:6", voice)

Whatever is not wholly done is raised, as an `Error`: `Refused` has in `answer` what there is of an answer, and the same
call with `strict=False` returns that, its `problems` beside it. Objects are those that the program `bda` prints with
--json.
"""

from bda._answers import Answer, Found, Json, Lost, Message, Sent, SysexMessage
from bda._errors import Error, Failed, Misused, Refused, Unusable
from bda._header import version as _version
from bda._native import library_file
from bda.files import Converted, Files, Salvaged, explain, verify
from bda.library import Backup, Library, places
from bda.stream import Joiner, cut

__version__ = _version()
__all__ = [
    "Answer",
    "Backup",
    "Converted",
    "Error",
    "Failed",
    "Files",
    "Found",
    "Joiner",
    "Json",
    "Library",
    "Lost",
    "Message",
    "Misused",
    "Refused",
    "Salvaged",
    "Sent",
    "SysexMessage",
    "Unusable",
    "cut",
    "explain",
    "library_file",
    "places",
    "verify",
]
