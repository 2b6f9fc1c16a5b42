"""Fixtures: the library built in the same tree, aicam-sim on a pseudo-terminal, a scratch directory.

CTest passes --library, --simulator and --scratch; by hand, the AICAM_LIBRARY,
AICAM_SIM and AICAM_SCRATCH environment variables do the same.
"""
from __future__ import annotations

import os
import signal
import subprocess
import tempfile
import time
from pathlib import Path
from typing import Iterator, List, Optional

import pytest

import aicam


def pytest_addoption(parser: pytest.Parser) -> None:
    parser.addoption("--library", default=os.environ.get("AICAM_LIBRARY"), help="libai_camera.so.4 to test")
    parser.addoption("--simulator", default=os.environ.get("AICAM_SIM"), help="the aicam-sim program")
    parser.addoption("--scratch", default=os.environ.get("AICAM_SCRATCH"), help="a directory for scratch files")


@pytest.fixture(scope="session")
def library_path(pytestconfig: pytest.Config) -> str:
    path = pytestconfig.getoption("--library")
    if not path:
        pytest.fail("give --library (or AICAM_LIBRARY): the libai_camera.so.4 to test")
    path = os.path.abspath(path)
    aicam.load_library(path)
    return path


@pytest.fixture(scope="session")
def scratch_root(pytestconfig: pytest.Config) -> Path:
    root = pytestconfig.getoption("--scratch")
    if root:
        Path(root).mkdir(parents=True, exist_ok=True)
    return Path(tempfile.mkdtemp(prefix="aicam-py-", dir=root))


@pytest.fixture
def scratch(scratch_root: Path, request: pytest.FixtureRequest) -> Path:
    path = scratch_root / request.node.name.replace("[", "-").replace("]", "")
    path.mkdir()
    return path


class Simulator:
    """aicam-sim serving a pseudo-terminal linked at ``port``; its video, when asked for, at ``video``."""

    def __init__(self, program: str, directory: Path, options: List[str]) -> None:
        self.port = directory / "ttyACM-sim"
        self.video: Optional[Path] = None
        arguments = [program, "--link", str(self.port)] + options
        if "--video" in options:
            self.video = Path(options[options.index("--video") + 1])
        self.errors = directory / "sim.err"
        with open(directory / "sim.out", "wb") as out, open(self.errors, "wb") as err:
            self.process = subprocess.Popen(arguments, stdout=out, stderr=err)
        deadline = time.monotonic() + 10
        while not self.port.exists():
            if self.process.poll() is not None or time.monotonic() > deadline:
                raise RuntimeError(f"aicam-sim did not start: {self.errors.read_text()}")
            time.sleep(0.05)

    def stop(self) -> None:
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
            self.process.wait(10)


@pytest.fixture
def simulator_program(pytestconfig: pytest.Config) -> str:
    program = pytestconfig.getoption("--simulator")
    if not program:
        pytest.fail("give --simulator (or AICAM_SIM): the aicam-sim program")
    return str(program)


@pytest.fixture
def start_simulator(simulator_program: str, scratch: Path, library_path: str) -> Iterator:
    """start_simulator(*options) starts aicam-sim in the test's scratch directory."""
    started: List[Simulator] = []

    def start(*options: str) -> Simulator:
        started.append(Simulator(simulator_program, scratch, list(options)))
        return started[-1]

    yield start
    for simulator in started:
        simulator.stop()


@pytest.fixture
def simulator(start_simulator) -> Simulator:
    return start_simulator("--report-interval", "100")


@pytest.fixture
def module(simulator: Simulator) -> Iterator[aicam.Module]:
    """A module connected to a fresh simulator, with an empty face library."""
    with aicam.Module(simulator.port) as connected:
        yield connected
