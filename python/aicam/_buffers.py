"""Conversions between Python values and the C buffers the library reads and fills."""
from __future__ import annotations

import ctypes
import json
from typing import Any, Union

from . import _native

Text = Union[str, bytes]


def encode(value: Text) -> bytes:
    """A text argument as the library takes it: UTF-8 bytes, without a terminator."""
    return value.encode("utf-8") if isinstance(value, str) else bytes(value)


def text_buffer(size: int) -> ctypes.Array:
    """A zeroed buffer of size + 1 bytes: the library is given ``size``, so the text always ends in a zero."""
    return ctypes.create_string_buffer(size + 1)


def decode(buffer: ctypes.Array) -> str:
    """The text in a buffer up to its first zero byte (never past the buffer's end)."""
    return buffer.value.decode("utf-8", "replace")


def take_allocated(pointer: ctypes.c_void_p, length: ctypes.c_uint) -> bytes:
    """Copies, then frees, a buffer that a command allocated for its caller (null gives b"")."""
    try:
        return ctypes.string_at(pointer.value, length.value) if pointer.value and length.value else b""
    finally:
        _native.free(pointer.value)


def parse_json(text: str) -> Any:
    """The JSON value of ``text``, or None when the text is not JSON."""
    try:
        return json.loads(text)
    except ValueError:
        return None
