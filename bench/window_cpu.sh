#!/usr/bin/env bash
# The CPU the window costs on a live 10 Hz stream, over time: korvid --demo (the window with the
# built-in simulator at 10 fixes a second on loopback) on a real X server (Xvfb on a free display;
# offscreen where Xvfb is missing), its CPU sampled every INTERVAL seconds from /proc, printed as
# the share of one core in each interval with the resident memory; then korvid-cli on korvid-sim
# at 10 Hz for comparison. The user's settings and tile cache are not touched.
#   bench/window_cpu.sh [seconds [interval]]     (default 60 s, sampled every 10 s)
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(dirname "$here")
seconds=${1:-60}
interval=${2:-10}
bin=${KORVID_BIN:-$root/build/src/app}
for p in korvid korvid-cli korvid-sim; do
  [ -x "$bin/$p" ] || { echo "build $p first (./korvid.sh test)" >&2; exit 2; }
done

home=$(mktemp -d /tmp/korvid-cpu.XXXXXX)
xvfb=
cleanup() {
  [ -z "$xvfb" ] || { kill "$xvfb" 2> /dev/null; wait "$xvfb" 2> /dev/null || true; }
  rm -rf "$home"
}
trap cleanup EXIT
export XDG_CONFIG_HOME=$home/config XDG_CACHE_HOME=$home/cache
unset WAYLAND_DISPLAY

platform=offscreen
if command -v Xvfb > /dev/null; then
  for n in $(seq 90 189); do
    [ -e "/tmp/.X$n-lock" ] || [ -e "/tmp/.X11-unix/X$n" ] && continue
    Xvfb ":$n" -screen 0 1280x1024x24 -nolisten tcp > /dev/null 2>&1 &
    xvfb=$!
    sleep 1
    if kill -0 "$xvfb" 2> /dev/null; then
      export DISPLAY=":$n"
      platform=xcb
      break
    fi
    xvfb=
  done
fi
export QT_QPA_PLATFORM=$platform

ticks=$(getconf CLK_TCK)
# CPU seconds (user + system) of a process so far.
cpu_of() { awk -v t="$ticks" '{print ($14 + $15) / t}' "/proc/$1/stat"; }
rss_of() { awk '/VmRSS/ {print $2 / 1024}' "/proc/$1/status"; }

echo "korvid --demo on $platform${DISPLAY:+ (Xvfb $DISPLAY)}: $seconds s at 10 Hz, sampled every $interval s;" \
  "$(nproc) cores, load $(cut -d' ' -f1 /proc/loadavg)"
"$bin/korvid" --demo > /dev/null 2>&1 &
app=$!
sleep 2  # start-up is not the steady state
start=$(cpu_of "$app")
xstart=$([ -n "$xvfb" ] && cpu_of "$xvfb" || echo 0)
last=$start
printf "%8s %10s %12s %8s\n" "time s" "% of core" "Xvfb % core" "RSS MB"
for ((t = interval; t <= seconds; t += interval)); do
  xlast=$([ -n "$xvfb" ] && cpu_of "$xvfb" || echo 0)
  sleep "$interval"
  now=$(cpu_of "$app")
  xnow=$([ -n "$xvfb" ] && cpu_of "$xvfb" || echo 0)
  awk -v t="$t" -v a="$last" -v b="$now" -v xa="$xlast" -v xb="$xnow" -v i="$interval" -v m="$(rss_of "$app")" \
    'BEGIN {printf "%8d %10.2f %12.2f %8.1f\n", t, 100 * (b - a) / i, 100 * (xb - xa) / i, m}'
  last=$now
done
awk -v a="$start" -v b="$last" -v xa="$xstart" -v xb="$xnow" -v s="$seconds" \
  'BEGIN {printf "whole run: %.2f %% of a core (Xvfb %.2f %%)\n", 100 * (b - a) / s, 100 * (xb - xa) / s}'
kill -INT "$app"
wait "$app" || true

port=$((20000 + RANDOM % 20000))
"$bin/korvid-sim" --port "$port" --rate 10 --duration $((seconds + 5)) > /dev/null 2>&1 &
sim=$!
sleep 0.5
"$bin/korvid-cli" --connect "tcp://127.0.0.1:$port" > /dev/null 2>&1 &
cli=$!
sleep 1
cstart=$(cpu_of "$cli")
sleep "$seconds"
awk -v a="$cstart" -v b="$(cpu_of "$cli")" -v s="$seconds" \
  'BEGIN {printf "korvid-cli on korvid-sim: %.2f %% of a core\n", 100 * (b - a) / s}'
kill -INT "$cli" "$sim" 2> /dev/null || true
wait "$cli" "$sim" 2> /dev/null || true
