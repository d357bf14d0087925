#!/usr/bin/env bash
# The programs as a user starts them: signals and unusable files, with their exit statuses.
#   programs_test.sh BIN_DIR
set -uo pipefail
bin=$1
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# The window, on the offscreen platform, quits on SIGINT and SIGTERM: it disconnects and exits 0.
for signal in INT TERM; do
  QT_QPA_PLATFORM=offscreen "$bin/korvid" --demo > "$out/window.txt" 2>&1 &
  pid=$!
  for _ in $(seq 50); do grep -q 'connected to' "$out/window.txt" && break; sleep 0.1; done
  kill -s "$signal" "$pid"
  for _ in $(seq 50); do kill -0 "$pid" 2> /dev/null || break; sleep 0.1; done
  kill -0 "$pid" 2> /dev/null && { fail "korvid ignored SIG$signal"; kill -9 "$pid"; }
  wait "$pid"
  status=$?
  [ "$status" -eq 0 ] || fail "korvid on SIG$signal exited $status"
  grep -q 'Disconnecting' "$out/window.txt" || fail "korvid on SIG$signal did not disconnect"
done

# A settings file that cannot be one is refused, not replaced by the defaults.
for path in "$out" "$out/missing/k.ini"; do
  "$bin/korvid-cli" --connect saved --settings "$path" --duration 1 > /dev/null 2> "$out/cli.txt"
  status=$?
  [ "$status" -eq 2 ] || fail "korvid-cli --settings $path exited $status"
  grep -q -- '--settings' "$out/cli.txt" || fail "korvid-cli --settings $path said nothing"
done

# korvid-sim --pty serves a pseudo-terminal that a reader opens as a serial port; with --baud the
# device answers only once the terminal is set to that rate.
"$bin/korvid-sim" --pty --rate 20 --baud 38400 --duration 10 > "$out/sim.txt" &
pid=$!
for _ in $(seq 50); do grep -q 'serving on /dev/pts/' "$out/sim.txt" && break; sleep 0.1; done
tty=$(sed -n 's/.*serving on //p' "$out/sim.txt")
# What was sent before the change of rate is read away first.
stty -F "$tty" raw 9600 && timeout 0.5 cat "$tty" > /dev/null
timeout 1 cat "$tty" > "$out/at9600.bin"
stty -F "$tty" raw 38400 && timeout 1 cat "$tty" > "$out/at38400.bin"
grep -aq 'GPGGA' "$out/at9600.bin" && fail "korvid-sim --baud 38400 answered at 9600"
grep -aq '^\$GPGGA,.*\*[0-9A-F][0-9A-F]' "$out/at38400.bin" || fail "korvid-sim --pty sent no sentence at 38400"
kill -TERM "$pid"
wait "$pid" || fail "korvid-sim --pty did not stop cleanly on SIGTERM"

# korvid-cli reaches a live fix over each link of a receiver on the desk: a pseudo-terminal whose
# rate it must find, UDP datagrams, a gpsd daemon, and TCP to a host name. Each peer is started by
# the caller.
fix_over() {
  "$bin/korvid-cli" --connect "$1" --duration 3 --json --interval 100 > "$out/fix.txt" 2>&1
  grep '^{' "$out/fix.txt" | tail -1 | /usr/bin/python3 -c '
import json, sys
d = json.load(sys.stdin)
sys.exit(0 if d.get("source", {"valid": True})["valid"] and d["gga"]["fix_i"] > 0 and d["hub"]["msg_good"] > 5 else 1)' ||
    fail "no fix over $1: $(grep -v '^{' "$out/fix.txt" | head -3)"
}
free_port() { /usr/bin/python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])'; }

"$bin/korvid-sim" --pty --baud 38400 --rate 5 --duration 8 > "$out/pty.txt" 2>&1 &
sim=$!
for _ in $(seq 20); do grep -q 'serving on' "$out/pty.txt" && break; sleep 0.1; done
fix_over "serial://$(grep -o '/dev/pts/[0-9]*' "$out/pty.txt")"
grep -q 'at 38400 baud' "$out/fix.txt" || fail "the serial link did not find 38400 baud"
kill "$sim" 2> /dev/null; wait "$sim" 2> /dev/null

port=$(free_port)
"$bin/korvid-sim" --udp "127.0.0.1:$port" --rate 5 --duration 8 > /dev/null 2>&1 &
sim=$!
fix_over "udp://:$port"
kill "$sim" 2> /dev/null; wait "$sim" 2> /dev/null

port=$(free_port)
"$bin/korvid-sim" --port "$port" --rate 5 --duration 8 > /dev/null 2>&1 &
sim=$!
sleep 0.3
fix_over "tcp://localhost:$port"
kill "$sim" 2> /dev/null; wait "$sim" 2> /dev/null

if command -v gpsfake > /dev/null && [ -x /usr/sbin/gpsd ]; then
  port=$(free_port)
  setsid gpsfake -q -c 0.02 -P "$port" "$(dirname "$0")/../../samples/demo.nmea" > /dev/null 2>&1 &
  gpsfake=$!
  sleep 1
  fix_over "gpsd://127.0.0.1:$port"
  kill -- "-$gpsfake" 2> /dev/null; wait "$gpsfake" 2> /dev/null
  # The fix relayed by gpsd is the one a replay of the capture up to that epoch's GGA decodes.
  fix_fields='g = json.loads([l for l in open(sys.argv[1]) if l.startswith("{")][-1])["gga"]
print({k: g[k] for k in ("time", "lat", "lon", "lat_dir", "lon_dir", "fix_i", "sat_count_i", "hdop_d", "alt_d")})'
  live=$(/usr/bin/python3 -c "import json, sys; $fix_fields" "$out/fix.txt")
  epoch=$(grep -o '\$GPGGA,[0-9]*' "$out/fix.txt" | tail -1 | cut -d, -f2)
  sed "/^\\\$GPGGA,$epoch/q" "$(dirname "$0")/../../samples/demo.nmea" > "$out/upto.nmea"
  "$bin/korvid-cli" --replay "$out/upto.nmea" --json > "$out/replayed.txt"
  replayed=$(/usr/bin/python3 -c "import json, sys; $fix_fields" "$out/replayed.txt")
  [ -n "$epoch" ] && [ "$live" = "$replayed" ] || fail "gpsd's fix $live is not the replay's $replayed"
else
  echo "programs: gpsd and gpsfake are not installed; the gpsd link is not tried"
fi

# A live session recorded and replayed gives the same state but the link texts, as fast as possible
# and paced by its epochs; a recording that cannot be written stops with its reason, the link goes on.
port=$(free_port)
"$bin/korvid-sim" --port "$port" --rate 10 --duration 8 > /dev/null 2>&1 &
sim=$!
sleep 0.3
"$bin/korvid-cli" --connect "tcp://127.0.0.1:$port" --duration 2 --json --interval 100 --record "$out/rec.nmea" \
  > "$out/live.txt"
"$bin/korvid-cli" --connect "tcp://127.0.0.1:$port" --duration 1 --record /dev/full > "$out/full.txt"
kill "$sim" 2> /dev/null; wait "$sim" 2> /dev/null
"$bin/korvid-cli" --replay "$out/rec.nmea" --json > "$out/replay.txt"
"$bin/korvid-cli" --replay "$out/rec.nmea" --speed max --json > "$out/paced.txt"
same_state() {
  /usr/bin/python3 - "$1" "$2" << 'EOF'
import json, sys
def state(path):
    d = json.loads([l for l in open(path) if l.startswith("{")][-1])
    d["hub"] = {k: v for k, v in d["hub"].items() if not k.startswith("status")}
    return d
a, b = state(sys.argv[1]), state(sys.argv[2])
sys.exit(0 if a == b and a["gga"]["fix_i"] > 0 else 1)
EOF
}
same_state "$out/live.txt" "$out/replay.txt" || fail "the replayed recording differs from the live session"
same_state "$out/replay.txt" "$out/paced.txt" || fail "the paced replay differs from the replay"
"$bin/korvid-cli" --replay "$out/rec.nmea" --gpx "$out/t.gpx" > /dev/null &&
  xmllint --noout --schema "$(dirname "$0")/../data/gpx.xsd" "$out/t.gpx" 2> /dev/null &&
  [ "$(grep -c '<trkpt' "$out/t.gpx")" -ge 15 ] || fail "the recording's GPX track: $(head -c 300 "$out/t.gpx")"
grep -q 'recording stopped: /dev/full: No space left on device' "$out/full.txt" &&
  grep -q 'connected to' "$out/full.txt" || fail "recording to /dev/full: $(cat "$out/full.txt")"

[ "$failures" -eq 0 ] && echo "programs: all passed"
exit "$failures"
