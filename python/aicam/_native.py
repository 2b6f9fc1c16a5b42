"""Loading libai_camera and declaring its C prototypes, each once."""
from __future__ import annotations

import ctypes
import os
import threading
from ctypes import POINTER, c_byte, c_char_p, c_int, c_ubyte, c_uint, c_ulonglong, c_void_p
from typing import Optional, Union

SONAME = "libai_camera.so.4"
LIBRARY_VARIABLE = "AICAM_LIBRARY"


class ModuleRecord(ctypes.Structure):
    """AI_CAMERA_MODULE: one attached module as EnumModules fills it."""

    _fields_ = [
        ("serialNode", ctypes.c_char * 256),
        ("videoNode", ctypes.c_char * 256),
        ("vendorId", c_int),
        ("productId", c_int),
        ("usbSerial", ctypes.c_char * 384),
        ("usbPath", ctypes.c_char * 64),
    ]


class LinkStatsRecord(ctypes.Structure):
    """AI_CAMERA_LINK_STATS: the serial link's counters."""

    _fields_ = [
        ("framesSent", c_ulonglong),
        ("bytesSent", c_ulonglong),
        ("framesReceived", c_ulonglong),
        ("bytesReceived", c_ulonglong),
        ("checksumErrors", c_ulonglong),
        ("resyncs", c_ulonglong),
        ("requestsTimedOut", c_ulonglong),
        ("lateAnswers", c_ulonglong),
        ("reports", c_ulonglong * 5),
        ("imageAcks", c_ulonglong),
    ]


# The report bytes arrive as a pointer, not c_char_p, which would stop at the first zero byte.
REPORT_FUNC = ctypes.CFUNCTYPE(None, POINTER(ctypes.c_char), c_int, c_void_p)
LINK_STATE_FUNC = ctypes.CFUNCTYPE(None, c_int, c_void_p)
UPGRADE_PROGRESS = ctypes.CFUNCTYPE(c_int, c_uint, c_uint, c_uint, c_void_p)

_V, _I, _U, _S, _B, _UB = c_void_p, c_int, c_uint, c_char_p, c_byte, c_ubyte
_PU, _PUB, _PI, _PPV = POINTER(c_uint), POINTER(c_ubyte), POINTER(c_int), POINTER(c_void_p)

# name: (restype, argtypes). `char` parameters are c_byte, buffers c_void_p.
PROTOTYPES: dict = {
    "Init": (_V, []),
    "DeInit": (_I, [_V]),
    "SetLogConfig": (_I, [_I, _I]),
    "GetLogConfig": (_I, [_PI, _PI]),
    "EnumDevice": (_I, [_V, _I, _V, _I]),
    "ConnectSerial": (_I, [_V, _S]),
    "DisconnectSerial": (_I, [_V]),
    "ConnectCamera": (_I, [_V, _S]),
    "DisconnectCamera": (_I, [_V]),
    "GetFrame": (_I, [_V, _V, _I, _V, _I]),
    "GetResolution": (_I, [_V, _PI, _PI]),
    "AddFace": (_I, [_V, _S, _U]),
    "AddFaceByImage": (_I, [_V, _S, _U, _S, _U]),
    "AddFaceReturnImage": (_I, [_V, _S, _U, _PPV, _PU]),
    "AddFaceSlice": (_I, [_V, _S, _U, _U, _U, _I, _S, _U]),
    "DeleteFace": (_I, [_V, _I, _S, _U]),
    "QueryFace": (_I, [_V, _S, _U, _I]),
    "AddFeature": (_I, [_V, _S, _U, _S, _U]),
    "QueryFeature": (_I, [_V, _S, _U, _V, _U]),
    "GetDeviceFaceID": (_I, [_V, _V, _U]),
    "GetDeviceFaceLibraryNum": (_I, [_V, _PU]),
    "StartOnetoNumRecognize": (_I, [_V, _I, _I]),
    "StartOnetoOneRecognize": (_I, [_V, _I, _I, _S, _U]),
    "StartOnetoOneRecognizeSlice": (_I, [_V, _I, _I, _U, _U, _I, _S, _U]),
    "ResumeRecognize": (_I, [_V]),
    "PauseRecognize": (_I, [_V]),
    "QueryRecognize": (_I, [_V]),
    "GetSingleRecognize": (_I, [_V, _V, _U]),
    "StaticFaceCompare": (_I, [_V, _PPV, _PU]),
    "StaticFaceCompareReturnImage": (_I, [_V, _S, _U, _PPV, _PU]),
    "StaticFaceCompareSlice": (_I, [_V, _I, _U, _U, _I, _S, _U, _PPV, _PU]),
    "SetRecConfig": (_I, [_V, _S, _U, _I]),
    "GetRecConfig": (_I, [_V, _V, _U, _I]),
    "SetRecognizeCount": (_I, [_V, _UB, _UB]),
    "GetRecognizeCount": (_I, [_V, _PUB, _PUB]),
    "SetTemplateUpdate": (_I, [_V, _UB]),
    "GetTemplateUpdate": (_I, [_V, _PUB]),
    "Ping": (_I, [_V, _S, _U]),
    "GetDeviceVersion": (_I, [_V, _V, _U]),
    "GetDevSn": (_I, [_V, _B, _V, _U]),
    "GetDevModel": (_I, [_V, _V, _U]),
    "GetDevModelAppVer": (_I, [_V, _V, _U]),
    "GetCpuTemperature": (_I, [_V, _PU]),
    "GetAESensorModel": (_I, [_V, _PU]),
    "Reboot": (_I, [_V, _I]),
    "SetUmodeToEngin": (_I, [_V]),
    "Reset": (_I, [_V]),
    "Recovery": (_I, [_V, _I]),
    "UploadPackageSlice": (_I, [_V, _U, _S, _U]),
    "ApplyUpgrade": (_I, [_V, _S, _U]),
    "SetUvcSwitch": (_I, [_V, _B]),
    "SetCameraStream": (_I, [_V, _B, _B]),
    "GetCameraStream": (_I, [_V, _B, _PUB]),
    "SwitchCamRgbIr": (_I, [_V, _B]),
    "SetStreamFormat": (_I, [_V, _B]),
    "GetLuminousSensitivityThreshold": (_I, [_V, _PU]),
    "GetDeviceNoFlickerHz": (_I, [_V, _B, _PUB, _PUB]),
    "SetDeviceNoFlickerHz": (_I, [_V, _B, _B, _B]),
    "SetRotateAngle": (_I, [_V, _B]),
    "GetScreenDirection": (_I, [_V, _PUB]),
    "SetScreenDirection": (_I, [_V, _B]),
    "SetResolution": (_I, [_V, _B]),
    "GetFrameRate": (_I, [_V, _PU]),
    "SetFrameRate": (_I, [_V, _I]),
    "GetIRlight": (_I, [_V, _PUB, _PUB]),
    "SetIRlight": (_I, [_V, _UB, _UB]),
    "OpenAutoUploadAiInfo": (_I, [_V, _B, _B]),
    "CloseAutoUploadAiInfo": (_I, [_V]),
    "OpenAutoUploadFaceInfoInFrame": (_I, [_V]),
    "CloseAutoUploadFaceInfoInFrame": (_I, [_V]),
    "SetQRCodeSwitch": (_I, [_V, _UB, _UB]),
    "ConnectCameraPlayback": (_I, [_V, _S]),
    "WaitFrame": (_I, [_V, _V, _I, _V, _I, _I]),
    "EnumModules": (_I, [POINTER(ModuleRecord), _I, _I, _I, _I]),
    "GetSdkVersion": (_I, [_V, _I]),
    "GetResultText": (_S, [_I]),
    "SetLogDirectory": (_I, [_S]),
    "RegisterRecoReportCbEx": (_I, [_V, REPORT_FUNC, _V]),
    "RegisterTrackReportCbEx": (_I, [_V, REPORT_FUNC, _V]),
    "RegisterImageReportCbEx": (_I, [_V, REPORT_FUNC, _V]),
    "RegisterFeatureReportCbEx": (_I, [_V, REPORT_FUNC, _V]),
    "RegisterQRCodeReportCbEx": (_I, [_V, REPORT_FUNC, _V]),
    "RegisterLinkStateCb": (_I, [_V, LINK_STATE_FUNC, _V]),
    "GetLinkStats": (_I, [_V, POINTER(LinkStatsRecord)]),
    "UpgradeFirmware": (_I, [_V, _S, _U, _U, _S, UPGRADE_PROGRESS, _V, _PI, _V, _I]),
    "UpgradeFirmwareFromFile": (_I, [_V, _S, _U, _S, UPGRADE_PROGRESS, _V, _PI, _V, _I]),
}

_lock = threading.Lock()
_library: Optional[ctypes.CDLL] = None
_libc_free = None


def load_library(path: Union[str, "os.PathLike[str]", None] = None) -> ctypes.CDLL:
    """Loads libai_camera and declares its prototypes; returns the loaded library.

    ``path`` names the library file; without it the ``AICAM_LIBRARY`` environment
    variable does, and without that the installed ``libai_camera.so.4`` is found by
    its SONAME. Once a library is loaded, later calls return it; a call naming
    another file raises ``RuntimeError``, since one process holds one library.
    """
    global _library
    wanted = os.fspath(path) if path is not None else os.environ.get(LIBRARY_VARIABLE) or SONAME
    with _lock:
        if _library is not None:
            if path is not None and os.path.realpath(wanted) != os.path.realpath(_library._name):
                raise RuntimeError(f"libai_camera is already loaded from {_library._name}")
            return _library
        library = ctypes.CDLL(wanted)
        for name, (restype, argtypes) in PROTOTYPES.items():
            function = getattr(library, name)
            function.restype = restype
            function.argtypes = argtypes
        _library = library
        return library


def library() -> ctypes.CDLL:
    """The loaded library, loaded on first use."""
    return _library if _library is not None else load_library()


def free(pointer: Optional[int]) -> None:
    """Releases a buffer that a command allocated with malloc for its caller."""
    global _libc_free
    if not pointer:
        return
    if _libc_free is None:
        _libc_free = ctypes.CDLL(None).free
        _libc_free.restype = None
        _libc_free.argtypes = [c_void_p]
    _libc_free(pointer)
