#!/usr/bin/env bash
# Checks the "02:" protected form against OpenSSL's command line, an
# implementation independent of ours and of Crypto++:
#   - a "02:" text that OpenSSL enciphered is opened by our decoder (and not
#     with a wrong pass phrase);
#   - a "02:" text that we sealed deciphers with OpenSSL to the documented
#     record: length, UTF-8 text, SHA-256 digest, padding to whole blocks.
# (The hashers and ciphers themselves are checked against NIST's vectors.)
# All requests go to one run of the tool (a process start under Wine is slow),
# then the answers are checked in order.
#
#   openssl-interop.sh RUNNER PREFIX TOOL
# RUNNER and PREFIX are the Wine runner and its prefix; TOOL is protected_text_tool.exe.
set -euo pipefail

[ $# -eq 3 ] || { echo "usage: $0 RUNNER PREFIX TOOL" >&2; exit 2; }
runner=$1 prefix=$2 tool=$3
command -v openssl >/dev/null || { echo "openssl is not installed (scripts/setup.sh installs it)" >&2; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

hex_of() { od -An -v -tx1 | tr -d ' \n'; }                           # stdin bytes -> hex
bytes_of() { printf '%b' "$(printf '%s' "$1" | sed 's/../\\x&/g')"; }  # hex -> bytes
le32() { printf '%02x%02x%02x%02x' $(($1 & 255)) $(($1 >> 8 & 255)) $(($1 >> 16 & 255)) $(($1 >> 24 & 255)); }
zero_iv=00000000000000000000000000000000

# The padding rule: whole 16-byte blocks ending in at least half a block of random bytes.
padding_for() {
    local p=$((16 - ($1 + 36) % 16))
    [ $p -lt 8 ] && p=$((p + 16))
    echo $p
}

# Each request is a line for the tool (empty digits written "-"), with how to
# check its answer.
requests=() kinds=() expected=() notes=()
ask() {
    requests+=("$1") kinds+=("$2") expected+=("$3") notes+=("$4")
}

passphrase=$'p\xc3\xa4ssw\xc3\xb6rd \xf0\x9f\x94\x91 with blanks'
passphrase_hex=$(printf '%s' "$passphrase" | hex_of)
# The key is SHA-256 of the pass phrase's UTF-8 bytes.
key=$(printf '%s' "$passphrase" | openssl dgst -sha256 -binary | hex_of)

texts=(
    ""
    "abcd"
    "abcde"
    $'Gr\xc3\xbc\xc3\x9fe, \xe4\xb8\x96\xe7\x95\x8c \xf0\x9f\x99\x82'
    "$(head -c 300 /dev/zero | tr '\0' 'x')"
)

for text in "${texts[@]}"; do
    n=$(printf '%s' "$text" | wc -c)
    text_hex=$(printf '%s' "$text" | hex_of)
    digest=$(printf '%s' "$text" | openssl dgst -sha256 -binary | hex_of)

    # OpenSSL seals the record; our decoder must open it, and only with the right pass phrase.
    padding=$(openssl rand "$(padding_for "$n")" | hex_of)
    bytes_of "$(le32 "$n")$text_hex$digest$padding" >"$work/record"
    sealed=$(openssl enc -aes-256-cbc -K "$key" -iv $zero_iv -nopad -in "$work/record" | hex_of)
    ask "open $passphrase_hex 02:$sealed" same "$text_hex" "our decoder on OpenSSL's text of $n bytes"
    ask "open $(printf 'wrong' | hex_of) 02:$sealed" refused "" "OpenSSL's text of $n bytes under a wrong pass phrase"

    # We seal; OpenSSL must find the documented record inside.
    ask "seal $passphrase_hex ${text_hex:--}" record "$(le32 "$n")$text_hex$digest" "our text of $n bytes"
done

printf '%s\n' "${requests[@]}" >"$work/requests"
# The tool's console writes CRLF line ends.
mapfile -t answers < <("$runner" --prefix "$prefix" "$tool" <"$work/requests" | tr -d '\r')
[ ${#answers[@]} -eq ${#requests[@]} ] || {
    echo "FAILED: ${#requests[@]} requests but ${#answers[@]} answers" >&2
    exit 1
}

failures=0
for i in "${!requests[@]}"; do
    answer=${answers[i]} want=${expected[i]} ok=1
    case ${kinds[i]} in
        same) [ "$answer" = "$want" ] || ok=0 ;;
        refused) [[ $answer == "refused 0x"* ]] || ok=0 ;;
        record)
            # want is the record up to the padding: length field, text, digest.
            digits=${answer#02:}
            if [[ $answer != 02:* || ! $digits =~ ^[0-9a-f]+$ ]]; then
                ok=0
            else
                bytes_of "$digits" >"$work/sealed"
                record=$(openssl enc -d -aes-256-cbc -K "$key" -iv $zero_iv -nopad -in "$work/sealed" | hex_of)
                n=$(((${#want} - 72) / 2))
                [ "${record:0:${#want}}" = "$want" ] || ok=0
                [ ${#record} -eq $((${#want} + 2 * $(padding_for "$n"))) ] || ok=0
            fi
            ;;
    esac
    if [ $ok -eq 0 ]; then
        echo "FAILED: ${notes[i]}: answer '$answer'" >&2
        failures=$((failures + 1))
    fi
done

[ $failures -eq 0 ] || { echo "$failures of ${#requests[@]} checks failed" >&2; exit 1; }
echo "all ${#requests[@]} OpenSSL interoperability checks passed"
