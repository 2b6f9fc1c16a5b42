"""The module's camera and sensor settings, and its automatic upload and QR-code switches."""
from __future__ import annotations

from ctypes import c_ubyte
from typing import Tuple

from ._handle import Handle


class CameraSettings(Handle):
    """Camera streams, picture geometry, frame rate, infrared light, flicker, reports' switches.

    Modes are the module's numbers, passed on unchanged; the module refuses an
    unknown one with its status.
    """

    def set_uvc_switch(self, mode: int) -> None:
        """Sets the module's UVC output mode."""
        self._call("SetUvcSwitch", mode)

    def set_camera_stream(self, open_stream: bool, camera_type: int) -> None:
        """Opens or closes camera ``camera_type`` (0 or 1)."""
        self._call("SetCameraStream", 0 if open_stream else 1, camera_type)

    def get_camera_stream(self, camera_type: int) -> bool:
        """Whether camera ``camera_type`` is open."""
        return bool(self._call_reading("GetCameraStream", camera_type, out=(c_ubyte,))[0])

    def switch_cam_rgb_ir(self, mode: int) -> None:
        """Switches between the colour and the infrared camera."""
        self._call("SwitchCamRgbIr", mode)

    def set_stream_format(self, mode: int) -> None:
        """Sets the format of the video stream."""
        self._call("SetStreamFormat", mode)

    def get_luminous_sensitivity_threshold(self) -> int:
        """The light sensor's threshold."""
        return self._call_reading("GetLuminousSensitivityThreshold")[0]

    def get_device_no_flicker_hz(self, camera_id: int) -> Tuple[int, bool]:
        """The anti-flicker frequency choice (0 or 1, the module's two mains frequencies) of camera
        ``camera_id`` (0 or 1) and whether anti-flicker is on."""
        hertz, enabled = self._call_reading("GetDeviceNoFlickerHz", camera_id, out=(c_ubyte, c_ubyte))
        return hertz, bool(enabled)

    def set_device_no_flicker_hz(self, camera_id: int, hertz: int, enabled: bool) -> None:
        """Sets the anti-flicker frequency choice (0 or 1) of camera ``camera_id`` and turns it on or off."""
        self._call("SetDeviceNoFlickerHz", camera_id, hertz, int(enabled))

    def set_rotate_angle(self, mode: int) -> None:
        """Sets the picture's rotation, 0..3."""
        self._call("SetRotateAngle", mode)

    def get_screen_direction(self) -> int:
        """The screen direction, 1..4."""
        return self._call_reading("GetScreenDirection", out=(c_ubyte,))[0]

    def set_screen_direction(self, mode: int) -> None:
        """Sets the screen direction, 1..4."""
        self._call("SetScreenDirection", mode)

    def set_resolution(self, mode: int) -> None:
        """Sets the module's output resolution, mode 0..4 (720x1280, 360x640, 720x720, 720x640, 720x480)."""
        self._call("SetResolution", mode)

    def get_frame_rate(self) -> int:
        """The frame rate, pictures a second."""
        return self._call_reading("GetFrameRate")[0]

    def set_frame_rate(self, fps: int) -> None:
        """Sets the frame rate, 10..25."""
        self._call("SetFrameRate", fps)

    def get_ir_light(self) -> Tuple[int, int]:
        """The infrared light's luminance and close time."""
        luminance, close_time = self._call_reading("GetIRlight", out=(c_ubyte, c_ubyte))
        return luminance, close_time

    def set_ir_light(self, luminance: int, close_time: int) -> None:
        """Sets the infrared light's luminance (0..200) and close time (0..120)."""
        self._call("SetIRlight", luminance, close_time)

    def open_auto_upload_ai_info(self, upload_mode: int = 0, image_mode: int = 0) -> None:
        """Turns on the recognition reports (upload mode 0, 2, 3 or 4; image mode 0..7)."""
        self._call("OpenAutoUploadAiInfo", upload_mode, image_mode)

    def close_auto_upload_ai_info(self) -> None:
        """Turns off the recognition reports."""
        self._call("CloseAutoUploadAiInfo")

    def open_auto_upload_face_info_in_frame(self) -> None:
        """Has the module write its face information into each picture."""
        self._call("OpenAutoUploadFaceInfoInFrame")

    def close_auto_upload_face_info_in_frame(self) -> None:
        """Stops the face information in the pictures."""
        self._call("CloseAutoUploadFaceInfoInFrame")

    def set_qr_code_switch(self, enabled: bool, interval: int) -> None:
        """Turns QR-code reading on or off, with the report interval."""
        self._call("SetQRCodeSwitch", int(enabled), interval)
