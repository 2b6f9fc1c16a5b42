"""Pictures through the real FFmpeg decoder: a clip made with ffmpeg, and the simulator's stream."""
from __future__ import annotations

import subprocess
from pathlib import Path

import numpy as np
import pytest

import aicam

# Left half blue, right half red: the channel order and the orientation show.
_CLIP_FILTER = "color=c=blue:s=64x48:d=1:r=25,drawbox=x=32:y=0:w=32:h=48:color=red:t=fill"


@pytest.fixture
def clip(scratch: Path) -> Path:
    path = scratch / "clip.mjpeg"
    subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i", _CLIP_FILTER, "-c:v", "mjpeg", "-q:v", "2",
                    "-f", "mjpeg", "-y", str(path)], check=True)
    return path


def test_frame_shape_and_pixels_of_a_clip(clip: Path, library_path: str) -> None:
    with aicam.Module(playback=clip) as module:
        assert module.get_resolution() == (64, 48)
        frame = module.frame(timeout=5)
        image, side_text, side_json = frame
        assert image.shape == (48, 64, 4) and image.dtype == np.uint8
        blue, red = image[24, 8].astype(int), image[24, 56].astype(int)
        assert np.all(np.abs(blue - [255, 0, 0, 255]) <= 8), blue
        assert np.all(np.abs(red - [0, 0, 255, 255]) <= 8), red
        assert side_text == "" and side_json is None
        later = list(module.frames(timeout=1))  # the recording's other pictures, then the end
        assert 15 <= len(later) <= 24
        with pytest.raises(aicam.Error) as none_left:
            module.get_frame()
        assert none_left.value.code == aicam.Result.NO_NEW_PICTURE


def test_side_text_of_the_simulators_live_stream(start_simulator, scratch: Path) -> None:
    simulator = start_simulator("--video", str(scratch / "video.fifo"), "--fifo", "--size", "160x120")
    with aicam.Module(simulator.port, playback=simulator.video) as module:
        module.add_face("alice")
        frame = module.frame(timeout=5)
    assert frame.image.shape == (120, 160, 4)
    assert frame.side_json["frame"] >= 0 and frame.side_text.startswith('{"frame":')
    box = frame.side_json["faces"][0]
    # The simulator outlines the face box in green.
    b, g, r, _ = frame.image[box["y"] + box["h"] // 2, box["x"] + 1].astype(int)
    assert g > r + 60 and g > b + 60


def test_camera_errors(scratch: Path, clip: Path, library_path: str) -> None:
    with aicam.Module() as module:
        with pytest.raises(aicam.Error) as no_camera:
            module.frame(timeout=0.1)
        assert no_camera.value.code == aicam.Result.NO_HANDLE
        with pytest.raises(aicam.Error) as missing:
            module.connect_camera_playback(scratch / "nothing.mjpeg")
        assert missing.value.code == aicam.Result.VIDEO_UNAVAILABLE
        module.connect_camera_playback(clip)
        with pytest.raises(aicam.Error) as negative_wait:
            module.frame(timeout=-1)
        assert negative_wait.value.code == aicam.Result.INVALID_ARGUMENT
