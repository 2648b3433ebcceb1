"""What a query of Spark may state, and what is refused."""

from __future__ import annotations

import json
from collections.abc import Callable, Mapping
from dataclasses import dataclass
from typing import Any

from ..errors import WrongQuery

MODES = ("PERMISSIVE", "DROPMALFORMED", "FAILFAST")
TABLES = ("samples", "findings", "files", "channels")
TIMES = ("seconds", "timestamps")
# Columns that say which file a row is of.
ATTRIBUTES = ("path", "start", "group", "comment")


@dataclass(frozen=True)
class Options:
    """The options of a query; `MdfDataSource` says what each means."""

    paths: tuple[str, ...] = ()
    group: str | None = None
    channels: tuple[str, ...] | None = None
    raw: bool = False
    numbers: bool = False
    times: str = "seconds"
    start: float | None = None
    stop: float | None = None
    mode: str = "PERMISSIVE"
    table: str = "samples"
    attributes: tuple[str, ...] = ("path", "start")
    rows_per_partition: int | None = None
    log: str | None = None

    @classmethod
    def of(cls, stated: Mapping[str, str]) -> Options:
        """Make them of what Spark gives, in which the names' case has no meaning.

        Raises
        ------
        WrongQuery
            For an option that there is not, or a value that it cannot have.

        Examples
        --------
        >>> Options.of({"path": "/fleet", "Channels": "speed, rpm"}).channels
        ('speed', 'rpm')
        """
        values: dict[str, Any] = {"paths": _paths(stated)}
        for name, text in stated.items():
            lower = name.lower()
            if lower in ("path", "paths"):
                continue
            if lower not in _PARSERS:
                known = ", ".join(sorted(_PARSERS))
                raise WrongQuery(f"there is no option {name!r}, but {known}", "query-wrong")
            values[lower] = _PARSERS[lower](lower, text)
        return cls(**values)


def _paths(stated: Mapping[str, str]) -> tuple[str, ...]:
    """The paths that load() was given: one is a text, several are a list in JSON."""
    lower = {name.lower(): text for name, text in stated.items()}
    several = json.loads(lower.get("paths", "[]"))
    return (*([lower["path"]] if "path" in lower else []), *several)


def _wrong(name: str, text: str, expected: str) -> WrongQuery:
    return WrongQuery(f"option {name!r} is {text!r}; expected {expected}", "query-wrong")


def _text(_name: str, text: str) -> str:
    return text


def _list(name: str, text: str) -> tuple[str, ...]:
    """Names with commas between them, or a list in JSON for names that have some themselves."""
    if not text.lstrip().startswith("["):
        return tuple(each.strip() for each in text.split(",") if each.strip())
    try:
        names = json.loads(text)
    except ValueError:
        return (text.strip(),)  # a pattern such as "[sr]p*"
    if not all(isinstance(each, str) for each in names):
        raise _wrong(name, text, 'a list of texts such as ["speed", "a,b"]')
    return tuple(names)


def _channels(name: str, text: str) -> tuple[str, ...] | None:
    names = _list(name, text)
    return None if names in ((), ("*",)) else names


def _attributes(name: str, text: str) -> tuple[str, ...]:
    names = _list(name, text.lower())
    if not set(names) <= set(ATTRIBUTES) or len(set(names)) < len(names):
        raise _wrong(name, text, f"some of {', '.join(ATTRIBUTES)}")
    return names


def _truth(name: str, text: str) -> bool:
    if text.lower() not in ("true", "false"):
        raise _wrong(name, text, "true or false")
    return text.lower() == "true"


def _number(name: str, text: str) -> float:
    try:
        return float(text)
    except ValueError:
        raise _wrong(name, text, "a number") from None


def _count(name: str, text: str) -> int:
    if not text.isdecimal() or int(text) == 0:
        raise _wrong(name, text, "a whole number above 0")
    return int(text)


def _one_of(words: tuple[str, ...]) -> Callable[[str, str], str]:
    def parse(name: str, text: str) -> str:
        for word in words:
            if word.lower() == text.lower():
                return word
        raise _wrong(name, text, ", ".join(words))

    return parse


_PARSERS: dict[str, Callable[[str, str], Any]] = {
    "group": _text,
    "channels": _channels,
    "raw": _truth,
    "numbers": _truth,
    "times": _one_of(TIMES),
    "start": _number,
    "stop": _number,
    "mode": _one_of(MODES),
    "table": _one_of(TABLES),
    "attributes": _attributes,
    "rows_per_partition": _count,
    "log": _text,
}
