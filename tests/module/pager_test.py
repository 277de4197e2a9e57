"""The pager channel of the registered module, from scripts, against the lab's paging server."""
import pathlib
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import wine  # noqa: E402
from wine import pager  # noqa: E402

EXAMPLES = wine.ROOT / "examples/pager"

HEAD = """
var pager = new ActiveXObject("Quorvane.PagerProtocolSnpp");
var defaults = [pager.ServerPort, pager.ServerTimeout].join();
pager.Server = "127.0.0.1";
pager.ServerPort = Number(WScript.Arguments.Item(0));
var page = new ActiveXObject("Quorvane.PagerMessage");
page.Recipient = "5551212";
page.Data = "Caf\\u00e9\\r\\n.\\r\\nSEND";
function Send(what) { pager.Send(what); WScript.Echo(pager.LastError + "|" + pager.ProviderResponse); }
"""


class Examples(unittest.TestCase):
    def test_each_sends_a_page_or_says_why_not(self):
        for name in ("send.vbs", "send.js", "pager_example.exe"):
            for password, wanted in (("secret", (0, "Answer: Message sent\n")),
                                     ("wrong", (1, "ailed: 33603 Invalid Pager ID or pincode\n"))):
                with self.subTest(name, password=password), pager("--password", "secret") as server:
                    arguments = ("127.0.0.1", server.port, "5551212", "Hi", password)
                    code, output = wine.run(name, *arguments) if name.endswith(".exe") else \
                        wine.script(EXAMPLES / name, *arguments)
                    self.assertEqual((code, output[-len(wanted[1]):]), wanted)
                    self.assertEqual(server.pages(), [("5551212", "Hi")] if code == 0 else [])


class Channel(unittest.TestCase):
    def test_a_page_is_one_line_and_nonsense_has_its_code(self):
        with pager() as server:
            lines = wine.lines_of(HEAD + """
WScript.Echo(defaults);
Send(page); Send(page);
Send(null); Send(17); Send(pager); Send(new ActiveXObject("Quorvane.SmsMessage"));
page.Data = ""; Send(page);
page.Clear(); Send(page); WScript.Echo(page.Recipient + page.Data + "|");
page.Recipient = "1"; page.Data = "x"; pager.Server = ""; Send(page);
pager.Clear(); WScript.Echo([pager.Server, pager.ServerPort, pager.ServerTimeout, pager.ProviderResponse].join());
""", "js", server.port)
            self.assertEqual(lines, ["444,20000", "0|Message sent", "0|Message sent",
                                     "34200|Message sent", "34200|Message sent", "34200|Message sent", "34200|Message sent",
                                     "33603|Message sent", "34031|Message sent", "|", "33600|Message sent", ",444,20000,"])
            self.assertEqual(server.pages(), [("5551212", "Caf\xe9  .  SEND")] * 2)

    def test_servers_that_misbehave(self):
        for rule, code in [({"match": "PAGE", "do": "silence"}, 33611), ({"match": "SEND", "do": "hangup"}, 10054),
                           ({"match": "connect", "do": "hangup"}, 10054), ({"match": ".", "do": "refuse", "code": 554}, 33610),
                           ({"match": "DATA", "do": "flood", "text": "250-", "ms": 5000}, None),
                           ({"match": "PAGE", "do": "split", "ms": 10}, 0), ({"match": "PAGE", "do": "join"}, 33611)]:
            with self.subTest(rule), pager(rules=[rule]) as server:
                started = time.time()
                line, = wine.lines_of(HEAD + "pager.ServerTimeout = 1000; Send(page);", "js", server.port)
                self.assertLess(time.time() - started, 30)
                if code is not None:
                    self.assertEqual(line.split("|")[0], str(code))
                self.assertEqual(len(server.pages()), 1 if code == 0 or rule["match"] == "SEND" else 0)


if __name__ == "__main__":
    unittest.main()
