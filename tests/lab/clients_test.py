"""The counterparts with public clients: gammu at the modem, Net::SMPP at the SMSC."""
import json
import os
import pathlib
import re
import subprocess
import tempfile
import unittest

from lab import program


def output_of(*command):
    """What a program printed. Errors that it meets are its own to tell, by its exit code."""
    done = subprocess.run(list(map(str, command)), stdin=subprocess.DEVNULL, capture_output=True, text=True,
                          env=os.environ | {"LC_ALL": "C.UTF-8"}, timeout=60, check=False)
    if done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}: {done.stdout}{done.stderr}")
    return done.stdout


class Gammu(unittest.TestCase):
    def setUp(self):
        folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.modem = self.enterContext(program(
            "modem.py", "--link", folder / "modem", "--message", "text SM +31611111111 Hello there",
            "--message", "ucs2 SM +31633333333 Привет", "--message", "parts ME +31622222222 2,1 This came in two parts"))
        self.settings = folder / "gammurc"
        self.settings.write_text(f"[gammu]\ndevice = {folder / 'modem'}\nconnection = at115200\nuse_locking = no\n",
                                 encoding="utf-8")

    def gammu(self, *arguments):
        return output_of("gammu", "-c", self.settings, *arguments)

    def test_identifies_the_modem(self):
        self.assertRegex(self.gammu("identify"), r"Manufacturer +: Lab\nModel +: .*\(Modem\)\nFirmware +: 1\.0\n"
                                                 r"IMEI +: 490154203237518\n")

    def test_lists_reads_and_deletes(self):
        listed = self.gammu("geteachsms")
        found = re.findall(r'Remote number +: "(.*)"\nStatus +: (\w+)\n(?:User Data.*\n)?\n(.*)\n', listed)
        self.assertEqual(found, [("+31611111111", "UnRead", "Hello there"), ("+31633333333", "UnRead", "Привет"),
                                 ("+31622222222", "UnRead", "This came in two parts")])
        self.assertIn("4 SMS parts in 3 SMS sequences", listed)
        self.assertRegex(self.gammu("getsms", "0", "2"), r'Remote number +: "\+31633333333"\nStatus +: Read\n\nПривет\n')
        self.gammu("deletesms", "1", "1")
        self.assertIn("3 SMS parts in 2 SMS sequences", self.gammu("geteachsms"))

    def test_sends(self):
        rows = [("Grüße, 5 € [Ω]", (), "GSM 7-bit", 1), ("Привет", ("-unicode",), "UCS-2", 1),
                ("A long text, part by part. " * 10, ("-autolen", "400", "-report"), "GSM 7-bit", 2)]
        sent = 0
        for text, options, coding, parts in rows:
            self.gammu("sendsms", "TEXT", "+31612345678", *options, "-text", text)
            taken = self.modem.entries("given")[sent:]
            sent += parts
            self.assertEqual(("".join(part["text"] for part in taken), len(taken)), (text, parts))
            for part in taken:
                self.assertEqual((part["to"], part["coding"], part["report"]), ("+31612345678", coding, "-report" in options))
                self.assertEqual(part["announced"], part["length"] - 8)  # without the centre's number


class NetSmpp(unittest.TestCase):
    def test_a_whole_session(self):
        client = pathlib.Path(__file__).with_name("smpp_client.pl")
        with program("smsc.py", "--port", "0", "--password", "secret", "--deliver", "+31611111111 Hello") as server:
            got = list(map(json.loads, output_of("perl", client, server.port, "Hi there").splitlines()))
            sent, = server.entries("text")
        receipt = got[4].pop("short_message")
        delivered = {"pdu": "deliver_sm", "status": 0, "data_coding": 0}
        self.assertEqual(got, [
            {"pdu": "bind_transceiver_resp", "status": 0, "system_id": "lab"},
            delivered | {"source_addr": "31611111111", "destination_addr": "1234", "esm_class": 0, "short_message": "Hello"},
            {"pdu": "enquire_link_resp", "status": 0},
            {"pdu": "submit_sm_resp", "status": 0, "message_id": "0000007b"},
            delivered | {"source_addr": "31612345678", "destination_addr": "", "esm_class": 4},
            {"pdu": "unbind_resp", "status": 0},
        ])
        self.assertRegex(receipt, r"^id:0000007b sub:001 dlvrd:001 .* stat:DELIVRD err:000 text:$")
        self.assertEqual((sent["to"], sent["dest_ton"], sent["text"]), ("31612345678", 1, "Hi there"))


if __name__ == "__main__":
    unittest.main()
