#!/usr/bin/env bash
# Replays the text captures through korvid-cli, piped, until the number of sentences of a day of
# 10 Hz output (864 000 epochs of about 8 sentences) has gone through, sampling the resident
# memory of the process as it runs. Memory must stay flat once the bounded lists are full.
#   bench/soak.sh [hours]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(dirname "$here")
hours=${1:-24}
cli=${KORVID_CLI:-$root/build/src/app/korvid-cli}
logs=${KORVID_LOGS:-$root/../shared/data/logs}
captures=("$logs"/bu353-glonass.log "$logs"/gps-360.log "$logs"/neo-m8n.log "$logs"/telit-he910.log "$logs"/ublox-lea-5h.log)
[ -x "$cli" ] || { echo "build korvid-cli first (./korvid.sh test)" >&2; exit 2; }

per_pass=$(cat "${captures[@]}" | grep -c '^\$')
target=$((hours * 3600 * 10 * 8))
passes=$(((target + per_pass - 1) / per_pass))
echo "soak: $passes passes of $per_pass sentences = $((passes * per_pass)) sentences ($hours h of 10 Hz)"

samples=$(mktemp /tmp/korvid-soak.XXXXXX)
trap 'rm -f "$samples"' EXIT
start=$(date +%s.%N)
for ((i = 0; i < passes; i++)); do cat "${captures[@]}"; done | "$cli" --replay - > /dev/null &
sleep 0.2
pid=$(pgrep -n -f "korvid-cli --replay -" || true)
while [ -n "$pid" ] && kill -0 "$pid" 2>/dev/null; do
  awk '/VmRSS/ {print $2}' "/proc/$pid/status" 2>/dev/null >> "$samples" || true
  sleep 0.25
done
wait
end=$(date +%s.%N)
awk -v s="$start" -v e="$end" -v n=$((passes * per_pass)) '
  {rss[NR] = $1; if ($1 > max) max = $1}
  END {printf "resident memory: first %d KiB, last %d KiB, max %d KiB over %d samples\n", rss[1], rss[NR], max, NR;
       printf "time %.1f s, %.0f sentences/s\n", e - s, n / (e - s)}' "$samples"
