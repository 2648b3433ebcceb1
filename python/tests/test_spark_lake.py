"""Parquet files of tasks: whole ones only, in folders by what files say of themselves."""

from __future__ import annotations

import datetime as dt
from pathlib import Path
from typing import Any

import pyarrow as pa
import pyarrow.parquet as pq
import pytest
from pyspark.sql import types as st

from mdfkit.spark import lake

SCHEMA = st.StructType(
    [
        st.StructField("v", st.LongType(), True, {"unit": "km/h"}),
        st.StructField("group", st.StringType()),
    ]
)


def batch(*values: int) -> pa.RecordBatch:
    return pa.record_batch({"v": list(values), "group": ["engine"] * len(values)})


def about(day: int | None, group: str | None = "engine") -> dict[str, Any]:
    start = None if day is None else dt.datetime(2026, 11, day, 23, 59, tzinfo=dt.timezone.utc)
    return {"start": start, "group": group, "path": "/fleet/a b.mf4", "comment": ""}


def write(folder: Path, *by: str, number: int = 7) -> lake.LakeWriter:
    return lake.LakeWriter(str(folder), number, SCHEMA, by, "zstd")


def names(folder: Path) -> list[str]:
    return sorted(str(each.relative_to(folder)) for each in folder.rglob("*") if each.is_file())


def test_rows_are_divided_by_days(tmp_path: Path) -> None:
    with write(tmp_path, "date") as writer:
        for day, value in ((23, 1), (24, 2), (23, 3), (None, 4)):
            writer.add(about(day), batch(value))
        writer.close()
    assert names(tmp_path) == [
        "date=2026-11-23/part-00007.parquet",
        "date=2026-11-24/part-00007.parquet",
        "date=__HIVE_DEFAULT_PARTITION__/part-00007.parquet",
    ]
    table = pq.read_table(tmp_path / "date=2026-11-23" / "part-00007.parquet", partitioning=None)
    assert table.to_pydict() == {"v": [1, 3], "group": ["engine", "engine"]}
    assert table.schema.field("v").metadata[b"unit"] == b"km/h"


def test_columns_in_folders_names_are_not_in_files(tmp_path: Path) -> None:
    with write(tmp_path, "group", "path", "start") as writer:
        writer.add(about(23, "größe/%"), batch(1))
        writer.close()
    [name] = names(tmp_path)
    assert name == (
        "group=gr%C3%B6%C3%9Fe%2F%25/path=%2Ffleet%2Fa b.mf4/start=2026-11-23 23%3A59%3A00/"
        "part-00007.parquet"
    )
    assert pq.read_schema(tmp_path / name).names == ["v"]


def test_row_groups_have_rows_of_several_batches(
    tmp_path: Path, monkeypatch: pytest.MonkeyPatch
) -> None:
    monkeypatch.setattr(lake, "_ROW_GROUP_BYTES", 2 * batch(0, 0).nbytes)
    with write(tmp_path) as writer:
        for value in range(5):
            writer.add(about(23), batch(value, value))
        writer.close()
    file = pq.ParquetFile(tmp_path / "part-00007.parquet")
    assert [file.metadata.row_group(i).num_rows for i in range(file.num_row_groups)] == [4, 4, 2]
    assert file.read().column("v").to_pylist() == [0, 0, 1, 1, 2, 2, 3, 3, 4, 4]


def test_a_task_that_fails_leaves_no_file(tmp_path: Path) -> None:
    def fail() -> None:
        with write(tmp_path) as writer:
            writer.add(about(23), batch(1))
            raise RuntimeError("the file system went away")

    with pytest.raises(RuntimeError, match="went away"):
        fail()
    assert names(tmp_path) == []


def test_a_task_that_runs_twice_writes_once(tmp_path: Path) -> None:
    with write(tmp_path) as first, write(tmp_path) as second:
        first.add(about(23), batch(1))
        second.add(about(23), batch(1))
        second.close()
        lake.remove_unfinished(str(tmp_path))  # the first one was lost
    assert names(tmp_path) == ["part-00007.parquet"]
    assert pq.read_table(tmp_path / "part-00007.parquet").column("v").to_pylist() == [1]
