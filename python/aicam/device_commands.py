"""The module's identity, the echo test and its maintenance states."""
from __future__ import annotations

from ._buffers import Text, decode, encode, text_buffer
from ._handle import Handle

_TEXT_SIZE = 256


class DeviceCommands(Handle):
    """Versions, serial number, model, temperatures; reboot, reset, recovery."""

    def _read_text(self, name: str, *inputs: int) -> str:
        text = text_buffer(_TEXT_SIZE)
        self._call(name, *inputs, text, _TEXT_SIZE)
        return decode(text)

    def ping(self, data: Text = b"ping") -> None:
        """Has the module echo ``data``; ``Error`` -7 when the echo differs."""
        payload = encode(data)
        self._call("Ping", payload, len(payload))

    def get_device_version(self) -> str:
        """The module's firmware version text."""
        return self._read_text("GetDeviceVersion")

    def get_dev_sn(self, mode: int = 0) -> str:
        """The module's serial number (``mode`` 0 or 1, the module's choice of number)."""
        return self._read_text("GetDevSn", mode)

    def get_dev_model(self) -> str:
        """The module's model text."""
        return self._read_text("GetDevModel")

    def get_dev_model_app_ver(self) -> str:
        """The version text of the module's application."""
        return self._read_text("GetDevModelAppVer")

    def get_cpu_temperature(self) -> int:
        """The module's processor temperature, as the module gives it."""
        return self._call_reading("GetCpuTemperature")[0]

    def get_ae_sensor_model(self) -> int:
        """The model number of the module's exposure sensor."""
        return self._call_reading("GetAESensorModel")[0]

    def reboot(self, mode: int = 0) -> None:
        """Reboots the module in ``mode`` 0..4 (0 is ``reset``, 4 ``set_umode_to_engin``)."""
        self._call("Reboot", mode)

    def set_umode_to_engin(self) -> None:
        """Restarts the module in its engineering USB mode."""
        self._call("SetUmodeToEngin")

    def reset(self) -> None:
        """Restarts the module."""
        self._call("Reset")

    def recovery(self, mode: int) -> None:
        """Puts the module in recovery ``mode`` 0 or 1."""
        self._call("Recovery", mode)

    def upload_package_slice(self, position: int, data: bytes) -> None:
        """Sends one slice of a firmware package, at byte ``position``."""
        self._call("UploadPackageSlice", position, bytes(data), len(data))

    def apply_upgrade(self, md5: Text) -> None:
        """Has the module check the uploaded package against its MD5 text and apply it."""
        digest = encode(md5)
        self._call("ApplyUpgrade", digest, len(digest))
