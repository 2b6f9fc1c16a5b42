"""The module's reports: recognition, track, image, feature and QR code, to callbacks or an iterator."""
from __future__ import annotations

import ctypes
import enum
import queue
import threading
from dataclasses import dataclass
from typing import Any, Callable, Dict, Iterable, List, Optional

from . import _native
from ._buffers import parse_json
from ._callbacks import guarded
from ._handle import Handle


class ReportKind(enum.IntEnum):
    """The five kinds of report (the indexes of ``LinkStats.reports``)."""

    RECOGNITION = 0
    TRACK = 1
    IMAGE = 2
    FEATURE = 3
    QRCODE = 4


_REGISTRATION = {
    ReportKind.RECOGNITION: "RegisterRecoReportCbEx",
    ReportKind.TRACK: "RegisterTrackReportCbEx",
    ReportKind.IMAGE: "RegisterImageReportCbEx",
    ReportKind.FEATURE: "RegisterFeatureReportCbEx",
    ReportKind.QRCODE: "RegisterQRCodeReportCbEx",
}


@dataclass(frozen=True)
class Report:
    """One report: its kind and its bytes as the module sent them."""

    kind: ReportKind
    data: bytes

    @property
    def text(self) -> str:
        """The report's text, up to its first zero byte (an image report's picture follows that byte)."""
        return self.data.split(b"\0", 1)[0].decode("utf-8", "replace")

    @property
    def json(self) -> Any:
        """The JSON value of ``text``, or None when it is not JSON."""
        return parse_json(self.text)


ReportCallback = Callable[[Report], Any]
_END = object()   # put into a stream's queue when its module closes


class ReportStream:
    """An iterator over the reports of some kinds, from the moment it was made.

    Iteration ends when no report came within its timeout or when the module
    closes. ``close()`` (or leaving a ``with`` block) stops listening. When more
    than ``capacity`` reports wait unread, newer ones are dropped and counted in
    ``dropped``.
    """

    def __init__(self, owner: "Reports", kinds: Iterable[ReportKind], timeout: Optional[float],
                 capacity: int) -> None:
        self.kinds = frozenset(ReportKind(kind) for kind in kinds)
        self.timeout = timeout
        self.dropped = 0
        self._queue: "queue.Queue[Any]" = queue.Queue(capacity)
        self._owner: Optional[Reports] = owner

    def _offer(self, item: Any) -> None:
        try:
            self._queue.put_nowait(item)
        except queue.Full:
            self.dropped += 1

    def __iter__(self) -> "ReportStream":
        return self

    def __next__(self) -> Report:
        if self._owner is None:
            raise StopIteration
        try:
            item = self._queue.get(timeout=self.timeout)
        except queue.Empty:
            item = _END
        if item is _END:
            self.close()
            raise StopIteration
        return item

    def close(self) -> None:
        """Stops listening; reports already queued are dropped."""
        owner, self._owner = self._owner, None
        if owner is not None:
            owner._unsubscribe(self)

    def __enter__(self) -> "ReportStream":
        return self

    def __exit__(self, *exc: Any) -> None:
        self.close()


class Reports(Handle):
    """Report callbacks and report streams of a handle."""

    def __init__(self) -> None:
        super().__init__()
        self._report_lock = threading.Lock()
        self._report_callbacks: Dict[ReportKind, ReportCallback] = {}
        self._report_streams: List[ReportStream] = []
        # The C trampolines stay alive as long as the handle object, even after a
        # close, since the listener thread may be inside one while it closes.
        self._report_functions: Dict[ReportKind, Any] = {}

    def on_report(self, kind: ReportKind, callback: Optional[ReportCallback]) -> None:
        """Calls ``callback(report)`` for each report of ``kind`` (None stops it).

        It runs on the library's listener thread: return quickly, and call no
        command of the module from it. An exception it raises is logged on the
        ``aicam`` logger.
        """
        kind = ReportKind(kind)
        with self._report_lock:
            if callback is None:
                self._report_callbacks.pop(kind, None)
            else:
                self._report_callbacks[kind] = callback
        if callback is not None:
            self._listen(kind)

    def reports(self, kinds: Iterable[ReportKind] = tuple(ReportKind), timeout: Optional[float] = None,
                capacity: int = 1024) -> ReportStream:
        """Reports of ``kinds`` as an iterator, until none came for ``timeout`` seconds (None: wait on)."""
        stream = ReportStream(self, kinds, timeout, capacity)
        with self._report_lock:
            self._report_streams.append(stream)
        for kind in stream.kinds:
            self._listen(kind)
        return stream

    def _unsubscribe(self, stream: ReportStream) -> None:
        with self._report_lock:
            if stream in self._report_streams:
                self._report_streams.remove(stream)

    def _end_report_streams(self) -> None:
        with self._report_lock:
            streams, self._report_streams = self._report_streams, []
        for stream in streams:
            stream._offer(_END)

    def _listen(self, kind: ReportKind) -> None:
        """Registers the C trampoline of ``kind`` once."""
        with self._report_lock:
            if kind in self._report_functions:
                return

            def trampoline(data: Any, length: int, _user: Any) -> None:
                self._deliver(Report(kind, ctypes.string_at(data, length) if data and length > 0 else b""))

            function = _native.REPORT_FUNC(trampoline)
            self._report_functions[kind] = function
        self._call(_REGISTRATION[kind], function, None)

    def _deliver(self, report: Report) -> None:
        with self._report_lock:
            callback = self._report_callbacks.get(report.kind)
            streams = [stream for stream in self._report_streams if report.kind in stream.kinds]
        for stream in streams:
            stream._offer(report)
        if callback is not None:
            guarded(f"{report.kind.name.lower()} report", callback, report)
