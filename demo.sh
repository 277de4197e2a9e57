#!/usr/bin/env bash
# Builds the module and runs the main jobs against the lab, under Wine: SMS through a GSM modem, an SMPP server, an
# HTTP gateway and dialled providers, a page through a paging server, and picture messages through an MMS centre.
#
#     ./demo.sh [CHANNEL ...]          all channels, or these: gsm smpp http pager ucp tap mm1 mm4 mm7
#     ./demo.sh --lab [CHANNEL ...]    starts the counterparts and shows what they see, for scripts of your own;
#                                      with --any-port on free TCP ports, when the usual ones are taken
set -eu
case ${1:-} in -h | --help) sed -n '2,/^set/s/^# \{0,1\}//p' "$0"; exit ;; esac
cd "$(dirname "$0")"
# Before anything is installed and built, where there is a Python.
! command -v python3 >/dev/null || python3 lab/demo.py --check "$@"
scripts/install.sh demo
scripts/build.sh module
. scripts/wine.sh
wine_start
register_dll
python3 lab/demo.py "$@"
