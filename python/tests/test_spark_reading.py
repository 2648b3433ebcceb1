"""What Spark's tasks read, without Spark: values, modes, what is wrong."""

from __future__ import annotations

import datetime as dt
import json
import pickle
import shutil
from decimal import Decimal
from pathlib import Path
from typing import Any

import pyarrow as pa
import pytest
from pyspark.sql import types as st
from pyspark.sql.datasource import EqualTo, Filter, GreaterThan, LessThan, StringContains

import mdfkit
from conftest import BRAKES, DATES, ENGINE, SPEEDS, Make
from mdfkit.spark import columns, heads
from mdfkit.spark.options import Options
from mdfkit.spark.source import MdfDataSource, SamplesReader


def read(
    path: Any, *, schema: st.StructType | None = None, filters: Any = (), **options: Any
) -> list[list[dict[str, Any]]]:
    """Read as Spark does: the rows of each task."""
    stated = {name: str(value) for name, value in options.items()}
    source = MdfDataSource({"paths": json.dumps([str(path)]), **stated})
    reader = source.reader(source.schema() if schema is None else schema)
    if filters:
        push(reader, list(filters))
    tasks = pickle.loads(pickle.dumps(reader.partitions()))
    there = pickle.loads(pickle.dumps(reader))
    return [[row for batch in there.read(task) for row in batch.to_pylist()] for task in tasks]


def push(reader: Any, filters: list[Filter]) -> None:
    assert list(reader.pushFilters(filters)) == filters  # Spark applies all of them again


def rows(path: Any, **options: Any) -> list[dict[str, Any]]:
    return [row for task in read(path, **options) for row in task]


def test_samples_are_columns_with_those_about_the_file(make: Make) -> None:
    path = str(make(engine=ENGINE))
    about = {"path": path, "start": None}
    assert rows(path) == [
        {"t": 0.0, "speed": 1.5, "gear": 1, "text": "off", **about},
        {"t": 0.5, "speed": 2.5, "gear": 2, "text": "on, at last", **about},
        {"t": 1.0, "speed": None, "gear": None, "text": None, **about},
        {"t": 1.5, "speed": -4.25, "gear": 255, "text": "größer", **about},
    ]


def test_attributes_are_chosen(make: Make) -> None:
    path = make(dates=DATES)
    start = dt.datetime(2024, 5, 17, 11, 45, 12, 500000, tzinfo=dt.timezone.utc)
    assert rows(path, attributes="start,group,comment")[0] == {
        "time": 0.0,
        "speed": 1,
        "start": start,
        "group": "dates",
        "comment": "imported from dates.csv",
    }
    assert rows(path, attributes="")[1] == {"time": 500000001 * 1e-9, "speed": 2}


def test_times_of_day_have_microseconds(make: Make) -> None:
    found = rows(make(dates=DATES), times="timestamps", attributes="")
    assert [row["time"] for row in found] == [
        dt.datetime(2024, 5, 17, 11, 45, 12, 500000, tzinfo=dt.timezone.utc),
        dt.datetime(2024, 5, 17, 11, 45, 13, tzinfo=dt.timezone.utc),
    ]


def test_local_times_count_as_utc(samples: Path) -> None:
    found = rows(samples / "time-local.mf4", times="timestamps")
    midnight = dt.datetime(2020, 1, 1, tzinfo=dt.timezone.utc)
    assert [(row["t"] - midnight, row["start"]) for row in found] == [
        (dt.timedelta(seconds=0.5 * i), midnight) for i in range(3)
    ]


def test_large_unsigned_integers_are_decimals(samples: Path) -> None:
    found = rows(samples / "data-type-uint-le-64-bits.mf4")
    assert [row["v"] for row in found] == [
        Decimal(578437695752307201),
        Decimal(2**64 - 2),
        Decimal(2**64 - 1),
    ]


def test_stored_values_and_numbers_are_had(samples: Path) -> None:
    path = samples / "conversion-value-to-text.mf4"
    assert [row["v"] for row in rows(path)] == ["off", "on", "?", "?"]
    numbers = [row["v"] for row in rows(path, numbers="true")]
    assert numbers == [row["v"] for row in rows(path, raw="true")] == [0, 1, 2, -1]


def test_files_with_other_channels_and_types_are_one_table(make: Make, tmp_path: Path) -> None:
    make("a.mf4", engine="t [s],v [km/h],x\n0,1,7\n")
    make("b.mf4", engine="t [s],v [km/h],y\n0,-70000,off\n")
    make("c.mf4", engine="t [s],v [mph],x\n0,0.5,on\n")
    found = rows(tmp_path, attributes="")
    assert found == [
        {"t": 0.0, "v": 1.0, "x": "7", "y": None},
        {"t": 0.0, "v": -70000.0, "x": None, "y": "off"},
        {"t": 0.0, "v": 0.5, "x": "on", "y": None},
    ]


def test_files_without_what_is_asked_for_have_no_rows(make: Make, tmp_path: Path) -> None:
    make("a.mf4", brakes=BRAKES)
    make("b.mf4", engine=ENGINE)
    found = rows(tmp_path, channels="pressure,oil", attributes="", mode="FAILFAST")
    assert found == [{"t": 0.0, "pressure": 10}, {"t": 2.0, "pressure": 30}]
    assert rows(tmp_path, group="brakes", attributes="")[0] == {
        "t": 0.0,
        "pressure": 10,
        "speed": 1,
    }
    with pytest.raises(mdfkit.WrongQuery, match=r"none of 2 files .* has no channel oil in"):
        rows(tmp_path, channels="oil", group="brakes")


def test_channels_of_several_groups_are_a_fault_of_that_file(make: Make, tmp_path: Path) -> None:
    make("a.mf4", engine=ENGINE, brakes=BRAKES)
    make("b.mf4", brakes=BRAKES)
    log = tmp_path / "log"
    assert len(rows(tmp_path, channels="speed", log=log)) == 2
    [fault] = logged(log)
    assert fault["path"] == str(tmp_path / "a.mf4")
    assert (fault["code"], fault["severity"]) == ("query-wrong", "error")
    assert "group" in fault["text"]
    with pytest.raises(mdfkit.UnreadableFile, match=r"a\.mf4: .*query-wrong"):
        rows(tmp_path, channels="speed", mode="FAILFAST")


def logged(folder: Path) -> list[dict[str, Any]]:
    return [
        json.loads(line)
        for path in sorted(folder.iterdir())
        for line in path.read_text(encoding="utf-8").splitlines()
    ]


def test_a_stated_schema_decides(make: Make) -> None:
    path = make(engine=ENGINE)
    schema = st.StructType(
        [
            st.StructField("path", st.StringType()),
            st.StructField("GEAR", st.LongType()),
            st.StructField("speed", st.FloatType()),
            st.StructField("oil", st.DoubleType()),
        ]
    )
    assert rows(path, schema=schema) == [
        {"path": str(path), "GEAR": gear, "speed": speed, "oil": None}
        for gear, speed in ((1, 1.5), (2, 2.5), (None, None), (255, -4.25))
    ]


def test_small_files_are_looked_into_by_tasks_if_columns_are_stated(
    make: Make, tmp_path: Path, monkeypatch: pytest.MonkeyPatch
) -> None:
    size = make("large.mf4", dates=DATES).stat().st_size
    monkeypatch.setattr("mdfkit.spark.source.TASK_BYTES", size)
    make("large.mf4", dates=DATES + "2024-05-17T13:45:14+02:00,3\n")
    make("small.mf4", one="t [s],speed\n0,1\n1,2\n")
    (tmp_path / "empty.mf4").touch()
    read: list[str] = []
    head = heads.read_head

    def noted(path: str, options: Options) -> heads.Head:
        read.append(path)
        return head(path, options)

    monkeypatch.setattr(heads, "read_head", noted)
    kinds = {"speed": st.LongType(), "start": st.TimestampType(), "group": st.StringType()}
    schema = st.StructType([st.StructField(name, kind) for name, kind in kinds.items()])
    start = dt.datetime(2024, 5, 17, 11, 45, 12, 500000, tzinfo=dt.timezone.utc)
    found = rows(tmp_path, schema=schema, log=tmp_path / "log")
    assert [tuple(row.values()) for row in found] == [
        (1, start, "dates"),
        (2, start, "dates"),
        (3, start, "dates"),
        (1, None, "one"),
        (2, None, "one"),
    ]
    assert read == [str(tmp_path / "large.mf4")]  # before the tasks
    assert [fault["code"] for fault in logged(tmp_path / "log")] == ["not-mdf"]
    only = rows(tmp_path, schema=schema, filters=[EqualTo(("group",), "one")])
    assert [row["speed"] for row in only] == [1, 2]


def test_what_does_not_fit_a_stated_type_is_null_and_a_fault(make: Make, tmp_path: Path) -> None:
    path = make(engine=ENGINE)
    schema = st.StructType(
        [st.StructField("gear", st.ByteType()), st.StructField("text", st.StringType())]
    )
    found = rows(path, schema=schema, log=tmp_path / "log")
    assert [row["gear"] for row in found] == [None] * 4
    assert [row["text"] for row in found] == ["off", "on, at last", None, "größer"]
    [fault] = logged(tmp_path / "log")
    assert (fault["code"], fault["severity"]) == ("type-unfit", "error")
    assert fault["text"].startswith("channel 'gear' cannot be given as int8: ")
    with pytest.raises(mdfkit.WrongQuery, match="no channel can be given as array<int>"):
        rows(path, schema=st.StructType([st.StructField("v", st.ArrayType(st.IntegerType()))]))


def test_small_files_share_batches(make: Make, tmp_path: Path) -> None:
    for i in range(3):
        make(f"{i}.mf4", engine=f"t [s],v,{'x' if i else 'y'}\n0,{i},a\n1,,b\n")
    source = MdfDataSource({"path": str(tmp_path), "attributes": ""})
    reader = source.reader(source.schema())
    [task] = reader.partitions()
    [batch] = reader.read(task)
    assert isinstance(batch, pa.RecordBatch)
    assert batch.to_pydict() == {
        "t": [0.0, 1.0] * 3,
        "v": [0, None, 1, None, 2, None],
        "y": ["a", "b", None, None, None, None],
        "x": [None, None, "a", "b", "a", "b"],
    }


def test_large_batches_are_not_joined() -> None:
    batches = [pa.record_batch({"v": range(rows)}) for rows in (10, 20, 200_000, 30, 40)]
    assert [batch.num_rows for batch in columns.joined(batches)] == [30, 200_000, 70]
    assert list(columns.joined([])) == []


def test_a_large_file_is_read_in_pieces(make: Make) -> None:
    path = make(engine=SPEEDS)
    tasks = read(path, rows_per_partition=3)
    assert [[row["speed"] for row in task] for task in tasks] == [
        [0, 10],
        [20, 30, 40],
        [50, 60],
        [70, 80, 90],
    ]


def test_files_whose_groups_share_data_are_read_whole(samples: Path) -> None:
    path = samples / "unsorted-record-id-1.mf4"
    [task] = read(path, group=0, rows_per_partition=2)
    assert [row["v"] for row in task] == [0, 7, 14, 21, 28]


@pytest.mark.parametrize(
    ("filters", "speeds"),
    [
        ([GreaterThan(("t",), 6.5)], [70, 80, 90]),
        ([GreaterThan(("t",), 6.0), LessThan(("t",), 8.0)], [60, 70, 80]),
        ([EqualTo(("t",), 4.0)], [40]),
        ([EqualTo(("t",), 4.5)], []),
        ([EqualTo(("speed",), 40)], [10 * i for i in range(10)]),
        ([StringContains(("path",), "trip"), GreaterThan(("t",), 8.5)], [90]),
        ([EqualTo(("path",), "/elsewhere")], []),
    ],
)
@pytest.mark.parametrize("most", [3, 100])
def test_filters_limit_what_is_read(
    make: Make, filters: list[Filter], speeds: list[int], most: int
) -> None:
    path = make(engine=SPEEDS)
    found = rows(path, filters=filters, rows_per_partition=most)
    assert [row["speed"] for row in found] == speeds


def test_limits_are_options_too(make: Make) -> None:
    found = rows(make(engine=SPEEDS), start=3, stop=6, filters=[GreaterThan(("t",), 4.5)])
    assert [row["speed"] for row in found] == [50, 60]


def test_filters_on_times_of_day_limit_what_is_read(make: Make) -> None:
    second = dt.datetime(2024, 5, 17, 11, 45, 13, tzinfo=dt.timezone.utc)
    found = rows(make(dates=DATES), times="timestamps", filters=[GreaterThan(("time",), second)])
    assert [row["speed"] for row in found] == [2]  # of which Spark leaves out what is equal
    early = [LessThan(("time",), second - dt.timedelta(milliseconds=1))]
    assert [row["speed"] for row in rows(make(dates=DATES), times="timestamps", filters=early)] == [
        1
    ]


def test_stored_times_are_not_limited_by_filters(make: Make) -> None:
    found = rows(make(engine=SPEEDS), raw="true", filters=[GreaterThan(("t",), 6_000_000_000)])
    assert len(found) == 10


def test_files_are_left_out_before_they_are_tasks(make: Make, tmp_path: Path) -> None:
    make("a.mf4", engine=SPEEDS)
    make("b.mf4", engine=SPEEDS)
    source = MdfDataSource({"path": str(tmp_path), "rows_per_partition": "10"})
    reader = source.reader(source.schema())
    push(reader, [EqualTo(("path",), str(tmp_path / "b.mf4"))])
    assert isinstance(reader, SamplesReader)
    [task] = reader.partitions()
    assert [piece.path for piece in task.pieces] == [str(tmp_path / "b.mf4")]  # type: ignore[attr-defined]


@pytest.fixture
def damaged(damaged: Path) -> Path:
    """With no measurement and another healthy file, too."""
    (damaged / "d.mf4").write_bytes(b"text" * 100)
    shutil.copy(damaged / "a.mf4", damaged / "e.mf4")
    return damaged


def counts(found: list[dict[str, Any]]) -> dict[str, int]:
    names = [Path(row["path"]).name for row in found]
    return {name: names.count(name) for name in sorted(set(names))}


def test_what_can_be_read_of_damaged_files_is_read(damaged: Path, tmp_path: Path) -> None:
    log = tmp_path / "log"
    found = rows(damaged, rows_per_partition=4, log=log)
    assert counts(found) == {"a.mf4": 10, "b.mf4": 7, "e.mf4": 10}
    faults = [(Path(each["path"]).name, each["code"], each["offset"]) for each in logged(log)]
    assert sorted({each[0] for each in faults}) == ["b.mf4", "c.mf4", "d.mf4"]
    assert ("c.mf4", "not-mdf", 0) in faults
    assert ("d.mf4", "not-mdf", 0) in faults
    for path in damaged.iterdir():
        if path.name > "a.mf4" and path.name < "e.mf4":
            path.unlink()
    rows(damaged, log=log, rows_per_partition=4)  # the log is that of the last time
    assert not {"c.mf4", "d.mf4"} & {Path(each["path"]).name for each in logged(log)}


def test_files_with_errors_are_left_out(damaged: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    expected = {"a.mf4": 10, "e.mf4": 10}
    assert counts(rows(damaged, mode="DROPMALFORMED", rows_per_partition=4)) == expected
    # Files too large to be kept in memory are read once more.
    monkeypatch.setattr("mdfkit.spark.reading._KEPT_BYTES", 100)
    assert counts(rows(damaged, mode="DROPMALFORMED", rows_per_partition=4)) == expected


def test_the_first_error_ends_the_job(damaged: Path) -> None:
    with pytest.raises(mdfkit.UnreadableFile) as caught:
        rows(damaged, mode="FAILFAST")
    assert str(caught.value) == (
        f"{damaged}/c.mf4: at byte 0: this is not an MDF file: it is empty (not-mdf)"
    )
    with pytest.raises(mdfkit.UnreadableFile, match=r"b\.mf4: at byte \d+: expected the \d+ bytes"):
        rows(damaged / "b.mf4", mode="FAILFAST")


def test_a_file_that_goes_away_is_a_fault(make: Make, tmp_path: Path) -> None:
    path = make(engine=SPEEDS)
    log = tmp_path / "log"
    source = MdfDataSource({"path": str(path), "log": str(log)})
    reader = source.reader(source.schema())
    path.unlink()
    [task] = reader.partitions()
    assert list(reader.read(task)) == []
    [fault] = logged(log)
    assert (fault["path"], fault["severity"]) == (str(path), "error")


def test_findings_are_a_table(damaged: Path) -> None:
    found = rows(damaged, table="findings")
    assert [(Path(row["path"]).name, row["code"], row["severity"]) for row in found] == [
        ("b.mf4", "length-past-end", "error"),
        ("c.mf4", "not-mdf", "error"),
        ("d.mf4", "not-mdf", "error"),
    ]
    assert found[1]["text"] == "this is not an MDF file: it is empty"
    assert rows(damaged / "a.mf4", table="findings") == []
    with pytest.raises(mdfkit.UnreadableFile, match="length-past-end"):
        rows(damaged, table="findings", mode="FAILFAST")


def test_files_and_channels_are_tables(make: Make, damaged: Path) -> None:
    path = make("two.mf4", engine=ENGINE, brakes=BRAKES)
    [row] = rows(path, table="files")
    assert (row["path"], row["groups"], row["channels"], row["records"]) == (str(path), 2, 7, 6)
    assert (row["version"], row["finished"], row["duration"], row["error"]) == (
        410,
        True,
        2.0,
        None,
    )
    assert [row["error"] for row in rows(damaged, table="files")] == [
        None,
        None,
        "this is not an MDF file: it is empty",
        'this is not an MDF file: it begins with "texttext"',
        None,
    ]
    units = [
        (row["group_name"], row["channel"], row["unit"]) for row in rows(path, table="channels")
    ]
    assert units[4:] == [
        ("brakes", "t", "s"),
        ("brakes", "pressure", "bar"),
        ("brakes", "speed", "km/h"),
    ]
    assert len(rows(path, table="channels", group="engine")) == 4


@pytest.mark.filterwarnings("ignore::mdfkit.MdfWarning")
def test_every_sample_file_is_a_table(samples: Path) -> None:
    """All groups that are tables of their own have the rows that the package reads."""
    for path in sorted(samples.glob("*.mf4")):
        with mdfkit.open(path) as m:
            groups = [group.number for group in m.groups if group.elements == (None,)]
            for number in groups:
                table = m.groups[number].read().to_arrow()
                found = rows(path, group=number, attributes="", rows_per_partition=2)
                assert len(found) == table.num_rows, path
                assert_same(found, table, path)


def assert_same(found: list[dict[str, Any]], table: pa.Table, path: Path) -> None:
    for i, name in enumerate(table.column_names):
        column = table.column(i).to_pylist()
        values = [list(row.values())[i] for row in found]
        assert repr(values).replace("Decimal('", "").replace("')", "") == repr(column), (path, name)
