"""Measures how fast Spark reads a fleet's files, and what a fleet needs.

Run by scripts/figures-fleet.
"""

from __future__ import annotations

import argparse
import math
import os
import shutil
import subprocess
import sys
import tempfile
import time
from collections.abc import Callable, Iterator
from contextlib import contextmanager
from dataclasses import dataclass
from pathlib import Path
from typing import Any

import pyarrow as pa
from pyspark.sql import DataFrame, SparkSession
from pyspark.sql import functions as sf
from pyspark.sql.datasource import DataSource, DataSourceReader, InputPartition
from pyspark.sql.types import StructType

import mdfkit.spark
from mdfkit.spark.source import MdfDataSource
from spark_cluster import Cluster, executors, session, wait_for

CHANNELS = ["speed", "rpm", "torque", "temperature", "voltage"]
HEADER = "t [s],speed [km/h],rpm [1/min],torque [Nm],temperature [°C],voltage [V]\n"
SMALL_FILES = 2000
BATCH_ROWS = 65_536
VEHICLES, BYTES_A_DAY = 10_000, 1e9
MB, HOUR = 1e6, 3600.0


def row(i: int) -> str:
    """Return a hundredth of a second of a drive."""
    return (
        f"{i / 100:.2f},{50 + 49 * math.sin(i / 997):.4f},{1500 + 1400 * math.sin(i / 313):.3f},"
        f"{200 * math.sin(i / 71):.5f},{90 + 5 * math.sin(i / 5003):.4f},"
        f"{12 + math.sin(i / 17):.5f}\n"
    )


def make_fleet(program: str, folder: Path, files: int, rows: int) -> int:
    """Make measurement files of so many rows each, and return the bytes of all of them."""
    folder.mkdir()
    table = folder.with_suffix(".csv")
    with table.open("w", encoding="utf-8") as out:
        out.write(HEADER)
        out.writelines(row(i) for i in range(rows))
    first = folder / "00000.mf4"
    subprocess.run([program, "import", table, "-o", first], check=True, capture_output=True)
    table.unlink()
    for i in range(1, files):
        shutil.copyfile(first, folder / f"{i:05}.mf4")
    return files * first.stat().st_size


@dataclass(frozen=True)
class Spent:
    """The least times of several runs: that of a clock, and that of all cores together."""

    seconds: float
    core_seconds: float


def spent(
    action: Callable[[], object], times: int, cores: Callable[[], float] = time.process_time
) -> Spent:
    """Measure some runs, after one that warms up."""
    action()
    found = []
    for _ in range(times):
        begin, begin_cores = time.perf_counter(), cores()
        action()
        found.append((time.perf_counter() - begin, cores() - begin_cores))
    return Spent(min(each[0] for each in found), min(each[1] for each in found))


@contextmanager
def on_workers(cluster: Cluster, count: int) -> Iterator[SparkSession]:
    """Give a session that uses so many workers of one core each."""
    spark = session(cluster.url, {"spark.cores.max": str(count)})
    wait_for(lambda: executors(spark) == count, "executors")
    yield spark
    spark.stop()


def summed(frame: Callable[[], DataFrame]) -> Callable[[], object]:
    """Return a job that looks at each value; a frame of its own each time keeps no results."""
    return lambda: frame().agg(*[sf.sum(name) for name in ["t", *CHANNELS]]).collect()


class ReadyBatches(DataSource):
    """Gives batches that are made before: what Spark takes for its own part."""

    @classmethod
    def name(cls) -> str:
        """Return what ``format`` takes."""
        return "ready"

    def reader(self, schema: StructType) -> DataSourceReader:
        """Return what gives a batch again and again."""
        return ReadyReader(schema.names, int(self.options["tasks"]), int(self.options["rows"]))


class ReadyReader(DataSourceReader):
    """Gives the same batch again and again."""

    def __init__(self, names: list[str], tasks: int, rows: int) -> None:
        self._names, self._tasks, self._rows = names, tasks, rows

    def partitions(self) -> list[InputPartition]:
        """Return as many tasks as there are files."""
        return [InputPartition(i) for i in range(self._tasks)]

    def read(self, partition: InputPartition) -> Iterator[pa.RecordBatch]:  # noqa: ARG002
        """Give the rows of a file."""
        values = pa.repeat(pa.scalar(0.5), BATCH_ROWS)
        batch = pa.RecordBatch.from_arrays([values] * len(self._names), names=self._names)
        for begin in range(0, self._rows, BATCH_ROWS):
            yield batch.slice(0, min(BATCH_ROWS, self._rows - begin))


def ready(spark: SparkSession, tasks: int, rows: int) -> DataFrame:
    """Return a frame of batches that are made before."""
    columns = ", ".join(f"{name} double" for name in ["t", *CHANNELS])
    reader = spark.read.format(ReadyBatches.name()).schema(columns)
    return reader.option("tasks", tasks).option("rows", rows).load()


@dataclass(frozen=True)
class Found:
    """What was measured, by the workers (none for the package alone) and what they did."""

    files: int
    rows: int
    bytes: int
    lake_bytes: int
    runs: dict[tuple[int, str], Spent]

    def rate(self, workers: int, what: str) -> float:
        """Return bytes of measurement files for each second of a core."""
        return self.bytes / self.runs[workers, what].core_seconds

    def ratio(self, one: tuple[int, str], other: tuple[int, str], *, cores: bool = False) -> float:
        """Return how many times as long as another run one took."""
        first, second = self.runs[one], self.runs[other]
        if cores:
            return first.core_seconds / second.core_seconds
        return first.seconds / second.seconds


def measure(folder: Path, program: str, files: int, rows: int, times: int) -> Found:
    """Measure all that the figures are made of."""
    size = make_fleet(program, folder / "fleet", files, rows)
    make_fleet(program, folder / "small", SMALL_FILES, 20)
    source = MdfDataSource({"path": str(folder / "fleet"), "attributes": ""})
    reader = source.reader(source.schema())

    def read_all() -> None:
        for task in reader.partitions():
            for _ in reader.read(task):
                pass

    small = MdfDataSource({"path": str(folder / "small")})
    runs = {(0, "read"): spent(read_all, times), (0, "headers"): spent(small.schema, times)}
    cluster = Cluster(folder)
    try:
        cores = sorted(os.sched_getaffinity(0))[:2]
        for name, core in zip(("one", "two"), cores):
            cluster.add_worker(name, core)
        for workers in (1, 2):
            with on_workers(cluster, workers) as spark:
                jobs = jobs_of(spark, folder, files, rows)
                for name, job in jobs.items():
                    runs[workers, name] = spent(job, times, cluster.core_seconds)
                    if name == "zstd":
                        lake = (folder / "lake").glob("*.parquet")
                        lake_bytes = sum(each.stat().st_size for each in lake)
    finally:
        cluster.stop()
    return Found(files, rows, size, lake_bytes, runs)


JOBS = {
    "zstd": "write_parquet with zstd",
    "write": "write_parquet, uncompressed",
    "parquet": "sums of all values, of this Parquet",
    "plain": "sums of all values, of measurement files",
    "path": "the same with the column path",
    "ready": "the same of batches that are ready",
    "small": f"{SMALL_FILES} small files, rows counted",
}


def jobs_of(
    spark: SparkSession, folder: Path, files: int, rows: int
) -> dict[str, Callable[[], object]]:
    """Return what is measured, in its order: Parquet is read when it has been written."""
    fleet, lake, small = (str(folder / name) for name in ("fleet", "lake", "small"))
    spark.dataSource.register(ReadyBatches)

    def write(compression: str) -> Callable[[], object]:
        options: dict[str, Any] = {"partition_by": (), "overwrite": True}
        return lambda: mdfkit.spark.write_parquet(
            spark, fleet, lake, compression=compression, **options
        )

    def load(path: str, attributes: str) -> DataFrame:
        return spark.read.format("mdf").option("attributes", attributes).load(path)

    return {
        "zstd": write("zstd"),
        "write": write("none"),
        "parquet": summed(lambda: spark.read.parquet(lake)),
        "plain": summed(lambda: load(fleet, "")),
        "path": summed(lambda: load(fleet, "path")),
        "ready": summed(lambda: ready(spark, files, rows)),
        "small": lambda: load(small, "path").count(),
    }


def report(found: Found) -> str:
    """Return the figures as text."""
    lines = [
        f"{found.files} files of {found.rows:,} records, 6 channels of 8 bytes: "
        f"{found.bytes / MB:.0f} MB",
        f"{'':<44}{'workers':>8}{'seconds':>9}{'of cores':>9}{'MB/s a core':>12}",
    ]
    names = {"read": "the package alone", "headers": f"{SMALL_FILES} small files, columns", **JOBS}
    for (workers, name), each in found.runs.items():
        of_fleet = name not in ("headers", "small")
        rate = f"{found.rate(workers, name) / MB:>12.0f}" if of_fleet else ""
        times = f"{each.seconds:>9.2f}{each.core_seconds:>9.2f}"
        lines.append(f"{names[name]:<44}{workers or '':>8}{times}{rate}")
    lines += ["", *ratios(found), "", *needs(found)]
    return "\n".join(lines)


def ratios(found: Found) -> list[str]:
    """Return what is as fast as what."""
    lines = [
        f"{JOBS[name]}: two workers are {found.ratio((1, name), (2, name)):.2f} x as fast as one"
        for name in ("plain", "zstd", "parquet")
    ]
    for workers in (1, 2):
        plain, parquet = (workers, "plain"), (workers, "parquet")
        lines.append(
            f"measurement files take {found.ratio(plain, parquet):.2f} x the time of Parquet, "
            f"{found.ratio(plain, parquet, cores=True):.2f} x that of cores ({workers} of two "
            f"workers); {found.ratio(plain, (workers, 'ready')):.2f} x that of ready batches"
        )
    return lines


def needs(found: Found) -> list[str]:
    """Return what a day of the fleet needs."""
    day = VEHICLES * BYTES_A_DAY
    lines = [f"{VEHICLES:,} vehicles with {BYTES_A_DAY / 1e9:.0f} GB a day: {day / 1e12:.0f} TB"]
    for name in ("zstd", "plain"):
        rate = found.rate(1, name)
        hours = day / rate / HOUR
        lines.append(
            f"{JOBS[name]}: {rate / MB:.0f} MB/s for each core, {hours:.0f} core hours, "
            f"{math.ceil(hours / 2)} cores for two hours"
        )
    written = day * found.lake_bytes / found.bytes
    lines.append(f"Parquet that is written, with zstd: {written / 1e12:.1f} TB")
    for hours in (24.0, 2.0):
        rate = (day + written) / hours / HOUR
        bits = f"{8 * rate / 1e9:.1f} Gbit/s"
        lines.append(f"read and written within {hours:.0f} h: {rate / 1e9:.2f} GB/s, {bits}")
    return lines


def main() -> None:
    """Measure and print."""
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--files", type=int, default=16, help="files of the fleet")
    parser.add_argument("--rows", type=int, default=1_000_000, help="records of each")
    parser.add_argument("--times", type=int, default=3, help="runs, of which the fastest counts")
    arguments = parser.parse_args()
    os.environ.setdefault("SPARK_LOCAL_IP", "127.0.0.1")
    os.environ["PYSPARK_PYTHON"] = sys.executable
    with tempfile.TemporaryDirectory(prefix="mdf-fleet-") as folder:
        program = os.environ["MDF_PROGRAM"]
        found = measure(Path(folder), program, arguments.files, arguments.rows, arguments.times)
    print(report(found))


if __name__ == "__main__":
    main()
