"""The examples of whole tasks, against the lab: those in VBScript, JScript and C++."""
import pathlib
import re
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import wine  # noqa: E402

BASE = wine.PORTS["tasks"]
STAMP = "32114122310200"  # the time in a PDU
ONE, TWO, THREE = "+31611111111", "+31622222222", "+31633333333"


def each(folder, name):
    """The example in every language that runs here: its file, and how it is run."""
    for number, kind in enumerate(("vbs", "js", "exe")):
        def start(*arguments, kind=kind, **how):
            if kind == "exe":
                return wine.run(f"{name}_example.exe", *arguments, **how)
            return wine.script(wine.ROOT / f"examples/{folder}/{name}.{kind}", *arguments, **how)
        yield number, f"{name}.{kind}", start


class Alarm(unittest.TestCase):
    def test_the_first_who_confirms_has_it(self):
        refused = [{"match": "PDU", "nth": [1], "do": "error", "text": "+CMS ERROR: 21"}]
        for number, name, start in each("alarm", "alarm"):
            with self.subTest(name), wine.modem(BASE + number, rules=refused) as modem:
                code, output = start(modem.com, wine.GSM_TEXT, "nobody", ONE, TWO, THREE)
                lines = output.splitlines()
                self.assertEqual(lines[0], "Sending to nobody failed: 34031 Invalid recipient address")
                self.assertRegex(lines[1], rf"^Sending to \{ONE} failed: \d+ \w")
                self.assertEqual((code, lines[2:]), (0, [f"Sent to {TWO}, reference 17", f"{TWO}: Delivered",
                                                         f"Done: {TWO} has the alarm"]))
                sent, = modem.submitted()
                self.assertEqual((sent["to"], sent["text"], sent["report"]), (TWO, wine.GSM_TEXT, True))

    def test_a_report_that_is_no_delivery_does_not_count(self):
        for number, name, start in each("alarm", "alarm"):
            with self.subTest(name), wine.modem(BASE + 3 + number, "--report-status", "46") as modem:
                code, output = start(modem.com, wine.UNICODE_TEXT, ONE)
                self.assertEqual((code, output.splitlines()), (1, [f"Sent to {ONE}, reference 17", f"{ONE}: Expired",
                                                                   "Nobody has the alarm"]))
                sent, = modem.submitted()
                self.assertEqual((sent["coding"], sent["text"]), ("UCS-2", wine.UNICODE_TEXT))


class TwoWay(unittest.TestCase):
    def test_each_message_is_answered_once(self):
        stored = ["--message", f"text SM {ONE} Status?", "--message", f"parts ME {TWO} 2,1 A question in two parts",
                  "--message", f"ucs2 SM {THREE} Grüße"]
        refused = [{"match": "PDU", "nth": [2], "do": "error", "text": "+CMS ERROR: 21"}]
        for number, name, start in each("two-way", "answer"):
            with self.subTest(name), wine.modem(BASE + 6 + number, *stored, rules=refused) as modem:
                code, output = start(modem.com, wine.UNICODE_TEXT, 3, 10)
                lines = output.splitlines()
                self.assertEqual((code, lines[-1]), (0, "Done: 3 answered"))
                said = [f"From {ONE}: Status?", f"From {THREE}: Grüße", f"From {TWO}: A question in two parts"]
                failed, = [line for line in lines if "failed" in line]
                again = re.match(r"The answer to (\S+) failed: \d+ \w", failed)[1]
                self.assertCountEqual([line for line in lines[:-1] if line != failed],
                                      said + [line for line in said if again in line])
                self.assertCountEqual([sent["to"] for sent in modem.submitted()], [ONE, TWO, THREE])
                self.assertEqual({sent["text"] for sent in modem.submitted()}, {wine.UNICODE_TEXT})
                self.assertEqual(sum(command.startswith("AT+CMGD=") for command in modem.commands()), 4)

    def test_what_takes_no_answer_stays(self):
        unit = b"\x8c\x82\x98n1\0\x8d\x90\x8a\x80\x8e\x02\x75\x30\x88\x04\x81\x02\x0e\x10\x83http://mmsc/n1\0"
        push = bytes.fromhex("0605040B8423F0010601BE") + unit
        unanswerable = [f"00440B911316111111F10004{STAMP}{len(push):02X}{push.hex()}",
                        f"00040B911316111111F10004{STAMP}03010203",  # data
                        f"000404D0C8340000{STAMP}02E834"]  # "hi" from the name "Hi"
        for number, title, start in each("two-way", "answer"):
            with self.subTest(title), wine.modem(BASE + 9 + number, *(word for pdu in unanswerable for word in ("--message", f"pdu SM {pdu}")),
                                                 "--message", f"text SM {ONE} One", "--message", f"text SM {TWO} Two") as modem:
                self.assertEqual(start(modem.com, "Answer", 1, 10), (0, f"From {ONE}: One\nDone: 1 answered\n"))
                self.assertEqual([command for command in modem.commands() if command.startswith("AT+CMGD=")], ["AT+CMGD=4"])
                sent, = modem.submitted()
                self.assertEqual((sent["to"], sent["text"], sent["coding"]), (ONE, "Answer", "GSM 7-bit"))

    def test_a_message_that_cannot_be_deleted_is_not_answered_again(self):
        for number, name, start in each("two-way", "answer"):
            with self.subTest(name), wine.modem(BASE + 12 + number, "--message", f"text SM {ONE} One",
                                                rules=[{"match": "AT+CMGD", "do": "error"}]) as modem:
                code, output = start(modem.com, "Answer", 2, 10)
                self.assertEqual(code, 1)
                self.assertRegex(output, rf"^From \{ONE}: One\nDeleteMessage failed: \d+ [^\n]+\n$")
                self.assertEqual(len(modem.submitted()), 1)


class Bulk(unittest.TestCase):
    def run_bulk(self, start, server, numbers, *arguments):
        with wine.folder() as path:
            (path / "numbers.txt").write_text(numbers, encoding="ascii")
            return start("127.0.0.1", server.port, "me", "secret", wine.windows_path(path / "numbers.txt"), *arguments)

    def test_all_get_it_at_no_more_than_the_rate(self):
        recipients = [f"+316{number:08}" for number in range(30)]
        for _, name, start in each("bulk", "bulk"):
            for text in (wine.GSM_TEXT, wine.UNICODE_TEXT):
                with self.subTest(name, text=text), wine.smsc("--alphabet", "gsm") as server:
                    code, output = self.run_bulk(start, server, "\r\n\n ".join(recipients), text, 50)
                    lines = output.splitlines()
                    self.assertEqual((code, lines[1:]), (0, ["Delivered: 30", "Done: all 30 delivered"]))
                    rate = re.match(r"Sent 30 in \d+\.\d s: (\d+\.\d) messages/s$", lines[0])[1]
                    self.assertLessEqual(float(rate), 50 * 29 / 28)  # two may go at once, the others each in its turn
                    self.assertEqual([sent["to"] for sent in server.submitted()], [number[1:] for number in recipients])
                    self.assertEqual({(sent["text"], sent["registered"]) for sent in server.submitted()}, {(text, 1)})

    def test_what_became_of_each_is_told(self):
        refused = [{"match": "submit_sm", "nth": [2], "do": "status", "status": 11}]
        for _, name, start in each("bulk", "bulk"):
            with self.subTest(name), wine.smsc(rules=refused) as server:
                code, output = self.run_bulk(start, server, f"{ONE}\nnobody\n{TWO}\n{THREE}\n", "Hi", 0)
                lines = output.splitlines()
                self.assertEqual((code, lines[0]), (1, "nobody not sent: 34031 Invalid recipient address"))
                self.assertRegex(lines[1], r"^Sent 3 in \d+\.\d s: [\d,]+\.\d messages/s$")
                self.assertCountEqual(lines[2:], ["Delivered: 2", "Rejected: 1", "Not sent: 1"])
                self.assertEqual([sent["answered"] for sent in server.submitted()], [0, 11, 0])

    def test_an_account_that_is_refused(self):
        for _, name, start in each("bulk", "bulk"):
            with self.subTest(name), wine.smsc("--password", "other") as server:
                self.assertEqual(self.run_bulk(start, server, ONE, "Hi"),
                                 (1, "Connect failed: 33204 Invalid Password specified\n"))


class WapPush(unittest.TestCase):
    def test_the_phone_gets_link_and_text(self):
        for number, name, start in each("wap-push", "push"):
            with self.subTest(name), wine.modem(BASE + 15 + number) as modem:
                code, output = start(modem.com, ONE, "http://www.example.org/", "The text")
                sent, = modem.submitted()
                self.assertEqual((sent["to"], sent["port"]), (ONE, 2948))
                self.assertIn(b"\x0c\x03www.example.org/\0", bytes.fromhex(sent["data"]))
                self.assertIn(b"\x03The text\0", bytes.fromhex(sent["data"]))
                content = bytes([len(sent["header"]) // 2]).hex().upper() + sent["header"] + sent["data"]
                self.assertEqual((code, output), (0, f"Content: {content}\nSent, reference 17\n"))

    def test_what_would_not_arrive_is_not_sent(self):
        for _, name, start in each("wap-push", "push"):
            with self.subTest(name):
                self.assertEqual(start("COM99", ONE, "http://x.org/", "Fête"),
                                 (2, "The text is not ASCII: docs/content.md says how other letters go\n"))
                code, output = start("COM99", ONE, "http://x.org/", "Text")
                self.assertEqual(code, 1)
                self.assertRegex(output, r"^Content: \w+\nSend failed: 30104 [^\n]+\n$")


if __name__ == "__main__":
    unittest.main()
