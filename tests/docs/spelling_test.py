"""Documents, comments and examples are spelt as codespell knows words; tests/docs/misspelt.txt has what is misspelt on
purpose, and nothing else."""
import collections
import re
import subprocess
import unittest

from markdown import ROOT, tracked

PATTERNS = ("*.md", "*.cpp", "*.h", "*.idl", "*.inc", "*.py", "*.sh", "*.vbs", "*.js", "*.ps1", "*.cs", "*.pl", "*.txt", "*.cmake")
# Names in code are no words: theseOnes, TheseOnes, kThese.
NAMES = r"\b\w*[a-z][A-Z]\w*\b"
FOUND = re.compile(r"^(.*):\d+: (\S+) ==> ", re.M)


class Spelling(unittest.TestCase):
    def test_every_word_is_known(self):
        files = [str(path.relative_to(ROOT)) for path in tracked(*PATTERNS) if path.name != "misspelt.txt"]
        said = subprocess.run(["codespell", "--ignore-regex", NAMES, *files], cwd=ROOT, stdout=subprocess.PIPE, text=True,
                              check=False).stdout
        found = collections.defaultdict(set)
        for file, word in FOUND.findall(said):
            found[file.removeprefix("./")].add(word)
        allowed = collections.defaultdict(set)
        for line in (ROOT / "tests/docs/misspelt.txt").read_text(encoding="utf-8").splitlines():
            if line and not line.startswith("#"):
                file, words = line.split(": ")
                allowed[file] |= set(words.split())
        anywhere = allowed.pop("*", set())
        found = {file: words - anywhere for file, words in found.items() if words - anywhere}
        self.assertEqual(found, dict(allowed))


if __name__ == "__main__":
    unittest.main()
