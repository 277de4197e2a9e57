#!/usr/bin/env bash
# Runs a Windows program in the project's own Wine prefix, from the folder of the module.
set -eu
. "$(dirname "${BASH_SOURCE[0]}")/wine.sh"
wine_start
cd "$root/build/windows"
exec wine "$@"
