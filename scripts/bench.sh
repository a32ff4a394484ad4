#!/usr/bin/env bash
# Builds and runs the profile store's benchmarks under Wine.
#
#   scripts/bench.sh [sessions]     (default 5000 session keys in the tree)
#
# Configures and builds bench_ini_store and bench_registry_store in ./build
# (or $TRAYWELL_BUILD_DIR), runs them in that build tree's Wine prefix and
# prints their figures: loading and saving keys of 1, 250, 10,000 and
# 100,000 values and loading a tree of session keys, each against ReadFile
# plus MultiByteToWideChar and against GetPrivateProfileStringW on the same
# data; a typed read of a loaded value against a plain variable; and a
# registry key of 250 values read by name and through its value iterator,
# and written, against bare RegQueryValueExW and RegSetValueExW loops.
# Takes a few minutes, most of them spent in GetPrivateProfileStringW.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

source "$root/scripts/build-common.sh"

configure_build
cmake --build "$build" -j "$jobs" --target bench_ini_store bench_registry_store
start_wine
"$root/scripts/wine-run" --prefix "$prefix" "$build/bin/bench_ini_store.exe" "$@"
echo
"$root/scripts/wine-run" --prefix "$prefix" "$build/bin/bench_registry_store.exe"
