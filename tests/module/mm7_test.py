"""The MM7 channel of the registered module, from scripts and examples, against the lab's MMS centre and nginx."""
import email
import email.policy
import pathlib
import shutil
import sys
import unittest
import xml.etree.ElementTree as ET

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import wine  # noqa: E402
from wine import mmsc  # noqa: E402

EXAMPLES = wine.ROOT / "examples/mm7"
SIZES = (0, 1, 2, 3, 56, 57, 58, 256, 300_000)

HEAD = """
function New(name) { return new ActiveXObject("Quorvane." + name); }
var mm7 = New("MmsProtocolMm7");
mm7.ProviderHost = "127.0.0.1";
mm7.ProviderPort = Number(WScript.Arguments.Item(0));
mm7.ProviderPath = "mm7";
var slide = New("MmsSlide");
slide.AddText("Gr\\u00FC\\u00DFe");
var message = New("MmsMessage");
message.AddRecipient("+31612345678");
message.AddSlide(slide);
function Show() { WScript.Echo(mm7.LastError + "|" + mm7.ProviderResponse.substr(0, 40) + "|" + mm7.MessageId); }
function Send() { mm7.Send(message); Show(); }
"""


def counting(size):
    return bytes((i + i // 256) % 256 for i in range(size))


def script_path(path):
    return str(wine.windows_path(path)).replace("\\", "\\\\")


def run_script(server, body, port=None):
    return wine.lines_of(HEAD + body, "js", port or server.port)


class Channel(unittest.TestCase):
    def test_every_octet_of_every_part(self):
        with wine.folder() as path:
            files = {f"{size}.jpg": counting(size) for size in SIZES if size} | {"line ends.gif": b"\r\n--\r\n\r\n.\r\n--"}
            for name, octets in files.items():
                (path / name).write_bytes(octets)
            added = "".join(f'slide.AddAttachment("{script_path(path / name)}");' for name in files)
            with mmsc("--folder", path / "taken") as server:
                self.assertEqual(run_script(server, f"""
slide = New("MmsSlide"); {added}
slide.AddAttachmentData("0.jpg", null);
message.AddSlide(slide);
mm7.ProviderMessageSizeLimit = 400000;
Send();
"""), ["0|Success|1@mmsc.lab"])
                sent, = server.messages()
            found = {part["name"]: pathlib.Path(part["file"]).read_bytes() for part in sent["parts"]}
        wanted = files | {"0.jpg": b""}
        self.assertEqual({name: found.get(name) for name in wanted}, wanted)
        smil, text = sent["parts"][:2]
        self.assertEqual((smil["type"], smil["id"]), ("application/smil", f"{sent['transaction']}.smil"))
        self.assertEqual((text["type"], text["text"]), ("text/plain", "Grüße\0"))
        self.assertEqual(len(sent["parts"]), 2 + len(wanted))

    def test_the_fields_of_a_message(self):
        with mmsc() as server:
            self.assertEqual(run_script(server, """
mm7.ProviderVASPID = "vasp <&>"; mm7.ProviderVASID = "vas"; mm7.ProviderServiceCode = "gold";
mm7.ProviderMM7Version = 18; mm7.ProviderMM7Schema = 10;
message.From = "+31600000001"; message.Subject = "<\\u0416> & \\r\\nmore"; message.Class = 2; message.Priority = 2;
message.ValidityPeriod = 60; message.RequestDeliveryReport = true;
message.AddRecipient("eve@example.org", 1); message.AddRecipient("1234567", 2);
Send();
WScript.Echo(message.Protocol + "|" + message.LastError + "|" + message.sysBoundary.substr(0, 14));
message.Class = 7; message.From = "NOTAG:<ShortCode>raw</ShortCode>"; Send();
"""), ["0|Success|1@mmsc.lab", '7|0|SOAPAction: ""', "0|Success|2@mmsc.lab"])
            first, second = server.messages()
        self.assertEqual({name: first[name] for name in (
            "vasp", "vas", "service", "version", "from", "sender_kind", "to", "cc", "bcc", "subject", "class", "priority",
            "delivery_report", "read_report")}, {
                "vasp": "vasp <&>", "vas": "vas", "service": "gold", "version": "6.8.0", "from": "+31600000001",
                "sender_kind": "Number", "to": ["+31612345678"], "cc": ["eve@example.org"], "bcc": ["1234567"],
                "subject": "<Ж> &   more", "class": "advertisement", "priority": "high", "delivery_report": True,
                "read_report": False})
        self.assertTrue(first["schema"].endswith("/REL-6-MM7-1-4"))
        self.assertEqual(first["headers"]["soapaction"], '""')
        self.assertEqual((second["from"], second["sender_kind"]), ("raw", "ShortCode"))

    def test_what_a_centre_answers(self):
        rows = [
            ({"do": "submitted", "code": "1000", "text": "Ok"}, "0|Ok|1@mmsc.lab"),
            ({"do": "submitted", "code": "1100", "text": "Not to all"}, "0|Not to all|2@mmsc.lab"),
            ({"do": "submitted", "code": "1000", "text": "Gr\u00fc\u00dfe", "form": "multipart"}, "0|Gr\u00fc\u00dfe|3@mmsc.lab"),
            ({"do": "submitted", "code": "1000", "text": "Ok", "form": "other"}, "0|Ok|4@mmsc.lab"),
            ({"do": "split", "ms": 0}, "0|Success|5@mmsc.lab"),
            ({"do": "delay", "ms": 300}, "0|Success|6@mmsc.lab"),
            ({"do": "submitted", "code": "2004", "text": "No"}, "33804|No|"),
            ({"do": "submitted", "code": "2500", "text": "No"}, "33800|No|"),
            ({"do": "submitted", "code": "3003"}, "33823||"),
            ({"do": "submitted", "code": "4008"}, "33838||"),
            ({"do": "submitted", "code": "5000"}, "33830||"),
            ({"do": "fault", "text": "Who?"}, "33830|Who?|"),
            ({"do": "fault", "text": "Who?", "code": "4001"}, "33831|Who?|"),
            ({"do": "fault", "text": "Who?", "code": "4001", "status": 200}, "33831|Who?|"),
            ({"do": "portal"}, "33830|<html><body><h1>Welcome</h1><p>Please bu|"),
            ({"do": "answer", "body": "OK"}, "33830|OK|"),
            ({"do": "status", "status": 500}, "22419||"),
            ({"do": "status", "status": 404}, "22416||"),
            ({"do": "hangup"}, "22407||"),
        ]
        rules = [{"match": "POST", "nth": [number]} | rule for number, (rule, _) in enumerate(rows, 1)]
        with mmsc(rules=rules) as server:
            self.assertEqual(run_script(server, f"for (var i = 0; i < {len(rows)}; i++) Send();"),
                             [wanted for _, wanted in rows])

    def test_nobody_there_and_time(self):
        with mmsc(rules=[{"match": "POST", "do": "silence"}]) as server:
            self.assertEqual(run_script(server, """
mm7.ProviderTimeout = 1000; Send();
mm7.ProviderPort = 9; Send();
mm7.ProviderHost = ""; Send();
"""), ["22410||", "22404||", "22404||"])

    def test_what_is_no_message(self):
        with mmsc() as server:
            self.assertEqual(run_script(server, """
function Try(value) {
    mm7.Send(value);
    WScript.Echo(mm7.LastError + " " + mm7.GetErrorDescription(mm7.LastError) + mm7.ProviderResponse + mm7.MessageId);
}
function ShowItsCode() { WScript.Echo(message.LastError); }
Send(); ShowItsCode();
Try(null); Try(5); Try(slide); Try(New("SmsMessage")); Try(new ActiveXObject("Scripting.Dictionary"));
Try(New("MmsMessage"));
message.ClearRecipients(); Try(message); ShowItsCode();
message.AddRecipient("+31612345678"); mm7.ProviderMessageSizeLimit = 100; Try(message); ShowItsCode();
mm7.ProviderMessageSizeLimit = 307200;
message.Subject = "12345678901234567890123456789012345678901"; Try(message); ShowItsCode();
message.Subject = ""; mm7.ProviderHost = ""; Send(); ShowItsCode();
"""), ["0|Success|1@mmsc.lab", "0"] + ["34141 Invalid MmsMessage object passed to send function"] * 5
                + ["34130 No recipient address(es) specified"] * 2
                + ["34130", "34133 Size of MMS message exceeds the maximum message size", "0", "34134 MMS Subject is too long",
                   "34134", "22404||", "0"])
            self.assertEqual(len(server.messages()), 1)

    def test_accounts_of_the_server_and_of_a_proxy(self):
        with mmsc("--account", "me:web secret", "--proxy-account", "px:proxy secret") as server, wine.folder() as path:
            log = path / "mm7.log"
            self.assertEqual(run_script(server, f"""
mm7.LogFile = "{script_path(log)}";
mm7.AdvancedSettings = "MaskPasswords=1";
mm7.ProviderWebAccount = "me"; mm7.ProviderWebPassword = "web secret";
mm7.ProxyServer = "127.0.0.1"; mm7.ProxyPort = mm7.ProviderPort;
mm7.ProviderHost = "http://mmsc.example.org/mm7"; mm7.ProviderPort = 0;
Send();
mm7.ProxyAccount = "px"; mm7.ProxyPassword = "wrong one"; Send();
mm7.ProxyPassword = "proxy secret"; Send();
mm7.ProviderWebPassword = "wrong one"; Send();
"""), ["22405||", "22405||", "0|Success|1@mmsc.lab", "22412||"])
            sent, = server.messages()
            self.assertRegex(sent["target"], "^http://mmsc.example.org(:80)?/mm7$")
            text = log.read_text(encoding="latin-1")
        self.assertNotIn("secret", text)
        self.assertIn("MM7 MESSAGEID       : 1@mmsc.lab", text)
        self.assertIn("SEND RESULT: ERROR 22412 (Unable to logon to web site)", text)

    def test_properties_and_provider_files(self):
        with wine.folder() as path:
            file = script_path(path / "provider.ini")
            self.assertEqual(wine.lines_of(HEAD + f"""
var names = ["ProviderHost", "ProviderPort", "ProviderPath", "ProviderUseSSL", "ProviderWebAccount", "ProviderWebPassword",
             "ProviderVASPID", "ProviderVASID", "ProviderServiceCode", "ProviderMM7Version", "ProviderMM7Schema",
             "ProviderMM7Variation", "ProviderMessageSizeLimit", "ProviderTimeout", "ProxyServer", "ProxyPort",
             "ProxyAccount", "ProxyPassword"];
function All() {{
    var all = [];
    for (var i = 0; i < names.length; ++i) all.push(mm7[names[i]]);
    WScript.Echo(all.join("|"));
}}
mm7 = New("MmsProtocolMm7");
All();
for (var i = 0; i < names.length; ++i) mm7[names[i]] = i + 1;
All();
mm7.ProviderSaveConfig("{file}"); Show();
mm7.AdvancedSettings = "x"; mm7.LogFile = "{file}.log";
mm7.Clear(); All();
WScript.Echo(mm7.AdvancedSettings + mm7.LogFile + mm7.ActivityFile + "|" + mm7.LastError + "|" + mm7.Version + "|" + mm7.Module);
mm7.ProviderLoadConfig("{file}"); Show(); All();
mm7.ProviderLoadConfig("{file}none"); Show();
mm7.ProviderSaveConfig(""); Show();
""", "js", 1), ["|0||0||||||0|2|0|307200|60000||0||", "1|2|3|-1|5|6|7|8|9|10|11|12|13|14|15|16|17|18", "0||",
                "|0||0||||||0|2|0|307200|60000||0||", "|0|5.3 (x64)|NeltCtrlx64.dll", "0||",
                "1|2|3|-1|5|6|7|8|9|10|11|12|13|14|15|16|17|18", "33050||", "33052||"])


class EncodedByTheMessage(unittest.TestCase):
    def test_a_script_encodes_by_itself(self):
        with wine.folder() as path:
            lines = wine.lines_of(HEAD + f"""
message.Protocol = 7;
message.EncodeMessage();
WScript.Echo(message.LastError);
var octets = message.EncodedMessage, text = "", i;
for (i = 0; i < octets.length; ++i) text += (256 + octets.charCodeAt(i)).toString(16).substr(1);
WScript.Echo(text);
WScript.Echo(message.sysBoundary.replace("\\r\\n", "|"));
message.SaveToFile("{script_path(path / "saved.mms")}", 1);
WScript.Echo(message.LastError);
""", "js", 1)
            saved = (path / "saved.mms").read_bytes()
        code, octets, headers, saving = lines
        self.assertEqual((code, saving), ("0", "0"))
        self.assertTrue(saved.startswith(b"\x8c\x80\x98"))  # always an MM1 unit
        message = email.message_from_bytes(headers.replace("|", "\r\n").encode() + b"\r\n\r\n" + bytes.fromhex(octets),
                                           policy=email.policy.default)
        envelope, content = message.iter_parts()
        self.assertTrue(ET.fromstring(envelope.get_payload(decode=True)).tag.endswith("}Envelope"))
        self.assertEqual([part.get_content_type() for part in content.iter_parts()], ["application/smil", "text/plain"])


class Examples(unittest.TestCase):
    PROGRAMS = ("send.vbs", "send.js", "mm7_example.exe")

    def send(self, name, *arguments):
        return wine.run(name, *arguments) if name.endswith(".exe") else wine.script(EXAMPLES / name, *arguments)

    def test_they_send_and_tell_a_failure(self):
        rules = [{"match": "POST", "nth": [2], "do": "fault", "text": "Who?", "code": "4001"}]
        for name in self.PROGRAMS:
            with self.subTest(name), mmsc(rules=rules) as server, wine.folder() as path:
                (path / "picture.jpg").write_bytes(counting(1000))
                provider = path / "provider.ini"
                settings = (EXAMPLES / "provider.ini").read_text(encoding="ascii")
                provider.write_text(settings.replace("8090", str(server.port)), encoding="ascii")
                arguments = (wine.windows_path(provider), "+31612345678", wine.GSM_TEXT.replace("Ω", "o"),
                             wine.windows_path(path / "picture.jpg"))
                self.assertEqual(self.send(name, *arguments), (0, "Sent, message id 1@mmsc.lab\n"))
                sent, = server.messages()
                self.assertEqual((sent["vasp"], sent["vas"]), ("acme", "news"))
                self.assertEqual([(part["size"], part["name"]) for part in sent["parts"][2:]], [(1000, "picture.jpg")])
                code, output = self.send(name, *arguments)
                self.assertEqual(code, 1)
                self.assertIn("The centre said: Who?", output)
                self.assertIn("33831 MM7 Error: Improper identification", output)


class Nginx(unittest.TestCase):
    """A server of others takes the request, over TLS as well."""

    @unittest.skipUnless(shutil.which("nginx", path="/usr/sbin:/usr/bin"), "needs nginx")
    def test_the_request(self):
        import web
        with wine.folder() as path:
            server = web.Web(path)
            try:
                with server.authority.trusted():
                    lines = run_script(server, f"""
mm7.ProviderPath = "ok"; Send();
mm7.ProviderHost = "https://localhost:{server.secure}/ok"; Send();
mm7.ProviderHost = "http://127.0.0.1:{server.plain}/to-secure"; Send();
""", server.plain)
                seen = server.seen()
            finally:
                server.close()
        self.assertEqual(lines, ["33830|OK 17|"] * 3)
        self.assertEqual([(entry["method"], entry["target"], entry["secure"]) for entry in seen],
                         [("POST", "/ok", ""), ("POST", "/ok", "on"), ("POST", "/to-secure", ""), ("POST", "/ok", "on")])
        for entry in seen:
            self.assertTrue(entry["type"].startswith('multipart/related; boundary="---mime-boundary-'), entry["type"])
            self.assertGreater(int(entry["length"]), 1000)


if __name__ == "__main__":
    unittest.main()
