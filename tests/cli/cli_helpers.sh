# Shared by the end-to-end tests of aicam: each test sources this file with
#   AICAM=path/to/aicam AICAM_SIM=path/to/aicam-sim
# and gets a scratch directory, a simulator on a pseudo-terminal linked as
# $PORT, the tool's runs captured, and checks that stop the test on failure.
set -euo pipefail

AICAM=${1:?usage: $0 AICAM AICAM-SIM}
AICAM_SIM=${2:?usage: $0 AICAM AICAM-SIM}
SCRATCH=$(mktemp -d)
PORT=$SCRATCH/ttyACM-sim
VIDEO=$SCRATCH/video.fifo
SIM_PID=
FAILURES=0

stop_sim() {
  if [ -n "$SIM_PID" ]; then
    kill -TERM "$SIM_PID" 2>/dev/null || true
    wait "$SIM_PID" 2>/dev/null || true
    SIM_PID=
  fi
}

cleanup() {
  stop_sim
  rm -rf "$SCRATCH"
}
trap cleanup EXIT

# start_sim [aicam-sim options...]: the module, ready once its link exists.
start_sim() {
  stop_sim
  rm -f "$PORT"
  "$AICAM_SIM" --link "$PORT" "$@" >"$SCRATCH/sim.out" 2>"$SCRATCH/sim.err" &
  SIM_PID=$!
  local waited=0
  until [ -e "$PORT" ]; do
    if ! kill -0 "$SIM_PID" 2>/dev/null || [ $waited -ge 200 ]; then
      echo "FAIL: aicam-sim did not start:" >&2
      cat "$SCRATCH/sim.err" >&2
      exit 1
    fi
    sleep 0.05
    waited=$((waited + 1))
  done
}

# run PROGRAM ARGS...: sets RC (exit status), OUT and ERR.
run() {
  RC=0
  "$@" >"$SCRATCH/out" 2>"$SCRATCH/err" || RC=$?
  OUT=$(cat "$SCRATCH/out")
  ERR=$(cat "$SCRATCH/err")
}

# run_aicam ARGS...: runs the tool on $PORT.
run_aicam() { run "$AICAM" --port "$PORT" "$@"; }

fail() {
  echo "FAIL: $*" >&2
  echo "  exit status: ${RC:-}" >&2
  head -n 20 <<<"  stdout: ${OUT:-}" >&2
  head -n 20 <<<"  stderr: ${ERR:-}" >&2
  FAILURES=$((FAILURES + 1))
}

expect_rc() {
  [ "$RC" -eq "$1" ] || fail "${2:-} expected exit status $1, got $RC"
}

# expect_out TEXT [what]: stdout has a line equal to TEXT.
expect_out_line() {
  grep -qxF -- "$1" <<<"$OUT" || fail "${2:-} expected the line '$1' on stdout"
}

expect_out_has() {
  grep -qF -- "$1" <<<"$OUT" || fail "${2:-} expected '$1' on stdout"
}

# expect_one_error_line TEXT: a failure says exactly one line, containing TEXT.
expect_one_error_line() {
  local lines
  lines=$(grep -c '' <<<"$ERR" || true)
  [ "$lines" -eq 1 ] || fail "expected one line on stderr, got $lines"
  grep -qF -- "$1" <<<"$ERR" || fail "expected '$1' on stderr"
  [[ "$ERR" == aicam:* ]] || fail "the failure line should start with 'aicam:'"
}

finish() {
  if [ "$FAILURES" -ne 0 ]; then
    echo "$FAILURES check(s) failed" >&2
    exit 1
  fi
  echo "all checks passed"
}
