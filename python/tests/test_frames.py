"""Frames of buses and their signals."""

from __future__ import annotations

from collections.abc import Callable
from pathlib import Path
from typing import Any

import duckdb
import pyarrow as pa
import pytest

import mdfkit

LOG = """(1700000000.500000) can0 123#401FD8000F00
(1700000001.000000) can1 18FEF100##5AABB
(1700000002.000000) can0 123#02000112
(1700000003.000000) can0 7FF#R4
"""

DBC = """BO_ 291 Engine: 6 ECU
 SG_ Speed : 0|16@1+ (0.25,0) [0|8000] "rpm" ECU
 SG_ Gear : 24|4@1+ (1,0) [0|15] "" ECU
VAL_ 291 Gear 0 "neutral" ;
"""


@pytest.fixture
def log(tmp_path: Path, program: Callable[..., str]) -> mdfkit.Measurement:
    (tmp_path / "can.log").write_text(LOG)
    program("import", tmp_path / "can.log", "-o", tmp_path / "log.mf4")
    return mdfkit.open(tmp_path / "log.mf4")


@pytest.fixture
def dbc(tmp_path: Path) -> Path:
    path = tmp_path / "car.dbc"
    path.write_text(DBC)
    return path


def rows_of(sql: str, **tables: object) -> list[Any]:
    """Ask DuckDB."""
    with duckdb.connect() as connection:
        for name, table in tables.items():
            connection.register(name, table)
        return connection.sql(sql).fetchall()


def test_frames_of_all_buses_come_in_the_order_of_time(log: mdfkit.Measurement) -> None:
    table = log.frames().to_arrow()
    assert table.column_names == [
        "time",
        "bus",
        "frame",
        "id",
        "extended",
        "direction",
        "fd",
        "brs",
        "esi",
        "error",
        "length",
        "data",
    ]
    wanted = ["time", "bus", "frame", "id", "extended", "fd", "brs", "length", "data"]
    rows = [tuple(row.values()) for row in table.select(wanted).to_pylist()]
    assert rows == [
        (0.0, "can0", "data", 0x123, 0, 0, 0, 6, bytes.fromhex("401FD8000F00")),
        (0.5, "can1", "data", 0x18FEF100, 1, 1, 1, 2, b"\xaa\xbb"),
        (1.5, "can0", "data", 0x123, 0, 0, 0, 4, bytes.fromhex("02000112")),
        (2.5, "can0", "remote", 0x7FF, 0, 0, 0, 4, b""),
    ]
    assert table["error"].null_count == 4


def test_frames_are_a_query_as_others_are(log: mdfkit.Measurement, tmp_path: Path) -> None:
    frames = log.frames(start=0.5, stop=2, times="timestamps", batch_rows=1)
    assert [batch.num_rows for batch in frames.batches()] == [1, 1]
    frame = frames.to_pandas()
    assert [str(time) for time in frame.index] == [
        "2023-11-14 22:13:21+00:00",
        "2023-11-14 22:13:22+00:00",
    ]
    assert list(frame["bus"]) == ["can1", "can0"]
    assert frames.to_polars()["id"].to_list() == [0x18FEF100, 0x123]
    assert rows_of("select max(length) from frames", frames=frames) == [(4,)]
    frames.to_parquet(tmp_path / "frames.parquet")
    assert rows_of(f"select bus from '{tmp_path}/frames.parquet'") == [("can1",), ("can0",)]
    assert repr(frames).startswith(f"<frames of {log.path}: from=0.5, to=2.0, times='timestamps'")
    assert log.frames().units == {"time": "s"}


def test_signals_are_a_measurement_of_their_own(log: mdfkit.Measurement, dbc: Path) -> None:
    signals = log.decode(dbc)
    log.close()
    assert signals.groups.names() == ["Engine"]
    assert signals.read().to_arrow().to_pydict() == {
        "time": [0.0, 1.5],
        "Speed": [2000.0, 0.5],
        "Gear": ["neutral", "2"],
    }
    assert signals.channels["Speed"].unit == "rpm"
    assert signals.decoding == mdfkit.Decoding(
        frames=2,
        unknown_frames=1,
        unknown=(mdfkit.UnknownId("can1", 0x18FEF100, extended=True, frames=1),),
        other_frames=1,
        faults=(),
        notes=(),
    )
    assert mdfkit.open(log.path).decoding is None


def test_a_database_may_be_for_one_bus_and_several_be_given(
    log: mdfkit.Measurement, dbc: Path
) -> None:
    with pytest.warns(mdfkit.MdfWarning, match="no frame is of a message of the databases"):
        assert len(log.decode(f"{dbc}@can1").groups) == 0
    assert log.decode([f"{dbc}@can1", dbc])["Speed"].to_arrow().num_rows == 2


def test_parameter_groups_alone_count_when_that_is_asked_for(
    log: mdfkit.Measurement, tmp_path: Path
) -> None:
    other_sender = 0x80000000 | 0x0CFEF1FE
    path = tmp_path / "j1939.dbc"
    path.write_text(f'BO_ {other_sender} CCVS: 2 ECU\n SG_ Low : 0|8@1+ (1,0) [0|0] "" ECU\n')
    columns = log.decode(path, j1939=True).read().to_arrow().to_pydict()
    assert columns == {"time": [0.5], "Low": [0xAA], "SourceAddress": [0]}


def test_what_is_wrong_with_a_database_is_warned_of(
    log: mdfkit.Measurement, tmp_path: Path
) -> None:
    path = tmp_path / "faulty.dbc"
    path.write_text(DBC + "BO_ x\n")
    with pytest.warns(mdfkit.MdfWarning, match=r"faulty\.dbc:5:5: expected"):
        signals = log.decode(path)
    assert signals.decoding is not None
    (fault,) = signals.decoding.faults
    assert (fault.path, fault.line, fault.column) == (str(path), 5, 5)


def test_without_frames_or_database_there_are_no_signals(
    log: mdfkit.Measurement, engine: mdfkit.Measurement, dbc: Path
) -> None:
    with pytest.raises(mdfkit.WrongQuery, match="no channel group holds frames of CAN or LIN"):
        engine.frames().to_arrow()
    with pytest.raises(mdfkit.CannotDecode, match="no channel group holds frames of CAN or LIN"):
        engine.decode(dbc)
    with pytest.raises(mdfkit.CannotDecode, match=r"cannot open .*none\.dbc: No such file"):
        log.decode(dbc.with_name("none.dbc"))
    with pytest.raises(mdfkit.WrongQuery, match="expected databases"):
        log.decode([])


def test_frames_are_read_as_a_stream_is_taken(log: mdfkit.Measurement) -> None:
    assert pa.table(log.frames(stop=0.5)).num_rows == 2
