#!/usr/bin/env bash
# Builds the module and runs the main jobs against the lab: SMS through a GSM modem, an SMPP server and an
# HTTP gateway, under Wine.
set -eu
cd "$(dirname "$0")"
scripts/install.sh demo
scripts/build.sh module
. scripts/wine.sh
wine_start
register_dll
python3 lab/demo.py "$@"
