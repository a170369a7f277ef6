#!/usr/bin/env bash
# The game as a user gets it: the package unpacked into a private root and
# run from there, from a folder that has nothing of the game in it. It must
# find its samples and instruction text in the install tree, answer its
# command line, refuse honestly without a display or a voice, save into the
# documents folder, and write nothing into the install tree.
#
#   tests/e2e_installed.sh PACKAGE_DIR VERSION
set -uo pipefail

DEB=$(realpath "${1:?usage: $0 PACKAGE_DIR VERSION}"/quorble_*.deb) || exit 2
VERSION=${2:?usage: $0 PACKAGE_DIR VERSION}
WORK=$(realpath "$(mktemp -d "${TMPDIR:-/tmp}/quorble-installed.XXXXXX")")
source "$(dirname "${BASH_SOURCE[0]}")/e2e_lib.sh"

need_tools Xvfb xdotool timeout dpkg-deb
ROOT="$WORK/root"
dpkg-deb -x "$DEB" "$ROOT" || fail "could not unpack $DEB"
GAME="$ROOT/usr/games/quorble"
SHARED="$ROOT/usr/share/games/quorble"
[[ -x "$GAME" ]] || fail "no game at $GAME"

tree_state() { (cd "$ROOT" && find . -printf '%p %y %s %T@ %m\n' | sort); }
INSTALLED=$(tree_state)

make_home
mkdir -p "$WORK/cwd"
cd "$WORK/cwd" || fail "no working folder"
export SDL_AUDIODRIVER=dummy
export QUORBLE_TRACE=1
DATA="$HOME/Documents/brindlesoft"
nothing_written() {
  [[ -z "$(ls -A "$WORK/cwd")" ]] || fail "$1 wrote into the current folder: $(ls -A "$WORK/cwd")"
  [[ ! -e "$DATA" ]] || fail "$1 made the data folder"
}

say "the command line"
[[ "$("$GAME" --version)" == "quorble $VERSION" ]] || fail "--version does not print quorble $VERSION"
"$GAME" --help >"$WORK/help" || fail "--help did not exit with 0"
grep -q -e '^Usage: quorble' "$WORK/help" && grep -q -e '--version' "$WORK/help" &&
  [[ "$(tail -n 1 "$WORK/help")" == *'man 6 quorble' ]] ||
  fail "--help prints no usage with its options, or does not end pointing to the manual"
"$GAME" --no-such-option >"$WORK/out" 2>"$WORK/err"
status=$?
((status == 2)) || fail "an unknown option exited with $status, not 2"
[[ "$(head -n 1 "$WORK/err")" == "quorble: unknown option '--no-such-option'" ]] &&
  grep -q '^Usage: quorble' "$WORK/err" && [[ ! -s "$WORK/out" ]] ||
  fail "an unknown option did not print one line and the usage on stderr alone"

# No display named, and one named that nobody serves.
for display in "" ":999"; do
  say "no display (DISPLAY=$display)"
  started=$SECONDS
  env -u WAYLAND_DISPLAY -u SDL_VIDEODRIVER DISPLAY="$display" timeout 10 "$GAME" 2>"$WORK/err"
  status=$?
  ((status == 1)) || fail "without a display the game exited with $status, not 1"
  ((SECONDS - started <= 5)) || fail "without a display the game took $((SECONDS - started)) s"
  grep -q '^quorble: no display to open a window on; ' "$WORK/err" || fail "no word of the missing display"
  nothing_written "a start without a display"
done

start_xvfb

say "no voices"
mkdir -p "$WORK/no-voices"
ESPEAK_DATA_PATH="$WORK/no-voices" timeout 30 "$GAME" >/dev/null 2>"$TRACE" &
GAME_PID=$!
await "couldn't find any voices"
BOX=""
for _ in $(seq 50); do
  for window in $(xdotool search --onlyvisible --classname '.*' 2>/dev/null); do
    [[ "$(xdotool getwindowname "$window" 2>/dev/null)" == Quorble ]] && BOX=$window
  done
  [[ -n "$BOX" ]] && break
  sleep 0.1
done
[[ -n "$BOX" ]] || fail "no message box"
xdotool windowfocus --sync "$BOX" && xdotool key Return
game_end
((GAME_STATUS == 1)) || fail "without voices the game exited with $GAME_STATUS, not 1"
nothing_written "a start without voices"

say "a one-player game, saved at the first roll prompt"
start_game
grep -q -x -F "samples: $SHARED" "$TRACE" || fail "the samples were not looked for in $SHARED"
set_up_one_player
await "to roll the dice" && press s
await "Game Saved"
finish_game
[[ -f "$DATA/quorble.sav" ]] || fail "no saved game at $DATA/quorble.sav"
cmp -s "$DATA/quorble.txt" "$SHARED/quorble.txt" ||
  fail "the instruction text was not copied from the install tree"
[[ -z "$(ls -A "$WORK/cwd")" ]] || fail "the game wrote into the current folder"
[[ "$(tree_state)" == "$INSTALLED" ]] || fail "the install tree changed"
say "passed"
