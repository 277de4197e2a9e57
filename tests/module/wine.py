"""What the tests under Wine share: running programs and scripts, and a lab modem on a COM port of its own."""
import contextlib
import pathlib
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "lab"))
from base.launch import Counterpart  # noqa: E402

PREFIX = ROOT / "build/wine"
IN_WINE = ROOT / "scripts/in-wine.sh"


def run(*arguments, timeout=120, encoding="utf-8"):
    """Runs a Windows program; gives its exit code and what it printed."""
    done = subprocess.run([IN_WINE, *map(str, arguments)], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, timeout=timeout, check=False)
    return done.returncode, done.stdout.decode(encoding, "replace").replace("\r", "")


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def script(path, *arguments, timeout=120):
    return run("cscript", "//nologo", windows_path(path), *arguments, timeout=timeout, encoding="cp850")


class Modem(Counterpart):
    def __init__(self, com, folder, options, rules):
        self.com = f"COM{com}"
        link = PREFIX / f"dosdevices/com{com}"
        super().__init__("modem.py", folder, "--link", link, *options, rules=rules)

    def commands(self):
        return [entry["command"] for entry in self.entries("command")]

    def submitted(self):
        return self.entries("given")


class Smsc(Counterpart):
    def __init__(self, folder, options, rules):
        super().__init__("smsc.py", folder, "--port", 0, *options, rules=rules)

    def submitted(self):
        return self.entries("text")


@contextlib.contextmanager
def folder():
    path = pathlib.Path(tempfile.mkdtemp(prefix="neltctrl-"))
    try:
        yield path
    finally:
        shutil.rmtree(path, ignore_errors=True)


@contextlib.contextmanager
def running(start, *arguments):
    with folder() as path:
        started = start(path, *arguments)
        try:
            yield started
        finally:
            started.close()


def modem(com, *options, rules=None):
    # The prefix must be there before a port can be linked into it.
    if not (PREFIX / "dosdevices").is_dir():
        run("cmd", "/c", "exit")
    return running(lambda path: Modem(com, path, options, rules))


def smsc(*options, rules=None):
    return running(Smsc, options, rules)
