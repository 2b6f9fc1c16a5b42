"""Finding the attached modules and the device nodes."""
from __future__ import annotations

from dataclasses import dataclass
from typing import List, Tuple

from . import _native
from ._buffers import decode, text_buffer
from .errors import check

_SPARE_ENTRIES = 4            # room for modules plugged in between counting and listing
_NODE_LIST_SIZE = 65536
PARTIAL = 1                   # EnumModules flag: also devices with only one of the two nodes


@dataclass(frozen=True)
class ModuleInfo:
    """One attached module: its serial and video nodes and its USB identity."""

    serial_node: str
    video_node: str
    vendor_id: int
    product_id: int
    usb_serial: str
    usb_path: str


def _text(field: bytes) -> str:
    return field.decode("utf-8", "replace")


def list_modules(vendor_id: int = 0, product_id: int = 0, partial: bool = False) -> List[ModuleInfo]:
    """The attached modules, sorted by USB path; ids of 0 take any. With ``partial``, USB
    devices with only one of the two nodes too (the missing one as "")."""
    library = _native.library()
    flags = PARTIAL if partial else 0
    capacity = 0
    while True:
        records = (_native.ModuleRecord * max(capacity, 1))()
        count = _count(library.EnumModules(records, capacity, vendor_id, product_id, flags))
        if count <= capacity:
            break
        capacity = count + _SPARE_ENTRIES
    return [ModuleInfo(_text(r.serialNode), _text(r.videoNode), r.vendorId, r.productId, _text(r.usbSerial),
                       _text(r.usbPath)) for r in records[:count]]


def _count(result: int) -> int:
    """A count, or ``Error`` for a negative result."""
    if result < 0:
        check(result)
    return result


def enum_device() -> Tuple[List[str], List[str]]:
    """The video and the serial device nodes (``EnumDevice``)."""
    video, serial = text_buffer(_NODE_LIST_SIZE), text_buffer(_NODE_LIST_SIZE)
    check(_native.library().EnumDevice(video, _NODE_LIST_SIZE, serial, _NODE_LIST_SIZE))
    return ([node for node in decode(video).split("|") if node], [node for node in decode(serial).split("|") if node])
