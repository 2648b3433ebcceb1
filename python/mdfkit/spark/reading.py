"""A task: pieces of files become batches, and what is wrong with them is said as the mode wants."""

from __future__ import annotations

from collections.abc import Callable, Iterable, Iterator, Sequence
from dataclasses import dataclass, replace
from typing import Any

import pyarrow as pa
from pyspark.sql.datasource import Filter

from ..errors import MdfError, UnreadableFile
from . import filters as pushed
from .columns import Adapter
from .faults import Fault, fail_at_errors
from .heads import QuietSource, query_of, read_head
from .options import Options
from .partitions import Piece, whole_file
from .schema import Target

_KEPT_BYTES = 64 << 20
_BATCH_BYTES = 4 << 20

Report = Callable[[Sequence[Fault]], None]


@dataclass(frozen=True)
class Task:
    """What is the same for all pieces."""

    options: Options
    targets: tuple[Target, ...]
    filters: tuple[Filter, ...]

    def known(self, pieces: Iterable[Piece]) -> Iterator[Piece]:
        """Return those pieces whose files may pass the filters, as their descriptions tell."""
        for piece in pieces:
            known = piece if piece.is_read else whole_file(read_head(piece.path, self.options))
            if pushed.may_pass(self.filters, attributes_of(known)):
                yield known

    def batches(self, piece: Piece, report: Report) -> Iterator[pa.RecordBatch]:
        """Read a piece of a file.

        Parameters
        ----------
        piece : Piece
            The records that are wanted.
        report : callable
            Takes what is wrong with them, when they have been read.

        Raises
        ------
        UnreadableFile
            In the mode FAILFAST, for the first error.
        """
        if self.options.mode == "DROPMALFORMED":
            return self._of_sound_file(piece, report)
        return self._of_any_file(piece, report)

    def _of_any_file(self, piece: Piece, report: Report) -> Iterator[pa.RecordBatch]:
        faults: list[Fault] = []
        yield from self._read(piece, faults)
        if self.options.mode == "FAILFAST":
            fail_at_errors(faults)
        report(faults)

    def _of_sound_file(self, piece: Piece, report: Report) -> Iterator[pa.RecordBatch]:
        """Read all of the file before any of it is given; again, if it is a large one."""
        faults: list[Fault] = []
        kept: list[pa.RecordBatch] = []
        size = 0
        for batch in self._read(piece, faults):
            size += batch.nbytes
            if size <= _KEPT_BYTES:
                kept.append(batch)
        report(faults)
        if any(fault.is_error for fault in faults):
            return
        yield from kept if size <= _KEPT_BYTES else self._read(piece, [])

    def _read(self, piece: Piece, faults: list[Fault]) -> Iterator[pa.RecordBatch]:
        """Read what can be read, and note what is wrong."""
        faults.extend(piece.faults)
        if piece.group is None:
            return
        try:
            source = QuietSource(piece.path)
        except UnreadableFile as error:
            faults.append(Fault.of_error(piece.path, error))
            return
        known = source.faults()
        try:
            reader = source.stream(self._request(source, piece))
            adapter = Adapter(piece.path, self.targets, reader.schema, attributes_of(piece))
            for batch in reader:
                yield adapter.adapted(batch)
            faults.extend(adapter.faults)
        except (MdfError, pa.ArrowException, OSError) as error:
            faults.append(Fault.of_error(piece.path, error))
        finally:
            # What the description has is said of the file once, by its first piece.
            found = source.faults()
            faults.extend(found if piece.skip == 0 else found[len(known) :])
            source.file.close()

    def _request(self, source: QuietSource, piece: Piece) -> dict[str, Any]:
        options = replace(self.options, group=None)
        request = dict(query_of(source, options, piece.channels)._request)
        request["group"] = piece.group
        low, high = self._limits(piece)
        extra = {
            "from": low,
            "to": high,
            "skip": piece.skip or None,
            "first": piece.first,
            "threads": 1,  # Spark runs as many tasks as there are cores
            "batch_rows": max(1024, _BATCH_BYTES // (8 * len(self.targets))),
        }
        return {**request, **{name: value for name, value in extra.items() if value is not None}}

    def _limits(self, piece: Piece) -> tuple[float | None, float | None]:
        """Both what the options state and what the filters let pass."""
        low, high = self.options.start, self.options.stop
        column = self._master_column(piece)
        if column is None or self.options.raw:
            return low, high
        first, last = pushed.limits(self.filters, column, piece.start)
        low = first if low is None or (first is not None and first > low) else low
        high = last if high is None or (last is not None and last < high) else high
        return low, high

    def _master_column(self, piece: Piece) -> str | None:
        """Return the column with the master channel, if it is one of numbers or times."""
        for target in self.targets:
            if target.channel == piece.master and target.channel is not None:
                is_text = pa.types.is_string(target.type) or pa.types.is_binary(target.type)
                return None if is_text else target.name
        return None


def attributes_of(piece: Piece) -> dict[str, Any]:
    """Return what is known of a file before it is read; None for what it does not state."""
    if not piece.is_read:
        return {"path": piece.path}
    return {
        "path": piece.path,
        "start": pushed.moment(piece.start),
        "group": piece.group_name,
        "comment": piece.comment,
    }
