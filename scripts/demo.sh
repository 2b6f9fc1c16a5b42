#!/usr/bin/env bash
# Sets up, builds everything and runs the main job, the tour of aicam against the simulator.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

bash "$root/scripts/bootstrap.sh"
cmake -S "$root" -B "$root/build" -G Ninja -DAICAM_WERROR=ON -DAICAM_SANITIZE=OFF -DAICAM_TSAN=OFF
cmake --build "$root/build"
cd "$root"
exec bash "$root/scripts/demo-tour.sh" "$root/build"
