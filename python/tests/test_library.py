"""The declarations, and where the library is found."""

from __future__ import annotations

import os
import re
import subprocess
import sys
from pathlib import Path

import mdfkit
from conftest import stated
from mdfkit import _library


def declarations(header: str) -> list[str]:
    """What a header declares, without comments, directives and the language's own brackets."""
    text = re.sub(r"/\*.*?\*/", "", header, flags=re.DOTALL)
    text = re.sub(r"^#.*$", "", text, flags=re.MULTILINE)
    text = text.replace('extern "C" {', "").strip().removesuffix("}")
    text = re.sub(r"\s+", " ", text)
    return sorted(each.strip() for each in re.findall(r"[^;{]+(?:\{[^}]*\})?;", text))


def test_the_declarations_are_those_of_the_header() -> None:
    header = Path(stated("MDF_C_HEADER")).read_text(encoding="utf-8")
    assert declarations(_library.DECLARATIONS) == declarations(header)
    assert len(declarations(header)) == 16


def python(code: str, library: str, folder: Path) -> subprocess.CompletedProcess[str]:
    """Run Python where no package lies beside, with another library."""
    environment = {**os.environ, "MDFKIT_LIBRARY": library}
    command = [sys.executable, "-c", code]
    return subprocess.run(
        command, env=environment, cwd=folder, check=False, capture_output=True, text=True
    )


def test_the_library_is_that_of_the_package_unless_another_is_named(tmp_path: Path) -> None:
    assert _library.library_path().name == "libmdf_reader.so"
    code = "import mdfkit._library as l; print(l.library_path())"
    done = python(code, "/other/library.so", tmp_path)
    assert done.stdout == "/other/library.so\n"


def test_a_library_that_is_missing_is_named_with_what_to_do(tmp_path: Path) -> None:
    done = python("import mdfkit; mdfkit.open('a.mf4')", "/nowhere/library.so", tmp_path)
    assert done.returncode == 1
    last = done.stderr.strip().splitlines()[-1]
    assert last.startswith("ImportError: cannot load /nowhere/library.so: ")
    assert last.endswith("that you have built by the environment variable MDFKIT_LIBRARY")


def test_the_package_says_its_types_and_teaches() -> None:
    folder = Path(mdfkit.__file__).parent
    assert (folder / "py.typed").exists()
    for name in mdfkit.__all__:
        text = getattr(mdfkit, name).__doc__
        assert text, name
        assert len(text.splitlines()[0]) > 20, name


def test_the_libraries_that_are_loaded_are_those_of_the_wheel(engine: mdfkit.Measurement) -> None:
    assert engine.read().to_arrow().num_rows == 4
    maps = Path("/proc/self/maps").read_text()
    loaded = set(re.findall(r"(/\S*/lib(?:mdf_reader|pugixml|deflate|muparser)\S*)", maps))
    reader, *others = sorted(loaded, key=lambda path: "mdf_reader" not in path)
    assert Path(reader) == _library.library_path().resolve()
    assert {Path(path).parent for path in others} == {Path(stated("MDF_LIBRARIES")).resolve()}
    assert len(others) == 3


def test_licences_come_with_the_libraries_of_the_wheel() -> None:
    libraries = Path(stated("MDF_LIBRARIES"))
    names = {re.sub("[^a-z].*", "", each.name) for each in libraries.iterdir()}
    assert names == {"libdeflate", "libgomp", "libmd", "libmuparser", "libpugixml"}
    folder = Path(mdfkit.__file__).parent / "licenses"
    assert {each.stem for each in folder.iterdir()} == names
    for each in folder.iterdir():
        assert "Copyright" in each.read_text(encoding="utf-8"), each
