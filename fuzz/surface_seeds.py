#!/usr/bin/env python3
"""Writes fuzz/seeds/surface_fuzz: sequences of calls that lead deep.

A call is the name of its row in surface_fuzz.cpp and what its arguments take of the input, as surface.h has it.
"""

import pathlib
import re

HERE = pathlib.Path(__file__).parent
ROWS = re.findall(r'^    \{"([^"]+)", ', (HERE / "surface_fuzz.cpp").read_text(), re.MULTILINE)

WANTED, UNWANTED, NULL = b"\0", b"\7", b"\1"
LINE = b"\2"  # the first of the last answer
YES, NO = b"\0", b"\1"
MEMORY = b"\0"  # how a library is opened
NOW, LATER, DUE = b"\0", b"\5", b"\x0f"
ALL = b"\5"  # a port takes it
CABLE = 129  # and the slot of the wire at its other end, less one or more times 3


def text(words: str) -> bytes:
    coded = words.encode()
    return bytes([0, len(coded)]) + coded


def at(*slots: int) -> bytes:
    return bytes(slots)


def unit(row: int = 0, value: int = 3) -> bytes:
    """A unit of kUnits, each data byte so."""
    return bytes([7, row, value])


def broken(row: int, where: int, change: int) -> bytes:
    return bytes([6, row]) + where.to_bytes(2, "big") + bytes([change])


def raw(content: bytes) -> bytes:
    return b"\1" + len(content).to_bytes(2, "big") + content


def handle(library: int, content: bytes) -> tuple[str, bytes]:
    return "bda_library_handle", at(library) + b"\1" + WANTED * 2 + content


def read(function: str, library: int, *rest: bytes) -> tuple[str, bytes]:
    """A call that reads a library: those that take a text take it behind the choice of an answer."""
    return "bda_library_" + function, at(library) + WANTED + b"".join(rest)


def change(function: str, library: int, *rest: bytes) -> tuple[str, bytes]:
    """One that changes it, and a clone before."""
    return "bda_library_" + function, b"".join(rest) + at(library) + WANTED + YES


OPEN = ("bda_library_open", at(0) + MEMORY)
OTHER = ("bda_library_open", at(1) + MEMORY)
VOICE = text("voice:user1:6")
QUICK = text('{"pace": "none"}')
A_FILE = [("bda_files_new", at(0)), ("bda_files_add", at(0) + text("a.syx") + unit())]
PLAY = ("two wires", at(0, 1, 200))


def results(wire: int) -> list[tuple[str, bytes]]:
    return [("bda_wire_progress", at(wire) + WANTED), ("bda_wire_results", at(wire) + WANTED)] * 2


SEEDS = {
    "files": A_FILE
    + [("bda_places", WANTED), ("bda_files_name_parameters", at(0) + text("parameter voice.common[3] Volume\n"))]
    + [("bda_files_each", at(0) + WANTED), ("bda_files_list", at(0) + WANTED), ("bda_files_verify", at(0) + WANTED)]
    + [("bda_files_explain", at(0, 0, 2, 40) + WANTED)]
    + [("bda_files_salvage", at(0) + text("{}") + WANTED * 4)]
    + [("bda_files_convert", at(0) + text('{"format": "mid", "place": "voice:user2:1"}') + WANTED * 3)]
    + [("bda_files_add", at(0) + text("b.mid") + b"\3"), ("bda_files_verify", at(0) + WANTED)]
    + [("bda_library_of_files", at(0, 0)), read("contents", 0, NULL), ("bda_files_close", at(0))],
    "broken-files": A_FILE
    + [("bda_files_add", at(0) + text("b.syx") + broken(1, 300, 1))]
    + [("bda_files_add", at(0) + text("c.syx") + broken(0, 900, 255)), ("bda_files_list", at(0) + WANTED)]
    + [("bda_files_verify", at(0) + WANTED), ("bda_files_salvage", at(0) + text('{"merge": true}') + WANTED * 4)]
    + [("bda_files_convert", at(0) + NULL + WANTED * 3), ("bda_library_of_files", at(0, 0)), OTHER]
    + [("bda_library_restore", at(0) + NULL + at(1) + WANTED)],
    "library": [OPEN, handle(0, unit(0, 65)), handle(0, unit(3, 4)), handle(0, unit(9, 5)), handle(0, unit(2, 66))]
    + [read("contents", 0, NULL), read("find", 0, text('{"kind": "voice"}')), read("check", 0), read("history", 0, at(0))]
    + [read("settings", 0, NULL), read("explain", 0, VOICE, text("voice.common[3]")), read("show", 0, VOICE)]
    + [change("apply", 0, VOICE, LINE), change("rename", 0, VOICE, text("Piano")), change("favourite", 0, VOICE, at(2))]
    + [change("copy_places", 0, VOICE, text("voice:user3:6")), change("undo", 0, at(1, 0))]
    + [change("move_places", 0, text("voice:user1"), text("voice:user3"))]
    + [change("swap_places", 0, text("voice:user2:6"), text("voice:user3:6")), change("remove", 0, text("voice:user2"))]
    + [change("set", 0, text("device-number"), text("6")), change("undo", 0, at(1, 1)), change("undo", 0, at(0, 0)), change("undo", 0, at(4, 1))]
    + [("bda_library_clone", at(0, 1)), read("diff", 0, at(1)), ("bda_library_backup", at(0) + WANTED * 3)]
    + [("bda_library_request", at(0) + text("system") + WANTED), read("show", 0, text("system"))]
    + [change("apply", 0, text("system"), LINE), ("bda_library_close", at(0))],
    "restored": A_FILE
    + [("bda_library_open", at(0) + MEMORY), ("bda_library_restore", at(0) + text("{}") + at(0) + WANTED)]
    + [("bda_library_name_parameters", at(0) + text("parameter voice.common[3] Volume\n"))]
    + [read("explain", 0, VOICE, text("Volume")), change("rename", 0, VOICE, text("\u00e4")), handle(0, b"\2\0\7\5")]
    + [("bda_library_restore", at(0) + text('{"any-device": true}') + at(0) + WANTED), read("history", 0, at(2))],
    "stream": [("bda_joiner_new", at(0) + WANTED), ("bda_joiner_feed", at(0) + raw(b"\1\xf0\x43\xf8\1\xf7\xf0"))]
    + [("bda_joiner_feed", at(0) + unit()), ("bda_joiner_finish", at(0)), ("bda_joiner_feed", at(0) + raw(b"\xf0\1"))]
    + [("bda_joiner_finish", at(0)), ("bda_joiner_close", at(0))],
    "fetched": [OPEN, OTHER, handle(1, unit(0, 70)), ("bda_wire_fetch", at(0) + text("voice:user1:6..7") + QUICK + at(0))]
    + [("bda_wire_instrument", at(1) + QUICK + at(1)), read("contents", 0, NULL), PLAY]
    + results(0)
    + [("bda_wire_stop", at(1))]
    + results(1)
    + [("bda_wire_close", at(0)), ("bda_wire_close", at(1)), read("diff", 0, at(1))],
    "sent": [OPEN, OTHER, handle(0, unit(0, 71)), handle(0, unit(3, 5))]
    + [("bda_wire_send", at(0) + text("voice:user1:6 drum:user:2 voice:user1:9") + text('{"verify": true}') + at(0))]
    + [("bda_wire_instrument", at(1) + text('{"faults": "delay=0.1:300"}') + at(1)), ("bda_wire_effects", at(0) + WANTED)]
    + [PLAY] * 2
    + results(0),
    "cables": A_FILE
    + [OTHER, ("bda_wire_send_files", at(0) + QUICK + at(0)), ("bda_wire_instrument", at(1) + QUICK + at(1))]
    + [("bda_wire_tick", at(0) + NOW + b"\3\x20" + WANTED), ("bda_wire_feed", at(1) + NOW + at(CABLE))]
    + [("bda_wire_tick", at(0) + LATER + ALL + WANTED), ("bda_wire_feed", at(1) + LATER + at(CABLE))]
    + [("bda_wire_tick", at(1) + DUE + b"\4" + WANTED), ("bda_wire_tick", at(1) + LATER + b"\1" + WANTED)]
    + results(0)
    + results(1)
    + [("bda_library_close", at(1))],
}


def coded(calls: list[tuple[str, bytes]]) -> bytes:
    return b"".join(bytes([ROWS.index(name)]) + arguments for name, arguments in calls)


folder = HERE / "seeds" / "surface_fuzz"
folder.mkdir(exist_ok=True)
for seed, calls in SEEDS.items():
    (folder / seed).write_bytes(coded(calls))
