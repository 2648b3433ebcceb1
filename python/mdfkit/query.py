"""A query: which samples are wanted, and the forms in which they come."""

from __future__ import annotations

from collections.abc import Mapping
from typing import TYPE_CHECKING, Any

import pyarrow as pa

from . import parquet, tables
from .errors import MdfError

if TYPE_CHECKING:
    import os

    import numpy as np
    import pandas as pd
    import polars as pl

    from .source import Source


class Query:
    """Samples of one channel group, of which none has been read yet.

    Made by `Measurement.read`, ``m["speed"]`` and the like. Each of the methods below reads the
    file anew, so a query can be used again and again, until its measurement is closed. A query is
    itself what data frames and databases take: it has ``__arrow_c_stream__``.

    Examples
    --------
    >>> q = m.read(["speed", "rpm"], start=10, stop=20)     # nothing is read
    >>> q.to_pandas()                                       # a data frame, times as its index
    >>> duckdb.sql("select max(speed) from q")              # batch by batch, without a copy
    >>> polars.DataFrame(q), pyarrow.table(q)
    >>> sum(batch.num_rows for batch in q.batches())        # bounded memory
    11
    """

    _what = "query"

    def __init__(self, source: Source, request: Mapping[str, Any]) -> None:
        self._source = source
        self._request = dict(request)
        self._schema: pa.Schema | None = None

    @property
    def schema(self) -> pa.Schema:
        """The columns, the master channel (mostly time) first.

        A field's metadata has its unit, comment and conversion:
        ``q.schema.field("speed").metadata`` is ``{b"unit": b"km/h"}``.
        """
        schema = self._columns()
        self._source.warn()
        return schema

    @property
    def units(self) -> dict[str, str]:
        """The units of the columns that have one."""
        return tables.units(self._columns())

    @property
    def index(self) -> str | None:
        """The column with the master channel, or None where there is no such channel."""
        first = self._columns().names[0]
        group = self._source.group_of(self._request)
        return first if group["master_unit"] is not None else None

    def batches(self) -> pa.RecordBatchReader:
        """Read batch by batch.

        Returns
        -------
        pyarrow.RecordBatchReader
            Batches of at most ``batch_rows`` rows, so that memory is bounded. A reader that is
            dropped half-way leaves nothing open. What is found to be wrong meanwhile is in the
            measurement's ``findings``; the next call warns of it.
        """
        reader = self._stream()
        self._source.warn()
        return reader

    def to_arrow(self) -> pa.Table:
        """Read all samples.

        Returns
        -------
        pyarrow.Table
            A column for each channel; invalid samples are null.
        """
        try:
            table = self._stream().read_all()
        except MemoryError:
            raise
        except (pa.ArrowException, OSError) as cause:
            raise MdfError(f"{self._source.path}: {cause}", "fault-inside") from cause
        self._source.warn()
        return table

    def to_numpy(self) -> dict[str, np.ndarray[Any, Any]]:
        """Read all samples as arrays of one length, by the names of their columns.

        A dictionary and not a structured array, for columns are of different types, some of them
        texts, and because ``d["speed"]`` then lies side by side in memory, as numpy computes
        fastest.

        Returns
        -------
        dict of str to numpy.ndarray, each of shape (rows,)
            Invalid samples are NaN in columns of floats and NaT in those of times. Columns of
            integers with invalid samples are masked arrays (`numpy.ma.MaskedArray`), which keep
            all digits. Texts and bytes are arrays of objects, None where invalid.
        """
        table = self.to_arrow()
        return {name: tables.to_array(table.column(i)) for i, name in enumerate(table.column_names)}

    def to_pandas(self) -> pd.DataFrame:
        """Read all samples as a data frame.

        Returns
        -------
        pandas.DataFrame
            With the master channel (mostly time, in seconds since the measurement began) as its
            index; ``times="timestamps"`` makes that a DatetimeIndex. Units are in
            ``frame.attrs["units"]``, those of the index too. Integers with invalid samples have
            pandas' own types that can miss values, such as ``UInt8``.

        Examples
        --------
        >>> frame = m.read(["speed", "rpm"]).to_pandas()
        >>> frame["speed"].rolling(100).mean()
        >>> frame.attrs["units"]["speed"]
        'km/h'
        """
        frame = tables.to_frame(self.to_arrow(), self.index)
        frame.attrs["units"] = self.units
        return frame

    def to_polars(self) -> pl.DataFrame:
        """Read all samples as a data frame of polars, the master channel as its first column.

        Timestamps in a zone that is not of whole hours are in UTC, for polars has no such zones;
        ``polars.DataFrame(query)`` refuses them.
        """
        import polars as pl

        frame = pl.from_arrow(tables.in_named_zones(self.to_arrow()))
        assert isinstance(frame, pl.DataFrame)
        return frame

    def to_parquet(self, path: str | os.PathLike[str]) -> None:
        """Write all samples to a Parquet file, batch by batch.

        The file appears when it is complete, and replaces one of that name. Its schema has units,
        comments and conversions in the metadata of the fields.
        """
        parquet.write_file(self._in_row_groups(), path)
        self._source.warn()

    def __arrow_c_stream__(self, requested_schema: object = None) -> object:
        """Give the samples to whatever takes Arrow's streams."""
        return self.batches().__arrow_c_stream__(requested_schema)

    def __arrow_c_schema__(self) -> object:
        """Give the columns to whatever takes Arrow's schemas."""
        return self.schema.__arrow_c_schema__()

    def __repr__(self) -> str:
        wanted = ", ".join(f"{name}={value!r}" for name, value in self._request.items())
        columns = "\n".join(
            f"  {field.name}: {field.type}" + (f" [{unit}]" if unit else "")
            for field in self.schema
            for unit in [self.units.get(field.name)]
        )
        return f"<{self._what} of {self._source.path}: {wanted or 'all'}>\n{columns}"

    def _columns(self) -> pa.Schema:
        """The schema, once asked for."""
        if self._schema is None:
            self._schema = self._stream().schema
        return self._schema

    def _in_row_groups(self) -> pa.RecordBatchReader:
        """Batches for a file of Parquet."""
        rows = parquet.rows_of_batch(self._columns())
        return self._stream(batch_rows=rows)

    def _stream(self, **defaults: Any) -> pa.RecordBatchReader:
        return self._source.stream({**defaults, **self._request})
