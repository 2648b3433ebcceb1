"""A measurement file and its channel groups."""

from __future__ import annotations

import datetime as dt
import functools
import os
from collections.abc import Sequence
from pathlib import Path
from types import TracebackType
from typing import Union

from . import choice, frames, notebook, parquet, summary
from .attachment import Attachment
from .contents import Channel, Event, Named, Start
from .errors import UnknownGroup, WrongQuery
from .findings import Finding, warn_of
from .frames import Databases, Decoding, Frames
from .group import Group
from .query import Query
from .request import ask
from .source import Source

PathLike = Union[str, "os.PathLike[str]"]


def open(path: PathLike) -> Measurement:  # noqa: A001 - as gzip.open() and others are named
    """Open a measurement file of MDF 4, finished or not, by any program.

    Only descriptions are read, however much data there is.

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

    def __init__(self, path: PathLike, _source: Source | None = None) -> None:
        self.path = os.fspath(path)
        self._source = _source or Source(self.path)
        self._decoding: Decoding | None = None

    # -- what is in it

    @property
    def channels(self) -> Named[Channel]:
        """All channels, in the order of the file; also by name, if one only has it."""
        return self._source.channels

    @functools.cached_property
    def groups(self) -> Named[Group]:
        """The channel groups: a list, also by name: ``m.groups[0]``, ``m.groups["engine"]``."""
        groups = [Group(self._source, members) for members in self._source.info["groups"]]
        return Named(groups, "channel group", UnknownGroup)

    @functools.cached_property
    def attachments(self) -> Named[Attachment]:
        """What is attached, in the order of the file; also by name, if one only has it."""
        listed = self._source.listed("attachments")
        attachments = [Attachment(self._source, i, members) for i, members in enumerate(listed)]
        return Named(attachments, "attachment", WrongQuery)

    @functools.cached_property
    def events(self) -> Named[Event]:
        """What happened, in the order of the file; also by name, if one only has it."""
        events = [Event.from_json(members) for members in self._source.listed("events")]
        return Named(events, "event", WrongQuery)

    @functools.cached_property
    def _start(self) -> Start | None:
        return Start.from_json(self._source.info["start"])

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
        duration: float | None = self._source.info["duration"]
        return duration

    @property
    def comment(self) -> str:
        """What the file says of itself."""
        comment: str = self._source.info["comment"]
        return comment

    @property
    def properties(self) -> dict[str, str]:
        """Further texts of the header by their names, such as author, project and subject."""
        return dict(self._source.info["properties"])

    @property
    def version(self) -> int:
        """The version of the format: 410 is 4.10."""
        version: int = self._source.info["version"]
        return version

    @property
    def program(self) -> str:
        """The program that wrote the file."""
        program: str = self._source.info["program"]
        return program

    @property
    def is_finished(self) -> bool:
        """Whether its program finished the file."""
        is_finished: bool = self._source.info["finished"]
        return is_finished

    @property
    def size(self) -> int:
        """The file's size in bytes."""
        size: int = self._source.info["bytes"]
        return size

    @property
    def findings(self) -> list[Finding]:
        """What was found to be wrong so far, the first 1,000 of it; it grows with what is read."""
        return self._source.findings()

    @property
    def decoding(self) -> Decoding | None:
        """What became of the frames that this was made of by `decode`; None for other files."""
        return self._decoding

    # -- its samples

    def read(
        self,
        channels: choice.Names = None,
        *,
        group: int | str | None = None,
        start: float | None = None,
        stop: float | None = None,
        skip: int | None = None,
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
        skip : int, optional
            So many records that are left out, the group's first ones.
        first, last : int, optional
            So many of the others, the first or the last ones.
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
        return ask(
            self._source,
            channels,
            group=group,
            start=start,
            stop=stop,
            skip=skip,
            first=first,
            last=last,
            stride=stride,
            raw=raw,
            times=times,
            element=element,
            numbers=numbers,
            batch_rows=batch_rows,
            threads=threads,
        )

    def frames(
        self,
        *,
        start: float | None = None,
        stop: float | None = None,
        times: str = "seconds",
        batch_rows: int | None = None,
    ) -> Frames:
        """Ask for the frames of CAN and LIN buses, in the order of time. Nothing is read yet.

        Parameters
        ----------
        start, stop : float, optional
            Limits of their times, both included: seconds since the measurement began.
        times : {"seconds", "timestamps"}
            Float seconds since the start, or the time of day in nanoseconds.
        batch_rows : int, optional
            The most rows of a batch; 65,536 without it.

        Returns
        -------
        Frames
            A query as that of `read`. A file without frames raises `WrongQuery` when it is used.

        Examples
        --------
        >>> frames = log.frames(stop=10)
        >>> frames.to_pandas()
        >>> duckdb.sql("select bus, id, count(*) from frames group by all")
        """
        wanted = {
            "from": None if start is None else float(start),
            "to": None if stop is None else float(stop),
            "times": None if times == "seconds" else times,
            "batch_rows": batch_rows,
        }
        request = {name: value for name, value in wanted.items() if value is not None}
        return Frames(self._source, request)

    def decode(self, dbc: Databases, *, j1939: bool = False) -> Measurement:
        """Make signals of the frames of CAN buses, as databases of the DBC form describe them.

        Parameters
        ----------
        dbc : str, path, or list of those
            Databases: ``"car.dbc"``, or ``"car.dbc@can1"`` for one bus. Of those that know an
            identifier, the first one counts.
        j1939 : bool
            Whether the parameter group is all that counts of each identifier of 29 bits.

        Returns
        -------
        Measurement
            With a channel group for each message and bus, in a temporary file that is gone when it
            is closed. `decoding` says what became of the frames.

        Raises
        ------
        CannotDecode
            There are no frames, or a database cannot be read.

        Warns
        -----
        MdfWarning
            Once, if a database has something wrong, or describes none of the frames.

        Examples
        --------
        >>> signals = log.decode("car.dbc")
        >>> signals["EngineSpeed"].to_pandas()
        >>> signals.decoding.unknown               # identifiers that the database does not have
        """
        file, report = self._source.file.decode(frames.request(dbc, j1939))
        signals = Measurement(self.path, Source(self.path, file))
        signals._decoding = Decoding.from_json(report)
        self._source.warn()
        warn_of(self.path, signals._decoding.problems(), ".decoding")
        return signals

    def __getitem__(self, channels: str | Sequence[str]) -> Query:
        """Ask for a channel by its name, or for several by names or patterns."""
        choice.refuse_unknown(channels, self.channels, self.path)
        return self.read(channels)

    def __contains__(self, name: object) -> bool:
        return name in self.channels.names()

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
        self._source.warn()
        return written

    # -- the file itself

    def close(self) -> None:
        """Close the file. Batches and readers that were given out remain."""
        self._source.file.close()

    def __enter__(self) -> Measurement:
        return self

    def __exit__(
        self,
        error_type: type[BaseException] | None,
        error: BaseException | None,
        trace: TracebackType | None,
    ) -> None:
        self.close()

    def __repr__(self) -> str:
        return summary.of_measurement(self) if self._source.is_described else self._closed()

    def _repr_html_(self) -> str:
        return notebook.page(self) if self._source.file.is_open else notebook.text(repr(self))

    def _closed(self) -> str:
        return f"<{self.path}, closed>"
