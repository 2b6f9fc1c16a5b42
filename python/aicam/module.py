"""``Module``: one handle of the library, with every command of the module."""
from __future__ import annotations

import os
from typing import Any, Optional, Union

from .camera_settings import CameraSettings
from .device_commands import DeviceCommands
from .face_commands import FaceCommands
from .frames import Camera
from .link import Link
from .recognition_commands import RecognitionCommands
from .recognition_settings import RecognitionSettings
from .reports import Reports
from .upgrade import Upgrade

PathText = Union[str, "os.PathLike[str]"]


class Module(Camera, Reports, Link, Upgrade, FaceCommands, RecognitionCommands, RecognitionSettings,
             DeviceCommands, CameraSettings):
    """A camera module driven through one handle of the library.

    As a context manager it connects on entry (the serial ``port``, then the
    camera ``video`` node or the MJPEG ``playback`` file, those given) and on
    exit, also when the body raised, disconnects both and releases the handle::

        with aicam.Module("/dev/ttyACM0", video="/dev/video0") as module:
            print(module.get_device_version())

    Every command raises ``aicam.Error`` for a failure of the library and
    ``aicam.ModuleStatus`` for the module's refusal. All handles of a process
    share one serial link and one camera.
    """

    def __init__(self, port: Optional[PathText] = None, video: Optional[PathText] = None,
                 playback: Optional[PathText] = None) -> None:
        if video is not None and playback is not None:
            raise ValueError("give a video node or a playback file, not both")
        super().__init__()
        self.port, self.video, self.playback = port, video, playback

    def connect_serial(self, port: PathText) -> None:
        """Opens the serial link (such as "/dev/ttyACM0"); ``Error`` -2 when the port cannot be opened."""
        self._call("ConnectSerial", os.fsencode(port))

    def disconnect_serial(self) -> None:
        """Closes the serial link."""
        self._call("DisconnectSerial")

    def open(self) -> "Module":
        """Connects what the constructor was given; on a failure, releases the handle and raises."""
        try:
            if self.port is not None:
                self.connect_serial(self.port)
            if self.video is not None:
                self.connect_camera(self.video)
            if self.playback is not None:
                self.connect_camera_playback(self.playback)
        except BaseException:
            self.close()
            raise
        return self

    def close(self) -> None:
        """Disconnects the link and the camera and releases the handle; later calls raise ``Error`` -1.
        Report iterators end. Closing twice does nothing."""
        self._release()
        self._end_report_streams()

    @property
    def closed(self) -> bool:
        """Whether the handle has been released."""
        return self._dev is None

    def __enter__(self) -> "Module":
        return self.open()

    def __exit__(self, *exc: Any) -> None:
        self.close()

    def __del__(self) -> None:
        # A module left open is released when collected; at interpreter exit the
        # library may already be gone, and there is nobody to tell.
        if getattr(self, "_dev", None) is not None:
            try:
                self.close()
            except Exception:
                pass
