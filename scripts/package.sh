#!/usr/bin/env bash
# Builds the module and packs it: an installer and an archive in build/package.
#
#     scripts/package.sh [--sign CERT KEY]    signs the module and the installer as well; both in PEM
set -eu
case ${1:-} in -h | --help) sed -n '2,/^set/s/^# \{0,1\}//p' "$0"; exit ;; esac
if [ $# != 0 ] && { [ $# != 3 ] || [ "$1" != --sign ]; }; then
  echo "usage: $0 [--sign CERT KEY]" >&2
  exit 2
fi
here=$PWD
cd "$(dirname "$0")/.."
scripts/install.sh package
scripts/build.sh module
if [ $# != 0 ]; then
  # The files were named from where the caller stands.
  set -- --sign "$(cd "$here" && realpath "$2")" "$(cd "$here" && realpath "$3")"
fi
python3 packaging/package.py build/windows build/package "$@"
ls -l build/package
