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
HERE=$(cd "$(dirname "$0")" && pwd)
TIME_LIMIT=${QUORBLE_E2E_TIME_LIMIT:-120}
KEY_GAP=${QUORBLE_E2E_KEY_GAP:-0.5}

WORK=$(mktemp -d "${TMPDIR:-/tmp}/quorble-spd.XXXXXX")
XVFB_PID=""
GAME_PID=""
# shellcheck source=tests/private_speechd.sh
. "$HERE/private_speechd.sh"

cleanup() {
  [[ -n "$GAME_PID" ]] && kill "$GAME_PID" 2>/dev/null
  speechd_stop
  [[ -n "$XVFB_PID" ]] && kill "$XVFB_PID" 2>/dev/null
  wait 2>/dev/null
  [[ -n "${KEEP:-}" ]] || rm -rf "$WORK"
}
trap cleanup EXIT

say() { echo "spd: $*"; }
fail() {
  echo "spd: FAILED: $*" >&2
  [[ -s "$WORK/trace" ]] && tail -n 40 "$WORK/trace" >&2
  exit 1
}

for tool in Xvfb xdotool timeout speech-dispatcher pulseaudio; do
  command -v "$tool" >/dev/null || fail "$tool is not installed"
done

start_xvfb() {
  local n
  for n in $(seq 141 190); do
    [[ -e "/tmp/.X$n-lock" || -e "/tmp/.X11-unix/X$n" ]] && continue
    Xvfb ":$n" -screen 0 640x480x24 -nolisten tcp >"$WORK/xvfb.log" 2>&1 &
    XVFB_PID=$!
    for _ in $(seq 50); do
      if [[ "$(tr -d ' \n' <"/tmp/.X$n-lock" 2>/dev/null)" == "$XVFB_PID" ]] &&
        DISPLAY=":$n" xdotool getmouselocation >/dev/null 2>&1; then
        export DISPLAY=":$n"
        return 0
      fi
      kill -0 "$XVFB_PID" 2>/dev/null || break
      sleep 0.1
    done
    kill "$XVFB_PID" 2>/dev/null
    wait "$XVFB_PID" 2>/dev/null
    XVFB_PID=""
  done
  return 1
}
start_xvfb || fail "no free display for Xvfb"

export HOME="$WORK/home" XDG_CONFIG_HOME="$WORK/home/.config"
mkdir -p "$HOME/Documents" "$XDG_CONFIG_HOME" "$WORK/cwd"
echo 'XDG_DOCUMENTS_DIR="$HOME/Documents"' >"$XDG_CONFIG_HOME/user-dirs.dirs"
export SDL_AUDIODRIVER=dummy QUORBLE_TRACE=1
cd "$WORK/cwd" || fail "no working folder"
TRACE="$WORK/trace"
USED=0

start_game() {
  : >"$TRACE"
  USED=0
  timeout --kill-after=5 "$TIME_LIMIT" "$GAME" "$@" >/dev/null 2>"$TRACE" &
  GAME_PID=$!
  WID=$(timeout 30 xdotool search --sync --onlyvisible --classname '^quorble$' | head -n 1)
  [[ -n "$WID" ]] || fail "no window"
  timeout 10 xdotool windowfocus --sync "$WID" || fail "could not focus the window"
}

await() {
  local deadline=$((SECONDS + 40)) found
  while ((SECONDS < deadline)); do
    found=$(tail -n "+$((USED + 1))" "$TRACE" | grep -n -m 1 -F -- "$1" | cut -d: -f1)
    if [[ -n "$found" ]]; then
      USED=$((USED + found))
      return 0
    fi
    kill -0 "$GAME_PID" 2>/dev/null || fail "the game ended before \"$1\""
    sleep 0.1
  done
  fail "never heard \"$1\""
}

press() {
  local key
  for key in "$@"; do
    sleep "$KEY_GAP"
    xdotool key --window "$WID" "$key"
  done
}

finish_game() {
  local status=0
  wait "$GAME_PID" || status=$?
  GAME_PID=""
  ((status == 0)) || fail "the game ended with status $status"
}

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
await "read the instructions?" && press n
await "special key instructions?" && press n
await "Select which game" && press Return
await "number of players" && press 1
await "correct for the number of players?" && press y
await "Enter the name of player" && press Return
await "is this correct?" && press Return
await "use this voice?" && press y
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
