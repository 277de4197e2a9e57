#!/usr/bin/env bash
# Signs a module or an installer, or says whether its signature holds. TIMESTAMP_URL names a time-stamping service, without
# which a signature ends with its certificate.
#
#     scripts/sign.sh FILE CERT KEY        signs FILE; both in PEM, the certificate with those above it
#     scripts/sign.sh --verify FILE [CA]   checks it against the authorities in CA, else against the system's
set -eu
case ${1:-} in -h | --help) sed -n '2,/^set/s/^# \{0,1\}//p' "$0"; exit ;; esac
usage() {
  echo "usage: $0 FILE CERT KEY, or $0 --verify FILE [CA]" >&2
  exit 2
}

# Says what the tool said only when it failed.
run() {
  local said
  said=$(osslsigncode "$@" 2>&1) || {
    echo "$said" >&2
    return 1
  }
}

if [ "${1:-}" = --verify ]; then
  [ $# = 2 ] || [ $# = 3 ] || usage
  run verify -in "$2" -CAfile "${3:-/etc/ssl/certs/ca-certificates.crt}"
  exit
fi
[ $# = 3 ] || usage
made=$(mktemp -d)
trap 'rm -rf "$made"' EXIT
stamp=()
[ -z "${TIMESTAMP_URL:-}" ] || stamp=(-ts "$TIMESTAMP_URL")
run sign -certs "$2" -key "$3" -h sha256 -n Velqar "${stamp[@]}" -in "$1" -out "$made/signed"
cat "$made/signed" >"$1"
