#!/usr/bin/env bash
# traywell.exe's agent against OpenSSH's own tools on this machine, an
# implementation independent of ours and of Crypto++:
#   - every kind of key file that ssh-keygen writes (Ed25519, ECDSA P-256/384/521,
#     RSA; OpenSSH format plain and sealed, PEM plain and sealed) loads with
#     the fingerprint ssh-keygen prints; a wrong pass phrase is refused;
#   - through a relay (pipe <-> loopback TCP <-> socat <-> Unix socket),
#     ssh-add -l and -L list the keys that traywell.exe /AddKey added, ssh-add adds one
#     and ssh-add -d removes it;
#   - signatures made by the agent verify with ssh-keygen -Y check-novalidate,
#     and ssh logs in to an sshd of the test's own on a loopback port with a
#     key held only in the agent, for every key type (RSA with SHA-256 and
#     SHA-512).
#
#   openssh-interop.sh RUNNER PREFIX TOOL TRAYWELL
# RUNNER and PREFIX are the Wine runner and its prefix; TOOL is agent_tool.exe
# and TRAYWELL traywell.exe, which serves the agent on its usual pipe while
# the script runs (no other copy may run in the prefix meanwhile).
set -euo pipefail

[ $# -eq 4 ] || { echo "usage: $0 RUNNER PREFIX TOOL TRAYWELL" >&2; exit 2; }
runner=$1 prefix=$2 tool=$3 traywell=$4
for command in ssh ssh-add ssh-keygen socat /usr/sbin/sshd; do
    command -v "$command" >/dev/null || { echo "$command is missing (scripts/setup.sh installs it)" >&2; exit 1; }
done

work=$(mktemp -d)
pids=()
cleanup() {
    exec 4>&- 2>/dev/null || true
    for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
    wait 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT

failures=0
fail() { echo "FAILED: $*" >&2; failures=$((failures + 1)); }
check() { # check WHAT EXPECTED ACTUAL
    [ "$2" = "$3" ] || fail "$1: expected '$2', got '$3'"
}
free_port() { python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1",0)); print(s.getsockname()[1])'; }
wine_tool() { "$runner" --prefix "$prefix" "$tool" "$@" | tr -d '\r'; }
wait_for() { # wait_for FILE TEXT
    for _ in $(seq 300); do grep -q "$2" "$1" 2>/dev/null && return 0; sleep 0.1; done
    echo "no '$2' in $1:" >&2; cat "$1" >&2; exit 1
}

pipe='\\.\pipe\openssh-ssh-agent'

# --- key files of every kind, as ssh-keygen writes them ---
passphrase='sealed pass phrase'
keys=(ed25519 ecdsa256 ecdsa384 ecdsa521 rsa)
declare -A keygen=([ed25519]="-t ed25519" [ecdsa256]="-t ecdsa -b 256" [ecdsa384]="-t ecdsa -b 384"
                   [ecdsa521]="-t ecdsa -b 521" [rsa]="-t rsa -b 3072")
files=()
for key in "${keys[@]}"; do
    # shellcheck disable=SC2086
    ssh-keygen -q ${keygen[$key]} -N '' -C "plain $key" -f "$work/$key"
    # shellcheck disable=SC2086
    ssh-keygen -q ${keygen[$key]} -N "$passphrase" -C "sealed $key" -f "$work/$key-sealed"
    files+=("$key" "$key-sealed")
done
for key in rsa ecdsa384; do
    # shellcheck disable=SC2086
    ssh-keygen -q ${keygen[$key]} -m PEM -N '' -f "$work/pem-$key"
    # shellcheck disable=SC2086
    ssh-keygen -q ${keygen[$key]} -m PEM -N "$passphrase" -f "$work/pem-$key-sealed"
    files+=("pem-$key" "pem-$key-sealed")
done

for file in "${files[@]}"; do
    given=''
    [[ $file == *-sealed ]] && given=$passphrase
    expected=$(ssh-keygen -lf "$work/$file.pub" | awk '{print $1, $2, $NF}')
    check "fingerprint of $file" "$expected" "$(wine_tool fingerprint "Z:$work/$file" "$given" 2>&1)"
done
wrong=$(wine_tool fingerprint "Z:$work/ed25519-sealed" 'not it' 2>&1 || true)
[[ $wrong == *"pass phrase does not open"* ]] || fail "a wrong pass phrase: '$wrong'"

# --- Traywell with its agent, the relay and the Unix socket ---
mkdir "$work/config"
"$runner" --prefix "$prefix" "$traywell" /F "Z:$work/config" >"$work/agent.out" 2>&1 &
pids+=($!)
traywell_pid=$!
mkfifo "$work/relay.in"
port=$(free_port)
"$runner" --prefix "$prefix" "$tool" relay "$pipe" "$port" <"$work/relay.in" >"$work/relay.out" 2>&1 &
pids+=($!)
exec 4>"$work/relay.in"
wait_for "$work/relay.out" relaying
socat "UNIX-LISTEN:$work/agent.sock,fork" "TCP:127.0.0.1:$port" &
pids+=($!)
for _ in $(seq 50); do [ -S "$work/agent.sock" ] && break; sleep 0.1; done
export SSH_AUTH_SOCK=$work/agent.sock
# ssh-add -l ends with 2 while nothing answers on the pipe behind the relay.
serving() { ssh-add -l >/dev/null 2>&1; [ $? -ne 2 ]; }
for _ in $(seq 150); do serving && break; sleep 0.2; done
serving || { echo "traywell.exe does not serve $pipe" >&2; exit 1; }
kill -0 "$traywell_pid" 2>/dev/null || { echo "traywell.exe ended: another copy runs in $prefix" >&2; exit 1; }

public_of() { awk '{print $1, $2}' "$work/$1.pub"; }
fingerprints_of() { for key in "$@"; do ssh-keygen -lf "$work/$key.pub" | awk '{print $2}'; done | sort; }

# --- keys added by a second start of Traywell, seen by ssh-add ---
add_key() { "$runner" --prefix "$prefix" "$traywell" /AddKey "Z:$work/$1" || fail "traywell.exe /AddKey $1"; }
for key in "${keys[@]}"; do add_key "$key"; done
check "ssh-add -l" "$(fingerprints_of "${keys[@]}")" "$(ssh-add -l | awk '{print $2}' | sort)"
check "ssh-add -L" "$(for key in "${keys[@]}"; do public_of "$key"; done | sort)" \
      "$(ssh-add -L | awk '{print $1, $2}' | sort)"

# --- signatures verified by ssh-keygen ---
head -c 1000 /dev/urandom >"$work/data"
for key in "${keys[@]}"; do
    rm -f "$work/data.sig"
    if ssh-keygen -q -Y sign -f "$work/$key.pub" -n traywell-test "$work/data" 2>"$work/sign.err"; then
        ssh-keygen -q -Y check-novalidate -n traywell-test -f "$work/$key.pub" -s "$work/data.sig" <"$work/data" \
            >/dev/null 2>&1 || fail "the agent's $key signature does not verify"
    else
        fail "ssh-keygen -Y sign with $key through the agent: $(cat "$work/sign.err")"
    fi
done

# --- ssh-add adds and removes ---
ssh-add -D >/dev/null 2>&1 || fail "ssh-add -D"
none='The agent has no identities.'
check "after ssh-add -D" "$none" "$(ssh-add -l)"
ssh-add -q "$work/ecdsa256" 2>/dev/null || fail "ssh-add adds a key"
check "added by ssh-add" "256 $(fingerprints_of ecdsa256) plain ecdsa256 (ECDSA)" "$(ssh-add -l)"
ssh-add -q -d "$work/ecdsa256.pub" 2>/dev/null || fail "ssh-add -d removes a key"
check "after ssh-add -d" "$none" "$(ssh-add -l)"

# --- ssh logs in to our own sshd with a key held only in the agent ---
ssh_port=$(free_port)
ssh-keygen -q -t ed25519 -N '' -f "$work/host_key"
for key in "${keys[@]}"; do cat "$work/$key.pub"; done >"$work/authorized_keys"
cat >"$work/sshd_config" <<CONFIG
Port $ssh_port
ListenAddress 127.0.0.1
HostKey $work/host_key
AuthorizedKeysFile $work/authorized_keys
PidFile $work/sshd.pid
UsePAM no
StrictModes no
PasswordAuthentication no
KbdInteractiveAuthentication no
PubkeyAuthentication yes
PermitRootLogin prohibit-password
CONFIG
[ "$(id -u)" -eq 0 ] && mkdir -p /run/sshd
/usr/sbin/sshd -D -e -f "$work/sshd_config" 2>"$work/sshd.log" &
pids+=($!)
for _ in $(seq 50); do (exec 5<>"/dev/tcp/127.0.0.1/$ssh_port") 2>/dev/null && break; sleep 0.1; done

login() { # login KEY [ALGORITHMS]
    ssh -F /dev/null -p "$ssh_port" -o BatchMode=yes -o StrictHostKeyChecking=no \
        -o UserKnownHostsFile="$work/known_hosts" -o PreferredAuthentications=publickey \
        -o IdentityAgent="$SSH_AUTH_SOCK" ${2:+-o PubkeyAcceptedAlgorithms=$2} \
        "$(id -un)@127.0.0.1" "echo logged in with $1" 2>>"$work/ssh.log" | tr -d '\r'
}
for key in "${keys[@]}"; do
    ssh-add -D >/dev/null 2>&1
    add_key "$key"
    if [ "$key" = rsa ]; then
        check "ssh with rsa-sha2-256" "logged in with rsa" "$(login rsa rsa-sha2-256)"
        check "ssh with rsa-sha2-512" "logged in with rsa" "$(login rsa rsa-sha2-512)"
    else
        check "ssh with $key" "logged in with $key" "$(login "$key")"
    fi
done
ssh-add -D >/dev/null 2>&1
check "ssh without a key in the agent" "" "$(login none || true)"

if [ $failures -ne 0 ]; then
    echo "--- agent" >&2; cat "$work/agent.out" >&2
    echo "--- sshd log" >&2; tail -n 20 "$work/sshd.log" >&2
    echo "--- ssh log" >&2; tail -n 20 "$work/ssh.log" >&2
    echo "$failures checks failed" >&2
    exit 1
fi
echo "all OpenSSH interoperability checks passed"
