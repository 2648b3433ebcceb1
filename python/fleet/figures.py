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
from pathlib import Path

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


def seconds(action: Callable[[], object], times: int) -> float:
    """Return the least time of several runs, after one that warms up."""
    action()
    spent = []
    for _ in range(times):
        begin = time.perf_counter()
        action()
        spent.append(time.perf_counter() - begin)
    return min(spent)


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


def measure(folder: Path, program: str, files: int, rows: int, times: int) -> dict[str, float]:
    """Measure all that the figures are made of, in seconds and bytes."""
    fleet = folder / "fleet"
    found: dict[str, float] = {"bytes": make_fleet(program, fleet, files, rows)}
    make_fleet(program, folder / "small", SMALL_FILES, 20)
    source = MdfDataSource({"path": str(fleet), "attributes": ""})
    reader = source.reader(source.schema())

    def read_all() -> None:
        for task in reader.partitions():
            for _ in reader.read(task):
                pass

    found["library"] = seconds(read_all, times)
    small = MdfDataSource({"path": str(folder / "small")})
    found["headers"] = seconds(small.schema, times)
    cluster = Cluster(folder)
    try:
        cores = sorted(os.sched_getaffinity(0))[:2]
        for name, core in zip(("one", "two"), cores):
            cluster.add_worker(name, core)
        for workers in (1, 2):
            with on_workers(cluster, workers) as spark:
                spent = measure_spark(spark, folder, files, rows, times)
                found.update({f"{name} {workers}": value for name, value in spent.items()})
    finally:
        cluster.stop()
    return found


def measure_spark(
    spark: SparkSession, folder: Path, files: int, rows: int, times: int
) -> dict[str, float]:
    """Measure with the workers of a session."""
    fleet, lake, small = folder / "fleet", folder / "lake", folder / "small"
    spark.dataSource.register(ReadyBatches)

    def write(compression: str) -> None:
        mdfkit.spark.write_parquet(
            spark, str(fleet), str(lake), partition_by=(), overwrite=True, compression=compression
        )

    found = {"zstd": seconds(lambda: write("zstd"), times)}
    found["lake bytes"] = sum(each.stat().st_size for each in lake.glob("*.parquet"))
    found["write"] = seconds(lambda: write("none"), times)

    def load(path: Path, attributes: str) -> DataFrame:
        return spark.read.format("mdf").option("attributes", attributes).load(str(path))

    found["ready"] = seconds(summed(lambda: ready(spark, files, rows)), times)
    found["plain"] = seconds(summed(lambda: load(fleet, "")), times)
    found["path"] = seconds(summed(lambda: load(fleet, "path")), times)
    found["parquet"] = seconds(summed(lambda: spark.read.parquet(str(lake))), times)
    found["small"] = seconds(lambda: load(small, "path").count(), 1)
    return found


def report(found: dict[str, float], files: int, rows: int) -> str:
    """Return the figures as text."""
    size = found["bytes"]

    def line(what: str, name: str, cores: int) -> str:
        spent = found[name]
        return f"{what:<52}{spent:>8.2f} s{size / spent / cores / MB:>8.0f} MB/s for each core"

    lines = [
        f"{files} files of {rows:,} records, 6 channels of 8 bytes: {size / MB:.0f} MB",
        line("the package alone, one thread", "library", 1),
        *[
            line(
                f"Spark, {what}, {workers} worker{'s' * (workers > 1)}",
                f"{name} {workers}",
                workers,
            )
            for name, what in (
                ("plain", "sums of all values"),
                ("path", "the same with the column path"),
                ("parquet", "the same of Parquet, uncompressed"),
                ("ready", "the same of batches that are made before"),
                ("write", "write_parquet, uncompressed"),
                ("zstd", "write_parquet with zstd"),
            )
            for workers in (1, 2)
        ],
        f"{SMALL_FILES} small files: schema {found['headers']:.2f} s, all rows counted "
        f"{found['small 2']:.2f} s on two workers",
        f"two workers are {found['plain 1'] / found['plain 2']:.2f} x as fast as one "
        f"(write_parquet {found['zstd 1'] / found['zstd 2']:.2f} x)",
        f"reading takes {found['plain 1'] / found['parquet 1']:.2f} x the time of Parquet on one "
        f"worker, {found['plain 2'] / found['parquet 2']:.2f} x on two",
        "",
        needs(found),
    ]
    return "\n".join(lines)


def needs(found: dict[str, float]) -> str:
    """Return what a day of the fleet needs."""
    day = VEHICLES * BYTES_A_DAY
    lines = [f"{VEHICLES:,} vehicles with {BYTES_A_DAY / 1e9:.0f} GB a day: {day / 1e12:.0f} TB"]
    for what, name in (("write_parquet with zstd", "zstd 1"), ("sums of all values", "plain 1")):
        rate = found["bytes"] / found[name]
        core_hours = day / rate / HOUR
        lines.append(
            f"{what}: {rate / MB:.0f} MB/s for each core, {core_hours:.0f} core hours, "
            f"{math.ceil(core_hours / 2)} cores for two hours"
        )
    written = day * found["lake bytes 1"] / found["bytes"]
    lines.append(f"Parquet that is written: {written / 1e12:.1f} TB")
    for hours in (24.0, 2.0):
        rate = (day + written) / hours / HOUR
        lines.append(
            f"moved within {hours:.0f} h: {rate / 1e9:.2f} GB/s, {8 * rate / 1e9:.1f} Gbit/s"
        )
    return "\n".join(lines)


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
        found = measure(
            Path(folder),
            os.environ["MDF_PROGRAM"],
            arguments.files,
            arguments.rows,
            arguments.times,
        )
    print(report(found, arguments.files, arguments.rows))


if __name__ == "__main__":
    main()
