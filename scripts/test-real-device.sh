#!/usr/bin/env bash
# Runs the realdevice suite inside the test machine, where a simulated module
# is plugged in over a virtual USB controller and the library meets the
# kernel's real cdc_acm and uvcvideo drivers:
#   1. the camera advertises only 320x240, so the driver falls back to it from
#      the 1280x720 the library asks for (every test, aicam's module choice too);
#   2. it advertises 640x480 and 1280x720 and streams the latter (the camera
#      tests again).
# Builds what it needs in build/ first. The machine comes from the test rig
# (AICAM_TEST_RIG, by default ../shared/vm/run-in-vm.sh beside the repository);
# its first run prepares a kernel and installs its packages (a few minutes).
# Exits non-zero when a pass fails, and 77 (skipped) when there is no rig.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# The machine takes this environment, and its console is a terminal: without
# this, CTest would colour its summary there.
export TERM=dumb
rig=${AICAM_TEST_RIG:-$root/../shared/vm/run-in-vm.sh}
if [ ! -x "$rig" ]; then
  echo "test-real-device: SKIPPED: no test rig at $rig (set AICAM_TEST_RIG)" >&2
  exit 77
fi

bash "$root/scripts/bootstrap.sh"
cmake -S "$root" -B "$root/build" -G Ninja -DAICAM_WERROR=ON -DAICAM_SANITIZE=OFF -DAICAM_TSAN=OFF >/dev/null
cmake --build "$root/build" --target test_realdevice aicam aicam-sim

cd "$root"
status=0
run_pass() {
  local name=$1
  shift
  echo "=== realdevice, $name"
  local start=$SECONDS
  "$@" || status=1
  echo "=== realdevice, $name: $((SECONDS - start)) s"
}
# The cases share the one module: one at a time.
suite=(ctest --test-dir build -L realdevice -j1 --output-on-failure)
# The module's USB identity is one no other device has: nothing may assume the rig's default.
run_pass "camera at 320x240 only" "$rig" --mode 320x240@30 --usb-id 2bdf:0002 --usb-serial AIC-0042 -- "${suite[@]}"
run_pass "camera at 640x480 and 1280x720" "$rig" --mode 640x480@30 --mode 1280x720@15 -- "${suite[@]}" -R '^CameraTest\.'
exit "$status"
