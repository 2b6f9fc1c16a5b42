# The examples built against the installed package, run on the simulator; the Debian package.
source "$(dirname "$0")/cli_helpers.sh"

bash "${4:?}/scripts/build-examples.sh" "${3:?}" "$SCRATCH/work" >"$SCRATCH/build.log" 2>&1 || {
  cat "$SCRATCH/build.log" >&2
  fail "scripts/build-examples.sh failed"
  finish
}
examples=$SCRATCH/work/examples-build
prefix=$SCRATCH/work/prefix
grep -qF "$prefix/lib/libai_camera.so.4" <<<"$(ldd "$examples/enrol")" || fail "enrol must use the installed library"

start_sim --video "$VIDEO" --fifo --report-interval 100
run "$examples/enrol" "$PORT" alice
expect_rc 0 "enrol:"
expect_out_line "enrolled alice; the module holds 1 faces"
run "$examples/recognize" "$PORT" "$VIDEO" 2
expect_rc 0 "recognize:"
grep -qE '^[1-9][0-9]* frames of 640x480, [1-9][0-9]* recognition and [1-9][0-9]* track reports$' <<<"$OUT" ||
  fail "frames and reports counted"
expect_out_has '"id":"alice"' "the last recognition names alice:"

run cpack -G DEB --config "$3/CPackConfig.cmake" -B "$SCRATCH/package"
expect_rc 0 "cpack:"
deb=$(find "$SCRATCH/package" -maxdepth 1 -name 'libai-camera_*_amd64.deb' -print -quit)
run dpkg-deb --contents "${deb:?no .deb made}"
# The package's version is the one the headers and the library carry.
version=$(sed -n 's/^#define AI_CAMERA_VERSION_STRING "\(.*\)"$/\1/p' "$3/include/ai_camera_version.h")
for entry in "usr/lib/libai_camera.so.$version" "usr/lib/libai_camera.so.4 -> libai_camera.so.$version" \
             "usr/lib/libai_camera.so -> libai_camera.so.4" "usr/include/ai_camera.h" "usr/include/ai_camera_ext.h" \
             "usr/lib/pkgconfig/ai_camera.pc" "usr/lib/cmake/ai_camera/ai_cameraConfig.cmake" \
             "usr/lib/cmake/ai_camera/ai_cameraConfigVersion.cmake" "usr/lib/cmake/ai_camera/ai_cameraTargets.cmake" \
             "usr/include/ai_camera_version.h" "usr/lib/udev/rules.d/70-ai-camera.rules" "usr/bin/aicam" "usr/bin/aicam-sim"; do
  grep -qF -- "./$entry" <<<"$OUT" || fail "the package lacks $entry"
done
run dpkg-deb --field "$deb" Package Version Depends
[ "$(head -n 2 <<<"$OUT")" = "$(printf 'Package: libai-camera\nVersion: %s' "${version:?no version in the header}")" ] || fail "package name and version"
expect_out_has "libavcodec59" "the package depends on FFmpeg:"
finish
