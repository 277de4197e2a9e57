#!/usr/bin/env bash
# Runs every benchmark: the core natively, the module under Wine.
#
#     scripts/bench.sh [--benchmark_NAME=VALUE ...]    options for the core's benchmarks, such as --benchmark_filter=Gsm
set -eu
case ${1:-} in -h | --help) sed -n '2,/^set/s/^# \{0,1\}//p' "$0"; exit ;; esac
for option in "$@"; do
  if [[ $option != --benchmark_* ]]; then
    echo "usage: $0 [--benchmark_NAME=VALUE ...]" >&2
    exit 2
  fi
done
cd "$(dirname "$0")/.."
scripts/install.sh full
scripts/build.sh release windows
. scripts/wine.sh
wine_start
register_dll
build/release/bench/core_bench "$@"
scripts/in-wine.sh property_bench.exe
python3 bench/module/http_bench.py
python3 bench/module/mm1_bench.py
# The server ends when its input does.
coproc SINK { build/release/bench/smpp_sink 27750; }
scripts/in-wine.sh smpp_bench.exe 27750 </dev/null
exec {SINK[1]}>&-
wait
