"""Attachments and events."""

from __future__ import annotations

from pathlib import Path

import pytest

import mdfkit

DIGEST = "900150983cd24fb0d6963f7d28e17f72"


def test_attachments_are_listed_and_read(samples: Path, tmp_path: Path) -> None:
    attachments = mdfkit.open(samples / "block-attachment-several.mf4").attachments
    assert [(each.name, each.size, each.is_embedded, each.md5) for each in attachments] == [
        ("notes.txt", 3, True, None),
        ("zip.txt", 3, True, None),
        ("videos\\drive.avi", None, False, None),
        ("checked.bin", 3, True, DIGEST),
        ("both.bin", 3, True, DIGEST),
    ]
    assert attachments["zip.txt"].mime_type == "text/plain"
    assert [attachments[i].read() for i in (0, 1, 3, 4)] == [b"abc"] * 4
    assert repr(attachments[3]) == "<attachment 3 'checked.bin', 3 bytes>"
    attachments["both.bin"].save(tmp_path / "both.bin")
    assert (tmp_path / "both.bin").read_bytes() == b"abc"
    with pytest.raises(FileExistsError):
        attachments["notes.txt"].save(tmp_path / "both.bin")


def test_data_that_is_not_there_or_damaged_is_an_error(samples: Path, tmp_path: Path) -> None:
    several = mdfkit.open(samples / "block-attachment-several.mf4").attachments
    with pytest.raises(mdfkit.WrongQuery, match="the attachment's data is not in the file"):
        several[2].read()
    with pytest.raises(mdfkit.WrongQuery, match=r"no attachment has the name 'a\.bin'"):
        several["a.bin"]
    damaged = (samples / "block-attachment-with-digest.mf4").read_bytes()
    assert damaged.count(b"abc") == 1
    (tmp_path / "damaged.mf4").write_bytes(damaged.replace(b"abc", b"abd"))
    (attachment,) = mdfkit.open(tmp_path / "damaged.mf4").attachments
    with pytest.raises(mdfkit.UnreadableFile, match="another MD5 digest") as raised:
        attachment.save(tmp_path / "none.bin")
    assert raised.value.code == "attachment-digest-wrong"
    assert not (tmp_path / "none.bin").exists()


def test_events_say_what_happened_and_when(samples: Path) -> None:
    (begin, end) = mdfkit.open(samples / "block-event-range.mf4").events
    assert begin == mdfkit.Event(
        name="lap",
        comment="",
        type="marker",
        cause="other",
        range_type="begin",
        position=0.25,
        unit="s",
    )
    assert (end.range_type, end.position) == ("end", 1.0)
    events = mdfkit.open(samples / "block-event-sync-types.mf4").events
    assert [(each.position, each.unit) for each in events] == [
        (-1.5, "s"),
        (-1.5, "rad"),
        (-1.5, "m"),
        (2.0, "index"),
    ]
    assert events["over 2"].unit == "rad"
