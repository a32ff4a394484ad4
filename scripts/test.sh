#!/usr/bin/env bash
# Builds Traywell and runs every test under Wine: the one command for developers and CI.
#
#   scripts/test.sh [ctest arguments...]     e.g. scripts/test.sh -R foundation
#
# Installs what is missing (scripts/setup.sh), configures and builds ./build,
# prepares the build tree's Wine prefix, server and display once, runs ctest,
# then stops the Wine server and display it used. Exits with ctest's code.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

build=$root/build
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
cmake --build "$build" -j "$jobs"

stop_wine() {
    "$root/scripts/wine-run" --prefix "$prefix" --stop </dev/null >/dev/null 2>&1 || true
}
trap stop_wine EXIT
"$root/scripts/wine-run" --prefix "$prefix" --start </dev/null

# Nothing may print after ctest: its summary closes the output.
set +e
ctest --test-dir "$build" --output-on-failure --no-tests=error --timeout 600 -j "$jobs" "$@"
status=$?
set -e
stop_wine
trap - EXIT
exit "$status"
