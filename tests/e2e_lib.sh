# Shared by the end-to-end scripts: a private X server, the game started
# with its trace on stderr, keys sent once the prompt they answer was said.
# The caller sets GAME, WORK (a fresh folder, removed at exit unless KEEP
# is set) and then calls start_xvfb. A caller with daemons of its own
# defines e2e_stop_extra, which runs at exit after the game is gone and
# before the X server goes.
TIME_LIMIT=${QUORBLE_E2E_TIME_LIMIT:-90}
AWAIT_LIMIT=${QUORBLE_E2E_AWAIT_LIMIT:-30}
KEY_GAP=${QUORBLE_E2E_KEY_GAP:-0.5}
XVFB_PID=""
GAME_PID=""
WID=""
USED_LINES=0
GAME_STATUS=""
TRACE="$WORK/stderr"

say() { echo "e2e: $*"; }

cleanup() {
  [[ -n "$GAME_PID" ]] && kill "$GAME_PID" 2>/dev/null
  declare -F e2e_stop_extra >/dev/null && e2e_stop_extra
  [[ -n "$XVFB_PID" ]] && kill "$XVFB_PID" 2>/dev/null
  wait 2>/dev/null
  [[ -n "${KEEP:-}" ]] || rm -rf "$WORK"
}
trap cleanup EXIT

fail() {
  echo "e2e: FAILED: $*" >&2
  if [[ -s "$TRACE" ]]; then
    echo "e2e: the last lines the game wrote to stderr:" >&2
    tail -n 40 "$TRACE" >&2
  fi
  exit 1
}

need_tools() {
  local tool
  for tool in "$@"; do
    command -v "$tool" >/dev/null || fail "$tool is not installed"
  done
}

# A display nobody holds. Another run may reach for the same one at the
# same moment: the server whose pid is in the lock file has it, and the
# other goes on to the next number.
start_xvfb() {
  local n
  for n in $(seq 90 140); do
    [[ -e "/tmp/.X$n-lock" || -e "/tmp/.X11-unix/X$n" ]] && continue
    Xvfb ":$n" -screen 0 640x480x24 -nolisten tcp >"$WORK/xvfb.log" 2>&1 &
    XVFB_PID=$!
    for _ in $(seq 50); do
      if [[ "$(cat "/tmp/.X$n-lock" 2>/dev/null | tr -d ' \n')" == "$XVFB_PID" ]] &&
        DISPLAY=":$n" xdotool getmouselocation >/dev/null 2>&1; then
        export DISPLAY=":$n"
        say "Xvfb on $DISPLAY"
        return 0
      fi
      kill -0 "$XVFB_PID" 2>/dev/null || break
      sleep 0.1
    done
    kill "$XVFB_PID" 2>/dev/null
    wait "$XVFB_PID" 2>/dev/null
    XVFB_PID=""
  done
  fail "could not start Xvfb on any display from :90 to :140"
}

# A home of its own, so that neither the real documents folder nor the
# real user-dirs file is touched or read.
make_home() {
  export HOME="$WORK/home"
  export XDG_CONFIG_HOME="$HOME/.config"
  mkdir -p "$HOME/Documents" "$XDG_CONFIG_HOME"
  echo 'XDG_DOCUMENTS_DIR="$HOME/Documents"' >"$XDG_CONFIG_HOME/user-dirs.dirs"
}

# Starts the game with the arguments given and finds its window.
start_game() {
  : >"$TRACE"
  USED_LINES=0
  timeout --kill-after=5 "$TIME_LIMIT" "$GAME" "$@" >"$WORK/stdout" 2>"$TRACE" &
  GAME_PID=$!
  say "started $GAME (pid $GAME_PID, limit ${TIME_LIMIT}s)"
  # SDL stores the caption as UTF8_STRING, which `xdotool search --name`
  # does not match; the class finds the window and the caption is checked.
  WID=$(timeout 30 xdotool search --sync --onlyvisible --classname '^quorble$' 2>/dev/null | head -n 1)
  [[ -n "$WID" ]] || fail "no visible window of class quorble within 30 s"
  CAPTION=$(xdotool getwindowname "$WID")
  [[ "$CAPTION" == *Quorble* ]] || fail "window $WID has the caption \"$CAPTION\""
  timeout 10 xdotool windowfocus --sync "$WID" || fail "could not focus window $WID"
  say "window $WID: \"$CAPTION\""
}

alive() { kill -0 "$GAME_PID" 2>/dev/null; }

# Waits for the game to end and sets GAME_STATUS; fails when the time
# limit ended it.
game_end() {
  GAME_STATUS=0
  wait "$GAME_PID" || GAME_STATUS=$?
  GAME_PID=""
  ((GAME_STATUS == 124 || GAME_STATUS == 137)) && fail "the game did not end within ${TIME_LIMIT}s"
  return 0
}

# The game writes each text it speaks to stderr (QUORBLE_TRACE); each key
# goes in once the prompt it answers has been spoken, and a moment later,
# since the game drops keys that come before it starts listening.
await() {
  local deadline=$((SECONDS + AWAIT_LIMIT)) found
  while ((SECONDS < deadline)); do
    found=$(tail -n "+$((USED_LINES + 1))" "$TRACE" | grep -n -m 1 -F -- "$1" | cut -d: -f1)
    if [[ -n "$found" ]]; then
      USED_LINES=$((USED_LINES + found))
      say "heard \"$1\""
      return 0
    fi
    alive || { game_end && fail "the game ended (status $GAME_STATUS) before it said \"$1\""; }
    sleep 0.1
  done
  fail "the game did not say \"$1\" within $AWAIT_LIMIT s"
}

press() {
  local key
  for key in "$@"; do
    sleep "$KEY_GAP"
    alive || { game_end && fail "the game ended (status $GAME_STATUS) before key $key"; }
    say "key $key"
    xdotool key --window "$WID" "$key"
  done
}

finish_game() {
  say "waiting for the game to end"
  game_end
  ((GAME_STATUS == 0)) || fail "the game ended with status $GAME_STATUS"
  say "the game ended with status 0"
  say "what the game said and heard:"
  sed 's/^/  /' "$TRACE"
}

# A new one-player game up to its first roll prompt, the instructions
# declined and every default taken.
set_up_one_player() {
  await "read the instructions?" && press n
  await "special key instructions?" && press n
  await "Select which game" && press Return # a single game
  await "number of players" && press 1
  await "correct for the number of players?" && press y
  await "Enter the name of player" && press Return # no name
  await "is this correct?" && press Return          # yes
  await "use this voice?" && press y
}
