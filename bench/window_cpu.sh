#!/usr/bin/env bash
# The CPU the window costs on a live 10 Hz stream: korvid --demo (the window, offscreen, with the
# built-in simulator at 10 fixes a second on loopback) for a number of seconds, and beside it the
# headless korvid-cli on korvid-sim at 10 Hz for the same time. Prints CPU seconds, the share of
# one core and the peak resident memory. The user's settings and tile cache are not touched.
#   bench/window_cpu.sh [seconds]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(dirname "$here")
seconds=${1:-60}
bin=${KORVID_BIN:-$root/build/src/app}
for p in korvid korvid-cli korvid-sim; do
  [ -x "$bin/$p" ] || { echo "build $p first (./korvid.sh test)" >&2; exit 2; }
done

home=$(mktemp -d /tmp/korvid-cpu.XXXXXX)
trap 'rm -rf "$home"' EXIT
export XDG_CONFIG_HOME=$home/config XDG_CACHE_HOME=$home/cache QT_QPA_PLATFORM=offscreen

# Runs a command for the given time and prints "NAME  CPU s  % of a core  peak RSS".
measure() {
  local name=$1
  shift
  /usr/bin/time -f "%U %S %M" -o "$home/time" timeout -s INT "$seconds" "$@" >/dev/null 2>&1 || true
  read -r user sys rss < <(tail -n 1 "$home/time")
  awk -v n="$name" -v u="$user" -v s="$sys" -v m="$rss" -v t="$seconds" \
    'BEGIN {printf "%-34s %6.2f s CPU  %5.1f %% of a core  %6.1f MB peak\n", n, u + s, 100 * (u + s) / t, m / 1024}'
}

echo "$seconds s at 10 Hz, $(nproc) cores, load $(cut -d' ' -f1 /proc/loadavg)"
measure "korvid --demo (window + simulator)" "$bin/korvid" --demo
port=$((20000 + RANDOM % 20000))
"$bin/korvid-sim" --port "$port" --rate 10 --duration $((seconds + 5)) >/dev/null 2>&1 &
sim=$!
sleep 0.5
measure "korvid-cli on korvid-sim" "$bin/korvid-cli" --connect "tcp://127.0.0.1:$port"
kill "$sim" 2>/dev/null || true
wait "$sim" 2>/dev/null || true
