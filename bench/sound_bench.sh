#!/usr/bin/env bash
# Runs quorble-bench as a player hears the game: a private PulseAudio with a
# null sink whose monitor is the default source, and a private X server.
# With LOAD=N, N busy processes run beside it for the whole measurement;
# with SERVER_RT=1 every thread of the server runs round-robin, as a
# desktop's sound server does where rtkit grants it.
#
#   bench/sound_bench.sh BUILD_DIR
set -uo pipefail

BUILD_DIR=$(cd "${1:?usage: $0 BUILD_DIR}" && pwd) || exit 2
LOAD=${LOAD:-0}
WORK=$(mktemp -d "${TMPDIR:-/tmp}/quorble-bench.XXXXXX")
PIDS=()

cleanup() {
  for pid in "${PIDS[@]}"; do kill "$pid" 2>/dev/null; done
  wait 2>/dev/null
  rm -rf "$WORK"
}
trap cleanup EXIT

if ! command -v pulseaudio >/dev/null; then
  echo "pulseaudio is not installed: no real sound server to measure on (make deps installs it)"
  exit 1
fi

export XDG_RUNTIME_DIR="$WORK/run" HOME="$WORK/home"
export PULSE_RUNTIME_PATH="$XDG_RUNTIME_DIR/pulse" PULSE_SERVER="unix:$WORK/run/pulse/native"
mkdir -p "$PULSE_RUNTIME_PATH" "$HOME" && chmod 700 "$XDG_RUNTIME_DIR"
cat >"$WORK/server.pa" <<PA
load-module module-null-sink sink_name=qnull rate=44100 channels=2
load-module module-native-protocol-unix auth-anonymous=1
set-default-sink qnull
set-default-source qnull.monitor
PA
pulseaudio -n -F "$WORK/server.pa" --daemonize=no --exit-idle-time=-1 --system=no \
  --use-pid-file=no --realtime=yes --high-priority=yes >"$WORK/pulse.log" 2>&1 &
SERVER=$!
PIDS+=("$SERVER")
for _ in $(seq 50); do pactl info >/dev/null 2>&1 && break; sleep 0.1; done
pactl info >/dev/null 2>&1 || { echo "the private PulseAudio did not start"; cat "$WORK/pulse.log"; exit 1; }

if [[ "${SERVER_RT:-0}" == 1 ]]; then
  for task in /proc/"$SERVER"/task/*; do chrt -r -p 5 "${task##*/}" >/dev/null 2>&1; done
fi

for n in $(seq 150 199); do
  [[ -e "/tmp/.X$n-lock" || -e "/tmp/.X11-unix/X$n" ]] && continue
  Xvfb ":$n" -screen 0 640x480x24 -nolisten tcp >"$WORK/xvfb.log" 2>&1 &
  PIDS+=("$!")
  export DISPLAY=":$n"
  break
done
for _ in $(seq 50); do xdotool getmouselocation >/dev/null 2>&1 && break; sleep 0.1; done

for _ in $(seq "$LOAD"); do
  (while :; do :; done) &
  PIDS+=("$!")
done

echo "sound server: PulseAudio $(pulseaudio --version | awk '{print $2}'), null sink, realtime: ${SERVER_RT:-0};" \
  "load: $LOAD busy processes;" \
  "machine load average $(cut -d' ' -f1-3 /proc/loadavg)"
SDL_AUDIODRIVER=pulseaudio "$BUILD_DIR/bench/quorble-bench" "$BUILD_DIR" "$BUILD_DIR/quorble.txt" "$SERVER"
