"""Every keyword of AdvancedSettings in the code stands in docs/advanced-settings.md, and no other."""
import re
import unittest

from markdown import ROOT

ASKED = re.compile(r'\bAdvancedSetting\("(\w+)"')
# A table of keywords that HasAdvancedSetting walks over.
LISTED = re.compile(r'\{"([A-Z]\w+)", "')


def keywords_of(source):
    found = set(ASKED.findall(source))
    return found | set(LISTED.findall(source)) if "HasAdvancedSetting(" in source else found


class Keywords(unittest.TestCase):
    def test_are_documented(self):
        in_code = set()
        for path in (ROOT / "src").rglob("*"):
            if path.suffix in (".cpp", ".h"):
                in_code |= keywords_of(path.read_text(encoding="utf-8"))
        page = (ROOT / "docs/advanced-settings.md").read_text(encoding="utf-8")
        self.assertEqual(set(re.findall(r"^\| `(\w+)`", page, re.M)), in_code)


if __name__ == "__main__":
    unittest.main()
