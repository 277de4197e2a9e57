"""The dial-up channel of the registered module, from scripts, against the lab's modem and the providers behind it."""
import pathlib
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import wine  # noqa: E402

EXAMPLES = wine.ROOT / "examples/dialup"
BASE = wine.PORTS["dialup"]

HEAD = """
var constants = new ActiveXObject("Quorvane.SmsConstants");
var dialup = new ActiveXObject("Quorvane.SmsProtocolDialup");
dialup.Device = WScript.Arguments.Item(0);
dialup.ProviderDialString = "0201234567";
var message = new ActiveXObject("Quorvane.SmsMessage");
message.Sender = "1234";
message.Recipient = "0612345678";
message.Data = "Caf\\u00e9";
function Send(what) { dialup.Send(what); WScript.Echo(dialup.LastError + "|" + dialup.ProviderResponse); }
"""
TAP = "dialup.ProviderType = constants.asPROVIDERTYPE_TAP_DEFAULT;"
STAMP = "A/0612345678:010203040506"


def taken(modem):
    return [(entry["provider"], entry["to"], entry["text"]) for entry in modem.entries("provider")]


class Examples(unittest.TestCase):
    def test_each_sends_a_message_or_says_why_not(self):
        rows = [("send.vbs", "ucp", STAMP), ("send.js", "tap", "211 Page accepted"), ("dialup_example.exe", "TAP", "211 Page accepted")]
        for number, (name, kind, answer) in enumerate(rows):
            for text, wanted in (("Hi", (0, f"Answer: {answer}\n")), ("x" * 161, (1, "ailed: 34033 SMS message is too long.*"))):
                options = ("--provider", kind.lower(), "--provider-password", "secret")
                with self.subTest(name, text=text), wine.modem(BASE + number, *options) as modem:
                    arguments = (modem.com, kind, "0201234567", "0612345678", text, "secret")
                    code, output = wine.run(name, *arguments) if name.endswith(".exe") else \
                        wine.script(EXAMPLES / name, *arguments)
                    self.assertEqual(code, wanted[0])
                    self.assertRegex(output, wanted[1])
                    self.assertEqual(taken(modem), [(kind.upper(), "0612345678", "Hi")] if code == 0 else [])


class Channel(unittest.TestCase):
    def test_messages_over_both(self):
        with wine.modem(BASE + 5, "--provider-echo") as modem:
            lines = wine.lines_of(HEAD + """
dialup.DeviceInitString = "ATM0;ATX3";
Send(message); message.Data = "Again"; Send(message);
""", "js", modem.com)
            self.assertEqual(lines, [f"0|{STAMP}"] * 2)
            self.assertEqual(taken(modem), [("UCP", "0612345678", "Caf\xe9"), ("UCP", "0612345678", "Again")])
            self.assertEqual([entry["from"] for entry in modem.entries("provider")], ["1234"] * 2)
            self.assertEqual(modem.commands(), ["ATM0", "ATX3", "ATE0", "ATD0201234567"] * 2)
        rules = [{"match": event, "do": "parity"} for event in ("ID", "PG1", "BLOCK", "EOT")]
        with wine.modem(BASE + 6, "--provider", "tap", "--provider-echo", rules=rules) as modem:
            lines = wine.lines_of(HEAD + TAP + 'message.Data = "Down"; dialup.ProviderDialMode = 1; Send(message);', "js", modem.com)
            self.assertEqual(lines, ["0|211 Page accepted"])
            self.assertEqual(taken(modem), [("TAP", "0612345678", "Down")])
            self.assertEqual(modem.commands()[-1], "ATDP0201234567")

    def test_values_that_are_none(self):
        with wine.modem(BASE + 7) as modem, wine.folder() as path:
            file = wine.windows_path(path / "provider.ini").replace("\\", "\\\\")
            lines = wine.lines_of(HEAD + f"""
Send(null); Send(17); Send(dialup); Send(new ActiveXObject("Quorvane.PagerMessage"));
message.Data = new Array(162).join("x"); Send(message);
message.Data = "x"; message.Recipient = "Home"; Send(message);
message.Recipient = "1"; dialup.ProviderDialString = ""; Send(message);
dialup.ProviderDialString = "1"; dialup.Device = "COM199"; Send(message);
dialup.ProviderPassword = "pw"; dialup.ProviderSpeed = 300; dialup.ProviderType = 3; dialup.ProviderSettingsID = 2;
dialup.ProviderSaveConfig("{file}"); WScript.Echo(dialup.LastError);
dialup.Clear();
WScript.Echo([dialup.Device, dialup.ProviderDialString, dialup.ProviderPassword, dialup.ProviderSpeed, dialup.ProviderType].join());
dialup.ProviderLoadConfig("{file}");
WScript.Echo([dialup.LastError, dialup.ProviderDialString, dialup.ProviderPassword, dialup.ProviderSpeed, dialup.ProviderType,
              dialup.ProviderSettingsID].join());
dialup.ProviderLoadConfig("no such file"); WScript.Echo(dialup.LastError);
WScript.Echo(dialup.GetDeviceCount() + "|" + dialup.GetDevice(1000) + "|" + dialup.LastError);
""", "js", modem.com)
            self.assertEqual(lines, ["34141|"] * 4 + ["34033|", "34031|", "34010|", "30104|", "0", ",,,0,0", "0,1,pw,300,3,2", "33050",
                                                      "0||30201"])
            self.assertEqual(modem.commands(), [])

    def test_calls_that_fail(self):
        dial = {"match": "ATD", "do": "reply"}
        for kind, rule, code, longest in [
            ("ucp", dial | {"text": "BUSY"}, 30351, 10), ("ucp", dial | {"text": "NO CARRIER"}, 30351, 10),
            ("ucp", dial | {"text": "NO ANSWER"}, 30351, 10),
            ("ucp", {"match": "UCP", "do": "refuse", "text": "07"}, "33463|N/07", 15),
            ("ucp", {"match": "UCP", "do": "garbage", "hex": "7F7E03"}, f"0|{STAMP}", 15),
            ("ucp", {"match": "UCP", "do": "instead", "hex": "02787903"}, 33462, 15),
            ("ucp", {"match": "UCP", "do": "split", "ms": 20}, f"0|{STAMP}", 15),
            ("tap", {"match": "BLOCK", "do": "refuse", "text": "INVALID PAGER"}, "34031|INVALID PAGER", 30),
            ("tap", {"match": "BLOCK", "do": "refuse", "text": "not allowed"}, "33503|not allowed", 30),
            ("tap", {"match": "BLOCK", "do": "instead", "hex": "150D"}, 33505, 30),
            ("tap", {"match": "EOT", "do": "silence"}, "0|211 Page accepted", 40),
        ]:
            with self.subTest(rule, kind=kind), wine.modem(BASE + 8, "--provider", kind, rules=[rule]) as modem:
                started = time.time()
                line, = wine.lines_of(HEAD + (TAP if kind == "tap" else "") + "message.Data = 'x'; Send(message);", "js", modem.com)
                self.assertLess(time.time() - started, longest + 20)
                self.assertEqual(line, code if isinstance(code, str) else f"{code}|")


if __name__ == "__main__":
    unittest.main()
