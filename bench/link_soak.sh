#!/usr/bin/env bash
# A receiver that dies and comes back, as a user meets it: korvid-cli stays connected to korvid-sim
# while the simulator is killed with SIGKILL at random moments and restarted, then while it closes
# every connection after a second. Counts the reconnects and samples korvid-cli's descriptors,
# threads and CPU time, which must stay constant (and near zero while there is no peer).
#   bench/link_soak.sh [kills] [drop-seconds]      defaults: 50 kills, then 120 s of --drop-after 1
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$(dirname "$here")
kills=${1:-50}
drop_seconds=${2:-120}
bin=${KORVID_BIN:-$root/build/src/app}
[ -x "$bin/korvid-cli" ] && [ -x "$bin/korvid-sim" ] || { echo "build first (./korvid.sh test)" >&2; exit 2; }

work=$(mktemp -d /tmp/korvid-link-soak.XXXXXX)
sim_pid=
cli_pid=
cleanup() {
  [ -n "$sim_pid" ] && kill -9 "$sim_pid" 2> /dev/null && wait "$sim_pid" 2> /dev/null
  [ -n "$cli_pid" ] && kill "$cli_pid" 2> /dev/null && wait "$cli_pid" 2> /dev/null
  rm -rf "$work"
}
trap cleanup EXIT

# A port that is free now, so that every restart of the simulator serves the same address.
port=$(/usr/bin/python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
start_sim() { "$bin/korvid-sim" --port "$port" --rate 5 "$@" > /dev/null 2>&1 & sim_pid=$!; }
connects() { grep -c 'connected to' "$work/cli.txt" || true; }
fds() { find "/proc/$cli_pid/fd" -mindepth 1 | wc -l; }
threads() { awk '/^Threads/ {print $2}' "/proc/$cli_pid/status"; }
cpu_ticks() { awk '{print $14 + $15}' "/proc/$cli_pid/stat"; }
random_between() { awk -v lo="$1" -v hi="$2" -v seed="$RANDOM" 'BEGIN {srand(seed); printf "%.2f", lo + rand() * (hi - lo)}'; }
# Waits until korvid-cli has connected more than n times; false after 15 s.
await_connect() {
  for _ in $(seq 150); do [ "$(connects)" -gt "$1" ] && return 0; sleep 0.1; done
  return 1
}
# Descriptors and threads half a second into a connection, when it has settled.
sample() {
  sleep 0.5
  fd_samples+=("$(fds)")
  thread_samples+=("$(threads)")
}

start_sim
"$bin/korvid-cli" --connect "tcp://127.0.0.1:$port" > "$work/cli.txt" 2>&1 &
cli_pid=$!
await_connect 0 || { echo "korvid-cli never connected" >&2; exit 1; }
echo "soak: korvid-cli (pid $cli_pid) on 127.0.0.1:$port; $kills kills, then ${drop_seconds} s of --drop-after 1"
fd_samples=() thread_samples=() missed=0 idle_ticks=0 idle_seconds=0
hz=$(getconf CLK_TCK)
started=$(date +%s)

for ((i = 1; i <= kills; i++)); do
  sleep "$(random_between 0.5 6)"
  before=$(connects)
  kill -9 "$sim_pid"
  wait "$sim_pid" 2> /dev/null || true
  # No peer: korvid-cli retries every 4 s. Its CPU time over this pause is what waiting costs.
  pause=$(random_between 0.5 8)
  t0=$(cpu_ticks)
  sleep "$pause"
  idle_ticks=$((idle_ticks + $(cpu_ticks) - t0))
  idle_seconds=$(awk -v a="$idle_seconds" -v b="$pause" 'BEGIN {print a + b}')
  start_sim
  if await_connect "$before"; then
    sample
  else
    missed=$((missed + 1))
  fi
done

kill -9 "$sim_pid"
wait "$sim_pid" 2> /dev/null || true
before=$(connects)
start_sim --drop-after 1
sleep "$drop_seconds"
drop_connects=$(($(connects) - before))
before=$(connects)
await_connect "$before" && sample

elapsed=$(($(date +%s) - started))
summary() { printf '%s\n' "$@" | sort -n | uniq -c | awk '{printf "%s%s x%d", sep, $2, $1; sep = ", "} END {print ""}'; }
echo "reconnected after $((kills - missed)) of $kills kills (missed: $missed); $drop_connects connects in ${drop_seconds} s of --drop-after 1"
echo "descriptors at each reconnect: $(summary "${fd_samples[@]}")"
echo "threads at each reconnect: $(summary "${thread_samples[@]}")"
awk -v t="$idle_ticks" -v hz="$hz" -v s="$idle_seconds" \
  'BEGIN {printf "CPU while waiting for a peer: %.2f %% of a core over %.0f s\n", 100 * t / hz / s, s}'
echo "total time ${elapsed} s, korvid-cli CPU $(awk -v t="$(cpu_ticks)" -v hz="$hz" 'BEGIN {printf "%.1f", t / hz}') s"
[ "$missed" -eq 0 ]
