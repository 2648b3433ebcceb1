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

from pyspark.sql import DataFrame, SparkSession
from pyspark.sql import functions as sf

import mdfkit.spark
from mdfkit.spark.source import MdfDataSource
from spark_cluster import Cluster, executors, session, wait_for

CHANNELS = ["speed", "rpm", "torque", "temperature", "voltage"]
HEADER = "t [s],speed [km/h],rpm [1/min],torque [Nm],temperature [°C],voltage [V]\n"
SMALL_FILES = 2000
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
    spark.conf.set("spark.sql.parquet.compression.codec", "uncompressed")
    wait_for(lambda: executors(spark) == count, "executors")
    yield spark
    spark.stop()


def summed(frame: Callable[[], DataFrame]) -> Callable[[], object]:
    """Return a job that looks at each value; a frame of its own each time keeps no results."""
    return lambda: frame().agg(*[sf.sum(name) for name in ["t", *CHANNELS]]).collect()


def measure(folder: Path, program: str, files: int, rows: int, times: int) -> dict[str, float]:
    """Measure all that the figures are made of, in seconds and bytes."""
    fleet, lake = folder / "fleet", folder / "lake"
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
        for name in ("one", "two"):
            cluster.add_worker(name)
        for workers in (1, 2):
            with on_workers(cluster, workers) as spark:
                found.update(measure_spark(spark, fleet, lake, folder / "small", workers, times))
    finally:
        cluster.stop()
    found["lake"] = sum(each.stat().st_size for each in lake.glob("*.parquet"))
    return found


def measure_spark(
    spark: SparkSession, fleet: Path, lake: Path, small: Path, workers: int, times: int
) -> dict[str, float]:
    """Measure with one or two workers."""

    def write() -> None:
        mdfkit.spark.write_parquet(
            spark, str(fleet), str(lake), partition_by=(), overwrite=True, attributes="path"
        )

    found = {"write": seconds(write, 1)}

    def load(path: Path, attributes: str) -> DataFrame:
        return spark.read.format("mdf").option("attributes", attributes).load(str(path))

    found["plain"] = seconds(summed(lambda: load(fleet, "")), times)
    found["path"] = seconds(summed(lambda: load(fleet, "path")), times)
    found["parquet"] = seconds(summed(lambda: spark.read.parquet(str(lake))), times)
    found["small"] = seconds(lambda: load(small, "path").count(), 1)
    return {f"{name} {workers}": value for name, value in found.items()}


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
                ("write", "write_parquet, uncompressed"),
            )
            for workers in (1, 2)
        ],
        f"{SMALL_FILES} small files: schema {found['headers']:.2f} s, all rows counted "
        f"{found['small 2']:.2f} s on two workers",
        f"two workers are {found['plain 1'] / found['plain 2']:.2f} x as fast as one "
        f"(write_parquet {found['write 1'] / found['write 2']:.2f} x)",
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
    for what, name in (("write_parquet", "write 1"), ("sums of all values", "plain 1")):
        rate = found["bytes"] / found[name]
        core_hours = day / rate / HOUR
        lines.append(
            f"{what}: {rate / MB:.0f} MB/s for each core, {core_hours:.0f} core hours, "
            f"{math.ceil(core_hours / 2)} cores for two hours"
        )
    written = day * found["lake"] / found["bytes"]
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
