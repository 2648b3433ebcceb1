"""A channel group of a measurement."""

from __future__ import annotations

import functools
from collections.abc import Iterator, Mapping, Sequence
from typing import Any

from . import choice, summary
from .contents import Channel
from .query import Query
from .request import ask
from .source import Source


class Group:
    """A channel group: channels that have the same records and times.

    ``len(group)`` is the number of its channels, ``group["speed"]`` a query of one.

    Attributes
    ----------
    number : int
        Groups are numbered from 0 through the whole file.
    name, comment, source : str
        ``""`` where there is none.
    records : int
        Samples of each channel.
    rate : float or None
        Records per second, or per unit of another master channel.
    span : tuple of float or None
        The first and the last value of the master channel, mostly times in seconds.
    master_unit : str or None
        The unit of the master channel; None where the group has none.
    channels : Named of Channel
        A list, also by name: ``group.channels["speed"].unit``.
    """

    def __init__(self, source: Source, members: Mapping[str, Any]) -> None:
        span = members["span"]
        self._source = source
        self.number: int = members["group"]
        self.name: str = members["name"]
        self.comment: str = members["comment"]
        self.source: str = members["source"]
        self.records: int = members["records"]
        self.record_bytes: int = members["record_bytes"]
        self.rate: float | None = members["rate"]
        self.span: tuple[float, float] | None = (span["from"], span["to"]) if span else None
        self.master_unit: str | None = members["master_unit"]
        self.channels = source.channels_of[self.number]

    def read(self, channels: choice.Names = None, **options: Any) -> Query:
        """Ask for channels of this group, as `Measurement.read` does."""
        return ask(self._source, channels, group=self.number, **options)

    def __getitem__(self, channels: str | Sequence[str]) -> Query:
        choice.refuse_unknown(channels, self.channels, f"channel group {self.number}")
        return self.read(channels)

    @functools.cached_property
    def elements(self) -> tuple[int | None, ...]:
        """What to give as ``element`` to read this group's tables: ``(None,)`` for one table.

        A group with an array whose elements have records of their own has a table for each:
        ``(0, 1, 2)``. One without channels has none: ``()``.
        """
        if self._source.takes({"group": self.number}):
            return (None,)
        count = 0
        while self._source.takes({"group": self.number, "element": count}):
            count += 1
        return tuple(range(count))

    def __len__(self) -> int:
        return len(self.channels)

    def __iter__(self) -> Iterator[Channel]:
        return iter(self.channels)

    def __contains__(self, name: object) -> bool:
        return name in self.channels.names()

    def __bool__(self) -> bool:
        return True

    def __repr__(self) -> str:
        return summary.of_group(self)
