"""Starts a counterpart as a program of its own, for tests and demonstrations."""
import json
import pathlib
import re
import subprocess
import sys
import time

LAB = pathlib.Path(__file__).resolve().parents[1]


class Counterpart:
    """A running program of the lab, its files in `folder`. It also ends when its starter is gone."""

    def __init__(self, program, folder, *arguments, rules=None):
        name = pathlib.Path(program).stem
        self.log, self.record = folder / f"{name}.txt", folder / f"{name}.json"
        command = [sys.executable, LAB / program, "--record", self.record, *arguments]
        if rules:
            scenario = folder / "scenario.json"
            scenario.write_text(json.dumps(rules), encoding="utf-8")
            command += ["--scenario", scenario]
        with open(self.log, "w", encoding="utf-8") as output:
            self.process = subprocess.Popen(list(map(str, command)), stdin=subprocess.PIPE, stdout=output,
                                            stderr=subprocess.STDOUT)
        while not (found := re.search(r" ready (.*)\n", self.output())):
            if self.process.poll() is not None:
                self.process.stdin.close()
                raise RuntimeError(f"{program} does not start: {self.output().strip()}")
            time.sleep(0.02)
        self.ready = found[1]  # what stands behind "ready"

    @property
    def port(self):
        return self.ready.split()[-1]

    def output(self):
        return self.log.read_text(encoding="utf-8")

    def entries(self, key=None):
        """What it recorded, or what of it has that key."""
        if not self.record.exists():
            return []
        rows = [json.loads(line) for line in self.record.read_text(encoding="utf-8").split("\n") if line]
        return [row for row in rows if key is None or key in row]

    def close(self):
        self.process.terminate()
        self.process.stdin.close()
        return self.process.wait()
