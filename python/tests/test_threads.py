"""Threads that read at the same time."""

from __future__ import annotations

import subprocess
import sys
import threading
import time
from collections.abc import Iterator
from concurrent.futures import ThreadPoolExecutor

import pyarrow as pa
import pytest

import mdfkit
from conftest import Make


def total(path: object, barrier: threading.Barrier) -> list[int]:
    """Read a file several times, beginning at the same moment as others do."""
    barrier.wait()
    totals = []
    for _ in range(5):
        with mdfkit.open(str(path)) as m:
            totals.append(int(m["v"].to_numpy()["v"].sum()))
    return totals


def test_two_threads_read_two_files(make: Make) -> None:
    count = 100_000
    paths = [
        make(f"{step}.mf4", one="t [s],v\n" + "".join(f"{i},{i * step}\n" for i in range(count)))
        for step in (1, 3)
    ]
    barrier = threading.Barrier(2)
    with ThreadPoolExecutor(2) as pool:
        totals = list(pool.map(lambda path: total(path, barrier), paths))
    whole = count * (count - 1) // 2
    assert totals == [[whole] * 5, [3 * whole] * 5]


def test_opening_lets_other_threads_run(make: Make) -> None:
    # Standard input is a pipe which another thread of the same process fills: while the lock on
    # Python is held, it cannot.
    code = """
import os, sys, threading, mdfkit
source, sink = os.pipe()
os.dup2(source, 0)
os.set_blocking(sink, True)
def fill():
    with open(sys.argv[1], "rb") as file, os.fdopen(sink, "wb") as pipe:
        pipe.write(file.read())
threading.Thread(target=fill, daemon=True).start()
print(mdfkit.open("-").read().to_arrow().num_rows)
"""
    path = make(one="t [s],v\n" + "".join(f"{i},{i}\n" for i in range(100_000)))
    done = subprocess.run(
        [sys.executable, "-c", code, str(path)],
        check=True,
        capture_output=True,
        text=True,
        cwd=path.parent,  # where no package lies beside
        timeout=300,
    )
    assert done.stdout == "100000\n"


@pytest.fixture
def no_switches() -> Iterator[None]:
    """A thread goes on until it gives up the lock on Python by itself."""
    interval = sys.getswitchinterval()
    sys.setswitchinterval(1000)
    yield
    sys.setswitchinterval(interval)


@pytest.mark.usefixtures("no_switches")
def test_reading_lets_other_threads_run(make: Make) -> None:
    count = 200_000
    m = mdfkit.open(make(one="t [s],v\n" + "".join(f"{i},{i}\n" for i in range(count))))
    query = m.read(batch_rows=count)
    steps: list[None] = []
    is_done = threading.Event()

    def step() -> None:
        while not is_done.wait(0):
            steps.append(None)
            time.sleep(0)

    other = threading.Thread(target=step)
    other.start()
    try:
        # The other one may need some reads to wake up in time; without the lock it never does.
        assert any(has_stepped(query.batches(), steps, count) for _ in range(1000))
    finally:
        is_done.set()
        other.join()


def has_stepped(reader: pa.RecordBatchReader, steps: list[None], rows: int) -> bool:
    """Whether the other thread ran while a batch was read, which is one call."""
    before = len(steps)
    batch = reader.read_next_batch()
    after = len(steps)
    assert batch.num_rows == rows
    return after > before


def test_closing_while_others_read_is_an_error_and_no_crash(make: Make) -> None:
    m = mdfkit.open(make(one="t [s],v\n" + "".join(f"{i},{i}\n" for i in range(1000))))
    outcomes: list[str] = []

    def read() -> None:
        try:
            while True:
                m.read().to_arrow()
        except ValueError as error:
            outcomes.append(str(error))

    threads = [threading.Thread(target=read) for _ in range(2)]
    threads[0].start()
    m.read().to_arrow()
    m.close()
    threads[1].start()
    for thread in threads:
        thread.join()
    assert outcomes == [f"{m.path} is closed"] * 2


def test_threads_that_share_a_file_take_turns(make: Make) -> None:
    count = 20_000
    m = mdfkit.open(make(one="t [s],v\n" + "".join(f"{i},{i}\n" for i in range(count))))
    barrier = threading.Barrier(4)

    def read(number: int) -> tuple[int, int]:
        barrier.wait()
        columns = m.read(skip=number, batch_rows=100).to_numpy()
        return len(m.findings), int(columns["v"].sum())

    with ThreadPoolExecutor(4) as pool:
        results = list(pool.map(read, range(4)))
    whole = count * (count - 1) // 2
    assert results == [(0, whole), (0, whole), (0, whole - 1), (0, whole - 3)]
