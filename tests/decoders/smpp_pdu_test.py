"""Every PDU of smpp_pdus, read by tshark field by field."""
import json
import subprocess
import sys
import unittest

import capture

PROGRAM = sys.argv.pop(1)


class SmppPdus(unittest.TestCase):
    def test_tshark_reads_what_went_in(self):
        rows = [json.loads(line) for line in subprocess.run([PROGRAM], check=True, stdout=subprocess.PIPE).stdout.splitlines()]
        found = capture.dissect("smpp", [bytes.fromhex(row["pdu"]) for row in rows])
        for row, layers in zip(rows, found):
            with self.subTest(row["pdu"]):
                self.assertNotIn("_ws.malformed", layers)
                self.assertEqual(capture.find(layers, "smpp.command_id")[0], row["command"])
                self.assertEqual(int(capture.find(layers, "smpp.command_length")[0]), len(row["pdu"]) // 2)
                for name, value in row["fields"].items():
                    self.assertIn(value, capture.find(layers, name), name)


if __name__ == "__main__":
    unittest.main()
