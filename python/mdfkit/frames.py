"""Frames of buses, and what became of them when signals were made of them."""

from __future__ import annotations

import json
import os
from collections.abc import Sequence
from dataclasses import dataclass
from typing import Any, Union

import pyarrow as pa

from .query import Query

Databases = Union[str, "os.PathLike[str]", Sequence[Union[str, "os.PathLike[str]"]]]


class Frames(Query):
    """Frames of CAN and LIN buses in the order of their times, of which none has been read yet.

    Made by `Measurement.frames`, and used as other queries are. The columns:

    =========  ============================================================================
    time       seconds since the measurement began, or a time of day
    bus        ``"can1"``
    frame      ``"data"``, ``"remote"``, ``"error"``, ``"overload"``, ``"lin"``, or a LIN
               error's name
    id         the identifier
    extended   1 for an identifier of 29 bits
    direction  ``"Rx"`` or ``"Tx"``
    fd         1 for CAN FD; ``brs`` and ``esi`` are its bit rate switch and error state
    error      ``"bit"``, ``"form"``, ``"stuffing"``, ``"crc"`` or ``"ack"``
    length     of the data, as the frame states it
    data       bytes, as far as they were recorded
    =========  ============================================================================

    What a frame does not tell is null. Records without a valid time or identifier are left out.

    Examples
    --------
    >>> frames = log.frames(start=1, stop=2).to_pandas()
    >>> frames[frames["id"] == 0x123]["data"]
    """

    _what = "frames"

    @property
    def index(self) -> str:
        """The column of times."""
        return "time"

    def _stream(self, **defaults: Any) -> pa.RecordBatchReader:
        return self._source.frames({**defaults, **self._request})


@dataclass(frozen=True)
class UnknownId:
    """An identifier that no database describes.

    Attributes
    ----------
    bus : str
    id : int
    extended : bool
        Whether it has 29 bits.
    frames : int
        How many there are.
    """

    bus: str
    id: int
    extended: bool
    frames: int


@dataclass(frozen=True)
class DatabaseFault:
    """Something that is wrong with a database, of which the rest was used."""

    path: str
    line: int
    column: int
    text: str

    def __str__(self) -> str:
        return f"{self.path}:{self.line}:{self.column}: {self.text}"


@dataclass(frozen=True)
class Decoding:
    """What became of frames when signals were made of them.

    Attributes
    ----------
    frames : int
        Those that became records.
    unknown_frames : int
        Those of CAN that no database describes.
    unknown : tuple of UnknownId
        Their identifiers, the most frequent ones first.
    other_frames : int
        Those of other buses, and those without data.
    faults : tuple of DatabaseFault
        What is wrong with the databases.
    notes : tuple of str
        On frames that were left out.
    """

    frames: int
    unknown_frames: int
    unknown: tuple[UnknownId, ...]
    other_frames: int
    faults: tuple[DatabaseFault, ...]
    notes: tuple[str, ...]

    @classmethod
    def from_json(cls, text: str) -> Decoding:
        """Make one of the library's report."""
        members = json.loads(text)
        unknown = (
            UnknownId(each["bus"], each["id"], each["extended"], each["frames"])
            for each in members["unknown"]
        )
        return cls(
            members["frames"],
            members["unknown_frames"],
            tuple(unknown),
            members["other_frames"],
            tuple(DatabaseFault(**each) for each in members["faults"]),
            tuple(members["notes"]),
        )

    def problems(self) -> list[str]:
        """Return what whoever asked for signals should know at once."""
        none = [] if self.frames else ["no frame is of a message of the databases"]
        return none + [str(fault) for fault in self.faults]


def request(databases: Databases, j1939: bool) -> str:
    """Make a query of the arguments of `Measurement.decode`."""
    if isinstance(databases, (str, os.PathLike)):
        databases = [databases]
    return json.dumps({"databases": [os.fspath(each) for each in databases], "j1939": j1939})
