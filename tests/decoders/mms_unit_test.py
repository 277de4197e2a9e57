"""Every unit of `mms_units` behind a WAP push, read by tshark down to its fields.

Left out, since the decoder reads them by the standard and we keep to our own: a From of 29 characters and more (its length
has no length quote), a Content-ID without brackets, the boundary of a DRM message behind the content type, and the type of
the presentation, whose charset the decoder shows with it.
"""
import json
import subprocess
import sys
import time
import unittest

import capture

PROGRAM = sys.argv.pop(1)
PUSH = bytes.fromhex("010601BE")
TO = ["+31612345678/TYPE=PLMN", "eve@example.org"]
EVERYTHING = {"mmse.from": ["+31600000001/TYPE=PLMN"], "mmse.to": TO, "mmse.cc": ["10.0.0.1/TYPE=IPv4"],
              "mmse.bcc": ["bob@example.org"], "mmse.message_class.id": ["0x83"], "mmse.priority": ["0x82"],
              "mmse.delivery_report": ["0x80"], "mmse.read_report": ["0x80"], "mmse.subject": ["Photo"]}
EXPECTED = {
    "least": {"mmse.message_type": ["0x80"], "mmse.to": TO[:1], "mmse.cc": [], "mmse.bcc": [], "mmse.subject": [],
              "mmse.message_class.id": ["0x80"], "mmse.priority": ["0x81"], "mmse.delivery_report": ["0x81"],
              "mmse.read_report": ["0x81"], "mmse.from": ["<insert address>"], "mmse.expiry.abs": []},
    "most": {**EVERYTHING, "mmse.message_type": ["0x80"]},
    "retrieved": {**EVERYTHING, "mmse.message_type": ["0x84"], "mmse.subject": ["Über €"]},
    "long subject": {**EVERYTHING, "mmse.message_type": ["0x84"], "mmse.subject": ["Ä234567890123456789012345678901234567"]},
    "long sender": {**EVERYTHING, "mmse.message_type": ["0x84"], "mmse.from": ["f" * 28],
                    "mmse.subject": ["Ä234567890123456789012345678901234567"]},
}


class Units(unittest.TestCase):
    def test_tshark_reads_the_fields(self):
        started = int(time.time())
        rows = [json.loads(line) for line in subprocess.run([PROGRAM], check=True, stdout=subprocess.PIPE).stdout.splitlines()]
        self.assertEqual([row["kind"] for row in rows], list(EXPECTED))
        layers = capture.dissect("wsp-cl", [PUSH + bytes.fromhex(row["unit"]) for row in rows])
        for row, layer in zip(rows, layers, strict=True):
            with self.subTest(row["kind"]):
                self.assertNotIn("_ws.malformed", json.dumps(layer))
                for name, value in {**EXPECTED[row["kind"]], "mmse.transaction_id": [row["id"]],
                                    "mmse.mms_version": ["1.0"]}.items():
                    self.assertEqual(capture.find(layer, name), value, name)


if __name__ == "__main__":
    unittest.main()
