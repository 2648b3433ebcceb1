"""Tables about the files: what is wrong with them, and what they have."""

from __future__ import annotations

from collections.abc import Iterator
from dataclasses import replace
from typing import Any

import pyarrow as pa
from pyspark.sql import types as st

from .. import choice
from ..contents import Start
from ..errors import MdfError, UnreadableFile, WrongQuery
from . import filters as pushed
from .faults import Fault, fail_at_errors
from .heads import QuietSource, names_there, query_of
from .options import Options

SCHEMAS: dict[str, str] = {
    "findings": (
        "path string, code string, severity string, offset bigint, block string, text string"
    ),
    "files": (
        "path string, bytes bigint, version int, program string, finished boolean, "
        "start timestamp, duration double, groups int, channels int, records bigint, "
        "findings int, comment string, error string"
    ),
    "channels": (
        "path string, group int, group_name string, channel string, unit string, type string, "
        "data_type string, conversion string, records bigint, rate double, comment string"
    ),
}


def schema_of(table: str) -> st.StructType:
    """Return the columns of one of these tables."""
    return st.StructType([_field(*column.split(" ")) for column in SCHEMAS[table].split(", ")])


def _field(name: str, kind: str) -> st.StructField:
    kinds: dict[str, st.DataType] = {
        "string": st.StringType(),
        "int": st.IntegerType(),
        "bigint": st.LongType(),
        "double": st.DoubleType(),
        "boolean": st.BooleanType(),
        "timestamp": st.TimestampType(),
    }
    return st.StructField(name, kinds[kind], True)


def batch(table: str, paths: list[str], options: Options, schema: pa.Schema) -> pa.RecordBatch:
    """Return the rows of some files."""
    make = {"findings": _findings, "files": _file, "channels": _channels}[table]
    rows = [row for path in paths for row in make(path, options)]
    return pa.RecordBatch.from_pylist(rows, schema=schema)


def _findings(path: str, options: Options) -> Iterator[dict[str, Any]]:
    """Read all that a query of samples would read, for the findings alone."""
    faults = list(dict.fromkeys(_faults(path, options)))
    if options.mode == "FAILFAST":
        fail_at_errors(faults)
    return (vars(fault) for fault in faults)


def _faults(path: str, options: Options) -> Iterator[Fault]:
    try:
        source = QuietSource(path)
    except UnreadableFile as error:
        yield Fault.of_error(path, error)
        return
    try:
        channels = names_there(source, options)
        groups = choice.groups_named(source.info["groups"], options.group)
        for group in groups if channels != () else ():
            yield from _read(source, options, channels, group)
        yield from source.faults()
    finally:
        source.file.close()


def _read(source: QuietSource, options: Options, channels: Any, group: int) -> Iterator[Fault]:
    query = query_of(source, replace(options, group=None), channels)
    try:
        for _ in source.stream({**query._request, "group": group, "threads": 1}):
            pass
    except WrongQuery:
        pass  # the channels are those of another group
    except (MdfError, pa.ArrowException, OSError) as error:
        yield Fault.of_error(source.path, error)


def _file(path: str, _options: Options) -> Iterator[dict[str, Any]]:
    try:
        source = QuietSource(path)
    except UnreadableFile as error:
        yield {"path": path, "error": error.sentence.removeprefix(f"{path}: ")}
        return
    info = source.info
    start = Start.from_json(info["start"])
    yield {
        "path": path,
        "bytes": info["bytes"],
        "version": info["version"],
        "program": info["program"],
        "finished": info["finished"],
        "start": pushed.moment(start.nanoseconds) if start else None,
        "duration": info["duration"],
        "groups": len(info["groups"]),
        "channels": info["channels"],
        "records": sum(group["records"] for group in info["groups"]),
        "findings": len(source.findings()),
        "comment": info["comment"],
    }
    source.file.close()


def _channels(path: str, options: Options) -> Iterator[dict[str, Any]]:
    try:
        source = QuietSource(path)
    except UnreadableFile:
        return  # the tables of files and of findings say so
    groups = {group["group"]: group for group in source.info["groups"]}
    for number in choice.groups_named(groups.values(), options.group):
        for channel in source.channels_of[number]:
            yield {
                "path": path,
                "group": number,
                "group_name": groups[number]["name"],
                "channel": channel.name,
                "unit": channel.unit,
                "type": channel.type,
                "data_type": channel.data_type,
                "conversion": channel.conversion,
                "records": channel.records,
                "rate": groups[number]["rate"],
                "comment": channel.comment,
            }
    source.file.close()
