"""What all examples have in common; those that cannot run here are at least read."""
import pathlib
import re
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import wine  # noqa: E402
from wire import gsm  # noqa: E402

EXAMPLES = wine.ROOT / "examples"
TEXTS = ("gsm", "smpp", "http", "alarm", "two-way", "bulk")  # where texts of users go out
PROGRAMS = {  # what each tells of its arguments
    "gsm_example": r"send [^\n]* \| receive [^\n]*",
    "smpp_example": r"send [^\n]* \| receive [^\n]*",
    "http_example": r"127\.0\.0\.1 8080 [^\n]*",
    "dialup_example": r"COM5 ucp\|tap [^\n]*",
    "mm4_example": r"127\.0\.0\.1 2525 [^\n]*",
    "pager_example": r"127\.0\.0\.1 4444 [^\n]*",
    "mm7_example": r"provider\.ini [^\n]*",
    "mm1_example": r"send provider\.ini [^\n]* \| receive provider\.ini [^\n]*",
    "alarm_example": r"COM5 [^\n]*",
    "answer_example": r"COM5 [^\n]*",
    "bulk_example": r"127\.0\.0\.1 2775 user password numbers\.txt [^\n]*",
    "push_example": r"COM5 [^\n]*",
}


class Alphabet(unittest.TestCase):
    def test_every_example_that_sends_a_text_knows_the_alphabet(self):
        beyond = {char for char in map(chr, range(0x10000)) if char not in gsm.CODES} | {"\f", "\x1b"}
        for file in (file for folder in TEXTS for file in EXAMPLES.glob(f"{folder}/*")):
            if file.stem in ("receive", "pin", "numbers"):
                continue
            text = file.read_text(encoding="utf-8")
            with self.subTest(file.name):
                pieces = re.findall(r"""["'(]((?:\[\^|\\x)[^"')]*)["')]""", text)
                pattern = re.compile("".join(pieces))
                self.assertEqual({char for char in map(chr, range(0x10000)) if pattern.search(char)}, beyond)
                if file.suffix == ".ps1":
                    self.assertIn("-cmatch", text)  # -match takes ç for Ç


class Usage(unittest.TestCase):
    def test_without_arguments_an_example_tells_them(self):
        for file in sorted(EXAMPLES.glob("*/*.[vj][bs]*")):
            with self.subTest(file.name):
                code, output = wine.script(file)
                self.assertEqual(code, 2)
                self.assertRegex(output, rf"^cscript {file.name} (COM5|127\.0\.0\.1 (2775 user password|8080|4444|2525)|message\.mms|provider\.ini)[^\n]*\n$")
        for program, arguments in PROGRAMS.items():
            with self.subTest(program):
                code, output = wine.run(f"{program}.exe")
                self.assertEqual(code, 2)
                self.assertRegex(output, rf"^{program} {arguments}\n$")


if __name__ == "__main__":
    unittest.main()
