#!/usr/bin/env bash
# Installs, from Debian 12's archive, what the build and the tests need.
# Does nothing (one line of output) when everything is already installed.
set -euo pipefail

packages=(
  cmake ninja-build g++ pkg-config
  libgtest-dev libbenchmark-dev
  libavformat-dev libavcodec-dev libavdevice-dev libavutil-dev libswscale-dev
  ffmpeg
  udev   # udevadm, to check the udev rule
  help2man                       # the manual pages of aicam and aicam-sim
  dpkg-dev lintian file binutils # the Debian packages: shlibs, their check (scripts/check-packages.sh)
  python3                        # the include-cycle check
  python3-numpy python3-pytest   # the Python package and its tests
  python3-venv python3-pip python3-setuptools python3-wheel  # its pip install into a venv, tested
)

missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true)
  if [ "$status" != "install ok installed" ]; then
    missing+=("$package")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  echo "bootstrap: all build and test packages are installed"
  exit 0
fi

if [ "$(id -u)" -eq 0 ]; then
  as_root=()
elif command -v sudo >/dev/null 2>&1; then
  as_root=(sudo)
else
  echo "bootstrap: missing ${missing[*]}; run this script as root to install them" >&2
  exit 1
fi

echo "bootstrap: installing ${missing[*]}"
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
  apt-get install -y --no-install-recommends "${missing[@]}"
