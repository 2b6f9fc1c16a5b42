# The README's first program, taken from README.md as it stands, compiles
# without a warning against the built library and runs on the simulator.
source "$(dirname "$0")/cli_helpers.sh"

awk '/^## A first program/ {inside = 1} inside && /^```c$/ {code = 1; next} code && /^```$/ {exit} code' \
  "${4:?}/README.md" >"$SCRATCH/first.c"
[ "$(grep -c '' "$SCRATCH/first.c")" -le 25 ] && grep -q 'WaitFrame' "$SCRATCH/first.c" ||
  fail "README.md has no short first program"
# A library built with a sanitizer needs its runtime in the program too.
sanitizer=()
if grep -q '^AICAM_SANITIZE:BOOL=ON' "${3:?}/CMakeCache.txt"; then
  sanitizer=(-fsanitize=address,undefined)
elif grep -q '^AICAM_TSAN:BOOL=ON' "$3/CMakeCache.txt"; then
  sanitizer=(-fsanitize=thread)
fi
run cc -std=c11 -Wall -Wextra -Werror "${sanitizer[@]}" -I"$4/Interface" -I"$3/include" "$SCRATCH/first.c" \
  -o "$SCRATCH/first" -L"$3" -lai_camera -Wl,-rpath,"$3"
expect_rc 0 "the README's program compiles:"

# No UVC node here: the same program with the simulator's stream played as its camera.
sed 's/ConnectCamera(dev, argv\[2\])/ConnectCameraPlayback(dev, argv[2])/' "$SCRATCH/first.c" >"$SCRATCH/played.c"
run cc -std=c11 -Wall -Wextra -Werror "${sanitizer[@]}" -I"$4/Interface" -I"$3/include" "$SCRATCH/played.c" \
  -o "$SCRATCH/played" -L"$3" -lai_camera -Wl,-rpath,"$3"
expect_rc 0 "the program with playback compiles:"
start_sim --video "$VIDEO" --fifo
run "$SCRATCH/played" "$PORT" "$VIDEO"
expect_rc 0 "the README's program on the simulator:"
expect_out_line "ping: 0"
expect_out_line "frame 640x480: 0"
finish
