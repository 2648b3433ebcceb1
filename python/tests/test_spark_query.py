"""What a query of Spark may state: options, paths, columns, tasks, filters."""

from __future__ import annotations

import datetime as dt
from pathlib import Path
from typing import Any

import pyarrow as pa
import pytest
from pyspark.sql import types as st
from pyspark.sql.datasource import (
    EqualTo,
    Filter,
    GreaterThan,
    GreaterThanOrEqual,
    In,
    IsNotNull,
    LessThan,
    LessThanOrEqual,
    Not,
    StringContains,
    StringStartsWith,
)

import mdfkit
from mdfkit.spark import filters, partitions, paths, schema
from mdfkit.spark.heads import Head
from mdfkit.spark.options import Options


def test_options_are_understood_whatever_their_case() -> None:
    stated = {
        "path": "/a",
        "paths": '["/b", "/c"]',
        "Channels": "speed, rpm",
        "GROUP": "engine",
        "raw": "True",
        "start": "-1.5",
        "mode": "failfast",
        "rows_per_partition": "1000",
        "attributes": "",
    }
    assert Options.of(stated) == Options(
        paths=("/a", "/b", "/c"),
        channels=("speed", "rpm"),
        group="engine",
        raw=True,
        start=-1.5,
        mode="FAILFAST",
        rows_per_partition=1000,
        attributes=(),
    )


@pytest.mark.parametrize(
    ("text", "channels"),
    [
        ("*", None),
        ("", None),
        ('["a,b", " c"]', ("a,b", " c")),
        ("[sr]p*", ("[sr]p*",)),
        ("speed*,rpm,", ("speed*", "rpm")),
    ],
)
def test_channels_are_a_list(text: str, channels: Any) -> None:
    assert Options.of({"channels": text}).channels == channels


@pytest.mark.parametrize(
    ("name", "value", "sentence"),
    [
        ("chanels", "speed", "there is no option 'chanels', but attributes, channels, group, log"),
        ("mode", "strict", "option 'mode' is 'strict'; expected PERMISSIVE, DROPMALFORMED, FAIL"),
        ("raw", "yes", "option 'raw' is 'yes'; expected true or false"),
        ("start", "noon", "option 'start' is 'noon'; expected a number"),
        ("rows_per_partition", "0", "is '0'; expected a whole number above 0"),
        ("attributes", "path,size", "expected some of path, start, group, comment"),
        ("channels", "[1]", "expected a list of texts"),
    ],
)
def test_wrong_options_are_refused(name: str, value: str, sentence: str) -> None:
    with pytest.raises(mdfkit.WrongQuery, match=sentence):
        Options.of({"path": "/a", name: value})


@pytest.fixture
def fleet(tmp_path: Path) -> Path:
    for name in ("a.mf4", "x/b.MF4", "x/y/c.mdf", "x/d,e.mf4", "x/notes.txt", "_old/f.mf4"):
        (tmp_path / name).parent.mkdir(parents=True, exist_ok=True)
        (tmp_path / name).touch()
    return tmp_path


@pytest.mark.parametrize(
    ("wanted", "found"),
    [
        ("", ["a.mf4", "x/b.MF4", "x/d,e.mf4", "x/y/c.mdf"]),
        ("/", ["a.mf4", "x/b.MF4", "x/d,e.mf4", "x/y/c.mdf"]),
        ("/a.mf4", ["a.mf4"]),
        ("/*.mf4", ["a.mf4"]),
        ("/*/*.mf4", ["_old/f.mf4", "x/d,e.mf4"]),
        ("/**/c.*", ["x/y/c.mdf"]),
        ("/x/d,e.mf4", ["x/d,e.mf4"]),
        ("/x/notes.txt", ["x/notes.txt"]),
        ("/x/../a.mf4", ["a.mf4"]),
    ],
)
def test_paths_mean_files(fleet: Path, wanted: str, found: list[str]) -> None:
    expected = [str(fleet / name) for name in found]
    assert paths.find([str(fleet) + wanted]) == expected
    assert paths.find([f"file://{fleet}{wanted}"]) == expected


def test_several_paths_give_each_file_once(fleet: Path) -> None:
    one = [str(fleet / "a.mf4"), str(fleet / "x/y/c.mdf")]
    assert paths.find([f"{fleet}/x/y, {fleet}/a.mf4", *one]) == one


@pytest.mark.parametrize(
    ("wanted", "sentence"),
    [
        (["/nowhere/*.mf4"], r"there is no measurement file /nowhere/\*.mf4"),
        (["/,/nowhere"], "there is no measurement file /nowhere"),
        ([], "no path of measurement files is given"),
        (["s3a://fleet/a.mf4"], "a file system that all workers have mounted, not by s3a:"),
    ],
)
def test_paths_without_files_are_an_error(fleet: Path, wanted: list[str], sentence: str) -> None:
    with pytest.raises(FileNotFoundError, match=sentence):
        paths.find([each.replace("/,", f"{fleet},") for each in wanted])


@pytest.mark.parametrize(
    ("arrow", "spark"),
    [
        (pa.int8(), st.ByteType()),
        (pa.uint8(), st.ShortType()),
        (pa.uint16(), st.IntegerType()),
        (pa.uint32(), st.LongType()),
        (pa.int64(), st.LongType()),
        (pa.uint64(), st.DecimalType(20, 0)),
        (pa.float32(), st.FloatType()),
        (pa.float64(), st.DoubleType()),
        (pa.large_string(), st.StringType()),
        (pa.large_binary(), st.BinaryType()),
        (pa.timestamp("ns"), st.TimestampType()),
    ],
)
def test_types_hold_all_values(arrow: pa.DataType, spark: st.DataType) -> None:
    assert schema.spark_type(arrow) == spark


@pytest.mark.parametrize(
    ("one", "other", "both"),
    [
        (st.ShortType(), st.LongType(), st.LongType()),
        (st.LongType(), st.DecimalType(20, 0), st.DecimalType(20, 0)),
        (st.FloatType(), st.DoubleType(), st.DoubleType()),
        (st.ShortType(), st.FloatType(), st.DoubleType()),
        (st.DecimalType(20, 0), st.FloatType(), st.DoubleType()),
        (st.DoubleType(), st.StringType(), st.StringType()),
        (st.TimestampType(), st.DoubleType(), st.StringType()),
        (st.StringType(), st.BinaryType(), st.BinaryType()),
        (st.ShortType(), st.BinaryType(), st.BinaryType()),
    ],
)
def test_types_that_differ_are_widened(
    one: st.DataType, other: st.DataType, both: st.DataType
) -> None:
    assert schema.wider(one, other) == schema.wider(other, one) == both


def field(name: str, kind: pa.DataType, **facts: str) -> pa.Field:
    return pa.field(name, kind, metadata=facts)


def test_columns_are_those_of_all_files() -> None:
    heads = [
        Head("/a", schema=pa.schema([field("t", pa.float64(), unit="s"), field("v", pa.uint8())])),
        Head("/b"),
        Head(
            "/c",
            schema=pa.schema(
                [
                    field("t", pa.float64(), unit="s"),
                    field("v", pa.int32(), unit="km/h"),
                    field("V", pa.int8(), comment="another one"),
                    field("path", pa.float64()),
                    field("Comment", pa.int8()),
                ]
            ),
        ),
        Head("/d", schema=pa.schema([field("v", pa.float32(), unit="mph")])),
    ]
    assert schema.merged(heads, ("path", "start")).fields == [
        st.StructField("t", st.DoubleType(), True, {"unit": "s"}),
        st.StructField("v", st.DoubleType(), True, {"unit": "km/h", "units": ["km/h", "mph"]}),
        st.StructField("V (2)", st.ByteType(), True, {"comment": "another one", "channel": "V"}),
        st.StructField("path (2)", st.DoubleType(), True, {"channel": "path"}),
        st.StructField("Comment (2)", st.ByteType(), True, {"channel": "Comment"}),
        st.StructField("path", st.StringType(), True),
        st.StructField("start", st.TimestampType(), True),
    ]


def head(path: str, records: int, **facts: Any) -> Head:
    facts = {"group": 0, "record_bytes": 1 << 10, "can_be_cut": True, **facts}
    return Head(path, records=records, **facts)


def planned(heads: list[Head], **options: Any) -> list[list[tuple[str, int, int | None]]]:
    return [
        [(piece.path, piece.skip, piece.first) for piece in task.pieces]
        for task in partitions.plan(heads, Options(**options))
    ]


def test_large_files_are_cut_into_even_pieces() -> None:
    records = 3 * 65536 + 3
    assert planned([head("/a", records)]) == [
        [("/a", 0, 49152)],
        [("/a", 49152, 49153)],
        [("/a", 98305, 49153)],
        [("/a", 147458, None)],
    ]
    assert planned([head("/a", 5)], rows_per_partition=2) == [
        [("/a", 0, 1)],
        [("/a", 1, 2)],
        [("/a", 3, None)],
    ]


def test_files_that_cannot_be_entered_are_not_cut() -> None:
    whole = [[("/a", 0, None)]]
    assert planned([head("/a", 1 << 20, can_be_cut=False)]) == whole
    assert planned([head("/a", 1 << 20)], mode="DROPMALFORMED") == whole


def test_small_files_share_tasks() -> None:
    tasks = planned([head(f"/{i:04}", 1024) for i in range(2000)])  # of 2 MiB with their opening
    assert [len(task) for task in tasks] == [32] * 62 + [16]
    assert [piece for task in tasks for piece in task] == [
        (f"/{i:04}", 0, None) for i in range(2000)
    ]
    assert planned([head(f"/{i}", 3) for i in range(4)], rows_per_partition=6) == [
        [("/0", 0, None), ("/1", 0, None)],
        [("/2", 0, None), ("/3", 0, None)],
    ]


UTC = dt.timezone.utc
NOON = dt.datetime(2026, 11, 23, 12, tzinfo=UTC)


@pytest.mark.parametrize(
    ("pushed", "passes"),
    [
        (EqualTo(("path",), "/fleet/a.mf4"), True),
        (EqualTo(("path",), "/fleet/b.mf4"), False),
        (In(("path",), ("/fleet/b.mf4", "/fleet/a.mf4")), True),
        (In(("path",), ("/fleet/b.mf4",)), False),
        (Not(In(("path",), ("/fleet/a.mf4",))), False),
        (StringStartsWith(("path",), "/fleet/a"), True),
        (StringStartsWith(("path",), "/other"), False),
        (StringContains(("path",), "leet"), True),
        (GreaterThan(("start",), NOON), False),
        (LessThanOrEqual(("start",), NOON), True),
        (LessThan(("start",), dt.datetime(2026, 1, 1)), True),  # no zone: not compared
        (GreaterThan(("speed",), 1000.0), True),
        (Not(EqualTo(("speed",), 1.0)), True),
        (EqualTo(("group",), "brakes"), True),  # the file does not say
        (IsNotNull(("path",)), True),
    ],
)
def test_files_that_cannot_pass_are_left_out(pushed: Filter, passes: bool) -> None:
    attributes = {"path": "/fleet/a.mf4", "start": NOON, "group": None}
    assert filters.may_pass([pushed], attributes) is passes


@pytest.mark.parametrize(
    ("pushed", "low", "high"),
    [
        ([], None, None),
        ([GreaterThan(("t",), 1.5), LessThan(("t",), 2.5)], 1.5, 2.5),
        ([GreaterThanOrEqual(("t",), 1.5), GreaterThan(("t",), 1.0)], 1.5, None),
        ([LessThanOrEqual(("t",), 1.5), LessThan(("t",), 1.0)], None, 1.0),
        ([EqualTo(("t",), 1.5)], 1.5, 1.5),
        ([EqualTo(("v",), 1.5), Not(EqualTo(("t",), 1.5)), In(("t",), (1.0,))], None, None),
        ([EqualTo(("t",), "1.5"), EqualTo(("t",), True), EqualTo(("t",), None)], None, None),
        ([LessThan(("t",), float("nan")), GreaterThan(("t",), float("-inf"))], None, None),
    ],
)
def test_times_are_limited(pushed: list[Filter], low: float | None, high: float | None) -> None:
    assert filters.limits(pushed, "t", None) == (low, high)


def test_times_of_day_are_limited_with_some_room() -> None:
    start = 1_795_435_200_123_456_789  # 12:00:00.123456789 of that day
    low, high = filters.limits([EqualTo(("t",), NOON + dt.timedelta(seconds=2))], "t", start)
    assert low is not None
    assert high is not None
    assert low < 2 - 0.123456789 < high
    assert high - low < 4e-6
    assert filters.limits([EqualTo(("t",), NOON)], "t", None) == (None, None)


def test_whole_numbers_beyond_those_of_doubles_have_room() -> None:
    wanted = 2**53 + 1
    low, high = filters.limits([EqualTo(("t",), wanted)], "t", None)
    assert low is not None
    assert high is not None
    assert low < wanted < high
