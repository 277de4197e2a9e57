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
    "gateway_example": r"127\.0\.0\.1 8080 [^\n]*",
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
USAGE = None  # told instead of a line of its own, with 2
UNREADABLE = r"^[^\n]*none[^\n]* cannot be read\n$"
FAILED = r"^[^\n]*: \d+ [^\n]+\n$"
SERVER, ACCOUNT = ("127.0.0.1", "9"), ("me", "secret")
MM4 = (*ACCOUNT, "31612345678", "example.net", "Hi")
NUMBERS = wine.windows_path(EXAMPLES / "bulk/numbers.txt")
# What cannot be meant: the programs, their arguments, and what they say. None comes as far as a device or a server.
NONSENSE = [
    *((("pager/send.vbs", "pager/send.js", "pager_example"), ("127.0.0.1", port, "5551212", "Hi"), USAGE)
      for port in ("abc", "-1", "4444x", "99999999999", "")),
    (("bulk/bulk.vbs", "bulk/bulk.js", "bulk_example"), ("127.0.0.1", "abc", *ACCOUNT, NUMBERS, "Hi"), USAGE),
    (("smpp/send.vbs", "smpp/send.js", "smpp_example send"), ("127.0.0.1", "abc", *ACCOUNT, "+31612345678", "Hi"), USAGE),
    (("smpp/receive.vbs", "smpp/receive.js", "smpp_example receive"), ("127.0.0.1", "abc", *ACCOUNT), USAGE),
    (("http/send.vbs", "http/send.js", "gateway_example"), ("127.0.0.1", "abc", "+31612345678", "Hi"), USAGE),
    (("mm4/send.vbs", "mm4/send.js", "mm4_example"), ("127.0.0.1", "abc", *MM4), USAGE),
    (("bulk/bulk.vbs", "bulk/bulk.js", "bulk_example"), (*SERVER, *ACCOUNT, NUMBERS, "Hi", "fast"), USAGE),
    (("bulk/bulk.vbs", "bulk/bulk.js", "bulk_example"), (*SERVER, *ACCOUNT, "none.txt", "Hi"), UNREADABLE),
    (("smpp/receive.vbs", "smpp/receive.js", "smpp_example receive"), (*SERVER, *ACCOUNT, "1.5"), USAGE),
    (("two-way/answer.vbs", "two-way/answer.js", "answer_example"), ("COM99", "Hi", "abc"), USAGE),
    (("two-way/answer.vbs", "two-way/answer.js", "answer_example"), ("COM99", "Hi", "1", "abc"), USAGE),
    (("gsm/receive.vbs", "gsm/receive.js"), ("COM99", "abc"), USAGE),
    (("gsm/receive.vbs", "gsm/receive.js"), ("COM99", "1", "abc"), USAGE),
    (("gsm/report.vbs", "gsm/report.js"), ("COM99", "+31612345678", "Hi", "abc"), USAGE),
    (("mms/permission.vbs",), ("m.mms", "+31612345678", "none.jpg", "abc"), USAGE),
    (("dialup/send.vbs", "dialup/send.js", "dialup_example"), ("COM99", "foo", "0201234567", "0612345678", "Hi"), USAGE),
    (("gsm_example foo", "gsm_example send", "gsm_example report", "gsm_example pin"), ("COM99",), USAGE),
    (("smpp_example foo",), (*SERVER, *ACCOUNT), USAGE),
    (("smpp_example send",), (*SERVER, *ACCOUNT, "+31612345678"), USAGE),
    (("mm1_example foo", "mm1_example send"), ("none.ini", "+31612345678", "Hi"), USAGE),
    (("mm1/send.vbs", "mm7/send.vbs", "mm7/send.js", "mm7_example"), ("none.ini", "+31612345678", "Hi", "none.jpg"), FAILED),
    (("mm1_example send",), ("none.ini", "+31612345678", "Hi", "none.jpg"), FAILED),
    (("mm1/receive.js", "mm1_example receive"), ("none.ini", "COM99", "none"), FAILED),
    (("mm4/send.vbs", "mm4/send.js", "mm4_example"), (*SERVER, *MM4, "none.jpg"), FAILED),
    (("mms/build.vbs",), ("m.mms", "+31612345678", "Hi", "none.jpg"), FAILED),
    (("mms/permission.vbs",), ("m.mms", "+31612345678", "none.jpg", "1"), FAILED),
    (("mms/list.js",), ("none.mms",), FAILED),
]


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

    def test_nonsense_is_told_and_does_not_end_with_0(self):
        for programs, arguments, told in NONSENSE:
            for program in programs:
                with self.subTest(program, arguments=arguments):
                    name, *job = program.split()
                    if "/" in name:
                        done = wine.script(EXAMPLES / name, *arguments, timeout=20)
                    else:
                        done = wine.run(f"{name}.exe", *job, *arguments, timeout=20)
                    self.assertEqual(done[0], 2 if told is USAGE else 1, done[1])
                    name = "cscript " + name.split("/")[1] if "/" in name else name
                    self.assertRegex(done[1], rf"^{name} [^\n]+\n$" if told is USAGE else told)


if __name__ == "__main__":
    unittest.main()
