#!/usr/bin/env bash
# Builds the module and runs the main jobs against the lab, under Wine: SMS through a GSM modem, an SMPP server, an
# HTTP gateway and dialled providers, a page through a paging server, and picture messages through an MMS centre.
set -eu
cd "$(dirname "$0")"
scripts/install.sh demo
scripts/build.sh module
. scripts/wine.sh
wine_start
register_dll
python3 lab/demo.py "$@"
