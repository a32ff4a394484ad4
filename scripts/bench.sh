#!/usr/bin/env bash
# Builds and runs a benchmark under Wine.
#
#   scripts/bench.sh [sessions]                (the INI-file store; default 5000 session keys)
#   scripts/bench.sh registry-store            (the registry store)
#   scripts/bench.sh global-config [rounds]    (the global options; default 30 rounds)
#   scripts/bench.sh session-config [count] [rounds] [changed|whole]
#                                              (sessions; default 5000, 3 rounds, changed)
#   scripts/bench.sh tray-menu [windows]       (the tray menu; default 20 client windows)
#   scripts/bench.sh agent [signatures]        (the SSH agent; default 200 signatures a round)
#   scripts/bench.sh text-file [lines]         (reading and writing text files; default 200,000 lines)
#
# Configures and builds the benchmark in ./build (or $TRAYWELL_BUILD_DIR),
# runs it in that build tree's Wine prefix and prints its figures.
#
# The INI-file store's: loading and saving keys of 1, 250, 10,000 and
# 100,000 values and loading a tree of session keys, each against ReadFile
# plus MultiByteToWideChar and against GetPrivateProfileStringW on the same
# data, and a typed read of a loaded value against a plain variable. Takes a
# few minutes, most of them spent in GetPrivateProfileStringW.
#
# The registry store's: a key of 250 values read by name and through its
# value iterator, and written, against bare RegQueryValueExW and
# RegSetValueExW loops on the same values. Takes a few seconds.
#
# The global options': loading and saving the whole object from an INI file
# and from the registry, each against reading (writing) the same bytes or the
# same registry values with no parsing. Takes a few seconds.
#
# The sessions': loading 5000 sessions as SessionConfig objects from a tree of
# INI files and from the registry, against reading the same bytes or the same
# registry values. Takes about 2 minutes ("changed") or 5 ("whole"), most of
# it spent making the sessions.
#
# The tray menu's: building it with client windows of 3 sessions each (helper
# processes) against the session queries' round trips alone. A few seconds.
#
# The SSH agent's: signatures per second through its pipe for each key type,
# against the same signature in process, with the store's part, the agent's
# round trip and the platform's bare pipe round trip. A few seconds.
#
# The text files': reading and writing lines in UTF-8 and UTF-16 against
# ReadFile plus one conversion (WriteFile of large pieces), and the cost of a
# shared lock per block. A few seconds.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

source "$root/scripts/build-common.sh"

target=bench_ini_store
case ${1:-} in
    registry-store) target=bench_registry_store; shift ;;
    global-config) target=global_config_bench; shift ;;
    session-config) target=session_config_bench; shift ;;
    tray-menu) target=bench_tray_menu; shift ;;
    agent) target=agent_sign_bench; shift ;;
    text-file) target=text_file_bench; shift ;;
esac

lock_build_tree
configure_build
cmake --build "$build" -j "$jobs" --target "$target"
start_wine
"$root/scripts/wine-run" --prefix "$prefix" "$build/bin/$target.exe" "$@"
