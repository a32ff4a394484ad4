#!/usr/bin/env bash
# Prepares a Debian 12 machine to build and test Traywell: the cross compiler,
# Wine, a virtual X server, GoogleTest's sources, CMake, and a cross-built
# Crypto++ cached outside the clone. Safe to run again: it only does what is
# still missing, and it never asks a question.
#
#   scripts/setup.sh                        install and build what is missing
#   scripts/setup.sh --print-cryptopp-root  print where Crypto++ is cached
set -euo pipefail

export DEBIAN_FRONTEND=noninteractive

CRYPTOPP_VERSION=8.7.0
CACHE_ROOT=${TRAYWELL_CACHE:-${XDG_CACHE_HOME:-${HOME:-/root}/.cache}/traywell}
CRYPTOPP_DIR=$CACHE_ROOT/cryptopp-$CRYPTOPP_VERSION
CRYPTOPP_MARKER=$CRYPTOPP_DIR/.complete
JOBS=$(nproc 2>/dev/null || echo 2)

PACKAGES=(
    g++-mingw-w64-x86-64-posix
    wine64
    xvfb
    xauth
    googletest
    openssl
    cmake
    ninja-build
    dpkg-dev
    python3
    ccache
    openssh-client
    openssh-server
    socat
)

log() { printf 'setup: %s\n' "$*" >&2; }

# Root rights only when something must be installed: with everything present,
# any user can build and test.
SUDO=()
need_root() {
    [ "$(id -u)" -eq 0 ] && return 0
    command -v sudo >/dev/null 2>&1 || { log "missing packages: run as root (or install sudo)"; exit 1; }
    SUDO=(sudo -n)
}

# Another apt run may hold the dpkg lock (an image being provisioned, a
# colleague's install): wait for it instead of failing.
APT_WAIT=(-o DPkg::Lock::Timeout=900)

is_installed() {
    dpkg-query -W -f='${Status}' "$1" 2>/dev/null | grep -q '^install ok installed$'
}

install_packages() {
    local missing=() p
    for p in "${PACKAGES[@]}"; do
        is_installed "$p" || missing+=("$p")
    done
    if [ ${#missing[@]} -eq 0 ]; then
        return
    fi
    need_root
    log "installing ${missing[*]}"
    mkdir -p "$CACHE_ROOT"
    local apt_log=$CACHE_ROOT/apt-install.log
    { "${SUDO[@]}" apt-get "${APT_WAIT[@]}" -q update \
        && "${SUDO[@]}" apt-get "${APT_WAIT[@]}" -q -y install "${missing[@]}"; } \
        </dev/null >"$apt_log" 2>&1 \
        || { tail -n 40 "$apt_log" >&2; log "apt-get failed; full log in $apt_log"; exit 1; }
}

# Writes deb-src entries mirroring the machine's Debian sources into folder $1,
# so that the system's own apt configuration stays untouched.
write_source_entries() {
    local dir=$1 src=/etc/apt/sources.list.d/debian.sources
    if [ -f "$src" ]; then
        sed -e 's/^Types:.*/Types: deb-src/' "$src" >"$dir/debian-src.sources"
    elif [ -f /etc/apt/sources.list ]; then
        sed -n -e 's/^[[:space:]]*deb[[:space:]]/deb-src /p' /etc/apt/sources.list \
            | grep -E 'debian' >"$dir/debian-src.list" || true
    fi
    if [ -z "$(cat "$dir"/debian-src.* 2>/dev/null)" ]; then
        log "no Debian apt sources found to derive deb-src entries from"
        exit 1
    fi
}

build_cryptopp() {
    if [ -f "$CRYPTOPP_MARKER" ]; then
        return
    fi
    mkdir -p "$CACHE_ROOT"
    # Two set-ups started at once must not build into the same folder.
    exec 8>"$CACHE_ROOT/.cryptopp-$CRYPTOPP_VERSION.lock"
    flock 8
    if [ -f "$CRYPTOPP_MARKER" ]; then
        exec 8>&-
        return
    fi

    log "building Crypto++ $CRYPTOPP_VERSION for x86_64-w64-mingw32 (takes a minute or two)"
    local work
    work=$(mktemp -d "$CACHE_ROOT/.cryptopp-build.XXXXXX")
    # shellcheck disable=SC2064
    trap "rm -rf '$work'" EXIT

    mkdir -p "$work/sources" "$work/lists/partial" "$work/download"
    write_source_entries "$work/sources"
    local apt_opts=(
        -o Dir::Etc::SourceList=/dev/null
        -o Dir::Etc::SourceParts="$work/sources"
        -o Dir::State::Lists="$work/lists"
        "${APT_WAIT[@]}"
    )
    apt-get "${apt_opts[@]}" -q update </dev/null >"$work/apt-update.log" 2>&1 \
        || { cat "$work/apt-update.log" >&2; exit 1; }
    (cd "$work/download" && apt-get "${apt_opts[@]}" -q source --download-only libcrypto++ \
        </dev/null >"$work/apt-source.log" 2>&1) \
        || { cat "$work/apt-source.log" >&2; exit 1; }

    local dsc="" f
    for f in "$work"/download/libcrypto++_*.dsc; do
        [ -f "$f" ] && dsc=$f
    done
    case "$(basename "${dsc:-none}")" in
        libcrypto++_"$CRYPTOPP_VERSION"*.dsc) ;;
        *)
            log "expected Crypto++ $CRYPTOPP_VERSION from Debian, found: ${dsc:-nothing}"
            exit 1
            ;;
    esac
    dpkg-source -x "$dsc" "$work/src" >"$work/dpkg-source.log" 2>&1 \
        || { cat "$work/dpkg-source.log" >&2; exit 1; }

    make -C "$work/src" -f GNUmakefile -j"$JOBS" \
        CXX=x86_64-w64-mingw32-g++-posix \
        AR=x86_64-w64-mingw32-ar \
        RANLIB=x86_64-w64-mingw32-ranlib \
        static </dev/null >"$work/make.log" 2>&1 \
        || { tail -n 50 "$work/make.log" >&2; exit 1; }

    local stage=$work/stage
    mkdir -p "$stage/include/cryptopp" "$stage/lib"
    cp "$work"/src/*.h "$stage/include/cryptopp/"
    # Debian's packaging renames the archive to libcrypto++.a; we keep upstream's name.
    local archive=$work/src/libcryptopp.a
    [ -f "$archive" ] || archive=$work/src/libcrypto++.a
    cp "$archive" "$stage/lib/libcryptopp.a"
    basename "$dsc" .dsc >"$stage/SOURCE"

    rm -rf "$CRYPTOPP_DIR"
    mv "$stage" "$CRYPTOPP_DIR"
    date -u +%Y-%m-%dT%H:%M:%SZ >"$CRYPTOPP_MARKER"
    rm -rf "$work"
    trap - EXIT
    exec 8>&-
    log "Crypto++ cached in $CRYPTOPP_DIR"
}

if [ "${1:-}" = --print-cryptopp-root ]; then
    printf '%s\n' "$CRYPTOPP_DIR"
    exit 0
fi

install_packages
build_cryptopp
