#!/usr/bin/env bash
# Builds the module and runs the main jobs against the lab: SMS through a GSM modem and an SMPP server, under Wine.
set -eu
cd "$(dirname "$0")"
scripts/install.sh demo
scripts/build.sh module
. scripts/wine.sh
wine_start
register_dll
python3 lab/demo.py "$@"
