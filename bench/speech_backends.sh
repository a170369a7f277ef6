#!/usr/bin/env bash
# Runs quorble-speech-bench against a private PulseAudio null sink and a
# private speech-dispatcher, so the figures of both speech backends come
# from one sound server in one run.
#
#   bench/speech_backends.sh BUILD_DIR
set -uo pipefail
BUILD_DIR=$(cd "${1:?usage: $0 BUILD_DIR}" && pwd) || exit 2
HERE=$(cd "$(dirname "$0")" && pwd)
WORK=$(mktemp -d "${TMPDIR:-/tmp}/quorble-speech-bench.XXXXXX")
. "$HERE/../tests/private_speechd.sh"
trap 'speechd_stop; rm -rf "$WORK"' EXIT
export HOME="$WORK/home" XDG_CONFIG_HOME="$WORK/home/.config"
mkdir -p "$HOME"
speechd_start "$WORK/spd" || { echo "no private speech-dispatcher" >&2; exit 1; }
SDL_VIDEODRIVER=dummy SDL_AUDIODRIVER=pulseaudio "$BUILD_DIR/bench/quorble-speech-bench"
