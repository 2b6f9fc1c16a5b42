"""The one-call firmware upgrade: progress, cancel, refusal, the package from a file."""
from __future__ import annotations

import hashlib
import os
from pathlib import Path

import pytest

import aicam

_PACKAGE = os.urandom(10_000)


def test_upgrade_with_progress(module: aicam.Module) -> None:
    progress = []
    module.upgrade_firmware(_PACKAGE, slice_size=4096, md5=hashlib.md5(_PACKAGE).hexdigest(),
                            progress=lambda sent, total, retries: progress.append((sent, total, retries)))
    assert progress == [(0, 10_000, 0), (4096, 10_000, 0), (8192, 10_000, 0), (10_000, 10_000, 0)]


def test_upgrade_from_a_file_and_the_step_by_step_commands(module: aicam.Module, scratch: Path) -> None:
    package = scratch / "firmware.bin"
    package.write_bytes(_PACKAGE)
    module.upgrade_firmware(package)               # the hash computed by the library
    module.upload_package_slice(0, _PACKAGE)
    module.apply_upgrade(hashlib.md5(_PACKAGE).hexdigest())
    with pytest.raises(aicam.Error) as unreadable:
        module.upgrade_firmware(scratch / "missing.bin")
    assert unreadable.value.code == aicam.Result.FILE_UNREADABLE


def test_upgrade_refused_with_the_modules_text(module: aicam.Module) -> None:
    with pytest.raises(aicam.ModuleStatus) as refused:
        module.upgrade_firmware(_PACKAGE, md5="0" * 32)
    assert refused.value.status == 0x32
    assert refused.value.detail and refused.value.detail in str(refused.value)


def test_upgrade_cancelled_by_the_callback(module: aicam.Module) -> None:
    seen = []

    def stop_after_one_slice(sent: int, total: int, retries: int) -> bool:
        seen.append(sent)
        return sent > 0

    with pytest.raises(aicam.Error) as cancelled:
        module.upgrade_firmware(_PACKAGE, progress=stop_after_one_slice)
    assert cancelled.value.code == aicam.Result.UPGRADE_CANCELLED and seen == [0, 4096]


def test_an_exception_in_the_progress_callback_cancels_and_is_raised(module: aicam.Module) -> None:
    def broken(sent: int, total: int, retries: int) -> None:
        raise ValueError("progress display failed")

    with pytest.raises(ValueError, match="progress display failed"):
        module.upgrade_firmware(_PACKAGE, progress=broken)
    module.ping()
