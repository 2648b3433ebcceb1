"""What is wrong with a fleet's files: rows of a table, and lines of a log."""

from __future__ import annotations

import contextlib
import json
from collections.abc import Iterable
from dataclasses import asdict, dataclass
from pathlib import Path

from ..errors import MdfError, UnreadableFile
from ..findings import Finding


@dataclass(frozen=True)
class Fault:
    """One finding of one file.

    Attributes
    ----------
    path : str
        The file.
    code : str
        A word that never changes; ``mdf check --codes`` explains each.
    severity : str
        ``"error"``, ``"warning"`` or ``"note"``.
    offset : int or None
        Where in the file, in bytes, if it is about a place there.
    block : str
        How the block there is reached from the header.
    text : str
        What was expected, and what was found.
    """

    path: str
    code: str
    severity: str
    offset: int | None
    block: str
    text: str

    @classmethod
    def of_finding(cls, path: str, finding: Finding) -> Fault:
        """Make one of a finding."""
        return cls(path, finding.code, finding.severity, finding.offset, finding.path, finding.text)

    @classmethod
    def of_error(cls, path: str, error: Exception, severity: str = "error") -> Fault:
        """Make one of what was raised when the file was read."""
        code = error.code if isinstance(error, MdfError) else "fault-inside"
        offset = error.offset if isinstance(error, MdfError) else None
        return cls(path, code, severity, offset, "", str(error).removeprefix(f"{path}: "))

    @property
    def is_error(self) -> bool:
        """Whether the file counts as damaged."""
        return self.severity == "error"

    def __str__(self) -> str:
        place = "" if self.offset is None else f"at byte {self.offset}: "
        return f"{self.path}: {place}{self.text} ({self.code})"

    def as_json(self) -> str:
        """Return a line of the log."""
        return json.dumps(asdict(self), ensure_ascii=False)


def fail_at_errors(faults: Iterable[Fault]) -> None:
    """Raise the first error, as the mode FAILFAST wants it."""
    for fault in faults:
        if fault.is_error:
            raise UnreadableFile(str(fault), fault.code, fault.offset)


def write_log(folder: str, number: int, faults: Iterable[Fault]) -> None:
    """Write what one task found to a file of its own; one that runs again replaces it."""
    lines = [fault.as_json() + "\n" for fault in dict.fromkeys(faults)]
    path = Path(folder) / f"part-{number:05}.json"
    if not lines:
        with contextlib.suppress(FileNotFoundError):
            path.unlink()
        return
    path.parent.mkdir(parents=True, exist_ok=True)
    beside = path.with_name(f".{path.name}.{id(lines):x}")
    beside.write_text("".join(lines), encoding="utf-8")
    beside.replace(path)
