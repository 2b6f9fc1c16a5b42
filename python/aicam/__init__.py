"""aicam: drive an AI camera module from Python, through libai_camera.

``aicam.Module`` is one handle with every command of the module; frames come
as NumPy BGRA arrays, reports through callbacks or an iterator. The library is
found as the installed ``libai_camera.so.4``, or where ``load_library(path)``
or the ``AICAM_LIBRARY`` environment variable says.
"""
from ._native import load_library
from .discovery import ModuleInfo, enum_device, list_modules
from .errors import Error, ModuleStatus, Result, result_text
from .face_commands import FEATURE_LENGTH
from .frames import Frame
from .link import LinkState, LinkStats
from .logs import LogLevel, LogTarget, get_log_config, set_log_config, set_log_directory
from .module import Module
from .reports import Report, ReportKind, ReportStream
from .version import sdk_version

__version__ = "4.2.0.2"

__all__ = [
    "Error", "FEATURE_LENGTH", "Frame", "LinkState", "LinkStats", "LogLevel", "LogTarget", "Module",
    "ModuleInfo", "ModuleStatus", "Report", "ReportKind", "ReportStream", "Result", "enum_device",
    "get_log_config", "list_modules", "load_library", "result_text", "sdk_version", "set_log_config",
    "set_log_directory",
]
