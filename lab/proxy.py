#!/usr/bin/env python3
"""An HTTP proxy that can ask for an account.

It forwards requests for http URLs and says each in words: what was asked, by whom, and the status that came back.
A request without the account gets 407 and Basic.
"""
import asyncio
import base64
import http.client
import urllib.parse

from base.http import HttpDialogue, HttpServer

OWN = ("connection", "keep-alive", "proxy-connection", "proxy-authorization", "transfer-encoding", "content-length")


class ProxyDialogue(HttpDialogue):
    async def respond(self, request):
        user = self._user(request)
        if self.options.account and user != self.options.account:
            self._note(request, user, 407)
            return 407, {"Proxy-Authenticate": 'Basic realm="lab"'}, b"proxy account needed"
        status, headers, body = await asyncio.to_thread(forward, request)
        self._note(request, user, status)
        return status, {"Via": "1.1 lab"} | headers, body

    @staticmethod
    def _user(request):
        scheme, _, value = request.headers.get("proxy-authorization", "").partition(" ")
        return base64.b64decode(value).decode("latin-1") if scheme.lower() == "basic" else ""

    def _note(self, request, user, status):
        name = user.partition(":")[0]
        self.program.say(f"{request.method} {request.target}" + (f" by {name}" if name else "") + f": {status}")
        self.program.record({"request": f"{request.method} {request.target}", "user": name, "status": status})


def forward(request):
    """The answer of the server that the target names; 502 when it cannot be reached."""
    url = urllib.parse.urlsplit(request.target)
    if url.scheme != "http" or not url.hostname:
        return 400, {}, b"an http URL is needed"
    headers = {name: value for name, value in request.headers.items() if name not in OWN}
    try:
        connection = http.client.HTTPConnection(url.hostname, url.port or 80, timeout=30)
        connection.request(request.method, urllib.parse.urlunsplit(("", "", url.path or "/", url.query, "")), request.body,
                           headers)
        answer = connection.getresponse()
        return answer.status, {name: value for name, value in answer.getheaders() if name.lower() not in OWN}, answer.read()
    except (OSError, http.client.HTTPException) as fault:
        return 502, {}, str(fault).encode()
    finally:
        connection.close()


class Proxy(HttpServer):
    """The program."""
    dialogue = ProxyDialogue
    port = 3128
    event = "POST http:"

    @classmethod
    def add_arguments(cls, parser):
        super().add_arguments(parser)
        parser.add_argument("--account", help="name:password that is asked for (none)")


if __name__ == "__main__":
    Proxy.main()
