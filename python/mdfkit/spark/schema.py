"""One table's columns of many files' channels.

A column has the smallest type that holds the values of all files: integers the wider one, integers
and floating-point numbers `double`, numbers and texts texts, texts and bytes bytes. Unsigned
integers become the next wider signed type, those of 64 bits `decimal(20,0)`, for Spark has none
without sign. Every column can be null.
"""

from __future__ import annotations

from collections.abc import Iterable, Sequence
from dataclasses import dataclass, field, replace
from typing import Any

import pyarrow as pa
from pyspark.sql import types as st

from ..errors import WrongQuery
from .heads import Head
from .options import ATTRIBUTES, Options

_ATTRIBUTE_TYPES: dict[str, st.DataType] = {
    name: st.TimestampType() if name == "start" else st.StringType() for name in ATTRIBUTES
}
_SIGNED: list[st.DataType] = [st.ByteType(), st.ShortType(), st.IntegerType(), st.LongType()]
_ARROW: list[tuple[st.DataType, pa.DataType]] = [
    (st.ByteType(), pa.int8()),
    (st.ShortType(), pa.int16()),
    (st.IntegerType(), pa.int32()),
    (st.LongType(), pa.int64()),
    (st.FloatType(), pa.float32()),
    (st.DoubleType(), pa.float64()),
    (st.StringType(), pa.string()),
    (st.BinaryType(), pa.binary()),
    (st.BooleanType(), pa.bool_()),
    (st.DateType(), pa.date32()),
    (st.TimestampType(), pa.timestamp("us", "UTC")),
    (st.TimestampNTZType(), pa.timestamp("us")),
]
_UNSIGNED_64 = st.DecimalType(20, 0)


def spark_type(kind: pa.DataType) -> st.DataType:
    """Return the type that holds the values of one of Arrow's."""
    if pa.types.is_integer(kind):
        steps = {8: 0, 16: 1, 32: 2, 64: 3}[kind.bit_width]
        steps += pa.types.is_unsigned_integer(kind)
        return _SIGNED[steps] if steps < len(_SIGNED) else _UNSIGNED_64
    if pa.types.is_floating(kind):
        return st.DoubleType() if kind.bit_width == 64 else st.FloatType()
    if pa.types.is_timestamp(kind):
        return st.TimestampType()
    if pa.types.is_large_string(kind) or pa.types.is_string(kind):
        return st.StringType()
    return st.BinaryType()


def arrow_type(kind: st.DataType) -> pa.DataType:
    """Return the type in which Spark takes the values of one of its own."""
    if isinstance(kind, st.DecimalType):
        return pa.decimal128(kind.precision, kind.scale)
    for known, arrow in _ARROW:
        if type(kind) is type(known):
            return arrow
    raise WrongQuery(f"no channel can be given as {kind.simpleString()}", "query-wrong")


def wider(one: st.DataType, other: st.DataType) -> st.DataType:
    """Return the type that holds the values of both.

    Examples
    --------
    >>> wider(st.ShortType(), st.LongType()), wider(st.LongType(), st.FloatType())
    (LongType(), DoubleType())
    """
    if one == other:
        return one
    kinds = [one, other]
    if all(each in _SIGNED for each in kinds):
        return max(kinds, key=_SIGNED.index)
    if all(each in _SIGNED or each == _UNSIGNED_64 for each in kinds):
        return _UNSIGNED_64
    if all(isinstance(each, st.NumericType) for each in kinds):
        return st.DoubleType()
    return st.BinaryType() if st.BinaryType() in kinds else st.StringType()


@dataclass
class _Column:
    """What is known of a channel so far."""

    channel: str
    kind: st.DataType
    units: list[str] = field(default_factory=list)
    comment: str = ""

    def add(self, each: pa.Field) -> None:
        self.kind = wider(self.kind, spark_type(each.type))
        facts = each.metadata or {}
        unit = facts.get(b"unit", b"").decode()
        if unit and unit not in self.units and not pa.types.is_timestamp(each.type):
            self.units.append(unit)
        self.comment = self.comment or facts.get(b"comment", b"").decode()

    def metadata(self, name: str) -> dict[str, Any]:
        facts: dict[str, Any] = {}
        if self.units:
            facts["unit"] = self.units[0]
        if len(self.units) > 1:
            facts["units"] = self.units
        if self.comment:
            facts["comment"] = self.comment
        if name != self.channel:
            facts["channel"] = self.channel
        return facts


def merged(heads: Iterable[Head], attributes: Sequence[str]) -> st.StructType:
    """Return the columns of all files' channels, and then those that say which file it is.

    Names differ in more than the case of their letters, which Spark does not tell apart: others
    have a number after them, ``speed (2)``, and the channel's own name in their metadata.
    """
    columns: dict[str, _Column] = {}
    for schema in _different(heads):
        for each in schema:
            columns.setdefault(each.name, _Column(each.name, spark_type(each.type))).add(each)
    taken = set(ATTRIBUTES)  # whether or not they are wanted
    fields = []
    for channel, column in columns.items():
        name, number = channel, 1
        while name.lower() in taken:
            number += 1
            name = f"{channel} ({number})"
        taken.add(name.lower())
        fields.append(st.StructField(name, column.kind, True, column.metadata(name)))
    own = [st.StructField(name, _ATTRIBUTE_TYPES[name], True) for name in attributes]
    return st.StructType(fields + own)


def _different(heads: Iterable[Head]) -> list[pa.Schema]:
    """Schemas, each once: thousands of files mostly have the same."""
    seen: dict[bytes, pa.Schema] = {}
    for head in heads:
        if head.schema is not None:
            seen.setdefault(head.schema.serialize().to_pybytes(), head.schema)
    return list(seen.values())


def refuse_nothing(heads: Sequence[Head]) -> None:
    """Raise an error where no file has anything to make columns of."""
    if any(head.schema is not None for head in heads):
        return
    first = heads[0].faults[0]
    raise WrongQuery(
        f"none of {len(heads)} files has what is asked for; the first one: {first}", first.code
    )


@dataclass(frozen=True)
class Target:
    """A column that is wanted: of a channel, or an attribute of the file."""

    name: str
    channel: str | None
    type: pa.DataType


def targets(schema: st.StructType) -> list[Target]:
    """Return the columns of a schema that Spark states, which the user may have written."""
    return [Target(each.name, _channel(each), arrow_type(each.dataType)) for each in schema.fields]


def _channel(each: st.StructField) -> str | None:
    stated = (each.metadata or {}).get("channel")
    if stated is not None:
        return str(stated)
    return None if each.name.lower() in ATTRIBUTES else each.name


def options_for(options: Options, schema: st.StructType) -> Options:
    """Return the options with the channels that a user's schema names, if no others are stated."""
    if options.channels is not None:
        return options
    names = tuple(each.channel for each in targets(schema) if each.channel is not None)
    return replace(options, channels=names or None)
