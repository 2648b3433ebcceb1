"""Filters that Spark gives: files that cannot pass are not read, nor are other times.

Spark applies all filters again, so what is read may be more than what passes. Only a record whose
time is NaN is never read where times are limited.
"""

from __future__ import annotations

import datetime as dt
import math
from collections.abc import Iterable, Mapping
from typing import Any

from pyspark.sql.datasource import (
    EqualNullSafe,
    EqualTo,
    Filter,
    GreaterThan,
    GreaterThanOrEqual,
    In,
    LessThan,
    LessThanOrEqual,
    Not,
    StringContains,
    StringEndsWith,
    StringStartsWith,
)

_EPOCH = dt.datetime(1970, 1, 1, tzinfo=dt.timezone.utc)
_EQUAL = (EqualTo, EqualNullSafe)
_FROM = (GreaterThan, GreaterThanOrEqual, *_EQUAL)
_TO = (LessThan, LessThanOrEqual, *_EQUAL)


def moment(nanoseconds: int | None) -> dt.datetime | None:
    """Return a time since 1970 as Spark has it; None beyond the years that Python knows."""
    if nanoseconds is None:
        return None
    try:
        return _EPOCH + dt.timedelta(microseconds=nanoseconds // 1000)
    except OverflowError:
        return None


def may_pass(filters: Iterable[Filter], attributes: Mapping[str, Any]) -> bool:
    """Whether rows of a file with these attributes may pass all filters.

    Examples
    --------
    >>> may_pass([EqualTo(("path",), "/a.mf4")], {"path": "/b.mf4"})
    False
    """
    return all(_verdict(each, attributes) is not False for each in filters)


def _verdict(each: Filter, attributes: Mapping[str, Any]) -> bool | None:
    """Whether it passes; None where that is not known from these attributes."""
    if isinstance(each, Not):
        inner = _verdict(each.child, attributes)
        return None if inner is None else not inner
    column = ".".join(getattr(each, "attribute", ()))
    value = attributes.get(column.lower())
    if value is None:
        return None
    try:
        return _compare(each, value)
    except TypeError:
        return None


def _compare(each: Any, value: Any) -> bool | None:
    results: dict[type[Filter], Any] = {
        EqualTo: lambda: value == each.value,
        EqualNullSafe: lambda: value == each.value,
        GreaterThan: lambda: value > each.value,
        GreaterThanOrEqual: lambda: value >= each.value,
        LessThan: lambda: value < each.value,
        LessThanOrEqual: lambda: value <= each.value,
        In: lambda: value in each.value,
        StringStartsWith: lambda: value.startswith(each.value),
        StringEndsWith: lambda: value.endswith(each.value),
        StringContains: lambda: each.value in value,
    }
    result = results.get(type(each))
    return None if result is None or getattr(each, "value", None) is None else bool(result())


def limits(
    filters: Iterable[Filter], column: str, start: int | None
) -> tuple[float | None, float | None]:
    """Return the first and the last value of the master channel that can pass.

    Parameters
    ----------
    filters : iterable of Filter
        All of which must hold.
    column : str
        The master channel's column.
    start : int or None
        When the measurement began, in nanoseconds since 1970, for times of day.
    """
    low, high = -math.inf, math.inf
    for each in filters:
        if getattr(each, "attribute", None) != (column,):
            continue
        around = _around(getattr(each, "value", None), start)
        if around is not None and isinstance(each, _FROM):
            low = max(low, around[0])
        if around is not None and isinstance(each, _TO):
            high = min(high, around[1])
    return (None if low == -math.inf else low, None if high == math.inf else high)


def _around(value: Any, start: int | None) -> tuple[float, float] | None:
    """Return numbers just below and above a value, in seconds where it is a time of day."""
    if isinstance(value, dt.datetime):
        if start is None or value.tzinfo is None:
            return None
        # A timestamp has microseconds, the times in the file more digits.
        since = (value - _EPOCH) // dt.timedelta(microseconds=1) * 1000 - start
        seconds = since / 1e9
        return (
            math.nextafter(seconds - 1e-6, -math.inf),
            math.nextafter(seconds + 2e-6, math.inf),
        )
    try:
        number = float(value)
    except (TypeError, ValueError, OverflowError):
        return None
    if isinstance(value, (str, bool)) or not math.isfinite(number):
        return None
    if isinstance(value, float):
        return number, number
    return math.nextafter(number, -math.inf), math.nextafter(number, math.inf)
