"""Measurement files of ASAM MDF 4 (.mf4) as data frames.

A file has channel groups; the channels of a group share records and times. Opening reads the
description only:

>>> import mdfkit
>>> m = mdfkit.open("trip.mf4")
>>> m                                          # groups, rates, channels, units, what is wrong
>>> m.groups["engine"].channels.names()
['t', 'speed', 'rpm', 'gear']
>>> m.start, m.duration, m.comment

Samples are asked for by name, and come when they are wanted, in the form that is wanted:

>>> m["speed"].to_pandas()                     # times as the index, units in .attrs["units"]
>>> q = m.read(["speed", "rpm"], start=10, stop=20)
>>> q.to_numpy()["speed"]                      # an array of shape (rows,)
>>> q.to_arrow(), q.to_polars()

A query is an Arrow stream, read batch by batch, without a copy, by whatever takes one:

>>> duckdb.sql("select max(speed) from q")
>>> polars.DataFrame(q)
>>> m.to_parquet("trip/")                      # a file for each channel group

Times are seconds since the measurement began; with ``times="timestamps"`` they are times of day.
Invalid samples are null, NaN or masked. Where channels are in several groups, say which:

>>> m.read("speed", group="engine").to_pandas()

Frames of buses, and their signals by a database of the DBC form:

>>> log = mdfkit.open("log.mf4")
>>> log.frames(stop=10).to_pandas()
>>> log.decode("car.dbc")["EngineSpeed"].to_pandas()

What cannot be read raises `MdfError`, with a ``code`` that never changes and an ``offset`` in the
file; what is wrong but can be read all the same is one `MdfWarning` for each call, and all of it is
in ``m.findings``.

Thousands of files are one table of Apache Spark: see `mdfkit.spark`.
"""

from .attachment import Attachment
from .contents import Channel, Event, Named
from .errors import (
    CannotDecode,
    MdfError,
    MdfWarning,
    MissingFile,
    UnknownChannel,
    UnknownGroup,
    UnreadableFile,
    WrongQuery,
)
from .findings import Finding
from .frames import DatabaseFault, Decoding, Frames, UnknownId
from .group import Group
from .measurement import Measurement, open  # noqa: A004 - as gzip.open() and others
from .query import Query

__all__ = [
    "Attachment",
    "CannotDecode",
    "Channel",
    "DatabaseFault",
    "Decoding",
    "Event",
    "Finding",
    "Frames",
    "Group",
    "MdfError",
    "MdfWarning",
    "Measurement",
    "MissingFile",
    "Named",
    "Query",
    "UnknownChannel",
    "UnknownGroup",
    "UnknownId",
    "UnreadableFile",
    "WrongQuery",
    "open",
]
