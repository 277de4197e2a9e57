"""Every SMS-SUBMIT of gsm_submits, read by tshark: recipient, coding, header, text, report request."""
import json
import subprocess
import sys
import unittest

import capture

DCS = {0: 0x00, 1: 0x10, 2: 0x00, 3: 0x10, 10: 0xF5, 11: 0xF5, 20: 0x08, 21: 0x18, 22: 0x08, 23: 0x18}
PROGRAM = sys.argv.pop(1)


class GsmSubmit(unittest.TestCase):
    def test_tshark_reads_what_went_in(self):
        rows = [json.loads(line) for line in subprocess.run([PROGRAM], check=True, stdout=subprocess.PIPE).stdout.splitlines()]
        pdus = [[bytes.fromhex(pdu) for pdu in row["pdus"].split(";")[:-1]] for row in rows]
        tpdus = [pdu[1 + pdu[0]:] for row in pdus for pdu in row]
        layers = iter(capture.dissect("gsm_sms", tpdus, options=["-o", "gsm_sms.reassemble:FALSE"]))
        for row, parts in zip(rows, pdus):
            texts = ""
            for number, pdu in enumerate(parts, 1):
                found = next(layers)
                one = lambda name: (capture.find(found, name) or [None])[0]
                with self.subTest(format=row["format"], part=number):
                    self.assertNotIn("_ws.malformed", found)
                    self.assertEqual(one("gsm_sms.tp-mti"), "1")
                    self.assertEqual(one("gsm_sms.tp-da"), row["to"].lstrip("+N"))
                    self.assertEqual(int(one("gsm_sms.tp-dcs")), DCS[row["format"]])
                    self.assertEqual(one("gsm_sms.tp-srr"), "1" if row["report"] else "0")
                    self.assertEqual(one("gsm_sms.destination_port"),
                                     str(row["port"] or (2948 if row["format"] == 11 else 0)) if
                                     row["port"] or row["format"] == 11 else None)
                    if len(parts) > 1:
                        self.assertEqual((one("gsm_sms.udh.mm.msg_parts"), one("gsm_sms.udh.mm.msg_part")),
                                         (str(len(parts)), str(number)))
                    texts += one("gsm_sms.sms_text") or ""
            if row["format"] in (10, 11):
                body = bytes.fromhex(row["body"])
                body = body[1 + body[0]:] if row["format"] == 11 else body
                # the data of a part are its last octets
                sent = b"".join(pdu[-self.size(pdu):] for pdu in parts)
                self.assertEqual(sent, body)
            else:
                self.assertEqual(texts, row["body"])

    @staticmethod
    def size(pdu):
        """The octets of user data behind the header, by TP-UDL and UDHL of +31612345678's PDUs without validity."""
        length_at = 1 + pdu[0] + 12
        header = 1 + pdu[length_at + 1] if pdu[1 + pdu[0]] & 0x40 else 0
        return pdu[length_at] - header


if __name__ == "__main__":
    unittest.main()
