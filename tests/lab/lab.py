"""What the tests of the lab share: a server of the lab inside the test, and its programs outside."""
import contextlib
import json
import pathlib
import sys
import tempfile

LAB = pathlib.Path(__file__).resolve().parents[2] / "lab"
sys.path.insert(0, str(LAB))
from base.launch import Counterpart  # noqa: E402


@contextlib.asynccontextmanager
async def serving(server, rules=None):
    """A server without a process of its own: gives it and its port. What it says is in `said`."""
    with tempfile.TemporaryDirectory() as folder:
        arguments = ["--port", "0"]
        if rules:
            path = pathlib.Path(folder, "rules.json")
            path.write_text(json.dumps(rules), encoding="utf-8")
            arguments += ["--scenario", str(path)]
        running = server(server.parser().parse_args(arguments))
        running.said = []
        running.say = running.said.append
        port = int((await running.open()).split()[-1])
        try:
            yield running, port
        finally:
            await running.close()


@contextlib.contextmanager
def program(name, *arguments, rules=None):
    """A program of the lab that runs by itself."""
    with tempfile.TemporaryDirectory() as folder:
        started = Counterpart(name, pathlib.Path(folder), *arguments, rules=rules)
        try:
            yield started
        finally:
            started.close()
