"""An open file with what it says of itself: what measurements, groups and queries share."""

from __future__ import annotations

import functools
import json
from collections.abc import Mapping
from typing import Any

import pyarrow as pa

from . import choice
from ._library import OpenFile, open_file
from .contents import Channel, Named
from .errors import UnknownChannel, WrongQuery
from .findings import Finding, warn_of


class Source:
    """An open file. Nothing in it refers to measurements, so that they are closed when dropped."""

    def __init__(self, path: str, file: OpenFile | None = None) -> None:
        self.path = path
        self.file = file or open_file(path)
        self._warned = 0
        self.warn()

    @functools.cached_property
    def _description(self) -> dict[str, Any]:
        description: dict[str, Any] = json.loads(self.file.describe())
        return description

    @property
    def info(self) -> dict[str, Any]:
        """What the file is, as ``mdf info --json`` says it."""
        info: dict[str, Any] = self._description["info"]
        return info

    @property
    def is_described(self) -> bool:
        """Whether `info` can be had, also of a closed file."""
        return self.file.is_open or "_description" in self.__dict__

    @functools.cached_property
    def channels(self) -> Named[Channel]:
        """All channels, in the order of the file."""
        channels = [Channel.from_json(members) for members in self._description["channels"]]
        return Named(channels, "channel", UnknownChannel)

    def listed(self, what: str) -> list[dict[str, Any]]:
        """What the file has of "attachments" or "events", in its order."""
        listed: list[dict[str, Any]] = self._description[what]
        return listed

    @functools.cached_property
    def channels_of(self) -> dict[int, Named[Channel]]:
        """The channels of each group by its number."""
        channels: dict[int, list[Channel]] = {group["group"]: [] for group in self.info["groups"]}
        for channel in self.channels:
            channels[channel.group].append(channel)
        return {number: Named(each, "channel", UnknownChannel) for number, each in channels.items()}

    def findings(self) -> list[Finding]:
        """What was found to be wrong so far."""
        return [Finding.from_json(members) for members in json.loads(self.file.findings())]

    def warn(self) -> None:
        """Warn once of what was found since the last time."""
        findings = self.findings()
        new = findings[self._warned :]
        self._warned = len(findings)
        warn_of(self.path, new)

    def stream(self, request: Mapping[str, Any]) -> pa.RecordBatchReader:
        """Open a stream of batches."""
        return self.file.read(json.dumps(request))

    def frames(self, request: Mapping[str, Any]) -> pa.RecordBatchReader:
        """Open a stream of batches of frames."""
        return self.file.frames(json.dumps(request))

    def takes(self, request: Mapping[str, Any]) -> bool:
        """Whether a query can be answered."""
        try:
            self.stream(request)
        except WrongQuery:
            return False
        return True

    def group_of(self, request: Mapping[str, Any]) -> dict[str, Any]:
        """What `info` says of the group that a query is about."""
        groups: dict[int, dict[str, Any]] = {each["group"]: each for each in self.info["groups"]}
        if isinstance(request.get("group"), int):
            return groups[request["group"]]
        fitting = choice.groups_named(groups.values(), request.get("group"))
        channels_of = {number: self.channels_of[number] for number in fitting}
        for number in choice.likely_groups(channels_of, request.get("channels")):
            if self.takes({**request, "group": number}):
                return groups[number]
        raise WrongQuery("no channel group fits the query", "query-wrong")
