"""The lab's SMSC where its peers misbehave: PDUs that are unknown, cut or no PDUs."""
import asyncio
import struct
import unittest

from lab import serving
from smsc import Smsc

NACK = 0x80000000
BIND = b"me\0pw\0\0\x34\0\0\0"
SUBMIT = b"\0\0\0\0\1\1" + b"31612345678\0" + b"\0\0\0\0\0\0\0\0\0\2Hi"
CUT = "cannot be read: subsection not found"


def pdu(command, sequence, body=b""):
    return struct.pack(">IIII", 16 + len(body), command, 0, sequence) + body


class Peers(unittest.IsolatedAsyncioTestCase):
    async def answers(self, said, rules=None):
        """command_id, command_status and sequence_number of every answer, and what the server printed."""
        async with serving(Smsc, rules) as (server, port):
            reader, writer = await asyncio.open_connection("127.0.0.1", port)
            writer.write(said)
            writer.write_eof()
            octets, found = await reader.read(), []
            writer.close()
            while octets:
                length, *header = struct.unpack(">IIII", octets[:16])
                found.append(tuple(header))
                octets = octets[length:]
            return found, server.said

    async def test_what_is_no_known_pdu(self):
        rows = [
            (pdu(0x777, 7), [(NACK, 3, 7)], ["00000777 is not known here"]),
            (pdu(0x103, 8), [(NACK, 3, 8)], ["data_sm is not known here"]),
            (pdu(0x80000777, 9) + pdu(NACK, 9), [], []),
            (pdu(9, 1, b"cut"), [(0x80000009, 2, 1)], [f"bind_transceiver {CUT}"]),
            (pdu(4, 2, SUBMIT[:-1]), [(0x80000004, 2, 2)], ["submit_sm cannot be read: short message is cut"]),
            (pdu(4, 2, SUBMIT[:16]), [(0x80000004, 2, 2)], [f"submit_sm {CUT}"]),
        ]
        for said, wanted, printed in rows:
            with self.subTest(said.hex()):
                found, lines = await self.answers(said + pdu(0x15, 99))
                self.assertEqual(found, wanted + [(0x80000015, 0, 99)])
                self.assertEqual(lines, printed)

    async def test_lengths_that_no_pdu_has_end_the_session(self):
        for length in (0, 4, 15, 0x20001, 0xFFFFFFFF):
            with self.subTest(length):
                found, lines = await self.answers(struct.pack(">I", length))
                self.assertEqual((found, lines), ([(NACK, 2, 0)], [f"connection ended: a PDU of {length} octets"]))

    async def test_own_actions(self):
        said = pdu(9, 1, BIND) + pdu(4, 2, SUBMIT) + pdu(4, 3, SUBMIT) + pdu(4, 4, SUBMIT)
        found, printed = await self.answers(said, [{"match": "submit_sm", "nth": [1], "do": "nack"},
                                                   {"match": "submit_sm", "nth": [3], "do": "status", "status": 88}])
        self.assertEqual(found, [(0x80000009, 0, 1), (NACK, 3, 2), (0x80000004, 0, 3), (0x80000004, 88, 4)])
        self.assertEqual(printed, ["bind_transceiver by me: accepted", 'submitted 0000007b: from - to 31612345678: "Hi"',
                                   'submitted 0000007c: from - to 31612345678: "Hi", status 88'])


if __name__ == "__main__":
    unittest.main()
