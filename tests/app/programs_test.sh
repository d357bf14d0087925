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

[ "$failures" -eq 0 ] && echo "programs: all passed"
exit "$failures"
