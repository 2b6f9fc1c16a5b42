# Firmware upgrade: progress at a terminal and elsewhere; a wrong hash refused with the module's text;
# a lost slice resent; SIGTERM stops the upload between slices and applies nothing.
source "$(dirname "$0")/cli_helpers.sh"

start_sim -v
head -c 307200 /dev/urandom >"$SCRATCH/firmware.pkg"
md5=$(md5sum "$SCRATCH/firmware.pkg" | cut -d' ' -f1)
# stderr is a file here: the start and the end, and no bar.
t 0 "" upgrade "$SCRATCH/firmware.pkg" --slice 8192
expect_out_line "firmware package applied (307200 bytes, md5 $md5)"
[ "$ERR" = "uploading $SCRATCH/firmware.pkg (307200 bytes, md5 $md5) in slices of 8192 bytes
$(sed -n 2p <<<"$ERR")" ] && [[ "$(sed -n 2p <<<"$ERR")" =~ ^uploaded\ in\ [0-9.]+\ s\ \(0\ slices\ sent\ again\)$ ]] ||
  fail "away from a terminal: one line at the start, one at the end"
t 0 "" --quiet upgrade "$SCRATCH/firmware.pkg"
[ -z "$ERR" ] || fail "--quiet: nothing on stderr"

# At a terminal (script gives the tool a pseudo-terminal), the bar is drawn in place.
script -qec "$(printf '%q ' "$AICAM" --port "$PORT" upgrade "$SCRATCH/firmware.pkg" --slice 8192)" /dev/null \
  >"$SCRATCH/tty" </dev/null
grep -qF "100% 307200/307200 bytes" "$SCRATCH/tty" || fail "the progress bar should reach the whole package"
grep -qE "[0-9.]+ [KM]iB/s +[0-9]+:[0-9]{2} left" "$SCRATCH/tty" || fail "the progress bar shows rate and time left"
grep -q $'\r\\[' "$SCRATCH/tty" || fail "the bar is redrawn in place at a terminal"

wrong=0123456789abcdef0123456789abcdef
run_aicam upgrade "$SCRATCH/firmware.pkg" --md5 "$wrong"
expect_rc 3 "a wrong hash:"
last=$(tail -n 1 <<<"$ERR")
[[ "$last" == "aicam: upgrade: the module refused the package: "*"MD5 mismatch"*"$wrong"*"(module status "[0-9]*")" ]] ||
  fail "the refusal line shows the module's own explanation and status: $last"
[ "$(grep -c '^aicam:' <<<"$ERR")" -eq 1 ] || fail "one failure line"
t 2 "--md5 takes 32 hexadecimal characters" upgrade "$SCRATCH/firmware.pkg" --md5 xyz

# SIGTERM halfway at a terminal: the bar's line is ended, and a line of its own
# says how far it got; the package is never applied.
start_sim -v --delay 100
script -qec "$(printf '%q ' "$AICAM" --port "$PORT" upgrade "$SCRATCH/firmware.pkg" --slice 4096)" /dev/null \
  >"$SCRATCH/tty" </dev/null &
sim_said "tag 0x0020"
sleep 1
tool=$(pgrep -n -f "^$AICAM --port $PORT upgrade" || true)
[ -n "$tool" ] && kill -TERM "$tool"
RC=0
wait $! || RC=$?
expect_rc 143 "upgrade stopped by SIGTERM:"
grep -qE "^aicam: upgrade: upgrade stopped by SIGTERM after [1-9][0-9]* of 307200 bytes \([0-9]+%\); the package was not applied" "$SCRATCH/tty" ||
  fail "the interrupted upgrade says so on a fresh line with how far it got: $(tail -c 300 "$SCRATCH/tty")"
! grep -qF "tag 0x0021" "$SCRATCH/sim.err" || fail "the package must not be applied after SIGTERM"

# The first slice's answer is lost: after the library's 10 s it is sent again.
start_sim --drop 1
t 0 "firmware package applied (307200 bytes, md5 $md5)" upgrade "$SCRATCH/firmware.pkg" --slice 65536
grep -qF "(1 slices sent again)" <<<"$ERR" || fail "the lost slice should be sent again once"
finish
