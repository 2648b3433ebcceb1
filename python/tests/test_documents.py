"""What the documents show is run."""

from __future__ import annotations

import doctest
import re
import sys
from collections.abc import Callable
from pathlib import Path
from typing import Any

import duckdb
import polars
import pyarrow
import pytest

import mdfkit
from conftest import Make

README = Path(__file__).parents[1] / "README.md"

EXAMPLES: dict[str, Any] = {
    "mdfkit": mdfkit,
    "open": mdfkit.open,
    "Measurement": mdfkit.Measurement,
    "Measurement.read": mdfkit.Measurement.read,
    "Measurement.frames": mdfkit.Measurement.frames,
    "Measurement.decode": mdfkit.Measurement.decode,
    "Frames": mdfkit.Frames,
    "Query": mdfkit.Query,
    "Query.to_pandas": mdfkit.Query.to_pandas,
}


@pytest.fixture
def trip(make: Make, program: Callable[..., str], monkeypatch: pytest.MonkeyPatch) -> None:
    """Where the documents' files are: a minute at one sample a second, and a log of frames."""
    rows = "".join(
        f"2024-05-17T13:45:{i:02}+02:00,{i},{1000 + 10 * i},{i // 20}\n" for i in range(60)
    )
    path = make(engine="t,speed [km/h],rpm [1/min],gear\n" + rows)
    monkeypatch.chdir(path.parent)
    lines = (f"(1700000000.{i:06}) can0 123#{i:02X}00\n" for i in range(10))
    Path("can.log").write_text("".join(lines))
    program("import", "can.log", "-o", "log.mf4")
    Path("car.dbc").write_text(
        'BO_ 291 Engine: 2 ECU\n SG_ EngineSpeed : 0|16@1+ (1,0) [0|0] "rpm" ECU\n'
    )


@pytest.mark.usefixtures("trip")
def test_the_readme_begins_with_an_example_and_all_of_them_run() -> None:
    text, _, fleet = README.read_text(encoding="utf-8").partition("## A fleet")
    assert "spark.read" in fleet  # which test_spark.py runs
    assert "```python" in "\n".join(text.splitlines()[:10])
    count, scope = run_blocks(text)
    assert count == 7
    assert scope["q"].to_arrow().num_rows == 11
    assert sorted(each.name for each in Path("by_gear/0_engine").iterdir()) == [
        "gear=0",
        "gear=1",
        "gear=2",
    ]


@pytest.mark.usefixtures("trip")
def test_the_example_of_the_project_runs() -> None:
    page = (README.parents[1] / "README.md").read_text(encoding="utf-8")
    text, _, fleet = page.partition("A fleet's files are one table of Spark")
    count, scope = run_blocks(text)
    assert "spark.read" in fleet  # of which test_spark.py runs the like
    assert count == 1
    assert scope["frame"].shape == (50, 2)


def run_blocks(text: str, **scope: Any) -> tuple[int, dict[str, Any]]:
    """Run a page's examples one after another; how many, and what they leave."""
    blocks = re.findall(r"```python\n(.*?)```", text, flags=re.DOTALL)
    for block in blocks:
        exec(compile(block, "README.md", "exec"), scope)
    return len(blocks), scope


@pytest.mark.usefixtures("trip")
@pytest.mark.parametrize("name", EXAMPLES)
def test_the_examples_of_help_run(name: str, monkeypatch: pytest.MonkeyPatch) -> None:
    shown: list[str] = []
    monkeypatch.setattr(sys, "displayhook", lambda value: shown.append(repr(value)))
    m = mdfkit.open("trip.mf4")
    scope = {"m": m, "mdfkit": mdfkit, "duckdb": duckdb, "polars": polars, "pyarrow": pyarrow}
    scope["log"] = mdfkit.open("log.mf4")
    scope["q"] = m.read(["speed", "rpm"], start=10, stop=20)
    examples = doctest.DocTestParser().get_examples(EXAMPLES[name].__doc__)
    assert examples
    for example in examples:
        shown.clear()
        exec(compile(example.source, name, "single"), scope)
        if example.want:
            assert shown == [example.want.rstrip("\n")]
