"""A measurement file and its channel groups."""

from __future__ import annotations

import datetime as dt
import functools
import json
import operator
import os
from collections.abc import Sequence
from pathlib import Path
from types import TracebackType
from typing import Any, Union

from . import choice, notebook, parquet, summary
from ._library import OpenFile
from .contents import Channel, Named, Start
from .errors import UnknownChannel, UnknownGroup, WrongQuery
from .findings import Finding, warn_of
from .group import Group
from .query import Query

PathLike = Union[str, "os.PathLike[str]"]


def open(path: PathLike) -> Measurement:  # noqa: A001 - as gzip.open() and others are named
    """Open a measurement file of MDF 4, finished or not, by any program.

    Only descriptions are read: a file of 100 GB opens as fast as one of 1 MB.

    Parameters
    ----------
    path : str or path
        The file's name; ``"-"`` is standard input, which is read into memory.

    Returns
    -------
    Measurement
        To be closed by ``with`` or `Measurement.close`, or by being dropped.

    Raises
    ------
    UnreadableFile
        An `OSError` with a code and an offset; `MissingFile` where there is none.

    Warns
    -----
    MdfWarning
        Once, if the file has something wrong that it can be read with: see `findings`.

    Examples
    --------
    >>> with mdfkit.open("trip.mf4") as m:
    ...     frame = m["speed"].to_pandas()
    """
    return Measurement(path)


class Measurement:
    """An open measurement file: what is in it, and its samples.

    Examples
    --------
    >>> m = mdfkit.open("trip.mf4")
    >>> m                                      # what `mdf info` shows
    >>> m.groups["engine"].channels["speed"].unit
    'km/h'
    >>> m["speed"].to_pandas()                 # times and values
    >>> m.read(["speed", "rpm"], start=10, stop=20).to_arrow()
    >>> m.to_parquet("trip/")

    Threads may read several files, and streams of one file, at the same time.
    """

    def __init__(self, path: PathLike) -> None:
        self.path = os.fspath(path)
        self._warned = 0
        self._file = OpenFile(self.path)
        self._warn()

    # -- what is in it

    @functools.cached_property
    def _described(self) -> dict[str, Any]:
        described: dict[str, Any] = json.loads(self._file.describe())
        return described

    @property
    def _info(self) -> dict[str, Any]:
        info: dict[str, Any] = self._described["info"]
        return info

    @functools.cached_property
    def channels(self) -> Named[Channel]:
        """All channels, in the order of the file; also by name, if one only has it."""
        channels = [Channel.from_json(members) for members in self._described["channels"]]
        return Named(channels, "channel", UnknownChannel)

    @functools.cached_property
    def groups(self) -> Named[Group]:
        """The channel groups: a list, also by name: ``m.groups[0]``, ``m.groups["engine"]``."""
        channels: dict[int, list[Channel]] = {}
        for channel in self.channels:
            channels.setdefault(channel.group, []).append(channel)
        groups = [
            Group(self, members, channels.get(members["group"], []))
            for members in self._info["groups"]
        ]
        return Named(groups, "channel group", UnknownGroup)

    @functools.cached_property
    def _start(self) -> Start | None:
        return Start.from_json(self._info["start"])

    @property
    def start(self) -> dt.datetime | None:
        """When the measurement began, in the zone that the file states.

        UTC where it states none, without a zone where it states local times, None where it states
        no time. Microseconds are the most that datetime has: see `start_nanoseconds`.
        """
        return self._start.as_datetime() if self._start else None

    @property
    def start_nanoseconds(self) -> int | None:
        """Nanoseconds since 1970 in UTC, or in local time where `start` has no zone."""
        return self._start.nanoseconds if self._start else None

    @property
    def duration(self) -> float | None:
        """Seconds from the start to the last record of all groups over time."""
        duration: float | None = self._info["duration"]
        return duration

    @property
    def comment(self) -> str:
        """What the file says of itself."""
        comment: str = self._info["comment"]
        return comment

    @property
    def properties(self) -> dict[str, str]:
        """Further texts of the header by their names, such as author, project and subject."""
        return dict(self._info["properties"])

    @property
    def version(self) -> int:
        """The version of the format: 410 is 4.10."""
        version: int = self._info["version"]
        return version

    @property
    def program(self) -> str:
        """The program that wrote the file."""
        program: str = self._info["program"]
        return program

    @property
    def is_finished(self) -> bool:
        """Whether its program finished the file."""
        is_finished: bool = self._info["finished"]
        return is_finished

    @property
    def size(self) -> int:
        """The file's size in bytes."""
        size: int = self._info["bytes"]
        return size

    @property
    def findings(self) -> list[Finding]:
        """What was found to be wrong so far, the first 1,000 of it; it grows with what is read."""
        return [Finding.from_json(members) for members in json.loads(self._file.findings())]

    # -- its samples

    def read(
        self,
        channels: choice.Names = None,
        *,
        group: int | str | None = None,
        start: float | None = None,
        stop: float | None = None,
        first: int | None = None,
        last: int | None = None,
        stride: int | None = None,
        raw: bool = False,
        times: str = "seconds",
        element: int | None = None,
        numbers: bool = False,
        batch_rows: int | None = None,
        threads: int | None = None,
    ) -> Query:
        """Ask for channels of one channel group. Nothing is read yet.

        Parameters
        ----------
        channels : str or list of str, optional
            Names, or patterns as for file names: ``"speed*"``. All channels without it. The master
            channel (mostly time) always comes first.
        group : int or str, optional
            The number of the channel group, or its name or a pattern of it; needed where channels
            are in several groups.
        start, stop : float, optional
            Limits of the master channel, both included: seconds since the measurement began.
        first, last : int, optional
            So many records of the group, its first or its last ones.
        stride : int, optional
            Of those, the first one and each so many-th after it.
        raw : bool
            Values as they are stored, without conversions.
        times : {"seconds", "timestamps"}
            The master channel as float seconds since the start, or as the time of day in
            nanoseconds, with the file's time zone.
        element : int, optional
            Of an array whose elements have records of their own, this one: see `Group.elements`.
        numbers : bool
            Where a conversion gives a text, the number that is stored.
        batch_rows : int, optional
            The most rows of a batch; 65,536 without it.
        threads : int, optional
            Threads that unzip data; as many as there are cores without it.

        Returns
        -------
        Query
            To be read by `Query.to_pandas`, `Query.to_arrow` and others, or by whatever takes
            Arrow's streams.

        Raises
        ------
        WrongQuery
            A `ValueError`, when the query is used: the sentence says what is wrong.

        Examples
        --------
        >>> m.read(["speed", "rpm"], start=10, stop=20).to_pandas()
        >>> m.read("speed*", group="engine", times="timestamps").to_polars()
        >>> m.read(group=0, last=1000, raw=True).to_numpy()["rpm"]
        """
        request: dict[str, Any] = {
            "channels": self._wanted(channels),
            "group": self._wanted_group(group),
            "from": None if start is None else float(start),
            "to": None if stop is None else float(stop),
            "raw": raw or None,
            "numbers": numbers or None,
            "times": None if times == "seconds" else times,
        }
        counts = {
            "first": first,
            "last": last,
            "stride": stride,
            "element": element,
            "batch_rows": batch_rows,
            "threads": threads,
        }
        for name, count in counts.items():
            request[name] = None if count is None else operator.index(count)
        return Query(self, {name: value for name, value in request.items() if value is not None})

    def _wanted(self, channels: choice.Names) -> list[str] | None:
        if channels is None:
            return None
        return choice.patterns(channels, lambda: self.channels.names())

    def _wanted_group(self, group: int | str | None) -> int | str | None:
        if group is None:
            return None
        if not isinstance(group, str):
            return operator.index(group)
        # A name that reads as a number would be taken for one.
        same = [each.number for each in self.groups if each.name == group]
        return same[0] if len(same) == 1 else group

    def __getitem__(self, channels: str | list[str]) -> Query:
        """Ask for a channel by its name, or for several by names or patterns."""
        choice.refuse_unknown(channels, self.channels, self.path)
        return self.read(channels)

    def __contains__(self, name: object) -> bool:
        return name in self.channels

    def _group_of(self, request: dict[str, Any]) -> Group:
        """Return the group that a query is about."""
        if isinstance(request.get("group"), int):
            return next(each for each in self.groups if each.number == request["group"])
        for group in choice.likely_groups(self.groups, request.get("channels")):
            if Query(self, {**request, "group": group.number})._fits():
                return group
        raise WrongQuery("no channel group fits the query", "query-wrong")

    def to_parquet(
        self, folder: PathLike, partition_by: str | Sequence[str] | None = None
    ) -> list[Path]:
        """Write each channel group to a Parquet file, ``0_engine.parquet`` and so on.

        Parameters
        ----------
        folder : str or path
            Is made where it is missing. Each file appears when it is complete, and replaces one of
            that name. Memory is bounded, however large the measurement.
        partition_by : str or list of str, optional
            Columns by whose values the rows of a group are divided: ``0_engine/gear=3/...``.
            Groups without these columns become one file.

        Returns
        -------
        list of pathlib.Path
            The files and folders that were written. The schemas have units, comments and
            conversions as metadata of the fields, and the file's name, start and comment as that of
            the whole.
        """
        columns = [partition_by] if isinstance(partition_by, str) else list(partition_by or ())
        written = parquet.write_measurement(self, folder, columns)
        self._warn()
        return written

    # -- the file itself

    def close(self) -> None:
        """Close the file. Batches and readers that were given out remain."""
        self._file.close()

    def __enter__(self) -> Measurement:
        return self

    def __exit__(
        self,
        error_type: type[BaseException] | None,
        error: BaseException | None,
        trace: TracebackType | None,
    ) -> None:
        self.close()

    def _warn(self) -> None:
        """Warn once of what was found since the last time."""
        findings = self.findings
        warn_of(self.path, findings[self._warned :])
        self._warned = len(findings)

    def __repr__(self) -> str:
        return summary.of_measurement(self) if self._is_known() else f"<{self.path}, closed>"

    def _repr_html_(self) -> str:
        return (
            notebook.page(self) if self._file.is_open else f"<pre>{notebook.text(repr(self))}</pre>"
        )

    def _is_known(self) -> bool:
        return self._file.is_open or "_described" in self.__dict__
