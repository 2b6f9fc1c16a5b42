#!/usr/bin/env bash
# The face library: enrol from the camera, an image (whole and in slices) and
# a feature; list, count, query, read a feature, delete one and all.
source "$(dirname "$0")/cli_helpers.sh"

start_sim

run_aicam faces add alice
expect_rc 0 "add alice:"
expect_out_line "enrolled alice"
run_aicam faces add bob
expect_rc 0 "add bob:"
run_aicam faces add alice
[ "$RC" -ne 0 ] || fail "a second alice should be refused"
expect_one_error_line "(alice)"

run_aicam faces add kate --return-image "$SCRATCH/kate.jpg"
expect_rc 0 "add with the enrolment image:"
expect_out_line "enrolled kate"
[ "$(od -An -tx1 -N2 "$SCRATCH/kate.jpg" | tr -d ' ')" = "ffd8" ] || fail "the enrolment image is a JPEG"
run_aicam faces delete kate

run_aicam faces list
expect_rc 0 "list:"
[ "$OUT" = "$(printf 'alice\nbob')" ] || fail "list: expected alice and bob, one a line"
run_aicam faces count
expect_out_line "2" "count:"

run_aicam faces query bob
expect_rc 0 "query bob:"
expect_out_line "bob is enrolled"
run_aicam faces query carol
[ "$RC" -gt 0 ] || fail "query carol: a module status expected"
expect_one_error_line "carol is not enrolled: the module refused the request with status $RC"

head -c 3000 /dev/urandom >"$SCRATCH/face.jpg"
head -c 50000 /dev/urandom >"$SCRATCH/big-face.jpg"
run_aicam faces add-image carol "$SCRATCH/face.jpg"
expect_rc 0 "add-image:"
run_aicam faces add-image dave "$SCRATCH/face.jpg" --slice 1024
expect_rc 0 "add-image in slices:"
run_aicam faces add-image henry "$SCRATCH/big-face.jpg"
expect_rc 0 "add-image of a 50 KB image in one request:"
run_aicam faces add-image ivan "$SCRATCH/big-face.jpg" --slice 2000000
expect_rc 4 "a slice over 1 MiB:"
expect_one_error_line "--slice must be a whole number from 1 to 1048576, not '2000000'"
run_aicam faces add-image erin "$SCRATCH/missing.jpg"
expect_rc 20 "add-image of a missing file:"
expect_one_error_line "cannot read $SCRATCH/missing.jpg"

run_aicam faces feature alice --out "$SCRATCH/alice.feature"
expect_rc 0 "feature:"
[ "$(wc -c <"$SCRATCH/alice.feature")" -eq 1384 ] || fail "a feature is 1384 characters"
run_aicam faces add-feature frank "$SCRATCH/alice.feature"
expect_rc 0 "add-feature:"
run_aicam faces feature frank
[ "$OUT" = "$(cat "$SCRATCH/alice.feature")" ] || fail "frank's feature should be the one sent"
head -c 100 "$SCRATCH/alice.feature" >"$SCRATCH/short.feature"
run_aicam faces add-feature gina "$SCRATCH/short.feature"
expect_rc 4 "a short feature:"
expect_one_error_line "holds 100"

run_aicam faces list
[ "$OUT" = "$(printf 'alice\nbob\ncarol\ndave\nhenry\nfrank')" ] || fail "list after the enrolments"

run_aicam faces delete bob
expect_rc 0 "delete bob:"
run_aicam faces query bob
[ "$RC" -gt 0 ] || fail "bob should be gone"
run_aicam faces count
expect_out_line "5" "count after deleting bob:"
run_aicam faces delete --all
expect_rc 0 "delete --all:"
run_aicam faces count
expect_out_line "0" "count after deleting all:"
run_aicam faces list
expect_rc 0 "an empty list:"
[ -z "$OUT" ] || fail "an empty library lists nothing"

finish
