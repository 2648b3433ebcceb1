"""What is in a file."""

from __future__ import annotations

import datetime as dt
from pathlib import Path

import pytest

import mdfkit
from conftest import Make
from mdfkit import contents, notebook


def test_a_measurement_says_what_it_is(two_groups: mdfkit.Measurement) -> None:
    m = two_groups
    assert (m.version, m.program, m.is_finished) == (410, "mdf", True)
    assert (m.start, m.start_nanoseconds, m.duration) == (None, None, 2.0)
    assert (m.comment, m.properties, m.findings) == ("imported from engine.csv, brakes.csv", {}, [])
    assert m.size == Path(m.path).stat().st_size


def test_groups_are_found_by_name_and_number(two_groups: mdfkit.Measurement) -> None:
    groups = two_groups.groups
    assert groups.names() == ["engine", "brakes"]
    assert groups["brakes"] is groups[1] is groups[-1]
    assert groups[0:1] == (groups[0],)
    assert groups[0] in groups
    brakes = groups["brakes"]
    assert (brakes.number, brakes.records, brakes.rate) == (1, 2, 0.5)
    assert (brakes.span, brakes.master_unit, brakes.elements) == ((0.0, 2.0), "s", (None,))
    assert [str(channel) for channel in brakes] == ["t [s]", "pressure [bar]", "speed [km/h]"]
    assert len(brakes) == 3
    assert "pressure" in brakes
    assert repr(brakes) == (
        "<group 1 'brakes': 2 records; 0.5/s; t [s], pressure [bar], speed [km/h]>"
    )


def test_channels_say_what_they_are(two_groups: mdfkit.Measurement) -> None:
    assert two_groups.channels.names() == ["t", "speed", "gear", "text", "t", "pressure", "speed"]
    assert two_groups.channels["gear"] == mdfkit.Channel(
        name="gear",
        unit="",
        group=0,
        type="fixed",
        data_type="uint LE",
        bit_count=8,
        dimensions=(),
        records=4,
        conversion=None,
        comment="",
        source="",
    )
    with pytest.raises(mdfkit.UnknownChannel, match="2 channels have the name 'speed'"):
        two_groups.channels["speed"]
    assert two_groups.groups["engine"].channels["speed"].unit == "km/h"


def test_a_start_has_the_zone_that_the_file_states(dated: mdfkit.Measurement) -> None:
    zone = dt.timezone(dt.timedelta(hours=2))
    assert dated.start == dt.datetime(2024, 5, 17, 13, 45, 12, 500000, tzinfo=zone)
    assert dated.start.utcoffset() == dt.timedelta(hours=2)
    assert dated.start_nanoseconds == 1715946312500000000


@pytest.mark.parametrize(
    ("name", "start", "nanoseconds"),
    [
        ("time-with-zone-behind", "2019-12-31T20:30:00-03:30", 1577836800000000000),
        ("time-local", "2020-01-01T00:00:00", 1577836800000000000),
        ("time-utc", "2020-01-01T00:00:00+00:00", 1577836800000000000),
        ("time-in-seconds", "2020-01-01T00:00:00+00:00", 1577836800000000000),
    ],
)
def test_starts_of_each_kind(samples: Path, name: str, start: str, nanoseconds: int) -> None:
    m = mdfkit.open(samples / f"{name}.mf4")
    assert m.start is not None
    assert (m.start.isoformat(), m.start_nanoseconds) == (start, nanoseconds)


def test_a_start_beyond_all_calendars_is_none() -> None:
    start = contents.Start(10**30, dt.timezone.utc)
    assert start.as_datetime() is None
    members = {"stored": 1, "unit": "s", "utc": "", "local": "", "zone": "+99:99"}
    assert contents.Start.from_json(members) == contents.Start(10**9, dt.timezone.utc)


def test_repr_is_a_short_info(two_groups: mdfkit.Measurement) -> None:
    assert repr(two_groups) == (
        f"File:      {two_groups.path}, {two_groups.size:,} bytes\n"
        "Format:    MDF 4.10, written by 'mdf'\n"
        "Start:     not stated\n"
        "Duration:  2 s\n"
        "Comment:   imported from engine.csv, brakes.csv\n"
        "group  name    records   rate  channels\n"
        "    0  engine        4    2/s  t [s], speed [km/h], gear, text\n"
        "    1  brakes        2  0.5/s  t [s], pressure [bar], speed [km/h]"
    )


def test_repr_names_a_part_of_many_channels(make: Make) -> None:
    names = ",".join(f"c{i}" for i in range(10))
    values = ",".join(str(i) for i in range(10))
    m = mdfkit.open(make(wide=f"t [s],{names}\n0,{values}\n"))
    assert repr(m).endswith("t [s], c0, c1, c2, c3, c4, and 5 more")


def test_what_steers_terminals_and_pages_is_harmless(make: Make) -> None:
    path = make(one="t [s],12345<b>\n0,1\n1,2\n")
    path.write_bytes(path.read_bytes().replace(b"12345<b>", b"\x1b[31m<b>"))
    m = mdfkit.open(path)
    assert m.channels.names() == ["t", "\x1b[31m<b>"]
    assert "\\x1b[31m<b>" in repr(m)
    page = m._repr_html_()
    assert "<td>\\x1b[31m&lt;b&gt;</td><td><svg" in page
    assert "\x1b" not in page


def test_a_notebook_has_small_pictures(two_groups: mdfkit.Measurement) -> None:
    page = two_groups._repr_html_()
    assert page.count("<svg") == 4
    assert (
        "<td>pressure</td><td><svg width='240' height='36' viewBox='0 -2 240 40'>"
        "<polyline fill='none' stroke='currentColor' points='0.0,36.0 240.0,0.0'/></svg> 10 ... 30"
    ) in page
    assert "<td>engine</td><td>4</td><td>2/s</td>" in page
    two_groups.close()
    assert two_groups._repr_html_().startswith("<pre>File:")


def test_pictures_leave_out_what_has_no_place() -> None:
    assert notebook.svg([0, 1], [1, None]) == ""
    assert notebook.svg([0, 1], ["a", "b"]) == ""
    assert "points='0.0,18.0 240.0,18.0'" in notebook.svg([0, 1], [5, 5])
    assert "-1.79769e+308 ... 1.79769e+308" in notebook.svg(
        [0, 1, 2], [-1.7976931348623157e308, float("inf"), 1.7976931348623157e308]
    )


def test_pictures_are_of_a_bounded_part(make: Make, monkeypatch: pytest.MonkeyPatch) -> None:
    rows = "".join(f"{i},{i}\n" for i in range(1000))
    m = mdfkit.open(make(long="t [s],v\n" + rows))
    assert "v</td>" in m._repr_html_()
    monkeypatch.setattr(notebook, "_MOST_BYTES", m.groups[0].record_bytes * 480)
    page = m._repr_html_()
    assert "v, the first part</td>" in page
    assert page.endswith("</svg> 0 ... 478</td></tr></table></div>")
