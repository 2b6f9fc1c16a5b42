# list, --usb-id, --module and doctor on a machine without a module; the texts
# for a port this user may not open and for a port another program holds.
source "$(dirname "$0")/cli_helpers.sh"

# u RC TEXT ARGS...: as t, without --port, so that the module is looked for.
u() {
  local rc=$1 text=$2
  shift 2
  run "$AICAM" "$@"
  expect_rc "$rc" "aicam $*:"
  expect_one_error_line "$text"
}

u 2 "--usb-id takes VID:PID, two hexadecimal numbers of four digits, not '1d6b'" --usb-id 1d6b list
u 2 "--usb-id takes VID:PID" --usb-id 1d6b:104 list
run "$AICAM" --usb-id 1d6b:0104 list
expect_rc 0 "list --usb-id:"
[[ "$(head -n 1 <<<"$OUT")" =~ ^(#\ +SERIAL\ NODE\ +VIDEO\ NODE\ +USB\ ID\ +SERIAL\ NUMBER\ +USB\ PATH|no\ module\ attached\ with\ USB\ id\ 1d6b:0104) ]] ||
  fail "list: a table header or 'no module attached with USB id 1d6b:0104'"

# With an id no device has, nothing matches whatever is plugged in here.
run "$AICAM" --usb-id ffff:fffe list --all
expect_rc 0 "list --all:"
expect_out_line "no module attached with USB id ffff:fffe"
u 1 "no module found with USB id ffff:fffe: no such device — is the module plugged in?" --usb-id ffff:fffe ping
u 1 "no module '0' is attached with USB id ffff:fffe" --usb-id ffff:fffe --module 0 info
run "$AICAM" --usb-id ffff:fffe doctor
expect_rc 1 "doctor without a module:"
expect_out_line "[FAIL] module: no module found with USB id ffff:fffe: no such device — is the module plugged in? \`aicam list\` shows what is attached"
expect_out_line "       fix: plug the module in; \`lsusb\` must show it, with the ids of --usb-id"
grep -qxE '\[ ok \] library: V4\.2\.0\.2 \(.*libai_camera\.so[.0-9]*\)' <<<"$OUT" || fail "doctor names the library's version and file"
expect_one_error_line "aicam: doctor: 1 check(s) failed (-25)"

# A port this user may not open, and one another program holds, explained.
start_sim
pts=$(readlink -f "$PORT")
chmod 600 "$pts"
as_nobody --port "$pts" ping
expect_rc 1 "a port nobody may open:"
expect_one_error_line \
  "permission denied on $pts: add yourself to group dialout (or install the udev rule) and log in again (-2)"

exec 9<>"$pts"
run "$AICAM" --port "$pts" --video "$pts" doctor
grep -qE "^\[FAIL\] in use: $pts is held by ([0-9]+ \([a-z-]+\), )*$$ \(bash\)" <<<"$OUT" ||
  fail "doctor names the program holding the port"
exec 9<&-

# Locked by another user's program, which nobody cannot see in /proc: the lock tells.
chmod 666 "$pts"
flock --exclusive --close "$pts" sleep 30 &
lock_pid=$!
for _ in $(seq 100); do
  flock --nonblock "$pts" true || break
  sleep 0.05   # until the lock is taken, up to 5 s
done
as_nobody --port "$pts" --video "$pts" doctor
grep -qF "[FAIL] in use: $pts is locked by a program this user cannot see" <<<"$OUT" ||
  fail "doctor tells of a lock held out of sight"
kill "$lock_pid"
finish
