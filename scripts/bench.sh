#!/usr/bin/env bash
# Runs every benchmark: the core natively, the module under Wine (which `build.sh windows` has built and registered).
set -eu
cd "$(dirname "$0")/.."
scripts/build.sh release
build/release/bench/core_bench "$@"
scripts/in-wine.sh property_bench.exe
# The server ends when its input does.
coproc SINK { build/release/bench/smpp_sink 27750; }
scripts/in-wine.sh smpp_bench.exe 27750 </dev/null
exec {SINK[1]}>&-
wait
