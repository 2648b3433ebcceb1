"""Names and patterns of channels, as the library takes them."""

from __future__ import annotations

import difflib
import re
from collections.abc import Callable, Iterable, Mapping, Sequence
from fnmatch import fnmatchcase
from typing import Any, Union

from .contents import Channel, Named
from .errors import UnknownChannel

Names = Union[str, Sequence[str], None]

_SPECIAL = re.compile(r"([*?\[\]\\])")


def patterns(wanted: str | Sequence[str], known: Callable[[], Iterable[str]]) -> list[str]:
    """Return patterns of the library: a channel's name is itself, whatever characters it has."""
    names = [wanted] if isinstance(wanted, str) else list(wanted)
    if not any(_SPECIAL.search(name) for name in names):
        return names  # and the description need not be made
    channels = set(known())
    return [_SPECIAL.sub(r"\\\1", name) if name in channels else name for name in names]


def refuse_unknown(wanted: str | Sequence[str], channels: Named[Channel], where: str) -> None:
    """Raise an error for the first name that no channel has and that is no pattern."""
    known = {part for name in channels.names() for part in (name, _last(name))}
    for name in [wanted] if isinstance(wanted, str) else wanted:
        if name not in known and not _SPECIAL.search(name):
            raise UnknownChannel(
                f"{where} has no channel {name!r}{_nearest(name, known)}", "query-wrong"
            )


def groups_named(groups: Iterable[Mapping[str, Any]], pattern: str | None) -> list[int]:
    """Return the numbers of the groups that match a number or a pattern of a name; None is all."""
    return [
        each["group"]
        for each in groups
        if pattern in (None, str(each["group"])) or fnmatchcase(each["name"], pattern or "*")
    ]


def likely_groups(
    channels_of: Mapping[int, Named[Channel]], patterns: Sequence[str] | None
) -> list[int]:
    """Return the groups in which these may be found, the likely ones first."""
    return sorted(channels_of, key=lambda number: not _has(channels_of[number], patterns))


def _has(channels: Named[Channel], patterns: Sequence[str] | None) -> bool:
    """Whether there is such a channel; nearly so, for the library decides."""
    plain = [re.sub(r"\\(.)", r"[\1]", pattern) for pattern in patterns or ["*"]]
    return any(
        fnmatchcase(name, pattern)
        for channel in channels
        for name in (channel.name, _last(channel.name))
        for pattern in plain
    )


def _last(name: str) -> str:
    """Return the name of a member without those of its structures."""
    return name.rpartition(".")[2]


def _nearest(name: str, known: Iterable[str]) -> str:
    found = difflib.get_close_matches(name, list(known), n=3)
    return f"; there is {', '.join(map(repr, found))}" if found else ""
