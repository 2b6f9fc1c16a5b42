"""The version of the library that runs."""
from __future__ import annotations

from . import _native
from ._buffers import decode, text_buffer
from .errors import check

_VERSION_SIZE = 64


def sdk_version() -> str:
    """The running library's version text, such as "V4.2.0.2"."""
    text = text_buffer(_VERSION_SIZE)
    check(_native.library().GetSdkVersion(text, _VERSION_SIZE))
    return decode(text)
