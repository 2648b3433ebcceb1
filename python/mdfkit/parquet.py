"""Parquet files: complete ones only, written batch by batch."""

from __future__ import annotations

import contextlib
import os
import shutil
import tempfile
from collections.abc import Iterator, Sequence
from pathlib import Path
from typing import TYPE_CHECKING, Any

import pyarrow as pa

from .errors import WrongQuery

if TYPE_CHECKING:
    from .group import Group
    from .measurement import Measurement
    from .query import Query

_BATCH_BYTES = 64 << 20
_MOST_NAME = 100  # bytes of a channel group's name in that of a file


def rows_of_batch(schema: pa.Schema) -> int:
    """Return how many rows make row groups of a good size in bounded memory."""
    return max(1024, min(1 << 20, _BATCH_BYTES // (8 * max(1, len(schema)))))


@contextlib.contextmanager
def complete(path: Path) -> Iterator[Path]:
    """Give a name beside this one; it gets this one when all went well."""
    path.parent.mkdir(parents=True, exist_ok=True)
    work = Path(tempfile.mkdtemp(prefix=".mdfkit-", dir=path.parent))
    try:
        yield work / path.name
        (work / path.name).replace(path)
    finally:
        shutil.rmtree(work, ignore_errors=True)


def write_file(reader: pa.RecordBatchReader, path: str | os.PathLike[str]) -> None:
    """Write a file that appears when it is complete."""
    import pyarrow.parquet as pq

    with complete(Path(path)) as beside, pq.ParquetWriter(beside, reader.schema) as writer:
        for batch in reader:
            writer.write_batch(batch)


def _write_folder(reader: pa.RecordBatchReader, path: Path, by: Sequence[str]) -> None:
    """Write a folder with a folder for each value of these columns, as ``gear=3``."""
    import pyarrow.dataset as ds

    if path.exists():
        raise FileExistsError(f"{path} exists; remove it first, for a folder is not replaced")
    with complete(path) as beside:
        ds.write_dataset(
            reader, beside, format="parquet", partitioning=list(by), partitioning_flavor="hive"
        )


def _safe(name: str) -> str:
    """Return a name that every file system has a place for."""
    safe = "".join(c if c.isalnum() or c in "-_." else "_" for c in name)
    return safe.encode()[:_MOST_NAME].decode(errors="ignore")


def _stem(group: Group, element: int | None) -> str:
    number = str(group.number) if element is None else f"{group.number}_{element}"
    return f"{number}_{_safe(group.name)}" if group.name else number


def _tables(measurement: Measurement) -> Iterator[tuple[Group, int | None, Query]]:
    """Each table: one of each group, or one of each element whose records are its own."""
    for group in measurement.groups:
        for element in group.elements:
            yield group, element, group.read(element=element)


def _described(reader: pa.RecordBatchReader, facts: dict[str, str]) -> pa.RecordBatchReader:
    schema = reader.schema.with_metadata(facts)
    return pa.RecordBatchReader.from_batches(
        schema, (batch.replace_schema_metadata(facts) for batch in reader)
    )


def _facts(measurement: Measurement, group: Group) -> dict[str, str]:
    """What the file says beside the columns."""
    facts: dict[str, Any] = {
        "mdf.file": Path(measurement.path).name,
        "mdf.start": measurement.start.isoformat() if measurement.start else "",
        "mdf.comment": measurement.comment,
        "mdf.group": group.name,
        "mdf.group_comment": group.comment,
    }
    return {name: text for name, text in facts.items() if text}


def _has(query: Query, columns: Sequence[str]) -> bool:
    return bool(columns) and set(columns) <= set(query._columns().names)


def _refuse_unknown(measurement: Measurement, columns: Sequence[str]) -> None:
    if columns and not any(_has(query, columns) for _, _, query in _tables(measurement)):
        raise WrongQuery(f"no channel group has the columns {', '.join(columns)}", "query-wrong")


def write_measurement(
    measurement: Measurement, folder: str | os.PathLike[str], partition_by: Sequence[str] = ()
) -> list[Path]:
    """Write each channel group; see `Measurement.to_parquet`."""
    _refuse_unknown(measurement, partition_by)
    written: list[Path] = []
    for group, element, query in _tables(measurement):
        reader = _described(query._in_row_groups(), _facts(measurement, group))
        path = Path(folder) / _stem(group, element)
        if _has(query, partition_by):
            _write_folder(reader, path, partition_by)
        else:
            path = path.with_name(path.name + ".parquet")
            write_file(reader, path)
        written.append(path)
    return written
