"""The lab's paging server, judged by dialogues of RFC 1861."""
import asyncio
import unittest

from lab import serving
from pager import Pager


class Dialogues(unittest.IsolatedAsyncioTestCase):
    async def play(self, lines, rules=None, password=""):
        """The number of each reply, and what the server says it took."""
        async with serving(Pager, rules) as (server, port):
            server.options.password = password
            reader, writer = await asyncio.open_connection("127.0.0.1", port)
            writer.write("".join(line + "\r\n" for line in lines).encode("latin-1"))
            writer.write_eof()
            replies = (await asyncio.wait_for(reader.read(), 10)).decode("latin-1").splitlines()
            writer.close()
        return [int(reply[:3]) for reply in replies], server.said

    async def test_pages(self):
        for lines, numbers, said in [
            (["PAGE 5551212", "MESS Hi", "SEND", "QUIT", "SEND"], [220, 250, 250, 250, 221], ["page for 5551212: Hi"]),
            (["page 1", "data", "One", "Two", ".", "send"], [220, 250, 354, 250, 250], ["page for 1: One\nTwo"]),
            (["PAGE x", "DATA", "SEND", "NICE", "HELP"], [220, 550, 503, 503, 500, 214], []),
            (["PAGE 1", "MESS x", "RESE", "SEND"], [220, 250, 250, 250, 503], []),
        ]:
            with self.subTest(lines):
                self.assertEqual(await self.play(lines), (numbers, said))

    async def test_passwords(self):
        page = ["PAGE 1", "MESS x", "SEND"]
        self.assertEqual(await self.play(page, password="pw"), ([220, 550, 250, 503], []))
        self.assertEqual(await self.play(["LOGI no", *page], password="pw"), ([220, 550, 550, 250, 503], []))
        self.assertEqual(await self.play(["LOGI pw", *page], password="pw"), ([220, 250, 250, 250, 250], ["page for 1: x"]))

    async def test_refusals(self):
        for event, numbers in [("PAGE", [220, 554, 503, 500, 500, 503]), (".", [220, 250, 354, 554, 503])]:
            with self.subTest(event):
                found, said = await self.play(["PAGE 1", "DATA", "x", ".", "SEND"], [{"match": event, "do": "refuse", "code": 554}])
                self.assertEqual((found, said), (numbers, []))


if __name__ == "__main__":
    unittest.main()
