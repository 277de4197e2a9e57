"""The content builders of the registered module: their members, and that both channels deliver their octets."""
import pathlib
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import wine  # noqa: E402

EXAMPLES = wine.ROOT / "examples/content"
BASE = 60  # the COM ports of this file's tests

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

    def run_script(self, body, argument):
        with wine.folder() as path:
            file = path / "test.js"
            file.write_text(CONTENTS + body + SEND + "if (channel.Disconnect) channel.Disconnect();", encoding="utf-8")
            return wine.script(file, argument)[1].split("\n")[:-1]

    def test_gsm(self):
        with wine.modem(BASE) as modem:
            lines = self.run_script('var channel = new ActiveXObject("Quorvane.SmsProtocolGsm");'
                                    'channel.Device = WScript.Arguments.Item(0);', modem.com)
            self.check(lines, modem.submitted(), "data")

    def test_smpp(self):
        with wine.smsc("--receipts", "none") as server:
            lines = self.run_script('var channel = new ActiveXObject("Quorvane.SmsProtocolSmpp");'
                                    'channel.Server = "127.0.0.1"; channel.ServerPort = WScript.Arguments.Item(0);'
                                    'channel.Connect();', server.port)
            self.check(lines, server.submitted(), "octets")


class Members(unittest.TestCase):
    def test_common_members_and_clear(self):
        with wine.folder() as path:
            file = path / "test.js"
            file.write_text("""
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
            "if (i == 2) content.ContentLocation = 'x'; else content.URL = 'x';"), encoding="utf-8")
            self.assertEqual(wine.script(file)[1].split("\n")[:-1], [
                f"{name}|0|5.3 (x64)|5.3.10.1123 (x64)|NeltCtrlx64.dll|Failed to allocate memory|true|{cleared}|true"
                for name, cleared in [("SmsDataWapPush", "false"), ("SmsDataWapBookmark", "true"),
                                      ("SmsDataMmsNotification", "true"), ("SmsDatavCard", "true")]])


class Examples(unittest.TestCase):
    def test_all(self):
        for number, (name, arguments) in enumerate([
                ("push", ("http://www.example.org/", "The text")), ("bookmark", ("http://www.example.org/", "The name")),
                ("notification", ("http://mmsc.example.org/1", "The subject")), ("vcard", ("Bob", "+31600000002"))]):
            with self.subTest(name), wine.modem(BASE + 1 + number) as modem:
                code, output = wine.script(EXAMPLES / f"{name}.vbs", modem.com, "+31612345678", *arguments)
                self.assertEqual(code, 0, output)
                self.assertEqual(output.split("\n")[0], "Content: " + joined(modem.submitted(), "data")[0])
                for text in arguments:
                    self.assertIn(text.removeprefix("http://").encode().hex().upper(), output)


if __name__ == "__main__":
    unittest.main()
