"""The module's face library: enrol, delete and query faces, list and count them."""
from __future__ import annotations

from typing import List

from ._buffers import Text, decode, encode, text_buffer
from ._handle import Handle

FEATURE_LENGTH = 1384            #: characters of a face feature text
_LIST_BYTES_PER_FACE = 256       # room per identifier when the list is gathered


class FaceCommands(Handle):
    """Commands on the face library the module keeps. Identifiers are texts."""

    def add_face(self, face_id: Text) -> None:
        """Enrols the face the camera sees now under ``face_id``.

        The module's status comes back as a signed byte: a status of 128 or more
        arrives as a negative ``Error`` code.
        """
        ident = encode(face_id)
        self._call("AddFace", ident, len(ident))

    def add_face_by_image(self, face_id: Text, image: bytes) -> None:
        """Enrols ``face_id`` from an image (such as a JPEG) sent whole."""
        ident = encode(face_id)
        self._call("AddFaceByImage", ident, len(ident), bytes(image), len(image))

    def add_face_return_image(self, face_id: Text) -> bytes:
        """Enrols the face in view under ``face_id`` and returns the module's enrolment image."""
        ident = encode(face_id)
        return self._call_returning_image("AddFaceReturnImage", ident, len(ident))

    def add_face_slice(self, face_id: Text, total: int, position: int, last: bool, data: bytes) -> None:
        """Sends one slice (``data`` at byte ``position`` of an image of ``total`` bytes) of an enrolment image."""
        ident = encode(face_id)
        self._call("AddFaceSlice", ident, len(ident), total, position, int(last), bytes(data), len(data))

    def delete_face(self, face_id: Text) -> None:
        """Deletes the face enrolled under ``face_id``."""
        ident = encode(face_id)
        self._call("DeleteFace", 1, ident, len(ident))

    def delete_all_faces(self) -> None:
        """Empties the module's face library."""
        self._call("DeleteFace", 0, None, 0)

    def query_face(self, face_id: Text) -> bool:
        """Whether ``face_id`` is enrolled: False when the module answers with a non-zero status."""
        ident = encode(face_id)
        return self._call("QueryFace", ident, len(ident), 0, status_is_result=True) == 0

    def add_feature(self, face_id: Text, feature: Text) -> None:
        """Enrols ``face_id`` from a feature text of ``FEATURE_LENGTH`` characters."""
        ident, text = encode(face_id), encode(feature)
        self._call("AddFeature", ident, len(ident), text, len(text))

    def query_feature(self, face_id: Text) -> str:
        """The feature text the module keeps for ``face_id``."""
        ident = encode(face_id)
        feature = text_buffer(FEATURE_LENGTH)
        self._call("QueryFeature", ident, len(ident), feature, FEATURE_LENGTH)
        return decode(feature)

    def get_device_face_library_num(self) -> int:
        """How many faces the module holds (its status comes back as a signed byte, as for ``add_face``)."""
        return self._call_reading("GetDeviceFaceLibraryNum")[0]

    def get_device_face_id(self) -> List[str]:
        """The identifiers of the enrolled faces, in the module's order.

        The list is gathered into a buffer sized from the face count, with room
        for faces enrolled in between; the module separates identifiers with commas.
        """
        size = (self.get_device_face_library_num() + 2) * _LIST_BYTES_PER_FACE
        listing = text_buffer(size)
        self._call("GetDeviceFaceID", listing, size)
        return [ident for ident in decode(listing).split(",") if ident]
