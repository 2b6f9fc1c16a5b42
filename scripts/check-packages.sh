#!/usr/bin/env bash
# Builds the Debian packages (cpack -G DEB) in a fresh tree configured for the
# prefix /usr, checks them with lintian, unpacks them into a scratch root,
# builds the examples against that root with pkg-config and with
# find_package(ai_camera), runs one of them on the packaged simulator, and
# removes everything. Prints a summary in ctest's shape.
#   scripts/check-packages.sh
set -uo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
work=$(mktemp -d)
sim_pid=
cleanup() {
  [ -z "$sim_pid" ] || { kill -TERM "$sim_pid" 2>/dev/null; wait "$sim_pid" 2>/dev/null; }
  rm -rf "$work"
}
trap cleanup EXIT

# Lintian warnings that remain, each for a reason:
# - maintscript-calls-ldconfig: CPack always writes a postinst and a postrm
#   that call ldconfig for a library under /usr/lib; libai-camera4 carries the
#   activate-noawait ldconfig trigger as well, so the call is redundant, not wrong.
allowed_warnings=(maintscript-calls-ldconfig)

checks=0
failed=()
# check NAME COMMAND...: runs one check, its output in $work/NAME.log.
check() {
  local name=$1
  shift
  checks=$((checks + 1))
  echo "--- $name"
  if "$@" >"$work/$name.log" 2>&1; then
    echo "    Passed"
  else
    echo "    Failed:"
    tail -n 30 "$work/$name.log" | sed 's/^/    /'
    failed+=("$checks - $name")
  fi
}

build=$work/build
packages=$work/packages
sysroot=$work/root
multiarch=$(gcc -print-multiarch)
libdir=$sysroot/usr/lib/$multiarch

build_packages() {
  cmake -S "$root" -B "$build" -G Ninja -DAICAM_WERROR=ON -DCMAKE_INSTALL_PREFIX=/usr \
    -DAICAM_BUILD_TESTS=OFF -DAICAM_BUILD_BENCH=OFF &&
    cmake --build "$build" &&
    cpack -G DEB --config "$build/CPackConfig.cmake" -B "$packages" &&
    ls "$packages"/libai-camera4_*.deb "$packages"/libai-camera-dev_*.deb "$packages"/ai-camera-tools_*.deb \
       "$packages"/python3-aicam_*_all.deb "$packages"/libai-camera4-dbgsym_*.ddeb "$packages"/ai-camera-tools-dbgsym_*.ddeb
}

run_lintian() {
  local out allowed
  out=$(lintian "$packages"/*.deb "$packages"/*.ddeb 2>&1 | grep -v '^running with root privileges')
  echo "$out"
  if grep -q '^E: ' <<<"$out"; then
    echo "lintian reports errors"
    return 1
  fi
  allowed=$(IFS='|'; echo "${allowed_warnings[*]}")
  if grep '^W: ' <<<"$out" | grep -vE ": ($allowed)( |$)"; then
    echo "lintian reports warnings not explained in $0"
    return 1
  fi
}

unpack() {
  local deb
  for deb in "$packages"/*.deb; do dpkg -x "$deb" "$sysroot" || return 1; done
  # Stripped, with no search path of their own.
  file -L "$libdir/libai_camera.so.4" "$sysroot/usr/bin/aicam" "$sysroot/usr/bin/aicam-sim" | tee /dev/stderr |
    grep -v ', stripped' && return 1
  ! readelf -d "$sysroot/usr/bin/aicam" "$sysroot/usr/bin/aicam-sim" | grep -E 'RPATH|RUNPATH' &&
    grep -x 'prefix=/usr' "$libdir/pkgconfig/ai_camera.pc" &&
    zcat "$sysroot/usr/share/man/man1/aicam.1.gz" | grep '^\.TH AICAM' &&
    zcat "$sysroot/usr/share/man/man1/aicam-sim.1.gz" | grep -F -- '\-\-force'
}

# The .pc file names /usr: pkg-config's sysroot puts the scratch root before it.
with_pkg_config() {
  export PKG_CONFIG_SYSROOT_DIR=$sysroot PKG_CONFIG_LIBDIR=$libdir/pkgconfig
  local cflags libs
  cflags=$(pkg-config --cflags ai_camera) && libs=$(pkg-config --libs ai_camera) || return 1
  echo "pkg-config: $cflags $libs"
  mkdir -p "$work/pc" &&
    cc -std=c11 -Wall -Wextra -Werror $cflags "$root/examples/enrol.c" -o "$work/pc/enrol" $libs &&
    c++ -std=c++17 -Wall -Wextra -Werror $cflags "$root/examples/recognize.cpp" -o "$work/pc/recognize" $libs -pthread
}

with_find_package() {
  cmake -S "$root/examples" -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$sysroot/usr" &&
    cmake --build "$work/cmake"
}

# The examples built both ways, on the packaged simulator, use the packaged library.
run_on_packaged_simulator() {
  local port=$work/ttyACM-sim
  "$sysroot/usr/bin/aicam-sim" --link "$port" >"$work/sim.out" 2>"$work/sim.err" &
  sim_pid=$!
  timeout 10 bash -c 'until [ -e "$1" ]; do sleep 0.05; done' _ "$port" || return 1
  export LD_LIBRARY_PATH=$libdir
  ldd "$work/cmake/enrol" | grep -F "$libdir/libai_camera.so.4" &&
    "$work/cmake/enrol" "$port" alice | grep -x "enrolled alice; the module holds 1 faces" &&
    "$work/pc/enrol" "$port" bob | grep -x "enrolled bob; the module holds 2 faces" &&
    "$sysroot/usr/bin/aicam" --port "$port" faces list | grep -q bob &&
    PYTHONPATH=$sysroot/usr/lib/python3/dist-packages AICAM_LIBRARY=$libdir/libai_camera.so.4 /usr/bin/python3 -c \
      'import sys, aicam; m = aicam.Module(sys.argv[1]); m.open(); print(m.get_device_face_id()); m.close()' \
      "$port" | grep -xF "['alice', 'bob']"
}

check build-packages build_packages
check lintian run_lintian
check unpack-into-scratch-root unpack
check examples-with-pkg-config with_pkg_config
check examples-with-find-package with_find_package
check examples-on-packaged-simulator run_on_packaged_simulator
echo "lintian said:"
sed 's/^/    /' "$work/lintian.log"

passed=$((checks - ${#failed[@]}))
echo "$((100 * passed / checks))% tests passed, ${#failed[@]} tests failed out of $checks"
if [ ${#failed[@]} -gt 0 ]; then
  echo "The following tests FAILED:"
  printf '\t%s (Failed)\n' "${failed[@]}"
  exit 1
fi
