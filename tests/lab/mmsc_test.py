"""The lab's MMS centre, judged by Python's own client and by units that are written out, and the notifications of its modem."""
import asyncio
import http.client
import pathlib
import re
import tempfile
import unittest

from lab import program, serving
from base.scenario import Refused
from mmsc import Mmsc
from modem import Contexts, Storages
from wire import gsm, mms, wsp

TYPE = {"Content-Type": "application/vnd.wap.mms-message"}


def octets(words):
    """Hexadecimal, and texts between quotes."""
    return b"".join(piece.encode() if place % 2 else bytes.fromhex(piece) for place, piece in enumerate(words.split("'")))


def sized(words):
    """With the length before it, in one octet."""
    return bytes([len(octets(words))]) + octets(words)


def part(header, data):
    return bytes([len(octets(header)), len(octets(data))]) + octets(header) + octets(data)


SEND = (octets("8C80 98 'T1' 00 8D90 85 04 6553F100 89") + sized("80 '+31600000001/TYPE=PLMN' 00") + octets(
            "96 'Hi' 00 97 '+31612345678/TYPE=PLMN' 00 97 'eve@example.org' 00 88 06 80 04 65540000 8A80 8F82 8680 9081 84") +
        sized("B3 8A '<T1.smil>' 00 89 'application/smil' 00") + b"\x03" +
        part("83 C022 't.txt' 00 8E 't' 00", "'Hello'") + part("9E 8E '../p' 00", "FFD8") +
        part("'application/smil' 00", "'smil'"))


def ask(port, requests):
    """Status, type and body of each reply, on one connection."""
    connection, found = http.client.HTTPConnection("127.0.0.1", port, timeout=20), []
    try:
        for method, target, body, headers in requests:
            connection.request(method, target, body, headers)
            reply = connection.getresponse()
            found.append((reply.status, reply.headers.get("Content-Type", ""), reply.read()))
    except (http.client.HTTPException, ConnectionError) as fault:
        found.append(type(fault).__name__)
    finally:
        connection.close()
    return found


class Units(unittest.TestCase):
    def test_what_is_read(self):
        rows = [
            ("8C81 98 'T1' 00 8D90 9281 93 08 83 'Denied' 00 8B 'id' 00",
             "m-send-conf", {"transaction": "T1", "version": 16, "response_status": 0x81, "response_text": "Denied",
                             "message_id": "id"}),
            ("8C85 98 'r7' 00 8D90 9180", "m-acknowledge-ind", {"transaction": "r7", "version": 16, "report_allowed": True}),
            ("8C83 98 'n' 00 8D92 9583", "m-notifyresp-ind", {"transaction": "n", "version": 18, "status": "deferred"}),
            ("8C80 98 't' 00 89 01 81 'X-Own' 00 'v' 00 C1 03 AABBCC 96 05 EA 7F C39C 00 8A 'mine' 00 88 03 81 01 3C",
             "m-send-req", {"transaction": "t", "from": None, "X-Own": "v", "subject": "Ü", "class": "mine",
                            "expiry": {"relative": True, "seconds": 60}}),
            ("8C80 89 1F 20 80 'someone.with.a.long.name@e.org' 00", "m-send-req",
             {"from": "someone.with.a.long.name@e.org"}),
            ("8C80 89 20 80 'someone.with.a.long.name@e.org' 00", "m-send-req",
             {"from": "someone.with.a.long.name@e.org"}),
            ("8C80 89 1F 80 'someone.with.a.name@e.example' 00", "m-send-req", {"from": "someone.with.a.name@e.example"}),
        ]
        for words, kind, fields in rows:
            with self.subTest(words):
                unit = mms.read(octets(words))
                found = {name: value for name, value in unit.fields.items() if value != []}
                self.assertEqual((unit.kind, found), (kind, fields))

    def test_parts(self):
        for header, data, found in [
            ("03 83 81 EA", "'Hi'", mms.Part("text/plain", b"Hi", "", 106)),
            ("08 9E 85 'p.jpg' 00 AE 01 81", "FF", mms.Part("image/jpeg", b"\xff", "p.jpg")),
            ("'audio/mp4' 00 C022 'a' 00", "00", mms.Part("audio/mp4", b"\0", "", None, "a")),
            ("'image/gif' 00 'boundary' 00 'xyz' 00", "", mms.Part("image/gif", b"")),
        ]:
            with self.subTest(header):
                self.assertEqual(mms.read(octets("8C84 84 A3 01") + part(header, data)).parts, [found])

    def test_every_cut_is_seen_or_harmless(self):
        whole = mms.read(SEND)
        self.assertEqual([part.data for part in whole.parts], [b"Hello", b"\xff\xd8", b"smil"])
        for size in range(len(SEND)):
            try:
                self.assertLessEqual(len(mms.read(SEND[:size]).parts), 2)
            except ValueError:
                pass
        for nonsense in (b"", b"<html>", b"\x8c", b"\x8c\x20", b"\x8c\xff", b"\x8c\x80\x84\xa3\xff\xff\xff\xff\xff\xff"):
            self.assertRaises(ValueError, mms.read, nonsense)

    def test_what_is_written(self):
        self.assertEqual(mms.send_conf("T1", 0x80, "MSG-1", "Ok"),
                         octets("8C81 98 'T1' 00 8D90 9280 93 'Ok' 00 8B 'MSG-1' 00"))
        self.assertEqual(mms.send_conf("T2", 0xE2, response_text="Größe"),
                         octets("8C81 98 'T2' 00 8D90 92E2 93 09 EA 'Größe' 00"))
        self.assertEqual(mms.not_retrieved("r8", 0xE2, "Gone"), octets("8C84 98 'r8' 00 8D90 99E2 9A 'Gone' 00"))
        self.assertEqual(mms.notification("n1", "+31612345678", "http://mmsc/n1", size=30000, valid=259200),
                         octets("8C82 98 'n1' 00 8D90 89 18 80 '+31612345678/TYPE=PLMN' 00 8A80 8E 02 7530 "
                                "88 05 81 03 03F480 83 'http://mmsc/n1' 00"))
        given = mms.retrieve_conf(None, "m", "a@example.org", "Über", [mms.Part("image/jpeg", b"\xff\xd8", "p.jpg")])
        self.assertEqual(re.sub(rb"\x85\x04....", b"", given, flags=re.S),
                         octets("8C84 8D90 8B 'm' 00 89") + sized("80 'a@example.org' 00") + b"\x96" +
                         sized("EA 7F 'Über' 00") + octets("8A80 8F81 84 A3 01") +
                         part("9E C022 '<p.jpg>' 00 8E 'p.jpg' 00", "FFD8"))

    def test_lengths_at_their_borders(self):
        for size in (0, 1, 126, 127, 128, 16383, 16384, 70000):
            part = mms.Part("text/plain", b"x" * size, "n" * (size % 200), wsp.UTF8)
            found = mms.read(mms.retrieve_conf("t", "m", "s" * 40, "ü" * 30, [part, part])).parts
            self.assertEqual([(one.data, one.name, one.charset) for one in found], [(part.data, part.name, 106)] * 2)


class Centre(unittest.IsolatedAsyncioTestCase):
    async def exchange(self, *requests, rules=None, prepare=None, **options):
        async with serving(Mmsc, rules) as (centre, port):
            centre.records = []
            centre.record = centre.records.append
            for name, value in options.items():
                setattr(centre.options, name, value)
            centre.stored = dict(map(centre.stored_from, prepare or []))
            return await asyncio.to_thread(ask, port, requests), centre.said, centre.records

    async def test_takes_a_message(self):
        with tempfile.TemporaryDirectory() as folder:
            replies, said, records = await self.exchange(("POST", "http://mmsc.example.org/mms", SEND, TYPE), folder=folder,
                                                         first_number=1)
            files = {str(path.relative_to(folder)): path.read_bytes() for path in pathlib.Path(folder).rglob("*-*")}
        self.assertEqual(replies, [(200, TYPE["Content-Type"], octets("8C81 98 'T1' 00 8D90 9280 8B '1@mmsc.lab' 00"))])
        self.assertEqual(said, [
            'message 1, through the proxy: from +31600000001, to +31612345678, eve@example.org, subject "Hi", '
            "priority high, delivery report wanted, valid until 1700003840 s, 3 parts",
            '  text/plain, 5 octets, t: "Hello"', "  image/jpeg, 2 octets, ../p", "  application/smil, 4 octets"])
        self.assertEqual(files, {"1/1-t": b"Hello", "1/2-.._p": b"\xff\xd8", "1/3-part": b"smil"})
        self.assertEqual([part["id"] for part in records[0]["parts"]], ["t.txt", "", ""])

    async def test_refuses_what_is_no_message(self):
        html = {"Content-Type": "text/html"}
        replies, said, _ = await self.exchange(
            ("POST", "/mms", b"<html>", html), ("POST", "/other", SEND, TYPE), ("POST", "/mms", b"<html>", TYPE),
            ("POST", "/mms", SEND[:-1], TYPE), ("POST", "/mms", mms.send_conf("x", 0x80), TYPE), ("GET", "/none", None, {}))
        self.assertEqual([reply[0] for reply in replies], [415, 404, 200, 200, 400, 404])
        self.assertEqual([mms.read(reply[2]).fields["response_status"] for reply in replies[2:4]], [0x83, 0x83])
        self.assertEqual(len(said), 6)

    async def test_gives_a_message_and_hears_of_it(self):
        line = "/m1 +31611111111 'Our holiday' 'text:Grüße'"
        acknowledged = octets("8C85 98 'm1' 00 8D90 9180")
        for transaction, wanted in ((True, "m1"), (False, None)):
            replies, said, records = await self.exchange(
                ("GET", "http://mmsc/m1", None, {"Accept": "x/y"}), ("POST", "/mms", acknowledged, TYPE),
                ("POST", "/mms", octets("8C83 98 'n1' 00 8D90 9581"), TYPE), prepare=[line], transaction=transaction)
            unit = mms.read(replies[0][2])
            self.assertEqual((unit.kind, unit.fields["from"], unit.fields["subject"], unit.fields.get("transaction")),
                             ("m-retrieve-conf", "+31611111111", "Our holiday", wanted))
            self.assertEqual([(part.text, part.name) for part in unit.parts], [("Grüße", "text1.txt")])
            self.assertEqual([reply[0] for reply in replies], [200] * 3)
            self.assertEqual(said[1:], ["m-acknowledge-ind for m1", "m-notifyresp-ind for n1: retrieved"])
            self.assertEqual(records[0]["accept"], "x/y")

    async def test_misbehaves(self):
        send = ("POST", "/mms", SEND, TYPE)
        for rule, status, media, body, taken in [
            ({"do": "conf", "status": "84", "text": "Who?"}, 200, TYPE["Content-Type"],
             octets("8C81 98 'T1' 00 8D90 9284 93 'Who?' 00"), 0),
            ({"do": "conf", "status": "E0"}, 200, TYPE["Content-Type"], octets("8C81 98 'T1' 00 8D90 92E0"), 0),
            ({"do": "unit", "octets": "8C81", "pad": 3}, 200, TYPE["Content-Type"], octets("8C81000000"), 0),
            ({"do": "status", "status": 503}, 503, "", b"", 0),
        ]:
            with self.subTest(rule):
                replies, said, _ = await self.exchange(send, rules=[rule])
                self.assertEqual(replies, [(status, media, body)])
                self.assertEqual(len([line for line in said if line.startswith("message")]), taken)
        replies, _, _ = await self.exchange(send, rules=[{"do": "portal"}])
        self.assertEqual(replies[0][:2], (200, "text/html"))
        for do, fault in (("hangup", "RemoteDisconnected"), ("cut", "IncompleteRead")):
            replies, said, _ = await self.exchange(send, rules=[{"match": "POST", "do": do}])
            self.assertEqual((replies, said[0][:9]), ([fault], "message 1"))

    def test_messages_that_cannot_be(self):
        for line in ("", "/m1", "m1 a b", "/m1 a b /no/such/file", "/m1 'a b"):
            with self.subTest(line), self.assertRaises(Refused):
                Mmsc(Mmsc.parser().parse_args(["--message", line]))


class Notifications(unittest.TestCase):
    def stored(self, line):
        storages = Storages(["SM"], False)
        storages.store_line(line)
        fields = []
        for _, pdu in storages.box("SM").values():
            pdu = bytes.fromhex(pdu)
            at = 1 + pdu[0]  # SMS-DELIVER: the header flag, sender, PID, DCS, time stamp
            self.assertEqual(pdu[at], 0x44)
            at += 3 + (pdu[at + 1] + 1) // 2
            self.assertEqual(pdu[at:at + 2], bytes([0, 4]))
            fields.append(gsm.read_user_data(4, True, pdu[at + 9], pdu[at + 10:]))
        return fields

    def test_short_and_long(self):
        url = "http://mmsc.example.org/" + "x" * 300
        for line, parts in (("mms SM +31611111111 http://mmsc/m1 Hello", 1), (f"mms SM +31611111111 {url}", 4)):
            found = self.stored(line)
            self.assertEqual([one["port"] for one in found], [2948] * parts)
            self.assertEqual([one.get("part", 1) for one in found], list(range(1, parts + 1)))
            self.assertEqual(len({one.get("concatenation") for one in found}), 1)
            pushed = bytes.fromhex("".join(one["data"] for one in found))
            self.assertEqual(pushed[:6], bytes.fromhex("010603BEAF84"))
            unit = mms.read(pushed[6:])
            self.assertEqual((unit.kind, unit.fields["from"], unit.fields["location"]),
                             ("m-notification-ind", "+31611111111", line.split()[3]))
        self.assertEqual(mms.read(bytes.fromhex(self.stored("mms SM +316 http://m/1 A b")[0]["data"])[6:]).fields["subject"],
                         "A b")


class PacketData(unittest.TestCase):
    def test_the_dialogue(self):
        from modem_test import Port
        port = Port(self, "--context", "1,IP,internet", "--context-numbers", "1-3")
        for command, reply in [
            ("AT+CGDCONT=?", '+CGDCONT: (1-3),"IP",,,(0,1),(0,1) OK'),
            ("AT+CGDCONT?", '+CGDCONT: 1,"IP","internet","0.0.0.0",0,0 OK'),
            ('AT+CGDCONT=2,"IP","mms.Net"', "OK"), ('AT+CGDCONT=4,"IP","x"', "ERROR"), ("AT+CGDCONT=x", "ERROR"),
            ('AT+CGDCONT=3,"X25","x"', "ERROR"),
            ("AT+CGDCONT?", '+CGDCONT: 1,"IP","internet","0.0.0.0",0,0 +CGDCONT: 2,"IP","mms.Net","0.0.0.0",0,0 OK'),
            ("AT+CGDCONT=1", "OK"), ("AT+CGATT?", "+CGATT: 0 OK"), ("AT+CGATT=1", "OK"), ("AT+CGATT?", "+CGATT: 1 OK"),
            ("AT&W", "OK"),
        ]:
            with self.subTest(command):
                self.assertEqual(port.exchange(command), reply.split())
        self.assertIn(b"NO CARRIER", port.raw("ATD*99#"))
        self.assertIn(b"CONNECT\r\n", port.raw("ATD*99***2#"))
        self.assertEqual(port.raw("~frame~", 0.2), b"")
        self.assertEqual(port.exchange("+++ATH0"), ["OK"])
        self.assertEqual(port.exchange("AT"), ["OK"])
        self.assertEqual(port.modem.entries("context"), [{"context": 2, "apn": "mms.Net"}])

    def test_contexts_that_cannot_be(self):
        for numbers, given in (("x", []), ("1-2", ["3,IP,a"]), ("1-2", ["1,X,a"])):
            self.assertRaises(ValueError, Contexts, numbers, given)


if __name__ == "__main__":
    unittest.main()
