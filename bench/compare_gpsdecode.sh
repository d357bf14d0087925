#!/usr/bin/env bash
# Decodes the same large stream with gpsd's gpsdecode and with korvid-cli --replay, alternating,
# several rounds, and prints both rates and their ratio (median of the rounds). The default size,
# 360 MiB, is about a day of a receiver's output at 10 Hz (6.9 M sentences of the text captures);
# on small streams the fixed start-up of both programs (about 20 ms for korvid-cli, which loads
# Qt, against 6 ms) weighs in the ratio.
#   bench/compare_gpsdecode.sh [text|ubx] [rounds] [megabytes]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(dirname "$here")
kind=${1:-text}
rounds=${2:-3}
megabytes=${3:-360}
cli=${KORVID_CLI:-$root/build/src/app/korvid-cli}
logs=${KORVID_LOGS:-$root/../shared/data/logs}
command -v gpsdecode >/dev/null || { echo "gpsdecode is missing: apt-get install gpsd-clients" >&2; exit 2; }
[ -x "$cli" ] || { echo "build korvid-cli first (./korvid.sh test)" >&2; exit 2; }

case "$kind" in
  text) sources=("$logs"/bu353-glonass.log "$logs"/gps-360.log "$logs"/neo-m8n.log "$logs"/telit-he910.log "$logs"/ublox-lea-5h.log) ;;
  ubx) sources=("$logs"/ublox-neo-m8n.log) ;;
  *) echo "usage: $0 [text|ubx] [rounds] [megabytes]" >&2; exit 2 ;;
esac

stream=$(mktemp /tmp/korvid-stream.XXXXXX)
trap 'rm -f "$stream" "$stream.next"' EXIT
# The sources once, then doubled, then topped up with whole copies: at least the size asked for.
cat "${sources[@]}" >"$stream"
unit=$(stat -c %s "$stream")
target=$((megabytes * 1024 * 1024))
while [ $((2 * $(stat -c %s "$stream"))) -le "$target" ]; do
  cat "$stream" "$stream" >"$stream.next"
  mv "$stream.next" "$stream"
done
missing=$((target - $(stat -c %s "$stream")))
[ "$missing" -le 0 ] || head -c $(((missing + unit - 1) / unit * unit)) "$stream" >"$stream.next"
[ ! -f "$stream.next" ] || { cat "$stream.next" >>"$stream"; rm -f "$stream.next"; }
if [ "$kind" = text ]; then
  units=$(grep -c '^\$' "$stream")
  label=sentences
else
  units=$(LC_ALL=C grep -a -o -P '\xb5\x62\x01\x07' "$stream" | wc -l)
  label="NAV-PVT frames"
fi
echo "stream: $(($(stat -c %s "$stream") / 1024 / 1024)) MiB, $units $label; $rounds rounds"

seconds() {
  local start end
  start=$(date +%s.%N)
  "$@" >/dev/null 2>&1 || true
  end=$(date +%s.%N)
  awk -v a="$start" -v b="$end" 'BEGIN {print b - a}'
}

ours=()
theirs=()
for ((i = 0; i < rounds; i++)); do
  theirs+=("$(seconds sh -c "gpsdecode < '$stream'")")
  ours+=("$(seconds "$cli" --replay "$stream")")
done
median() { printf '%s\n' "$@" | sort -g | awk '{a[NR]=$1} END {print a[int((NR+1)/2)]}'; }
t_ours=$(median "${ours[@]}")
t_theirs=$(median "${theirs[@]}")
printf 'gpsdecode   %10.3f s  %14.0f %s/s\n' "$t_theirs" "$(awk -v u="$units" -v t="$t_theirs" 'BEGIN {print u / t}')" "$label"
printf 'korvid-cli  %10.3f s  %14.0f %s/s\n' "$t_ours" "$(awk -v u="$units" -v t="$t_ours" 'BEGIN {print u / t}')" "$label"
printf 'ratio       %10.1f x\n' "$(awk -v a="$t_theirs" -v b="$t_ours" 'BEGIN {print a / b}')"
