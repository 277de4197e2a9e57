"""The SMPP channel of the registered module, from scripts, against the lab's SMSC."""
import json
import pathlib
import re
import subprocess
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import wine  # noqa: E402
from wine import smsc  # noqa: E402

EXAMPLES = wine.ROOT / "examples/smpp"

HEAD = """
var smpp = new ActiveXObject("Quorvane.SmsProtocolSmpp");
smpp.Server = "127.0.0.1";
smpp.ServerPort = Number(WScript.Arguments.Item(0));
smpp.SystemID = "test";
function Message(text) {
    var message = new ActiveXObject("Quorvane.SmsMessage");
    message.Recipient = "+31612345678";
    message.Data = text;
    message.RequestDeliveryStatus = true;
    return message;
}
function Show(what) { WScript.Echo(what + "|" + smpp.LastError); }
"""


def run_script(server, body):
    """What the script printed, and the seconds that it took."""
    started = time.time()
    lines = wine.lines_of(HEAD + body, "js", server.port)
    return lines, time.time() - started


class Examples(unittest.TestCase):
    def test_send(self):
        for kind in ("vbs", "js"):
            with self.subTest(kind), smsc("--password", "secret") as server:
                arguments = ("127.0.0.1", server.port, "me")
                self.assertEqual(wine.script(EXAMPLES / f"send.{kind}", *arguments, "wrong", "+31612345678", "Hi"),
                                 (1, "Connect failed: 33204 Invalid Password specified\n"))
                self.assertEqual(wine.script(EXAMPLES / f"send.{kind}", *arguments, "secret", "+31612345678", "Hi"),
                                 (0, "Status: Delivered\n"))

    def test_receive(self):
        for kind in ("vbs", "js", "cpp"):
            with self.subTest(kind), smsc("--deliver", "+31611111111 One",
                                          "--deliver", "parts:3,1,2 +31622222222 In three parts") as server:
                arguments = ("127.0.0.1", server.port, "me", "pw", "1")
                done = (wine.run("smpp_example.exe", "receive", *arguments) if kind == "cpp" else
                        wine.script(EXAMPLES / f"receive.{kind}", *arguments))
                self.assertEqual(done, (0, "From +31611111111: One\nFrom +31622222222: In three parts\n"))

    def test_cpp_send(self):
        with smsc("--password", "secret") as server:
            arguments = ("smpp_example.exe", "send", "127.0.0.1", server.port, "me")
            self.assertEqual(wine.run(*arguments, "wrong", "+31612345678", "Hi"),
                             (1, "Failed: 33204 Invalid Password specified\n"))
            self.assertEqual(wine.run(*arguments, "secret", "+31612345678", "Hi"), (0, "Status: Delivered\n"))
            self.assertEqual(wine.run(*arguments, "secret", "nobody", "Hi"),
                             (1, "Failed: 34031 Invalid recipient address\n"))


    def test_no_letter_is_lost(self):
        rows = [(name, text) for name in ("send.vbs", "send.js", "smpp_example.exe")
                for text in (wine.GSM_TEXT, wine.UNICODE_TEXT)]
        for name, text in rows:
            with self.subTest(name, text=text), smsc("--alphabet", "gsm") as server:
                arguments = ("127.0.0.1", server.port, "me", "pw", "+31612345678", text)
                done = (wine.run(name, "send", *arguments) if name.endswith(".exe") else
                        wine.script(EXAMPLES / name, *arguments))
                self.assertEqual(done, (0, "Status: Delivered\n"))
                sent, = server.submitted()
                self.assertEqual((sent["data_coding"], sent["text"]), (0 if text == wine.GSM_TEXT else 8, text))

    def test_letters_come_in(self):
        for kind in ("vbs", "js"):
            with self.subTest(kind), smsc("--alphabet", "gsm", "--deliver", "+31611111111 Grüße @ [é]") as server:
                self.assertEqual(wine.script(EXAMPLES / f"receive.{kind}", "127.0.0.1", server.port, "me", "pw", "1"),
                                 (0, "From +31611111111: Grüße @ [é]\n"))


class NetSmpp(unittest.TestCase):
    """A server made with the Net::SMPP of Perl."""

    def test_a_whole_session(self):
        server = subprocess.Popen(["perl", pathlib.Path(__file__).with_name("smpp_server.pl")], stdout=subprocess.PIPE, text=True)
        try:
            lines = wine.lines_of(HEAD + """
smpp.SystemPassword = "secret";
smpp.DeliveryReportFormat = 1;
smpp.Connect(); Show(smpp.IsConnected);
var message = Message("Hello");
var status = smpp.QueryStatus(smpp.Send(message), true);
Show(status.StatusDescription);
message.Data = "\\u041f"; message.Format = 22; message.RequestDeliveryStatus = false;
Show(smpp.Send(message) != "");
var waited = 0;
do { smpp.Sleep(10); message = smpp.GetFirstMessage(); } while (smpp.LastError != 0 && ++waited < 500);
Show(message.Sender + " " + message.Data);
smpp.Disconnect(); Show(smpp.IsConnected);
""", "js", server.stdout.readline().strip())
            got = list(map(json.loads, server.communicate(timeout=10)[0].splitlines()))
        finally:
            server.kill()
            server.wait()
        self.assertEqual(lines, ["-1|0", "Delivered|0", "true|0", "+31611111111 Hello from Perl|0", "0|0"])
        submit = {"pdu": "submit_sm", "status": 0, "source_addr": "", "destination_addr": "31612345678", "dest_addr_ton": 1,
                  "dest_addr_npi": 1, "esm_class": 0}
        wanted = [
            {"pdu": "bind_transceiver", "status": 0, "system_id": "test", "password": "secret", "interface_version": 0x34},
            {"pdu": "deliver_sm_resp", "status": 0},
            {"pdu": "deliver_sm_resp", "status": 0},
            submit | {"registered_delivery": 1, "data_coding": 0, "text": b"Hello".hex()},
            submit | {"registered_delivery": 0, "data_coding": 8, "text": "041f"},
            {"pdu": "unbind", "status": 0},
        ]
        self.assertCountEqual(got, wanted)
        self.assertEqual([pdu["pdu"] for pdu in got][::len(got) - 1], ["bind_transceiver", "unbind"])


class Session(unittest.TestCase):
    def test_every_kind_of_receipt_is_matched(self):
        decimal = ["--receipt-ids", "dec"]
        for format, options in ((0, []), (0, ["--ids", "dec"]), (1, decimal), (0, [*decimal, "--first-id", "1000000"]),
                                (0, ["--receipt-ids", "hex"]), (0, ["--receipts", "tlv"]), (0, ["--seconds"]), (0, ["--early"])):
            with self.subTest(options), smsc(*options) as server:
                lines, _ = run_script(server, f"smpp.DeliveryReportFormat = {format};" + """
smpp.Connect(); Show(smpp.IsConnected);
var reference = smpp.Send(Message(new Array(40).join("A long text. ")));
var status = smpp.QueryStatus(reference, true);
Show(status.StatusDescription + " " + reference.split(";").length);
smpp.Disconnect(); Show(smpp.IsConnected);
""")
                self.assertEqual(lines, ["-1|0", "Delivered 4|0", "0|0"])
                text = "".join(entry["text"] for entry in server.submitted())
                self.assertEqual(text, "A long text. " * 39)

    def test_statuses_and_misbehaviour(self):
        rows = [
            ("throttled", [{"match": "submit_sm", "do": "status", "status": 0x58}], "Rejected 88|0", 5),
            ("nack", [{"match": "submit_sm", "do": "nack"}], "Rejected 3|0", 5),
            ("bytewise", [{"match": "submit_sm", "do": "bytewise"}], "Enroute 0|33206", 8),
            ("garbage", [{"match": "submit_sm", "do": "garbage", "hex": "0000000500"}], "Failed 33205|0", 5),
            ("disconnect", [{"match": "submit_sm", "do": "disconnect"}], "Failed 33205|0", 5),
            ("silent unbind", [{"match": "unbind", "do": "silence"}], "Enroute 0|33206", 10),
        ]
        for name, rules, wanted, limit in rows:
            with self.subTest(name), smsc("--receipts", "none", rules=rules) as server:
                lines, seconds = run_script(server, """
smpp.ServerTimeout = 3000; smpp.Connect();
var status = smpp.QueryStatus(smpp.Send(Message("x")), true);
Show(status.StatusDescription + " " + status.StatusCode);
smpp.Disconnect();
""")
                self.assertEqual(lines, [wanted])
                self.assertLess(seconds, limit + 20)

    def test_connecting_fails_clearly(self):
        for name, rules, body, wanted in [
            ("silent bind", [{"match": "bind", "do": "silence"}], "", "33206"),
            ("dropped bind", [{"match": "bind", "do": "disconnect"}], "", "33201"),
            ("garbage bind", [{"match": "bind", "do": "garbage", "hex": "FFFFFFFFFFFF"}], "", "33202"),
            ("nacked bind", [{"match": "bind", "do": "nack"}], "", "33202"),
            ("refused", [{"match": "bind", "do": "status", "status": 13}], "", "33202"),
            ("version", [], "smpp.SystemVersion = 0x35;", "33209"),
            ("port", [], "smpp.ServerPort = 70000;", "22019"),
            ("server", [], "smpp.Server = '';", "22021"),
            ("nobody there", [], "smpp.ServerPort = 1;", "33201"),
            ("no such host", [], "smpp.Server = 'no.such.host.invalid';", "33201"),
        ]:
            with self.subTest(name), smsc(rules=rules) as server:
                lines, _ = run_script(server, body + "smpp.ServerTimeout = 3000; smpp.Connect(); Show(''); Show(smpp.Send(Message('x')));")
                self.assertEqual(lines[0], "|" + wanted)
                self.assertEqual(lines[1].split("|")[1], "33205")

    def test_tlvs_and_provider_files(self):
        with wine.folder() as path, smsc() as server:
            file = json.dumps(wine.windows_path(path / "provider.ini"))
            lines, _ = run_script(server, f"""
smpp.SetTLVValue(2, 0x020B, 2948); Show("");
smpp.SetTLVValue(4, 0x001D, "text"); Show("");
smpp.SetTLVValue(9, 1, 1); Show("");
smpp.SetTLVValue(1, 0x10000, 1); Show("");
smpp.SetTLVValue(1, 5, smpp); Show("");
smpp.SetTLVValue(2, 0x020B, null); Show("");
smpp.SetTLVValue(4, 6, undefined); Show("");
smpp.GetTLVValue(77); Show("");
Show(smpp.sysTLVRecordsTX);
smpp.SystemType = "kept"; smpp.ProviderSaveConfig({file}); Show("");
smpp.SystemType = ""; smpp.sysTLVRecordsTX = ""; smpp.ProviderLoadConfig({file}); Show(smpp.SystemType);
Show(smpp.sysTLVRecordsTX);
smpp.ProviderLoadConfig("c:\\\\none.ini"); Show("");
smpp.Send(smpp); Show("");
smpp.Connect(); var r = smpp.Send(Message("x")); smpp.QueryStatus(r, true); smpp.Disconnect();
""")
            self.assertEqual(lines, ["|0", "|0", "|33230", "|33231", "|33005", "|0", "|0", "|33232", "523;;2;;2948||29;;4;;text|||33232", "|0",
                                     "kept|0", "523;;2;;2948||29;;4;;text|||0", "|33050", "|34040"])
            self.assertEqual(server.entries("tlvs")[0]["tlvs"], {"020B": "0B84", "001D": "7465787400"})

    def test_statuses_tell_their_time_in_utc(self):
        with smsc() as server:
            lines, _ = run_script(server, """
smpp.Connect();
var status = smpp.QueryStatus(smpp.Send(Message("x")), true);
Show(status.StatusCompletedTime + "|" + status.StatusCompletedTimeSecs);
smpp.QueryStatus("FFFFFFFF", false); Show("");
smpp.Disconnect();
""")
            shown, seconds, code = lines[0].split("|")
            self.assertEqual((shown, code), (time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime(int(seconds))), "0"))
            self.assertEqual(lines[1], "|34050")
        with smsc("--receipts", "none") as server:
            lines, _ = run_script(server, """
smpp.Connect(); Show(smpp.QueryStatus(smpp.Send(Message("x")), false).StatusCompletedTime); smpp.Disconnect();
""")
            self.assertEqual(lines, ["n/a|0"])

    def test_many_connections_and_messages(self):
        with smsc("--quiet", "--receipts", "none") as server:
            lines, _ = run_script(server, """
var all = [];
for (var i = 0; i < 10; ++i) {
    var one = new ActiveXObject("Quorvane.SmsProtocolSmpp");
    one.Server = "127.0.0.1"; one.ServerPort = smpp.ServerPort; one.Connect();
    all.push(one);
}
var message = Message("x"); message.RequestDeliveryStatus = 0;
for (var n = 0; n < 20; ++n) for (var i = 0; i < 10; ++i) all[i].Send(message);
for (var i = 0; i < 10; ++i) { all[i].Disconnect(); if (all[i].LastError != 0) WScript.Echo("failed"); }
Show("done");
""")
            self.assertEqual(lines, ["done|0"])
            self.assertEqual(len(server.submitted()), 200)

    def test_a_thousand_connections_leave_nothing_behind(self):
        with smsc("--quiet") as server:
            command = [wine.IN_WINE, "connect_many.exe", server.port, "100", "900", "1"]
            process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                       stderr=subprocess.DEVNULL, text=True)
            try:
                looks = []
                for _ in range(2):
                    handle = int(process.stdout.readline())
                    proc = pathlib.Path("/proc", str(process.pid))
                    looks.append({"handle": handle, "threads": len(list((proc / "task").iterdir())),
                                  "files": len(list((proc / "fd").iterdir())),
                                  "KiB": int(re.search(r"VmRSS:\s+(\d+)", (proc / "status").read_text())[1])})
                    process.stdin.write("\n")
                    process.stdin.flush()
                early, late = looks
                self.assertGreater(early["threads"], 0)
                for what, slack in (("handle", 8), ("threads", 1), ("files", 1), ("KiB", 512)):
                    self.assertLessEqual(late[what], early[what] + slack, f"{what}: {looks}")
            finally:
                process.stdin.write("\n")
                process.communicate(timeout=60)


if __name__ == "__main__":
    unittest.main()
