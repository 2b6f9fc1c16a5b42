"""pip install into a venv that sees Debian's packages, then both examples on the installed package."""
from __future__ import annotations

import os
import shutil
import struct
import subprocess
import sys
import zlib
from pathlib import Path

import pytest

_SOURCE = Path(__file__).resolve().parent.parent


@pytest.fixture(scope="module")
def venv_python(scratch_root: Path) -> Path:
    """A venv with the package installed as CI installs it: no index, no build isolation."""
    source = scratch_root / "source"
    shutil.copytree(_SOURCE, source, ignore=shutil.ignore_patterns("tests", "__pycache__", "build", "*.egg-info"))
    venv = scratch_root / "venv"
    subprocess.run([sys.executable, "-m", "venv", "--system-site-packages", str(venv)], check=True)
    python = venv / "bin" / "python"
    subprocess.run([str(python), "-m", "pip", "install", "-q", "--no-build-isolation", "--no-index", str(source)],
                   check=True, env=_clean_environment())
    return python


def _clean_environment(**extra: str) -> dict:
    environment = {key: value for key, value in os.environ.items() if key != "PYTHONPATH"}
    environment.update(extra)
    return environment


def _run(python: Path, example: str, *args: str, library: str, cwd: Path) -> str:
    done = subprocess.run([str(python), str(_SOURCE / "examples" / example), *args], cwd=cwd, text=True,
                          capture_output=True, timeout=120, env=_clean_environment(AICAM_LIBRARY=library))
    assert done.returncode == 0, done.stdout + done.stderr
    return done.stdout


def test_the_installed_package_is_used(venv_python: Path, scratch: Path, library_path: str) -> None:
    where = subprocess.run([str(venv_python), "-c", "import aicam; print(aicam.__file__, aicam.sdk_version())"],
                           cwd=scratch, text=True, capture_output=True, check=True,
                           env=_clean_environment(AICAM_LIBRARY=library_path)).stdout
    assert "site-packages/aicam/__init__.py" in where and str(_SOURCE) not in where


def test_enrol_and_recognise_example(venv_python: Path, simulator, library_path: str, scratch: Path) -> None:
    out = _run(venv_python, "enrol_and_recognise.py", str(simulator.port), "alice", "bob", library=library_path,
               cwd=scratch)
    lines = out.splitlines()
    assert lines[0] == "enrolled alice, bob; the module holds 2 faces"
    assert len(lines) == 4 and all(line.startswith("recognised alice (score 0.") or
                                   line.startswith("recognised bob (score 0.") for line in lines[1:])


def test_snapshot_example(venv_python: Path, start_simulator, library_path: str, scratch: Path) -> None:
    simulator = start_simulator("--video", str(scratch / "video.fifo"), "--fifo", "--size", "96x64")
    shot = scratch / "shot.png"
    out = _run(venv_python, "snapshot.py", "--playback", str(simulator.video), str(shot), library=library_path,
               cwd=scratch)
    assert out.splitlines()[0] == f"snapshot: {shot} (96x64)"
    assert out.splitlines()[1].startswith('side text: {"frame":')
    png = shot.read_bytes()
    assert png[:8] == b"\x89PNG\r\n\x1a\n" and png[12:16] == b"IHDR"
    assert struct.unpack(">II", png[16:24]) == (96, 64)
    idat = png.index(b"IDAT")
    length = struct.unpack(">I", png[idat - 4:idat])[0]
    assert len(zlib.decompress(png[idat + 4:idat + 4 + length])) == 64 * (1 + 96 * 4)


def test_readme_example(venv_python: Path, start_simulator, library_path: str, scratch: Path) -> None:
    """The README's Python example, run as printed with the simulator's port and video in place of the module's."""
    readme = (_SOURCE.parent / "README.md").read_text()
    block = readme.split("## Python", 1)[1].split("```python\n", 1)[1].split("```", 1)[0]
    simulator = start_simulator("--video", str(scratch / "video.fifo"), "--fifo", "--size", "96x64",
                                "--report-interval", "100")
    program = block.replace('"/dev/ttyACM0", video="/dev/video0"',
                            f'"{simulator.port}", playback="{simulator.video}"')
    assert program != block, "the README's example no longer opens /dev/ttyACM0 and /dev/video0"
    done = subprocess.run([str(venv_python), "-c", program], cwd=scratch, text=True, capture_output=True,
                          timeout=120, env=_clean_environment(AICAM_LIBRARY=library_path))
    assert done.returncode == 0, done.stdout + done.stderr
    lines = done.stdout.splitlines()
    assert len(lines) == 3, lines
    assert lines[1] == "recognised alice"
    assert lines[2].startswith("(64, 96, 4) {")
