"""The MM4 channel of the registered module, from scripts, against a mail server over real SMTP."""
import pathlib
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import wine  # noqa: E402
from wine import mail  # noqa: E402
from wire.mail import read  # noqa: E402

EXAMPLES = wine.ROOT / "examples/mm4"
SIZES = (1, 2, 3, 56, 57, 58, 300000)  # of files; 0 is an array, since an empty file is none
ACCOUNT = ("--account", "user:secret!")

HEAD = """
var peer = new ActiveXObject("Quorvane.MmsProtocolMm4");
var defaults = [peer.ProviderPort, peer.ProviderMessageSizeLimit, peer.ProviderMM4Format, peer.ProviderMM4Version].join();
peer.ProviderHost = "127.0.0.1";
peer.ProviderPort = Number(WScript.Arguments.Item(0));
peer.ProviderDomain = "example.net";
var slide = new ActiveXObject("Quorvane.MmsSlide"), i;
slide.AddAttachmentData("0.jpg", null);
for (i = 1; i < WScript.Arguments.length; ++i) slide.AddAttachment(WScript.Arguments.Item(i));
var message = new ActiveXObject("Quorvane.MmsMessage");
message.From = "+31600000001";
message.Subject = "Gr\\u00fc\\u00dfe \\u20ac";
message.AddRecipient("31612345678");
message.AddSlide(slide);
function Send(what) { peer.Send(what); WScript.Echo(peer.LastError + "|" + peer.ProviderResponse.replace(/\\r\\n/g, "/")); }
"""


def every(size):
    return bytes((i + i // 256) % 256 for i in range(size))


def parts_of(entry):
    """The content of each part but the presentation, by its name."""
    parts = read(entry["mail"].encode("latin-1")).iter_parts()
    return {part["Content-location"]: part.get_payload(decode=True) for part in list(parts)[1:]}


class Examples(unittest.TestCase):
    def test_each_sends_or_says_why_not(self):
        with wine.folder() as path:
            (path / "a.jpg").write_bytes(every(300))
            picture = wine.windows_path(path / "a.jpg")
            for name in ("send.vbs", "send.js", "mm4_example.exe"):
                for password, wanted in (("secret!", (0, "Answer: 250 OK\n")), ("no", (1, "ailed: 535 Authentication failed\n"))):
                    with self.subTest(name, password=password), mail(*ACCOUNT) as server:
                        arguments = ("127.0.0.1", server.port, "user", password, "31612345678", "example.net", "Hi", picture)
                        code, output = wine.run(name, *arguments) if name.endswith(".exe") else \
                            wine.script(EXAMPLES / name, *arguments)
                        self.assertEqual((code, output[-len(wanted[1]):]), wanted)
                        self.assertEqual([entry["to"] for entry in server.mails()],
                                         [["31612345678@example.net"]] if code == 0 else [])
                        for entry in server.mails():
                            self.assertEqual(list(parts_of(entry).values()), [b"Hi\0", every(300)])


class Channel(unittest.TestCase):
    def test_every_octet_arrives(self):
        with wine.folder() as path, mail(*ACCOUNT) as server:
            for size in SIZES:
                (path / f"{size}.jpg").write_bytes(every(size))
            files = [wine.windows_path(path / f"{size}.jpg") for size in SIZES]
            lines = wine.lines_of(HEAD + """
peer.ProviderAccount = "user"; peer.ProviderPassword = "secret!"; peer.ProviderMessageSizeLimit = 500000;
WScript.Echo(defaults + "," + peer.ProviderMessageSizeLimit);
Send(message);
WScript.Echo(message.Protocol + "|" + (message.EncodedMessage.indexOf("--" + message.sysBoundary + "--") > 0));
""", "js", server.port, *files)
            self.assertEqual(lines, ["25,350000,0,0,350000", "0|250 OK", "4|true"])
            entry, = server.mails()
            self.assertEqual((entry["from"], entry["to"]), ("+31600000001@example.net", ["31612345678@example.net"]))
            self.assertEqual(parts_of(entry), {"0.jpg": b"", **{f"{size}.jpg": every(size) for size in SIZES}})
            self.assertEqual(read(entry["mail"].encode("latin-1"))["Subject"], "Grüße €")
            self.assertEqual(server.commands()[-1], "QUIT")

    def test_refusals_and_odd_replies(self):
        usual = "0|250 OK"
        for rule, line in [({"match": "MAIL", "do": "refuse", "code": 553}, "553|553 refused"),
                           ({"match": "RCPT", "do": "refuse", "code": 550}, "550|550 refused"),
                           ({"match": "DATA", "do": "refuse", "code": 451}, "451|451 refused"),
                           ({"match": ".", "do": "refuse", "code": 554}, "554|554 refused"),
                           ({"match": "connect", "do": "refuse", "code": 421}, "421|421 refused"),
                           ({"match": "HELO", "do": "refuse", "code": 502}, "101|502 refused"),
                           ({"match": "AUTH", "do": "refuse", "code": 504}, "137|504 refused"),
                           ({"match": "password", "do": "refuse", "code": 535}, "535|535 refused"),
                           ({"match": "RCPT", "do": "hangup"}, "591|"), ({"match": "DATA", "do": "cut"}, "591|"),
                           ({"match": "MAIL", "do": "instead", "text": "well done"}, "591|well done"),
                           ({"match": "MAIL", "do": "flood", "text": "250-and so on " * 40, "ms": 500}, None),
                           ({"match": "RCPT", "do": "garbage", "text": "250-first"}, usual),
                           ({"do": "lines"}, "0|250-more/250 OK"), ({"do": "split", "ms": 1}, usual)]:
            with self.subTest(rule), mail(*ACCOUNT, rules=[rule]) as server:
                started = time.time()
                found, = wine.lines_of(HEAD + """
peer.ProviderAccount = "user"; peer.ProviderPassword = "secret!"; Send(message);""", "js", server.port)
                self.assertLess(time.time() - started, 60)
                if line is not None:
                    self.assertEqual(found, line)
                self.assertEqual(len(server.mails()), 1 if found.startswith("0|") else 0)

    def test_lists_domains_and_nonsense(self):
        with mail() as server:
            lines = wine.lines_of(HEAD + """
message.From = "me@example.org"; message.Subject = "one\\r\\n.\\r\\nBcc: two";
message.AddRecipient("to@example.org");
for (i = 0; i < 4; ++i) message.AddRecipient("cc" + i + "@example.org", 1);
Send(message);
peer.ProviderAccount = "any"; peer.AdvancedSettings = "SmtpAuthentication=0"; Send(message);
Send(null); Send(17); Send(peer); Send(slide);
peer.ProviderMessageSizeLimit = 10; Send(message);
peer.ProviderPort = 465; peer.ProviderMessageSizeLimit = 9999; Send(message);
peer.ProviderPort = 0; Send(message);
peer.ProviderHost = ""; Send(message);
message.ClearRecipients(); Send(message); WScript.Echo(message.LastError);
peer.Clear(); message.Clear(); Send(message);
message.AddRecipient("1234"); Send(message); WScript.Echo(message.LastError);
message.AddSlide(slide); Send(message); WScript.Echo(message.LastError); peer.Clear();
WScript.Echo([peer.ProviderHost, peer.ProviderPort, peer.ProviderAccount, peer.ProviderMessageSizeLimit, peer.LastError].join());
""", "js", server.port)
            self.assertEqual(lines, ["0|250 OK", "0|250 OK", *["34141|"] * 4, "34133|", "138|", "22019|", "131|", "34130|",
                                     "34130", "34130|", "34140|", "34140", "131|", "0",
                                     ",25,,350000,0"])
            self.assertEqual([(entry["from"], entry["to"]) for entry in server.mails()],
                             [("me@example.org", ["31612345678@example.net", "to@example.org", "cc3@example.org"])] * 2)
            self.assertNotIn("AUTH LOGIN", server.commands())

    def test_log_and_provider_file(self):
        with wine.folder() as path, mail(*ACCOUNT) as server:
            lines = wine.lines_of(HEAD.replace("for (i = 1;", "for (i = 9;") + """
var folder = WScript.Arguments.Item(1) + "\\\\";
peer.ProviderAccount = "user"; peer.ProviderPassword = "secret!"; peer.ProviderMM4Version = 18; peer.ProviderMM4Format = 2;
peer.ProviderSaveConfig(folder + "peer.ini"); WScript.Echo(peer.LastError);
peer.Clear(); peer.ProviderLoadConfig(folder + "peer.ini");
WScript.Echo([peer.LastError, peer.ProviderAccount, peer.ProviderDomain, peer.ProviderMM4Version, peer.ProviderMM4Format].join());
peer.AdvancedSettings = "MaskPasswords=1"; peer.LogFile = folder + "mm4.log"; peer.ActivityFile = folder + "mm4.ini";
Send(message);
""", "js", server.port, wine.windows_path(path))
            self.assertEqual(lines, ["0", "0,user,example.net,18,2", "0|250 OK"])
            log = (path / "mm4.log").read_text(encoding="latin-1")
            self.assertIn("COMMAND : AUTH LOGIN\n", log)
            self.assertIn("COMMAND : ****\n", log)
            self.assertIn("COMMAND : <MESSAGE DATA>\n", log)
            self.assertNotIn("c2VjcmV0", log)
            self.assertIn("MM4 Message successfully submitted.", (path / "mm4.ini").read_text(encoding="latin-1"))
            entry, = server.mails()
            self.assertTrue(entry["mail"].startswith("X-Mms-3GPP-MMS-Version: 6.8.0"))


if __name__ == "__main__":
    unittest.main()
