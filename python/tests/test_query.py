"""Samples in each form, against values written by hand."""

from __future__ import annotations

import datetime as dt
import os
from pathlib import Path
from typing import Any

import numpy as np
import pandas as pd
import polars as pl
import pyarrow as pa
import pytest

import mdfkit
from conftest import ENGINE, Make

ROWS: list[dict[str, Any]] = [
    {"t": 0.0, "speed": 1.5, "gear": 1, "text": "off"},
    {"t": 0.5, "speed": 2.5, "gear": 2, "text": "on, at last"},
    {"t": 1.0, "speed": None, "gear": None, "text": None},
    {"t": 1.5, "speed": -4.25, "gear": 255, "text": "größer"},
]


def test_arrow_has_types_units_and_nulls(engine: mdfkit.Measurement) -> None:
    query = engine.read()
    table = query.to_arrow()
    assert table.to_pylist() == ROWS
    assert table.schema.equals(query.schema, check_metadata=True)
    assert [str(field.type) for field in query.schema] == [
        "double",
        "double",
        "uint8",
        "large_string",
    ]
    assert query.schema.field("speed").metadata == {b"unit": b"km/h"}
    assert (query.units, query.index) == ({"t": "s", "speed": "km/h"}, "t")


def test_nothing_is_read_before_it_is_asked_for(engine: mdfkit.Measurement) -> None:
    query = engine.read(["speed"])
    Path(engine.path).write_bytes(b"")
    engine.close()
    with pytest.raises(ValueError, match="is closed"):
        _ = query.schema


def test_a_query_is_read_again_and_again(engine: mdfkit.Measurement) -> None:
    query = engine["speed"]
    expected = [{"t": row["t"], "speed": row["speed"]} for row in ROWS]
    for _ in range(3):
        assert query.to_arrow().to_pylist() == expected
        assert pa.table(query).to_pylist() == expected


def test_repr_names_file_request_and_columns(engine: mdfkit.Measurement) -> None:
    assert repr(engine.read(["speed"], start=1)) == (
        f"<query of {engine.path}: channels=['speed'], from=1.0>\n"
        "  t: double [s]\n"
        "  speed: double [km/h]"
    )


@pytest.mark.parametrize(
    ("options", "times"),
    [
        ({"start": 0.5}, [0.5, 1.0, 1.5]),
        ({"stop": 0.5}, [0.0, 0.5]),
        ({"start": 0.5, "stop": 1}, [0.5, 1.0]),
        ({"first": 3}, [0.0, 0.5, 1.0]),
        ({"last": np.int64(1)}, [1.5]),
        ({"stride": 2}, [0.0, 1.0]),
        ({"first": 3, "stride": 2}, [0.0, 1.0]),
        ({"skip": 1, "first": 2}, [0.5, 1.0]),
        ({"start": 10}, []),
        ({"batch_rows": 1, "threads": 1}, [0.0, 0.5, 1.0, 1.5]),
    ],
)
def test_rows_are_limited(
    engine: mdfkit.Measurement, options: dict[str, float], times: list[float]
) -> None:
    table = engine.read(["gear"], **options).to_arrow()  # type: ignore[arg-type]
    assert table.column("t").to_pylist() == times


def test_raw_values_are_those_of_the_file(engine: mdfkit.Measurement) -> None:
    table = engine.read("gear", raw=True, first=2).to_arrow()
    assert table.to_pydict() == {"t": [0, 500_000_000], "gear": [1, 2]}


def test_numbers_in_place_of_texts(samples: Path) -> None:
    m = mdfkit.open(samples / "conversion-value-to-text-without-default.mf4")
    assert m["v"].to_arrow().column("v").to_pylist() == ["on", "7"]
    assert m.read(numbers=True).to_arrow().column("v").to_pylist() == [1, 7]


def test_batches_have_bounded_rows(engine: mdfkit.Measurement) -> None:
    batches = engine.read(batch_rows=3).batches()
    assert isinstance(batches, pa.RecordBatchReader)
    assert [batch.num_rows for batch in batches] == [3, 1]


def test_channels_by_names_patterns_and_groups(two_groups: mdfkit.Measurement) -> None:
    m = two_groups
    assert m[["speed", "gear"]]._request == {"channels": ["speed", "gear"]}
    assert m["[pg]*r*"]._request == {"channels": ["[pg]*r*"]}
    assert m["pressure"].schema.names == ["t", "pressure"]
    assert m.read(["ge*", "te*"]).schema.names == ["t", "gear", "text"]
    assert m.read("speed", group="brakes").to_arrow().column("speed").to_pylist() == [1, 3]
    assert m.read("speed", group="br*").to_arrow().column("speed").to_pylist() == [1, 3]
    assert m.groups["brakes"]["speed"].to_arrow().column("speed").to_pylist() == [1, 3]
    assert m.groups[0].read(last=1).to_arrow().to_pylist() == ROWS[3:]
    assert m.read(group=np.int32(1)).index == "t"
    assert m["gear", "text"].schema.names == ["t", "gear", "text"]


def test_the_group_of_a_query_is_found(two_groups: mdfkit.Measurement) -> None:
    group_of = two_groups._source.group_of
    requests: list[dict[str, Any]] = [
        {"channels": ["pressure"]},
        {"channels": ["press[u]re"]},
        {"channels": ["speed"], "group": "br*"},
        {"channels": ["speed"], "group": "1"},
        {"group": 1},
    ]
    assert [group_of(request)["name"] for request in requests] == ["brakes"] * 5
    assert group_of({"channels": ["gear"]})["name"] == "engine"
    with pytest.raises(mdfkit.WrongQuery):
        group_of({"channels": ["oil"]})


def test_names_are_themselves_whatever_characters_they_have(make: Make) -> None:
    m = mdfkit.open(make(odd='t [s],a[0],a*,a?,"b\\c",größe,日本,ab\n0,1,2,3,4,5,6,7\n'))
    assert m.channels.names() == ["t", "a[0]", "a*", "a?", "b\\c", "größe", "日本", "ab"]
    for value, name in enumerate(m.channels.names()[1:], start=1):
        assert m[name].to_arrow().to_pylist() == [{"t": 0.0, name: value}]
    assert m["a[0]"].to_pandas().index.name == "t"


def test_groups_by_names_that_read_as_numbers(make: Make) -> None:
    m = mdfkit.open(make(**{"1": "t [s],a\n0,1\n", "0": "t [s],a\n0,2\n"}))
    assert m.groups.names() == ["1", "0"]
    assert m.read(group="1").to_arrow().column("a").to_pylist() == [1]
    assert m.read(group=1).to_arrow().column("a").to_pylist() == [2]


def test_elements_with_records_of_their_own(samples: Path) -> None:
    group = mdfkit.open(samples / "array-of-channel-groups.mf4").groups[0]
    assert group.elements == (0, 1, 2)
    with pytest.raises(mdfkit.WrongQuery, match=r'choose one by "element"$'):
        group.read().to_arrow()
    assert group.read(element=1).to_arrow().to_pylist() == [{"t": 0.5, "v[1]": 20}]


def test_numpy_has_nan_masks_and_objects(engine: mdfkit.Measurement) -> None:
    arrays = engine.read().to_numpy()
    assert list(arrays) == ["t", "speed", "gear", "text"]
    assert [str(array.dtype) for array in arrays.values()] == [
        "float64",
        "float64",
        "uint8",
        "object",
    ]
    np.testing.assert_array_equal(arrays["t"], [0, 0.5, 1, 1.5])
    np.testing.assert_array_equal(arrays["speed"], [1.5, 2.5, np.nan, -4.25])
    assert isinstance(arrays["gear"], np.ma.MaskedArray)
    assert arrays["gear"].tolist() == [1, 2, None, 255]
    assert arrays["text"].tolist() == ["off", "on, at last", None, "größer"]
    arrays["t"][0] = 7  # is the caller's own


def test_numpy_has_bytes_and_times(samples: Path, dated: mdfkit.Measurement) -> None:
    m = mdfkit.open(samples / "data-type-byte-array.mf4")
    assert m["v"].to_numpy()["v"].tolist() == [b"\x00\xff\n,", b"\x00\x00\x00\x00"]
    times = dated.read(times="timestamps").to_numpy()["time"]
    np.testing.assert_array_equal(
        times,
        np.array(["2024-05-17T11:45:12.5", "2024-05-17T11:45:13.000000001"], "datetime64[ns]"),
    )


def test_pandas_has_times_as_index_and_units(engine: mdfkit.Measurement) -> None:
    frame = engine.read().to_pandas()
    pd.testing.assert_frame_equal(
        frame,
        pd.DataFrame(
            {
                "speed": [1.5, 2.5, np.nan, -4.25],
                "gear": pd.array([1, 2, None, 255], dtype="UInt8"),
                "text": ["off", "on, at last", None, "größer"],
            },
            index=pd.Index([0, 0.5, 1, 1.5], name="t"),
        ),
    )
    assert frame.attrs == {"units": {"t": "s", "speed": "km/h"}}
    frame.loc[0.5, "speed"] = 7.0  # is the caller's own
    assert frame["speed"].iloc[1] == 7.0


def test_pandas_has_large_integers_to_the_last_digit(make: Make) -> None:
    m = mdfkit.open(make(ids="t [s],id\n0,9007199254740993\n1,\n"))
    assert m["id"].to_pandas()["id"].to_list() == [9007199254740993, pd.NA]
    assert m["id"].to_numpy()["id"].tolist() == [9007199254740993, None]


def test_pandas_has_times_of_day(dated: mdfkit.Measurement) -> None:
    frame = dated.read(times="timestamps").to_pandas()
    index = frame.index
    assert isinstance(index, pd.DatetimeIndex)
    assert [time.isoformat() for time in index] == [
        "2024-05-17T13:45:12.500000+02:00",
        "2024-05-17T13:45:13.000000001+02:00",
    ]
    assert frame.attrs == {"units": {"speed": "km/h"}}


def test_pandas_has_a_plain_index_without_a_master_channel(samples: Path) -> None:
    frame = mdfkit.open(samples / "layout-no-master.mf4").read().to_pandas()
    pd.testing.assert_frame_equal(frame, pd.DataFrame({"v": np.array([1, 2], dtype="uint16")}))


def test_the_master_channel_of_another_group_is_the_index(samples: Path) -> None:
    frame = mdfkit.open(samples / "remote-master-shared.mf4")["b"].to_pandas()
    assert (frame.index.name, frame.index.to_list()) == ("t", [0.0, 0.5, 1.0])
    assert frame["b"].to_list() == [7, 14, 21]


def test_polars_has_the_same(engine: mdfkit.Measurement, dated: mdfkit.Measurement) -> None:
    for frame in (engine.read().to_polars(), pl.DataFrame(engine.read())):
        assert frame.to_dicts() == ROWS
        assert frame.schema == {
            "t": pl.Float64,
            "speed": pl.Float64,
            "gear": pl.UInt8,
            "text": pl.String,
        }
    times = dated.read(times="timestamps").to_polars()["time"]
    assert times[0] == dt.datetime(2024, 5, 17, 11, 45, 12, 500000, tzinfo=dt.timezone.utc)


def test_polars_has_utc_for_zones_of_half_hours(samples: Path) -> None:
    m = mdfkit.open(samples / "time-with-zone-behind.mf4")
    times = m.read(times="timestamps").to_polars()["t"]
    assert times.dtype == pl.Datetime("ns", "UTC")
    assert times[1] == dt.datetime(2020, 1, 1, 0, 0, 0, 500000, tzinfo=dt.timezone.utc)


def test_groups_without_records_have_columns(samples: Path) -> None:
    query = mdfkit.open(samples / "organisation-no-data.mf4").read()
    assert query.to_arrow().num_rows == 0
    frame = query.to_pandas()
    assert (frame.shape[0], frame.index.name) == (0, "t")
    assert all(array.shape == (0,) for array in query.to_numpy().values())
    assert query.to_polars().height == 0


def test_files_without_groups_have_nothing_to_read(samples: Path) -> None:
    m = mdfkit.open(samples / "block-header-alone.mf4")
    assert (len(m.groups), len(m.channels), m.duration) == (0, 0, None)
    with pytest.raises(mdfkit.WrongQuery, match="no channel group fits the query"):
        m.read().to_arrow()


def test_a_million_rows(make: Make) -> None:
    count = 1_000_000
    text = "t [s],i,x\n" + "".join(f"{i},{i},{i / 4}\n" for i in range(count))
    m = mdfkit.open(make(long=text))
    arrays = m.read().to_numpy()
    np.testing.assert_array_equal(arrays["t"], np.arange(count) * 10**9 * 1e-9)  # as it is stored
    np.testing.assert_array_equal(arrays["i"], np.arange(count))
    np.testing.assert_array_equal(arrays["x"], np.arange(count) / 4)
    frame = m.read("x", start=999_998).to_pandas()
    assert frame["x"].to_list() == [249999.5, 249999.75]


def mapped(path: str) -> int:
    """How often a file is open or in memory in this process."""
    lines = Path("/proc/self/maps").read_text().splitlines()
    links = [os.path.realpath(each) for each in Path("/proc/self/fd").iterdir()]
    return sum(line.endswith(path) for line in lines) + links.count(path)


def test_a_query_that_is_dropped_half_way_leaves_nothing_open(make: Make) -> None:
    rows = "".join(f"{i},{i}\n" for i in range(1000))
    m = mdfkit.open(make(engine="t [s],v\n" + rows))
    reader = m.read(batch_rows=10).batches()
    batch = reader.read_next_batch()
    m.close()
    assert mapped(m.path) > 0  # the stream has it
    assert reader.read_next_batch().column(1).to_pylist() == list(range(10, 20))
    del reader
    assert mapped(m.path) == 0
    assert batch.column(1).to_pylist() == list(range(10))  # outlasts all


def test_a_measurement_that_is_dropped_is_closed(make: Make) -> None:
    path = str(make(engine=ENGINE))
    m = mdfkit.open(path)
    m.read().to_pandas()
    assert mapped(path) > 0
    del m
    assert mapped(path) == 0
