# snapshot: one picture of the simulator's MJPEG stream as a PNG of its size, with its side text.
source "$(dirname "$0")/cli_helpers.sh"

# Reads a big-endian 32-bit number at byte offset $2 of file $1.
be32() { od -An -tu1 -j "$2" -N4 "$1" | awk '{print ($1 * 16777216) + ($2 * 65536) + ($3 * 256) + $4}'; }

start_sim --video "$VIDEO" --fifo --size 320x240 --fps 25
t 0 "" faces add alice
run "$AICAM" --playback "$VIDEO" snapshot "$SCRATCH/shot.png"
expect_rc 0 "snapshot:"
expect_out_line "snapshot: $SCRATCH/shot.png (320x240)"
[ "$(od -An -tx1 -N8 "$SCRATCH/shot.png" | tr -d ' ')" = "89504e470d0a1a0a" ] || fail "not a PNG signature"
[ "$(od -An -c -j12 -N4 "$SCRATCH/shot.png" | tr -d ' ')" = "IHDR" ] || fail "the first chunk must be IHDR"
[ "$(be32 "$SCRATCH/shot.png" 16)" -eq 320 ] && [ "$(be32 "$SCRATCH/shot.png" 20)" -eq 240 ] || fail "PNG size"
grep -qE '^side text: \{"frame":[0-9]+,.*"id":"alice".*\}$' <<<"$OUT" || fail "the side text names the face in view"

# An independent decoder agrees on the size, and finds the green outline of
# the face box where the side text puts it (channels in the right order).
size=$(ffprobe -v error -show_entries stream=width,height -of csv=p=0 "$SCRATCH/shot.png")
[ "$size" = "320,240" ] || fail "ffprobe reads $size"
read -r x y h < <(sed -n 's/.*"x":\([0-9]*\),"y":\([0-9]*\),"w":[0-9]*,"h":\([0-9]*\).*/\1 \2 \3/p' <<<"$OUT")
ffmpeg -v error -i "$SCRATCH/shot.png" -f rawvideo -pix_fmt rgb24 -y "$SCRATCH/shot.rgb"
read -r r g b < <(od -An -tu1 -j $(((${y:?no face box} + h / 2) * 320 * 3 + (x + 1) * 3)) -N3 "$SCRATCH/shot.rgb")
[ "$g" -gt $((r + 60)) ] && [ "$g" -gt $((b + 60)) ] || fail "the box outline should be green, is rgb $r $g $b"

stop_sim
[ ! -e "$VIDEO" ] || fail "aicam-sim left its FIFO behind"
run "$AICAM" --playback "$SCRATCH/nothing.mjpeg" snapshot "$SCRATCH/none.png"
expect_rc 1 "a missing recording:"
expect_one_error_line "the video stream could not be opened or is gone: $SCRATCH/nothing.mjpeg (-10)"
[ ! -e "$SCRATCH/none.png" ] || fail "no PNG without a picture"
finish
