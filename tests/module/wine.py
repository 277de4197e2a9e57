"""What the tests under Wine share: running programs and scripts, and a lab modem on a COM port of its own."""
import contextlib
import json
import os
import pathlib
import re
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


class Counterpart:
    """A program of the lab that records what it saw, a JSON object a line."""

    def __init__(self, program, folder, ready, arguments, rules):
        self.record = folder / "record.json"
        command = [sys.executable, ROOT / "lab" / program, "--record", self.record, *arguments]
        if rules:
            (folder / "rules.json").write_text(json.dumps(rules), encoding="utf-8")
            command += ["--scenario", folder / "rules.json"]
        log = folder / "output.txt"
        self.output = open(log, "w", encoding="utf-8")
        self.process = subprocess.Popen(list(map(str, command)), stdout=self.output, stderr=subprocess.STDOUT)
        deadline = time.time() + 10
        while not (found := re.search(ready, log.read_text(encoding="utf-8"))):
            if time.time() > deadline:
                raise RuntimeError(f"{program} does not start: " + log.read_text(encoding="utf-8"))
            time.sleep(0.02)
        self.ready = found

    def entries(self, key=None):
        if not self.record.exists():
            return []
        rows = [json.loads(line) for line in self.record.read_text(encoding="utf-8").split("\n") if line]
        return [row for row in rows if key is None or key in row]

    def close(self):
        self.process.terminate()
        self.process.wait()
        self.output.close()


class Modem(Counterpart):
    def __init__(self, com, folder, options, rules):
        self.com = f"COM{com}"
        link = PREFIX / f"dosdevices/com{com}"
        super().__init__("modem.py", folder, "modem ready", ["--link", link, *options], rules)

    def commands(self):
        return [entry["command"] for entry in self.entries("command")]

    def submitted(self):
        return self.entries("given")


class Smsc(Counterpart):
    def __init__(self, folder, options, rules):
        super().__init__("smsc.py", folder, r"ready on port (\d+)", ["--port", 0, *options], rules)
        self.port = self.ready[1]

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
