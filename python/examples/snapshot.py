#!/usr/bin/env python3
"""Takes one picture from the module's camera (or an MJPEG recording) and saves it as a PNG.

    snapshot.py --video /dev/video0 shot.png
    snapshot.py --playback /tmp/video.fifo shot.png
"""
import argparse
import struct
import zlib

import aicam


def write_png(path: str, bgra) -> None:
    """A PNG of an (height, width, 4) BGRA picture, with nothing but the standard library."""
    height, width, _ = bgra.shape
    rgba = bgra[:, :, [2, 1, 0, 3]]
    rows = b"".join(b"\0" + rgba[y].tobytes() for y in range(height))

    def chunk(kind: bytes, data: bytes) -> bytes:
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    with open(path, "wb") as out:
        out.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0))
                  + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    source = parser.add_mutually_exclusive_group(required=True)
    source.add_argument("--video", help="the camera's video node")
    source.add_argument("--playback", help="an MJPEG file or FIFO to play instead")
    parser.add_argument("output", help="the PNG to write")
    args = parser.parse_args()
    try:
        with aicam.Module(video=args.video, playback=args.playback) as module:
            frame = module.frame(timeout=5)
    except aicam.Error as error:
        print(f"snapshot: {error}")
        return 1
    write_png(args.output, frame.image)
    print(f"snapshot: {args.output} ({frame.image.shape[1]}x{frame.image.shape[0]})")
    print(f"side text: {frame.side_text}")
    return 0


if __name__ == "__main__":
    raise SystemExit(main())
