# The examples built against the installed package, run on the simulator; the Debian packages.
source "$(dirname "$0")/cli_helpers.sh"

bash "${4:?}/scripts/build-examples.sh" "${3:?}" "$SCRATCH/work" >"$SCRATCH/build.log" 2>&1 || {
  cat "$SCRATCH/build.log" >&2
  fail "scripts/build-examples.sh failed"
  finish
}
examples=$SCRATCH/work/examples-build
prefix=$SCRATCH/work/prefix
libdir=$(sed -n 's/^CMAKE_INSTALL_LIBDIR:PATH=//p' "$3/CMakeCache.txt")
grep -qF "$prefix/$libdir/libai_camera.so.4" <<<"$(ldd "$examples/enrol")" || fail "enrol must use the installed library"
grep -qx "prefix=$prefix" "$prefix/$libdir/pkgconfig/ai_camera.pc" || fail "the pkg-config file names the prefix it was installed under"

start_sim --video "$VIDEO" --fifo --report-interval 100
run "$examples/enrol" "$PORT" alice
expect_rc 0 "enrol:"
expect_out_line "enrolled alice; the module holds 1 faces"
run "$examples/recognize" "$PORT" "$VIDEO" 2
expect_rc 0 "recognize:"
grep -qE '^[1-9][0-9]* frames of 640x480, [1-9][0-9]* recognition and [1-9][0-9]* track reports$' <<<"$OUT" ||
  fail "frames and reports counted"
expect_out_has '"id":"alice"' "the last recognition names alice:"

# Three packages (and two with debugging symbols), each holding its part.
run cpack -G DEB --config "$3/CPackConfig.cmake" -B "$SCRATCH/package"
expect_rc 0 "cpack:"
version=$(sed -n 's/^#define AI_CAMERA_VERSION_STRING "\(.*\)"$/\1/p' "$3/include/ai_camera_version.h")
lib=usr/$libdir
# contents PACKAGE ENTRY...: the package holds each entry and nothing of the other packages'.
contents() {
  local deb=$SCRATCH/package/$1_${version:?no version in the header}_amd64.deb
  shift
  run dpkg-deb --contents "$deb"
  [ "$RC" -eq 0 ] || { fail "no package $deb"; return; }
  local listing=$OUT entry
  for entry in "$@"; do grep -qF -- "./$entry" <<<"$listing" || fail "$(basename "$deb") lacks $entry"; done
  [ "$(grep -c -- ' -> \|[^/]$' <<<"$listing")" -eq $# ] || fail "$(basename "$deb") holds more than its part"
}
doc() { echo "usr/share/doc/$1/copyright" "usr/share/doc/$1/changelog.gz"; }
contents libai-camera4 "$lib/libai_camera.so.$version" "$lib/libai_camera.so.4 -> libai_camera.so.$version" \
  $(doc libai-camera4)
contents libai-camera-dev "$lib/libai_camera.so -> libai_camera.so.4" usr/include/ai_camera.h usr/include/ai_camera_ext.h \
  usr/include/ai_camera_version.h "$lib/pkgconfig/ai_camera.pc" "$lib/cmake/ai_camera/ai_cameraConfig.cmake" \
  "$lib/cmake/ai_camera/ai_cameraConfigVersion.cmake" "$lib/cmake/ai_camera/ai_cameraTargets.cmake" \
  "$lib/cmake/ai_camera/ai_cameraTargets-relwithdebinfo.cmake" $(doc libai-camera-dev)
contents ai-camera-tools usr/bin/aicam usr/bin/aicam-sim usr/lib/udev/rules.d/70-ai-camera.rules \
  usr/share/man/man1/aicam.1.gz usr/share/man/man1/aicam-sim.1.gz $(doc ai-camera-tools)
for debug in libai-camera4-dbgsym ai-camera-tools-dbgsym; do
  [ -f "$SCRATCH/package/${debug}_${version}_amd64.ddeb" ] || fail "no $debug package"
done

run dpkg-deb --field "$SCRATCH/package/libai-camera4_${version}_amd64.deb" Depends
expect_out_has "libavcodec59" "the library depends on FFmpeg:"
run dpkg-deb --field "$SCRATCH/package/ai-camera-tools_${version}_amd64.deb" Depends
expect_out_has "libai-camera4 (= $version)" "the tools depend on this very library:"
run dpkg-deb --info "$SCRATCH/package/libai-camera4_${version}_amd64.deb" shlibs
expect_out_line "libai_camera 4 libai-camera4 (>= $version)"
run dpkg-deb --info "$SCRATCH/package/libai-camera4_${version}_amd64.deb" triggers
expect_out_line "activate-noawait ldconfig"
finish
