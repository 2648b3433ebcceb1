"""What each task reads: some small files, or a range of records of a large one."""

from __future__ import annotations

from collections.abc import Callable, Iterable, Iterator, Sequence
from dataclasses import dataclass, fields, replace
from typing import TypeVar

from pyspark.sql.datasource import InputPartition

from .heads import Head, Origin
from .options import Options

TASK_BYTES = 64 << 20
_OPENING_BYTES = 1 << 20  # what could be read in the time that it takes to open a file


@dataclass(frozen=True)
class Piece(Origin):
    """Records of one file's channel group.

    Attributes
    ----------
    skip : int
        Records before it.
    first : int or None
        Records; all that follow where it is None.
    """

    skip: int = 0
    first: int | None = None


class Pieces(InputPartition):
    """What one task reads."""

    def __init__(self, number: int, pieces: Sequence[Piece]) -> None:
        super().__init__(number)
        self.number = number
        self.pieces = tuple(pieces)


def plan(heads: Iterable[Head], options: Options) -> list[Pieces]:
    """Divide the files among tasks: about 64 MiB for each, or so many records.

    Large files are cut at any record. Those in which records of several channel groups stand
    between one another are not, for all of them would be gone through for each piece; nor is any
    file in the mode DROPMALFORMED, which must know of its last record before it gives the first.
    """
    sized = [piece for head in heads for piece in _pieces(head, options)]
    return packed(sized, lambda each: each[1], lambda each: each[0])


def whole_file(head: Head) -> Piece:
    """Return all records of a file."""
    return Piece(**{each.name: getattr(head, each.name) for each in fields(Origin)})


def _pieces(head: Head, options: Options) -> Iterator[tuple[Piece, int]]:
    """A file's pieces, with what each costs."""
    whole = whole_file(head)
    if not head.is_read:
        yield whole, head.size + _OPENING_BYTES
        return
    most = options.rows_per_partition or max(1, TASK_BYTES // head.row_bytes)
    task_rows = most if options.rows_per_partition else None
    if not head.can_be_cut or head.records <= most or options.mode == "DROPMALFORMED":
        yield whole, _cost(head.records, head, task_rows)
        return
    count = -(-head.records // most)
    bounds = [head.records * i // count for i in range(count + 1)]
    for begin, end in zip(bounds, bounds[1:]):
        # The last one reads on, should the file have grown.
        rows = None if end == head.records else end - begin
        yield (
            replace(whole, skip=begin, first=rows),
            _cost(end - begin, head, task_rows),
        )


def _cost(rows: int, head: Head, task_rows: int | None) -> int:
    """Return the share of a task's bytes, or of its rows where their number is stated."""
    if task_rows is not None:
        return rows * TASK_BYTES // task_rows
    return rows * head.row_bytes + _OPENING_BYTES


_Item = TypeVar("_Item")


def packed(
    items: Iterable[_Item], cost: Callable[[_Item], int], piece: Callable[[_Item], Piece]
) -> list[Pieces]:
    """Put items that stand together into one task as long as they fit."""
    tasks: list[list[Piece]] = []
    room = 0
    for item in items:
        if not tasks or cost(item) > room:
            tasks.append([])
            room = TASK_BYTES + _OPENING_BYTES
        tasks[-1].append(piece(item))
        room -= cost(item)
    return [Pieces(number, pieces) for number, pieces in enumerate(tasks)]


def whole_files(paths: Sequence[str], sizes: Iterable[int]) -> list[Pieces]:
    """Divide whole files among tasks by their sizes."""
    sized = [(Piece(path), size + _OPENING_BYTES) for path, size in zip(paths, sizes)]
    return packed(sized, lambda each: each[1], lambda each: each[0])
