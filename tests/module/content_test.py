"""The content builders of the registered module: their members, and that both channels deliver their octets."""
import json
import pathlib
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import wine  # noqa: E402

EXAMPLES = wine.ROOT / "examples/content"
BASE = wine.PORTS["content"]

CONTENTS = """
function Make(name, fields) {
    var content = new ActiveXObject("Quorvane." + name);
    for (var field in fields) content[field] = fields[field];
    content.Encode();
    return content.EncodedMessage;
}
var octets = "", i;
for (i = 1; i < 256; ++i) octets += String.fromCharCode(i);
var contents = [
    Make("SmsDataWapPush", {URL: "http://www.example.org/", Description: "Hi"}),
    Make("SmsDataWapPush", {URL: "https://example.org/", ConnectionType: 1, ExecuteAction: 2}),
    Make("SmsDataWapPush", {URL: "x", Description: octets + octets}),
    Make("SmsDataWapBookmark", {URL: "http://www.example.org/", Description: "Name"}),
    Make("SmsDataMmsNotification", {From: "+31600000001", Subject: "Photo", ContentLocation: "http://mmsc/1"}),
    Make("SmsDataMmsNotification", {}),
    Make("SmsDatavCard", {Name: "Bob", Phone: "1"})
];
var message = new ActiveXObject("Quorvane.SmsMessage");
message.Recipient = "+31612345678";
message.Format = 11;
"""

SEND = """
for (i = 0; i < contents.length; ++i) {
    WScript.Echo(contents[i]);
    message.Data = contents[i];
    channel.Send(message);
    WScript.Echo(channel.LastError);
}
"""


def joined(parts, data):
    """The octets of each message, header first: what the lab took, parts put together by their own headers."""
    messages = []
    for part in parts:
        header, body = bytes.fromhex(part["header"]), bytes.fromhex(part[data])
        number = 1
        if header[:2] == b"\0\3":
            number, header = header[4], header[5:]
        if number == 1:
            messages.append(bytes([len(header)]) + header)
        messages[-1] += body
    return [message.hex().upper() for message in messages]


class Delivery(unittest.TestCase):
    def check(self, lines, parts, data):
        self.assertEqual(lines[1::2], ["0"] * 7)
        self.assertEqual(joined(parts, data), lines[0::2])
        self.assertGreater(len(parts), 7 + 3)  # the large push and what goes beyond one part came in several

    def run_script(self, body, argument, end=""):
        return wine.lines_of(CONTENTS + body + SEND + end, "js", argument)

    def test_gsm(self):
        with wine.modem(BASE) as modem:
            lines = self.run_script('var channel = new ActiveXObject("Quorvane.SmsProtocolGsm");'
                                    'channel.Device = WScript.Arguments.Item(0);', modem.com)
            self.check(lines, modem.submitted(), "data")

    def test_smpp(self):
        with wine.smsc("--receipts", "none") as server:
            lines = self.run_script('var channel = new ActiveXObject("Quorvane.SmsProtocolSmpp");'
                                    'channel.Server = "127.0.0.1"; channel.ServerPort = WScript.Arguments.Item(0);'
                                    'channel.Connect();', server.port, "channel.Disconnect();")
            self.check(lines, server.submitted(), "octets")


class Members(unittest.TestCase):
    def test_common_members_and_clear(self):
        lines = wine.lines_of("""
var names = ["SmsDataWapPush", "SmsDataWapBookmark", "SmsDataMmsNotification", "SmsDatavCard"];
for (var i = 0; i < names.length; ++i) {
    var content = new ActiveXObject("quorvane." + names[i] + ".1");
    content.URL = content.ContentLocation = "x";
    content.encode();
    var first = content.EncodedMessage;
    content.Clear();
    WScript.Echo([names[i], content.LastError, content.Version, content.Build, content.Module,
                  content.GetErrorDescription(1040), first != "", content.EncodedMessage == "",
                  content.URL === "" || content.ContentLocation === ""].join("|"));
}
""".replace("content.URL = content.ContentLocation = \"x\";",
            "if (i == 2) content.ContentLocation = 'x'; else content.URL = 'x';"), "js")
        self.assertEqual(lines, [
            f"{name}|0|5.3 (x64)|5.3.10.1123 (x64)|NeltCtrlx64.dll|Failed to allocate memory|true|{cleared}|true"
            for name, cleared in [("SmsDataWapPush", "false"), ("SmsDataWapBookmark", "true"),
                                  ("SmsDataMmsNotification", "true"), ("SmsDatavCard", "true")]])

    def test_letters_outside_ascii(self):
        rows = [  # class, fields, the octets in the content
            ("SmsDataWapPush", {"Description": "é"}, b"\3\xe9\0"),  # no UTF-8, which the document says it is
            ("SmsDataWapPush", {"Description": "\xc3\xa9 \xc3\u2030"}, b"\3\xc3\xa9 \xc3\x89\0"),
            ("SmsDataWapBookmark", {"Description": "\xc3\xa9"}, b"\3\xc3\xa9\0"),
            ("SmsDatavCard", {"Name": "é"}, b"\nN:\xff\xff\xff\xe9\r\n"),
            ("SmsDatavCard", {"Mobile": "1\r\nN;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:=C3=A9"},
             b"\nTEL;CELLPHONE:1\r\nN;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:=C3=A9\r\nEND"),
        ]
        body = "".join(f'WScript.Echo(Make("{name}", {json.dumps(fields)}));\n' for name, fields, _ in rows)
        for line, (name, fields, wanted) in zip(wine.lines_of(CONTENTS + body, "js"), rows, strict=True):
            self.assertIn(wanted, bytes.fromhex(line), f"{name} {fields}")


class Examples(unittest.TestCase):
    def test_all(self):
        for number, (name, arguments, wanted) in enumerate([
                ("bookmark.vbs", ("http://www.example.org/", "Name"), (b"http://www.example.org/\0", b"Name\0")),
                ("notification.vbs", ("http://example.org/1", "Subject"), (b"http://example.org/1\0", b"Subject\0")),
                ("vcard.js", ("Bob", "+31600000002"), (b"\nN:Bob\r\n", b"\nTEL;CELLPHONE:+31600000002\r\n")),
                ("vcard.js", ("Zoë; 中", "1"),
                 (b"\nTEL;CELLPHONE:1\r\nN;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:Zo=C3=AB=3B=20=E4=B8=AD\r\nEND",))]):
            with self.subTest(name), wine.modem(BASE + 1 + number) as modem:
                code, output = wine.script(EXAMPLES / name, modem.com, "+31612345678", *arguments)
                content, = joined(modem.submitted(), "data")
                parts = ";".join(str(entry["given"]) for entry in modem.submitted())
                self.assertEqual((code, output), (0, f"Content: {content}\nSent, reference {parts}\n"))
                for octets in wanted:
                    self.assertIn(octets, bytes.fromhex(content))

    def test_what_would_not_arrive_is_not_sent(self):
        for name in ("bookmark", "notification"):
            with self.subTest(name):
                code, output = wine.script(EXAMPLES / f"{name}.vbs", "COM99", "+31612345678", "http://x.org/", "Fête")
                self.assertEqual(code, 2)
                self.assertRegex(output, r"^The \w+ is not ASCII: docs/content.md says how other letters go\n$")


if __name__ == "__main__":
    unittest.main()
