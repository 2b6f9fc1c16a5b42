# The command line as a user meets it: --version, help, options anywhere, the
# exit statuses, --json read back by python3, SIGTERM during recognize, reboot --wait.
source "$(dirname "$0")/cli_helpers.sh"

run "$AICAM" --version
expect_rc 0 "--version:"
[[ "$OUT" =~ ^aicam\ [0-9]+(\.[0-9]+){3}\ \(libai_camera\ V[0-9]+(\.[0-9]+){3}\)$ ]] && [ -z "$ERR" ] ||
  fail "--version prints the tool's and the library's version"
run "$AICAM" --help
expect_rc 0 "--help:"
[ "$(grep -c '^Exit status:' <<<"$OUT")" -eq 1 ] && grep -qE '^  3 +the module refused' <<<"$OUT" ||
  fail "the main help has the exit statuses"
run "$AICAM" faces add --help
! grep -q 'Exit status' <<<"$OUT" || fail "a command's help does not repeat the exit statuses"

# Usage mistakes: status 2, one line, one prefix.
t 2 "aicam: --port needs a value; see 'aicam --help'" ping --port
t 2 "aicam: unknown option '--frobnicate'; see 'aicam --help'" --frobnicate ping
t 2 "aicam: ping: --json is not an option of 'aicam ping'; see 'aicam ping --help'" ping --json
t 2 "aicam: no command given; see 'aicam --help'"
t 2 "aicam: reboot: --wait takes a number of seconds from 1 to 3600, not '0'" reboot --wait=0
grep -q 'aicam: aicam' <<<"$ERR" && fail "a doubled prefix"

start_sim -v --library "$SCRATCH/faces.txt" --reboot-quiet 0
t 0 "" faces add alice
t 0 "" faces add "bob \"the\" builder"
# Global options after the command and --opt=value both work.
run "$AICAM" ping "hi" --port="$PORT"
expect_rc 0 "ping --port=PATH after the command:"
# The module refusing is 3 with its status, the library failing 1 with its code.
t 3 "aicam: faces query: carol is not enrolled (module status " faces query carol
run "$AICAM" --port "$SCRATCH/none" ping
expect_rc 1 "no such port:"
expect_one_error_line "(-2)"

# --json: every line parses, with the members documented.
json_check() {  # json_check PYTHON-EXPRESSION-ON-LINES: the lines of $OUT as a list `lines`
  python3 -c 'import json,sys; lines=[json.loads(l) for l in sys.stdin.read().splitlines() if l]; sys.exit(0 if ('"$1"') else 1)' <<<"$OUT" ||
    fail "--json: expected $1"
}
t 0 "" info --json
json_check 'len(lines)==1 and lines[0]["firmwareVersion"].startswith("SIM-FW") and type(lines[0]["temperature"]) is int and set(lines[0])=={"firmwareVersion","model","applicationVersion","serialNumber","temperature","sensorModel"}'
t 0 "" faces list --json
json_check 'lines==[{"ids":["alice","bob \"the\" builder"]}]'
t 0 "" config set counts 4 6
t 0 "" settings set frame-rate 20
t 0 "" --json config get
json_check 'len(lines)==1 and lines[0]["counts"]==[4,6] and lines[0]["template-update"] in (True,False) and type(lines[0]["text"]) is str'
t 0 "" settings get --json
json_check 'len(lines)==1 and lines[0]["frame-rate"]==20 and lines[0]["no-flicker 0"]["on"] in (True,False) and lines[0]["camera-stream 1"] in ("open","closed")'
t 0 "" recognize --count 3 --json --kinds recognition,image
json_check 'len(lines)==3 and all(l["kind"] in ("recognition","image") and type(l["text"]) is str for l in lines) and all(l["binaryBytes"]>0 for l in lines if l["kind"]=="image")'
run "$AICAM" --usb-id ffff:fffe doctor --json
expect_rc 1 "doctor without a module:"
json_check 'lines[0]["check"]=="module" and lines[0]["result"]=="fail" and "fix" in lines[0] and lines[-1]["check"]=="library" and lines[-1]["result"]=="ok"'

# --seconds counts what it prints.
start_sim -v --report-interval 200
t 0 "" faces add alice
t 0 "" recognize --seconds 2 --kinds recognition
printed=$(grep -c '^recognition' <<<"$OUT")
[ "$printed" -gt 0 ] && grep -qxF "$printed reports; recognition paused" <<<"$ERR" ||
  fail "recognize --seconds: the summary counts the $printed reports printed"

# SIGTERM while recognising: the tool pauses the module's recognition, then exits 143.
"$AICAM" --port "$PORT" recognize --kinds track >"$SCRATCH/out" 2>"$SCRATCH/err" &
tool=$!
timeout 10 bash -c "until [ \$(grep -c '^track' '$SCRATCH/out') -ge 2 ]; do sleep 0.05; done" || fail "no track reports"
kill -TERM "$tool"
RC=0
wait "$tool" || RC=$?
ERR=$(cat "$SCRATCH/err")
expect_rc 143 "recognize until SIGTERM:"
grep -qxF "aicam: recognize: stopped by SIGTERM" <<<"$ERR" || fail "recognize says it was stopped"
# The simulator's log: the last recognition request it served is the pause (0x15), after the start (0x10).
[ "$(grep -oE 'tag 0x00(10|15)' "$SCRATCH/sim.err" | tail -n 1)" = "tag 0x0015" ] ||
  fail "the module's recognition is paused after SIGTERM"

# reboot --wait: the module is silent for 1.5 s after the restart; aicam waits
# until it answers, and the next command finds it ready.
start_sim --reboot-quiet 1500
t 0 "the module is restarting" reboot --wait 40
grep -qE '^the module answered after [0-9.]+ s$' <<<"$ERR" || fail "reboot --wait says when the module answered"
t 0 "" ping
t 0 "" --quiet reboot --wait
[ -z "$ERR" ] || fail "reboot --wait --quiet: nothing on stderr"
# Silent for longer than the wait: the last ping's failure, status 1.
start_sim --reboot-quiet 60000
run_aicam reboot --wait 1
expect_rc 1 "reboot --wait 1 on a silent module:"
[ "$(tail -n 1 <<<"$ERR")" = "aicam: reboot: the module did not answer within 1 s: $(sed -n 's/.*within 1 s: //p' <<<"$ERR")" ] &&
  grep -qE '\(-6\)$' <<<"$ERR" || fail "reboot --wait gives up with the ping's failure"
finish
