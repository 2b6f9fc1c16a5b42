"""The firmware upgrade in one call, with a progress callback that may cancel it."""
from __future__ import annotations

import ctypes
import os
from typing import Any, Callable, Optional, Union

from . import _native
from ._buffers import decode, encode, text_buffer
from ._callbacks import log
from ._handle import Handle
from .errors import check

# progress(sent, total, retries): a true result cancels the upgrade.
Progress = Callable[[int, int, int], Any]
_ERROR_TEXT_SIZE = 1024


class Upgrade(Handle):
    """``upgrade_firmware``: slices, resends, the MD5 check and the apply, in one call."""

    def upgrade_firmware(self, package: Union[bytes, str, "os.PathLike[str]"], slice_size: int = 4096,
                         md5: Optional[str] = None, progress: Optional[Progress] = None) -> None:
        """Sends the firmware ``package`` (bytes, or the path of its file) and has the module apply it.

        ``md5`` is the hash published with the package (computed from it when
        None). ``progress(sent, total, retries)`` is called on this thread before
        the first slice and after each one; returning a true value cancels the
        upgrade (``Error`` -13). An exception it raises cancels the upgrade too
        and is raised again from here. A refusal raises ``ModuleStatus`` whose
        ``detail`` is the module's explanation.
        """
        raised: list = []

        def report(sent: int, total: int, retries: int, _user: Any) -> int:
            if raised:
                return 1
            try:
                return 1 if progress is not None and progress(sent, total, retries) else 0
            except BaseException as error:  # carried across the C call, raised again below
                log.debug("the upgrade's progress callback raised; cancelling")
                raised.append(error)
                return 1

        function = _native.UPGRADE_PROGRESS(report)
        digest = encode(md5) if md5 else None
        status = ctypes.c_int(-1)
        error_text = text_buffer(_ERROR_TEXT_SIZE)
        tail = (digest, function, None, ctypes.byref(status), error_text, _ERROR_TEXT_SIZE)
        if isinstance(package, (bytes, bytearray, memoryview)):
            data = bytes(package)
            result = self._call_unchecked("UpgradeFirmware", data, len(data), slice_size, *tail)
        else:
            result = self._call_unchecked("UpgradeFirmwareFromFile", os.fsencode(package), slice_size, *tail)
        if raised:
            raise raised[0]
        check(result, detail=decode(error_text))
