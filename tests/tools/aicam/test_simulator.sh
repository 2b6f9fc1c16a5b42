# aicam-sim as its user meets it: its version, a link it will not steal, a
# library file it cannot keep, and settings that survive a restart with the faces.
source "$(dirname "$0")/cli_helpers.sh"

version=$(sed -n 's/^#define AI_CAMERA_VERSION_STRING "\(.*\)"$/\1/p' "${3:?}/include/ai_camera_version.h")
run "$AICAM_SIM" --version
expect_rc 0 "aicam-sim --version:"
[ "$OUT" = "aicam-sim ${version:?no version in the header}" ] || fail "aicam-sim --version printed '$OUT'"

# A second simulator on the same link is refused and leaves the first one's link alone.
start_sim --library "$SCRATCH/module.db"
first=$(readlink "$PORT")
run timeout 10 "$AICAM_SIM" --link "$PORT"
[ "$RC" -ne 0 ] && [ "$RC" -ne 124 ] || fail "a second simulator on a taken link must stop with an error"
grep -qF -- "$PORT already exists" <<<"$ERR" || fail "the refusal names the link"
[ -z "$OUT" ] || fail "a refused simulator serves no device"
[ "$(readlink "$PORT")" = "$first" ] || fail "the refused simulator changed the link"
t 0 "" ping

# Settings are kept with the faces: both are there after a restart.
t 0 "" faces add alice
t 0 "" settings set frame-rate 15
t 0 "" config set counts 5 7
stop_sim
grep -qxF "camera.frameRate	15" "$SCRATCH/module.db" || fail "the file holds the frame rate"
start_sim --library "$SCRATCH/module.db"
t 0 "alice is enrolled" faces query alice
t 0 "" settings get frame-rate
grep -qxE "frame-rate: +15" <<<"$OUT" || fail "the frame rate survives the restart"
t 0 "" config get counts
expect_out_has "5 7" "the counts survive the restart:"
# A reset puts the factory values back, in the file as well.
t 0 "" reset
stop_sim
grep -qxF "camera.frameRate	25" "$SCRATCH/module.db" || fail "the reset reached the file"

# --force takes a live link over; the first simulator then leaves it in place at exit.
start_sim
"$AICAM_SIM" --link "$PORT" --force >"$SCRATCH/second.out" 2>"$SCRATCH/second.err" &
second=$!
timeout 10 bash -c 'until [ -s "$1" ]; do sleep 0.05; done' _ "$SCRATCH/second.out" || fail "the forced simulator did not start"
[ "$(readlink "$PORT")" = "$(head -n 1 "$SCRATCH/second.out")" ] || fail "--force points the link at the new module"
stop_sim
[ "$(readlink "$PORT")" = "$(head -n 1 "$SCRATCH/second.out")" ] || fail "the first simulator removed a link it no longer owns"
t 0 "" ping
kill -TERM "$second"
wait "$second" || fail "the forced simulator exits 0 on SIGTERM"
[ ! -e "$PORT" ] && [ ! -L "$PORT" ] || fail "the forced simulator removes its link at exit"

# A dangling link is what a killed simulator leaves behind: taken over without --force.
ln -s "$SCRATCH/gone" "$PORT"
start_sim
t 0 "" ping
stop_sim

# A library file that cannot be written stops the simulator at once with the reason.
run timeout 10 "$AICAM_SIM" --library /nonexistent/dir/f.db
[ "$RC" -eq 1 ] || fail "an unwritable library file: exit status 1"
grep -qF "aicam-sim: cannot keep the library in /nonexistent/dir/f.db" <<<"$ERR" || fail "the message names the file"
[ -z "$OUT" ] || fail "nothing is served with an unwritable library"
# ... and when it stops being writable later, at the first change.
mkdir "$SCRATCH/lib"
start_sim --library "$SCRATCH/lib/f.db"
mkdir "$SCRATCH/lib/f.db.tmp"   # where the next save would write
t 0 "" faces add bob
wait "$SIM_PID" && RC=0 || RC=$?
SIM_PID=
[ "$RC" -eq 1 ] || fail "a save that fails stops the simulator with exit status 1"
grep -qF "cannot write $SCRATCH/lib/f.db.tmp" "$SCRATCH/sim.err" || fail "the simulator says which file failed"
finish
