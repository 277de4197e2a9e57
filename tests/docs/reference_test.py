"""The pages of docs/reference are those that the type library and the words beside each IDL give."""
import pathlib
import re
import sys
import tempfile
import unittest
from unittest import mock

from markdown import ROOT

sys.path.insert(0, str(ROOT / "scripts"))
import reference  # noqa: E402

# Success, what any method can give, and what does not leave the serial line and the dial-up connection.
NOBODYS = {0, 1100, 22026, 30103, 30114, 30115}
# Found by adding a status to the first of a row, or handed on as a mail server gives it.
COUNTED = {535, *range(33761, 33769), *range(33800, 33839)}


class Pages(unittest.TestCase):
    def test_are_not_stale(self):
        try:
            pages = reference.make_pages()
        except reference.Incomplete as error:
            self.fail(str(error))
        self.assertEqual(reference.stale(pages), [], "scripts/reference.py writes these pages of docs/reference anew")

    def test_every_code_of_the_code_is_told_and_no_other(self):
        rows = re.findall(r"^(?:RESULT|CODE)\((\d+), (\w+)", (reference.SOURCES / "foundation/ErrorTexts.inc").read_text(), re.M)
        numbers = {name: int(code) for code, name in rows}
        used = {numbers[name] for path in reference.SOURCES.rglob("*") if path.suffix in (".cpp", ".h")
                for name in re.findall(r"\bresult::(\w+)", path.read_text(encoding="utf-8")) if name in numbers}
        common = reference.read_words(reference.COMMON)
        known = {code for _, codes in reference.error_texts() for code, _ in codes}
        told = {code for cls in reference.read_listing().classes
                for text in reference.words_of(cls, common).sections.values() for code in reference.codes_of(text, known)}
        self.assertEqual(sorted(used - told - NOBODYS), [], "no page tells when these codes come")
        self.assertEqual(sorted((told & set(numbers.values())) - used - COUNTED), [], "nothing gives these codes")

    def incomplete(self, words, *, class_row=""):
        """What is said of a library of one class with these words beside its IDL."""
        listing = ("library\t{0}\t5.3\ninterface\tIThing\t{1}\tA thing\nmember\t101\tget\tSize\tLONG\t\tOctets\n"
                   "member\t201\tmethod\tSend\tvoid\t\tSends\tin LONG lWhat\ncoclass\tThing\t{2}\tThing Class\tIThing\n")
        with tempfile.TemporaryDirectory() as name:
            root = pathlib.Path(name)
            for file, text in {"tests/golden/reference.tsv": listing, "src/frame/CommonMembers.md": "",
                               "src/frame/ClassTable.inc": 'CREATABLE(Thing, "Quorvane.Thing", "Thing Class", 2)\n',
                               "src/foundation/ErrorTexts.inc": 'RESULT(0, Success, "Success")\n', "src/thing/Thing.idl": "",
                               "src/thing/Thing.md": words}.items():
                (root / file).parent.mkdir(parents=True, exist_ok=True)
                if text is not None:
                    (root / file).write_text(text)
            with mock.patch.multiple(reference, ROOT=root, SOURCES=root / "src", LISTING=root / "tests/golden/reference.tsv",
                                     COMMON=root / "src/frame/CommonMembers.md"):
                with self.assertRaises(reference.Incomplete) as caught:
                    reference.make_pages()
        return str(caught.exception)

    def test_a_class_without_its_words_is_named(self):
        intro = "A thing.\n\n```vbscript\nx\n```\n\n"
        rows = "## Properties\n| property | default | meaning |\n|---|---|---|\n| `Size` | 0 | |\n"
        for words, said in [(None, "Thing has no Thing.md beside Thing.idl"),
                            (intro + rows, "src/thing/Thing.md has no section for the method Send"),
                            (intro + "## Send\nIt.\n", "src/thing/Thing.md has no row for the property Size"),
                            (intro + rows + "| `Old` | 0 | |\n## Send\n", "has a row for Old, which Thing does not have"),
                            (intro + rows + "## Send\n- 12345: never\n", "12345 is in no list of result codes"),
                            ("A thing.\n" + rows + "## Send\n", "src/thing/Thing.md has no example")]:
            with self.subTest(said):
                self.assertIn(said, self.incomplete(words))


if __name__ == "__main__":
    unittest.main()
