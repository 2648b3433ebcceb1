"""The data source "mdf" of Spark."""

from __future__ import annotations

from collections.abc import Iterator, MutableMapping, Sequence
from typing import Any

import pyarrow as pa
from pyspark.sql.datasource import DataSource, DataSourceReader, Filter, InputPartition
from pyspark.sql.types import StructType

from . import paths, tables
from .columns import joined
from .faults import Fault, fail_at_errors, write_log
from .filters import may_pass
from .heads import Head, read_heads, read_large_heads, sizes
from .options import Options
from .partitions import TASK_BYTES, Pieces, plan, whole_files
from .reading import Task, attributes_of
from .schema import merged, options_for, refuse_nothing, targets


class MdfDataSource(DataSource):
    """Measurement files of MDF 4 as one table: ``spark.read.format("mdf")``.

    ``load`` takes a file, a folder (all ``*.mf4`` and ``*.mdf`` below it), a pattern, or several of
    these as a list or with commas between them. All workers must see the files by these paths.

    Columns: the channels, the master channel first, of all files together; then ``path``, the
    file's name, and ``start``, when its measurement began (local times count as UTC). Types that
    differ between files are widened, see `mdfkit.spark.schema`; units and comments are in the
    metadata of the columns. With ``.schema(...)``, columns and types are as stated there, and a
    channel whose values do not fit is null; then descriptions of files below 64 MiB are read by the
    tasks and not before, which for very many files is the better way.

    Options
    -------
    group : number or name of the channel group, or a pattern
        Needed where the channels are in several.
    channels : names or patterns with commas between them, or a list in JSON
        All channels of the group without it.
    start, stop : numbers
        Limits of the master channel, both included; mostly seconds since the measurement began.
    raw, numbers : true or false
        Values as they are stored; numbers where conversions give texts.
    times : "seconds" or "timestamps"
        The master channel as seconds since the start, or as the time of day.
    attributes : some of path, start, group, comment
        Columns about the file, ``path,start`` without it. Each row carries them, so that a scan of
        few channels is faster without: ``""``.
    mode : PERMISSIVE, DROPMALFORMED or FAILFAST
        What can be read is read; files with errors are left out; the first error ends the job.
    log : folder
        Each task that finds something wrong writes a file with a line of JSON for each finding. To
        be a folder of its own for each query.
    table : samples, findings, files or channels
        What is wrong with the files, which reads all of them; what files there are; what channels.
    rows_per_partition : number
        Records for each task, instead of what is about 64 MiB.

    Examples
    --------
    >>> frame = spark.read.format("mdf").option("channels", "speed,rpm").load("/fleet/2026-11")
    >>> frame.schema["speed"].metadata
    {'unit': 'km/h'}
    """

    def __init__(self, options: MutableMapping[str, str]) -> None:
        super().__init__(options)
        self._options = Options.of(options)
        self._heads: list[Head] | None = None

    @classmethod
    def name(cls) -> str:
        """Return what ``format`` takes."""
        return "mdf"

    def schema(self) -> StructType:
        """Read all files' descriptions, and put their channels together."""
        if self._options.table != "samples":
            return tables.schema_of(self._options.table)
        self._heads = _heads(self._options)
        refuse_nothing(self._heads)
        return merged(self._heads, self._options.attributes)

    def reader(self, schema: StructType) -> DataSourceReader:
        """Return what divides the files among tasks, and reads them."""
        if self._options.table != "samples":
            return TableReader(self._options, schema)
        heads, self._heads = self._heads, None  # which tasks need not carry
        if heads is not None:
            return SamplesReader(self._options, schema, heads)
        options = options_for(self._options, schema)
        return SamplesReader(options, schema, _heads_for_stated_columns(options))


def _heads(options: Options) -> list[Head]:
    heads = read_heads(paths.find(options.paths), options)
    if options.mode == "FAILFAST":
        fail_at_errors(fault for head in heads for fault in head.faults)
    return heads


def _heads_for_stated_columns(options: Options) -> list[Head]:
    """Read what must be known to cut large files; tasks read the rest by themselves."""
    if options.rows_per_partition is not None:
        return _heads(options)
    return read_large_heads(paths.find(options.paths), options, TASK_BYTES)


class _Pushing:
    """A method that takes filters where Spark's setting gives them, and is not missed elsewhere.

    By default Spark gives no filters to data sources in Python, and refuses those whose method
    differs from that of the base class. To its question this method is that one.
    """

    def __get__(self, reader: Any, owner: Any = None) -> Any:
        if reader is None:
            return DataSourceReader.pushFilters

        class Bound:
            __func__ = staticmethod(DataSourceReader.pushFilters)

            def __call__(self, filters: list[Filter]) -> list[Filter]:
                reader.filters = tuple(filters)
                return filters  # Spark applies them again

        return Bound()


class SamplesReader(DataSourceReader):
    """Reads samples."""

    pushFilters = _Pushing()  # noqa: N815 - Spark's name

    def __init__(self, options: Options, schema: StructType, heads: Sequence[Head]) -> None:
        self.filters: tuple[Filter, ...] = ()
        self._options = options
        self._targets = tuple(targets(schema))
        self._heads = heads

    @property
    def task(self) -> Task:
        """What reads pieces of files."""
        return Task(self._options, self._targets, self.filters)

    def __getstate__(self) -> dict[str, Any]:
        """Return what tasks need, which is not the other files' descriptions."""
        return {**vars(self), "_heads": ()}

    def partitions(self) -> list[InputPartition]:
        """Return the tasks, without files that cannot pass the filters."""
        tasks = plan(self._heads, self._options)
        left = [
            Pieces(
                task.number,
                [each for each in task.pieces if may_pass(self.filters, attributes_of(each))],
            )
            for task in tasks
        ]
        return [task for task in left if task.pieces] or [Pieces(0, ())]

    def read(self, partition: InputPartition) -> Iterator[pa.RecordBatch]:
        """Read one task's pieces of files."""
        assert isinstance(partition, Pieces)
        faults: list[Fault] = []
        yield from joined(
            batch
            for piece in self.task.known(partition.pieces)
            for batch in self.task.batches(piece, faults.extend)
        )
        if self._options.log is not None:
            write_log(self._options.log, partition.number, faults)


class TableReader(DataSourceReader):
    """Reads a table about the files."""

    def __init__(self, options: Options, schema: StructType) -> None:
        self._options = options
        self._targets = targets(schema)

    def partitions(self) -> list[InputPartition]:
        """Return the tasks."""
        found = paths.find(self._options.paths)
        return list(whole_files(found, sizes(found)))

    def read(self, partition: InputPartition) -> Iterator[pa.RecordBatch]:
        """Read one task's files."""
        assert isinstance(partition, Pieces)
        schema = pa.schema([pa.field(each.name, each.type) for each in self._targets])
        files = [piece.path for piece in partition.pieces]
        yield tables.batch(self._options.table, files, self._options, schema)
