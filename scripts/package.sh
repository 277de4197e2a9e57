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
if [ $# != 0 ]; then
  for file in "$2" "$3"; do
    if [ ! -f "$file" ] || [ ! -r "$file" ]; then
      echo "$0: there is no file $file that can be read" >&2
      exit 2
    fi
  done
  # The files are named from where the caller stands.
  set -- --sign "$(realpath "$2")" "$(realpath "$3")"
fi
cd "$(dirname "$0")/.."
scripts/install.sh package
scripts/build.sh module
python3 packaging/package.py build/windows build/package "$@"
ls -l build/package
