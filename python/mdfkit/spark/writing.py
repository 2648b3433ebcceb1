"""A fleet's files as Parquet."""

from __future__ import annotations

import json
import shutil
import uuid
from collections.abc import Iterator, MutableMapping, Sequence
from dataclasses import dataclass
from pathlib import Path
from typing import Any

import pyarrow as pa
from pyspark.sql import SparkSession
from pyspark.sql.datasource import DataSource, DataSourceReader, InputPartition
from pyspark.sql.types import LongType, StringType, StructField, StructType

from ..errors import WrongQuery
from .faults import Fault
from .lake import FOLDERS, LakeWriter, remove_unfinished
from .partitions import Pieces
from .reading import attributes_of
from .source import MdfDataSource, SamplesReader


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
    group: int | str | None = None,
    channels: str | Sequence[str] | None = None,
    schema: StructType | None = None,
    partition_by: str | Sequence[str] = ("date",),
    compression: str = "zstd",
    overwrite: bool = False,
    **options: Any,
) -> Summary:
    """Write the samples of a fleet's files to a folder of Parquet.

    Tasks write what they read by themselves, several times as fast as Spark writes a frame. The
    folder appears when all of them are done.

    Parameters
    ----------
    spark : SparkSession
        Whose cluster does the work.
    paths : str or list of str
        Files, folders, patterns, as ``load`` takes them.
    folder : str
        Where to; all workers must see it, like the files.
    group, channels
        As the options of `MdfDataSource`; ``options`` are further ones of it, such as
        ``mode="FAILFAST"`` or ``raw=True``.
    schema : StructType, optional
        The columns, such as ``frame.schema`` of a frame of some of the files. Without it all files'
        descriptions are read first, which takes some minutes for a hundred thousand of them.
    partition_by : str or list of str
        Attributes of files by whose values rows are divided into folders: ``date``, which is the
        day (in UTC) on which a file's measurement began, ``path``, ``start``, ``group``,
        ``comment``. None with ``()``. To divide by a channel, use ``frame.write.partitionBy``.
    compression : str
        Of Parquet: ``"zstd"``, ``"snappy"``, ``"none"``.
    overwrite : bool
        Whether to replace a folder of that name; else it is an error if there is one.

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
    if not set(by) <= set(FOLDERS):
        raise WrongQuery(
            f"partition_by is {by}; expected some of {', '.join(FOLDERS)}", "query-wrong"
        )
    target = Path(folder).absolute()
    if target.exists() and not overwrite:
        raise FileExistsError(f"{target} exists; overwrite=True replaces it")
    beside = target.with_name(f".{target.name}-{uuid.uuid4().hex}")
    job = {"folder": str(beside), "by": json.dumps(by), "compression": compression}
    if schema is not None:
        job["columns"] = schema.json()
    stated = {**options, "group": group, "channels": _listed(channels), **job}
    try:
        beside.mkdir(parents=True)
        beside.chmod(0o777)  # tasks may run as other users
        summary = _run(spark, paths, {name: v for name, v in stated.items() if v is not None})
        remove_unfinished(str(beside))
        (beside / "_SUCCESS").touch()
        beside.chmod(0o755)
        if target.exists():
            shutil.rmtree(target)
        beside.rename(target)
    finally:
        shutil.rmtree(beside, ignore_errors=True)
    return summary


def _listed(channels: str | Sequence[str] | None) -> str | None:
    """Names as the option takes them."""
    if channels is None or isinstance(channels, str):
        return channels
    return json.dumps(list(channels))


def _run(spark: SparkSession, paths: str | Sequence[str], options: dict[str, Any]) -> Summary:
    spark.dataSource.register(ParquetJob)
    reader = spark.read.format(ParquetJob.name()).options(**options)
    done = reader.load(paths if isinstance(paths, str) else list(paths)).collect()
    rows = {row["path"]: 0 for row in done if row["rows"]}
    for row in done:
        if row["rows"]:
            rows[row["path"]] += row["rows"]
    faults = [Fault(**json.loads(row["fault"])) for row in done if row["fault"] is not None]
    found = sorted(dict.fromkeys(faults), key=lambda fault: (fault.path, fault.offset or 0))
    return Summary(len(rows), sum(rows.values()), found)


class ParquetJob(DataSource):
    """Writes Parquet files where samples would be read, and gives what was done as rows."""

    def __init__(self, options: MutableMapping[str, str]) -> None:
        super().__init__(options)
        left = dict(options)
        self._folder = left.pop("folder")
        self._by: list[str] = json.loads(left.pop("by"))
        self._compression = left.pop("compression")
        columns = left.pop("columns", None)
        self._columns = columns and StructType.fromJson(json.loads(columns))
        self._source = MdfDataSource(left)

    @classmethod
    def name(cls) -> str:
        """Return what ``format`` takes."""
        return "mdf-to-parquet"

    def schema(self) -> StructType:
        """Return the columns of what was done."""
        fields = [("path", StringType()), ("rows", LongType()), ("fault", StringType())]
        return StructType([StructField(name, kind, True) for name, kind in fields])

    def reader(self, schema: StructType) -> DataSourceReader:  # noqa: ARG002
        """Return what writes."""
        columns = self._columns or self._source.schema()
        samples = self._source.reader(columns)
        assert isinstance(samples, SamplesReader)
        return ParquetReader(samples, columns, self._folder, self._by, self._compression)


class ParquetReader(DataSourceReader):
    """Writes the tasks' files."""

    def __init__(
        self,
        samples: SamplesReader,
        schema: StructType,
        folder: str,
        by: Sequence[str],
        compression: str,
    ) -> None:
        self._samples = samples
        self._schema = schema
        self._folder = folder
        self._by = tuple(by)
        self._compression = compression

    def partitions(self) -> list[InputPartition]:
        """Return the tasks."""
        return self._samples.partitions()

    def read(self, partition: InputPartition) -> Iterator[pa.RecordBatch]:
        """Write one task's rows, and give a row for each piece and each finding."""
        assert isinstance(partition, Pieces)
        done: list[dict[str, Any]] = []
        faults: list[Fault] = []
        writer = LakeWriter(
            self._folder, partition.number, self._schema, self._by, self._compression
        )
        with writer:
            for piece in self._samples.task.known(partition.pieces):
                rows = 0
                for batch in self._samples.task.batches(piece, faults.extend):
                    writer.add(attributes_of(piece), batch)
                    rows += batch.num_rows
                done.append({"path": piece.path, "rows": rows})
            writer.close()
        done += [{"path": fault.path, "fault": fault.as_json()} for fault in faults]
        fields = [("path", pa.string()), ("rows", pa.int64()), ("fault", pa.string())]
        yield pa.RecordBatch.from_pylist(done, schema=pa.schema(fields))
