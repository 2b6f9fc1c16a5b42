#!/usr/bin/env bash
# Installs the project into a temporary prefix and builds the programs in
# examples/ against that installed package (find_package(ai_camera)), the way
# an application would.
#   scripts/build-examples.sh [BUILD-DIR [WORK-DIR]]
# BUILD-DIR: a build tree in which ai_camera, aicam and aicam-sim are built, to
# install from (default: a fresh tree in WORK-DIR, configured and built here).
# WORK-DIR: where the prefix and the examples' build go (default: a temporary
# directory, removed at the end); the programs end up in WORK-DIR/examples-build.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=${1:-}
work=${2:-}
if [ -z "$work" ]; then
  work=$(mktemp -d)
  trap 'rm -rf "$work"' EXIT
fi
mkdir -p "$work"
prefix="$work/prefix"

if [ -z "$build" ]; then
  build="$work/project-build"
  cmake -S "$root" -B "$build" -G Ninja -DAICAM_WERROR=ON -DAICAM_BUILD_TESTS=OFF -DAICAM_BUILD_BENCH=OFF >/dev/null
  cmake --build "$build" --target ai_camera aicam aicam-sim
fi
rm -rf "$prefix"
cmake --install "$build" --prefix "$prefix" >/dev/null
echo "installed into $prefix"

# A library built with a sanitizer needs its runtime in the programs too.
sanitizer=()
cache="$build/CMakeCache.txt"
if grep -q '^AICAM_SANITIZE:BOOL=ON' "$cache"; then
  sanitizer=(-DCMAKE_C_FLAGS=-fsanitize=address,undefined -DCMAKE_CXX_FLAGS=-fsanitize=address,undefined)
elif grep -q '^AICAM_TSAN:BOOL=ON' "$cache"; then
  sanitizer=(-DCMAKE_C_FLAGS=-fsanitize=thread -DCMAKE_CXX_FLAGS=-fsanitize=thread)
fi
cmake -S "$root/examples" -B "$work/examples-build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" "${sanitizer[@]}" >/dev/null
cmake --build "$work/examples-build"
for program in enrol recognize; do
  echo "built $work/examples-build/$program"
done
