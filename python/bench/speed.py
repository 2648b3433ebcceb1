"""How long reading takes from Python, against C++ and against numpy.

Usage: speed.py PROGRAM FOLDER

PROGRAM makes a file of five million records in FOLDER, and reads its five columns in C++; see
scripts/bench-python. Both sides of a comparison take turns; the medians of their CPU times count.
"""

from __future__ import annotations

import statistics
import subprocess
import sys
import time
from collections.abc import Callable
from pathlib import Path
from typing import Any

import numpy as np

import mdfkit

ROUNDS = 11
RECORD = np.dtype(
    [("c0", "<f8"), ("c1", "<f8"), ("c2", "<f4"), ("c3", "<u2"), ("c4", "<u4")], align=False
)

program, folder = sys.argv[1], Path(sys.argv[2])
Side = Callable[[], float]


def timed(work: Callable[[], object]) -> Side:
    """Return what does some work and tells its CPU time in seconds."""

    def measure() -> float:
        begin = time.process_time()
        result = work()
        seconds = time.process_time() - begin
        del result
        return seconds

    return measure


def columns_in_cpp() -> float:
    """Read all columns in C++."""
    return float(subprocess.run([program, "read", folder], check=True, capture_output=True).stdout)


def batches() -> int:
    """Read all columns, batch by batch."""
    with mdfkit.open(folder / "records.mf4") as m:
        return sum(batch.num_rows for batch in m.read(threads=1).batches())


def table() -> object:
    """Read all columns into memory."""
    with mdfkit.open(folder / "records.mf4") as m:
        return m.read(threads=1).to_arrow()


def frame() -> object:
    """Read all columns as a data frame."""
    with mdfkit.open(folder / "records.mf4") as m:
        return m.read(threads=1).to_pandas()


def arrays() -> dict[str, np.ndarray[Any, Any]]:
    """Read records, and copy them into columns."""
    records = np.fromfile(folder / "records.bin", RECORD)
    return {name: np.ascontiguousarray(records[name]) for name in RECORD.names or ()}


def compare(what: str, baseline: str, limit: float | None, subject: Side, other: Side) -> None:
    """Measure both sides, and print a row of the table."""
    subject(), other()
    pairs = [(subject(), other()) for _ in range(ROUNDS)]
    ours, theirs = (statistics.median(side) for side in zip(*pairs))
    ratio = ours / theirs
    met = "" if limit is None else "yes" if ratio <= limit else "**no**"
    shown = "" if limit is None else limit
    print(f"| {what} | {baseline} | {shown} | {ratio:.2f} | {ours:.3f} | {theirs:.3f} | {met} |")


subprocess.run([program, "make", folder], check=True)
assert batches() == 5_000_000
assert np.array_equal(mdfkit.open(folder / "records.mf4")["c4"].to_numpy()["c4"], arrays()["c4"])
print("| What | Baseline | Limit | Measured | s | Baseline s | Met |")
print("|---|---|---|---|---|---|---|")
compare("batches", "the columns in C++", 1.2, timed(batches), columns_in_cpp)
compare("a table", "the columns in C++", None, timed(table), columns_in_cpp)
compare("to pandas", "numpy.fromfile, copied into columns", 1.5, timed(frame), timed(arrays))
