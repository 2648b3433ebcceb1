"""A measurement as a page in a notebook, with small pictures."""

from __future__ import annotations

import html
import math
from collections.abc import Iterator, Sequence
from typing import TYPE_CHECKING, Any

from . import summary
from .errors import MdfError

if TYPE_CHECKING:
    from .contents import Channel
    from .group import Group
    from .measurement import Measurement

_MOST_PICTURES = 6
_MOST_BYTES = 32 << 20  # of records that are gone through for the pictures of a group
_POINTS = 240
_WIDTH, _HEIGHT = 240, 36
_LEFT = "style='text-align:left'"


def text(plain: str) -> str:
    """Return lines as HTML."""
    return f"<pre>{html.escape(plain)}</pre>"


def page(m: Measurement) -> str:
    """Return facts, a table of the channel groups, and pictures of the first channels."""
    facts = "".join(
        f"<tr><th {_LEFT}>{label}</th><td {_LEFT}>{html.escape(value)}</td></tr>"
        for label, value in summary.facts(m)
    )
    head = "".join(f"<th>{name}</th>" for name in ("group", "name", "records", "rate", "channels"))
    rows = "".join(
        "<tr>" + "".join(f"<td>{html.escape(cell)}</td>" for cell in row) + "</tr>"
        for row in summary.rows(m)
    )
    return (
        f"<div><table>{facts}</table><table><tr>{head}</tr>{rows}</table>"
        f"<p>{summary.left_out(m)}</p>{_pictures(m)}</div>"
    )


def _pictures(m: Measurement) -> str:
    shown: list[str] = []
    for group in m.groups:
        room = _MOST_PICTURES - len(shown)
        if room == 0:
            break
        shown.extend(_pictures_of(group, room))
    return f"<table>{''.join(shown)}</table>" if shown else ""


def _pictures_of(group: Group, room: int) -> Iterator[str]:
    """Pictures of a group's first channels with numbers, over its master channel."""
    wanted = [each for each in group.channels if each.is_number and "master" not in each.type]
    if not wanted or group.records < 2 or group.master_unit is None:
        return
    try:
        columns, is_part = _samples(group, wanted[:room])
    except MdfError:
        return
    times, *values = columns.values()
    for name, column in zip(list(columns)[1:], values):
        picture = svg(times, column)
        if picture:
            part = ", the first part" if is_part else ""
            yield f"<tr><td>{html.escape(summary.harmless(name))}{part}</td><td>{picture}</td></tr>"


def _samples(group: Group, channels: Sequence[Channel]) -> tuple[dict[str, list[Any]], bool]:
    """Read some points of each channel, going through a bounded part of the records."""
    most = max(_POINTS, _MOST_BYTES // max(1, group.record_bytes))
    count = min(group.records, most)
    query = group.read(
        [channel.name for channel in channels],
        first=count,
        stride=max(1, count // _POINTS),
        numbers=True,
    )
    return query.to_arrow().to_pydict(), count < group.records


def svg(times: Sequence[Any], values: Sequence[Any]) -> str:
    """Return a line through the points, with the least and the greatest value; "" for none."""
    points = [(x, y) for x, y in zip(times, values) if _is_finite(x) and _is_finite(y)]
    if len(points) < 2:
        return ""
    xs, ys = [x for x, _ in points], [y for _, y in points]
    line = " ".join(
        f"{_WIDTH * _share(x, xs):.1f},{_HEIGHT * (1 - _share(y, ys)):.1f}" for x, y in points
    )
    return (
        f"<svg width='{_WIDTH}' height='{_HEIGHT}' viewBox='0 -2 {_WIDTH} {_HEIGHT + 4}'>"
        f"<polyline fill='none' stroke='currentColor' points='{line}'/></svg>"
        f" {summary.number(min(ys))} ... {summary.number(max(ys))}"
    )


def _is_finite(value: Any) -> bool:
    return isinstance(value, (int, float)) and math.isfinite(value)


def _share(value: float, among: Sequence[float]) -> float:
    """Where a value lies between the least and the greatest, from 0 to 1."""
    low, high = min(among), max(among)
    return 0.5 if high == low else (value / 2 - low / 2) / (high / 2 - low / 2)
