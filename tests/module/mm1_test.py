"""The MM1 channel of the registered module, from scripts, over a connection that is there, against the lab's MMS centre."""
import pathlib
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import wine  # noqa: E402
from wine import mmsc, modem  # noqa: E402

EXAMPLES = wine.ROOT / "examples/mm1"
BASE = wine.PORTS["mm1"]
JPEG = bytes([0xFF, 0xD8, 0xFF, 0xE0, 0, 13, 10, 26])
SETTINGS = r"HKLM\Software\Quorvane\Velqar"

HEAD = r"""
function New(name) { return new ActiveXObject("Quorvane." + name); }
function Say() {
    var said = [];
    for (var i = 0; i < arguments.length; ++i) said.push(arguments[i]);
    WScript.Echo(said.join("|"));
}
var port = WScript.Arguments.Item(0), folder = WScript.Arguments.Item(1);
var mm1 = New("MmsProtocolMm1");
mm1.ProviderWAPGateway = "http://127.0.0.1:" + port;
mm1.ProviderMMSC = "http://mmsc.example.org/mms";
mm1.AdvancedSettings = "UseExistingConnection=1";
function Message(text) {
    var slide = New("MmsSlide"), message = New("MmsMessage");
    slide.AddText(text);
    message.AddRecipient("+31612345678");
    message.AddSlide(slide);
    return message;
}
function Send(message) {
    mm1.Send(message);
    Say(mm1.LastError, mm1.ProviderResponse, mm1.MessageId);
}
"""


class Scripts(unittest.TestCase):
    def run_script(self, server, body, files=None, timeout=120):
        with wine.folder() as path:
            for name, octets in (files or {}).items():
                (path / name).write_bytes(octets)
            lines = wine.lines_of(HEAD + body, "js", server.port, wine.windows_path(path), timeout=timeout)
            self.saved = {file.name: file.read_bytes() for file in path.iterdir() if file.is_file()}
        return lines


class Sending(Scripts):
    def test_a_message_arrives_whole(self):
        with mmsc("--text", "Thank you") as server:
            picture = JPEG * 38_000
            lines = self.run_script(server, r"""
var slide = New("MmsSlide"), message = New("MmsMessage");
slide.AddText("Look \u20ac");
slide.AddAttachment(folder + "\\p.jpg");
message.From = "+31600000001";
message.Subject = "Zo\u00eb";
message.AddRecipient("+31612345678");
message.AddRecipient("a@example.org", 1);
message.AddSlide(slide);
mm1.Connect();
Say(mm1.LastError);
Send(message);
Say(message.Protocol, mm1.GetErrorDescription(mm1.LastError));
Send(Message("a second one on the same connection"));
mm1.ProviderWAPGateway = "";
mm1.ProviderMMSC = "http://127.0.0.1:" + port + "/mms";
mm1.Connect();
Send(Message("without a proxy"));
mm1.Disconnect();
Say(mm1.LastError);
Send(message);
""", {"p.jpg": picture})
            self.assertEqual(lines, ["0", "0|Thank you|1@mmsc.lab", "1|Success", "0|Thank you|2@mmsc.lab",
                                     "0|Thank you|3@mmsc.lab", "0", "33710||"])
            first, _, direct = server.messages()
            self.assertEqual((first["from"], first["to"], first["cc"], first["subject"]),
                             ("+31600000001", ["+31612345678"], ["a@example.org"], "Zoë"))
            parts = {part["type"]: part for part in first["parts"]}
            self.assertEqual(pathlib.Path(parts["image/jpeg"]["file"]).read_bytes(), picture)
            self.assertEqual(parts["text/plain"]["text"].rstrip("\0"), "Look €")
            self.assertEqual((first["target"], direct["target"]), ("http://mmsc.example.org:80/mms", "/mms"))
            headers = first["headers"]
            self.assertEqual([headers.get(name) for name in
                              ("content-length", "content-type", "accept", "cache-control", "host", "user-agent")],
                             [str(first["octets"]), "application/vnd.wap.mms-message", "application/vnd.wap.mms-message",
                              "No-Cache", "mmsc.example.org", "Mozilla/4.0 (compatible; Win32; Quorvane.Http.3.1)"])
            self.assertEqual(direct["headers"]["host"].partition(":")[0], "127.0.0.1")

    def test_what_the_centre_answers(self):
        rows = [
            ({"do": "conf", "status": "84", "text": "Who?"}, "33764|Who?|"),
            ({"do": "conf", "status": "88"}, "33768||"),
            ({"do": "conf", "status": "e0"}, "33761||"),
            ({"do": "unit", "octets": "8C819280", "pad": 2_000_000}, "0||"),  # the status stands before the damage
            ({"do": "unit", "octets": "8C81985431"}, "33763||"),
            ({"do": "unit", "octets": "8C848D90"}, "33302||"),
            ({"do": "unit"}, "22407||"),
            ({"do": "portal"}, "33302||"),
            ({"do": "status", "status": 404}, "22416||"),
            ({"do": "status", "status": 503}, "22422||"),
            ({"do": "hangup"}, "22407||"),
            ({"do": "delay", "ms": 300}, "0||"),
            ({"do": "split", "ms": 0}, "0||"),
        ]
        rules = [{"match": f"POST http://mmsc.example.org:80/mms?row{number};"} | rule for number, (rule, _) in enumerate(rows)]
        with mmsc(rules=rules) as server:
            lines = self.run_script(server, f"""
mm1.Connect();
for (var i = 0; i < {len(rows)}; ++i) {{
    mm1.ProviderMMSC = "http://mmsc.example.org/mms?row" + i + ";";
    Send(Message("Hi"));
}}""")
            self.assertEqual([line[:len(wanted)] for line, (_, wanted) in zip(lines, rows, strict=True)],
                             [wanted for _, wanted in rows])

    def test_arguments_and_settings(self):
        with mmsc() as server:
            self.assertEqual(self.run_script(server, r"""
Send(Message("not connected"));
mm1.Connect();
Send("text"); Send(mm1); Send(null); Send(New("MmsMessage"));
var long = Message("long");
long.Subject = new Array(42).join("x");
Send(long); Say(long.LastError);
long.Subject = ""; mm1.ProviderMessageSizeLimit = 100; Send(long); Say(long.LastError);
Say(mm1.Retrieve("file:///c:/windows/win.ini") == null, mm1.LastError);
Say(mm1.GetMessage(0) == null, mm1.LastError, mm1.GetNextMessage() == null, mm1.LastError);
mm1.ProviderWAPGateway = "10.0.0.1"; mm1.Connect(); Say(mm1.LastError);
mm1.AdvancedSettings = ""; mm1.ProviderAPN = "apn"; mm1.ProviderWAPGateway = ""; mm1.Connect(); Say(mm1.LastError);
mm1.ProviderAPN = ""; mm1.Connect(); Say(mm1.LastError);
mm1.ProviderMMSC = ""; mm1.Connect(); Say(mm1.LastError);
mm1.Clear();
Say(mm1.Device, mm1.ProviderMMSC, mm1.ProviderMessageSizeLimit, mm1.ProviderTimeout, mm1.MessageStorage, mm1.LastError);
Say(mm1.Version, mm1.Module, mm1.GetDeviceCount() >= 0, mm1.LastError);
"""), ["33710||", "34141||", "34141||", "34141||", "34130||", "34134||", "34134", "34133||", "0", "true|22021",
                "true|34050|true|33060", "33723", "33722", "33721", "33720",
                "Siemens AG WM USB Modem||307200|60000|0|0", "5.3 (x64)|NeltCtrlx64.dll|true|0"])
            self.assertEqual(server.messages(), [])

    def test_time_and_nobody_there(self):
        with mmsc(rules=[{"match": "POST", "do": "silence"}]) as server:
            self.assertEqual(self.run_script(server, """
mm1.ProviderTimeout = 900; mm1.Connect(); Send(Message("Hi"));
mm1.ProviderWAPGateway = "http://127.0.0.1:9"; Send(Message("Hi"));
"""), ["22410||", "22404||"])


class Fetching(Scripts):
    STORED = ("--message", "/m1 +31611111111 'Our holiday' text:Hello")

    def test_from_the_notification_to_the_message(self):
        with mmsc(*self.STORED, "--no-transaction") as server, \
                modem(BASE, "--message", "mms SM +31611111111 http://mmsc.example.org/m1 Our holiday",
                      "--message", "text SM +31622222222 Not for this channel") as device:
            lines = self.run_script(server, f'mm1.Device = "{device.com}";' + r"""
Say(mm1.CountReceivedMessages(), mm1.LastError);
var notification = mm1.GetFirstMessage();
Say(notification.Format, notification.Sender, notification.Data.replace(/EXPIRATION=\d+/, "EXPIRATION"));
Say(mm1.GetNextMessage() == null, mm1.LastError);
mm1.Connect();
var message = mm1.Retrieve(/URL=(\S+)/.exec(notification.Data)[1]);
Say(mm1.LastError, mm1.MessageId, message.From, message.Subject, message.LastError);
var slide = message.GetFirstSlide();
Say(slide.GetTextCount(), slide.GetText(0), message.GetFirstRecipient(0));
message.SaveToFile(folder + "\\m.mms", 2);
Say(message.LastError);
Say(mm1.SendCommand("AT+CGDCONT?", 2000).replace(/\r\n/g, " "), mm1.LastError);
mm1.EnterPin("12"); Say(mm1.LastError);
""")
            self.assertEqual(lines, [
                "1|0", "74|+31611111111|M-NOTIFICATION-IND URL=http://mmsc.example.org/m1 ID=m1 FROM=+31611111111 "
                "SIZE=30000 EXPIRATION", "true|33060", "0|m1@mmsc.lab|+31611111111|Our holiday|0", "1|Hello|+31600000001", "0",
                "AT+CGDCONT? OK|0", "33142"])
            self.assertEqual(self.saved["m.mms"][:2], b"\x8c\x84")
            fetched, = server.entries("fetched")
            self.assertEqual((fetched["target"], fetched["accept"]),
                             ("http://mmsc.example.org:80/m1", "application/vnd.wap.mms-message"))
            answer, = server.entries("kind")
            self.assertEqual((answer["kind"], answer["transaction"], answer["status"]), ("m-notifyresp-ind", "m1", "retrieved"))
            self.assertIn("AT+CMGL=1", device.commands())

    def test_what_may_come_instead(self):
        rules = [{"match": "GET http://m:80/portal", "do": "portal"},
                 {"match": "GET http://m:80/gone", "do": "unit", "octets": "8C848D9199E29A476F6E6500"},
                 {"match": "GET http://m:80/cut", "do": "unit", "octets": "8C848D9084A30101098348656C6C6F"},
                 {"match": "GET http://m:80/away", "do": "redirect", "location": "file:///c:/windows/win.ini"}]
        with mmsc(*self.STORED, rules=rules) as server:
            self.assertEqual(self.run_script(server, """
mm1.Connect();
function Retrieve(url) {
    var message = mm1.Retrieve(url);
    Say(mm1.LastError, message == null, mm1.ProviderResponse);
}
Retrieve("http://m/m1"); Retrieve("http://m/none"); Retrieve("http://m/portal"); Retrieve("http://m/gone");
Retrieve("http://m/cut"); Retrieve("ftp://m/m1"); Retrieve("http://m/" + new Array(65536).join("x"));
Retrieve(""); Retrieve("http://m/away");
"""), ["0|false|", "22416|true|", "33302|true|", "33765|true|Gone", "33763|false|", "22021|true|", "22021|true|",
                "22021|true|", "22404|true|"])
            answer, = server.entries("kind")
            self.assertEqual((answer["kind"], answer["transaction"]), ("m-acknowledge-ind", "m1"))


class Settings(Scripts):
    def test_provider_files_and_their_folder(self):
        wine.run("reg", "delete", SETTINGS, "/v", "InstallRoot", "/f")
        with mmsc() as server:
            script = r"""
var file = folder + "\\provider.ini";
mm1.ProviderAPN = "mms"; mm1.ProviderAPNPassword = "secret"; mm1.ProviderMessageSizeLimit = 5000;
mm1.ProviderSaveConfig(file); Say(mm1.LastError);
mm1.Clear(); mm1.ProviderLoadConfig(file);
Say(mm1.LastError, mm1.ProviderAPN, mm1.ProviderAPNPassword, mm1.ProviderMMSC, mm1.ProviderMessageSizeLimit);
mm1.ProviderLoadConfig(folder + "\\none.ini"); Say(mm1.LastError);
Say(mm1.ProvidersFolder);
"""
            lines = ["0", "0|mms|secret|http://mmsc.example.org/mms|5000", "33050"]
            self.assertEqual(self.run_script(server, script), [*lines, ""])
            self.assertTrue(self.saved["provider.ini"].startswith(b"[Provider]\r\nProviderAPN=mms\r\n"))
            for root in (r"C:\Messaging", "C:\\Messaging\\"):
                wine.run("reg", "add", SETTINGS, "/f", "/v", "InstallRoot", "/d", root)
                try:
                    self.assertEqual(self.run_script(server, script), [*lines, r"C:\Messaging\Providers"])
                finally:
                    wine.run("reg", "delete", SETTINGS, "/v", "InstallRoot", "/f")


class Examples(unittest.TestCase):
    def test_they_send_and_receive(self):
        with mmsc(*Fetching.STORED) as server, wine.folder() as path, \
                modem(BASE + 1, "--message", "mms SM +31611111111 http://mmsc.example.org/m1 Our holiday") as device:
            settings = (EXAMPLES / "provider.ini").read_text(encoding="ascii")
            (path / "provider.ini").write_text(settings.replace("8090", str(server.port)), encoding="ascii")
            (path / "p.jpg").write_bytes(JPEG)
            provider, picture, there = (wine.windows_path(path / name) for name in ("provider.ini", "p.jpg", ""))
            sending = (provider, "+31612345678", "Hello", picture)
            for code, output in (wine.script(EXAMPLES / "send.vbs", *sending),
                                 wine.run("mm1_example.exe", "send", *sending)):
                self.assertEqual(code, 0, output)
                self.assertRegex(output, r"message id \d@mmsc\.lab")
            self.assertEqual([[part["type"] for part in sent["parts"]][:2] for sent in server.messages()],
                             [["text/plain", "image/jpeg"]] * 2)
            for code, output in (wine.script(EXAMPLES / "receive.js", provider, device.com, there.rstrip("\\")),
                                 wine.run("mm1_example.exe", "receive", provider, device.com, there.rstrip("\\"))):
                self.assertEqual(code, 0, output)
                self.assertIn("Our holiday", output)
            self.assertTrue(list(path.glob("*.mms")))
            for code, output in (wine.script(EXAMPLES / "receive.js", provider, device.com, there + "none"),
                                 wine.run("mm1_example.exe", "receive", provider, device.com, there + "none")):
                self.assertEqual(code, 1, output)
                self.assertRegex(output, r"(Not saved: \w|Failed: \d)[^\n]*\n$")


if __name__ == "__main__":
    unittest.main()
