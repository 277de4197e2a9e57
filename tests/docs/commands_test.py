"""Every command of the project tells its arguments when it is asked, and refuses, before it does anything, what it does not know."""
import re
import subprocess
import sys
import unittest

from markdown import ROOT

sys.path.insert(0, str(ROOT / "lab"))
from channels import CHANNELS  # noqa: E402

REFUSED = {  # words that each does not take
    "demo.sh": ["--x", "x", "gsm x", "--lab x"],
    "test.sh": ["--ful", "--full x"],
    "scripts/bench.sh": ["x"],
    "scripts/build.sh": ["", "x", "native x"],
    "scripts/in-wine.sh": [""],
    "scripts/install.sh": ["", "x"],
    "scripts/package.sh": ["x", "--sign x"],
    "scripts/sign.sh": ["", "x", "--verify"],
    "scripts/reference.py": ["x"],
    "packaging/manifest.py": ["", "x"],
    "packaging/package.py": ["", "x"],
}


def run(name, *words):
    start = [sys.executable] if name.endswith(".py") else ["bash"]
    return subprocess.run([*start, name, *words], cwd=ROOT, capture_output=True, text=True, timeout=60, check=False)


class Commands(unittest.TestCase):
    def test_tell_their_arguments(self):
        for name in REFUSED:
            for word in ("-h", "--help"):
                with self.subTest(name, word=word):
                    done = run(name, word)
                    self.assertEqual((done.returncode, done.stderr), (0, ""))
                    self.assertIn(name.rpartition("/")[2], done.stdout)

    def test_the_demo_tells_its_channels(self):
        told = re.search(r"these: (.*)", run("demo.sh", "--help").stdout)[1]
        self.assertEqual(told.split(), [channel.name for channel in CHANNELS])

    def test_are_all_here(self):
        commands = {f"scripts/{path.name}" for path in (ROOT / "scripts").glob("*.*")} - {"scripts/wine.sh"}  # sourced
        self.assertEqual({name for name in REFUSED if name.startswith("scripts/")}, commands)

    def test_refuse_what_they_do_not_know(self):
        for name, rows in REFUSED.items():
            for words in rows:
                with self.subTest(name, words=words):
                    done = run(name, *words.split())
                    self.assertEqual((done.returncode, done.stdout), (2, ""))
                    self.assertRegex(done.stderr, "^usage: ")


if __name__ == "__main__":
    unittest.main()
