"""Runs Windows programs and scripts under Wine, in the project's own prefix."""
import os
import pathlib
import subprocess

from base.launch import LAB

ROOT = LAB.parent
PREFIX = pathlib.Path(os.environ.get("NELTCTRL_PREFIX", ROOT / "build/wine"))
IN_WINE = ROOT / "scripts/in-wine.sh"


def run(*arguments, timeout=120, encoding="utf-8"):
    """Runs a Windows program; gives its exit code and what it printed."""
    done = subprocess.run([IN_WINE, *map(str, arguments)], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, timeout=timeout, check=False)
    return done.returncode, done.stdout.decode(encoding, "replace").replace("\r", "")


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def script(path, *arguments, timeout=120):
    """An error in a script shows in neither: cscript prints nothing and ends with 0."""
    return run("cscript", "//nologo", windows_path(path), *arguments, timeout=timeout, encoding="cp850")
