"""Files of Parquet: values, units, and complete ones only."""

from __future__ import annotations

from pathlib import Path

import pyarrow as pa
import pyarrow.dataset as ds
import pyarrow.parquet as pq
import pytest

import mdfkit
from conftest import BRAKES, ENGINE, Make
from mdfkit import parquet
from test_query import ROWS


def test_a_query_becomes_one_file(engine: mdfkit.Measurement, tmp_path: Path) -> None:
    path = tmp_path / "new" / "engine.parquet"
    for _ in range(2):  # the second one replaces the first
        engine.read().to_parquet(path)
        table = pq.read_table(path)
        assert table.to_pylist() == ROWS
        assert table.schema.field("speed").metadata[b"unit"] == b"km/h"
    assert [each.name for each in path.parent.iterdir()] == ["engine.parquet"]


def test_each_group_becomes_a_file(two_groups: mdfkit.Measurement, tmp_path: Path) -> None:
    folder = tmp_path / "trip"
    written = two_groups.to_parquet(folder)
    assert written == [folder / "0_engine.parquet", folder / "1_brakes.parquet"]
    assert sorted(folder.iterdir()) == written
    assert pq.read_table(written[0]).to_pylist() == ROWS
    brakes = pq.read_table(written[1])
    assert brakes.to_pydict() == {"t": [0.0, 2.0], "pressure": [10, 30], "speed": [1, 3]}
    assert brakes.schema.metadata == {
        b"mdf.file": b"trip.mf4",
        b"mdf.comment": b"imported from engine.csv, brakes.csv",
        b"mdf.group": b"brakes",
    }
    time = brakes.schema.field("t").metadata
    assert time[b"unit"] == b"s"
    assert time[b"conversion"] == b'{"type":"linear","type_number":1,"values":[0.0,1e-09]}'


def test_the_start_is_in_the_schema(dated: mdfkit.Measurement, tmp_path: Path) -> None:
    [path] = dated.to_parquet(tmp_path / "out")
    metadata = pq.read_schema(path).metadata
    assert metadata[b"mdf.start"] == b"2024-05-17T13:45:12.500000+02:00"


def test_timestamps_keep_their_zone(dated: mdfkit.Measurement, tmp_path: Path) -> None:
    dated.read(times="timestamps").to_parquet(tmp_path / "times.parquet")
    field = pq.read_schema(tmp_path / "times.parquet").field("time")
    assert field.type == pa.timestamp("ns", "+02:00")


def test_rows_are_divided_by_the_values_of_a_column(make: Make, tmp_path: Path) -> None:
    gears = "t [s],gear,speed\n0,1,10\n1,2,20\n2,1,30\n"
    m = mdfkit.open(make(gears=gears, brakes=BRAKES))
    written = m.to_parquet(tmp_path / "out", partition_by="gear")
    assert written == [tmp_path / "out" / "0_gears", tmp_path / "out" / "1_brakes.parquet"]
    assert sorted(each.name for each in written[0].iterdir()) == ["gear=1", "gear=2"]
    first = ds.dataset(written[0] / "gear=1").to_table()
    assert first.to_pydict() == {"t": [0.0, 2.0], "speed": [10, 30]}
    with pytest.raises(FileExistsError, match="0_gears exists"):
        m.to_parquet(tmp_path / "out", partition_by=["gear"])


def test_unknown_columns_are_refused_before_anything_is_written(
    engine: mdfkit.Measurement, tmp_path: Path
) -> None:
    with pytest.raises(mdfkit.WrongQuery, match="no channel group has the columns oil, gear"):
        engine.to_parquet(tmp_path / "out", partition_by=["oil", "gear"])
    assert not (tmp_path / "out").exists()


def test_names_of_files_are_safe_everywhere(make: Make, tmp_path: Path) -> None:
    m = mdfkit.open(make(**{"a b:c*größe": ENGINE, "..": BRAKES}))
    written = m.to_parquet(tmp_path / "out")
    assert [path.name for path in written] == ["0_a_b_c_größe.parquet", "1_...parquet"]
    assert parquet._safe("x" + "日" * 500) == "x" + "日" * 33


def test_elements_become_files_of_their_own(samples: Path, tmp_path: Path) -> None:
    written = mdfkit.open(samples / "array-of-channel-groups.mf4").to_parquet(tmp_path)
    assert [path.name for path in written] == [
        "0_0.parquet",
        "0_1.parquet",
        "0_2.parquet",
        "1.parquet",
    ]
    assert pq.read_table(written[2]).to_pydict() == {"t": [0.0, 1.0, 2.0], "v[2]": [30, 31, 32]}


def test_what_fails_half_way_leaves_no_file(tmp_path: Path) -> None:
    schema = pa.schema([("v", pa.int64())])

    def batches() -> object:
        yield pa.record_batch({"v": [1, 2]})
        raise RuntimeError("the disk went away")

    reader = pa.RecordBatchReader.from_batches(schema, batches())
    with pytest.raises(RuntimeError, match="the disk went away"):
        parquet.write_file(reader, tmp_path / "v.parquet")
    assert list(tmp_path.iterdir()) == []


def test_wide_tables_have_batches_of_fewer_rows() -> None:
    def schema(columns: int) -> pa.Schema:
        return pa.schema([(f"c{i}", pa.float64()) for i in range(columns)])

    counts = [parquet.rows_of_batch(schema(columns)) for columns in (0, 1, 100, 20_000)]
    assert counts == [1 << 20, 1 << 20, 83_886, 1024]
