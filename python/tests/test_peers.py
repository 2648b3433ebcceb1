"""Each sample file through each peer, against what the program exports."""

from __future__ import annotations

import contextlib
import json
import math
from collections.abc import Callable, Iterator
from pathlib import Path
from typing import Any

import duckdb
import nanoarrow as na
import numpy as np
import pandas as pd
import polars as pl
import pyarrow as pa
import pyarrow.parquet as pq
import pytest

import mdfkit
from conftest import Make, run, stated

Columns = dict[str, list[Any]]

SAMPLES = sorted(Path(stated("MDF_SAMPLES")).glob("*.mf4"))


def exported(path: Path) -> Iterator[tuple[dict[str, Any], list[dict[str, Any]]]]:
    """Each table as the program writes it: its head, and its rows."""
    head: dict[str, Any] = {}
    rows: list[dict[str, Any]] = []
    for line in run("export", "--json", "--empty", path).splitlines():
        members = json.loads(line)
        if "values" in members:
            rows.append(members["values"])
            continue
        if head:
            yield head, rows
        head, rows = members, []
    if head:
        yield head, rows


def as_type(value: Any, column: pa.DataType) -> Any:
    """A value of JSON as what it stands for."""
    if value is None:
        return None
    if pa.types.is_floating(column):
        return float(value)
    return bytes.fromhex(value) if pa.types.is_large_binary(column) else value


def same(found: Any, expected: Any) -> bool:
    """Whether two values are alike; nan is like itself."""
    if isinstance(expected, float) and math.isnan(expected):
        return isinstance(found, float) and math.isnan(found)
    return type(found) is type(expected) and bool(found == expected)


def of_arrow(query: mdfkit.Query) -> Columns:
    return query.to_arrow().to_pydict()  # type: ignore[no-any-return]


def of_polars(query: mdfkit.Query) -> Columns:
    return pl.DataFrame(query).to_dict(as_series=False)


def of_nanoarrow(query: mdfkit.Query) -> Columns:
    rows = na.ArrayStream(query).read_all().to_pylist()
    return {name: [row[name] for row in rows] for name in query.schema.names}


def sql(statement: str, q: mdfkit.Query) -> list[Any]:  # noqa: ARG001 - the statement names it
    """What a database answers to a statement about "q"."""
    answer = duckdb.sql(statement)
    assert answer is not None
    return answer.fetchall()


def of_duckdb(query: mdfkit.Query) -> Columns:
    rows = sql("select * from q", query)
    return {name: [row[i] for row in rows] for i, name in enumerate(query.schema.names)}


def of_numpy(query: mdfkit.Query) -> Columns:
    return {name: array.tolist() for name, array in query.to_numpy().items()}


def of_pandas(query: mdfkit.Query) -> Columns:
    frame = query.to_pandas()
    if query.index is not None:
        frame = frame.reset_index()
    return {
        field.name: [plain(value, field.type) for value in frame[field.name].tolist()]
        for field in query.schema
    }


def plain(value: Any, column: pa.DataType) -> Any:
    """None for a missing integer or text, for which releases of pandas have values of their own."""
    return None if pd.isna(value) and not pa.types.is_floating(column) else value


@pytest.fixture
def of_parquet(tmp_path: Path) -> Callable[[mdfkit.Query], Columns]:
    def read_back(query: mdfkit.Query) -> Columns:
        query.to_parquet(tmp_path / "table.parquet")
        return pq.read_table(tmp_path / "table.parquet").to_pydict()  # type: ignore[no-any-return]

    return read_back


# The only samples that are read with a finding.
WITH_A_TORN_RECORD = (
    "unfinished-last-data-open-half-a-record",
    "unfinished-last-data-open-less-than-a-record",
    "unfinished-unsorted",
)

# Of these, those of the second list have no null in columns of floats, but nan.
EXACT = (of_arrow, of_polars, of_nanoarrow, of_duckdb)
WITH_NAN = (of_numpy, of_pandas)


def with_nan(values: list[Any], column: pa.DataType) -> list[Any]:
    is_float = pa.types.is_floating(column)
    return [math.nan if value is None and is_float else value for value in values]


def check(found: Columns, expected: Columns, what: str) -> None:
    assert list(found) == list(expected), what
    for name, values in expected.items():
        assert len(found[name]) == len(values), (what, name)
        for i, value in enumerate(values):
            assert same(found[name][i], value), (what, name, i, found[name][i], value)


@pytest.mark.parametrize("path", SAMPLES, ids=lambda path: path.stem)
def test_values_are_those_that_the_program_exports(
    path: Path, of_parquet: Callable[[mdfkit.Query], Columns]
) -> None:
    is_torn = path.stem in WITH_A_TORN_RECORD
    with pytest.warns(mdfkit.MdfWarning) if is_torn else contextlib.nullcontext():
        compare_all(path, of_parquet)


def compare_all(path: Path, of_parquet: Callable[[mdfkit.Query], Columns]) -> None:
    """Each table of a file in each form."""
    m = mdfkit.open(path)
    tables = list(exported(path))
    elements = [(group.number, element) for group in m.groups for element in group.elements]
    assert elements == [(head["group"], head.get("element")) for head, _ in tables]
    for head, rows in tables:
        query = m.read(group=head["group"], element=head.get("element"))
        types = {field.name: field.type for field in query.schema}
        assert [
            {"name": name, "unit": query.units.get(name, "")} for name in query.schema.names
        ] == head["columns"]
        expected = {
            name: [as_type(row[name], column) for row in rows] for name, column in types.items()
        }
        for peer in (*EXACT, of_parquet):
            check(peer(query), expected, peer.__name__)
        nan = {name: with_nan(values, types[name]) for name, values in expected.items()}
        for peer in WITH_NAN:
            check(peer(query), nan, peer.__name__)


def test_there_are_samples_of_everything() -> None:
    assert len(SAMPLES) > 250


def test_a_database_takes_a_query_by_its_name(engine: mdfkit.Measurement) -> None:
    q = engine.read(["speed", "gear"])
    assert sql("select max(speed), min(gear), count(*) from q", q) == [(2.5, 1, 4)]
    assert sql("select gear from q where speed < 0", q) == [(255,)]
    assert q.to_arrow().num_rows == 4


def test_the_protocols_of_arrow_are_those_of_a_reader(engine: mdfkit.Measurement) -> None:
    query = engine.read(["gear"])
    assert pa.schema(query).names == ["t", "gear"]
    assert na.Schema(query).field(1).name == "gear"
    assert pa.RecordBatchReader.from_stream(query).read_all().to_pydict() == {
        "t": [0.0, 0.5, 1.0, 1.5],
        "gear": [1, 2, None, 255],
    }


def test_nothing_is_copied_on_the_way(make: Make) -> None:
    rows = "".join(f"{i},{i}\n" for i in range(10_000))
    m = mdfkit.open(make(one="t [s],v\n" + rows, types=("v=float64",)))
    before = pa.total_allocated_bytes()
    table = pa.table(m.read())
    assert table.nbytes >= 160_000
    assert pa.total_allocated_bytes() - before < 10_000  # the values are in the library's memory
    np.testing.assert_array_equal(table.column("v").to_numpy(), np.arange(10_000))
