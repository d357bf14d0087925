#!/usr/bin/env bash
# Renders the screenshots in docs/screenshots offscreen: the window on the demo's simulated
# receiver, and the map widget alone. This machine reaches no tile server, so the maps show
# synthetic tiles drawn by the screens benchmark, configured through the tile settings of a
# temporary configuration folder; nothing of the user's settings or cache is touched.
#   tools/screenshots.sh [build folder]   (configured with -DKORVID_BENCH=ON)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build}
out=$root/docs/screenshots
korvid=$build/src/app/korvid
bench=$build/bench/screens/korvid_screens_bench
[ -x "$korvid" ] && [ -x "$bench" ] || { echo "build korvid and korvid_screens_bench first (-DKORVID_BENCH=ON)" >&2; exit 2; }

home=$(mktemp -d /tmp/korvid-shots.XXXXXX)
trap 'rm -rf "$home"' EXIT
export XDG_CONFIG_HOME=$home/config XDG_CACHE_HOME=$home/cache QT_QPA_PLATFORM=offscreen
url=$("$bench" --tiles "$home/tiles" 48.1173 11.5167)
mkdir -p "$XDG_CONFIG_HOME/Korvid" "$out"
cat >"$XDG_CONFIG_HOME/Korvid/korvid.conf" <<INI
[map]
standard=$url
standard_max_zoom=19
standard_attribution=synthetic tiles
[window]
history_minutes=1
INI

shot() {
  local name=$1
  shift
  "$korvid" --demo --screenshot "$out/$name.png" "$@" >/dev/null
  echo "docs/screenshots/$name.png"
}
shot main-landscape --size 1100x720 --after 25
shot main-portrait --size 520x900 --after 25
shot main-dark --size 1100x720 --after 25 --dark
shot docks --size 1400x900 --after 25 --sheet details --sheet log
shot details --size 1100x900 --after 8 --sheet details
shot log --size 1100x720 --after 6 --sheet log
shot log-binary --size 1100x720 --after 6 --sheet log --ubx
shot settings --size 640x760 --after 4 --sheet settings
shot console --size 1100x720 --after 6 --sheet console --ubx
shot sky --size 1500x1200 --after 40 --sheet sky --gnss gps,glo,gal,bds
shot sky-dark --size 1500x1200 --after 40 --sheet sky --gnss gps,glo,gal,bds,qzss --ubx --dark
"$bench" --map-screenshot "$out/map.png"
echo "docs/screenshots/map.png"

# The player bar: a minute of the simulator recorded with korvid-cli, opened as a capture and
# played for a while, so that the track has grown.
sim=$build/src/app/korvid-sim
cli=$build/src/app/korvid-cli
port=$(/usr/bin/python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
"$sim" --port "$port" --rate 10 --duration 70 >/dev/null 2>&1 &
sleep 0.5
"$cli" --connect "tcp://127.0.0.1:$port" --duration 60 --record "$home/drive.nmea" >/dev/null
wait
"$korvid" --screenshot "$out/player.png" --size 1100x720 --after 30 "$home/drive.nmea" >/dev/null
echo "docs/screenshots/player.png"
# The window on a serial receiver: korvid-sim on a pseudo-terminal at 38400 baud, the settings
# pointing at it, connected with Ctrl+K on an X server (Xvfb, driven by xdotool; skipped where
# either is missing), then the settings dialog.
if command -v Xvfb > /dev/null && command -v xdotool > /dev/null; then
  sim=$build/src/app/korvid-sim
  "$sim" --pty --baud 38400 --rate 5 --speed 6 --duration 120 > "$home/sim.out" 2>&1 &
  sim_pid=$!
  for _ in $(seq 50); do grep -q 'serving on' "$home/sim.out" && break; sleep 0.1; done
  pts=$(grep -o '/dev/pts/[0-9]*' "$home/sim.out")
  cat >>"$XDG_CONFIG_HOME/Korvid/korvid.conf" <<INI
[General]
enable_source=true
history_source="[\"serial://$pts\"]"
INI
  for n in $(seq 120 219); do
    [ -e "/tmp/.X$n-lock" ] || [ -e "/tmp/.X11-unix/X$n" ] && continue
    Xvfb ":$n" -screen 0 1400x1000x24 -nolisten tcp > /dev/null 2>&1 &
    xvfb=$!
    sleep 1
    kill -0 "$xvfb" 2> /dev/null && break
  done
  serial_shot() {
    local name=$1 after=$2 size=$3 dialog=$4
    DISPLAY=":$n" QT_QPA_PLATFORM=xcb "$korvid" --screenshot "$out/$name.png" --after "$after" --size "$size" \
      > /dev/null 2>&1 &
    local app=$!
    local window
    window=$(DISPLAY=":$n" timeout 10 xdotool search --sync --name '^Korvid' | head -n 1)
    DISPLAY=":$n" xdotool windowfocus --sync "$window" key ctrl+k 2> /dev/null
    if [ "$dialog" = yes ]; then
      sleep 3
      DISPLAY=":$n" xdotool key ctrl+comma 2> /dev/null
    fi
    wait "$app"
    echo "docs/screenshots/$name.png"
  }
  serial_shot serial 30 1100x720 no
  serial_shot settings-serial 8 660x640 yes
  kill "$xvfb" "$sim_pid" 2> /dev/null || true
  wait "$xvfb" "$sim_pid" 2> /dev/null || true
else
  echo "docs/screenshots/serial.png and settings-serial.png need Xvfb and xdotool" >&2
fi
