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

source "$root/scripts/build-common.sh"

lock_build_tree
configure_build
cmake --build "$build" -j "$jobs" --target bench_ini_store
start_wine
"$root/scripts/wine-run" --prefix "$prefix" "$build/bin/bench_ini_store.exe" "$@"
