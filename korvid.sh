#!/usr/bin/env bash
# Korvid's two entry points on a Debian 12 machine:
#   ./korvid.sh run    build and start the program
#   ./korvid.sh test   build and run every test
# Both install the Debian packages that are missing (as root, or through sudo) and build
# incrementally in build/.
set -euo pipefail
cd "$(dirname "$0")"
root=$PWD
build=${KORVID_BUILD:-$root/build}

packages=(
  cmake ninja-build g++ pkg-config ccache
  qt6-base-dev qt6-svg-dev qt6-connectivity-dev qt6-sensors-dev qt6-positioning-dev libgl-dev
  fonts-noto-color-emoji
  libgtest-dev libgmock-dev libbenchmark-dev gpsd-clients
  clang libfuzzer-14-dev libclang-rt-14-dev
  dbus python3-dbusmock
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

configure_and_build() {
  export CCACHE_BASEDIR=$root CCACHE_NOHASHDIR=1
  if [ ! -f "$build/build.ninja" ]; then
    cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@"
  fi
  cmake --build "$build"
}

cmd=${1:-}
case "$cmd" in
  run)
    shift
    install_missing
    configure_and_build
    exec "$build/src/app/korvid-cli" --replay "$root/samples/demo.nmea" "$@"
    ;;
  test)
    install_missing
    configure_and_build
    echo "== unit and integration tests"
    ctest --test-dir "$build" --output-on-failure -j2 --timeout 120
    ;;
  *)
    echo "usage: ./korvid.sh run | test" >&2
    exit 2
    ;;
esac
