#!/usr/bin/env bash
# Builds Traywell and runs it under Wine, in a virtual desktop with a taskbar
# whose notification area shows the icon: the one command to try it.
#
#   scripts/run.sh [traywell arguments...]        show it (needs a display)
#   scripts/run.sh --screenshot FILE.png [--keys KEYS] [--crop menu|dialog]
#                  [traywell arguments...]        headless: open the menu,
#                                                 save a picture, stop
#
# Installs what is missing (scripts/setup.sh), configures and builds ./build,
# and runs Traywell in its own Wine prefix, build/run-wineprefix, apart from
# the tests' prefix, so that what you do here never meets a test run. With
# DISPLAY set, the desktop opens as a window on your display and the script
# waits until Traywell ends (its menu's Exit) or you press Ctrl-C. Without a
# display it uses a private Xvfb display and saves the picture of the open
# menu (as --screenshot build/traywell-menu.png would). --keys types into the
# menu (see tools/Screenshot.cpp), for example "^^!" for About.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

screenshot=
shot_args=()
while [ $# -gt 0 ]; do
    case $1 in
        --screenshot) [ $# -ge 2 ] || { echo "run.sh: --screenshot needs a file" >&2; exit 2; }
                      screenshot=$(realpath -m -- "$2"); shift 2 ;;
        --keys|--crop) [ $# -ge 2 ] || { echo "run.sh: $1 needs a value" >&2; exit 2; }
                       shot_args+=("$1" "$2"); shift 2 ;;
        *) break ;;
    esac
done
if [ ${#shot_args[@]} -gt 0 ] && [ -z "$screenshot" ]; then
    echo "run.sh: --keys and --crop go with --screenshot" >&2
    exit 2
fi

source "$root/scripts/build-common.sh"

# The build tree is locked while it is built (a test run may be using it),
# not while Traywell runs.
lock_build_tree
configure_build
cmake --build "$build" -j "$jobs" --target traywell traywell_screenshot
exec 8>&-

run_prefix=$build/run-wineprefix
wine_run() { "$root/scripts/wine-run" --prefix "$run_prefix" "$@"; }
# A Windows path for a Linux one: Wine's drive Z: is the root folder.
windows_path() { printf 'Z:%s' "${1//\//\\}"; }
desktop=/desktop=Traywell,1280x800
# A program of our prefix runs whose process name starts with $1.
prefix_runs() {
    local comm pid
    for comm in /proc/[0-9]*/comm; do
        case $(cat "$comm" 2>/dev/null) in "$1"*) ;; *) continue ;; esac
        pid=${comm#/proc/}
        pid=${pid%/comm}
        tr '\0' '\n' 2>/dev/null <"/proc/$pid/environ" | grep -qxF "WINEPREFIX=$run_prefix" && return 0
    done
    return 1
}
traywell=$(windows_path "$build/bin/traywell.exe")

if [ -z "$screenshot" ] && [ -z "${DISPLAY:-}" ]; then
    screenshot=$build/traywell-menu.png
    echo "No display (DISPLAY is not set): Traywell runs on a private Xvfb display, and its menu is saved as a picture."
fi

# Shown on the user's display; a picture is always taken on a private one.
if [ -z "$screenshot" ]; then
    export TRAYWELL_DISPLAY=$DISPLAY
fi
stop() { wine_run --stop </dev/null >/dev/null 2>&1 || true; }
wine_run --start </dev/null
trap stop EXIT

if [ -z "$screenshot" ]; then
    echo "Traywell runs in the desktop window \"Traywell\": click the icon at the right of its taskbar."
    echo "Choose Exit in its menu, or press Ctrl-C here, to stop."
    # explorer returns when the program it started ends.
    wine_run explorer "$desktop" "$traywell" "$@" </dev/null
    exit 0
fi

rm -f "$screenshot"
mkdir -p "$(dirname "$screenshot")"
# The tool starts Traywell on the desktop (a program started by another
# explorer /desktop= would not join it), waits for the icon, opens the menu
# and saves the picture. explorer itself runs until the desktop's last
# program ends, so the script waits for the tool instead; stopping the
# prefix's server then ends Traywell.
wine_run explorer "$desktop" "$(windows_path "$build/bin/traywell_screenshot.exe")" \
    --menu "${shot_args[@]}" "$(windows_path "$screenshot")" "$traywell" "$@" </dev/null >/dev/null 2>&1 &
started=0
for _ in $(seq 1200); do
    if prefix_runs traywell_screen; then
        started=1
    elif [ $started = 1 ] || [ -s "$screenshot" ]; then
        break
    fi
    sleep 0.1
done
if [ ! -s "$screenshot" ]; then
    echo "run.sh: no screenshot was saved" >&2
    exit 1
fi
echo "Saved $screenshot"
