#!/usr/bin/env bash
# Runs a Windows program in the project's own Wine prefix, from the folder of the module.
#
#     scripts/in-wine.sh PROGRAM [ARGUMENT ...]
set -eu
case ${1:-} in -h | --help) sed -n '2,/^set/s/^# \{0,1\}//p' "$0"; exit ;; esac
if [ $# = 0 ]; then
  echo "usage: $0 PROGRAM [ARGUMENT ...]" >&2
  exit 2
fi
. "$(dirname "${BASH_SOURCE[0]}")/wine.sh"
wine_start
cd "$root/build/windows"
exec $steady wine "$@"
