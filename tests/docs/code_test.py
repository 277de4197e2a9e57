"""Blocks of code in the documentation name their language; those in Python and JSON are read. Scripts and C++ are tested
with the module (tests/module/docs_test.py)."""
import configparser
import json
import unittest

from markdown import ROOT, blocks, documents

LANGUAGES = {"vbscript", "jscript", "powershell", "python", "csharp", "cpp", "ini", "json", "console", "text", "xml", "http"}


def read_ini(code):
    # The lines of an activity file have no "=".
    configparser.ConfigParser(interpolation=None, allow_no_value=True).read_string(code)


READERS = {"python": lambda code: compile(code, "block", "exec"), "json": json.loads, "ini": read_ini}


class Blocks(unittest.TestCase):
    def test_can_be_read(self):
        for path in documents():
            for block in blocks(path.read_text(encoding="utf-8")):
                with self.subTest(f"{path.relative_to(ROOT)}:{block.line}"):
                    self.assertIn(block.language, LANGUAGES | {""})
                    if block.language in READERS:
                        READERS[block.language](block.text)

    def test_the_reader_of_blocks(self):
        text = ("A list:\n\n    Set x = CreateObject(\"Quorvane.SmsMessage\")\n\n    x.Clear\n\nand\n```vbscript run\nx\n```\n"
                "text\n    no block\n")
        self.assertEqual([(block.language, block.is_run, block.line, block.text) for block in blocks(text)],
                         [("vbscript", False, 3, 'Set x = CreateObject("Quorvane.SmsMessage")\nx.Clear'),
                          ("vbscript", True, 9, "x")])


if __name__ == "__main__":
    unittest.main()
