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

source "$root/scripts/build-common.sh"

lock_build_tree
configure_build
cmake --build "$build" -j "$jobs"
start_wine

# Nothing may print after ctest: its summary closes the output.
set +e
ctest --test-dir "$build" --output-on-failure --no-tests=error --timeout 600 -j "$jobs" "$@"
status=$?
set -e
stop_wine
trap - EXIT
exit "$status"
