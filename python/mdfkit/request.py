"""What is asked for, in the library's words."""

from __future__ import annotations

import operator
from typing import Any

from . import choice
from .query import Query
from .source import Source

# Those that are the same in the library, and count something.
_COUNTS = ("skip", "first", "last", "stride", "element", "batch_rows", "threads")


def ask(source: Source, channels: choice.Names, **options: Any) -> Query:
    """Make a query of the arguments of `Measurement.read`."""
    start, stop = options.pop("start", None), options.pop("stop", None)
    times = options.pop("times", "seconds")
    request: dict[str, Any] = {
        "channels": _channels(source, channels),
        "group": _group(source, options.pop("group", None)),
        "from": None if start is None else float(start),
        "to": None if stop is None else float(stop),
        "raw": options.pop("raw", False) or None,
        "numbers": options.pop("numbers", False) or None,
        "times": None if times == "seconds" else times,
    }
    for name in _COUNTS:
        count = options.pop(name, None)
        request[name] = None if count is None else operator.index(count)
    if options:
        raise TypeError(f"read() has no argument {next(iter(options))!r}")
    return Query(source, {name: value for name, value in request.items() if value is not None})


def _channels(source: Source, channels: choice.Names) -> list[str] | None:
    if channels is None:
        return None
    return choice.patterns(channels, lambda: source.channels.names())


def _group(source: Source, group: int | str | None) -> int | str | None:
    if group is None:
        return None
    if not isinstance(group, str):
        return operator.index(group)
    # A name that reads as a number would be taken for one.
    same: list[int] = [each["group"] for each in source.info["groups"] if each["name"] == group]
    return same[0] if len(same) == 1 else group
