"""Arrow's tables as what numpy and pandas have."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any

import pyarrow as pa

if TYPE_CHECKING:
    import numpy as np
    import pandas as pd


def units(schema: pa.Schema) -> dict[str, str]:
    """Return the units of the columns that have one; timestamps have none."""
    return {
        field.name: field.metadata[b"unit"].decode()
        for field in schema
        if field.metadata and b"unit" in field.metadata and not pa.types.is_timestamp(field.type)
    }


def in_named_zones(table: pa.Table) -> pa.Table:
    """Return the same times in UTC where their zone has no name, such as "-03:30".

    Zones of whole hours have names that polars finds: "Etc/GMT-2".
    """
    for i, field in enumerate(table.schema):
        zone = getattr(field.type, "tz", None) or "UTC"
        if zone != "UTC" and not zone.endswith(":00"):
            utc = pa.field(field.name, pa.timestamp("ns", "UTC"), metadata=field.metadata)
            table = table.set_column(i, utc, table.column(i).cast(utc.type))
    return table


def _writable(array: np.ndarray[Any, Any]) -> np.ndarray[Any, Any]:
    """Copy what is still Arrow's, which nobody may write to."""
    return array if array.flags.writeable else array.copy()


def to_array(column: pa.ChunkedArray) -> np.ndarray[Any, Any]:
    """Make an array of a column, masked where integers are missing."""
    import numpy as np

    if not pa.types.is_integer(column.type) or column.null_count == 0:
        return _writable(column.to_numpy())
    values = _writable(column.fill_null(0).to_numpy())
    array: np.ndarray[Any, Any] = np.ma.MaskedArray(values, _writable(column.is_null().to_numpy()))
    return array


def to_series(column: pa.ChunkedArray) -> Any:
    """Make what a data frame of pandas has as a column."""
    import pandas as pd

    if pa.types.is_integer(column.type) and column.null_count > 0:
        dtype = pd.api.types.pandas_dtype(_nullable_name(column.type))
        return dtype.__from_arrow__(column)
    if pa.types.is_integer(column.type) or pa.types.is_floating(column.type):
        return _writable(column.to_numpy())
    return column.to_pandas()


def _nullable_name(integer: pa.DataType) -> str:
    """Return pandas' word: "UInt8" of uint8."""
    return str(integer).replace("uint", "UInt").replace("int", "Int")


def to_frame(table: pa.Table, index: str | None) -> pd.DataFrame:
    """Make a data frame, one of the columns its index."""
    import pandas as pd

    names = table.column_names
    columns = {name: to_series(table.column(i)) for i, name in enumerate(names) if name != index}
    rows = (
        pd.RangeIndex(table.num_rows)
        if index is None
        else pd.Index(to_series(table.column(index)), name=index)
    )
    for series in columns.values():
        if isinstance(series, pd.Series):
            series.index = rows
    return pd.DataFrame(columns, index=rows, copy=False)
