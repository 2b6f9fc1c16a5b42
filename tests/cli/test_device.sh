#!/usr/bin/env bash
# info, ping, the maintenance commands, and the one-line failures of a
# missing port and of a module that does not answer.
source "$(dirname "$0")/cli_helpers.sh"

start_sim --reboot-quiet 0

run_aicam info
expect_rc 0 "info:"
for label in "firmware version:" "model:" "application version:" "serial number:" "temperature:" "sensor model:"; do
  grep -q "^$label  *[^ ]" <<<"$OUT" || fail "info: no value after '$label'"
done
expect_out_has "SIM-FW" "info: the simulator's firmware version"
run_aicam info --sn-mode 1
expect_rc 0 "info --sn-mode 1:"
serial1=$(sed -n 's/^serial number: *//p' <<<"$OUT")
run_aicam info --sn-mode 0
serial0=$(sed -n 's/^serial number: *//p' <<<"$OUT")
[ -n "$serial0" ] && [ "$serial0" != "$serial1" ] || fail "info: the two kinds of serial number should differ"

run_aicam list
expect_rc 0 "list:"
[ "$(grep -cvE '^(serial|video): ' <<<"$OUT")" -eq 0 ] || fail "list prints only serial and video lines"
grep -qE '^serial: ' <<<"$OUT" && grep -qE '^video: ' <<<"$OUT" || fail "list names both kinds of node"

run_aicam ping "hello module"
expect_rc 0 "ping:"
expect_out_has 'the module echoed "hello module"' "ping:"

run_aicam reboot 3
expect_rc 0 "reboot 3:"
run_aicam reboot 5
expect_rc 4 "reboot 5:"
expect_one_error_line "MODE must be a whole number from 0 to 4"
run_aicam recovery 0
expect_rc 0 "recovery 0:"

run "$AICAM" --port "$SCRATCH/no-such-port" ping
expect_rc 2 "a missing port:"
expect_one_error_line "the serial port could not be opened: $SCRATCH/no-such-port (-2)"

# The module swallows the next request: the library gives up after 10 s.
start_sim --drop 1
run_aicam ping
expect_rc 6 "no answer:"
expect_one_error_line "aicam: ping: the module did not answer within 10 s (-6)"

finish
