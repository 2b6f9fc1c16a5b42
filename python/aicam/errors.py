"""The library's result codes as Python exceptions."""
from __future__ import annotations

import enum
from typing import Optional

from . import _native


class Result(enum.IntEnum):
    """The library's negative result codes (0 is success)."""

    NO_HANDLE = -1              #: null handle, no camera, or a link that is not connected
    PORT_UNAVAILABLE = -2       #: the serial port could not be opened
    INVALID_ARGUMENT = -4
    BAD_LOG_CONFIG = -5
    REQUEST_FAILED = -6         #: no link, the send failed, or no answer in time
    UNUSABLE_ANSWER = -7
    WRONG_LENGTH = -8
    HANDLER_EXISTS = -9
    VIDEO_UNAVAILABLE = -10     #: the stream could not be opened, or is gone
    NO_NEW_PICTURE = -11        #: no new picture (within the wait)
    LOG_DIRECTORY_UNUSABLE = -12
    UPGRADE_CANCELLED = -13
    FILE_UNREADABLE = -14


def result_text(code: int) -> str:
    """The library's short English text for a result code (``GetResultText``)."""
    text = _native.library().GetResultText(code)
    return text.decode("utf-8", "replace") if text else "unknown result code"


class Error(Exception):
    """A call of the library failed: ``code`` is its result, ``text`` the library's words for it."""

    def __init__(self, code: int, text: Optional[str] = None, detail: str = "") -> None:
        self.code = code
        self.text = text if text is not None else result_text(code)
        self.detail = detail
        super().__init__(f"{self._headline()}: {detail}" if detail else self._headline())

    def _headline(self) -> str:
        return f"{self.text} ({self.code})"


class ModuleStatus(Error):
    """The module refused a request with its own non-zero status byte, ``status`` (1..255)."""

    def __init__(self, status: int, detail: str = "") -> None:
        self.status = status
        super().__init__(status, detail=detail)

    def _headline(self) -> str:
        return self.text   # "module status N" already names the status


def check(result: int, detail: str = "") -> int:
    """Returns a result of 0; raises ``Error`` for a negative one, ``ModuleStatus`` for a positive one."""
    if result < 0:
        raise Error(result, detail=detail)
    if result > 0:
        raise ModuleStatus(result, detail=detail)
    return result
