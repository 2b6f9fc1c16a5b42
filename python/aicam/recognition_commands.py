"""Recognition (one to many, one to one) and static comparison."""
from __future__ import annotations

from ._buffers import decode, text_buffer
from ._handle import Handle

_RESULT_TEXT_SIZE = 4096


class RecognitionCommands(Handle):
    """Starting, pausing and querying recognition; comparing faces.

    ``rec_mode`` is 0 to recognise only, 1 with a liveness check; ``mul_mode`` 0
    for a single face, 1 for several. Results arrive as reports.
    """

    def start_one_to_num_recognize(self, rec_mode: int = 0, mul_mode: int = 0) -> None:
        """Starts recognising the faces in view against the face library."""
        self._call("StartOnetoNumRecognize", rec_mode, mul_mode)

    def start_one_to_one_recognize(self, image: bytes, rec_mode: int = 0, mul_mode: int = 0) -> None:
        """Starts recognising the faces in view against the one face in ``image``."""
        self._call("StartOnetoOneRecognize", rec_mode, mul_mode, bytes(image), len(image))

    def start_one_to_one_recognize_slice(self, total: int, position: int, last: bool, data: bytes,
                                         rec_mode: int = 0, mul_mode: int = 0) -> None:
        """Sends one slice of the reference image of a one-to-one recognition."""
        self._call("StartOnetoOneRecognizeSlice", rec_mode, mul_mode, total, position, int(last),
                   bytes(data), len(data))

    def resume_recognize(self) -> None:
        """Resumes a paused recognition."""
        self._call("ResumeRecognize")

    def pause_recognize(self) -> None:
        """Pauses recognition."""
        self._call("PauseRecognize")

    def query_recognize(self) -> int:
        """The module's recognition state, its status byte (0 while it runs)."""
        return self._call("QueryRecognize", status_is_result=True)

    def get_single_recognize(self) -> str:
        """One recognition result, as the module's text."""
        result = text_buffer(_RESULT_TEXT_SIZE)
        self._call("GetSingleRecognize", result, _RESULT_TEXT_SIZE)
        return decode(result)

    def static_face_compare(self) -> bytes:
        """Compares with the module's own capture; returns the module's result image (may be empty)."""
        return self._call_returning_image("StaticFaceCompare")

    def static_face_compare_return_image(self, image: bytes) -> bytes:
        """Compares with ``image``; returns the module's result image (may be empty)."""
        return self._call_returning_image("StaticFaceCompareReturnImage", bytes(image), len(image))

    def static_face_compare_slice(self, mode: int, total: int, position: int, last: bool, data: bytes) -> bytes:
        """Sends one slice of a comparison image (``mode`` 0 local capture, 1 remote input); the last
        slice's answer carries the result image."""
        return self._call_returning_image("StaticFaceCompareSlice", mode, total, position, int(last),
                                          bytes(data), len(data))
