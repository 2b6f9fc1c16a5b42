"""The library's trace log: level, target and directory (one setting for the whole process)."""
from __future__ import annotations

import enum
import os
from ctypes import byref, c_int
from typing import Tuple, Union

from . import _native
from .errors import check


class LogLevel(enum.IntEnum):
    """A record is written when the configured level is at most its own; OFF writes none."""

    TRACE = 0
    DEBUG = 1
    INFO = 2
    WARN = 3
    ERROR = 4
    FATAL = 5
    OFF = 6


class LogTarget(enum.IntEnum):
    """Where the records go: the console, the daily files, or both."""

    CONSOLE = 0
    FILE = 1
    CONSOLE_FILE = 2


def set_log_config(level: LogLevel, target: LogTarget = LogTarget.FILE) -> None:
    """Sets the trace log's level and target; call it before starting threads that use the library."""
    check(_native.library().SetLogConfig(int(level), int(target)))


def get_log_config() -> Tuple[LogLevel, LogTarget]:
    """The trace log's level and target."""
    level, target = c_int(), c_int()
    check(_native.library().GetLogConfig(byref(level), byref(target)))
    return LogLevel(level.value), LogTarget(target.value)


def set_log_directory(path: Union[str, "os.PathLike[str]"]) -> None:
    """Sets the directory of the daily log files, made with its parents if missing (``Error`` -12
    when it cannot be made or written: it is still used)."""
    check(_native.library().SetLogDirectory(os.fsencode(path)))
