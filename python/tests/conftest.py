"""Files to read, made of the texts that the tests state."""

from __future__ import annotations

import os
import struct
import subprocess
import sys
from collections.abc import Callable, Iterator
from pathlib import Path

import pytest
from pyspark.sql import SparkSession

import mdfkit
from spark_cluster import SHORT_LIVED, Cluster, executors, session, wait_for

Make = Callable[..., Path]


def stated(name: str) -> str:
    """What scripts/test-python says by an environment variable."""
    value = os.environ.get(name)
    assert value, f"{name} is not set: run scripts/test-python"
    return value


def run(*arguments: str | Path) -> str:
    """Run the program, and return what it prints."""
    command = [stated("MDF_PROGRAM"), *map(str, arguments)]
    done = subprocess.run(command, capture_output=True, text=True, encoding="utf-8")
    # 1 is for a file with something wrong, of which the rest was exported.
    assert done.returncode <= (arguments[0] == "export"), done.stderr
    return done.stdout


@pytest.fixture(scope="session")
def program() -> Callable[..., str]:
    return run


@pytest.fixture
def make(tmp_path: Path) -> Make:
    """Make a measurement file of tables in CSV, by the names of their groups."""

    def make_file(name: str = "trip.mf4", types: tuple[str, ...] = (), **tables: str) -> Path:
        sources = [tmp_path / f"{group}.csv" for group in tables]
        for source, text in zip(sources, tables.values()):
            source.write_text(text, encoding="utf-8")
        path = tmp_path / name
        options = [part for each in types for part in ("--type", each)]
        run("import", *sources, "-o", path, "--force", *options)
        return path

    return make_file


ENGINE = """t [s],speed [km/h],gear,text
0,1.5,1,off
0.5,2.5,2,"on, at last"
1,,,
1.5,-4.25,255,größer
"""

BRAKES = """t [s],pressure [bar],speed [km/h]
0,10,1
2,30,3
"""

DATES = """time,speed [km/h]
2024-05-17T13:45:12.5+02:00,1
2024-05-17T13:45:13.000000001+02:00,2
"""


SPEEDS = "t [s],speed [km/h]\n" + "".join(f"{i},{10 * i}\n" for i in range(10))


@pytest.fixture
def damaged(make: Make, tmp_path: Path) -> Path:
    """A folder with a healthy file, one cut off after its seventh record, and an empty one."""
    folder = tmp_path / "fleet"
    folder.mkdir()
    whole = make(engine=SPEEDS).read_bytes()
    record = len(struct.pack("<qB", 0, 0))
    (folder / "a.mf4").write_bytes(whole)
    (folder / "b.mf4").write_bytes(whole[: -3 * record])
    (folder / "c.mf4").write_bytes(b"")
    return folder


@pytest.fixture
def engine(make: Make) -> mdfkit.Measurement:
    return mdfkit.open(make(engine=ENGINE))


@pytest.fixture
def two_groups(make: Make) -> mdfkit.Measurement:
    return mdfkit.open(make(engine=ENGINE, brakes=BRAKES))


@pytest.fixture
def dated(make: Make) -> mdfkit.Measurement:
    return mdfkit.open(make(dates=DATES))


@pytest.fixture(scope="session")
def samples() -> Path:
    """A folder with the sample files, each for a feature of the format."""
    return Path(stated("MDF_SAMPLES"))


@pytest.fixture(scope="session")
def cluster(tmp_path_factory: pytest.TempPathFactory) -> Iterator[Cluster]:
    """A cluster of Spark with the workers "one" and "two"."""
    started = Cluster(tmp_path_factory.mktemp("cluster"))
    try:
        for name in ("one", "two"):
            started.add_worker(name)
        yield started
    finally:
        started.stop()


@pytest.fixture(scope="session")
def spark(cluster: Cluster, tmp_path_factory: pytest.TempPathFactory) -> Iterator[SparkSession]:
    """A session on the cluster, with an executor on each worker."""
    with pytest.MonkeyPatch.context() as patch:
        patch.setenv("PYSPARK_PYTHON", sys.executable)
        patch.setenv("SPARK_LOCAL_IP", "127.0.0.1")
        patch.setenv("SPARK_LOCAL_DIRS", str(tmp_path_factory.mktemp("spark")))
        options = {
            "spark.driver.extraJavaOptions": SHORT_LIVED,
            "spark.executor.extraJavaOptions": SHORT_LIVED,
        }
        begun = session(cluster.url, options)
        wait_for(lambda: executors(begun) == 2, "two executors")
        yield begun
        begun.stop()
