"""What a measurement is and what is in it, as text."""

from __future__ import annotations

from typing import TYPE_CHECKING

if TYPE_CHECKING:
    from .group import Group
    from .measurement import Measurement

_MOST_GROUPS = 20
_MOST_CHANNELS = 6


def harmless(text: str) -> str:
    """Return a text on one line, in which nothing steers a terminal."""
    return "".join(c if c.isprintable() else ascii(c)[1:-1] for c in text)


def number(value: float) -> str:
    """Return a number in as few digits as tell it well."""
    return f"{value:.6g}"


def facts(m: Measurement) -> list[tuple[str, str]]:
    """Return lines with a label each."""
    version = f"MDF {m.version // 100}.{m.version % 100:02}"
    lines = [
        ("File", f"{m.path}, {m.size:,} bytes"),
        ("Format", f"{version}, written by {m.program!r}"),
        ("State", "" if m.is_finished else "not finished"),
        ("Start", str(m.start) if m.start else "not stated"),
        ("Duration", f"{number(m.duration)} s" if m.duration is not None else ""),
        ("Comment", m.comment),
        ("Findings", _findings(m)),
    ]
    return [(label, harmless(text)) for label, text in lines if text]


def _findings(m: Measurement) -> str:
    found = m.findings if m._source.file.is_open else []
    return f"{len(found)}; the first one {found[0]}" if found else ""


def rate(group: Group) -> str:
    """Return how fast records come: "100/s"."""
    return "" if group.rate is None else f"{number(group.rate)}/{group.master_unit or '1'}"


def channels(group: Group) -> str:
    """Return the first channels' names and units."""
    names = [str(channel) for channel in group.channels[:_MOST_CHANNELS]]
    more = len(group.channels) - len(names)
    return harmless(", ".join(names) + (f", and {more} more" if more else ""))


def rows(m: Measurement) -> list[tuple[str, str, str, str, str]]:
    """Return number, name, records, rate and channels of the first groups."""
    return [
        (
            str(group.number),
            harmless(group.name),
            f"{group.records:,}",
            rate(group),
            channels(group),
        )
        for group in m.groups[:_MOST_GROUPS]
    ]


def left_out(m: Measurement) -> str:
    """Return how many groups `rows` leaves out, in words."""
    more = len(m.groups) - _MOST_GROUPS
    return f"and {more} more channel groups" if more > 0 else ""


def of_measurement(m: Measurement) -> str:
    """Return what `repr` shows."""
    lines = [f"{label + ':':<10} {text}" for label, text in facts(m)]
    table = [("group", "name", "records", "rate", "channels"), *rows(m)]
    widths = [max(len(row[i]) for row in table) for i in range(4)]
    for row in table:
        cells = (
            row[0].rjust(widths[0]),
            row[1].ljust(widths[1]),
            row[2].rjust(widths[2]),
            row[3].rjust(widths[3]),
            row[4],
        )
        lines.append("  ".join(cells).rstrip())
    return "\n".join([*lines, left_out(m)]).rstrip()


def of_group(group: Group) -> str:
    """Return what `repr` shows of a channel group."""
    name = f" {harmless(group.name)!r}" if group.name else ""
    shown = [f"{group.records:,} records", rate(group), channels(group)]
    return f"<group {group.number}{name}: {'; '.join(text for text in shown if text)}>"
