#!/usr/bin/env bash
# Configures and builds the named presets, quietly unless something is wrong.
set -eu
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
