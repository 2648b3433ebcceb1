"""What cannot be read, and what cannot be asked for."""

from __future__ import annotations

import copy
import pickle
import re
import struct
from collections.abc import Iterator
from pathlib import Path
from typing import Any

import pyarrow as pa
import pytest

import mdfkit
from conftest import ENGINE, Make


def test_a_missing_file_is_an_error_of_files(tmp_path: Path) -> None:
    path = tmp_path / "none.mf4"
    with pytest.raises(FileNotFoundError) as caught:
        mdfkit.open(path)
    assert isinstance(caught.value, mdfkit.UnreadableFile)
    assert isinstance(caught.value, mdfkit.MdfError)
    assert str(caught.value) == f"cannot open {path}: No such file or directory"
    assert caught.value.code == "request-failed"
    assert caught.value.offset is None


def test_a_folder_is_no_file(tmp_path: Path) -> None:
    with pytest.raises(OSError, match="Is a directory") as caught:
        mdfkit.open(tmp_path)
    assert isinstance(caught.value, mdfkit.UnreadableFile)
    assert not isinstance(caught.value, FileNotFoundError)


def test_another_file_has_a_code_and_an_offset(tmp_path: Path) -> None:
    path = tmp_path / "table.csv"
    path.write_text("t [s],speed\n" + "0,1\n" * 20)
    with pytest.raises(mdfkit.UnreadableFile) as caught:
        mdfkit.open(path)
    assert (caught.value.code, caught.value.offset) == ("not-mdf", 0)
    assert str(caught.value) == (f'{path}: this is not an MDF file: it begins with "t [s],sp"')


def test_errors_survive_being_sent_to_another_process() -> None:
    error = mdfkit.WrongQuery("no channel", "query-wrong", 7)
    for same in (pickle.loads(pickle.dumps(error)), copy.copy(error)):
        assert type(same) is mdfkit.WrongQuery
        assert (str(same), same.code, same.offset) == ("no channel", "query-wrong", 7)


@pytest.mark.parametrize(
    ("options", "sentence"),
    [
        ({"channels": ["sped"]}, 'no channel matches "sped"'),
        ({"group": 7}, "no channel group fits the query"),
        (
            {"first": 0},
            'expected "first" of the query to be a number of records from 1 on, found 0',
        ),
        (
            {"times": "hours"},
            'expected "times" of the query to be "seconds" or "timestamps", found "hours"',
        ),
        (
            {"times": "timestamps"},
            "the file does not state when it starts, so there are no timestamps",
        ),
    ],
)
def test_a_wrong_query_says_what_is_wrong(
    engine: mdfkit.Measurement, options: dict[str, Any], sentence: str
) -> None:
    query = engine.read(**options)
    with pytest.raises(ValueError, match=re.escape(sentence)) as caught:
        query.to_arrow()
    assert isinstance(caught.value, mdfkit.WrongQuery)
    assert (str(caught.value), caught.value.code) == (sentence, "query-wrong")


def test_channels_of_two_groups_are_refused_in_the_librarys_words(
    two_groups: mdfkit.Measurement,
) -> None:
    with pytest.raises(mdfkit.WrongQuery) as caught:
        two_groups["speed"].to_pandas()
    assert str(caught.value) == (
        'expected channels of one channel group, found them in 0 "engine", 1 "brakes"; '
        'choose one by "group"'
    )


def test_an_unknown_name_is_a_key_error_that_knows_better(engine: mdfkit.Measurement) -> None:
    with pytest.raises(KeyError) as caught:
        engine["sped"]
    assert str(caught.value) == f"{engine.path} has no channel 'sped'; there is 'speed'"
    with pytest.raises(mdfkit.UnknownChannel, match="channel group 0 has no channel 'oil'"):
        engine.groups[0]["oil"]
    with pytest.raises(mdfkit.UnknownGroup, match="no channel group has the name 'motor'"):
        engine.groups["motor"]
    with pytest.raises(IndexError, match="there is no channel group 1, for there are 1"):
        engine.groups[1]


def test_wrong_types_are_refused_before_anything_is_read(engine: mdfkit.Measurement) -> None:
    with pytest.raises(TypeError):
        engine.read(first=1.5)  # type: ignore[arg-type]
    with pytest.raises(ValueError, match="could not convert"):
        engine.read(start="soon")  # type: ignore[arg-type]


@pytest.mark.parametrize(
    ("raised", "expected"),
    [(OSError("a fault inside"), mdfkit.MdfError), (MemoryError("too much"), MemoryError)],
)
def test_a_stream_that_fails_is_an_error_of_this_package(
    engine: mdfkit.Measurement,
    monkeypatch: pytest.MonkeyPatch,
    raised: Exception,
    expected: type[Exception],
) -> None:
    def batches() -> Iterator[pa.RecordBatch]:
        raise raised
        yield

    failing = pa.RecordBatchReader.from_batches(pa.schema([]), batches())
    monkeypatch.setattr(engine._source, "stream", lambda _: failing)
    with pytest.raises(expected, match=str(raised)):
        engine.read().to_arrow()


def test_a_closed_measurement_is_not_read(engine: mdfkit.Measurement) -> None:
    query = engine.read()
    with engine:
        table = query.to_arrow()
    engine.close()
    assert table.num_rows == 4
    with pytest.raises(ValueError, match="is closed"):
        query.to_arrow()
    assert repr(engine) == f"<{engine.path}, closed>"


def test_one_warning_for_each_call(make: Make) -> None:
    path = make(engine=ENGINE)
    data = path.read_bytes()
    position = data.index(b"##DL")
    path.write_bytes(data[: position + 28])  # within the list of data blocks
    m = mdfkit.open(path)
    assert m.findings == []
    assert m.groups[0].records == 4  # finds the first of what is wrong
    with pytest.warns(mdfkit.MdfWarning) as warned:
        assert m.read().to_arrow().num_rows == 0
    assert [str(each.message) for each in warned] == [
        f"{path}: at byte {position}: expected the 56 bytes of ##DL, found 28 up to the file's end "
        "(length-past-end), and 1 more: see .findings"
    ]
    assert warned[0].filename == __file__
    assert m.findings == [
        mdfkit.Finding(
            code="length-past-end",
            severity="error",
            offset=position,
            path=m.findings[0].path,
            text="expected the 56 bytes of ##DL, found 28 up to the file's end",
        ),
        mdfkit.Finding(
            code="count-too-large",
            severity="error",
            offset=position,
            path=m.findings[1].path,
            text="expected the 2 links of ##DL, found 0",
        ),
    ]
    assert m.read().to_arrow().num_rows == 0  # without a second warning


def test_a_file_that_was_cut_off_gives_what_it_has(make: Make) -> None:
    path = make(brakes="t [s],pressure\n0,1\n1,2\n2,3\n")
    path.write_bytes(path.read_bytes()[:-1])
    with pytest.warns(mdfkit.MdfWarning, match="length-past-end"):
        frame = mdfkit.open(path).read().to_pandas()
    assert frame["pressure"].to_list() == [1, 2]


def test_a_header_that_leads_nowhere_is_found_at_once(make: Make) -> None:
    path = make(engine=ENGINE)
    data = bytearray(path.read_bytes())
    struct.pack_into("<Q", data, 64 + 24, 0xFFFFFFF0)  # the first data group
    path.write_bytes(data)
    with pytest.warns(mdfkit.MdfWarning, match="link"):
        m = mdfkit.open(path)
    assert (len(m.findings), len(m.groups), len(m.channels)) == (1, 0, 0)
    assert m.findings[0].offset == 64
