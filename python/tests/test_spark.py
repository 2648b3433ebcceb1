"""A fleet's files on a cluster of Spark."""

from __future__ import annotations

import re
import struct
from collections.abc import Iterator
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from typing import Any

import pyarrow as pa
import pyarrow.parquet as pq
import pytest
from pyspark.errors import PySparkException
from pyspark.sql import DataFrame, SparkSession

import mdfkit.spark
from conftest import BRAKES, DATES, ENGINE, SPEEDS, Make
from spark_cluster import Cluster, executors, wait_for
from test_documents import README, run_blocks
from test_query import ROWS


def load(spark: SparkSession, path: Any, **options: Any) -> DataFrame:
    reader = spark.read.format("mdf")
    for name, value in options.items():
        reader = reader.option(name, value)
    return reader.load([str(each) for each in path] if isinstance(path, list) else str(path))


def rows(frame: DataFrame) -> list[dict[str, Any]]:
    return [row.asDict() for row in frame.collect()]


def rows_read(frame: DataFrame) -> int:
    """Return how many rows the data source gives; limits of times are those that pass too."""
    frame.collect()
    plan = frame._jdf.queryExecution().executedPlan()
    scan = plan.collectLeaves().apply(0)
    return int(scan.metrics().apply("numOutputRows").value())


def test_spark_finds_the_data_source_by_itself(spark: SparkSession, make: Make) -> None:
    path = make(engine=ENGINE)
    frame = load(spark, path)
    expected = [{**row, "path": str(path), "start": None} for row in ROWS]
    assert rows(frame) == expected
    assert frame.schema.simpleString() == (
        "struct<t:double,speed:double,gear:smallint,text:string,path:string,start:timestamp>"
    )
    assert all(field.nullable for field in frame.schema)
    assert frame.schema["speed"].metadata == {"unit": "km/h"}


def test_a_fleet_is_grouped_by_path(spark: SparkSession, make: Make, tmp_path: Path) -> None:
    for i in range(3):
        make(f"{i}.mf4", engine=f"t [s],speed\n0,{i}\n1,{10 * i}\n")
    frame = load(spark, f"{tmp_path}/*.mf4", channels="speed,rpm")
    maxima = frame.groupBy("path").agg({"speed": "max"}).orderBy("path")
    assert [tuple(row) for row in maxima.collect()] == [
        (f"{tmp_path}/{i}.mf4", 10 * i) for i in range(3)
    ]
    assert load(spark, [tmp_path / "0.mf4", tmp_path / "2.mf4"]).count() == 4


def test_all_types_come_to_spark(spark: SparkSession, samples: Path) -> None:
    names = ["data-type-uint-le-64-bits", "invalidation-bit", "channel-variable-length-utf8"]
    frames = [load(spark, samples / f"{name}.mf4", attributes="") for name in names]
    assert [str(row["v"]) for row in rows(frames[0])] == [
        "578437695752307201",
        "18446744073709551614",
        "18446744073709551615",
    ]
    assert [tuple(row) for row in frames[1].select("a", "b").collect()] == [
        (1, 2),
        (None, 4),
        (5, None),
        (None, None),
        (9, 10),
    ]
    assert [row["v"] for row in rows(frames[2])] == ["one", "", "dreié"]


def test_times_of_day_are_timestamps(spark: SparkSession, make: Make) -> None:
    frame = load(spark, make(dates=DATES), times="timestamps")
    found = frame.selectExpr("cast(time as string)", "cast(start as string)").collect()
    start = "2024-05-17 11:45:12.5"
    assert [tuple(row) for row in found] == [(start, start), ("2024-05-17 11:45:13", start)]


def test_a_stated_schema_is_used(spark: SparkSession, make: Make) -> None:
    path = str(make(engine=ENGINE))
    frame = spark.read.format("mdf").schema("speed float, gear long, oil int").load(path)
    assert [tuple(row) for row in frame.collect()] == [
        (1.5, 1, None),
        (2.5, 2, None),
        (None, None, None),
        (-4.25, 255, None),
    ]


@pytest.fixture
def pushing(spark: SparkSession) -> Iterator[SparkSession]:
    """A session in which filters are pushed down."""
    mdfkit.spark.register(spark)
    yield spark
    spark.conf.unset("spark.sql.python.filterPushdown.enabled")


def test_filters_are_not_needed_for_the_right_rows(spark: SparkSession, make: Make) -> None:
    frame = load(spark, make(engine=SPEEDS)).filter("t > 2 and t <= 4")
    assert [row["speed"] for row in rows(frame)] == [30, 40]
    assert rows_read(frame) == 10


@pytest.mark.parametrize(
    ("condition", "speeds", "read"),
    [
        ("t > 2 and t <= 4", [30, 40], 3),
        ("t = 5", [50], 1),
        ("t between 100 and 200", [], 0),
        ("t > 7 or speed = 0", [0, 80, 90], 10),
        ("path like '%/a.mf4' and t < 1", [0], 2),
        ("path in ('/b.mf4', '/c.mf4')", [], 0),
        ("start is null and t >= 9", [90], 1),
    ],
)
def test_filters_are_pushed_down(
    pushing: SparkSession, make: Make, condition: str, speeds: list[int], read: int
) -> None:
    make("a.mf4", engine=SPEEDS)
    frame = load(pushing, make("a.mf4", engine=SPEEDS)).filter(condition)
    assert [row["speed"] for row in rows(frame)] == speeds
    assert rows_read(frame) == read


def test_wrong_queries_are_sentences(spark: SparkSession, make: Make, tmp_path: Path) -> None:
    path = make(engine=ENGINE)
    for options, sentence in (
        ({"chanels": "speed"}, "there is no option 'chanels', but attributes, channels, group"),
        ({"channels": "oil"}, "none of 1 files has what is asked for; the first one: "),
    ):
        with pytest.raises(PySparkException, match=sentence):
            load(spark, path, **options)
    with pytest.raises(PySparkException, match=r"there is no measurement file .*/none"):
        load(spark, tmp_path / "none")


def test_damaged_files_are_findings(spark: SparkSession, damaged: Path) -> None:
    assert load(spark, damaged).count() == 17
    assert load(spark, damaged, mode="DROPMALFORMED").count() == 10
    found = load(spark, damaged, table="findings").filter("severity = 'error'").collect()
    assert [(Path(row["path"]).name, row["code"]) for row in found] == [
        ("b.mf4", "length-past-end"),
        ("c.mf4", "not-mdf"),
    ]
    with pytest.raises(PySparkException, match=re.escape(f"{damaged}/c.mf4: at byte 0: this is")):
        load(spark, damaged, mode="FAILFAST")
    with pytest.raises(PySparkException, match=r"b\.mf4: at byte \d+: expected the"):
        load(spark, damaged / "b.mf4", mode="FAILFAST").collect()


def test_a_fleet_becomes_parquet(spark: SparkSession, make: Make, damaged: Path) -> None:
    for day in ("17", "18"):
        text = DATES.replace("-17T", f"-{day}T")
        make(f"fleet/{day}.mf4", dates=text)
    out = damaged.parent / "lake" / "speeds"
    summary = mdfkit.spark.write_parquet(spark, str(damaged), str(out), channels=["speed"])
    assert str(summary) == "21 rows of 4 files; 2 files with errors"
    assert [fault.code for fault in summary.findings] == ["length-past-end", "not-mdf"]
    assert sorted(each.name for each in out.parent.iterdir()) == ["speeds"]
    days = sorted(each.name for each in out.iterdir() if each.name.startswith("date="))
    assert days == ["date=2024-05-17", "date=2024-05-18", "date=__HIVE_DEFAULT_PARTITION__"]
    frame = spark.read.parquet(str(out))
    assert frame.schema["speed"].metadata == {"unit": "km/h"}
    found = frame.filter("date = '2024-05-18'").select("time", "speed", "path").orderBy("time")
    path = f"{damaged}/18.mf4"
    assert [tuple(row) for row in found.collect()] == [(0.0, 1, path), (500000001 * 1e-9, 2, path)]
    assert pq.read_schema(next(out.rglob("*.parquet"))).field("speed").metadata[b"unit"] == b"km/h"
    with pytest.raises(FileExistsError, match="speeds exists; overwrite=True replaces it"):
        mdfkit.spark.write_parquet(spark, str(damaged), str(out))


def test_parquet_is_as_it_is_asked_for(spark: SparkSession, make: Make, tmp_path: Path) -> None:
    path = str(make(engine=ENGINE, brakes=BRAKES))
    out = str(tmp_path / "out")
    for group, columns in (("engine", "path"), ("brakes", ["group", "start"])):
        summary = mdfkit.spark.write_parquet(
            spark, [path], out, group=group, partition_by=columns, overwrite=True, start=1
        )
    assert (summary.files, summary.rows, summary.findings) == (1, 1, [])
    frame = spark.read.parquet(out)
    assert rows(frame) == [
        {"t": 2.0, "pressure": 30, "speed": 3, "path": path, "group": "brakes", "start": None}
    ]
    with pytest.raises(mdfkit.WrongQuery, match="expected some of date, path, start, group, comm"):
        mdfkit.spark.write_parquet(spark, [path], out, partition_by="gear")


def test_parquet_has_stated_columns(spark: SparkSession, make: Make, tmp_path: Path) -> None:
    path = str(make(dates=DATES))
    out = str(tmp_path / "out")
    stated = load(spark, path, attributes="").schema
    summary = mdfkit.spark.write_parquet(spark, path, out, schema=stated)
    assert (summary.files, summary.rows) == (1, 2)
    frame = spark.read.parquet(out).selectExpr("time", "speed", "cast(date as string) date")
    assert frame.schema["speed"].metadata == {"unit": "km/h"}
    assert [row["date"] for row in rows(frame)] == ["2024-05-17"] * 2


def test_parquet_that_fails_leaves_nothing(
    spark: SparkSession, damaged: Path, tmp_path: Path
) -> None:
    out = tmp_path / "lake" / "out"
    with pytest.raises(PySparkException, match=r"b\.mf4: at byte \d+: expected the"):
        mdfkit.spark.write_parquet(spark, str(damaged / "b.mf4"), str(out), mode="FAILFAST")
    assert list(out.parent.iterdir()) == []


def test_the_readme_is_right_about_fleets(
    spark: SparkSession,
    make: Make,
    tmp_path: Path,
    capsys: pytest.CaptureFixture[str],
) -> None:
    (tmp_path / "fleet" / "2026-11").mkdir(parents=True)
    for i in (1, 2):
        lines = "".join(f"2024-05-17T13:45:{s:02}Z,{i * s},{s}\n" for s in range(60))
        make(f"fleet/2026-11/trip_{i}.mf4", engine="t,speed [km/h],rpm\n" + lines)
    _, _, text = README.read_text(encoding="utf-8").partition("## A fleet")
    text = text.replace('"/fleet', f'"{tmp_path}/fleet').replace('"/lake', f'"{tmp_path}/lake')
    count, scope = run_blocks(text, spark=spark)
    assert count == 4
    assert str(scope["summary"]) == "120 rows of 2 files; 0 files with errors"
    assert str(scope["summary"]) in text
    assert "|       118|" in capsys.readouterr().out
    spark.conf.unset("spark.sql.python.filterPushdown.enabled")


LARGE = (4 << 30) + (100 << 20)


@pytest.fixture
def large(make: Make) -> Path:
    """A file of more than 4 GiB that its program did not finish, most of it a hole on the disk."""
    names = ",".join(f"x{i}" for i in range(62))
    wide = f"t [s],v,{names}\n" + f"0,1,{','.join(['0.5'] * 62)}\n"
    path = make("large.mf4", wide=wide, types=("v=int64",))
    record = 64 * 8
    with path.open("r+b") as file:
        data_at = path.stat().st_size - record
        # The header says that the length of the last data block is not known, and records neither.
        file.write(b"UnFinMF ")
        file.seek(60)
        file.write(struct.pack("<H", 0b101))
        rows = LARGE // record
        file.truncate(data_at + rows * record)
        for number, value in ((rows // 2, 40_000), (rows - 1, 300)):
            file.seek(data_at + number * record)
            file.write(struct.pack("<qq", number * 10**9, value))
    return path


def test_a_file_of_4_gib_is_read_in_pieces(spark: SparkSession, large: Path) -> None:
    rows = LARGE // 512
    frame = load(spark, large, channels="v", attributes="")
    assert frame.rdd.getNumPartitions() == 66
    found = frame.selectExpr("count(*)", "sum(v)", "max(v)", "max(t)").collect()
    assert tuple(found[0]) == (rows, 1 + 40_000 + 300, 40_000, pytest.approx(rows - 1))


CARS = 2000


@pytest.fixture
def many(make: Make, tmp_path: Path) -> Path:
    """2,000 small files, of cars with numbers of their own."""
    mark = 0xFEDCBA98
    table = "t [s],car,speed\n" + "".join(f"{i},{mark},{i}\n" for i in range(5))
    whole = make("one.mf4", engine=table).read_bytes()
    stored = struct.pack("<I", mark)
    assert whole.count(stored) == 5
    folder = tmp_path / "many"
    folder.mkdir()
    for car in range(CARS):
        path = folder / f"{car:04}.mf4"
        path.write_bytes(whole.replace(stored, struct.pack("<I", car)))
    return folder


def test_two_thousand_small_files_are_few_tasks(spark: SparkSession, many: Path) -> None:
    frame = load(spark, many)
    assert frame.rdd.getNumPartitions() == 32
    found = frame.selectExpr("count(*)", "sum(car)", "sum(speed)", "count(distinct path)").collect()
    assert tuple(found[0]) == (5 * CARS, 5 * CARS * (CARS - 1) // 2, 10 * CARS, CARS)


def test_a_worker_that_dies_changes_nothing(
    spark: SparkSession, cluster: Cluster, make: Make, tmp_path: Path
) -> None:
    text = "t [s],v\n" + "".join(f"{i},{i * i}\n" for i in range(100))
    path = make(engine=text)
    gate = tmp_path / "gate"
    gate.mkdir()
    slow = load(spark, path, rows_per_partition=5).mapInArrow(waiting(gate), "v int")
    with ThreadPoolExecutor(1) as pool:
        job = pool.submit(slow.collect)
        # Three tasks are done, and one is under way on each worker.
        wait_for(lambda: len(list(gate.glob("begun-*"))) >= 5, "tasks")
        cluster.kill("two")
        (gate / "open").touch()
        found = [row["v"] for row in job.result()]
    assert found == [i * i for i in range(100)]
    assert executors(spark) == 1
    begun = [each.name for each in gate.glob("begun-*")]
    assert len(begun) > 20  # some of the twenty tasks were begun twice
    cluster.add_worker("two again")
    wait_for(lambda: executors(spark) == 2, "two executors")


def waiting(gate: Path) -> Any:
    """Pass batches on; from the fourth task on, when a file is there."""

    def pass_on(batches: Iterator[pa.RecordBatch]) -> Iterator[pa.RecordBatch]:
        import os
        import time
        from pathlib import Path

        from pyspark import TaskContext

        task: Any = TaskContext.get()
        Path(gate, f"begun-{task.partitionId()}-{os.getpid()}-{task.taskAttemptId()}").touch()
        while task.partitionId() > 2 and not Path(gate, "open").exists():
            time.sleep(0.01)
        for batch in batches:
            yield batch.select(["v"])

    return pass_on
