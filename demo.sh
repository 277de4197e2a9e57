#!/usr/bin/env bash
# Builds the component and runs the main job against the lab: SMS through a GSM modem, from a script under Wine.
set -eu
cd "$(dirname "$0")"
scripts/install.sh
scripts/build.sh windows
. scripts/wine.sh
wine_start
register_dll
python3 lab/demo.py "$@"
