"""A fleet's files as Parquet."""

from __future__ import annotations

import json
import shutil
import tempfile
from collections.abc import Sequence
from dataclasses import dataclass
from pathlib import Path
from typing import Any

from pyspark.sql import DataFrame, Observation, SparkSession
from pyspark.sql import functions as sf

from .faults import Fault, read_log


@dataclass(frozen=True)
class Summary:
    """What `write_parquet` did.

    Attributes
    ----------
    files : int
        Measurement files of which there are rows.
    rows : int
        Rows that were written.
    findings : list of Fault
        What was wrong with the files, those that could not be read included.
    """

    files: int
    rows: int
    findings: list[Fault]

    def __str__(self) -> str:
        damaged = len({fault.path for fault in self.findings if fault.is_error})
        return f"{self.rows:,} rows of {self.files:,} files; {damaged:,} files with errors"


def write_parquet(
    spark: SparkSession,
    paths: str | Sequence[str],
    folder: str,
    *,
    group: str | None = None,
    channels: str | Sequence[str] | None = None,
    partition_by: str | Sequence[str] = ("date",),
    mode: str = "PERMISSIVE",
    overwrite: bool = False,
    **options: Any,
) -> Summary:
    """Write the samples of a fleet's files to a folder of Parquet.

    Parameters
    ----------
    spark : SparkSession
        Whose cluster does the work.
    paths : str or list of str
        Files, folders, patterns, as ``load`` takes them.
    folder : str
        Where to; all workers must see it, like the files.
    group, channels, mode
        As the options of `MdfDataSource`; ``options`` are further ones of it, such as ``raw=True``.
    partition_by : str or list of str
        Columns by whose values rows are divided into folders. ``date`` is the day on which a
        file's measurement began, in the session's time zone. None with ``()``.
    overwrite : bool
        Whether to replace what is in the folder; else a folder that exists is an error.

    Returns
    -------
    Summary
        How many rows of how many files, and what was wrong with the files.

    Examples
    --------
    >>> summary = write_parquet(spark, "/fleet/2026-11", "/lake/engine", group="engine")
    >>> print(summary)
    1,200,000 rows of 2,000 files; 1 files with errors
    >>> spark.read.parquet("/lake/engine").filter("date = '2026-11-23'").count()
    """
    by = [partition_by] if isinstance(partition_by, str) else list(partition_by)
    # Beside what is written, for all workers see that place.
    Path(folder).parent.mkdir(parents=True, exist_ok=True)
    log = tempfile.mkdtemp(prefix="_mdfkit-", dir=Path(folder).parent)
    # Tasks may run as other users.
    Path(log).chmod(0o777)
    try:
        stated = {"group": group, "channels": _listed(channels), "mode": mode, "log": log}
        frame = _read(spark, paths, {**options, **stated})
        counted = Observation()
        frame = frame.observe(
            counted,
            sf.count(sf.lit(1)).alias("rows"),
            sf.collect_set("path").alias("paths"),
        )
        if "date" in by and "date" not in frame.columns:
            frame = frame.withColumn("date", sf.to_date("start"))
        writer = frame.write.mode("overwrite" if overwrite else "errorifexists")
        (writer.partitionBy(*by) if by else writer).parquet(folder)
        found = counted.get
        return Summary(len(found["paths"]), found["rows"], read_log(log))
    finally:
        shutil.rmtree(log, ignore_errors=True)


def _read(spark: SparkSession, paths: str | Sequence[str], options: dict[str, Any]) -> DataFrame:
    reader = spark.read.format("mdf")
    for name, value in options.items():
        if value is not None:
            reader = reader.option(name, value)
    return reader.load(paths if isinstance(paths, str) else list(paths))


def _listed(channels: str | Sequence[str] | None) -> str | None:
    """Names as the option takes them."""
    if channels is None or isinstance(channels, str):
        return channels
    return json.dumps(list(channels))
