"""Runs Windows programs and scripts under Wine, in the project's own prefix."""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

from base.launch import LAB

ROOT = LAB.parent
PREFIX = pathlib.Path(os.environ.get("NELTCTRL_PREFIX", ROOT / "build/wine"))
IN_WINE = ROOT / "scripts/in-wine.sh"


def run(*arguments, timeout=120, encoding="utf-8"):
    """Runs a Windows program; gives its exit code and what it printed. Its complaints are passed on."""
    done = subprocess.run([IN_WINE, *map(str, arguments)], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, timeout=timeout, check=False)
    sys.stderr.write(done.stderr.decode(encoding, "replace").replace("\r", ""))
    return done.returncode, done.stdout.decode(encoding, "replace").replace("\r", "")


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def script(path, *arguments, timeout=120):
    """An error in a script shows in neither: cscript prints nothing and ends with 0."""
    # Of two that start the same file at once Wine's cscript runs one, so each start has its own.
    with tempfile.TemporaryDirectory(prefix="neltctrl-", ignore_cleanup_errors=True) as folder:
        own = windows_path(shutil.copy(path, folder))
        return run("cscript", "//nologo", own, *arguments, timeout=timeout, encoding="cp850")
