#!/usr/bin/env bash
# Plays the real game binary through its window on a private X server, in
# two runs. The first sets up a one-player game, plays one turn with real
# keys and saves at the next roll prompt; the second takes the saved game
# up and leaves it with a yes. Each run must end by itself with status 0
# within the time limit, and the files in the documents folder must show
# what was saved, kept and deleted.
#
#   tests/e2e_desktop.sh BUILD_DIR
set -uo pipefail

BUILD_DIR=$(cd "${1:?usage: $0 BUILD_DIR}" && pwd) || exit 2
GAME="$BUILD_DIR/quorble"
WORK=$(mktemp -d "${TMPDIR:-/tmp}/quorble-e2e.XXXXXX")
source "$(dirname "${BASH_SOURCE[0]}")/e2e_lib.sh"

need_tools Xvfb xdotool timeout
[[ -x "$GAME" ]] || fail "no game binary at $GAME"
start_xvfb
make_home
mkdir -p "$WORK/cwd"
export SDL_AUDIODRIVER=dummy
export QUORBLE_TRACE=1
cd "$WORK/cwd" || fail "no working folder"
DATA="$HOME/Documents/brindlesoft"

say "run 1: a new game, one turn, saved"
start_game
set_up_one_player
await "to roll the dice" && press r
await "Select Dice" && press k
await " score " && press Return # ones
await "Is this Correct?" && press Return
await "to roll the dice" && press s
await "Game Saved"
finish_game
[[ -f "$DATA/quorble.sav" ]] || fail "no saved game at $DATA/quorble.sav"
grep -q $'^ 1 \r$' "$DATA/quorble.sav" || fail "the saved game holds no player"
[[ "$(cat "$DATA/quorble.cfg")" == $' 0 \r\n 0 \r' ]] ||
  fail "the configuration does not hold player 1's voice 0 and rate 0"
say "saved game and configuration written"

say "run 2: the saved game taken up, then left with a yes"
start_game
await "read the instructions?" && press n
await "special key instructions?" && press n
await "getting saved game"
[[ -f "$DATA/quorble.sav" ]] || fail "the saved game went while it was taken up"
await "to roll the dice" && press Escape
await "exit the game without saving" && press Up Return # yes
await "thank you for playing"
finish_game
[[ ! -e "$DATA/quorble.sav" ]] || fail "the saved game is still there after leaving with a yes"
[[ -f "$DATA/quorble.cfg" ]] || fail "no configuration after leaving"

# The X connection lost in a turn is a close request: the game in hand is
# saved and the configuration written, and the game ends with status 0.
SAVED=$' 1 \r\n 1 \r\n 1 \r\n 0 \r\nAnn\r\n 0 \r\n 0 \r\n-2 \r\n'
for _ in $(seq 14); do SAVED+=$'-1 \r\n'; done
lose_connection() {
  printf '%s' "$SAVED" >"$DATA/quorble.sav"
  rm -f "$DATA/quorble.cfg"
  start_game
  await "read the instructions?" && press n
  await "special key instructions?" && press n
  await "to roll the dice"
  "$@"
  finish_game
  cmp -s <(printf "%s" "$SAVED") "$DATA/quorble.sav" || { od -c "$DATA/quorble.sav" | head; fail "the game in hand was not saved"; }
  [[ "$(cat "$DATA/quorble.cfg")" == $' 0 \r\n-2 \r' ]] || fail "no configuration written"
}
say "run 3: the X server gone in a turn"
lose_connection kill "$XVFB_PID"
say "passed"
