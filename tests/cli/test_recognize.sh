#!/usr/bin/env bash
# recognize: the reports arrive through the callbacks and are printed until
# the count or an interrupt; recognition is paused afterwards.
source "$(dirname "$0")/cli_helpers.sh"

start_sim --report-interval 100
run_aicam faces add alice
expect_rc 0 "enrol alice:"

run_aicam recognize --count 4 --kinds recognition
expect_rc 0 "recognize --count 4:"
[ "$(grep -c '' <<<"$OUT")" -eq 4 ] || fail "exactly four reports"
[ "$(grep -c '^recognition  *{.*"id":"alice".*}$' <<<"$OUT")" -eq 4 ] || fail "four recognitions of alice"
grep -qF "4 reports; recognition paused" <<<"$ERR" || fail "recognition paused after the count"

run_aicam recognize --count 3 --kinds track,image
expect_rc 0 "track and image reports:"
grep -qE '^track  *\{' <<<"$OUT" || fail "a track report"
grep -q '^recognition' <<<"$OUT" && fail "recognition reports were not asked for"

head -c 20000 /dev/urandom >"$SCRATCH/reference.jpg"
run_aicam recognize --one-to-one "$SCRATCH/reference.jpg" --count 2 --kinds recognition
expect_rc 0 "one-to-one recognition against a whole image:"
[ "$(grep -c '"mode":"1:1"' <<<"$OUT")" -eq 2 ] || fail "two one-to-one reports"
run_aicam recognize --one-to-one "$SCRATCH/reference.jpg" --slice 4096 --count 2 --kinds recognition
expect_rc 0 "one-to-one recognition against an image in slices:"
[ "$(grep -c '"mode":"1:1"' <<<"$OUT")" -eq 2 ] || fail "two one-to-one reports after slices"

# Until interrupted: the tool pauses recognition and ends normally.
"$AICAM" --port "$PORT" recognize --kinds track >"$SCRATCH/out" 2>"$SCRATCH/err" &
tool=$!
for _ in $(seq 200); do
  [ "$(grep -c '^track' "$SCRATCH/out" || true)" -ge 2 ] && break
  sleep 0.05
done
kill -INT "$tool"
for _ in $(seq 200); do
  kill -0 "$tool" 2>/dev/null || break
  sleep 0.05
done
if kill -0 "$tool" 2>/dev/null; then
  kill -KILL "$tool"
  fail "recognize did not end within 10 s of SIGINT"
fi
RC=0
wait "$tool" || RC=$?
OUT=$(cat "$SCRATCH/out")
ERR=$(cat "$SCRATCH/err")
expect_rc 0 "recognize until SIGINT:"
[ "$(grep -c '^track' <<<"$OUT")" -ge 2 ] || fail "reports printed before the interrupt"
grep -qF "recognition paused" <<<"$ERR" || fail "recognition paused after the interrupt"

run_aicam recognize --seconds 1 --kinds bogus
expect_rc 4 "an unknown report kind:"
expect_one_error_line "unknown report kind 'bogus'"

finish
