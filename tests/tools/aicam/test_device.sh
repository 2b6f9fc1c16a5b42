# info, list, ping, maintenance, help, command-line mistakes, one-line failures, aicam-sim options.
source "$(dirname "$0")/cli_helpers.sh"

for command in "" list info ping reboot reset engineering recovery faces "faces add" "faces add-image" \
               "faces add-feature" "faces delete" "faces list" "faces count" "faces query" "faces feature" \
               recognize config "config get" "config set" settings "settings get" "settings set" upgrade snapshot \
               doctor; do
  run "$AICAM" $command --help
  expect_rc 0 "'$command --help':"
  grep -q "^usage: aicam .*${command}" <<<"$OUT" && [ -z "$ERR" ] || fail "'$command --help' prints its usage alone"
done
t 2 "unknown command 'frobnicate'" frobnicate
t 2 "aicam: faces add: missing ID; see 'aicam faces add --help'" faces add
t 2 "unexpected 'b'" ping a b
t 2 "--log takes trace, debug" --log loud info
run "$AICAM" --port "$SCRATCH/no-such-port" ping
expect_rc 1 "a missing port:"
expect_one_error_line \
  "$SCRATCH/no-such-port: no such device — is the module plugged in? \`aicam list\` shows what is attached (-2)"

start_sim --reboot-quiet 0 --library "$SCRATCH/faces.txt"
t 0 "SIM-FW" info
for label in "firmware version:" "model:" "application version:" "serial number:" "temperature:" "sensor model:"; do
  grep -q "^$label  *[^ ]" <<<"$OUT" || fail "info: no value after '$label'"
done
t 0 "" info --sn-mode 1
serial1=$(sed -n 's/^serial number: *//p' <<<"$OUT")
t 0 "" info --sn-mode 0
serial0=$(sed -n 's/^serial number: *//p' <<<"$OUT")
[ -n "$serial0" ] && [ "$serial0" != "$serial1" ] || fail "info: the two kinds of serial number should differ"
t 0 "" list --nodes
grep -qE '^serial: ' <<<"$OUT" && grep -qE '^video: ' <<<"$OUT" && [ "$(grep -cvE '^(serial|video): ' <<<"$OUT")" -eq 0 ] ||
  fail "list --nodes prints serial and video lines only"
t 0 'the module echoed "hello module"' ping "hello module"
t 0 "" reboot 3
t 2 "MODE must be a whole number from 0 to 4" reboot 5
t 0 "" recovery 0
t 0 "enrolled alice" faces add alice
(cd "$SCRATCH" && "$AICAM" --log debug --port "$PORT" ping >/dev/null 2>&1)
grep -q "FUNCTION : Ping" "$SCRATCH"/Log/*.log || fail "--log debug records the Ping call under Log/"
(cd "$SCRATCH" && "$AICAM" --log debug --log-dir "$SCRATCH/var/log/aicam" --port "$PORT" ping >/dev/null 2>&1)
grep -q "FUNCTION : Ping" "$SCRATCH"/var/log/aicam/*.log || fail "--log-dir puts the log in the directory given"

# The simulator removes its link at exit and keeps its library for the next run.
stop_sim
[ ! -e "$PORT" ] || fail "aicam-sim left its link behind"
start_sim --library "$SCRATCH/faces.txt" --unplug-after 2
t 0 "alice is enrolled" faces query alice
t 0 "" ping
# The module hangs up a moment after answering its second request. Its link
# then names a pseudo-terminal number that the next one made on this machine
# takes, another test's module perhaps: the link is not opened again.
sim_said "unplugged after 2 requests"
run "$AICAM_SIM" --fps 0
[ "$RC" -eq 2 ] && [ -z "$OUT" ] || fail "aicam-sim --fps 0: exit status 2 and nothing on stdout, got $RC"

# The module swallows the next request: the library gives up after 10 s.
start_sim --drop 1
t 1 "aicam: ping: the request failed: the serial link is down or the module did not answer in time (-6)" ping
finish
