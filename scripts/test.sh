#!/usr/bin/env bash
# Sets up, builds everything and runs the whole test suite.
#   scripts/test.sh             plain build in build/
#   scripts/test.sh --sanitize  AddressSanitizer + UBSan build in build-asan/
#   scripts/test.sh --tsan      ThreadSanitizer build in build-tsan/ of the threaded
#                               parts: capture, protocol and operating-system layer
# Exits with ctest's status.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

targets=()
labels=()
case "${1:-}" in
  "")         build="build";    options=(-DAICAM_SANITIZE=OFF -DAICAM_TSAN=OFF) ;;
  --sanitize) build="build-asan"; options=(-DAICAM_SANITIZE=ON -DAICAM_TSAN=OFF) ;;
  --tsan)     build="build-tsan"; options=(-DAICAM_SANITIZE=OFF -DAICAM_TSAN=ON)
              targets=(--target test_video test_protocol test_serial test_os test_log test_frame_wait)
              labels=(-L "test_video|test_protocol|test_serial|test_os|test_log|test_frame_wait") ;;
  *) echo "usage: $0 [--sanitize|--tsan]" >&2; exit 2 ;;
esac

bash "$root/scripts/bootstrap.sh"
cmake -S "$root" -B "$root/$build" -G Ninja -DAICAM_WERROR=ON "${options[@]}"
cmake --build "$root/$build" "${targets[@]}"
exec ctest --test-dir "$root/$build" --output-on-failure -j2 "${labels[@]}"
