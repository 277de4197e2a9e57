"""What the tests under Wine share: running programs and scripts, and a lab modem on a COM port of its own."""
import contextlib
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
PREFIX = ROOT / "build/wine"
IN_WINE = ROOT / "scripts/in-wine.sh"


def run(*arguments, timeout=120):
    """Runs a Windows program; gives its exit code and what it printed."""
    done = subprocess.run([IN_WINE, *map(str, arguments)], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, timeout=timeout, check=False)
    return done.returncode, done.stdout.decode("utf-8", "replace").replace("\r", "")


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def script(path, *arguments, timeout=120):
    return run("cscript", "//nologo", windows_path(path), *arguments, timeout=timeout)


class Modem:
    def __init__(self, com, folder, options, rules):
        self.com = f"COM{com}"
        self.record = folder / f"modem{com}.json"
        self.log = folder / f"modem{com}.txt"
        arguments = [sys.executable, ROOT / "lab/modem.py", "--link", PREFIX / f"dosdevices/com{com}", "--record",
                     self.record, *options]
        if rules:
            (folder / "rules.json").write_text(json.dumps(rules), encoding="utf-8")
            arguments += ["--scenario", folder / "rules.json"]
        self.output = open(self.log, "w", encoding="utf-8")
        self.process = subprocess.Popen(list(map(str, arguments)), stdout=self.output, stderr=subprocess.STDOUT)
        deadline = time.time() + 10
        while "modem ready" not in self.log.read_text(encoding="utf-8"):
            if time.time() > deadline:
                raise RuntimeError("the lab modem does not start: " + self.log.read_text(encoding="utf-8"))
            time.sleep(0.02)

    def entries(self):
        if not self.record.exists():
            return []
        return [json.loads(line) for line in self.record.read_text(encoding="utf-8").splitlines()]

    def commands(self):
        return [entry["command"] for entry in self.entries() if "command" in entry]

    def submitted(self):
        return [entry for entry in self.entries() if "given" in entry]

    def close(self):
        self.process.terminate()
        self.process.wait()
        self.output.close()


@contextlib.contextmanager
def folder():
    path = pathlib.Path(tempfile.mkdtemp(prefix="neltctrl-"))
    try:
        yield path
    finally:
        shutil.rmtree(path, ignore_errors=True)


@contextlib.contextmanager
def modem(com, *options, rules=None):
    # The prefix must be there before a port can be linked into it.
    if not (PREFIX / "dosdevices").is_dir():
        run("cmd", "/c", "exit")
    with folder() as path:
        started = Modem(com, path, options, rules)
        try:
            yield started
        finally:
            started.close()
