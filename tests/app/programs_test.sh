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

[ "$failures" -eq 0 ] && echo "programs: all passed"
exit "$failures"
