"""Every content of `contents`, as the SMS-SUBMIT PDUs that carry it, read by tshark down to its fields."""
import json
import subprocess
import sys
import unittest

import capture

PROGRAM = sys.argv.pop(1)
OPTIONS = ["-o", "gsm_sms_ud.port_number_udh_means_wsp:TRUE"]
LONG_TEXT = "d" * 300
# What tshark names the fields, and what must be in them.
EXPECTED = [
    {"wsp.header.content_type": "application/vnd.wap.sic", "wbxml.known_attrstart": ["href='http://'", "si-id=", "action='signal-medium'"],
     "wbxml.str_i": ["www.example.org/news", "n1", "Hi"], "wsp.TID": "0x01", "gsm_sms.destination_port": "2948"},
    {"wsp.header.content_type": "application/vnd.wap.sic", "wbxml.known_tag": ["si", "indication"],
     "wbxml.str_i": ["www.example.org/news", "n1", LONG_TEXT], "gsm_sms.fragment.count": "3"},
    {"wsp.header.content_type": "application/vnd.wap.slc", "wbxml.known_tag": "sl", "wbxml.str_i": "example.org/",
     "wbxml.known_attrstart": ["href='https://'", "action='cache'"], "wsp.TID": "0x03"},
    {"gsm_sms.destination_port": "49999", "gsm_sms.originator_port": "49154"},
    {"wsp.header.content_type": "application/vnd.wap.mms-message", "wsp.header.x_wap_application_id": "x-wap-application:mms.ua",
     "mmse.message_type": "0x82", "mmse.transaction_id": "t42", "mmse.mms_version": "1.0", "mmse.from": "+31600000001",
     "mmse.subject": "Photo", "mmse.message_class.id": "0x82", "mmse.message_size": "1000",
     "mmse.content_location": "http://mmsc.example.org/1"},
    {"gsm_sms.destination_port": "9204", "gsm_sms.originator_port": "0"},
]


class Content(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        output = subprocess.run([PROGRAM], check=True, stdout=subprocess.PIPE).stdout
        cls.rows = [json.loads(line) for line in output.splitlines()]

    def check(self, layers, expected):
        self.assertNotIn("_ws.malformed", json.dumps(layers))
        for name, value in expected.items():
            self.assertEqual(capture.find(layers, name), value if isinstance(value, list) else [value], name)

    def test_tshark_reads_the_fields(self):
        pdus = [[bytes.fromhex(pdu) for pdu in row["pdus"].split(";")[:-1]] for row in self.rows]
        layers = capture.dissect("gsm_sms", [pdu[1 + pdu[0]:] for row in pdus for pdu in row], options=OPTIONS)
        last = -1
        self.assertEqual(len(self.rows), len(EXPECTED))
        for row, parts, expected in zip(self.rows, pdus, EXPECTED):
            last += len(parts)  # the part that completes a message shows the whole
            with self.subTest(row["kind"]):
                self.check(layers[last], expected)

    def test_tshark_reads_the_bookmark(self):
        row = next(row for row in self.rows if row["kind"] == "bookmark")
        layers, = capture.dissect("wsp-cl", [bytes.fromhex(row["encoded"])[7:]])
        self.check(layers, {"wsp.header.content_type": "application/x-wap-prov.browser-bookmarks",
                            "wbxml.known_tag": ["CHARACTERISTIC-LIST", "CHARACTERISTIC", "PARM", "PARM"],
                            "wbxml.known_attrstart": ["TYPE='BOOKMARK'", "NAME='NAME'", "VALUE=", "NAME='URL'", "VALUE="],
                            "wbxml.str_i": ["Example", "http://www.example.org/"]})

    def test_the_card_is_text(self):
        row = next(row for row in self.rows if row["kind"] == "vcard")
        self.assertEqual(bytes.fromhex(row["encoded"])[7:].decode(),
                         "BEGIN:VCARD\r\nVERSION:2.1\r\nN:Bob\r\nTEL;PREF:+31600000002\r\nEND:VCARD\r\n")


if __name__ == "__main__":
    unittest.main()
