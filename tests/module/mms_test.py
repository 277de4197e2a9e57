"""The MMS classes of the registered module: members and codes from scripts, and the examples."""
import pathlib
import re
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import wine  # noqa: E402

EXAMPLES = wine.ROOT / "examples/mms"

HELPERS = """
function New(name) { return new ActiveXObject("Quorvane." + name); }
function Say() {
    var said = [];
    for (var i = 0; i < arguments.length; ++i) said.push(arguments[i]);
    WScript.Echo(said.join("|"));
}
var folder = WScript.Arguments.Item(0);
function Hex(octets) {
    var text = "", i;
    for (i = 0; i < octets.length; ++i) text += (256 + octets.charCodeAt(i)).toString(16).substr(1);
    return text;
}
function Slide(text) {
    var slide = New("MmsSlide");
    slide.AddText(text);
    return slide;
}
"""
JPEG = bytes([0xFF, 0xD8, 0xFF, 0xE0, 0, 13, 10, 26])


class Scripts(unittest.TestCase):
    def run_script(self, body, files=None):
        with wine.folder() as path:
            for name, octets in (files or {}).items():
                (path / name).write_bytes(octets)
            lines = wine.lines_of(HELPERS + body, "js", wine.windows_path(path))
            self.saved = {file.name: file.read_bytes() for file in path.iterdir() if file.is_file()}
        return lines

    def test_properties_and_clear(self):
        self.assertEqual(self.run_script("""
var message = New("MmsMessage");
message.From = "+31600000001"; Say(message.From);
message.From = "10.0.0.1"; Say(message.From);
message.From = "a@b.org"; Say(message.From);
message.RequestReadReceipt = 5; message.RequestDeliveryReport = 0; message.Protocol = 7; message.Subject = "s";
message.sysSettings = 123;
Say(message.RequestReadReceipt, message.RequestDeliveryReport, message.Priority, message.sysBoundary);
message.EncodedMessage = "a\\u0100\\u01FFb";
Say(Hex(message.EncodedMessage), message.Subject == "", message.RequestReadReceipt, message.Protocol, message.LastError);
message.DecodeMessage();
Say(message.LastError, message.GetErrorDescription(message.LastError));
message.Clear();
Say(message.LastError, message.EncodedMessage == "", message.Version, message.Build, message.Module);
var slide = New("MmsSlide");
Say(slide.ID, slide.Duration, slide.sysClone, slide.LastError, slide.Module);
slide.Duration = 9; slide.GetText(0); Say(slide.LastError); slide.Clear(); Say(slide.Duration, slide.LastError);
var permission = New("MmsPermission");
permission.Operation = 2; permission.Times = 3; permission.Days = 4; permission.BeginDate = "b"; permission.EndDate = "e";
Say(permission.Operation, permission.Times, permission.Days, permission.BeginDate, permission.EndDate);
permission.Clear();
Say(permission.Operation, permission.Times, permission.Days, permission.BeginDate, permission.EndDate);
var constants = New("MmsConstants");
Say(constants.asMMS_VERSION_6_8_0, constants.asMMS_SCHEMA_REL6_MM7_1_4, constants.asSTORAGE_COMBINED, constants.asMMS_CLASS_AUTO);
"""), ["+31600000001/TYPE=PLMN", "10.0.0.1/TYPE=IPv4", "a@b.org", "-1|0|1|", "6100ff62|true|0|7|0",
            "33763|MMSC response: corrupt message format", "0|true|5.3 (x64)|5.3.10.1123 (x64)|NeltCtrlx64.dll",
            "0|5|0|0|NeltCtrlx64.dll", "34162", "5|0", "2|3|4|b|e", "0|0|0||", "18|10|3|3"])

    def test_codes(self):
        self.assertEqual(self.run_script("""
var message = New("MmsMessage");
message.EncodeMessage(); Say(message.LastError);
message.AddRecipient(""); Say(message.LastError);
message.AddRecipient("hello"); Say(message.LastError);
message.AddRecipient("+31612345678", 3); Say(message.LastError);
message.AddRecipient("+31612345678"); Say(message.LastError);
message.EncodeMessage(); Say(message.LastError);
message.AddSlide(New("MmsSlide")); Say(message.LastError);
message.AddSlide(5); Say(message.LastError);
message.AddSlide(null); Say(message.LastError);
message.AddSlide(New("MmsMessage")); Say(message.LastError);
message.AddSlide(new ActiveXObject("Scripting.Dictionary")); Say(message.LastError);
Say(typeof message.GetFirstSlide(), message.LastError);
message.AddSlide(Slide("x"));
message.Subject = "12345678901234567890123456789012345678901"; message.EncodeMessage(); Say(message.LastError);
message.Subject = ""; message.SaveToFile(folder + "\\\\none\\\\m.mms", 1); Say(message.LastError);
message.LoadFromFile(folder + "\\\\none"); Say(message.LastError);
message.LoadCustomSMIL(folder); Say(message.LastError);
Say(message.GetFirstRecipient(0), message.GetNextRecipient(0), message.GetNextRecipient(0), message.LastError);
message.ClearRecipients(); Say(message.LastError, message.GetFirstRecipient(0), message.LastError);
var slide = New("MmsSlide");
slide.AddAttachment(folder); Say(slide.LastError);
slide.AddAttachment(folder + "\\\\none.jpg"); Say(slide.LastError);
slide.AddAttachment(folder + "\\\\empty.jpg"); Say(slide.LastError);
slide.AddAttachment(folder + "\\\\a.jpg", New("MmsSlide")); Say(slide.LastError, slide.CountAttachments());
slide.AddAttachment(""); Say(slide.LastError);
slide.AddAttachment(folder + "\\\\a.jpg"); Say(slide.LastError, slide.CountAttachments(), slide.GetAttachmentName(0));
slide.GetAttachmentName(1); Say(slide.LastError);
slide.SaveAttachment(7, folder + "\\\\other"); Say(slide.LastError);
slide.SaveAttachment(0, folder + "\\\\none\\\\copy"); Say(slide.LastError);
slide.SaveAttachment(0, folder + "\\\\copy.jpg"); Say(slide.LastError);
""", {"empty.jpg": b"", "a.jpg": JPEG}), [
            "34130", "0", "34131", "34130", "0", "34140", "0", "34141", "34141", "34141", "34141", "undefined|34161",
            "34134", "34151", "34137", "34138",
            "+31612345678/TYPE=PLMN|+31612345678/TYPE=PLMN||34160", "0||34160",
            "34137", "34137", "34137", "33005|0", "0", "0|1|a.jpg", "34162", "34162", "34151", "0"])
        self.assertEqual(self.saved["copy.jpg"], JPEG)
        self.assertNotIn("other", self.saved)

    def test_large_files_and_long_paths(self):
        deep = "\\\\".join(["d" * 60] * 5)
        lines = self.run_script("""
var slide = New("MmsSlide");
slide.AddAttachment(folder + "\\\\limit.bin"); Say(slide.LastError);
slide.AddAttachment(folder + "\\\\large.bin"); Say(slide.LastError, slide.CountAttachments());
""", {"limit.bin": bytes(1 << 26), "large.bin": bytes((1 << 26) + 1)})
        self.assertEqual(lines, ["0", "34137|1"])
        with wine.folder() as path:
            long = path.joinpath(*["d" * 60] * 5)
            long.mkdir(parents=True)
            (long / "a.jpg").write_bytes(JPEG)
            lines = wine.lines_of(HELPERS + f"""
var slide = New("MmsSlide");
slide.AddAttachment(folder + "\\\\{deep}\\\\a.jpg"); Say(slide.LastError, slide.GetAttachmentName(0));
slide.SaveAttachment(0, folder + "\\\\{deep}\\\\b.jpg"); Say(slide.LastError);
""", "js", wine.windows_path(path))
            self.assertEqual(lines, ["0|a.jpg", "0"])
            self.assertEqual((long / "b.jpg").read_bytes(), JPEG)

    def test_octets_of_every_kind_of_array(self):
        self.assertEqual(wine.lines_of("""
Dim slide, octets(2), i
octets(0) = 255 : octets(1) = 0 : octets(2) = 258
Set slide = CreateObject("Quorvane.MmsSlide")
slide.AddAttachmentData "a.txt", octets
slide.AddAttachmentData "b.txt", Array()
slide.AddAttachmentData "c.txt", "text"
slide.AddAttachmentData "", octets
slide.AddAttachmentData "C:\\folder\\d.gif", octets
WScript.Echo slide.LastError & " " & slide.GetTextCount() & " " & slide.GetAttachmentName(0)
For i = 0 To 2
    WScript.Echo Len(slide.GetText(i))
Next
WScript.Echo Asc(Mid(slide.GetText(0), 1, 1)) & " " & Asc(Mid(slide.GetText(0), 3, 1))
""", "vbs"), ["0 3 d.gif", "3", "0", "0", "255 2"])

    def test_a_message_goes_through_a_file(self):
        lines = self.run_script("""
var message = New("MmsMessage");
message.AddRecipient("+31612345678"); message.AddRecipient("a@b.org", 1); message.Subject = "\\u00DCber \\u20AC";
var slide = Slide("Gr\\u00FC\\u00DFe");
slide.Duration = 7;
slide.AddAttachment(folder + "\\\\a.jpg");
message.AddSlide(slide);
slide.Clear();  // the message has a copy
message.AddSlide(Slide("two"));
var first = message.GetFirstSlide(), second = message.GetNextSlide();
Say(first.ID, first.Duration, first.GetTextCount(), first.CountAttachments(), second.ID, second.Duration);
first.Clear();
message.SaveToFile(folder + "\\\\m.mms", 2); Say(message.LastError, message.TransactionId.length);
var loaded = New("MmsMessage");
loaded.LoadFromFile(folder + "\\\\m.mms");
Say(loaded.LastError, loaded.Subject == message.Subject, loaded.GetFirstRecipient(0), loaded.GetFirstRecipient(1));
slide = loaded.GetFirstSlide();
Say(slide.GetTextCount(), Hex(slide.GetText(0)), slide.CountAttachments(), slide.GetAttachmentName(0));
slide.SaveAttachment(0, folder + "\\\\copy.jpg"); Say(slide.LastError);
loaded.GetNextSlide(); Say(loaded.LastError);
loaded.EncodedMessage = message.EncodedMessage; loaded.DecodeMessage(); Say(loaded.LastError, loaded.GetFirstSlide().GetTextCount());
""", {"a.jpg": JPEG})
        self.assertEqual(lines, ["1|7|1|1|2|5", "0|8", "0|true|+31612345678|a@b.org", "2|4772c3bcc39f6500|1|a.jpg", "0",
                                 "34161", "0|2"])
        self.assertEqual(self.saved["copy.jpg"], JPEG)
        self.assertTrue(self.saved["m.mms"].startswith(b"\x8c\x84\x98"))

    def test_the_type_of_a_file_comes_from_the_registry(self):
        lines = self.run_script("""
var shell = new ActiveXObject("WScript.Shell");
shell.RegWrite("HKCR\\\\.mmstest\\\\Content Type", "x-test/registered");
var message = New("MmsMessage"), slide = New("MmsSlide");
message.AddRecipient("a@b.org");
slide.AddAttachmentData("a.mmstest", null);
message.AddSlide(slide); message.EncodeMessage();
Say(message.EncodedMessage.indexOf("x-test/registered\\0") > 0);
""")
        wine.run("reg", "delete", r"HKCR\.mmstest", "/f")
        self.assertEqual(lines, ["true"])


NOTIFICATION = b"\x8c\x82\x98n1\0\x8d\x90\x89\x18\x80+31600000001/TYPE=PLMN\0\x8a\x80\x8e\x02\x75\x30\x88%b\x83http://mmsc/n1\0"
REPORT = b"\x8c\x86\x8d\x90\x8bM-1\0\x97+31600000002/TYPE=PLMN\0\x85\x04\x65\x53\xf1\0\x95\x81"
SHOWN = ["74|M-NOTIFICATION-IND URL=http://mmsc/n1 ID=n1 FROM=+31600000001 SIZE=30000 EXPIRATION=1700003600",
         "74|M-DELIVERY-IND ID=M-1 TO=+31600000002 DATE=1700000000 STATUS=81", "74|WAP/WSP message"]


def push(unit):
    return b"\1\6\1\xbe" + unit


class Pushes(unittest.TestCase):
    """What an MMS centre announces by SMS, through both channels."""
    WALK = """
for (var message = channel.GetFirstMessage(); channel.LastError == 0; message = channel.GetNextMessage())
    WScript.Echo(message.Format + "|" + message.Data);
"""

    def test_gsm(self):
        def pdu(unit):  # at 1700000000
            data = bytes.fromhex("0605040B8423F0") + push(unit)
            return f"pdu SM 00440B911316111111F10004{'32114122310200'}{len(data):02X}{data.hex()}"

        relative = b"\x04\x81\x02\x0e\x10"
        messages = [pdu(NOTIFICATION % relative), pdu(REPORT), pdu(REPORT[:-3])]
        with wine.modem(wine.PORTS["mms"], *(word for message in messages for word in ("--message", message))) as modem:
            self.assertEqual(wine.lines_of("""
var channel = new ActiveXObject("Quorvane.SmsProtocolGsm");
channel.Device = WScript.Arguments.Item(0);
channel.Receive();
""" + self.WALK, "js", modem.com), SHOWN)

    def test_smpp(self):
        absolute = b"\x06\x80\x04\x65\x53\xff\x10"
        units = [NOTIFICATION % absolute, REPORT, REPORT[:-3]]
        with wine.smsc(*(word for unit in units for word in ("--deliver", f"push +31611111111 {push(unit).hex()}"))) as server:
            self.assertEqual(wine.lines_of("""
var channel = new ActiveXObject("Quorvane.SmsProtocolSmpp");
channel.Server = "127.0.0.1"; channel.ServerPort = WScript.Arguments.Item(0);
channel.Connect();
for (var i = 0; i < 100 && channel.CountReceivedMessages() < 3; ++i) channel.Sleep(100);
""" + self.WALK + "channel.Disconnect();", "js", server.port), SHOWN)


class Examples(unittest.TestCase):
    def test_build_and_list(self):
        with wine.folder() as path:
            (path / "a.jpg").write_bytes(JPEG)
            (path / "b.gif").write_bytes(b"GIF89a")
            files = [wine.windows_path(path / name) for name in ("m.mms", "a.jpg", "b.gif")]
            code, output = wine.script(EXAMPLES / "build.vbs", files[0], "+31612345678", "Fête à l'hôtel", *files[1:])
            self.assertEqual(code, 0, output)
            self.assertRegex(output, r"^Saved \d+ octets, transaction [0-9A-F]{8}\n$")
            code, output = wine.script(EXAMPLES / "list.js", files[0], wine.windows_path(path))
            folder = wine.windows_path(path)
            self.assertEqual((code, output.splitlines()), (0, [
                "From: +31600000001", "Subject: Pictures", "To: +31612345678", "Text: Fête à l'hôtel", "Attachment: a.jpg",
                f"Saved: {folder}\\attachment1.jpg", "Attachment: b.gif", f"Saved: {folder}\\attachment2.gif"]))
            self.assertEqual((path / "attachment1.jpg").read_bytes(), JPEG)
            self.assertEqual((path / "attachment2.gif").read_bytes(), b"GIF89a")
            code, output = wine.script(EXAMPLES / "list.js", files[0], folder + "\\none")
            self.assertEqual((code, len(re.findall(r"^Not saved: \w", output, re.MULTILINE))), (1, 2))
            code, output = wine.script(EXAMPLES / "list.js", files[1])
            self.assertEqual((code, output), (1, "Failed: 33763 MMSC response: corrupt message format\n"))

    def test_permission(self):
        with wine.folder() as path:
            (path / "a.jpg").write_bytes(JPEG)
            code, output = wine.script(EXAMPLES / "permission.vbs", wine.windows_path(path / "m.mms"), "a@b.org",
                                       wine.windows_path(path / "a.jpg"), "3")
            self.assertEqual((code, output), (0, "Saved with a.jpg.dm\n"))
            self.assertIn(b"<o-dd:display>\r\n<o-ex:constraint>\r\n<o-dd:count>3</od-dd:count>\r\n",
                          (path / "m.mms").read_bytes())


if __name__ == "__main__":
    unittest.main()
