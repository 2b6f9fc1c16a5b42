"""The context manager, closing, the version, the log configuration."""
from __future__ import annotations

from pathlib import Path

import pytest

import aicam


def test_context_manager_releases_when_the_body_raises(simulator) -> None:
    states = []
    module = aicam.Module(simulator.port)
    module.on_link_state(states.append)
    stream = None
    with pytest.raises(KeyError):
        with module:
            stream = module.reports(timeout=None)  # would wait for ever, unless the close ends it
            module.ping()
            raise KeyError("the body fails")
    assert module.closed and states[-1] == aicam.LinkState.CLOSED
    assert list(stream) == []
    with pytest.raises(aicam.Error) as closed:
        module.ping()
    assert closed.value.code == aicam.Result.NO_HANDLE
    module.close()                                 # a second close does nothing
    with aicam.Module(simulator.port) as again:    # the link was let go: a new handle connects
        again.ping()


def test_a_failed_connect_on_entry_releases_the_handle(scratch: Path, library_path: str) -> None:
    module = aicam.Module(scratch / "no-port")
    with pytest.raises(aicam.Error):
        module.__enter__()
    assert module.closed


def test_version_matches_the_library(library_path: str) -> None:
    assert aicam.sdk_version() == "V" + aicam.__version__


def test_log_configuration(module: aicam.Module, scratch: Path) -> None:
    directory = scratch / "logs" / "deep"
    aicam.set_log_directory(directory)
    aicam.set_log_config(aicam.LogLevel.DEBUG, aicam.LogTarget.FILE)
    try:
        assert aicam.get_log_config() == (aicam.LogLevel.DEBUG, aicam.LogTarget.FILE)
        module.ping("logged")
    finally:
        aicam.set_log_config(aicam.LogLevel.OFF, aicam.LogTarget.CONSOLE)
    logs = list(directory.glob("*.log"))
    assert len(logs) == 1 and "Ping" in logs[0].read_text(errors="replace")
    with pytest.raises(aicam.Error) as refused:
        aicam.set_log_config(7, aicam.LogTarget.FILE)
    assert refused.value.code == aicam.Result.INVALID_ARGUMENT
    blocker = scratch / "a-file"
    blocker.write_text("")
    with pytest.raises(aicam.Error) as unusable:
        aicam.set_log_directory(blocker / "below")
    assert unusable.value.code == aicam.Result.LOG_DIRECTORY_UNUSABLE
