"""What is wrong with a file, and the warning that says so."""

from __future__ import annotations

import sys
import warnings
from collections.abc import Mapping, Sequence
from dataclasses import dataclass
from pathlib import Path
from types import FrameType
from typing import Any

from .errors import MdfWarning

_PACKAGE = str(Path(__file__).parent)


@dataclass(frozen=True)
class Finding:
    """Something that is wrong with a file, as ``mdf check`` finds it.

    Attributes
    ----------
    code : str
        A word that never changes; ``mdf check --codes`` explains each.
    severity : str
        ``"error"``, ``"warning"`` or ``"note"``.
    offset : int
        Where in the file, in bytes.
    path : str
        How the block there is reached from the header.
    text : str
        What was expected, and what was found.
    """

    code: str
    severity: str
    offset: int
    path: str
    text: str

    @classmethod
    def from_json(cls, members: Mapping[str, Any]) -> Finding:
        """Make one of its JSON object."""
        return cls(**{name: members[name] for name in cls.__dataclass_fields__})

    def __str__(self) -> str:
        return f"at byte {self.offset}: {self.text} ({self.code})"


def _level_of_caller() -> int:
    """The `stacklevel` at which the first frame outside this package is, from the caller on."""
    level = 1
    frame: FrameType | None = sys._getframe(1)
    while frame is not None and frame.f_code.co_filename.startswith(_PACKAGE):
        frame = frame.f_back
        level += 1
    return level


def warn_of(path: str, problems: Sequence[Finding | str], where: str = ".findings") -> None:
    """Warn once of these, where the user's code called this package."""
    if problems:
        more = f", and {len(problems) - 1} more: see {where}" if len(problems) > 1 else ""
        warnings.warn(f"{path}: {problems[0]}{more}", MdfWarning, stacklevel=_level_of_caller())
