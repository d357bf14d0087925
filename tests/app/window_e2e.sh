#!/usr/bin/env bash
# The window on a real X server, driven as a user drives it: Xvfb on a free display, korvid --demo,
# and real key and window events from xdotool. The menu opens by keyboard, Ctrl+L opens the log
# dock, Ctrl+K disconnects, the window turns to portrait and back and to portrait again; the
# window's own screenshot, taken at the end, shows what the user sees. Skips (status 77) where Xvfb
# or xdotool is missing. Everything is bounded in time; the X server never outlives the test.
#   window_e2e.sh BIN_DIR
set -uo pipefail
bin=$1
skip=77
for tool in Xvfb xdotool; do
  command -v "$tool" > /dev/null || { echo "SKIP: $tool is missing (Debian: apt-get install xvfb xdotool)"; exit "$skip"; }
done
out=$(mktemp -d)
xvfb=
app=
cleanup() {
  for pid in $app $xvfb; do kill "$pid" 2> /dev/null && wait "$pid" 2> /dev/null; done
  rm -rf "$out"
}
trap cleanup EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# A display number nobody holds; Xvfb takes its lock file, so a race loses only a retry.
for n in $(seq 90 189); do
  [ -e "/tmp/.X$n-lock" ] || [ -e "/tmp/.X11-unix/X$n" ] && continue
  Xvfb ":$n" -screen 0 1280x1024x24 -nolisten tcp > "$out/xvfb.txt" 2>&1 &
  xvfb=$!
  export DISPLAY=":$n"
  for _ in $(seq 50); do xdotool getdisplaygeometry > /dev/null 2>&1 && break; sleep 0.1; done
  xdotool getdisplaygeometry > /dev/null 2>&1 && break
  kill "$xvfb" 2> /dev/null; wait "$xvfb" 2> /dev/null; xvfb=
done
[ -n "$xvfb" ] || { echo "SKIP: no X display could be started"; exit "$skip"; }

export XDG_CONFIG_HOME=$out/config XDG_CACHE_HOME=$out/cache QT_QPA_PLATFORM=xcb
unset WAYLAND_DISPLAY
"$bin/korvid" --demo --size 1000x700 --screenshot "$out/shot.png" --after 14 > "$out/korvid.txt" 2>&1 &
app=$!
window=$(timeout 10 xdotool search --sync --name '^Korvid \(demo\)$' | head -n 1)
[ -n "$window" ] || { fail "no window"; cat "$out/korvid.txt"; exit 1; }
for _ in $(seq 50); do grep -q 'connected to' "$out/korvid.txt" && break; sleep 0.1; done
xdotool windowfocus --sync "$window"
sleep 0.5

# Alt+V opens the View menu: a popup window shows; Escape closes it.
before=$(xdotool search --onlyvisible --pid "$app" 2> /dev/null | wc -l)
xdotool key alt+v
sleep 0.5
menus=$(xdotool search --onlyvisible --pid "$app" 2> /dev/null | wc -l)
[ "$menus" -gt "$before" ] || fail "Alt+V opened no menu ($before windows before, $menus after)"
xdotool key Escape
sleep 0.3

xdotool key ctrl+l
sleep 0.3
xdotool key ctrl+k
for _ in $(seq 30); do grep -q 'Disconnecting' "$out/korvid.txt" && break; sleep 0.1; done
grep -q 'Disconnecting' "$out/korvid.txt" || fail "Ctrl+K did not disconnect"
for size in "520 900" "1000 700" "520 900"; do
  xdotool windowsize --sync "$window" $size
  sleep 0.5
done

for _ in $(seq 200); do kill -0 "$app" 2> /dev/null || break; sleep 0.1; done
wait "$app"
status=$?
app=
[ "$status" -eq 0 ] || fail "korvid exited $status"
[ -s "$out/shot.png" ] || { fail "no screenshot"; exit "$failures"; }

# What the screenshot shows: a portrait window with the log's white text area across its lower part
# (the map there is a neutral grid, never white). The disconnect was the dated console line above.
/usr/bin/python3 - "$out/shot.png" << 'PY' || fail "the screenshot does not show it"
import struct, sys, zlib

def pixels(path):
    data = open(path, "rb").read()
    width, height, depth, kind = struct.unpack(">IIBB", data[16:26])
    assert depth == 8 and kind in (2, 6), (depth, kind)
    raw, at = b"", 8
    while at < len(data):
        size, tag = struct.unpack(">I4s", data[at:at + 8])
        if tag == b"IDAT":
            raw += data[at + 8:at + 8 + size]
        at += 12 + size
    raw, step = zlib.decompress(raw), 3 if kind == 2 else 4
    stride, rows, prev = width * step, [], bytearray(width * step)
    for y in range(height):
        f, line = raw[y * (stride + 1)], bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for i in range(stride):
            a, b = line[i - step] if i >= step else 0, prev[i]
            c = prev[i - step] if i >= step else 0
            p = a + b - c
            pred = [0, a, b, (a + b) // 2, a if abs(p - a) <= abs(p - b) and abs(p - a) <= abs(p - c) else b if abs(p - b) <= abs(p - c) else c][f]
            line[i] = (line[i] + pred) & 0xFF
        rows.append(bytes(line))
        prev = line
    return width, height, rows, step

width, height, rows, step = pixels(sys.argv[1])
print(f"screenshot {width}x{height}")
assert width < height, "not portrait"
white = sum(1 for row in rows[height // 2:] if row.count(b"\xff\xff\xff" if step == 3 else b"\xff\xff\xff\xff") > width * 0.8)
print(f"white rows in the lower half: {white}")
assert white > 50, "no log dock"
PY

[ "$failures" -eq 0 ] && echo "window end to end: all passed"
exit "$failures"
