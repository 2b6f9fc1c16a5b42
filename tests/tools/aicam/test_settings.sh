# config and settings: values written are read back; refused values never reach the module.
source "$(dirname "$0")/cli_helpers.sh"

start_sim
setting() { sed -n "s/^$1: *//p" <<<"$OUT"; }
# expect_setting NAME VALUE: the last get printed NAME with VALUE.
expect_setting() { [ "$(setting "$1")" = "$2" ] || fail "$1 read back as '$(setting "$1")', not '$2'"; }

t 0 "" config set text '{"threshold":0.65}'
t 0 "" config get text
expect_setting text '{"threshold":0.65}'
printf '{"threshold":0.70,"liveness":false}\n' >"$SCRATCH/config.json"
t 0 "" config set text --file "$SCRATCH/config.json"
t 0 "" config get text
expect_setting text '{"threshold":0.70,"liveness":false}'
t 0 "" config set counts 5 7
t 0 "" config set template-update on
t 0 "" config get
expect_setting counts "5 7 (recognition, liveness)"
expect_setting template-update on

for accepted in "frame-rate 15" "ir-light 150 60" "screen-direction 3" "camera-stream 1 close" "no-flicker 1 1 off" \
                "uvc 0" "rgb-ir 1" "stream-format 1" "rotate 2" "resolution 4" "face-info off" "qrcode on 5" \
                "upload open 2 3" "upload close"; do
  t 0 "" settings set $accepted
done
t 0 "" settings get
expect_setting frame-rate 15
expect_setting ir-light "150 60 (luminance, close time)"
expect_setting screen-direction 3
expect_setting "camera-stream 0" open
expect_setting "camera-stream 1" closed
expect_setting "no-flicker 1" "frequency code 1, off"
t 0 "" settings get frame-rate
[ "$(setting frame-rate)" = 15 ] && [ "$(grep -c '' <<<"$OUT")" -eq 1 ] || fail "get of one setting prints it alone"

t 2 "RECOGNITION must be a whole number from 1 to 10, not '0'" config set counts 0 3
t 2 "10..25 must be a whole number from 10 to 25, not '30'" settings set frame-rate 30
t 2 "" settings set upload open 1 0
t 2 "'luminous-threshold' can be read but not set" settings set luminous-threshold 3
t 2 "" settings get rotate
t 2 "no setting called 'brightness'" settings set brightness 3
finish
