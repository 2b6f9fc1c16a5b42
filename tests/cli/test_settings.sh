#!/usr/bin/env bash
# config and settings: every value written is read back; refused values
# stop before the module is asked.
source "$(dirname "$0")/cli_helpers.sh"

start_sim

setting() { sed -n "s/^$1: *//p" <<<"$OUT"; }

run_aicam config set text '{"threshold":0.65}'
expect_rc 0 "config set text:"
run_aicam config get text
[ "$(setting text)" = '{"threshold":0.65}' ] || fail "config text read back"
printf '{"threshold":0.70,"liveness":false}\n' >"$SCRATCH/config.json"
run_aicam config set text --file "$SCRATCH/config.json"
run_aicam config get text
[ "$(setting text)" = '{"threshold":0.70,"liveness":false}' ] || fail "config text from a file"

run_aicam config set counts 5 7
expect_rc 0 "config set counts:"
run_aicam config set template-update on
run_aicam config get
[ "$(setting counts)" = "5 7 (recognition, liveness)" ] || fail "counts read back"
[ "$(setting template-update)" = "on" ] || fail "template-update read back"
run_aicam config set counts 0 3
expect_rc 4 "counts 0:"
expect_one_error_line "RECOGNITION must be a whole number from 1 to 10, not '0'"

run_aicam settings set frame-rate 15
expect_rc 0 "frame-rate 15:"
run_aicam settings set ir-light 150 60
run_aicam settings set screen-direction 3
run_aicam settings set camera-stream 1 close
run_aicam settings set no-flicker 1 1 off
run_aicam settings get
expect_rc 0 "settings get:"
[ "$(setting frame-rate)" = "15" ] || fail "frame-rate read back"
[ "$(setting ir-light)" = "150 60 (luminance, close time)" ] || fail "ir-light read back"
[ "$(setting screen-direction)" = "3" ] || fail "screen-direction read back"
[ "$(setting 'camera-stream 0')" = "open" ] || fail "camera 0 stays open"
[ "$(setting 'camera-stream 1')" = "closed" ] || fail "camera 1 closed"
[ "$(setting 'no-flicker 1')" = "frequency code 1, off" ] || fail "no-flicker of camera 1"
run_aicam settings get frame-rate
[ "$(setting frame-rate)" = "15" ] && [ "$(grep -c '' <<<"$OUT")" -eq 1 ] ||
  fail "get of one setting prints that one alone"

for accepted in "uvc 0" "rgb-ir 1" "stream-format 1" "rotate 2" "resolution 4" "face-info off" \
                "qrcode on 5" "upload open 2 3" "upload close"; do
  run_aicam settings set $accepted
  expect_rc 0 "settings set $accepted:"
done

run_aicam settings set frame-rate 30
expect_rc 4 "frame-rate 30:"
expect_one_error_line "10..25 must be a whole number from 10 to 25, not '30'"
run_aicam settings set upload open 1 0
expect_rc 4 "upload mode 1:"
run_aicam settings set luminous-threshold 3
expect_rc 4 "a read-only setting:"
expect_one_error_line "'luminous-threshold' can be read but not set"
run_aicam settings get rotate
expect_rc 4 "a write-only setting:"
run_aicam settings set brightness 3
expect_rc 4 "an unknown setting:"
expect_one_error_line "no setting called 'brightness'"

finish
