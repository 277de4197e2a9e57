"""The lab's mail server, judged by Python's own client and by dialogues of RFC 5321."""
import asyncio
import base64
import smtplib
import unittest

from lab import program, serving
from mail import Mail

MAIL = ("Subject: =?utf-8?B?w7w=?=\r\nMIME-Version: 1.0\r\nContent-Type: multipart/related; boundary=B\r\n\r\n--B\r\n"
        "Content-Type: image/jpeg\r\nContent-location: a.jpg\r\nContent-Transfer-Encoding: base64\r\n\r\nAAEC\r\n--B--\r\n")
SAID = ["mail from a@b to c@d: ü", "  part a.jpg (image/jpeg), 3 octets"]
LOGIN = ["AUTH LOGIN", base64.b64encode(b"demo").decode(), base64.b64encode(b"secret").decode()]
USUAL = ["HELO me", "MAIL FROM: <a@b>", "RCPT TO: <c@d>", "DATA", MAIL + ".", "QUIT"]


class Dialogues(unittest.IsolatedAsyncioTestCase):
    async def play(self, requests, rules=None, account=""):
        """What it answered to each request, which waits for the answer before it, and what it says it took."""
        async with serving(Mail, rules) as (server, port):
            server.options.account = account
            reader, writer = await asyncio.open_connection("127.0.0.1", port)
            numbers = []
            for request in ["", *requests]:
                if request:
                    writer.write((request + "\r\n").encode())
                line = await asyncio.wait_for(reader.readline(), 10)
                while line[3:4] == b"-":
                    numbers.append(-int(line[:3]))
                    line = await asyncio.wait_for(reader.readline(), 10)
                numbers.append(int(line[:3] or b"0"))
            writer.close()
            await writer.wait_closed()
        return numbers, server.said

    async def test_takes_mails(self):
        self.assertEqual(await self.play(USUAL), ([220, 250, 250, 250, 354, 250, 221], SAID))
        self.assertEqual(await self.play(["DATA", "HELO me", "DATA"]), ([220, 503, 250, 503], []))

    async def test_accounts_after_helo(self):
        wrong = [*LOGIN[:2], "d3Jvbmc="]
        for requests, numbers in [(["HELO me", *LOGIN, *USUAL[1:]], [220, 250, 334, 334, 235, 250, 250, 354, 250, 221]),
                                  (["HELO me", *wrong, "MAIL FROM: <a@b>"], [220, 250, 334, 334, 535, 530]),
                                  (["HELO me", "AUTH LOGIN", "*", "AUTH DIGEST"], [220, 250, 334, 501, 504])]:
            with self.subTest(requests):
                found, said = await self.play(requests, account="demo:secret")
                self.assertEqual((found[:len(numbers)], said), (numbers, SAID if 354 in numbers else []))

    async def test_refusals_and_lines(self):
        for match, numbers in [("connect", [554, 250, 250, 250, 354, 250, 221]), ("MAIL", [220, 250, 554, 503, 503]),
                               ("RCPT", [220, 250, 250, 554, 503]), (".", [220, 250, 250, 250, 354, 554, 221])]:
            with self.subTest(match):
                found, said = await self.play(USUAL[:len(numbers) - 1], [{"match": match, "do": "refuse", "code": 554}])
                self.assertEqual((found, said), (numbers, SAID if match == "connect" else []))
        found, _ = await self.play(USUAL[:2], [{"match": "HELO", "do": "lines"}])
        self.assertEqual(found, [220, -250, 250, 250])
        self.assertEqual((await self.play(USUAL[:1], [{"match": "HELO", "do": "hangup"}])), ([220, 0], ["hung up"]))
        self.assertEqual((await self.play(USUAL, [{"do": "split", "ms": 1}]))[0], [220, 250, 250, 250, 354, 250, 221])


class Clients(unittest.TestCase):
    def test_pythons_own(self):
        with program("mail.py", "--port", 0, "--account", "demo:secret") as server:
            with smtplib.SMTP("127.0.0.1", int(server.port), timeout=10) as client:
                client.ehlo("me")
                client.login("demo", "secret")
                client.sendmail("a@b", ["c@d", "e@f"], MAIL)
            entry, = server.entries("mail")
            self.assertEqual((entry["from"], entry["to"], entry["mail"]), ("a@b", ["c@d", "e@f"], MAIL))


if __name__ == "__main__":
    unittest.main()
