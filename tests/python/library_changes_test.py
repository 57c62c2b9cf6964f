"""A library changes, tells what has changed, and takes it back."""

from collections.abc import Callable
from pathlib import Path
from typing import Any

import pytest
from conftest import EXAMPLES
from hypothesis import given
from hypothesis import strategies as some

import bda

PLACE = "voice:user1:1"
NAME = "Amber Strings"


@pytest.fixture
def stored(tmp_path: Path, voice: bytes) -> bda.Library:
    """A library on disk that holds a voice."""
    library = bda.Library(tmp_path / "library.db")
    library.receive(voice)
    return library


def changes(answer: list[bda.Json]) -> list[tuple[Any, ...]]:
    return [(line["content"], line["what"], line["before"], line["after"]) for line in answer]


def names(library: bda.Library) -> dict[str, str]:
    return {line["content"]: line["name"] for line in library.contents()}


def test_what_was_shown_is_applied(stored: bda.Library) -> None:
    shown = stored.show(PLACE)
    assert stored.apply(PLACE, shown) == []
    shown["voice"]["name"] = "Piano"
    assert changes(stored.apply(PLACE, shown)) == [(PLACE, "stored", NAME, "Piano")]
    assert stored.show(PLACE) == shown


def test_the_entry_of_a_change_is_taken_back(stored: bda.Library) -> None:
    with bda.Library() as untouched:
        assert untouched.entry == 0
    stored.rename(PLACE, "Piano")
    stored.undo(stored.entry)
    assert names(stored)[PLACE] == NAME


def test_what_cannot_be_applied_changes_nothing(stored: bda.Library) -> None:
    shown = stored.show(PLACE)
    shown["voice"]["common"][3] = 4711
    with pytest.raises(bda.Error):
        stored.apply(PLACE, shown)
    with pytest.raises(bda.Unusable, match="JSON"):
        stored.apply(PLACE, {"voice": {1j}})
    assert stored.show(PLACE)["voice"]["common"][3] != 4711


@pytest.mark.parametrize(
    ("change", "left"),
    [
        (lambda library: library.rename(PLACE, "New"), {PLACE: "New"}),
        (lambda library: library.copy_places(PLACE, "voice:user1:2"), {PLACE: NAME, "voice:user1:2": NAME}),
        (lambda library: library.move_places(PLACE, "voice:user1:2"), {"voice:user1:2": NAME}),
        (lambda library: library.swap_places(PLACE, "voice:user1:2"), {"voice:user1:2": NAME}),
        (lambda library: library.remove(PLACE), {}),
    ],
    ids=["rename", "copy", "move", "swap", "remove"],
)
def test_a_change_is_told_and_taken_back(
    stored: bda.Library, change: Callable[[bda.Library], bda.Answer[bda.Json]], left: dict[str, str]
) -> None:
    before = stored.contents()
    told = change(stored)
    assert told
    assert names(stored) == left
    assert changes(stored.history(1)[0]["changes"]) == changes(told)
    assert stored.undo()
    assert stored.contents() == before


def test_voices_become_favourites_and_no_longer(stored: bda.Library) -> None:
    assert changes(stored.favourite(PLACE)) == [(PLACE, "flagged", 0, 1)]
    assert stored.contents()[0]["favourite"] == 1
    assert changes(stored.favourite(PLACE, on=False)) == [(PLACE, "flagged", 1, 0)]


def test_an_entry_is_undone_by_its_number(stored: bda.Library) -> None:
    stored.rename(PLACE, "A")
    entry = stored.history(1)[0]["entry"]
    stored.favourite(PLACE)
    stored.undo(entry)
    assert names(stored) == {PLACE: NAME}
    assert stored.contents()[0]["favourite"] == 1


def test_what_changed_since_is_undone_by_force_only(stored: bda.Library) -> None:
    stored.rename(PLACE, "A")
    entry = stored.history(1)[0]["entry"]
    stored.rename(PLACE, "B")
    with pytest.raises(bda.Refused):
        stored.undo(entry)
    assert names(stored) == {PLACE: "B"}
    stored.undo(entry, force=True)
    assert names(stored) == {PLACE: NAME}


def test_what_does_not_exist_is_not_changed(stored: bda.Library) -> None:
    with pytest.raises(bda.Refused) as caught:
        stored.rename("voice:user3:1", "New")
    assert caught.value.answer is None
    with pytest.raises(bda.Unusable):
        stored.remove("voice:nowhere")


def test_settings_are_set(stored: bda.Library) -> None:
    assert stored.set("device-number", "6")
    assert stored.setting("device-number") == "6"
    assert stored.settings()["device-number"] == "6"
    with pytest.raises(bda.Unusable, match="device-number"):
        stored.set("device-nmber", "6")


def test_a_copy_is_changed_alone(stored: bda.Library) -> None:
    with stored.copy() as copy:
        copy.rename(PLACE, "Other")
        assert names(copy) == {PLACE: "Other"}
    assert names(stored) == {PLACE: NAME}


def test_libraries_are_compared(stored: bda.Library) -> None:
    with stored.copy() as copy:
        assert stored.diff(copy)[-1]["summary"]["equal"] == 1
        copy.rename(PLACE, "Other")
        with pytest.raises(bda.Refused) as caught:
            stored.diff(copy)
        assert caught.value.answer[-1]["summary"]["renamed"] == 1
        assert stored.diff(copy, strict=False) == caught.value.answer


def test_contents_are_found(stored: bda.Library) -> None:
    stored.copy_places(PLACE, "voice:user1:2")
    stored.rename("voice:user1:2", "Piano")
    assert [line["content"] for line in stored.find("piano", kind="voice")] == ["voice:user1:2"]
    assert [line["content"] for line in stored.find(same_as=PLACE)] == ["voice:user1:2"]
    assert len(stored.find(duplicates=True)) == 2
    value = stored.show(PLACE)["voice"]["common"][3]
    assert len(stored.find(where=[f"voice.common[3]={value}"])) == 2
    with pytest.raises(bda.Refused):
        stored.find("harp")
    assert stored.find("harp", strict=False) == []
    with pytest.raises(bda.Unusable, match="kind"):
        stored.find(knd="voice")


def test_a_parameter_is_explained_by_its_path_and_its_name(stored: bda.Library) -> None:
    by_path = stored.explain(PLACE, "voice.common[3]")
    assert by_path[0]["address"] == "40 00 00"
    stored.name_parameters("parameter voice.common[3] Sparkle\n")
    assert stored.explain(PLACE, "Sparkle") == by_path
    stored.name_parameters(None)
    with pytest.raises(bda.Unusable):
        stored.explain(PLACE, "Sparkle")


def test_a_library_is_checked(stored: bda.Library) -> None:
    assert {line["state"] for line in stored.check()} == {"good"}


def test_a_backup_is_restored(stored: bda.Library) -> None:
    backup = stored.backup()
    assert [(line["place"], line["name"]) for line in backup.manifest["contents"]] == [(PLACE, NAME)]
    with bda.Files() as files, bda.Library() as other:
        files.add("backup.syx", backup.data)
        assert (PLACE, "stored", None, NAME) in changes(other.restore(files))
        assert other.contents() == stored.contents()


def test_what_is_broken_is_not_restored(voice: bytes) -> None:
    with bda.Files() as files, bda.Library() as library:
        files.add("cut.syx", voice[:300])
        with pytest.raises(bda.Refused):
            library.restore(files)
        assert library.contents() == []


def test_other_devices_are_restored_when_that_is_asked(voice: bytes) -> None:
    with bda.Files(EXAMPLES / "normal-voice.syx") as files, bda.Library() as library:
        library.set("device-number", "7")
        with pytest.raises(bda.Refused, match="device"):
            library.restore(files)
        assert library.restore(files, any_device=True)
        assert names(library) == {PLACE: NAME}


def test_any_options_find_or_are_an_exception(stored: bda.Library) -> None:
    keys = some.sampled_from(["kind", "where", "favourite", "same_as", "like", "duplicates", "edit_buffers", "x"])
    values = some.none() | some.booleans() | some.text() | some.lists(some.text()) | some.floats()

    @given(some.dictionaries(keys, values), some.lists(some.text(max_size=3), max_size=2))
    def find(members: dict[str, Any], terms: list[str]) -> None:
        try:
            assert stored.find(*terms, **members)
        except (bda.Unusable, bda.Refused) as error:
            assert error.text

    find()
