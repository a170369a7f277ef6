#!/usr/bin/env bash
# What the companion mode adds to start-up: quorble-sim takes up a saved
# game and saves it again, RUNS times with the mode and RUNS times without,
# in turns, and the median and fastest wall times of each are printed. The
# game's own waits run on the simulator's virtual clock, so what is left is
# the work of the program, the one load of the strategy table included.
#
#   bench/companion_startup.sh BUILD_DIR [RUNS]
set -euo pipefail

BUILD_DIR=$(cd "${1:?usage: $0 BUILD_DIR [RUNS]}" && pwd)
RUNS=${2:-40}
WORK=$(mktemp -d "${TMPDIR:-/tmp}/quorble-startup.XXXXXX")
trap 'rm -rf "$WORK"' EXIT

mkdir -p "$WORK/cwd"
echo "key n n s" >"$WORK/script"
# One player on one sheet with no score yet, as the game saves it.
{
  printf ' 1 \r\n 1 \r\n 1 \r\n 0 \r\nAnn\r\n 0 \r\n 0 \r\n 0 \r\n'
  for _ in $(seq 14); do printf -- '-1 \r\n'; done
} >"$WORK/quorble.sav"

run_once() {
  rm -rf "$WORK/docs"
  mkdir -p "$WORK/docs/brindlesoft"
  cp "$WORK/quorble.sav" "$WORK/docs/brindlesoft/"
  local start end
  start=$(date +%s%N)
  "$BUILD_DIR/quorble-sim" --samples "$BUILD_DIR" --docs "$WORK/docs" --cwd "$WORK/cwd" "$@" \
    "$WORK/script" >/dev/null
  end=$(date +%s%N)
  echo $(((end - start) / 1000))
}

: >"$WORK/off"
: >"$WORK/on"
for _ in $(seq "$RUNS"); do
  run_once >>"$WORK/off"
  run_once --companion >>"$WORK/on"
done

report() {
  sort -n "$WORK/$1" | awk -v label="$2" '{ t[NR] = $1 }
    END { printf "%-22s median %6.1f ms   fastest %6.1f ms   (%d runs)\n",
          label, t[int((NR + 1) / 2)] / 1000, t[1] / 1000, NR }'
}
echo "quorble-sim, a saved game taken up and saved again:"
report off "without the companion"
report on "with --companion"
echo "strategy table: $(stat -c %s "$BUILD_DIR/quorble-strategy.bin") bytes"
