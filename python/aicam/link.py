"""The serial link's state changes and its counters."""
from __future__ import annotations

import ctypes
import enum
from dataclasses import dataclass
from typing import Any, Callable, Dict, Optional

from . import _native
from ._callbacks import guarded
from ._handle import Handle
from .reports import ReportKind


class LinkState(enum.IntEnum):
    """What happened to the serial link."""

    UP = 1        #: the link runs
    LOST = 2      #: the module went away (hang-up, failed read or write)
    CLOSED = 3    #: the application disconnected


@dataclass(frozen=True)
class LinkStats:
    """Counters of the serial link since its last connect (all handles share one link)."""

    frames_sent: int
    bytes_sent: int
    frames_received: int
    bytes_received: int
    checksum_errors: int
    resyncs: int
    requests_timed_out: int
    late_answers: int
    reports: Dict[ReportKind, int]
    image_acks: int


LinkCallback = Callable[[LinkState], Any]


class Link(Handle):
    """Link events and statistics of a handle."""

    def __init__(self) -> None:
        super().__init__()
        self._link_callback: Optional[LinkCallback] = None
        self._link_function: Any = None

    def on_link_state(self, callback: Optional[LinkCallback]) -> None:
        """Calls ``callback(state)`` when the link this handle connects comes up, is lost or is closed
        (None stops it). UP and LOST come on the listener thread, CLOSED on the thread that closed
        the link. An exception it raises is logged on the ``aicam`` logger."""
        self._link_callback = callback
        if self._link_function is None:
            def trampoline(state: int, _user: Any) -> None:
                current = self._link_callback
                if current is not None:
                    guarded("link state", current, LinkState(state))

            self._link_function = _native.LINK_STATE_FUNC(trampoline)
            self._call("RegisterLinkStateCb", self._link_function, None)

    def link_stats(self) -> LinkStats:
        """The link's counters now."""
        record = _native.LinkStatsRecord()
        self._call("GetLinkStats", ctypes.byref(record))
        return LinkStats(record.framesSent, record.bytesSent, record.framesReceived, record.bytesReceived,
                         record.checksumErrors, record.resyncs, record.requestsTimedOut, record.lateAnswers,
                         {kind: record.reports[kind] for kind in ReportKind}, record.imageAcks)
