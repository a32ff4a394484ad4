#!/usr/bin/env bash
# Builds and runs the INI-file store's benchmark under Wine.
#
#   scripts/bench.sh [sessions]     (default 5000 session keys in the tree)
#
# Configures and builds bench_ini_store in ./build (or $TRAYWELL_BUILD_DIR),
# runs it in that build tree's Wine prefix and prints its figures: loading
# and saving keys of 1, 250 and 10,000 values and loading a tree of session
# keys, each against ReadFile plus MultiByteToWideChar and against
# GetPrivateProfileStringW on the same data. Takes a few minutes, most of
# them spent in GetPrivateProfileStringW.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

build=${TRAYWELL_BUILD_DIR:-$root/build}
prefix=$build/wineprefix
jobs=$(nproc 2>/dev/null || echo 2)

"$root/scripts/setup.sh" </dev/null
cryptopp_root=$("$root/scripts/setup.sh" --print-cryptopp-root)

configure=(cmake -S "$root" -B "$build" -DCRYPTOPP_ROOT="$cryptopp_root")
if [ ! -f "$build/CMakeCache.txt" ]; then
    configure+=(-G Ninja
                -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64-x86_64.cmake"
                -DCMAKE_BUILD_TYPE=RelWithDebInfo)
fi
mkdir -p "$build"
"${configure[@]}" >"$build/configure.log" 2>&1 || { cat "$build/configure.log" >&2; exit 1; }
cmake --build "$build" -j "$jobs" --target bench_ini_store

stop_wine() {
    "$root/scripts/wine-run" --prefix "$prefix" --stop </dev/null >/dev/null 2>&1 || true
}
trap stop_wine EXIT
"$root/scripts/wine-run" --prefix "$prefix" --start </dev/null
"$root/scripts/wine-run" --prefix "$prefix" "$build/bin/bench_ini_store.exe" "$@"
