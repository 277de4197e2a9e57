#!/usr/bin/env python3
"""An SMS gateway for HTTP, to try and test programs against.

    lab/gateway.py --port 8080 --account user:password

It takes messages as forms and in paths, prints them in words and answers with a text and a number:
    POST /send, to=%2B31612345678&from=1234&text=Hello     a text: GSM codes, or the charset of the content type
    POST /send, to=...&udh=1&hex=0605040B8423F0            octets, with a header before them when udh is 1
    POST /send, to=...&ucs2=00480069                       a Unicode text
    GET /send/%2B31612345678/Hello                         a text
A form can also stand behind a "?". What it cannot send it answers with "ERROR: " and the reason. Reached through itself
as a proxy it does the same. Replies of any kind are actions of a scenario:
    [{"do": "answer", "body": "ERR: 301"}]
"""
import email.message
import json
import re
import urllib.parse

from base.http import HttpDialogue, HttpServer
from base.scenario import Refused
from wire import gsm


def form_of(octets):
    """The parameters, one value for each name; their values are octets."""
    pairs = urllib.parse.parse_qsl(octets, keep_blank_values=True, encoding="latin-1")
    return {name: value.encode("latin-1") for name, value in reversed(pairs)}


def parameters_of(request):
    if parts := re.fullmatch(r"/send/([^/]*)/([^/]*)", request.path):
        return dict(zip(("to", "text"), map(urllib.parse.unquote_to_bytes, parts.groups())))
    return form_of(request.target.partition("?")[2]) | form_of(request.body.decode("latin-1"))


def charset_of(request):
    header = email.message.Message()
    header["Content-Type"] = request.headers.get("content-type", "")
    return header.get_content_charset()


def text_of(octets, charset):
    if charset:
        return octets.decode(charset)
    if any(octet > 0x7F for octet in octets):
        raise ValueError("no GSM code")
    return gsm.text_from_codes(octets)


def message_of(request):
    """What a request wants to be sent. ValueError says what is wrong with it."""
    given = parameters_of(request)
    number = given.get("to", b"").decode("latin-1")
    if not re.fullmatch(r"\+?\d{3,20}", number):
        raise ValueError("no recipient")
    found = {"to": number, "from": given.get("from", b"").decode(charset_of(request) or "latin-1")}
    if "hex" in given:
        octets = bytes.fromhex(given["hex"].decode("latin-1"))
        if given.get("udh", b"0") == b"1":
            size = 1 + octets[0] if octets else 1
            if size > len(octets):
                raise ValueError("the header is cut")
            found["header"], octets = octets[1:size].hex().upper(), octets[size:]
        return found | {"data": octets.hex().upper()}
    if "ucs2" in given:
        return found | {"text": bytes.fromhex(given["ucs2"].decode("latin-1")).decode("utf-16-be"), "unicode": True}
    if "text" not in given:
        raise ValueError("no text")
    return found | {"text": text_of(given["text"], charset_of(request))}


def in_words(number, found):
    content = f"octets {found['data']}" if "data" in found else json.dumps(found["text"], ensure_ascii=False)
    return (f"message {number}: from {found['from'] or '-'} to {found['to']}"
            + (f", header {found['header']}" if "header" in found else "") + f": {content}")


class Session(HttpDialogue):
    async def respond(self, request):
        if not re.match(r"/send(/|$)", request.path):
            self.program.say(f"{request.method} {request.path}: nothing is here")
            return 404, {}, b""
        try:
            found = message_of(request)
        except (ValueError, LookupError) as fault:  # also a character set that is unknown
            self.program.say(f"refused: {fault}")
            return 200, {"Content-Type": "text/plain"}, f"ERROR: {fault}\r\n".encode("latin-1", "replace")
        number = self.program.next_number()
        self.program.say(in_words(number, found))
        self.program.record(found | {"number": number, "method": request.method,
                                     "proxied": request.target.startswith("http")})
        return 200, {"Content-Type": "text/plain"}, self.program.success(number)


class Gateway(HttpServer):
    dialogue = Session
    port = 8080
    event = "POST /send"

    @classmethod
    def add_arguments(cls, parser):
        super().add_arguments(parser)
        parser.add_argument("--success", default="OK {}", help='the answer to a message, "{}" for its number (OK {})')
        parser.add_argument("--first-number", type=int, default=1001, help="number of the first message (1001)")

    def __init__(self, options):
        super().__init__(options)
        self.number = options.first_number - 1
        try:
            self.success(0)
        except (LookupError, ValueError) as fault:
            raise Refused(f"no answer can be made of {options.success!r}") from fault

    def next_number(self):
        self.number += 1
        return self.number

    def success(self, number):
        return self.options.success.format(number).encode() + b"\r\n"


if __name__ == "__main__":
    Gateway.main()
