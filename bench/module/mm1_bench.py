#!/usr/bin/env python3
"""Runs mm1_bench.exe against an MMS centre of its own."""
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tests/module"))
import wine  # noqa: E402

with wine.mmsc() as server:
    code, output = wine.run("mm1_bench.exe", server.port, timeout=600)
print(output, end="")
sys.exit(code)
