"""Every frame of ucp_frames, read by tshark field by field, with its length and its checksum."""
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

import capture

PROGRAM = sys.argv.pop(1)
PORT = "5000"
INVALID = "[checksum invalid]"


def tshark(file, *options):
    return subprocess.run(["tshark", "-r", file, "-d", f"tcp.port=={PORT},ucp", *options], check=True, text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout


def dissect(frames):
    """The layers of each frame, and what is said of it in a line. UCP is no dissector for single PDUs, so that each frame
    is a TCP segment; one that states more than there is waits for the next and has no layer of its own."""
    dump = "".join(f"000000 {frame.hex(' ')}\n" for frame in frames)
    with tempfile.TemporaryDirectory() as folder:
        file = pathlib.Path(folder) / "ucp.pcap"
        subprocess.run(["text2pcap", "-q", "-T", f"1000,{PORT}", "-", file], input=dump, text=True, check=True,
                       stderr=subprocess.DEVNULL)
        layers = [packet["_source"]["layers"] for packet in json.loads(tshark(file, "-T", "json", "--no-duplicate-keys"))]
        return list(zip(layers, tshark(file, "-T", "fields", "-e", "_ws.col.Info").splitlines()))


class UcpFrames(unittest.TestCase):
    def test_tshark_reads_what_went_in(self):
        rows = [json.loads(line) for line in subprocess.run([PROGRAM], check=True, stdout=subprocess.PIPE).stdout.splitlines()]
        found = dissect([bytes.fromhex(row["frame"]) for row in rows])
        self.assertEqual(len(found), len(rows))
        short = 0
        for row, (layers, line) in zip(rows, found):
            frame = bytes.fromhex(row["frame"])
            with self.subTest(row["frame"]):
                self.assertEqual(capture.find(layers, "ucp.hdr.LEN"), [str(len(frame) - 2)])
                self.assertEqual(capture.find(layers, "ucp.hdr.OT"), ["1"])
                for field, name in (("AdC", "recipient"), ("OAdC", "originator"), ("OAC", "password")):
                    self.assertEqual(capture.find(layers, f"ucp.parm.{field}"), [row[name]] if row[name] else [], name)
                self.assertEqual("".join(capture.find(layers, "ucp.parm.AMsg")), bytes.fromhex(row["text"]).decode("ascii"))
                # The kept short checksum is the one that tshark does not read, unless it is 0 all the same.
                self.assertEqual(INVALID in line, frame[-2] == 0 and frame[-3:-2] != b"0")
                short += frame[-2] == 0
        self.assertGreater(short, 2)
        self.assertLess(short, len(rows) / 8)

    def test_tshark_sees_what_is_wrong(self):
        frame = b"\x0201/00040/O/01/0612345678/1234//3/4869/8E\x03"
        (_, good), (_, bad) = dissect([frame, frame.replace(b"8E", b"8F")])
        self.assertEqual([INVALID in good, INVALID in bad], [False, True])
        self.assertNotIn("ucp", dissect([frame.replace(b"00040", b"00041").replace(b"8E", b"8F")])[0][0])


if __name__ == "__main__":
    unittest.main()
