#!/usr/bin/env python3
"""Enrols the faces in front of the camera under the given names, then prints who it recognises.

    enrol_and_recognise.py /dev/ttyACM0 alice bob
"""
import argparse

import aicam


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("port", help="the module's serial port")
    parser.add_argument("names", nargs="+", help="the names to enrol")
    parser.add_argument("--count", type=int, default=3, help="how many recognitions to print")
    args = parser.parse_args()
    try:
        with aicam.Module(args.port) as module:
            for name in args.names:
                module.add_face(name)
            print(f"enrolled {', '.join(args.names)}; the module holds {module.get_device_face_library_num()} faces")
            module.open_auto_upload_ai_info()
            with module.reports(kinds=[aicam.ReportKind.RECOGNITION], timeout=10) as reports:
                module.start_one_to_num_recognize()
                for _, report in zip(range(args.count), reports):
                    result = report.json or {}
                    print(f"recognised {result.get('id') or 'nobody'} (score {result.get('score')})")
            module.pause_recognize()
    except aicam.Error as error:
        print(f"enrol_and_recognise: {error}")
        return 1
    return 0


if __name__ == "__main__":
    raise SystemExit(main())
