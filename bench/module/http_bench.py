#!/usr/bin/env python3
"""Runs http_bench.exe against an nginx of its own."""
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tests/module"))
import web  # noqa: E402
import wine  # noqa: E402

with wine.running(web.Web) as server:
    code, output = wine.run("http_bench.exe", server.inner, timeout=600)
print(output, end="")
sys.exit(code)
