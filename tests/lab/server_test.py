"""The base of the servers: dialogues over real connections, and how programs refuse, start and end."""
import asyncio
import shlex
import signal
import socket
import subprocess
import sys
import unittest

from lab import LAB, program, serving
from base.line import Dialogue, HangUp
from base.server import Server
from modem import Modem
from smsc import Smsc


class Counting(Dialogue):
    """Greets, replies to a line with its length, and reads octets after "take <count>"."""

    async def connected(self):
        await self.reply(self.rule("connect"), b"hello\r\n")

    async def take(self, request):
        rule = self.rule(request.decode("latin-1"))
        word, _, count = request.partition(b" ")
        octets = await self.line.octets(int(count)) if word == b"take" else request
        await self.reply(rule, b"%d\r\n" % len(octets))


class Counter(Server):
    dialogue = Counting


class Calling(Dialogue):
    """Hands the line over to another dialogue until that drops it."""

    async def take(self, request):
        try:
            await Counting(self.program, self.line).converse()
        except HangUp:
            await self.reply(self.rule("call"), b"no carrier\r\n")


class Caller(Server):
    dialogue = Calling


async def heard(port, said):
    """All that a peer hears which says this and then closes its side."""
    reader, writer = await asyncio.open_connection("127.0.0.1", port)
    writer.write(said)
    writer.write_eof()
    try:
        return await reader.read()
    except ConnectionResetError:
        return b""
    finally:
        writer.close()


class Connections(unittest.IsolatedAsyncioTestCase):
    async def test_dialogues(self):
        rows = [  # what the peer says, what it hears, what the server says of it
            (b"abc\r\nde\n", b"hello\r\n3\r\n2\r\n", []),
            (b"take 5\r\na\r\n\0bcd\r\n", b"hello\r\n5\r\n2\r\n", []),
            (b"no end", b"hello\r\n", []),
            (b"take 9\r\nshort", b"hello\r\n", ["connection lost: 5 bytes read on a total of 9 expected bytes"]),
            (b"take x\r\n", b"hello\r\n", ["connection ended: invalid literal for int() with base 10: b'x'"]),
        ]
        for says, hears, said in rows:
            with self.subTest(says):
                async with serving(Counter) as (server, port):
                    self.assertEqual(await heard(port, says), hears)
                    self.assertEqual(server.said, said)

    async def test_scenarios_reach_the_peer(self):
        rows = [
            ([{"match": "connect", "do": "hangup"}], b""),
            ([{"match": "connect", "do": "join"}], b"hello\r\n1\r\n2\r\n"),
            ([{"match": "a", "do": "cut"}], b"hello\r\n1"),
            ([{"match": "b", "do": "instead", "text": "550 no"}], b"hello\r\n1\r\n550 no\r\n"),
            ([{"match": "a", "do": "split", "ms": 0}], b"hello\r\n1\r\n2\r\n"),
        ]
        for rules, hears in rows:
            with self.subTest(rules):
                async with serving(Counter, rules) as (_, port):
                    self.assertEqual(await heard(port, b"a\r\nbb\r\n"), hears)

    async def test_a_dialogue_within_another(self):
        async with serving(Caller, [{"match": "bye", "do": "hangup"}]) as (_, port):
            self.assertEqual(await heard(port, b"call\r\nabc\r\nbye\r\ncall\r\nbye\r\n"),
                             b"hello\r\n3\r\nno carrier\r\nhello\r\nno carrier\r\n")

    async def test_one_peer_does_not_hold_up_another(self):
        async with serving(Counter, [{"match": "slow", "do": "delay", "ms": 3600000}]) as (server, port):
            slow = asyncio.create_task(heard(port, b"slow\r\n"))
            many = await asyncio.gather(*(heard(port, b"x" * number + b"\r\n") for number in range(1, 101)))
            self.assertEqual(many, [b"hello\r\n%d\r\n" % number for number in range(1, 101)])
            self.assertFalse(slow.done())

    async def test_connections_leave_nothing_behind(self):
        async with serving(Counter) as (server, port):
            for _ in range(50):
                await heard(port, b"x\r\n")
            self.assertEqual(len(server.conversations), 0)


class Programs(unittest.TestCase):
    def test_ends_cleanly_with_a_peer_connected(self):
        for how in (signal.SIGTERM, signal.SIGINT, None):
            with self.subTest(how), program("smsc.py", "--port", 0) as server:
                with socket.create_connection(("127.0.0.1", int(server.port))) as peer:
                    if how:
                        server.process.send_signal(how)
                    else:
                        server.process.stdin.close()
                    self.assertEqual(server.process.wait(10), 0)
                    self.assertEqual(peer.recv(1), b"")
                self.assertEqual(server.output(), f"smsc ready on port {server.port}\n")

    def test_the_examples_of_the_help_are_right(self):
        for program_class in (Modem, Smsc):
            parser = program_class.parser()
            lines = [line for line in parser.format_help().split("\n") if line.startswith("    lab/")]
            self.assertTrue(lines)
            for line in lines:
                with self.subTest(line):
                    program_class(parser.parse_args(shlex.split(line)[1:]))

    def test_wrong_arguments_and_places_are_refused_in_one_line(self):
        with socket.create_server(("127.0.0.1", 0)) as taken:
            rows = [
                (["smsc.py", "--scenario", "/none.json"], 2, "smsc: scenario /none.json: No such file"),
                (["smsc.py", "--deliver", "parts:1,3 +31 x"], 2, "smsc: cannot deliver 'parts:1,3 +31 x': 1,3 is not"),
                (["smsc.py", "--port", taken.getsockname()[1]], 1, "smsc: [Errno 98]"),
                (["smsc.py", "--port", 70000], 2, "smsc: 70000 is no TCP port\n"),
                (["modem.py", "--link", "/none/modem"], 1, "modem: [Errno 2]"),
                (["modem.py", "--link", __file__], 2, f"modem: {__file__} is there and no link"),
                (["modem.py", "--link", "x", "--message", "text XX +31 Hi"], 2, "modem: cannot store"),
                (["modem.py", "--link", "x", "--inbox", "/none"], 2, "modem: inbox /none: "),
            ]
            for (name, *arguments), code, wanted in rows:
                with self.subTest(arguments):
                    done = subprocess.run([sys.executable, LAB / name, *map(str, arguments)], stdin=subprocess.DEVNULL,
                                          capture_output=True, text=True, timeout=20, check=False)
                    self.assertEqual((done.returncode, done.stdout), (code, ""), done.stderr)
                    self.assertEqual(done.stderr.count("\n"), 1, done.stderr)
                    self.assertTrue(done.stderr.startswith(wanted), done.stderr)


if __name__ == "__main__":
    unittest.main()
