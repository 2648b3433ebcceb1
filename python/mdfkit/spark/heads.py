"""What the files of a fleet say of themselves, read once, before any sample is."""

from __future__ import annotations

from collections.abc import Iterable, Iterator, Mapping, Sequence
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass
from fnmatch import fnmatchcase
from pathlib import Path
from typing import Any

import pyarrow as pa

from .. import choice
from ..contents import Start
from ..errors import UnreadableFile, WrongQuery
from ..request import ask
from ..source import Source
from .faults import Fault
from .options import Options

# Reading a description waits for the file system most of the time.
_THREADS = 16


class QuietSource(Source):
    """An open file whose findings are asked for: a worker's warnings are seen by nobody."""

    def warn(self) -> None:
        """Warn of nothing."""

    def faults(self) -> list[Fault]:
        """What was found to be wrong so far."""
        return [Fault.of_finding(self.path, finding) for finding in self.findings()]


@dataclass(frozen=True)
class Origin:
    """Where rows come from: a file, and of it what a query asks for.

    Attributes
    ----------
    path : str
        The file.
    group : int or None
        The number of the channel group; None where the file has nothing of the query.
    group_name, comment : str
        The channel group's name, and what the file says of itself.
    start : int or None
        Nanoseconds since 1970, in UTC, as which local times count too.
    channels : tuple of str or None
        Those of the query's names and patterns that the file has; None for all channels.
    master : str or None
        The name of the master channel.
    faults : tuple of Fault
        Why the file has nothing of the query, or is not read; then there is no group.
    is_read : bool
        Whether all this is known. A task reads the description of a small file by itself if the
        columns are stated.
    """

    path: str
    group: int | None = None
    group_name: str = ""
    comment: str = ""
    start: int | None = None
    channels: tuple[str, ...] | None = None
    master: str | None = None
    faults: tuple[Fault, ...] = ()
    is_read: bool = True


@dataclass(frozen=True)
class Head(Origin):
    """What the description of a file says of what a query asks for.

    Attributes
    ----------
    records, record_bytes : int
        How many there are, and the size of each in the file.
    can_be_cut : bool
        Whether reading can begin at any record without those before it.
    schema : pyarrow.Schema or None
        The columns as the library gives them.
    size : int
        Of the file in bytes, if it is not read.
    """

    records: int = 0
    record_bytes: int = 0
    can_be_cut: bool = False
    schema: pa.Schema | None = None
    size: int = 0

    @property
    def row_bytes(self) -> int:
        """What a row is in the file or in memory, whichever is more."""
        widths = (_width(field.type) for field in self.schema or ())
        return max(self.record_bytes, sum(widths), 1)


def _width(kind: pa.DataType) -> int:
    try:
        return int(kind.bit_width) // 8
    except ValueError:  # texts and bytes
        return 16


def read_heads(paths: Sequence[str], options: Options) -> list[Head]:
    """Read the descriptions of all files, several at a time."""
    with ThreadPoolExecutor(_THREADS) as pool:
        return list(pool.map(lambda path: read_head(path, options), paths))


def read_large_heads(paths: Sequence[str], options: Options, most: int) -> list[Head]:
    """Read the descriptions of files with more bytes than these, which are to be cut."""
    found = {path: Head(path, is_read=False, size=size) for path, size in zip(paths, sizes(paths))}
    large = [path for path, head in found.items() if head.size > most]
    return list({**found, **dict(zip(large, read_heads(large, options)))}.values())


def read_head(path: str, options: Options) -> Head:
    """Read a file's description; what fails is a fault in it."""
    try:
        source = QuietSource(path)
        try:
            return _head(source, options)
        finally:
            source.file.close()
    except UnreadableFile as error:
        return Head(path, faults=(Fault.of_error(path, error),))


def _head(source: QuietSource, options: Options) -> Head:
    channels = names_there(source, options)
    if channels == ():
        faults = (_nothing_there(source, options), *source.faults())
        return Head(source.path, faults=faults)
    query = query_of(source, options, channels)
    try:
        schema = query._columns()
        group = source.group_of(query._request)
    except WrongQuery as error:
        return Head(source.path, faults=(Fault.of_error(source.path, error),))
    start = Start.from_json(source.info["start"])
    return Head(
        path=source.path,
        group=group["group"],
        group_name=group["name"],
        comment=source.info["comment"],
        start=start.nanoseconds if start else None,
        channels=channels,
        master=schema.names[0] if group["master_unit"] is not None else None,
        records=group["records"],
        record_bytes=group["record_bytes"],
        can_be_cut=_is_alone(group, source.info["groups"]),
        schema=schema,
    )


def query_of(source: Source, options: Options, channels: Sequence[str] | None) -> Any:
    """Ask for these channels in the words of `Measurement.read`."""
    return ask(
        source,
        channels,
        group=options.group,
        raw=options.raw,
        numbers=options.numbers,
        times=options.times,
        start=options.start,
        stop=options.stop,
    )


def names_there(source: Source, options: Options) -> tuple[str, ...] | None:
    """Return the query's names and patterns that fit channels of the file; None for all.

    As Spark tells no upper case from lower case, a name that no channel has is that of those that
    differ in nothing else.
    """
    there = _names(source, choice.groups_named(source.info["groups"], options.group))
    if options.channels is None:
        return None if there else ()
    found: dict[str, None] = {}
    for name in options.channels:
        if name in there or _fits(name, there):
            found[name] = None
        else:
            found.update(dict.fromkeys(each for each in there if each.lower() == name.lower()))
    return tuple(found)


def _names(source: Source, groups: Iterable[int]) -> list[str]:
    """The names of channels, with and without those of the structures that they are in."""
    names = [channel.name for number in groups for channel in source.channels_of[number]]
    return list(dict.fromkeys([*names, *(name.rpartition(".")[2] for name in names)]))


def _fits(pattern: str, names: Iterable[str]) -> bool:
    return any(fnmatchcase(name, pattern) for name in names)


def _nothing_there(source: Source, options: Options) -> Fault:
    """The file is well, but has nothing that is asked for."""
    wanted = ", ".join(options.channels or ("any",))
    where = f" in channel group {options.group!r}" if options.group is not None else ""
    text = f"the file has no channel {wanted}{where}"
    return Fault(source.path, "channels-missing", "note", None, "", text)


def _is_alone(group: Mapping[str, Any], groups: Iterable[Mapping[str, Any]]) -> bool:
    """Whether records of other channel groups do not stand between those of this one."""
    together = [each for each in groups if each["data_group"] == group["data_group"]]
    return len(together) == 1


def sizes(paths: Sequence[str]) -> Iterator[int]:
    """Return the sizes of files in bytes; 0 for one that is away."""
    for path in paths:
        try:
            yield Path(path).stat().st_size
        except OSError:
            yield 0
