#!/usr/bin/env bash
# Builds both ways and runs every test.
#
#     ./test.sh [--full]    --full adds clang-tidy, longer fuzzing and the benchmarks
set -eu
case ${1:-} in -h | --help) sed -n '2,/^set/s/^# \{0,1\}//p' "$0"; exit ;; esac
full=${1:-}
if [ $# -gt 1 ] || { [ $# = 1 ] && [ "$full" != --full ]; }; then
  echo "usage: $0 [--full]" >&2
  exit 2
fi
cd "$(dirname "$0")"
if [ "$full" = --full ]; then scripts/install.sh full; else scripts/install.sh test; fi

scripts/build.sh native thread windows
seconds=3
if [ "$full" = --full ]; then seconds=60; fi
cmake --preset native -DFUZZ_SECONDS=$seconds >/dev/null

. scripts/wine.sh
wine_start
# One run over all builds.
printf 'subdirs("native" "thread" "windows")\n' >build/CTestTestfile.cmake
result=0
ctest --test-dir build --output-on-failure --parallel 2 --timeout 900 || result=$?

if [ "$full" = --full ]; then
  git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run -Werror || result=1
  git ls-files 'src/*.cpp' | grep -vE '(Auto|Win)\.cpp$' | xargs -P 2 -n 4 clang-tidy --quiet -p build/native || result=1
  scripts/bench.sh
fi
exit $result
