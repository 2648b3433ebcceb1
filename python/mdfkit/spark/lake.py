"""Parquet files of a task, which appear when they are complete."""

from __future__ import annotations

import contextlib
import datetime as dt
import uuid
from collections.abc import Mapping, Sequence
from pathlib import Path
from typing import Any
from urllib.parse import quote

import pyarrow as pa
import pyarrow.parquet as pq
from pyspark.sql.types import StructType

from .options import ATTRIBUTES
from .schema import targets

# The day on which a file's measurement began.
DATE = "date"
FOLDERS = (DATE, *ATTRIBUTES)

_ROW_GROUP_BYTES = 32 << 20
_NULL = "__HIVE_DEFAULT_PARTITION__"
# Where Spark keeps the metadata of columns.
_SPARK_SCHEMA = "org.apache.spark.sql.parquet.row.metadata"


class LakeWriter:
    """Writes the rows of one task, a file in each folder of those that rows are divided into.

    Parameters
    ----------
    folder : str
        What the folders are below of.
    number : int
        The task's; one that runs again replaces what it wrote.
    schema : pyspark.sql.types.StructType
        All columns.
    by : sequence of str
        Some of `FOLDERS`, by whose values the rows are divided; they are in the names of folders
        and not in the files.
    compression : str
        As of Parquet: ``"zstd"``, ``"snappy"``, ``"none"``.
    """

    def __init__(
        self, folder: str, number: int, schema: StructType, by: Sequence[str], compression: str
    ) -> None:
        self._folder = Path(folder)
        self._name = f"part-{number:05}.parquet"
        # Another try at the same task may be under way.
        self._beside = f".{self._name}-{uuid.uuid4().hex}"
        self._by = tuple(by)
        self._schema = file_schema(schema, by)
        self._compression = compression
        self._files: dict[str, _File] = {}

    def add(self, attributes: Mapping[str, Any], batch: pa.RecordBatch) -> None:
        """Write some rows of a measurement file with these attributes."""
        values = {**attributes, DATE: _date(attributes["start"])}
        place = "/".join(f"{name}={_folder_name(values[name])}" for name in self._by)
        if place not in self._files:
            path = self._folder / place / self._beside
            path.parent.mkdir(parents=True, exist_ok=True)
            self._files[place] = _File(path, self._schema, self._compression)
        rows = batch.select(self._schema.names).replace_schema_metadata(self._schema.metadata)
        self._files[place].add(rows)

    def close(self) -> None:
        """Give the files their names."""
        for each in self._files.values():
            each.close()
        for each in self._files.values():
            each.path.replace(each.path.with_name(self._name))
        self._files = {}

    def __enter__(self) -> LakeWriter:
        return self

    def __exit__(self, *_error: object) -> None:
        for each in self._files.values():
            with contextlib.suppress(OSError, pa.ArrowException):
                each.close()
            each.path.unlink(missing_ok=True)


def remove_unfinished(folder: str) -> None:
    """Remove what tasks left that did not come to their end."""
    for path in Path(folder).rglob(".part-*"):
        path.unlink()


class _File:
    """A file whose row groups have a good size, whatever that of the batches is."""

    def __init__(self, path: Path, schema: pa.Schema, compression: str) -> None:
        self.path = path
        self._schema = schema
        # Measured numbers seldom repeat; looking for those that do takes most of the time.
        texts = [each.name for each in schema if pa.types.is_string(each.type)]
        self._writer = pq.ParquetWriter(path, schema, compression=compression, use_dictionary=texts)
        self._waiting: list[pa.RecordBatch] = []
        self._bytes = 0

    def add(self, batch: pa.RecordBatch) -> None:
        self._waiting.append(batch)
        self._bytes += batch.nbytes
        if self._bytes >= _ROW_GROUP_BYTES:
            self._write()

    def close(self) -> None:
        if self._waiting:
            self._write()
        self._writer.close()

    def _write(self) -> None:
        arrays = [
            pa.chunked_array([batch.column(i) for batch in self._waiting])
            for i in range(len(self._schema))
        ]
        self._writer.write_table(pa.Table.from_arrays(arrays, schema=self._schema))
        self._waiting, self._bytes = [], 0


def file_schema(schema: StructType, by: Sequence[str]) -> pa.Schema:
    """Return the columns of a file, with units for Arrow as well as for Spark."""
    left = StructType([each for each in schema.fields if each.name not in by])
    fields = [
        pa.field(target.name, target.type, metadata=_texts(each.metadata))
        for target, each in zip(targets(left), left.fields)
    ]
    return pa.schema(fields, metadata={_SPARK_SCHEMA: left.json()})


def _texts(metadata: Mapping[str, Any]) -> dict[str, str]:
    return {name: text for name, text in metadata.items() if isinstance(text, str)}


def _date(start: dt.datetime | None) -> str | None:
    return None if start is None else start.date().isoformat()


def _folder_name(value: Any) -> str:
    """Return a value as it can be in a folder's name; Spark reads these escapes."""
    if isinstance(value, dt.datetime):
        value = value.strftime("%Y-%m-%d %H:%M:%S.%f").rstrip("0").rstrip(".")
    return _NULL if value in (None, "") else quote(str(value), safe=" -_.")
