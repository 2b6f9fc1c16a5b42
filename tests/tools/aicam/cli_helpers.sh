# Sourced by the end-to-end tests, run as test_X.sh AICAM AICAM-SIM [BUILD-DIR SOURCE-DIR]:
# a scratch directory, a simulator linked as $PORT, captured runs, and checks.
set -euo pipefail
AICAM=${1:?usage: $0 AICAM AICAM-SIM}
AICAM_SIM=${2:?usage: $0 AICAM AICAM-SIM}
SCRATCH=$(mktemp -d)
PORT=$SCRATCH/ttyACM-sim
VIDEO=$SCRATCH/video.fifo
SIM_PID=
FAILURES=0

stop_sim() {
  [ -z "$SIM_PID" ] || { kill -TERM "$SIM_PID" 2>/dev/null; wait "$SIM_PID" 2>/dev/null; } || true
  SIM_PID=
}
trap 'stop_sim; rm -rf "$SCRATCH"' EXIT

# start_sim [aicam-sim options...]: the module, ready once its link exists.
start_sim() {
  stop_sim
  rm -f "$PORT"
  "$AICAM_SIM" --link "$PORT" "$@" >"$SCRATCH/sim.out" 2>"$SCRATCH/sim.err" &
  SIM_PID=$!
  for _ in $(seq 200); do
    [ -e "$PORT" ] && return 0
    kill -0 "$SIM_PID" 2>/dev/null || break
    sleep 0.05   # polling for the link, up to 10 s
  done
  echo "FAIL: aicam-sim did not start: $(cat "$SCRATCH/sim.err")" >&2
  exit 1
}

# sim_said TEXT: waits until aicam-sim has written TEXT on its stderr, up to 10 s.
sim_said() {
  timeout 10 bash -c 'until grep -qF -- "$1" "$2"; do sleep 0.05; done' _ "$1" "$SCRATCH/sim.err" ||
    fail "aicam-sim did not say '$1'"
}

# run PROGRAM ARGS...: sets RC (exit status), OUT and ERR.
run() {
  RC=0
  "$@" >"$SCRATCH/out" 2>"$SCRATCH/err" || RC=$?
  OUT=$(cat "$SCRATCH/out")
  ERR=$(cat "$SCRATCH/err")
}
run_aicam() { run "$AICAM" --port "$PORT" "$@"; }

# as_nobody [--groups=G,...] ARGS...: runs aicam as user nobody (in no group, or
# in those given), from a copy of it and its library that nobody can reach.
as_nobody() {
  local groups=--clear-groups
  [[ "${1:-}" != --groups=* ]] || { groups=$1; shift; }
  if [ ! -x "$SCRATCH/bin/aicam" ]; then
    chmod 755 "$SCRATCH"
    mkdir -p "$SCRATCH/bin"
    cp "$AICAM" "$SCRATCH/bin/aicam"
    cp -L "$(ldd "$AICAM" | awk '/libai_camera/ {print $3}')" "$SCRATCH/bin/libai_camera.so.4"
    chmod -R a+rX "$SCRATCH/bin"
  fi
  run setpriv --reuid=nobody --regid=nogroup "$groups" env LD_LIBRARY_PATH="$SCRATCH/bin" "$SCRATCH/bin/aicam" "$@"
}

fail() {
  printf 'FAIL: %s\n  exit status: %s\n' "$*" "${RC:-}" >&2
  head -n 20 <<<"  stdout: ${OUT:-}" >&2
  head -n 20 <<<"  stderr: ${ERR:-}" >&2
  FAILURES=$((FAILURES + 1))
}
expect_rc() { [ "$RC" -eq "$1" ] || fail "${2:-} expected exit status $1, got $RC"; }
expect_out_line() { grep -qxF -- "$1" <<<"$OUT" || fail "${2:-} expected the line '$1' on stdout"; }
expect_out_has() { grep -qF -- "$1" <<<"$OUT" || fail "${2:-} expected '$1' on stdout"; }
# A failure says exactly one line, "aicam: ..." holding TEXT.
expect_one_error_line() {
  [ "$(grep -c '' <<<"$ERR")" -eq 1 ] && [[ "$ERR" == aicam:* ]] && grep -qF -- "$1" <<<"$ERR" ||
    fail "expected one line 'aicam: ...$1...' on stderr"
}

# t RC TEXT ARGS...: runs the tool on $PORT and expects exit status RC; a
# non-empty TEXT must be on stdout after a success, or be in the one error line.
t() {
  local rc=$1 text=$2
  shift 2
  run_aicam "$@"
  expect_rc "$rc" "aicam $*:"
  [ -z "$text" ] && return 0
  if [ "$rc" -eq 0 ]; then expect_out_has "$text" "aicam $*:"; else expect_one_error_line "$text"; fi
}

finish() {
  [ "$FAILURES" -eq 0 ] || { echo "$FAILURES check(s) failed" >&2; exit 1; }
  echo "all checks passed"
}
