"""What is attached to a measurement."""

from __future__ import annotations

import os
from collections.abc import Mapping
from pathlib import Path
from typing import Any

from .parquet import complete
from .source import Source


class Attachment:
    """A file that is embedded in a measurement, or that it refers to.

    Attributes
    ----------
    number : int
        Attachments are numbered from 0.
    name : str
        Its file name, with the folder that it came from where that is stated.
    mime_type, comment : str
        ``""`` where there is none.
    size : int or None
        In bytes, uncompressed; None where it is not stated.
    is_embedded : bool
        Whether the measurement has its data.
    md5 : str or None
        Its digest, where one is stated.

    Examples
    --------
    >>> m.attachments["map.png"].save("map.png")
    """

    def __init__(self, source: Source, number: int, members: Mapping[str, Any]) -> None:
        self._source = source
        self.number = number
        self.name: str = members["name"]
        self.mime_type: str = members["mime_type"]
        self.comment: str = members["comment"]
        self.size: int | None = members["original_size"]
        self.is_embedded: bool = members["embedded"]
        self.md5: str | None = members["md5"]

    def read(self) -> bytes:
        """Read its data, which is uncompressed, and compared with its digest.

        Raises
        ------
        WrongQuery
            The measurement only refers to it.
        UnreadableFile
            It is damaged.
        """
        return self._source.file.attachment(self.number)

    def save(self, path: str | os.PathLike[str]) -> None:
        """Write its data to a file, which must not exist, and appears when it is complete."""
        data = self.read()
        if Path(path).exists():
            raise FileExistsError(f"{path} exists")
        with complete(Path(path)) as beside:
            beside.write_bytes(data)

    def __repr__(self) -> str:
        size = "" if self.size is None else f", {self.size:,} bytes"
        return f"<attachment {self.number} {self.name!r}{size}>"
