#!/usr/bin/env bash
# A short tour of aicam against the simulated module: information, enrolment
# of two faces, the face list, recognition reports, a firmware upgrade with its
# progress bar, and a snapshot with its side text.
#   scripts/demo-tour.sh BUILD-DIR
# Everything it writes (the simulator's face library, the package, the PNG,
# the library's trace log) stays in BUILD-DIR/demo-tour/.
set -euo pipefail

build=$(cd "${1:?usage: $0 BUILD-DIR}" && pwd)
aicam=$build/tools/aicam/aicam
sim=$build/tools/aicam-sim/aicam-sim
for program in "$aicam" "$sim"; do
  [ -x "$program" ] || { echo "demo-tour: $program is not built" >&2; exit 1; }
done

tour=$build/demo-tour
rm -rf "$tour"
mkdir -p "$tour"
cd "$tour"   # the library writes its log under Log/ here
port=ttyACM0      # names relative to $tour, to keep the commands short
video=video.fifo

sim_pid=
stop_sim() {
  if [ -n "$sim_pid" ]; then
    kill -TERM "$sim_pid" 2>/dev/null || true
    wait "$sim_pid" 2>/dev/null || true
    sim_pid=
  fi
}
trap stop_sim EXIT

step() { printf '\n== %s\n' "$1"; }
# run AICAM-ARGUMENTS...: shows the command, then runs it with the trace log on.
run() {
  printf '$ aicam --log debug %s\n' "$*"
  "$aicam" --log debug "$@"
}

echo "== starting the simulated module"
"$sim" --link "$port" --library faces.db --video "$video" --fifo --size 640x480 --fps 25 \
  --report-interval 300 >"$tour/aicam-sim.out" 2>"$tour/aicam-sim.log" &
sim_pid=$!
for _ in $(seq 100); do
  [ -e "$port" ] && break
  kill -0 "$sim_pid" 2>/dev/null || { cat "$tour/aicam-sim.log" >&2; exit 1; }
  sleep 0.05
done
echo "serial port $(cat "$tour/aicam-sim.out") linked as $tour/$port; video stream into $tour/$video"

step "module information"
run --port "$port" info
step "enrol two faces"
run --port "$port" faces add alice
run --port "$port" faces add bob
step "the face library"
run --port "$port" faces list
step "recognition: the first reports"
run --port "$port" recognize --count 6 --kinds recognition,track
step "firmware upgrade (a generated package of 400 KiB)"
head -c 409600 /dev/urandom >firmware.pkg
run --port "$port" upgrade firmware.pkg
step "a snapshot of the video"
run --playback "$video" snapshot snapshot.png

stop_sim
echo
echo "== done; the simulated module has stopped"
echo "snapshot: $tour/snapshot.png"
for log in "$tour"/Log/*.log; do
  echo "trace log of the library: $log"
done
echo "simulator's messages: $tour/aicam-sim.log"
