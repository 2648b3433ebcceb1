"""Batches of a file as batches of the table that Spark reads."""

from __future__ import annotations

from collections.abc import Iterable, Iterator, Mapping, Sequence
from typing import Any

import pyarrow as pa
import pyarrow.compute as pc

from .faults import Fault
from .schema import Target

_JOINED_BYTES = 1 << 20


class Adapter:
    """Makes the table's columns of one file's channels.

    Parameters
    ----------
    path : str
        The file.
    wanted : sequence of Target
        The table's columns.
    given : pyarrow.Schema
        Those of the file.
    attributes : mapping
        What to say in columns that are about the file.

    Attributes
    ----------
    faults : list of Fault
        Columns whose values do not fit the types that are wanted; these are null.
    """

    def __init__(
        self,
        path: str,
        wanted: Sequence[Target],
        given: pa.Schema,
        attributes: Mapping[str, Any],
    ) -> None:
        self._path = path
        self._wanted = wanted
        self._schema = pa.schema([pa.field(each.name, each.type) for each in wanted])
        self._places = [_place(each.channel, given.names) for each in wanted]
        self._attributes = attributes
        self._unfit: set[str] = set()
        self._constants: dict[tuple[str, int], pa.Array] = {}
        self.faults: list[Fault] = []

    def adapted(self, batch: pa.RecordBatch) -> pa.RecordBatch:
        """Return the same rows with the table's columns."""
        arrays = [
            self._constant(target, batch.num_rows)
            if place is None
            else self._cast(batch.column(place), target)
            for target, place in zip(self._wanted, self._places)
        ]
        return pa.RecordBatch.from_arrays(arrays, schema=self._schema)

    def _constant(self, target: Target, rows: int) -> pa.Array:
        """Return an attribute of the file, or nulls for a channel that it does not have."""
        key = (target.name, rows)
        if key not in self._constants:
            value = (
                None if target.channel is not None else self._attributes.get(target.name.lower())
            )
            scalar = pa.scalar(value).cast(target.type)
            self._constants = {
                each: array for each, array in self._constants.items() if each[1] == rows
            }
            self._constants[key] = pa.repeat(scalar, rows)
        return self._constants[key]

    def _cast(self, array: pa.Array, target: Target) -> pa.Array:
        if target.name not in self._unfit:
            try:
                return _as(array, target.type)
            except (pa.ArrowException, NotImplementedError) as error:
                self._unfit.add(target.name)
                text = f"channel {target.channel!r} cannot be given as {target.type}: {error}"
                self.faults.append(Fault(self._path, "type-unfit", "error", None, "", text))
        return pa.nulls(len(array), target.type)


def joined(batches: Iterable[pa.RecordBatch]) -> Iterator[pa.RecordBatch]:
    """Put batches of small files together, for each costs Spark the same, however few its rows."""
    waiting: list[pa.RecordBatch] = []
    size = 0
    for batch in batches:
        if waiting and size + batch.nbytes > _JOINED_BYTES:
            yield _one(waiting)
            waiting, size = [], 0
        waiting.append(batch)
        size += batch.nbytes
    if waiting:
        yield _one(waiting)


def _one(batches: list[pa.RecordBatch]) -> pa.RecordBatch:
    if len(batches) == 1:
        return batches[0]
    table = pa.Table.from_batches(batches)
    columns = [column.combine_chunks() for column in table.columns]
    return pa.RecordBatch.from_arrays(columns, schema=table.schema)


def _place(channel: str | None, names: Sequence[str]) -> int | None:
    """Return the column with a channel: that of its name, else the only one but for case."""
    if channel is None:
        return None
    if channel in names:
        return names.index(channel)
    alike = [i for i, name in enumerate(names) if name.lower() == channel.lower()]
    return alike[0] if len(alike) == 1 else None


def _as(array: pa.Array, kind: pa.DataType) -> pa.Array:
    if array.type == kind:
        return array
    if pa.types.is_timestamp(array.type):
        if pa.types.is_string(kind):
            array = _as(array, pa.timestamp("us", "UTC"))
        elif array.type.tz is None:
            array = array.cast(pa.timestamp(array.type.unit, "UTC"))
        if pa.types.is_timestamp(kind):
            # Nanoseconds are cut off towards the past.
            return pc.floor_temporal(array, unit="microsecond").cast(kind, safe=False)
    if pa.types.is_binary(kind) and not _is_bytes(array.type):
        array = _as(array, pa.string())
    return array.cast(kind)


def _is_bytes(kind: pa.DataType) -> bool:
    return bool(pa.types.is_binary(kind) or pa.types.is_large_binary(kind))
