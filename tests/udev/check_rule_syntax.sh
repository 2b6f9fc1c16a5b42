# check_rule_syntax.sh RULES-FILE: udevadm loads the file without a complaint.
# Debian 12's udevadm has no "verify"; "udevadm test" loads every rules file and
# names each line it refuses, but also applies owners and links to the device it
# runs on, so it runs in a mount namespace of its own over empty /run and /dev.
set -euo pipefail
rule=$(realpath "${1:?usage: $0 RULES-FILE}")
name=$(basename "$rule")
command -v udevadm >/dev/null || { echo "SKIP: udevadm is missing (Debian package udev)"; exit 77; }
unshare --mount true 2>/dev/null || { echo "SKIP: no mount namespace can be made here"; exit 77; }

out=$(unshare --mount bash -c '
  set -e
  mount -t tmpfs none /run && mkdir -p /run/udev/rules.d && mount -t tmpfs none /dev
  cp "$1" /run/udev/rules.d/
  udevadm test /sys/devices/virtual/mem/null 2>&1' bash "$rule")

grep -qxF "Reading rules file: /run/udev/rules.d/$name" <<<"$out" || { echo "FAIL: udevadm did not read $name"; exit 1; }
if complaints=$(grep -F "/run/udev/rules.d/$name:" <<<"$out" | grep -v '^[^/]*: '); then
  echo "FAIL: udevadm refuses lines of $name:"
  echo "$complaints"
  exit 1
fi
echo "udevadm reads $name without a complaint"
