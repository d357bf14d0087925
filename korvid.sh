#!/usr/bin/env bash
# Korvid's two entry points on a Debian 12 machine:
#   ./korvid.sh run    build and start the window on the built-in simulator (headless without a display)
#   ./korvid.sh test   build and run every test
# Both install the Debian packages that are missing (as root, or through sudo) and build
# incrementally in build/.
set -euo pipefail
cd "$(dirname "$0")"
root=$PWD
build=${KORVID_BUILD:-$root/build}

packages=(
  cmake ninja-build g++ pkg-config ccache
  qt6-base-dev qt6-svg-dev qt6-connectivity-dev qt6-sensors-dev qt6-positioning-dev qt6-serialport-dev libgl-dev
  fonts-noto-color-emoji
  libgtest-dev libgmock-dev libbenchmark-dev gpsd gpsd-clients
  clang libfuzzer-14-dev libclang-rt-14-dev clang-format clang-tidy
  rtklib
  dbus python3-dbusmock
  xvfb xdotool
)

install_missing() {
  local missing=()
  for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
  done
  [ ${#missing[@]} -eq 0 ] && return
  echo "== installing: ${missing[*]}"
  local sudo=()
  [ "$(id -u)" -eq 0 ] || sudo=(sudo)
  "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq
  "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

# Every build treats warnings as errors: the code is warning-free on this platform and stays so.
# The benchmarks are built too (not run), so that they follow every change of the code they time.
configure_and_build() {
  export CCACHE_BASEDIR=$root CCACHE_NOHASHDIR=1
  cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKORVID_WERROR=ON -DKORVID_BENCH=ON "$@" \
    >/dev/null
  cmake --build "$build"
}

# The C++ files that the last commit and the working tree change, still present.
changed_files() {
  { git -C "$root" diff --name-only HEAD~1 HEAD 2>/dev/null; git -C "$root" diff --name-only HEAD 2>/dev/null; } |
    grep -E '\.(cpp|h)$' | sort -u | while read -r f; do [ -f "$root/$f" ] && echo "$f"; done
}

# The changed files must be formatted as .clang-format says and pass the checks of .clang-tidy.
style() {
  local files=() sources=()
  mapfile -t files < <(changed_files)
  [ ${#files[@]} -eq 0 ] && return
  echo "== style of ${#files[@]} changed files"
  (cd "$root" && clang-format --dry-run --Werror "${files[@]}")
  for f in "${files[@]}"; do [[ $f == src/*.cpp ]] && sources+=("$f"); done
  [ ${#sources[@]} -eq 0 ] && return
  local out status=0
  out=$(cd "$root" && clang-tidy -p "$build" --quiet --warnings-as-errors='*' "${sources[@]}" 2>&1) || status=$?
  grep -E -A3 'warning:|error:' <<<"$out" || true
  [ "$status" -eq 0 ] || { echo "clang-tidy found faults in the changed files"; return 1; }
}

# libFuzzer targets with ASan and UBSan over the Qt-free layers, each run for a bounded time. Each
# starts from its minimised corpus in fuzz/corpus/ (only read), the sample stream and, where present,
# the receiver captures; the inputs it finds go to a corpus in the build tree.
fuzz() {
  local seconds=${KORVID_FUZZ_SECONDS:-30}
  local fbuild=$build-fuzz
  if [ ! -f "$fbuild/build.ninja" ]; then
    CC=clang CXX=clang++ cmake -S "$root" -B "$fbuild" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
      -DKORVID_QT=OFF -DKORVID_TESTS=OFF -DKORVID_FUZZ=ON -DKORVID_WERROR=ON \
      -DCMAKE_CXX_FLAGS="-fsanitize=address,undefined -fno-sanitize-recover=all -fsanitize=fuzzer-no-link"
  fi
  cmake --build "$fbuild"
  local seeds=("$root/samples")
  [ -d "$root/../shared/data/logs" ] && seeds+=("$root/../shared/data/logs")
  for target in "$fbuild"/fuzz/fuzz_*; do
    [ -x "$target" ] || continue
    local name corpus
    name=$(basename "$target")
    corpus=$fbuild/corpus/$name
    mkdir -p "$corpus"
    local kept=()
    [ -d "$root/fuzz/corpus/$name" ] && kept=("$root/fuzz/corpus/$name")
    echo "== fuzzing $name for ${seconds} s"
    "$target" -max_total_time="$seconds" -print_final_stats=1 -max_len=4096 -timeout=10 \
      "$corpus" "${kept[@]}" "${seeds[@]}" 2>&1 | grep -E '^(stat::number_of_executed_units|Done|==|SUMMARY)|ERROR' || true
    [ "${PIPESTATUS[0]}" -eq 0 ] || { echo "fuzzing $name found a fault"; return 1; }
  done
}

# The link tests (real sockets and threads) under ThreadSanitizer: only the Qt-free layers, since
# an uninstrumented Qt gives false reports, with GoogleTest built from source in the same tree.
tsan() {
  local tbuild=$build-tsan
  if [ ! -f "$tbuild/build.ninja" ]; then
    cmake -S "$root" -B "$tbuild" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKORVID_QT=OFF \
      -DKORVID_GTEST_FROM_SOURCE=ON -DKORVID_WERROR=ON -DCMAKE_CXX_FLAGS="-fsanitize=thread"
  fi
  cmake --build "$tbuild" --target link_tests
  echo "== link tests under ThreadSanitizer"
  TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1" "$tbuild/tests/link/link_tests" --gtest_brief=1
}

cmd=${1:-}
case "$cmd" in
  run)
    shift
    install_missing
    configure_and_build
    exec "$build/src/app/korvid" --demo "$@"
    ;;
  test)
    install_missing
    configure_and_build
    style
    echo "== unit and integration tests"
    ctest --test-dir "$build" --output-on-failure -j2 --timeout 120 | tee "$build/ctest.log"
    tsan
    fuzz
    # ctest's own count, repeated last: the sanitizer stages above either pass or stop the run.
    sed -n -E 's/.*tests passed, ([0-9]+) tests failed out of ([0-9]+).*/\2 \1/p' "$build/ctest.log" |
      awk '{print "tests: " $1 - $2 " passed, " $2 " failed"}'
    ;;
  *)
    echo "usage: ./korvid.sh run | test" >&2
    exit 2
    ;;
esac
