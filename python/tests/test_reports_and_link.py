"""Reports through callbacks and iterators, exceptions in callbacks, link events and counters."""
from __future__ import annotations

import logging
import threading

import pytest

import aicam
from aicam import ReportKind


def test_reports_reach_a_callback_and_an_iterator(module: aicam.Module) -> None:
    module.add_face("alice")
    module.open_auto_upload_ai_info(4, 1)        # recognition, image and feature reports
    seen = []
    arrived = threading.Event()

    def on_recognition(report: aicam.Report) -> None:
        seen.append(report)
        arrived.set()

    module.on_report(ReportKind.RECOGNITION, on_recognition)
    with module.reports(kinds=[ReportKind.TRACK, ReportKind.IMAGE], timeout=5) as stream:
        module.start_one_to_num_recognize()
        kinds = set()
        for report in stream:
            kinds.add(report.kind)
            if report.kind == ReportKind.IMAGE:
                header, picture = report.data.split(b"\0", 1)
                assert report.json["type"] == "image" and len(picture) == report.json["jpegLength"]
                assert picture[:2] == b"\xff\xd8"
            else:
                assert report.json["type"] == "track"
            if kinds == {ReportKind.TRACK, ReportKind.IMAGE}:
                break
    assert arrived.wait(5)
    assert seen[0].kind == ReportKind.RECOGNITION and seen[0].json["id"] == "alice"
    stats = module.link_stats()
    assert stats.reports[ReportKind.RECOGNITION] >= 1 and stats.image_acks >= 1
    assert stats.frames_sent >= 3 and stats.bytes_received > stats.frames_received > 0


def test_an_exception_in_a_callback_is_logged_and_reports_go_on(module: aicam.Module,
                                                                 caplog: pytest.LogCaptureFixture) -> None:
    calls = []

    def faulty(report: aicam.Report) -> None:
        calls.append(report)
        raise RuntimeError("a fault in the application")

    module.on_report(ReportKind.TRACK, faulty)
    with caplog.at_level(logging.ERROR, logger="aicam"):
        with module.reports(kinds=[ReportKind.TRACK], timeout=5) as stream:
            module.start_one_to_num_recognize()
            for _, _report in zip(range(3), stream):
                pass
        module.ping()                              # the listener thread still delivers answers
    assert len(calls) >= 2
    assert "the track report callback raised" in caplog.text and "a fault in the application" in caplog.text


def test_qr_reports_and_a_stream_ending_on_silence(module: aicam.Module) -> None:
    module.set_qr_code_switch(True, 1)
    stream = module.reports(kinds=[ReportKind.QRCODE], timeout=5)
    first = next(stream)
    assert first.json["text"].startswith("SIM-QR-")
    module.set_qr_code_switch(False, 1)
    stream.timeout = 0.5
    list(stream)                                   # ends once no report came for half a second
    with pytest.raises(StopIteration):
        next(stream)


def test_link_events(simulator, library_path: str) -> None:
    states = []
    module = aicam.Module(simulator.port)
    module.on_link_state(states.append)
    with module:
        module.ping()
        assert states == [aicam.LinkState.UP]
    assert states == [aicam.LinkState.UP, aicam.LinkState.CLOSED]


def test_link_lost_when_the_module_hangs_up(start_simulator) -> None:
    simulator = start_simulator("--unplug-after", "2")
    lost = threading.Event()
    with aicam.Module(simulator.port) as module:
        module.on_link_state(lambda state: state == aicam.LinkState.LOST and lost.set())
        module.ping()
        with pytest.raises(aicam.Error):
            module.ping()
            module.ping()
        assert lost.wait(5)
        with pytest.raises(aicam.Error) as after:
            module.ping()
        assert after.value.code == aicam.Result.REQUEST_FAILED
