"""Every link in the documentation leads to a file and an anchor that are there, and every document is linked."""
import unittest

from markdown import ROOT, anchors, broken_links, documents, links


class Links(unittest.TestCase):
    def test_lead_to_what_is_there(self):
        self.assertEqual(broken_links(documents(), ROOT), [])

    def test_every_document_is_reached_from_the_readme(self):
        reached, waiting = set(), [ROOT / "README.md"]
        while waiting:
            path = waiting.pop()
            if path in reached:
                continue
            reached.add(path)
            for _, target in links(path):
                file = (path.parent / target.partition("#")[0]).resolve()
                if file.suffix == ".md" and file.is_file():
                    waiting.append(file)
        self.assertEqual([str(path.relative_to(ROOT)) for path in documents() if path not in reached], [])

    def test_the_reader_of_headings(self):
        text = "# One & two\n## `AddSlide` [there](x.md)\n## Same\n## Same\n```\n# no heading\n```\n<a id=\"own\"></a>\n"
        self.assertEqual(anchors(text), {"one--two", "addslide-there", "same", "same-1", "own"})


if __name__ == "__main__":
    unittest.main()
