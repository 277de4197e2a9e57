"""What the documentation says, tried with the module: its scripts are read by the script host, those that are marked so
run and print what their comments say, C++ compiles, and properties have the defaults of the reference."""
import os
import pathlib
import re
import subprocess
import sys
import unittest

HERE = pathlib.Path(__file__).parent
sys.path[:0] = [str(HERE), str(HERE.parents[0] / "docs"), str(HERE.parents[1] / "scripts")]
import reference  # noqa: E402
import wine  # noqa: E402
from markdown import ROOT, blocks, documents  # noqa: E402

HOSTS = {"vbscript": ("vbs", 'WScript.Echo "read"\nWScript.Quit'), "jscript": ("js", 'WScript.Echo("read"); WScript.Quit(0);')}
PRINTS = re.compile(r"""^.*(?:'|//) prints: (.*)$""", re.M)
CPP = """#include <windows.h>
#include "NeltCtrl.h"
void Block(VARIANT message, BSTR reference) {
%s
}
"""


def blocks_in(*languages):
    for path in documents():
        for block in blocks(path.read_text(encoding="utf-8")):
            if block.language in languages:
                yield f"{path.relative_to(ROOT)}:{block.line}", block


class Scripts(unittest.TestCase):
    def test_those_marked_print_what_they_say(self):
        for where, block in blocks_in(*HOSTS):
            if block.is_run:
                with self.subTest(where):
                    expected = PRINTS.findall(block.text)
                    self.assertTrue(expected, "a block that runs says what it prints")
                    self.assertEqual(wine.lines_of(block.text, HOSTS[block.language][0]), expected)

    def test_all_others_can_be_read(self):
        for where, block in blocks_in(*HOSTS):
            if not block.is_run:
                kind, before = HOSTS[block.language]
                with self.subTest(where), wine.folder() as path:
                    file = path / f"block.{kind}"
                    file.write_text(f"{before}\n{block.text}\n", encoding="utf-8")
                    self.assertEqual(wine.script(file), (0, "read\n"))

    def test_a_script_with_an_error_cannot_be_read(self):
        with wine.folder() as path:
            for kind, before in HOSTS.values():
                file = path / f"wrong.{kind}"
                file.write_text(f"{before}\nIf ( Then\n", encoding="utf-8")
                self.assertNotIn("read", wine.script(file)[1])


class Cpp(unittest.TestCase):
    def test_compiles(self):
        for where, block in blocks_in("cpp"):
            with self.subTest(where):
                done = subprocess.run([os.environ["CXX"], "-std=c++20", "-fsyntax-only", "-w", "-x", "c++",
                                       "-I", os.environ["TYPELIB_HEADERS"], "-"], input=CPP % block.text, text=True,
                                      stderr=subprocess.PIPE, check=False)
                self.assertEqual(done.stderr, "")


class Defaults(unittest.TestCase):
    """The defaults that are written beside the IDL."""

    def test_are_those_of_a_new_object(self):
        library, ids, common = reference.read_listing(), reference.prog_ids(), reference.read_words(reference.COMMON)
        for cls in library.classes:
            words = reference.words_of(cls, common)
            expected = {name: default.strip('"') for name, (default, _) in words.properties.items() if default}
            script = f'Set object = CreateObject("{ids[cls.name]}")\n'
            script += "".join(f'WScript.Echo "{name}=" & object.{name}\n' for name in expected)
            with self.subTest(cls.name):
                printed = wine.lines_of(script, "vbs")
                self.assertEqual(dict(line.split("=", 1) for line in printed), expected)


if __name__ == "__main__":
    unittest.main()
