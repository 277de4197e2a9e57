"""The GSM channel of the registered module, from scripts, against the lab's modem."""
import json
import pathlib
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import wine  # noqa: E402

EXAMPLES = wine.ROOT / "examples/gsm"
BASE = wine.PORTS["gsm"]

HEAD = """
Set gsm = CreateObject("Quorvane.SmsProtocolGsm")
gsm.Device = WScript.Arguments(0)
Set message = CreateObject("Quorvane.SmsMessage")
message.Recipient = "+31612345678"
message.Data = "hello"
Sub Result(what)
    WScript.Echo what & "|" & gsm.LastError
End Sub
"""


JS_HEAD = """
var gsm = new ActiveXObject("Quorvane.SmsProtocolGsm");
gsm.Device = WScript.Arguments.Item(0);
var message = new ActiveXObject("Quorvane.SmsMessage");
function Result(what) { WScript.Echo(what + "|" + gsm.LastError); }
"""


def run_script(modem, body, kind="vbs"):
    """What the script printed, and the seconds that it took."""
    started = time.time()
    lines = wine.lines_of((HEAD if kind == "vbs" else JS_HEAD) + body, kind, modem.com)
    return lines, time.time() - started


class Examples(unittest.TestCase):
    def test_send(self):
        long_text = "A long text with [brackets]. " * 12
        for number, (kind, text, parts) in enumerate([("vbs", "Short", 1), ("js", long_text, 3)]):
            with self.subTest(kind), wine.modem(BASE + number) as modem:
                code, output = wine.script(EXAMPLES / f"send.{kind}", modem.com, "+31612345678", text)
                self.assertEqual((code, output), (0, "Sent, reference " + ";".join(map(str, range(17, 17 + parts))) + "\n"))
                self.assertEqual("".join(entry["text"] for entry in modem.submitted()), text)
                for entry in modem.submitted():
                    self.assertEqual(entry["announced"], entry["length"] - 1)

    def test_no_letter_is_lost(self):
        rows = [(name, text) for name in ("send.vbs", "send.js", "report.vbs", "report.js", "gsm_example.exe")
                for text in (wine.GSM_TEXT, wine.UNICODE_TEXT)]
        for name, text in rows:
            with self.subTest(name, text=text), wine.modem(BASE + 12) as modem:
                if name.endswith(".exe"):
                    code, output = wine.run(name, "send", modem.com, "+31612345678", text)
                else:
                    code, output = wine.script(EXAMPLES / name, modem.com, "+31612345678", text, "10")
                self.assertEqual((code, output.split("\n")[0]), (0, "Sent, reference 17"))
                sent, = modem.submitted()
                coding = "GSM 7-bit" if text == wine.GSM_TEXT else "UCS-2"
                self.assertEqual((sent["coding"], sent["text"]), (coding, text))

    def test_receive(self):
        for number, kind in enumerate(["vbs", "js"]):
            with self.subTest(kind), wine.modem(BASE + 2 + number, "--message", "text SM +31611111111 One",
                                                "--message", "parts ME +31622222222 3,1,2 In three parts, out of order",
                                                "--message", "ucs2 ME +31633333333 Grüße") as modem:
                code, output = wine.script(EXAMPLES / f"receive.{kind}", modem.com, "2", "10")
                self.assertEqual(code, 0)
                self.assertEqual(output.split("\n")[:3], ["From +31611111111: One", "From +31633333333: Grüße",
                                                          "From +31622222222: In three parts, out of order"])
                self.assertEqual(output.count("From"), 3)
                self.assertEqual(modem.commands().count("AT+CMGD=1"), 2)
                self.assertEqual(modem.commands().count("AT+CMGL=0"), 2 * 2)  # in each round both storages

    def test_receive_tells_what_failed(self):
        for number, kind in enumerate(["vbs", "js"]):
            with self.subTest(kind), wine.modem(BASE + 17 + number, "--message", "text SM +31611111111 One",
                                                rules=[{"match": "AT+CMGD", "do": "error"}]) as modem:
                self.assertEqual(wine.script(EXAMPLES / f"receive.{kind}", modem.com),
                                 (1, "From +31611111111: One\nDeleteAllMessages failed: 30352 Error response from modem\n"))

    def test_report(self):
        for number, (kind, status, text) in enumerate([("vbs", "00", "Delivered"), ("js", "46", "Expired")]):
            with self.subTest(kind), wine.modem(BASE + 4 + number, "--report-status", status) as modem:
                code, output = wine.script(EXAMPLES / f"report.{kind}", modem.com, "+31612345678", "Hi", "10")
                self.assertEqual(code, 0)
                self.assertIn(f"Sent, reference 17\nStatus: {text}\nCompleted: ", output)

    def test_pin(self):
        for number, kind in enumerate(["vbs", "js"]):
            with self.subTest(kind), wine.modem(BASE + 6 + number, "--pin", "1234") as modem:
                self.assertEqual(wine.script(EXAMPLES / f"pin.{kind}", modem.com, "9999"),
                                 (1, "33142 PIN code entered is invalid\n"))
                self.assertEqual(wine.script(EXAMPLES / f"pin.{kind}", modem.com, "1234"), (0, "0 Success\n"))

    def test_cpp(self):
        with wine.modem(BASE + 8, "--message", "text SM +31611111111 One") as modem:
            self.assertEqual(wine.run("gsm_example.exe", "receive", modem.com), (0, "From +31611111111: One\n"))
            self.assertEqual(wine.run("gsm_example.exe", "report", modem.com, "+31612345678", "Hi"),
                             (0, "Sent, reference 17\nStatus: Delivered\n"))


class Dialogue(unittest.TestCase):
    def test_every_format_arrives(self):
        rows = [
            ("0", "plain é@", None, {"coding": "GSM 7-bit", "text": "plain é@", "flash": False}),
            ("1", "flash", None, {"coding": "GSM 7-bit", "flash": True}),
            ("20", "中文 é", None, {"coding": "UCS-2", "text": "中文 é"}),
            ("21", "uni", None, {"coding": "UCS-2", "flash": True}),
            ("10", "00FF", None, {"coding": "8-bit data", "data": "00FF"}),
            ("11", "0605040B8423F0AB", None, {"header": "05040B8423F0", "data": "AB", "port": 2948}),
            ("0", "to a port", ":2948", {"port": 2948, "text": "to a port"}),
        ]
        body = ""
        for form, text, port, _ in rows:
            body += (f"message.Format = {form}; message.Data = {json.dumps(text)};\n"
                     f'message.Recipient = "+31612345678{port or ""}"; Result(gsm.Send(message));\n')
        with wine.modem(BASE + 9) as modem:
            lines, _ = run_script(modem, body, "js")
            self.assertEqual(lines, [f"{17 + i}|0" for i in range(len(rows))])
            for (form, _, _, wanted), got in zip(rows, modem.submitted()):
                self.assertEqual({key: got.get(key) for key in wanted}, wanted, form)

    def test_misbehaviour_costs_bounded_time_and_a_clear_code(self):
        rows = [  # rules, action, expected lines, seconds at the most
            ("flood", [{"match": "AT+CMGF=?", "do": "flood", "ms": 9000, "text": "RING"}], "Result gsm.Send(message)",
             ["|30350"], 12),
            ("split", [{"match": "AT", "do": "split", "ms": 5}], "Result gsm.Send(message)", ["17|0"], 20),
            ("garbage", [{"match": "AT+C", "do": "garbage", "text": "\x00\xff#?"}], "Result gsm.Send(message)",
             ["17|0"], 20),
            ("lost end", [{"match": "PDU", "nth": [1], "do": "lost-end"}],
             "Result gsm.Send(message)\nResult gsm.Send(message)", ["|30350", "17|0"], 30),
            ("hang up", [{"match": "AT+CMGF=0", "do": "hangup"}], "Result gsm.Send(message)", None, 15),
        ]
        for name, rules, body, wanted, limit in rows:
            with self.subTest(name), wine.modem(BASE + 10, rules=rules) as modem:
                lines, seconds = run_script(modem, body)
                self.assertLess(seconds, limit + 20)
                if wanted is not None:
                    self.assertEqual(lines, wanted)
                else:
                    self.assertNotEqual(lines[0].split("|")[1], "0")

    def test_a_modem_as_it_is_gets_what_a_good_one_gets(self):
        body = ('message.Recipient = "+31612345678"; message.Format = 21; message.Data = "\\u4e2d";\n'
                "message.RequestDeliveryStatus = true;\nResult(gsm.Send(message)); Result(gsm.Receive());\n")
        opening = ["ATE0", "AT+CMEE=1", "AT+CPMS=?", "AT+CMGF=?"]
        commands = opening + ["AT+CMGF=0", "AT+CNMI=?", "AT+CNMI=0,0,0,2,0", "AT+CMGS=15"] + opening
        for storage in ("SM", "ME"):
            commands += ["AT+CMGF=0", f'AT+CPMS="{storage}"', "AT+CMGL=1", "AT+CMGL=0"]
            if storage == "SM":
                commands += ['AT+CPMS="SM"', "AT+CMGD=1"]  # the report
        rows = [  # options, rules, seconds at the most
            ("unsolicited", [], [{"match": "AT", "do": "unsolicited", "text": "^RSSI: 20"},
                                 {"match": "PDU", "do": "unsolicited", "text": '+CMTI: "SM",9'}], 5),
            ("by a timer", ["--every", "30", "--unsolicited", '+CLIP: "Brooke",129'], [], 5),
            ("line feeds", ["--line-end", "lf"], [], 5),
            ("carriage returns", ["--line-end", "cr"], [], 5),
            ("late OK", [], [{"match": "AT+CMGF=?", "do": "late-end", "ms": 2500},
                             {"match": "AT+CNMI=?", "do": "late-end", "ms": 800}], 15),
            ("no line end", [], [{"match": "PDU", "do": "no-end"}], 8),
            ("echo", [], [{"match": "ATE0", "do": "keep-echo"}], 5),
        ]
        for name, options, rules, limit in rows:
            options = ["--storages", "SM,ME", "--message", "text ME +31611111111 One", *options]
            with self.subTest(name), wine.modem(BASE + 13, *options, rules=rules) as modem:
                lines, seconds = run_script(modem, body, "js")
                self.assertEqual(lines, ["17|0", "1|0"])
                self.assertEqual(modem.commands(), commands)
                sent, = modem.submitted()
                self.assertEqual((sent["coding"], sent["text"], sent["flash"], sent["report"]),
                                 ("UCS-2", "\u4e2d", True, True))
                self.assertLess(seconds, limit + 20)

    def test_pins_stay_secret_and_are_refused_when_the_modem_refuses(self):
        late = [{"match": "AT+CPIN?", "do": "late-end", "ms": 2500}, {"match": "AT+CPIN=", "do": "delay", "ms": 1500}]
        for rules in ([], late):
            with self.subTest(rules), wine.folder() as path, wine.modem(BASE + 14, "--pin", "1234", rules=rules) as modem:
                log, activity = path / "gsm.log", path / "gsm.ini"
                lines, _ = run_script(modem, f'gsm.LogFile = "{wine.windows_path(log)}"\n'
                                             f'gsm.ActivityFile = "{wine.windows_path(activity)}"\n'
                                             'Result gsm.EnterPin("9876")\nResult gsm.EnterPin("9876")\n'
                                             'gsm.DeviceInitString = "AT+CPIN=""9876"""\nResult gsm.Receive()\n')
                self.assertEqual(lines[:2], ["|33142"] * 2)
                for file in (log, activity):
                    text = file.read_text("latin-1")
                    self.assertIn("AT+CPIN=", text)
                    self.assertNotIn("9876", text)

    def test_a_line_that_takes_nothing_costs_the_time_of_the_command(self):
        with wine.modem(BASE + 15, rules=[{"match": "connect", "do": "block", "ms": 20000}]) as modem:
            body = ('var started = new Date(); gsm.SendCommand("AT", 1000);\n'
                    'Result(new Date() - started < 3000);\n')
            self.assertEqual(run_script(modem, body, "js")[0], ["true|30350"])

    def test_lists_that_lose_octets(self):
        messages = ["--message", "text SM +31611111111 hello", "--message", "text ME +31611111111 whole"]
        rules = [{"match": "AT+CMGL=0", "nth": [1], "do": "cut-pdu", "characters": 3}]
        with wine.modem(BASE + 16, *messages, rules=rules) as modem, wine.folder() as path:
            log = path / "gsm.log"
            lines, _ = run_script(modem, f'gsm.LogFile = "{wine.windows_path(log)}"\nResult gsm.Receive()\n'
                                         "WScript.Echo gsm.GetMessage(0).Data\n")
            self.assertEqual(lines, ["1|0", "whole"])
            self.assertIn("Message at memory location [1] was cut on its way", log.read_text("latin-1"))

    def test_log_and_activity_files(self):
        with wine.folder() as path, wine.modem(BASE + 11) as modem:
            log, activity = path / "gsm.log", path / "gsm.ini"
            lines, _ = run_script(modem, f'gsm.LogFile = "{wine.windows_path(log)}"\n'
                                     f'gsm.ActivityFile = "{wine.windows_path(activity)}"\n'
                                     "message.ValidityPeriod = 60\nResult gsm.Send(message)\n")
            self.assertEqual(lines, ["17|0"])
            text = log.read_bytes().decode("latin-1")
            self.assertRegex(text, r"^\[\d\d:\d\d:\d\d\]  OPEN DEVICE   \[Velqar Build 5\.3\.10\.1123 \(x64\)\], "
                                   rf"device=\[{modem.com}\], baudrate=\[115200\], result=\[Success\]\r\n\r\n")
            for line in ("RECIPIENT ADDRESS : +31612345678", "MESSAGE FORMAT    : TEXT", "VALIDITY PERIOD   : 60 min",
                         "WRITE STRING, string=[AT+CMGS=19]", "READ STRING,  string=[+CMGS: 17]", "CLOSE DEVICE"):
                self.assertIn(f"]  {line}\r\n", text)
            ini = activity.read_bytes().decode("latin-1")
            self.assertTrue(ini.startswith("[Init]\r\nInitialized=1\r\nNextEntry="), ini[:60])
            self.assertRegex(ini, rf"\[Log\]\r\n00000000\|\[..:..:..\]  Open Device \({modem.com}\), Result = Success\r\n")
            self.assertIn("Reply: [+CMGS: 17]", ini)


if __name__ == "__main__":
    unittest.main()
