"""What is in a file: its start, channel groups and channels."""

from __future__ import annotations

import datetime as dt
import re
from collections.abc import Iterator, Mapping, Sequence
from dataclasses import dataclass, fields
from typing import Any, Generic, TypeVar, overload

from .errors import WrongQuery

_NANOSECONDS = {"ns": 1, "s": 10**9}


@dataclass(frozen=True)
class Start:
    """When a measurement began.

    Attributes
    ----------
    nanoseconds : int
        Since 1970, in UTC; of local time where the file states no UTC.
    zone : datetime.timezone or None
        The zone that the file states, UTC where it states none, and None for local times.
    """

    nanoseconds: int
    zone: dt.timezone | None

    @classmethod
    def from_json(cls, members: Mapping[str, Any]) -> Start | None:
        """Make one of its JSON object; None where the file does not state when it starts."""
        if members["utc"] is None and members["local"] is None:
            return None
        zone = None if members["utc"] is None else _zone(members["zone"])
        return cls(members["stored"] * _NANOSECONDS[members["unit"]], zone)

    def as_datetime(self) -> dt.datetime | None:
        """Return it to the microsecond; None beyond the years that Python knows."""
        try:
            since = dt.timedelta(microseconds=self.nanoseconds // 1000)
            utc = dt.datetime(1970, 1, 1, tzinfo=dt.timezone.utc) + since
            return utc.replace(tzinfo=None) if self.zone is None else utc.astimezone(self.zone)
        except OverflowError:
            return None


def _zone(text: str | None) -> dt.timezone:
    found = re.fullmatch(r"([+-])(\d+):(\d+)", text or "")
    if found is None:
        return dt.timezone.utc
    offset = dt.timedelta(hours=int(found[2]), minutes=int(found[3]))
    try:
        return dt.timezone(-offset if found[1] == "-" else offset)
    except ValueError:
        return dt.timezone.utc


@dataclass(frozen=True)
class Channel:
    """A channel's description.

    Attributes
    ----------
    name : str
        With those of the structures that it is a member of: ``"point.x"``.
    unit : str
        ``""`` where there is none.
    group : int
        The number of its channel group.
    type, data_type : str
        ``"fixed"``, ``"master"``, ...; ``"uint LE"``, ``"string UTF-8"``, ...
    bit_count : int
        Of a value as it is stored.
    dimensions : tuple of int
        Of an array; ``()`` for one value in each record.
    records : int
        Samples.
    conversion : str or None
        Its kind: ``"linear"``, ``"value to text"``, ...
    comment, source : str
        ``""`` where there is none.
    """

    name: str
    unit: str
    group: int
    type: str
    data_type: str
    bit_count: int
    dimensions: tuple[int, ...]
    records: int
    conversion: str | None
    comment: str
    source: str

    @classmethod
    def from_json(cls, members: Mapping[str, Any]) -> Channel:
        """Make one of its JSON object."""
        values = {field.name: members[field.name] for field in fields(cls)}
        return cls(**{**values, "dimensions": tuple(values["dimensions"])})

    @property
    def is_number(self) -> bool:
        """Whether the values are stored as single numbers."""
        stored = self.data_type.split("[", maxsplit=1)[0]
        return not self.dimensions and stored.startswith(("uint", "int", "real"))

    def __str__(self) -> str:
        return f"{self.name} [{self.unit}]" if self.unit else self.name


@dataclass(frozen=True)
class Event:
    """Something that happened during the measurement.

    Attributes
    ----------
    name, comment : str
        ``""`` where there is none.
    type : str
        ``"marker"``, ``"trigger"``, ``"recording"``, ...
    cause : str
        ``"user"``, ``"error"``, ``"script"``, ...
    range_type : str
        ``"point"``, or ``"begin"`` or ``"end"`` of a range.
    position : float
        When or where it happened, in `unit` since the measurement began.
    unit : str
        ``"s"``, ``"rad"``, ``"m"``; ``"index"`` for the number of a record.
    """

    name: str
    comment: str
    type: str
    cause: str
    range_type: str
    position: float
    unit: str

    @classmethod
    def from_json(cls, members: Mapping[str, Any]) -> Event:
        """Make one of its JSON object."""
        return cls(**{field.name: members[field.name] for field in fields(cls)})


_Item = TypeVar("_Item", bound=Any)


class Named(Sequence[_Item], Generic[_Item]):
    """A list whose items are also found by their names: ``m.groups["engine"]``."""

    def __init__(self, items: Sequence[_Item], what: str, error: type[WrongQuery]) -> None:
        self._items = tuple(items)
        self._what = what
        self._error = error

    @overload
    def __getitem__(self, key: int | str) -> _Item: ...

    @overload
    def __getitem__(self, key: slice) -> Sequence[_Item]: ...

    def __getitem__(self, key: int | str | slice) -> _Item | Sequence[_Item]:
        if isinstance(key, str):
            return self._named(key)
        if isinstance(key, slice):
            return self._items[key]
        try:
            return self._items[key]
        except IndexError:
            raise IndexError(
                f"there is no {self._what} {key}, for there are {len(self._items)}"
            ) from None

    def _named(self, name: str) -> _Item:
        found = [item for item in self._items if item.name == name]
        if len(found) == 1:
            return found[0]
        several = f"{len(found)} {self._what}s have the name {name!r}; choose one by its number"
        none = f"no {self._what} has the name {name!r}"
        raise self._error(several if found else none, "query-wrong")

    def __iter__(self) -> Iterator[_Item]:
        return iter(self._items)

    def __len__(self) -> int:
        return len(self._items)

    def names(self) -> list[str]:
        """Return the names, in the order of the file."""
        return [item.name for item in self._items]

    def __repr__(self) -> str:
        return "\n".join(repr(item) for item in self._items) or f"(no {self._what}s)"
