"""The lab's SMS gateway, judged by Python's own client."""
import asyncio
import base64
import http.client
import unittest

from lab import serving
from gateway import Gateway

FORM = {"Content-Type": "application/x-www-form-urlencoded"}


def ask(port, requests):
    """Status, body and what else counts of each reply, on one connection."""
    connection = http.client.HTTPConnection("127.0.0.1", port, timeout=20)
    found = []
    try:
        for method, target, body, headers in requests:
            connection.request(method, target, body, headers)
            reply = connection.getresponse()
            extra = reply.headers.get("Location") or reply.headers.get("WWW-Authenticate") \
                or reply.headers.get("Proxy-Authenticate") or ""
            found.append((reply.status, reply.read().decode().strip(), extra))
    except (http.client.HTTPException, ConnectionError) as fault:
        found.append(type(fault).__name__)
    finally:
        connection.close()
    return found


def basic(account):
    return "Basic " + base64.b64encode(account.encode()).decode()


class Messages(unittest.IsolatedAsyncioTestCase):
    async def exchange(self, *requests, rules=None, **options):
        async with serving(Gateway, rules) as (gateway, port):
            for name, value in options.items():
                setattr(gateway.options, name, value)
            return await asyncio.to_thread(ask, port, requests), gateway.said

    async def test_every_way_to_send(self):
        to = b"to=%2B31612345678&"
        utf8 = {"Content-Type": FORM["Content-Type"] + "; charset=utf-8"}
        rows = [
            ("POST", "/send", to + b"from=1234&text=Hi%20%00%1Be", FORM, 'from 1234 to +31612345678: "Hi @€"'),
            ("POST", "/send", to + b"from=Caf%C3%A9&text=%D0%96", utf8, 'from Café to +31612345678: "Ж"'),
            ("POST", "/send", to + b"text=", FORM, 'from - to +31612345678: ""'),
            ("POST", "/send", to + b"ucs2=00410416", FORM, 'from - to +31612345678: "AЖ"'),
            ("POST", "/send", to + b"udh=0&hex=0102ff", FORM, "from - to +31612345678: octets 0102FF"),
            ("POST", "/send", to + b"udh=1&hex=03A10201FF", FORM, "from - to +31612345678, header A10201: octets FF"),
            ("GET", "/send/%2B31612345678/a%2Fb%3F", None, {}, 'from - to +31612345678: "a/b?"'),
            ("GET", "/send?to=0612345678&text=x", None, {}, 'from - to 0612345678: "x"'),
            ("POST", "http://gw.example.org/send", to + b"text=x", FORM, 'from - to +31612345678: "x"'),
        ]
        replies, said = await self.exchange(*(row[:4] for row in rows))
        self.assertEqual(replies, [(200, f"OK {number}", "") for number in range(1001, 1001 + len(rows))])
        self.assertEqual(said, [f"message {number}: {row[4]}" for number, row in enumerate(rows, 1001)])

    async def test_what_cannot_be_sent(self):
        rows = [
            ("/send", b"", 200, "ERROR: no recipient"),
            ("/send", b"to=x&text=x", 200, "ERROR: no recipient"),
            ("/send", b"to=12345", 200, "ERROR: no text"),
            ("/send", b"to=12345&text=%80", 200, "ERROR: no GSM code"),
            ("/send", b"to=12345&udh=1&hex=", 200, "ERROR: the header is cut"),
            ("/send", b"to=12345&udh=1&hex=05", 200, "ERROR: the header is cut"),
            ("/sender", b"to=12345&text=x", 404, ""),
            ("/", b"", 404, ""),
        ]
        replies, _ = await self.exchange(*(("POST", target, body, FORM) for target, body, _, _ in rows))
        self.assertEqual(replies, [(status, text, "") for *_, status, text in rows])
        strange, _ = await self.exchange(("POST", "/send", b"to=12345&text=x", {"Content-Type": "a/b; charset=none"}),
                                         ("POST", "/send", b"to=12345&hex=0", FORM),
                                         ("POST", "/send", b"to=12345&ucs2=D83D", FORM))
        self.assertEqual([reply[1][:6] for reply in strange], ["ERROR:"] * 3)

    async def test_replies_of_a_scenario(self):
        send = ("POST", "/send", b"to=12345&text=x", FORM)
        for rule, wanted, taken in [
            ({"do": "answer", "body": "ERR: 301"}, (200, "ERR: 301", ""), 0),
            ({"do": "answer"}, (200, "", ""), 0),
            ({"do": "redirect", "location": "https://other/send"}, (302, "", "https://other/send"), 0),
            ({"do": "redirect", "location": "/x", "status": 301}, (301, "", "/x"), 0),
            ({"do": "status", "status": 503}, (503, "", ""), 0),
            ({"do": "delay", "ms": 1}, (200, "OK 1001", ""), 1),
            ({"do": "hangup"}, "RemoteDisconnected", 1),
            ({"do": "cut"}, "IncompleteRead", 1),
        ]:
            with self.subTest(rule):
                replies, said = await self.exchange(send, rules=[{"match": "POST /send"} | rule])
                self.assertEqual(replies, [wanted])
                self.assertEqual(len([line for line in said if line.startswith("message")]), taken)

    async def test_accounts(self):
        def send(**headers):
            return ("POST", "/send", b"to=12345&text=x", FORM | {name.replace("_", "-"): basic(account)
                                                                 for name, account in headers.items()})
        proxy, web = {"proxy_authorization": "px:1"}, {"authorization": "me:2"}
        replies, said = await self.exchange(
            send(), send(**web), send(proxy_authorization="px:2"), send(**proxy), send(**proxy, authorization="me:1"),
            send(**proxy, **web), account="me:2", proxy_account="px:1")
        asks = 'Basic realm="lab"'
        self.assertEqual(replies, [(407, "", asks)] * 3 + [(401, "", asks)] * 2 + [(200, "OK 1001", "")])
        self.assertEqual(said[:-1], ["no account given: 407", "no account given: 407", "another account given: 407",
                                     "no account given: 401", "another account given: 401"])

    async def test_the_answer_to_a_message(self):
        replies, _ = await self.exchange(("GET", "/send/12345/x", None, {}), success="{}")
        self.assertEqual(replies, [(200, "1001", "")])


if __name__ == "__main__":
    unittest.main()
