"""The lab's dialled providers, judged by frames whose checksums were not made here."""
import os
import pathlib
import select
import tempfile
import time
import unittest

from lab import program

# 0612345678 from 1234: "Hi"; the checksum agrees with tshark.
UCP = b"\x0201/00040/O/01/0612345678/1234//3/4869/8E\x03"
SHORT = b"\x0201/00037/O/01/0612345678/9//3/4869/3\0\x03"  # a sum of one digit as some callers send it
ACK = b"\x0201/00042/R/01/A/0612345678:010203040506/FE\x03"
TAP = b"\x02123\rABC\r\x0317;\r"  # the worked example of TAP 1.8
HANG_UP = b"+++ATH0\r"


class Providers(unittest.TestCase):
    def call(self, says, *options, rules=None):
        """What a connected caller hears after each of its octets, and what the modem says it took."""
        link = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()), "modem")
        heard = []
        with program("modem.py", "--link", link, *options, rules=rules) as modem:
            terminal = os.open(link, os.O_RDWR | os.O_NOCTTY)
            for said in (b"ATE0\r", b"ATD0201234567\r", *says):
                os.write(terminal, said)
                heard.append(self.read(terminal))
            os.close(terminal)
            return heard[1:], modem.entries("provider") + modem.entries("fault")

    @staticmethod
    def read(terminal):
        """What comes until a tenth of a second is silent; the first octet may take a second."""
        heard, wait = b"", 1
        while select.select([terminal], [], [], wait)[0]:
            heard += os.read(terminal, 4096)
            wait = 0.1
        return heard

    def test_dialling(self):
        for text in ("BUSY", "NO CARRIER", "NO ANSWER", "NO DIALTONE"):
            with self.subTest(text):
                heard, _ = self.call([b"AT\r"], rules=[{"match": "ATD", "do": "reply", "text": text}])
                self.assertEqual(heard, [f"\r\n{text}\r\n".encode(), b"\r\nOK\r\n"])
        heard, _ = self.call([HANG_UP, b"AT\r"])
        self.assertEqual(heard, [b"\r\nCONNECT 9600\r\n", b"\r\nOK\r\n", b"\r\nOK\r\n"])

    def test_ucp(self):
        wrong_sum, wrong_length = UCP.replace(b"8E", b"8F"), UCP.replace(b"00040", b"00041").replace(b"8E", b"8F")
        for frame, answer, took in [(UCP, b"R/01/A/0612345678:010203040506/", True), (SHORT, b"R/01/A/0612345678", True),
                                    (wrong_sum, b"R/01/N/01/", False), (wrong_length, b"R/01/N/02/", False),
                                    (b"\x02x\x03", b"R/01/N/01/", False)]:
            with self.subTest(frame):
                (_, reply, end), entries = self.call([frame, HANG_UP])
                self.assertIn(answer, reply)
                self.assertEqual(end, b"\r\nOK\r\n")
                self.assertEqual([(entry.get("to"), entry.get("text")) for entry in entries],
                                 [("0612345678", "Hi")] if took else [(None, None)])
                self.assertEqual(int(reply[4:9]), len(reply) - 2)
        (_, reply), _ = self.call([UCP], "--provider-password", "pw")
        self.assertIn(b"R/01/N/07/Auth", reply)
        (_, reply), _ = self.call([UCP], rules=[{"match": "UCP", "do": "refuse", "text": "06"}])
        self.assertIn(b"R/01/N/06/AdC", reply)
        (_, reply), _ = self.call([UCP], "--provider-echo", rules=[{"match": "UCP", "do": "garbage", "hex": "7F7E"}])
        self.assertEqual(reply, UCP + b"\x7F\x7E" + ACK)

    def test_tap(self):
        for says, replies, took in [
            ([b"\r", b"\x1bPG1\r", TAP, b"\x04\r"], [b"ID=", b"\x06\r\x1b[p\r", b"211 Page accepted\r\x06\r", b"\x1b\x04\r"], True),
            ([b"\x1bPG1pw\r", TAP], [b"\x15\r", b"\x1e\r"], False),
            ([b"\x1bPG1\r", TAP.replace(b";", b":")], [b"\x06\r\x1b[p\r", b"\x15\r"], False),
            ([b"\x1bPG1\r", b"\x02A\rB\r\x0309:\r"], [b"\x06\r\x1b[p\r", b"\x15\r"], False),
            ([b"\x1bPG1\r", b"\x02A\rB\r\x030:2\r"], [b"\x06\r\x1b[p\r", b"514 INVALID PAGER ID\r\x1e\r"], False),
        ]:
            with self.subTest(says):
                heard, entries = self.call(says, "--provider", "tap")
                self.assertEqual(heard[1:], replies)
                self.assertEqual([entry["text"] for entry in entries if "text" in entry], ["ABC"] if took else [])
        (_, sync, _), _ = self.call([b"\r", HANG_UP], "--provider", "tap", rules=[{"match": "ID", "do": "parity"}])
        self.assertEqual(sync, b"\xc9D\xbd")

    def test_a_provider_can_drop_the_line(self):
        (_, dropped, again), _ = self.call([UCP, HANG_UP], rules=[{"match": "UCP", "do": "hangup"}])
        self.assertEqual((dropped, again), (b"\r\nNO CARRIER\r\n", b"\r\nOK\r\n"))


if __name__ == "__main__":
    unittest.main()
