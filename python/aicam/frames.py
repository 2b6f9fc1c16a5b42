"""The camera: connecting a video node or a recording, and taking its pictures as NumPy arrays."""
from __future__ import annotations

import os
from ctypes import c_int
from typing import Any, Iterator, NamedTuple, Tuple, Union

import numpy as np

from ._buffers import decode, parse_json, text_buffer
from ._handle import Handle
from .errors import Error, Result

_SIDE_TEXT_SIZE = 4096           # the module's side text is at most 1 KiB
_LONGEST_WAIT_MS = 2**31 - 1


class Frame(NamedTuple):
    """One picture: ``image`` is uint8 of shape (height, width, 4) in BGRA order,
    ``side_text`` the text the module embeds in it, ``side_json`` its JSON value
    (None when the text is not JSON)."""

    image: np.ndarray
    side_text: str
    side_json: Any


def milliseconds(seconds: float) -> int:
    """A timeout in seconds as the library's milliseconds (a negative one stays negative, and is refused)."""
    return max(-1, min(_LONGEST_WAIT_MS, int(round(seconds * 1000))))


class Camera(Handle):
    """The handle's camera: a UVC node or a played MJPEG stream, behind the same frame calls."""

    def connect_camera(self, node: Union[str, "os.PathLike[str]"]) -> None:
        """Opens the video node (such as "/dev/video0") and starts capturing; waits up to 5 s for a picture."""
        self._call("ConnectCamera", os.fsencode(node))

    def connect_camera_playback(self, path: Union[str, "os.PathLike[str]"]) -> None:
        """Plays an MJPEG file or FIFO as the camera, with each picture's side text."""
        self._call("ConnectCameraPlayback", os.fsencode(path))

    def disconnect_camera(self) -> None:
        """Stops capturing."""
        self._call("DisconnectCamera")

    def get_resolution(self) -> Tuple[int, int]:
        """The pictures' (width, height)."""
        width, height = self._call_reading("GetResolution", out=(c_int, c_int))
        return width, height

    def _take(self, name: str, *wait: int) -> Frame:
        width, height = self.get_resolution()
        if width <= 0 or height <= 0 or width * height * 4 > _LONGEST_WAIT_MS:
            raise Error(Result.VIDEO_UNAVAILABLE, detail=f"the camera reports a size of {width}x{height}")
        image = np.empty((height, width, 4), dtype=np.uint8)
        side = text_buffer(_SIDE_TEXT_SIZE)
        self._call(name, image.ctypes.data, image.nbytes, side, _SIDE_TEXT_SIZE, *wait)
        text = decode(side)
        return Frame(image, text, parse_json(text))

    def get_frame(self) -> Frame:
        """The latest picture, without waiting: ``Error`` -11 when there is none newer than the last one."""
        return self._take("GetFrame")

    def frame(self, timeout: float = 2.0) -> Frame:
        """The next picture, waiting up to ``timeout`` seconds for it (``Error`` -11 when none came)."""
        return self._take("WaitFrame", milliseconds(timeout))

    def frames(self, timeout: float = 2.0) -> Iterator[Frame]:
        """Every new picture in turn, until none came within ``timeout`` seconds (a recording has
        ended, or the camera stalled); ``Error`` -10 when the stream is gone (unplugged)."""
        while True:
            try:
                picture = self.frame(timeout)
            except Error as error:
                if error.code == Result.NO_NEW_PICTURE:
                    return
                raise
            yield picture
