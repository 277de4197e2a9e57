#!/usr/bin/env bash
# Installs what a job needs on Debian 12, and does nothing when all is there. Each takes in the one before it.
#
#     scripts/install.sh demo|package|test|full
set -eu
case ${1:-} in -h | --help) sed -n '2,/^set/s/^# \{0,1\}//p' "$0"; exit ;; esac

demo=(cmake ninja-build python3 python3-aiosmtpd g++-mingw-w64-x86-64-posix mingw-w64-tools libwine-dev wine wine64)
package=(wixl msitools osslsigncode)
test=(clang codespell libclang-rt-14-dev g++ googletest tshark gammu libnet-smpp-perl nginx-light openssl tinyproxy mono-mcs
  python3-pygments)
full=(clang-format clang-tidy libbenchmark-dev)
case ${1:-} in
  demo) packages=("${demo[@]}") ;;
  package) packages=("${demo[@]}" "${package[@]}") ;;
  test) packages=("${demo[@]}" "${package[@]}" "${test[@]}") ;;
  full) packages=("${demo[@]}" "${package[@]}" "${test[@]}" "${full[@]}") ;;
  *)
    echo "usage: $0 demo|package|test|full" >&2
    exit 2
    ;;
esac

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
