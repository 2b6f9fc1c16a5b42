#!/usr/bin/env bash
# cpack makes a Debian package holding the library with its SONAME links, the
# headers, the pkg-config file, the CMake package and the two programs.
#   test_package.sh AICAM AICAM-SIM BUILD-DIR
source "$(dirname "$0")/cli_helpers.sh"
BUILD=${3:?}

run cpack -G DEB --config "$BUILD/CPackConfig.cmake" -B "$SCRATCH/package"
expect_rc 0 "cpack:"
deb=$(find "$SCRATCH/package" -maxdepth 1 -name 'libai-camera_*_amd64.deb' -print -quit)
if [ -z "$deb" ]; then
  fail "no .deb made"
  finish
fi
run dpkg-deb --contents "$deb"
for entry in "usr/lib/libai_camera.so.4.2.0" "usr/lib/libai_camera.so.4 -> libai_camera.so.4.2.0" \
             "usr/lib/libai_camera.so -> libai_camera.so.4" "usr/include/ai_camera.h" "usr/include/ai_camera_ext.h" \
             "usr/lib/pkgconfig/ai_camera.pc" "usr/lib/cmake/ai_camera/ai_cameraConfig.cmake" \
             "usr/lib/cmake/ai_camera/ai_cameraConfigVersion.cmake" "usr/lib/cmake/ai_camera/ai_cameraTargets.cmake" \
             "usr/bin/aicam" "usr/bin/aicam-sim"; do
  grep -qF -- "./$entry" <<<"$OUT" || fail "the package lacks $entry"
done
run dpkg-deb --field "$deb" Package Version Depends
expect_out_has "Package: libai-camera" "package name:"
expect_out_has "Version: 4.2.0" "package version:"
expect_out_has "libavcodec59" "the package depends on FFmpeg:"

finish
