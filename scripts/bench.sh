#!/usr/bin/env bash
# Builds and runs a benchmark under Wine.
#
#   scripts/bench.sh [sessions]                (the INI-file store; default 5000 session keys)
#   scripts/bench.sh global-config [rounds]    (the global options; default 30 rounds)
#   scripts/bench.sh session-config [count] [rounds] [changed|whole]
#                                              (sessions; default 5000, 3 rounds, changed)
#
# Configures and builds the benchmark in ./build (or $TRAYWELL_BUILD_DIR),
# runs it in that build tree's Wine prefix and prints its figures.
#
# The INI-file store's: loading and saving keys of 1, 250 and 10,000 values
# and loading a tree of session keys, each against ReadFile plus
# MultiByteToWideChar and against GetPrivateProfileStringW on the same data.
# Takes a few minutes, most of them spent in GetPrivateProfileStringW.
#
# The global options': loading and saving the whole object from an INI file
# and from the registry, each against reading (writing) the same bytes or the
# same registry values with no parsing. Takes a few seconds.
#
# The sessions': loading 5000 sessions as SessionConfig objects from a tree of
# INI files and from the registry, against reading the same bytes or the same
# registry values. Takes about N minutes, most of it spent making the sessions.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

source "$root/scripts/build-common.sh"

target=bench_ini_store
case "${1:-}" in
    global-config) target=global_config_bench; shift ;;
    session-config) target=session_config_bench; shift ;;
esac

lock_build_tree
configure_build
cmake --build "$build" -j "$jobs" --target "$target"
start_wine
"$root/scripts/wine-run" --prefix "$prefix" "$build/bin/$target.exe" "$@"
