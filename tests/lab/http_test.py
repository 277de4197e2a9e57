"""The base of the HTTP servers, judged by Python's own client."""
import asyncio
import http.client
import unittest

from lab import serving
from base.http import HttpDialogue, HttpServer


class Echoing(HttpDialogue):
    async def respond(self, request):
        if request.path == "/missing":
            return 404, {}, b""
        text = f"{request.method} {request.query()} {request.headers.get('x-test')} ".encode() + request.body
        return 200, {"Content-Type": "text/plain"}, text


class Echo(HttpServer):
    dialogue = Echoing


def ask(port, *requests):
    """The status and the body of each reply, on one connection."""
    connection = http.client.HTTPConnection("127.0.0.1", port, timeout=20)
    found = []
    try:
        for method, target, body, headers in requests:
            connection.request(method, target, body, headers)
            reply = connection.getresponse()
            found.append((reply.status, reply.read()))
    except (http.client.HTTPException, ConnectionError) as fault:
        found.append(type(fault).__name__)
    finally:
        connection.close()
    return found


class Http(unittest.IsolatedAsyncioTestCase):
    async def exchange(self, rules, *requests):
        async with serving(Echo, rules) as (_, port):
            return await asyncio.to_thread(ask, port, *requests)

    async def test_requests_on_one_connection(self):
        self.assertEqual(await self.exchange(
            None,
            ("GET", "/?a=1&b=%C3%A9&a=&c", None, {"X-Test": " y "}),
            ("POST", "/", b"body\r\n\0", {}),
            ("POST", "/", iter([b"in ", b"chunks"]), {}),
            ("HEAD", "/", None, {}),
            ("GET", "/missing", None, {"Connection": "close"}),
        ), [
            (200, "GET {'a': ['1', ''], 'b': ['é'], 'c': ['']} y ".encode()),
            (200, b"POST {} None body\r\n\0"),
            (200, b"POST {} None in chunks"),
            (200, b""),
            (404, b""),
        ])

    async def test_scenarios(self):
        get = ("GET", "/", None, {})
        usual = (200, b"GET {} None ")
        for rule, wanted in [
            ({"do": "status", "status": 503}, [(503, b""), usual]),
            ({"do": "status", "status": 999}, [(999, b""), usual]),
            ({"do": "split", "ms": 0}, [usual, usual]),
            ({"do": "hangup"}, ["RemoteDisconnected"]),
            ({"do": "cut"}, ["IncompleteRead"]),
            ({"do": "instead", "text": "250 OK"}, ["BadStatusLine"]),
        ]:
            with self.subTest(rule):
                self.assertEqual(await self.exchange([{"match": "GET /", "nth": [1]} | rule], get, get), wanted)

    async def test_nonsense_ends_the_connection_only(self):
        async with serving(Echo) as (server, port):
            for nonsense in (b"hello\r\n", b"GET / HTTP/1.1\r\nContent-Length: x\r\n\r\n",
                             b"GET / HTTP/1.1\r\nContent-Length: -1\r\n\r\n",
                             b"POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\nx\r\n"):
                reader, writer = await asyncio.open_connection("127.0.0.1", port)
                writer.write(nonsense)
                self.assertEqual(await reader.read(), b"")
                writer.close()
            self.assertEqual([said[:18] for said in server.said], ["connection ended: "] * 4)
            self.assertEqual(await asyncio.to_thread(ask, port, ("GET", "/missing", None, {})), [(404, b"")])


if __name__ == "__main__":
    unittest.main()
