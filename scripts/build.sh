#!/usr/bin/env bash
# Configures and builds presets of CMakePresets.json, quietly unless something is wrong.
#
#     scripts/build.sh PRESET ...    of native, thread, release, windows, module
set -eu
case ${1:-} in -h | --help) sed -n '2,/^set/s/^# \{0,1\}//p' "$0"; exit ;; esac
for preset in "${@:-}"; do
  case $preset in
    native | thread | release | windows | module) ;;
    *)
      echo "usage: $0 native|thread|release|windows|module ..." >&2
      exit 2
      ;;
  esac
done
cd "$(dirname "$0")/.."
for preset in "$@"; do
  # The module alone shares its folder with the tests of the module, which stay configured.
  if [ "$preset" != module ] || [ ! -e build/windows/build.ninja ]; then
    cmake --preset "$preset" >"/tmp/neltctrl-configure.$$" 2>&1 || {
      cat "/tmp/neltctrl-configure.$$"
      exit 1
    }
    rm -f "/tmp/neltctrl-configure.$$"
  fi
  echo "Building $preset"
  cmake --build --preset "$preset" -- --quiet
done
