"""An HTTP server (RFC 9112): reads requests, gives each to `respond`, and replies through the scenario."""
import base64
import dataclasses
import http
import re
import urllib.parse

from base.line import Dialogue
from base.scenario import Action
from base.server import Server


@dataclasses.dataclass
class Request:
    method: str
    target: str    # as it came
    headers: dict  # by name in lower case
    body: bytes

    @property
    def path(self):
        """Without the server that stands before it when a proxy is asked."""
        return re.sub(r"^https?://[^/?]*", "", self.target).partition("?")[0]

    def query(self, encoding="utf-8"):
        """The parameters of the target: name -> the values it was given."""
        return urllib.parse.parse_qs(self.target.partition("?")[2], keep_blank_values=True, encoding=encoding)


class HttpDialogue(Dialogue):
    keep = True  # whether the peer may go on after the reply

    async def respond(self, request):
        """The status, the headers and the body of the reply."""
        raise NotImplementedError

    async def request(self):
        first = await self.line.line() if self.keep else None
        if first is None:
            return None
        method, target, version = first.decode("latin-1").split(" ")
        headers = await self._headers()
        self.keep = headers.get("connection", "").lower() != "close" and version == "HTTP/1.1"
        if headers.get("expect", "").lower() == "100-continue":
            await self.line.write(b"HTTP/1.1 100 Continue\r\n\r\n")
        if headers.get("transfer-encoding", "").lower() == "chunked":
            return Request(method, target, headers, await self._chunks())
        return Request(method, target, headers, await self.line.octets(int(headers.get("content-length", "0"))))

    async def take(self, request):
        rule = self.rule(f"{request.method} {request.target}")
        status, headers, body = self.refusal(request) or self.misled(rule) or await self.respond(request)
        text = http.HTTPStatus(status).phrase if status in list(http.HTTPStatus) else ""
        headers = {"Content-Length": len(body)} | headers | ({} if self.keep else {"Connection": "close"})
        fields = "".join(f"{name}: {value}\r\n" for name, value in headers.items())
        await self.reply(rule, f"HTTP/1.1 {status} {text}\r\n{fields}\r\n".encode("latin-1"),
                         b"" if request.method == "HEAD" else body)

    def refusal(self, request):
        """The challenge, when an account is wanted that the request does not give."""
        for account, status, given, asks in (
                (self.options.proxy_account, 407, "proxy-authorization", "Proxy-Authenticate"),
                (self.options.account, 401, "authorization", "WWW-Authenticate")):
            if account and request.headers.get(given) != "Basic " + base64.b64encode(account.encode()).decode():
                self.program.say(f"{'another' if given in request.headers else 'no'} account given: {status}")
                return status, {asks: 'Basic realm="lab"'}, b""
        return None

    @staticmethod
    def misled(rule):
        """The answer that a scenario wants instead of the server's own."""
        if rule.do == "status":
            return rule.get("status"), {}, b""
        if rule.do == "redirect":
            return rule.get("status"), {"Location": rule.get("location")}, b""
        if rule.do == "answer":
            return 200, {"Content-Type": "text/plain"}, rule.get("body").encode("latin-1", "replace")
        return None

    async def _headers(self):
        headers = {}
        while line := await self.line.line():
            name, _, value = line.decode("latin-1").partition(":")
            headers[name.strip().lower()] = value.strip()
        return headers

    async def _chunks(self):
        body = b""
        while size := int((await self.line.line() or b"").split(b";")[0], 16):
            body += await self.line.octets(size)
            await self.line.line()
        await self._headers()
        return body


class HttpServer(Server):
    dialogue = HttpDialogue
    event = "POST /"
    own_actions = {
        "status": Action("answers with `status` and does nothing", {"status": 500}),
        "redirect": Action("leads to `location` with `status` and does nothing", {"location": "/", "status": 302}),
        "answer": Action("answers with 200 and `body` and does nothing", {"body": ""}),
    }

    @classmethod
    def add_arguments(cls, parser):
        super().add_arguments(parser)
        parser.add_argument("--account", metavar="USER:PASSWORD", help="the account that it asks for")
        parser.add_argument("--proxy-account", metavar="USER:PASSWORD",
                            help="the account that it asks for as the proxy through which it was reached")
