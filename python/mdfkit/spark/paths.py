"""The files that a query's paths mean."""

from __future__ import annotations

import glob
import os
import re
from collections.abc import Iterable, Iterator
from pathlib import Path
from urllib.parse import unquote, urlparse

from ..errors import MissingFile

_SUFFIXES = (".mf4", ".mdf")


def find(paths: Iterable[str]) -> list[str]:
    """Return the files of these paths: absolute, each once, in the order of their names.

    Parameters
    ----------
    paths : iterable of str
        Files, folders (with all files below that are named ``*.mf4`` or ``*.mdf``, in any case),
        and patterns as of a shell, of which ``**`` stands for folders. Several in one text have
        commas between them.

    Raises
    ------
    MissingFile
        Where there is no file for one of them.
    """
    found: set[str] = set()
    for path in paths:
        for each in _parts(_local(path)):
            files = {os.path.normpath(Path(file).absolute()) for file in _files(each)}
            if not files:
                raise MissingFile(f"there is no measurement file {each}", "cannot-open")
            found |= files
    if not found:
        raise MissingFile("no path of measurement files is given to load()", "cannot-open")
    return sorted(found)


def _parts(path: str) -> list[str]:
    """The path itself where it leads to something, else the parts between its commas."""
    if "," not in path or os.path.lexists(path):
        return [path]
    return [_local(part.strip()) for part in path.split(",") if part.strip()]


def _local(path: str) -> str:
    """A path of this machine's file system; of "file:///fleet/a.mf4" as well."""
    scheme = re.match(r"([A-Za-z][A-Za-z0-9+.-]+):/", path)
    if scheme is None:
        return path
    if scheme[1].lower() != "file":
        raise MissingFile(
            f"{path}: files are read by paths of a file system that all workers have mounted, "
            f"not by {scheme[1]}:",
            "cannot-open",
        )
    return unquote(urlparse(path).path)


def _files(path: str) -> Iterator[str]:
    # Path.glob() takes no absolute patterns.
    places = [path] if os.path.lexists(path) else glob.iglob(path, recursive=True)  # noqa: PTH207
    for place in places:
        if Path(place).is_dir():
            yield from _below(place)
        else:
            yield place


def _below(folder: str) -> Iterator[str]:
    """Measurement files of a folder; as Spark does, without those that are named "_x" or ".x"."""
    for place, folders, files in os.walk(folder):
        folders[:] = [name for name in folders if not name.startswith(("_", "."))]
        for name in files:
            if name.lower().endswith(_SUFFIXES) and not name.startswith(("_", ".")):
                yield f"{place}/{name}"
