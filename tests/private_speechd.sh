# Sourced by tests: a private PulseAudio with a null sink and a private
# speech-dispatcher with the espeak-ng module, both under $1, with their own
# XDG_RUNTIME_DIR so that neither meets the user's daemons nor another
# test's. Exports what a client needs to find them; speechd_stop ends both.
#
#   . tests/private_speechd.sh; speechd_start DIR || exit 1; ...; speechd_stop
PRIVATE_PULSE_PID=""
PRIVATE_SPEECHD_PID=""

speechd_start() {
  local dir=$1
  mkdir -p "$dir/rt" "$dir/conf/modules" "$dir/log" || return 1
  chmod 700 "$dir/rt"
  export XDG_RUNTIME_DIR="$dir/rt"
  # An address of the user's would lead clients to the user's daemon.
  unset SPEECHD_ADDRESS
  export PULSE_RUNTIME_PATH="$dir/rt/pulse" PULSE_SERVER="unix:$dir/rt/pulse/native"
  # No suspend-on-idle: a null sink that wakes from suspend stalls its
  # first stream for about two seconds.
  cat >"$dir/pulse.pa" <<PA
load-module module-null-sink sink_name=qnull rate=44100 channels=2
load-module module-native-protocol-unix auth-anonymous=1
set-default-sink qnull
PA
  cp /etc/speech-dispatcher/modules/espeak-ng.conf "$dir/conf/modules/" || return 1
  # A player's own rate other than the daemon's 0, so that a test can see
  # the game keep it as its rate 0.
  cat >"$dir/conf/speechd.conf" <<CONF
LogLevel 4
LogDir "$dir/log"
DefaultModule espeak-ng
AddModule "espeak-ng" "sd_espeak-ng" "espeak-ng.conf"
AudioOutputMethod "pulse"
DefaultLanguage "en-US"
DefaultRate 30
CONF
  pulseaudio -n -F "$dir/pulse.pa" --daemonize=no --exit-idle-time=-1 --system=no \
    --use-pid-file=no >"$dir/pulse.log" 2>&1 &
  PRIVATE_PULSE_PID=$!
  local _
  for _ in $(seq 50); do
    [[ -S "$dir/rt/pulse/native" ]] && break
    sleep 0.1
  done
  [[ -S "$dir/rt/pulse/native" ]] || return 1
  speech-dispatcher -s -C "$dir/conf" -t 0 >"$dir/speechd.out" 2>&1 &
  PRIVATE_SPEECHD_PID=$!
  for _ in $(seq 50); do
    [[ -S "$dir/rt/speech-dispatcher/speechd.sock" ]] && return 0
    sleep 0.1
  done
  return 1
}

# The daemon ends its module processes itself when it is told to stop.
speechd_stop() {
  [[ -n "$PRIVATE_SPEECHD_PID" ]] && kill "$PRIVATE_SPEECHD_PID" 2>/dev/null
  [[ -n "$PRIVATE_SPEECHD_PID" ]] && wait "$PRIVATE_SPEECHD_PID" 2>/dev/null
  [[ -n "$PRIVATE_PULSE_PID" ]] && kill "$PRIVATE_PULSE_PID" 2>/dev/null
  [[ -n "$PRIVATE_PULSE_PID" ]] && wait "$PRIVATE_PULSE_PID" 2>/dev/null
  PRIVATE_SPEECHD_PID=""
  PRIVATE_PULSE_PID=""
}
