# Inside the real-device test machine: the simulated module found on real USB
# with both nodes paired, aicam list/doctor/snapshot without --port or --video,
# the udev rule applied to the real nodes, and doctor's explanations when the
# user lacks permission, when the camera function is gone and when the module
# is unplugged. Skipped (77) anywhere else.
source "$(dirname "$0")/cli_helpers.sh"
[ "${IN_TEST_VM:-}" = 1 ] || { echo "SKIP: runs only inside the real-device test machine (../shared/vm)"; exit 77; }

# What the module says of itself, from the gadget's side.
hex4() { printf '%04x' "$(cat "$1")"; }
ids=$(hex4 "$VM_GADGET/idVendor"):$(hex4 "$VM_GADGET/idProduct")
serial=$(cat "$VM_GADGET/strings/0x409/serialnumber")
usb=$VM_USB_DEVICE
module_line="0  $VM_ACM_HOST  $VM_UVC_CAPTURE  $ids  $serial  $usb"
using="aicam: using module 0 ($ids, serial $serial, USB $usb): serial $VM_ACM_HOST, video $VM_UVC_CAPTURE"
squeeze() { tr -s ' ' <<<"$1"; }

run "$AICAM" list
expect_rc 0 "list:"
[ "$(squeeze "$OUT")" = "$(squeeze "$(printf '# SERIAL NODE VIDEO NODE USB ID SERIAL NUMBER USB PATH\n%s' "$module_line")")" ] ||
  fail "list: the one module, its capture node (not the metadata node) beside its serial node"
run "$AICAM" --usb-id "$ids" list
[ "$(squeeze "$(tail -n 1 <<<"$OUT")")" = "$(squeeze "$module_line")" ] || fail "list --usb-id $ids"

# The module side: the simulator on the gadget's tty, its pictures into the camera.
"$AICAM_SIM" -v --tty "$VM_ACM_GADGET" --video "$VM_UVC_FIFO" --size 320x240 >"$SCRATCH/sim.out" 2>"$SCRATCH/sim.err" &
SIM_PID=$!
for _ in $(seq 300); do
  grep -q "module ready on" "$SCRATCH/sim.err" && break
  sleep 0.1   # waiting for the simulator to hold the gadget's tty, up to 30 s
done
grep -q "module ready on" "$SCRATCH/sim.err" || { fail "aicam-sim --tty: $(cat "$SCRATCH/sim.err")"; finish; }

run "$AICAM" ping
expect_rc 0 "ping without --port:"
[ "$ERR" = "$using" ] || fail "ping says which module and nodes it uses"
run "$AICAM" snapshot "$SCRATCH/shot.png"
expect_rc 0 "snapshot without --port/--video:"
expect_out_line "snapshot: $SCRATCH/shot.png (320x240)"
grep -qE '^side text: \{"frame":[0-9]+' <<<"$OUT" || fail "snapshot: the side text of the simulator's picture"
[ "$ERR" = "$using" ] || fail "snapshot says which module and nodes it uses"
run "$AICAM" --module "$serial" info
expect_rc 0 "--module SERIAL:"

run "$AICAM" doctor
expect_rc 0 "doctor:"
for check in module nodes permissions "in use" ModemManager ping frame library; do
  grep -q "^\[ ok \] $check: " <<<"$OUT" || fail "doctor: '$check' passes"
done
expect_out_line "[ ok ] module: module 0 ($ids, serial $serial, USB $usb)"
expect_out_line "[ ok ] nodes: serial $VM_ACM_HOST and video $VM_UVC_CAPTURE are one module's, on USB $usb"
grep -qE '^\[ ok \] frame: 320x240, side text \{"frame":' <<<"$OUT" || fail "doctor: a frame with its side text"

# Nodes only root may open: the user is told what to do; with the rule below, plugdev may.
as_nobody ping
expect_rc 1 "ping as nobody:"
[ "$(tail -n 1 <<<"$ERR")" = "aicam: ping: permission denied on $VM_ACM_HOST: add yourself to group dialout (or install the udev rule) and log in again (-2)" ] ||
  fail "ping as nobody: the permission text"
# A program named ModemManager (a stand-in: doctor goes by the name) runs too.
cp "$(command -v sleep)" "$SCRATCH/ModemManager"
"$SCRATCH/ModemManager" 600 &
MM_PID=$!
as_nobody doctor
expect_rc 1 "doctor as nobody:"
expect_out_line "[FAIL] ModemManager: runs, and may probe $VM_ACM_HOST with AT commands"
grep -qF "[FAIL] permissions: permission denied on $VM_ACM_HOST: add yourself to group dialout" <<<"$OUT" &&
  grep -qF "permission denied on $VM_UVC_CAPTURE: add yourself to group video" <<<"$OUT" ||
  fail "doctor as nobody: both nodes' permission texts"

# The udev rule on the real nodes (udevadm test applies owners and links in this
# throw-away machine): group plugdev, the links, ModemManager told to keep off.
mkdir -p /run/udev/rules.d
cp "${4:?}/udev/70-ai-camera.rules" /run/udev/rules.d/
tty_out=$(udevadm test "/sys/class/tty/${VM_ACM_HOST#/dev/}" 2>&1)
grep -qxF "ID_MM_DEVICE_IGNORE=1" <<<"$tty_out" || fail "udev: ID_MM_DEVICE_IGNORE=1 on the control port"
grep -qE "70-ai-camera.rules:[0-9]+ GROUP 46$" <<<"$tty_out" || fail "udev: the control port to plugdev"
for node in /sys/bus/usb/devices/"$usb":*/video4linux/video*; do
  out=$(udevadm test "$node" 2>&1)
  grep -qE "70-ai-camera.rules:[0-9]+ GROUP 46$" <<<"$out" || fail "udev: ${node##*/} to plugdev"
  linked=$(grep -c "LINK 'aicam/$serial/video'" <<<"$out" || true)
  [ "/dev/${node##*/}" = "$VM_UVC_CAPTURE" ] && want=1 || want=0
  [ "$linked" -eq "$want" ] || fail "udev: /dev/aicam/$serial/video for the capture node only (${node##*/})"
done
[ "$(readlink -f "/dev/aicam/$serial/control")" = "$VM_ACM_HOST" ] &&
  [ "$(readlink -f "/dev/aicam/$serial/video")" = "$VM_UVC_CAPTURE" ] || fail "udev: the links /dev/aicam/$serial/*"
as_nobody --groups=plugdev --port "/dev/aicam/$serial/control" doctor
expect_rc 0 "doctor as nobody in plugdev through the control link:"
expect_out_line "[ ok ] nodes: serial /dev/aicam/$serial/control and video $VM_UVC_CAPTURE are one module's, on USB $usb"
expect_out_line "[ ok ] ModemManager: runs, and leaves /dev/aicam/$serial/control alone (ID_MM_DEVICE_IGNORE=1)"
kill "$MM_PID"

# The camera function gone (its driver unbound): a partial device, explained.
uvc_interface=$(basename "$(readlink -f "/sys/class/video4linux/${VM_UVC_CAPTURE#/dev/}/device")")
echo -n "$uvc_interface" >/sys/bus/usb/drivers/uvcvideo/unbind
run "$AICAM" list --all
[ "$(squeeze "$(tail -n 1 <<<"$OUT")")" = "$(squeeze "-  $VM_ACM_HOST  -  $ids  $serial  $usb")" ] ||
  fail "list --all: the module without its camera, unnumbered"
run "$AICAM" doctor
expect_rc 1 "doctor without the camera:"
expect_out_line "[FAIL] module: no module found: no such device — is the module plugged in? \`aicam list\` shows what is attached; USB $usb ($ids) has a serial node but no video capture node"
expect_out_line "       fix: is the module's other USB function on, and are the drivers cdc_acm and uvcvideo loaded (lsmod)?"
echo -n "$uvc_interface" >/sys/bus/usb/drivers/uvcvideo/bind

# Unplugged: nothing listed, the tool says so; plugged in again: found again.
echo 0 >"/sys/bus/usb/devices/$usb/authorized"
for _ in $(seq 100); do
  [ -e "$VM_ACM_HOST" ] || [ -e "$VM_UVC_CAPTURE" ] || break
  sleep 0.1   # waiting for the nodes to go, up to 10 s
done
run "$AICAM" list
expect_out_line "no module attached (--all also shows devices with one of the nodes)"
run "$AICAM" ping
expect_rc 1 "ping while unplugged:"
expect_one_error_line "no module found: no such device — is the module plugged in?"
echo 1 >"/sys/bus/usb/devices/$usb/authorized"
for _ in $(seq 100); do
  run "$AICAM" list
  [ "$(squeeze "$(tail -n 1 <<<"$OUT")")" = "$(squeeze "$module_line")" ] && break
  sleep 0.1   # waiting for the drivers to enumerate the module again
done
[ "$(squeeze "$(tail -n 1 <<<"$OUT")")" = "$(squeeze "$module_line")" ] || fail "list after plugging in again"

# reboot --wait while the module leaves the bus a moment after accepting the
# restart and comes back 2 s later: aicam opens the node anew and waits for a ping.
# The module leaves once it has the reboot request, however slowly aicam starts.
reboots=$(grep -c "tag 0x1004" "$SCRATCH/sim.err" || true)
( timeout 30 bash -c 'until [ "$(grep -c "tag 0x1004" "$1")" -gt "$2" ]; do sleep 0.05; done' _ "$SCRATCH/sim.err" "$reboots"
  sleep 0.3; echo 0 >"/sys/bus/usb/devices/$usb/authorized"; sleep 2; echo 1 >"/sys/bus/usb/devices/$usb/authorized" ) &
replug=$!
run "$AICAM" --port "$VM_ACM_HOST" reboot --wait 60
wait "$replug"
expect_rc 0 "reboot --wait across an unplug:"
grep -qE '^the module answered after [0-9.]+ s$' <<<"$ERR" || fail "reboot --wait: the module answered again"
run "$AICAM" --port "$VM_ACM_HOST" ping
expect_rc 0 "ping after reboot --wait:"

kill -TERM "$SIM_PID" 2>/dev/null; wait "$SIM_PID" 2>/dev/null || true
finish
