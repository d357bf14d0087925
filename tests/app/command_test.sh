#!/usr/bin/env bash
# Commands to a receiver and the shared stream, end to end against korvid-sim over TCP and a
# pseudo-terminal: the rate set to 5 Hz gives 5 epochs a second, an unknown key is refused, a
# simulator that ignores commands gives "no answer", a read-only link sends nothing, and a second
# program reads the stream through the share.
#   command_test.sh BIN_DIR
set -uo pipefail
bin=$1
out=$(mktemp -d)
pids=()
trap 'kill "${pids[@]}" 2> /dev/null; rm -rf "$out"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
expect() { grep -q -- "$2" "$out/$1" || fail "$1 lacks '$2': $(grep -v '^{' "$out/$1" | tail -5)"; }

# Starts korvid-sim with the given options and prints where it serves.
start_sim() {
  local log="$out/sim$#$RANDOM.txt"
  "$bin/korvid-sim" --port 0 --duration 20 "$@" > "$log" 2>&1 &
  pids+=($!)
  for _ in $(seq 50); do grep -q 'serving on' "$log" && break; sleep 0.1; done
  sed -n 's/.*serving on //p' "$log"
}

# Runs korvid-cli with the options, sharing its stream, and prints the NAV-PVT frames that a client
# of the share counts between 3 s and 5 s, once a new rate has settled.
epochs_in_2s() {
  local log=$1
  shift
  "$bin/korvid-cli" --duration 5.5 --serve :0 "$@" > "$out/$log" 2>&1 &
  local cli=$!
  for _ in $(seq 50); do grep -q 'sharing the stream on port' "$out/$log" && break; sleep 0.1; done
  /usr/bin/python3 -c '
import socket, sys, time
s = socket.create_connection(("127.0.0.1", int(sys.argv[1])), timeout=1)
start = time.monotonic()
seen = b""
while time.monotonic() - start < 5:
    try:
        data = s.recv(65536)
    except socket.timeout:
        continue
    if 3 <= time.monotonic() - start:
        seen += data
print(seen.count(b"\xb5\x62\x01\x07"))' "$(sed -n 's/.*sharing the stream on port //p' "$out/$log")"
  wait "$cli"
}

sim=$(start_sim --ubx)
rate=$(epochs_in_2s tcp.txt --connect "tcp://$sim" --send set:CFG-RATE-MEAS=200 --send set:0x10990001=1 \
  --send get:CFG-RATE-MEAS)
[ "$rate" -ge 9 ] && [ "$rate" -le 11 ] || fail "5 Hz gave $rate epochs in 2 s"
expect tcp.txt 'MON-VER  answered: KORVID-SIM 1.0'
expect tcp.txt 'CFG-VALSET CFG-RATE-MEAS=200  accepted'
expect tcp.txt 'CFG-VALSET 0x10990001=1  refused'
expect tcp.txt 'CFG-VALGET CFG-RATE-MEAS  accepted: CFG-RATE-MEAS=200'

# A second program reads the same stream through the share.
sim=$(start_sim --ubx)
"$bin/korvid-cli" --connect "tcp://$sim" --duration 4 --serve :0 > "$out/sharing.txt" 2>&1 &
cli=$!
for _ in $(seq 50); do grep -q 'sharing the stream on port' "$out/sharing.txt" && break; sleep 0.1; done
share=$(sed -n 's/.*sharing the stream on port //p' "$out/sharing.txt")
"$bin/korvid-cli" --connect "tcp://127.0.0.1:$share" --duration 3 --json --interval 100 > "$out/shared.txt" 2>&1
wait "$cli"
expect sharing.txt 'share: 127.0.0.1:[0-9]* connected'
grep '^{' "$out/shared.txt" | tail -1 | grep -q '"msg_good":[1-9]' || fail "the share carried no records"

sim=$(start_sim --ubx --ignore-commands)
"$bin/korvid-cli" --connect "tcp://$sim" --duration 3 --send rate:200 > "$out/ignored.txt" 2>&1
expect ignored.txt 'CFG-RATE 200 ms, 1  no answer'

# Read-only: nothing is sent, so the simulator keeps its 1 Hz.
sim=$(start_sim --ubx)
rate=$(epochs_in_2s read-only.txt --connect "tcp://$sim" --read-only --send set:CFG-RATE-MEAS=200)
expect read-only.txt 'read-only link: not sent CFG-VALSET CFG-RATE-MEAS=200'
grep -q '  sent ' "$out/read-only.txt" && fail "a read-only link sent: $(grep '  sent ' "$out/read-only.txt")"
[ "$rate" -ge 1 ] && [ "$rate" -le 3 ] || fail "read-only changed the rate: $rate epochs in 2 s"

# The same over a pseudo-terminal, as a receiver on a serial port.
tty=$(start_sim --pty --ubx)
rate=$(epochs_in_2s pty.txt --connect "serial://$tty?baud=38400" --send set:CFG-RATE-MEAS=200)
expect pty.txt 'CFG-VALSET CFG-RATE-MEAS=200  accepted'
[ "$rate" -ge 9 ] && [ "$rate" -le 11 ] || fail "5 Hz over the pty gave $rate epochs in 2 s"

[ "$failures" -eq 0 ] && echo "command: all passed"
exit "$failures"
