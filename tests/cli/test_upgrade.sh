# Firmware upgrade with a progress bar; a wrong hash refused with the module's text; a lost slice resent.
source "$(dirname "$0")/cli_helpers.sh"

start_sim
head -c 307200 /dev/urandom >"$SCRATCH/firmware.pkg"
md5=$(md5sum "$SCRATCH/firmware.pkg" | cut -d' ' -f1)
t 0 "" upgrade "$SCRATCH/firmware.pkg" --slice 8192
expect_out_line "firmware package applied (307200 bytes, md5 $md5)"
grep -qF "100% 307200/307200 bytes" <<<"$ERR" || fail "the progress bar should reach the whole package"
grep -qE "[0-9.]+ [KM]iB/s +[0-9]+:[0-9]{2} left" <<<"$ERR" || fail "the progress bar shows rate and time left"
grep -qF "(0 slices sent again)" <<<"$ERR" || fail "nothing to resend on a clean link"

wrong=0123456789abcdef0123456789abcdef
run_aicam upgrade "$SCRATCH/firmware.pkg" --md5 "$wrong"
[ "$RC" -gt 0 ] || fail "a wrong hash: the module's status expected, got $RC"
last=$(tail -n 1 <<<"$ERR")
[[ "$last" == "aicam: upgrade: the module refused the package: "*"MD5 mismatch"*"$wrong"*"($RC)" ]] ||
  fail "the refusal line shows the module's own explanation: $last"
[ "$(grep -c '^aicam:' <<<"$ERR")" -eq 1 ] || fail "one failure line"
t 4 "--md5 takes 32 hexadecimal characters" upgrade "$SCRATCH/firmware.pkg" --md5 xyz

# The first slice's answer is lost: after the library's 10 s it is sent again.
start_sim --drop 1
t 0 "firmware package applied (307200 bytes, md5 $md5)" upgrade "$SCRATCH/firmware.pkg" --slice 65536
grep -qF "(1 slices sent again)" <<<"$ERR" || fail "the lost slice should be sent again once"
finish
