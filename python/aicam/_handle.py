"""The device handle that every family of commands calls the library through."""
from __future__ import annotations

import ctypes
from typing import Any, Optional, Sequence, Tuple

from . import _native
from ._buffers import take_allocated
from .errors import Error, Result, check


class Handle:
    """Owns one handle of the library (``Init``) until ``release`` (``DeInit``)."""

    def __init__(self) -> None:
        self._dev: Optional[int] = _native.library().Init()
        if not self._dev:
            raise Error(Result.NO_HANDLE, detail="Init gave no handle")

    def _call(self, name: str, *args: Any, status_is_result: bool = False) -> int:
        """Calls the library's ``name`` with this handle first and checks its result.

        A negative result raises ``Error``; a positive one raises ``ModuleStatus``
        unless ``status_is_result``, for the commands that answer with a state.
        """
        result = self._call_unchecked(name, *args)
        if status_is_result and result > 0:
            return result
        return check(result)

    def _call_unchecked(self, name: str, *args: Any) -> int:
        """Calls the library's ``name`` with this handle first and returns its result as it is."""
        if self._dev is None:
            raise Error(Result.NO_HANDLE, detail="the module has been closed")
        return getattr(_native.library(), name)(self._dev, *args)

    def _call_reading(self, name: str, *inputs: Any, out: Sequence[type] = (ctypes.c_uint,)) -> Tuple[int, ...]:
        """Calls a command whose last arguments are output numbers of the C types
        ``out``, and returns their values in order."""
        values = [kind() for kind in out]
        self._call(name, *inputs, *(ctypes.byref(value) for value in values))
        return tuple(value.value for value in values)

    def _call_returning_image(self, name: str, *args: Any) -> bytes:
        """Calls a command that hands back a malloc'ed image through its last two
        arguments; the image is copied and freed whether the call succeeds or not."""
        image, length = ctypes.c_void_p(), ctypes.c_uint()
        try:
            self._call(name, *args, ctypes.byref(image), ctypes.byref(length))
        finally:
            picture = take_allocated(image, length)
        return picture

    def _release(self) -> None:
        """Disconnects the serial link and the camera and frees the handle (``DeInit``)."""
        dev, self._dev = self._dev, None
        if dev is not None:
            _native.library().DeInit(dev)
