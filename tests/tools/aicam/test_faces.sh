# The face library, then recognition reports until the count or an interrupt, paused afterwards.
source "$(dirname "$0")/cli_helpers.sh"

start_sim
t 0 "enrolled alice" faces add alice
t 0 "" faces add bob
run_aicam faces add alice
[ "$RC" -ne 0 ] || fail "a second alice should be refused"
expect_one_error_line "(alice)"
t 0 "enrolled kate" faces add kate --return-image "$SCRATCH/kate.jpg"
[ "$(od -An -tx1 -N2 "$SCRATCH/kate.jpg" | tr -d ' ')" = "ffd8" ] || fail "the enrolment image is a JPEG"
t 0 "" faces delete kate
t 0 "" faces list
[ "$OUT" = "$(printf 'alice\nbob')" ] || fail "list: expected alice and bob, one a line"
t 0 "bob is enrolled" faces query bob
run_aicam faces query carol
expect_rc 3 "query carol:"
expect_one_error_line "aicam: faces query: carol is not enrolled (module status "

head -c 3000 /dev/urandom >"$SCRATCH/face.jpg"
head -c 50000 /dev/urandom >"$SCRATCH/big-face.jpg"
t 0 "" faces add-image carol "$SCRATCH/face.jpg"
t 0 "" faces add-image dave "$SCRATCH/face.jpg" --slice 1024
t 0 "" faces add-image henry "$SCRATCH/big-face.jpg"
t 2 "--slice must be a whole number from 1 to 1048576, not '2000000'" faces add-image ivan "$SCRATCH/big-face.jpg" --slice 2000000
t 1 "cannot read $SCRATCH/missing.jpg" faces add-image erin "$SCRATCH/missing.jpg"
t 0 "" faces feature alice --out "$SCRATCH/alice.feature"
[ "$(wc -c <"$SCRATCH/alice.feature")" -eq 1384 ] || fail "a feature is 1384 characters"
t 0 "" faces add-feature frank "$SCRATCH/alice.feature"
t 0 "" faces feature frank
[ "$OUT" = "$(cat "$SCRATCH/alice.feature")" ] || fail "frank's feature should be the one sent"
head -c 100 "$SCRATCH/alice.feature" >"$SCRATCH/short.feature"
t 2 "holds 100" faces add-feature gina "$SCRATCH/short.feature"
t 0 "" faces list
[ "$OUT" = "$(printf 'alice\nbob\ncarol\ndave\nhenry\nfrank')" ] || fail "list after the enrolments"
t 0 "" faces delete bob
run_aicam faces query bob
expect_rc 3 "query bob after its deletion:"
t 0 "" faces count
expect_out_line "5" "count after deleting bob:"
t 0 "" faces delete --all
t 0 "" faces list
[ -z "$OUT" ] || fail "an empty library lists nothing"

start_sim --report-interval 100   # a fresh module: alice alone in its library
t 0 "" faces add alice
t 0 "" recognize --count 4 --kinds recognition
[ "$(grep -c '^recognition  *{.*"id":"alice".*}$' <<<"$OUT")" -eq 4 ] && [ "$(grep -c '' <<<"$OUT")" -eq 4 ] ||
  fail "exactly four recognitions of alice"
grep -qF "4 reports; recognition paused" <<<"$ERR" || fail "recognition paused after the count"
t 0 "" recognize --count 3 --kinds track,image
grep -qE '^track  *\{' <<<"$OUT" && ! grep -q '^recognition' <<<"$OUT" || fail "track reports and no recognition"
head -c 20000 /dev/urandom >"$SCRATCH/reference.jpg"
for slicing in "" "--slice 4096"; do
  t 0 "" recognize --one-to-one "$SCRATCH/reference.jpg" $slicing --count 2 --kinds recognition
  [ "$(grep -c '"mode":"1:1"' <<<"$OUT")" -eq 2 ] || fail "two one-to-one reports ($slicing)"
done
t 2 "unknown report kind 'bogus'" recognize --seconds 1 --kinds bogus

# Until interrupted: the tool pauses recognition and exits 130.
"$AICAM" --port "$PORT" recognize --kinds track >"$SCRATCH/out" 2>"$SCRATCH/err" &
tool=$!
timeout 10 bash -c "until [ \$(grep -c '^track' '$SCRATCH/out') -ge 2 ]; do sleep 0.05; done" || fail "no track reports"
kill -INT "$tool"
timeout 10 tail --pid="$tool" -f /dev/null || { kill -KILL "$tool"; fail "recognize did not end within 10 s of SIGINT"; }
RC=0
wait "$tool" || RC=$?
ERR=$(cat "$SCRATCH/err")
expect_rc 130 "recognize until SIGINT:"
grep -qF "recognition paused" <<<"$ERR" || fail "recognition paused after the interrupt"
finish
