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

# How each language makes a procedure of a block, calls one, and prints a line.
HOSTS = {"vbscript": ("vbs", "Sub Block{0}\n{1}\nEnd Sub\n", "Block{0}\n", 'WScript.Echo "{0}"\n'),
         "jscript": ("js", "function Block{0}() {{\n{1}\n}}\n", "Block{0}();\n", 'WScript.Echo("{0}");\n')}
PRINTS = re.compile(r"""^.*(?:'|//) prints: (.*)$""", re.M)
CPP = """#include <windows.h>
#include "NeltCtrl.h"
void Block(VARIANT message, BSTR reference) {
%s
}
"""


def blocks_in(*languages, is_run=None):
    for path in documents():
        for block in blocks(path.read_text(encoding="utf-8")):
            if block.language in languages and is_run in (None, block.is_run):
                yield f"{path.relative_to(ROOT)}:{block.line}", block


def printed(language, codes, calls):
    """What a script of these blocks prints; when it calls them, a line with the number goes before each."""
    kind, procedure, call, echo = HOSTS[language]
    text = "".join(procedure.format(number, code) for number, code in enumerate(codes))
    for number in range(len(codes) if calls else 0):
        text += echo.format(f"-- {number}") + call.format(number)
    with wine.folder() as path:
        file = path / f"blocks.{kind}"
        file.write_text(text + echo.format("the end"), encoding="utf-8")
        return wine.script(file)[1]


def can_be_read(language, codes):
    return printed(language, codes, calls=False) == "the end\n"


class Scripts(unittest.TestCase):
    def test_those_marked_print_what_they_say(self):
        for language in HOSTS:
            marked = list(blocks_in(language, is_run=True))
            said = printed(language, [block.text for _, block in marked], calls=True).removesuffix("the end\n")
            outputs = dict(re.findall(r"^-- (\d+)\n((?:(?!-- \d).*\n)*)", said, re.M))
            for number, (where, block) in enumerate(marked):
                with self.subTest(where):
                    expected = PRINTS.findall(block.text)
                    self.assertTrue(expected, "a block that runs says what it prints")
                    self.assertIn(str(number), outputs, "this one or another cannot be read, or stopped the script")
                    self.assertEqual(outputs[str(number)].splitlines(), expected)

    def test_all_can_be_read(self):
        for language in HOSTS:
            found = list(blocks_in(language))
            if not can_be_read(language, [block.text for _, block in found]):
                self.assertEqual([where for where, block in found if not can_be_read(language, [block.text])], [])

    def test_a_script_with_an_error_cannot_be_read(self):
        for language in HOSTS:
            with self.subTest(language):
                self.assertFalse(can_be_read(language, ["If ( Then"]))


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
        expected, script = {}, ""
        for cls in library.classes:
            script += f'Set object = CreateObject("{ids[cls.name]}")\n'
            for name, (default, _) in reference.words_of(cls, common).properties.items():
                if default:
                    expected[f"{cls.name}.{name}"] = default.strip('"')
                    script += f'WScript.Echo "{cls.name}.{name}=" & object.{name}\n'
        self.assertEqual(dict(line.split("=", 1) for line in wine.lines_of(script, "vbs")), expected)


if __name__ == "__main__":
    unittest.main()
