"""A cluster of Spark on this machine: a master and two workers as processes of their own."""

from __future__ import annotations

import os
import re
import signal
import subprocess
import sys
import time
from collections.abc import Callable, Mapping, Sequence
from pathlib import Path
from typing import IO, Any

import pyspark
from pyspark.sql import SparkSession

_HOME = Path(pyspark.__file__).parent
_DEPLOY = "org.apache.spark.deploy"
_PATIENCE = 120.0  # seconds, after which something is broken
SHORT_LIVED = "-XX:TieredStopAtLevel=1 -XX:+UseSerialGC"  # Java that is not worth optimising


def wait_for(condition: Callable[[], Any], what: str) -> Any:
    """Wait until a condition holds, and return what it gives."""
    end = time.monotonic() + _PATIENCE
    while time.monotonic() < end:
        found = condition()
        if found:
            return found
        time.sleep(0.05)
    raise TimeoutError(what)


class Cluster:
    """A master and its workers, each the first process of a group of its own."""

    def __init__(self, folder: Path) -> None:
        self._folder = folder
        self._processes: dict[str, subprocess.Popen[bytes]] = {}
        self._ticks: dict[Path, int] = {}
        self._start("master", "master.Master", "--host", "127.0.0.1", "--port", "0")
        self.url: str = wait_for(
            lambda: self._said("master", r"Starting Spark master at (spark://\S+)"), "the master"
        )

    def add_worker(self, name: str, core: int | None = None) -> None:
        """Start a worker with one core, bound to this one of the machine if one is stated."""
        work = self._folder / name
        options = ["--cores", "1", "--memory", "1g", "--host", "127.0.0.1"]
        bound = [] if core is None else ["taskset", "--cpu-list", str(core)]
        self._start(name, "worker.Worker", *options, "--work-dir", str(work), self.url, bound=bound)

    def kill(self, name: str) -> None:
        """Take a worker away with all that runs there, as when its machine loses power."""
        process = self._processes.pop(name)
        os.killpg(process.pid, signal.SIGKILL)
        process.wait()

    def core_seconds(self) -> float:
        """Return the time that cores have spent on the workers and on all that runs there."""
        sessions = {process.pid for name, process in self._processes.items() if name != "master"}
        for path in Path("/proc").glob("[0-9]*/stat"):
            fields = _process_state(path)
            if fields and int(fields[3]) in sessions:
                # Kept for when it has ended.
                self._ticks[path] = int(fields[11]) + int(fields[12])
        return sum(self._ticks.values()) / os.sysconf("SC_CLK_TCK")

    def stop(self) -> None:
        """End all processes."""
        for name in list(self._processes):
            self.kill(name)

    def _start(self, name: str, program: str, *arguments: str, bound: Sequence[str] = ()) -> None:
        environment = {
            **os.environ,
            "SPARK_HOME": str(_HOME),
            "SPARK_LOCAL_IP": "127.0.0.1",
            "SPARK_LOCAL_DIRS": str(self._folder),
            "SPARK_DAEMON_MEMORY": "256m",
            "SPARK_DAEMON_JAVA_OPTS": SHORT_LIVED,
            "PYSPARK_PYTHON": sys.executable,
        }
        command = [*bound, str(_HOME / "bin" / "spark-class"), f"{_DEPLOY}.{program}"]
        with self._log(name).open("wb") as log:
            self._processes[name] = self._run(
                [*command, *arguments, "--webui-port", "0"], environment, log
            )

    @staticmethod
    def _run(
        command: list[str], environment: dict[str, str], log: IO[bytes]
    ) -> subprocess.Popen[bytes]:
        return subprocess.Popen(
            command, env=environment, stdout=log, stderr=log, start_new_session=True
        )

    def _log(self, name: str) -> Path:
        return self._folder / f"{name}.log"

    def _said(self, name: str, pattern: str) -> str | None:
        if self._processes[name].poll() is not None:
            raise RuntimeError(f"{name} ended: {self._log(name).read_text()}")
        found = re.search(pattern, self._log(name).read_text(errors="replace"))
        return found[1] if found else None


def _process_state(path: Path) -> list[str]:
    """What the system says of a process after its name, from its state on."""
    try:
        return path.read_text(errors="replace").rpartition(")")[2].split()
    except OSError:  # it has ended
        return []


def session(url: str, settings: Mapping[str, str]) -> SparkSession:
    """Begin a session on a cluster of this machine."""
    always = {
        "spark.driver.host": "127.0.0.1",
        "spark.driver.memory": "512m",
        "spark.executor.memory": "512m",
        "spark.executor.cores": "1",
        "spark.sql.session.timeZone": "UTC",
        "spark.sql.shuffle.partitions": "2",
        "spark.ui.enabled": "false",
        "spark.ui.showConsoleProgress": "false",
    }
    builder = SparkSession.builder.master(url).appName("mdfkit")
    for name, value in {**always, **settings}.items():
        builder = builder.config(name, value)
    begun = builder.getOrCreate()
    begun.sparkContext.setLogLevel("OFF")
    return begun


def executors(spark: SparkSession) -> int:
    """Return how many executors there are."""
    context: Any = spark.sparkContext._jsc.sc()
    return int(context.getExecutorMemoryStatus().size()) - 1  # without the driver
