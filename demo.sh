#!/usr/bin/env bash
# Builds the module and runs the main jobs against the lab, under Wine: SMS through a GSM modem, an SMPP server, an
# HTTP gateway and dialled providers, and a page through a paging server.
#
#     ./demo.sh [CHANNEL ...]    all channels, or these
#     ./demo.sh --lab            starts every counterpart and shows what they see, for scripts of your own
set -eu
case ${1:-} in -h | --help) sed -n '2,/^set/s/^# \{0,1\}//p' "$0"; exit ;; esac
cd "$(dirname "$0")"
scripts/install.sh demo
scripts/build.sh module
. scripts/wine.sh
wine_start
register_dll
python3 lab/demo.py "$@"
