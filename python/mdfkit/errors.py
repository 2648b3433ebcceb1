"""What can go wrong, and what is only warned of."""

from __future__ import annotations


class MdfError(Exception):
    """A file cannot be read, or a query cannot be answered.

    Attributes
    ----------
    code : str
        A word that never changes, such as ``"not-mdf"`` or ``"query-wrong"``.
    offset : int or None
        Where in the file, in bytes, if it is about a place there.
    """

    def __init__(self, sentence: str, code: str = "", offset: int | None = None) -> None:
        super().__init__(sentence)
        self.sentence = sentence
        self.code = code
        self.offset = offset

    def __str__(self) -> str:
        return self.sentence


class UnreadableFile(MdfError, OSError):
    """A file cannot be opened, or is not a measurement file."""


class MissingFile(UnreadableFile, FileNotFoundError):
    """There is no file of this name."""


class WrongQuery(MdfError, ValueError):
    """A query is wrong, or does not fit the file; the sentence says what would."""


class CannotDecode(MdfError):
    """A file has no frames, or a database cannot be read."""


class UnknownChannel(WrongQuery, KeyError):
    """No channel has this name, or several have it."""


class UnknownGroup(WrongQuery, KeyError):
    """No channel group has this name, or several have it."""


class MdfWarning(UserWarning):
    """Something was found to be wrong with a file that can be read all the same."""
