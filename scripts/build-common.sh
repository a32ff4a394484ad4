# Sourced by test.sh and bench.sh: the set-up, configuration and Wine start
# and stop that both need. Expects $root (the clone) to be set.
#
# The build tree is ./build, or $TRAYWELL_BUILD_DIR.

build=${TRAYWELL_BUILD_DIR:-$root/build}
prefix=$build/wineprefix
jobs=$(nproc 2>/dev/null || echo 2)

# The compiler cache (when installed) shares objects between clones of the
# project: paths below the clone count as relative, and the folder is not hashed.
export CCACHE_BASEDIR=$root CCACHE_NOHASHDIR=1

# One run at a time per build tree: a second test.sh or bench.sh in the same
# clone waits here, since both would rebuild the same tree and the first to end
# would stop the Wine server that the other still uses. The lock is fd 8, which
# scripts/wine-run closes in the servers it leaves running.
lock_build_tree() {
    mkdir -p "$build"
    exec 8>"$build/.run.lock"
    if ! flock -n 8; then
        printf 'waiting for another run in %s to end\n' "$build" >&2
        flock 8
    fi
}

# Installs what is missing, then configures the build tree (once with the
# toolchain; later runs only refresh the Crypto++ location).
configure_build() {
    "$root/scripts/setup.sh" </dev/null
    local cryptopp_root
    cryptopp_root=$("$root/scripts/setup.sh" --print-cryptopp-root)

    local configure=(cmake -S "$root" -B "$build" -DCRYPTOPP_ROOT="$cryptopp_root")
    if [ ! -f "$build/CMakeCache.txt" ]; then
        configure+=(-G Ninja
                    -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64-x86_64.cmake"
                    -DCMAKE_BUILD_TYPE=RelWithDebInfo)
    fi
    mkdir -p "$build"
    "${configure[@]}" >"$build/configure.log" 2>&1 || { cat "$build/configure.log" >&2; exit 1; }
}

stop_wine() {
    "$root/scripts/wine-run" --prefix "$prefix" --stop </dev/null >/dev/null 2>&1 || true
}

# Prepares the build tree's prefix, server and display, and stops them when
# the script exits, however it exits.
start_wine() {
    trap stop_wine EXIT
    "$root/scripts/wine-run" --prefix "$prefix" --start </dev/null
}
