"""Every unit of `mms_units` behind a WAP push, read by tshark down to its fields and parts.

Left out: a From of 29 characters and more, whose length has no length quote, so that the decoder calls the unit malformed.
"""
import datetime
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

import capture

PROGRAM = os.path.abspath(sys.argv.pop(1))
PUSH = bytes.fromhex("010601BE")
LONG = "Ä234567890123456789012345678901234567"


def shown(text):
    """A text in UTF-8 as the decoder shows it: with the quote before it, and each octet outside ASCII as unknown."""
    return "\x7f" + "".join(chr(octet) if octet < 128 else "\ufffd" for octet in text.encode())


TO = ["+31612345678/TYPE=PLMN", "eve@example.org"]
EVERYTHING = {"mmse.from": ["+31600000001/TYPE=PLMN"], "mmse.to": TO, "mmse.cc": ["10.0.0.1/TYPE=IPv4"],
              "mmse.bcc": ["bob@example.org"], "mmse.message_class.id": ["0x83"], "mmse.priority": ["0x82"],
              "mmse.delivery_report": ["0x80"], "mmse.read_report": ["0x80"], "mmse.subject": ["Photo"]}
EXPECTED = {
    "least": {"mmse.message_type": ["0x80"], "mmse.to": TO[:1], "mmse.cc": [], "mmse.bcc": [], "mmse.subject": [],
              "mmse.message_class.id": ["0x80"], "mmse.priority": ["0x81"], "mmse.delivery_report": ["0x81"],
              "mmse.read_report": ["0x81"], "mmse.from": ["<insert address>"], "mmse.expiry.abs": []},
    "most": {**EVERYTHING, "mmse.message_type": ["0x80"]},
    "retrieved": {**EVERYTHING, "mmse.message_type": ["0x84"], "mmse.subject": [shown("Über €")]},
    "long subject": {**EVERYTHING, "mmse.message_type": ["0x84"], "mmse.subject": [shown(LONG)]},
    "long sender": {**EVERYTHING, "mmse.message_type": ["0x84"], "mmse.from": ["f" * 28],
                    "mmse.subject": [shown(LONG)]},
}
ANSWERS = {"acknowledged": {"mmse.message_type": ["0x85"], "mmse.status": []},
           "notified": {"mmse.message_type": ["0x83"], "mmse.status": ["0x81"]}}
EXPECTED |= ANSWERS


class Units(unittest.TestCase):
    def test_tshark_reads_the_fields(self):
        started = datetime.datetime.utcnow()
        with tempfile.TemporaryDirectory() as folder:
            pathlib.Path(folder, "photo.jpg").write_bytes(b"JPEG")
            output = subprocess.run([PROGRAM], check=True, stdout=subprocess.PIPE, cwd=folder).stdout
        rows = [json.loads(line) for line in output.splitlines()]
        self.assertEqual([row["kind"] for row in rows], list(EXPECTED))
        layers = capture.dissect("wsp-cl", [PUSH + bytes.fromhex(row["unit"]) for row in rows])
        for row, layer in zip(rows, layers, strict=True):
            with self.subTest(row["kind"]):
                self.assertNotIn("_ws.malformed", json.dumps(layer))
                for name, value in {**EXPECTED[row["kind"]], "mmse.transaction_id": [row["id"]],
                                    "mmse.mms_version": ["1.0"]}.items():
                    self.assertEqual(capture.find(layer, name), value, name)
                if row["kind"] not in ANSWERS:
                    self.check_times(layer, started)
                    self.check_parts(layer, row["id"] + ".smil")

    def check_times(self, layer, started):
        date, *expiry = [datetime.datetime.strptime(text[:21], "%b %d, %Y %H:%M:%S") for name in ("mmse.date", "mmse.expiry.abs")
                         for text in capture.find(layer, name)]
        self.assertLess(abs(date - started), datetime.timedelta(minutes=5))
        for moment in expiry:
            self.assertEqual(moment - date, datetime.timedelta(days=1))

    def check_parts(self, layer, smil):
        text = capture.find(layer, "wsp.header.content_location")[0]
        self.assertRegex(text, r"^[0-9A-F]{8}\.txt$")
        names = [text, "photo.jpg", "sound.mp4", "photo.jpg.dm", smil]
        for name, value in {
                "wsp.header.content_type": ["application/vnd.wap.mms-message", "application/vnd.wap.multipart.related", "text/plain",
                                            "image/jpeg", "audio/mp4", "application/vnd.oma.drm.message", "application/smil"],
                "wsp.header.content_location": names,
                "wsp.header.content_id": [f'"{name}"' for name in [*names[:-1], f"<{smil}>"]],  # that alone in brackets
                "wsp.parameter.start": [f"<{smil}>"], "wsp.parameter.upart.type": ["application/smil"],
                "wsp.parameter.name": [smil], "wsp.parameter.charset": ["UTF-8"],
                "smil.par.dur": ["5s"], "smil.text.src": [text], "smil.img.src": ["photo.jpg"], "smil.audio.src": ["sound.mp4"],
                "smil.ref.src": ["photo.jpg.dm"]}.items():
            self.assertEqual(capture.find(layer, name), value, name)
        self.assertEqual(capture.find(layer, "media.type")[:2], [b"\xff\xd8\xff\xe0".hex(":"), b"mp4".hex(":")])
        self.assertIn("Grüße", json.dumps(layer, ensure_ascii=False))


if __name__ == "__main__":
    unittest.main()
