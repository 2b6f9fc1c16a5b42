#!/usr/bin/env bash
# The examples build against the installed package and work with the simulator.
#   test_examples.sh AICAM AICAM-SIM BUILD-DIR SOURCE-DIR
source "$(dirname "$0")/cli_helpers.sh"
BUILD=${3:?}
SOURCE=${4:?}

bash "$SOURCE/scripts/build-examples.sh" "$BUILD" "$SCRATCH/work" >"$SCRATCH/build.log" 2>&1 || {
  cat "$SCRATCH/build.log" >&2
  fail "scripts/build-examples.sh failed"
  finish
}
examples=$SCRATCH/work/examples-build
prefix=$SCRATCH/work/prefix
for file in lib/libai_camera.so lib/pkgconfig/ai_camera.pc include/ai_camera.h include/ai_camera_ext.h \
            lib/cmake/ai_camera/ai_cameraConfig.cmake lib/cmake/ai_camera/ai_cameraConfigVersion.cmake bin/aicam \
            bin/aicam-sim; do
  found=$(find "$prefix" -path "*/${file##*/}" -print -quit)
  [ -n "$found" ] || fail "not installed: $file"
done
soname=$(find "$prefix" -name 'libai_camera.so.4' -print -quit)
[ "$(readlink "$soname")" = "libai_camera.so.4.2.0" ] || fail "libai_camera.so.4 -> libai_camera.so.4.2.0"
libraries=$(ldd "$examples/enrol")
grep -qF "$prefix/lib/libai_camera.so.4" <<<"$libraries" || fail "enrol must use the installed library"

start_sim --video "$VIDEO" --fifo --report-interval 100
run "$examples/enrol" "$PORT" alice
expect_rc 0 "enrol:"
expect_out_line "enrolled alice; the module holds 1 faces"

run "$examples/recognize" "$PORT" "$VIDEO" 2
expect_rc 0 "recognize:"
grep -qE '^[1-9][0-9]* frames of 640x480, [1-9][0-9]* recognition and [1-9][0-9]* track reports$' <<<"$OUT" ||
  fail "frames and reports counted"
expect_out_has '"id":"alice"' "the last recognition names alice:"

finish
