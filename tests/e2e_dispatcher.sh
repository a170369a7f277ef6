#!/usr/bin/env bash
# The real game speaking through a private speech-dispatcher, under a
# private X server. Two runs:
#  1. --speech=dispatcher with the daemon up: greeting, a question
#     answered, a voice change by F12, a rate change by Ctrl, one turn, S.
#     The game's trace carries the daemon's own word on every message
#     (ended or cancelled), so the test can check that the texts were
#     spoken in the order queued, that a key cut what was queued, and that
#     the synchronous speaks returned only after their end.
#  2. QUORBLE_SPEECH=dispatcher with no daemon to be had: the line on
#     standard error, the spoken sentence, and a game that plays on.
#
#   tests/e2e_dispatcher.sh BUILD_DIR
set -uo pipefail

BUILD_DIR=$(cd "${1:?usage: $0 BUILD_DIR}" && pwd) || exit 2
GAME="$BUILD_DIR/quorble"
WORK=$(mktemp -d "${TMPDIR:-/tmp}/quorble-spd.XXXXXX")
source "$(dirname "${BASH_SOURCE[0]}")/e2e_lib.sh"
# shellcheck source=tests/private_speechd.sh
source "$(dirname "${BASH_SOURCE[0]}")/private_speechd.sh"

# Under AddressSanitizer, a leak inside libspeechd is suppressed by its
# frame, which the fast unwinder can't see through glibc.
[[ -n "${ASAN_OPTIONS:-}" ]] && export ASAN_OPTIONS="$ASAN_OPTIONS:fast_unwind_on_malloc=0"
e2e_stop_extra() { speechd_stop; }
# The daemon speaks in real time, so its prompts take longer to be heard.
TIME_LIMIT=${QUORBLE_E2E_TIME_LIMIT:-120}
AWAIT_LIMIT=${QUORBLE_E2E_AWAIT_LIMIT:-40}

need_tools Xvfb xdotool timeout speech-dispatcher pulseaudio
[[ -x "$GAME" ]] || fail "no game binary at $GAME"
start_xvfb
make_home
mkdir -p "$WORK/cwd"
export SDL_AUDIODRIVER=dummy QUORBLE_TRACE=1
cd "$WORK/cwd" || fail "no working folder"

# The line number of the first trace line that is exactly $1.
line_of() { grep -n -x -F -m 1 -- "$1" "$TRACE" | cut -d: -f1; }

# $1 must come before $2 in the trace.
before() {
  local first second
  first=$(line_of "$1")
  second=$(line_of "$2")
  [[ -n "$first" && -n "$second" ]] || fail "missing \"$1\" or \"$2\" in the trace"
  ((first < second)) || fail "\"$2\" came before \"$1\""
}

speechd_start "$WORK/spd" || fail "the private speech-dispatcher did not start"

say "run 1: the game through speech-dispatcher"
start_game --speech=dispatcher
set_up_one_player
await "to roll the dice" && press F12
await "use this voice?" && press Return # no: the next voice
await "use this voice?" && press y
await "to roll the dice" && press Control_L
await "to adjust the speech rate" && press Up
await "speech: 1" && press Up
await "speech: 2" && press Return
await "to roll the dice" && press r
await "Select Dice" && press k
await " score " && press Return
await "Is this Correct?" && press Return
await "to roll the dice" && press s
await "Game Saved"
finish_game

grep -q "speech-dispatcher can't be reached" "$TRACE" && fail "the daemon was not used"
# Synchronous speaks: the next text is queued only after the daemon's end.
before "speech ended:  Version 2. By Tavi Orlund " "speech:  Would you like to read the instructions? "
before "speech ended:  " "speech:  Select Dice "
# The key in the rate dialogue cut the prompt it interrupted.
grep -q -x -F "speech cancelled: to adjust the speech rate, use the arrow keys and then press enter" \
  "$TRACE" || fail "Up did not cut the rate prompt"
# F12's No moved to another voice. The player's own rate, 30, is the game's
# 0, never overridden; Ctrl's Up twice moves two tenths of the way to 100.
[[ $(grep -c "^speech voice: " "$TRACE") -ge 2 ]] || fail "the voice never changed"
grep -q -x "speech rate: 44" "$TRACE" || fail "the rate 2 never reached the daemon as 44"
grep -q -x "speech rate: 0" "$TRACE" && fail "the player's own rate was overridden"
# What the daemon finished came in the order the game queued it.
grep -E '^speech( ended)?: ' "$TRACE" | awk '
  /^speech: / { queued[++n] = substr($0, 9) }
  /^speech ended: / {
    text = substr($0, 15)
    while (at < n && queued[at + 1] != text) at++
    if (at >= n) { print "out of order: " text; bad = 1; exit }
    at++
  }
  END { exit bad }' || fail "the daemon spoke texts out of order"
[[ -f "$HOME/Documents/brindlesoft/quorble.sav" ]] || fail "no saved game"
say "run 1 passed: $(grep -c '^speech ended: ' "$TRACE") texts heard to the end"

say "run 2: no daemon to be had"
speechd_stop
mkdir -p "$XDG_CONFIG_HOME/speech-dispatcher"
echo "DisableAutoSpawn" >"$XDG_CONFIG_HOME/speech-dispatcher/speechd.conf"
rm -rf "$XDG_RUNTIME_DIR/speech-dispatcher"
QUORBLE_SPEECH=dispatcher start_game
await "speech-dispatcher can't be reached"
await "could not be reached, so the game speaks with its own voice"
await "read the instructions?" && press n
await "special key instructions?" && press n
await "getting saved game"
await "to roll the dice" && press Escape
await "exit the game without saving" && press Up Return
await "thank you for playing"
finish_game
# Only the daemon reports ends: the embedded engine spoke all of this run.
grep -q "^speech ended: " "$TRACE" && fail "the daemon spoke in the run without it"
say "passed"
