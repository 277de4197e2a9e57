#!/usr/bin/env bash
# Installs what building, running and testing needs on Debian 12. Does nothing when all is there.
set -eu

packages=(
  cmake ninja-build clang libclang-rt-14-dev g++ python3
  g++-mingw-w64-x86-64-posix mingw-w64-tools libwine-dev wine wine64 googletest
)
if [ "${1:-}" = test ] || [ "${1:-}" = full ]; then packages+=(tshark); fi
if [ "${1:-}" = full ]; then packages+=(clang-format clang-tidy libbenchmark-dev); fi

missing=()
for package in "${packages[@]}"; do
  [ "$(dpkg-query -W -f '${db:Status-Abbrev}' "$package" 2>/dev/null)" = 'ii ' ] || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
root=()
[ "$(id -u)" -eq 0 ] || root=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${root[@]}" apt-get update -qq
"${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
