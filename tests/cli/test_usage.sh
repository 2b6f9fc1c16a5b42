#!/usr/bin/env bash
# Help for every command, and the one-line refusal of a wrong command line.
source "$(dirname "$0")/cli_helpers.sh"

for command in "" list info ping reboot reset engineering recovery faces "faces add" "faces add-image" \
               "faces add-feature" "faces delete" "faces list" "faces count" "faces query" "faces feature" \
               recognize config "config get" "config set" settings "settings get" "settings set" upgrade snapshot; do
  run "$AICAM" $command --help
  expect_rc 0 "'$command --help':"
  grep -q "^usage: aicam .*${command}" <<<"$OUT" || fail "'$command --help' prints its usage"
  [ -z "$ERR" ] || fail "'$command --help' writes nothing on stderr"
done

run_aicam frobnicate
expect_rc 4 "an unknown command:"
expect_one_error_line "unknown command 'frobnicate'"
run_aicam faces add
expect_rc 4 "a missing argument:"
expect_one_error_line "aicam: faces add: missing ID; see 'aicam faces add --help' (-4)"
run_aicam ping a b
expect_rc 4 "an extra argument:"
expect_one_error_line "unexpected 'b'"
run "$AICAM" --log loud info
expect_rc 4 "a bad log level:"
expect_one_error_line "--log takes trace, debug"

# --log writes the library's trace records under Log/ in the working directory.
start_sim
(cd "$SCRATCH" && "$AICAM" --log debug --port "$PORT" ping >/dev/null 2>&1)
grep -q "FUNCTION : Ping" "$SCRATCH"/Log/*.log || fail "--log debug records the Ping call"

finish
