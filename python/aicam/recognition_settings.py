"""The recognition settings: configuration text, counts, template updating."""
from __future__ import annotations

from ctypes import c_ubyte
from typing import Tuple

from ._buffers import Text, decode, encode, text_buffer
from ._handle import Handle

_CONFIG_TEXT_SIZE = 65536


class RecognitionSettings(Handle):
    """How the module recognises: its configuration text and its counts."""

    def set_rec_config(self, config: Text, config_type: int = 0) -> None:
        """Sets the recognition configuration text (``config_type`` must be 0)."""
        text = encode(config)
        self._call("SetRecConfig", text, len(text), config_type)

    def get_rec_config(self, config_type: int = 0) -> str:
        """The recognition configuration text."""
        text = text_buffer(_CONFIG_TEXT_SIZE)
        self._call("GetRecConfig", text, _CONFIG_TEXT_SIZE, config_type)
        return decode(text)

    def set_recognize_count(self, rec_count: int, living_count: int) -> None:
        """Sets the recognition and liveness counts, each 1..10."""
        self._call("SetRecognizeCount", rec_count, living_count)

    def get_recognize_count(self) -> Tuple[int, int]:
        """The recognition and liveness counts."""
        rec, living = self._call_reading("GetRecognizeCount", out=(c_ubyte, c_ubyte))
        return rec, living

    def set_template_update(self, enabled: bool) -> None:
        """Turns template updating on or off."""
        self._call("SetTemplateUpdate", int(enabled))

    def get_template_update(self) -> bool:
        """Whether template updating is on (a status of 128 or more arrives as a negative ``Error`` code)."""
        return bool(self._call_reading("GetTemplateUpdate", out=(c_ubyte,))[0])
