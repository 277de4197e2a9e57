#!/usr/bin/env python3
"""A mail server that speaks SMTP, to try and test MM4 against: what it takes, it prints part by part.

    lab/mail.py --port 2525 --account demo:secret

The protocol is that of aiosmtpd (Debian package python3-aiosmtpd); AUTH LOGIN is taken after HELO and without TLS.
The answers to its prompts are the events "account" and "password", the end of a mail is the event ".".
"""
import asyncio
import logging
import warnings

from base import packages
packages.find("aiosmtpd")
from aiosmtpd.smtp import SMTP, AuthResult  # noqa: E402

from base.line import HangUp, Line
from base.scenario import Action
from base.server import Server
from wire import mail

ANSWERS = ("account", "password")  # what the lines behind AUTH LOGIN are


class Heard:
    """The reader of a session, which tells the session of every line that is a request."""

    def __init__(self, session, reader):
        self.session, self.reader = session, reader

    def __getattr__(self, name):
        return getattr(self.reader, name)

    async def readuntil(self, separator=None):
        if separator is None:
            line = await self.reader.readuntil()
            self.session.heard(line)
        else:  # of a mail
            line = await self.reader.readuntil(separator)
            if line == b".\r\n":
                self.session.begin(".")
        return line

    async def readline(self):
        line = await self.reader.readline()
        self.session.answered(line)
        return line


logging.getLogger("mail.log").setLevel(logging.ERROR)  # aiosmtpd's; what it warns of is meant here


class Session(SMTP):
    AuthLoginUsernameChallenge = "Username:"
    AuthLoginPasswordChallenge = "Password:"

    def __init__(self, program):
        self.program = program
        self.answers = 0
        with warnings.catch_warnings():
            warnings.simplefilter("ignore")  # that accounts go without TLS
            super().__init__(self, hostname="mail.lab", ident="ESMTP", auth_required=bool(program.options.account),
                             auth_require_tls=False, authenticator=self.check)

    # --- what a request is answered with

    def _client_connected_cb(self, reader, writer):
        self.line = Line(reader, writer)
        self.begin("connect")
        self.program.sessions.add(self)
        super()._client_connected_cb(Heard(self, reader), writer)

    def connection_lost(self, error):
        self.program.sessions.discard(self)
        super().connection_lost(error)

    def begin(self, event, shown=None):
        self.rule = self.program.scenario.rule_for(event)
        self.program.trace(f"< {shown or event}" + (f" (scenario: {self.rule.do})" if self.rule.do else ""))

    def heard(self, line):
        request = line.decode("latin-1").rstrip("\r\n")
        self.program.record({"command": request})
        self.begin(request)

    def answered(self, line):
        event = ANSWERS[self.answers % len(ANSWERS)]
        self.answers += 1
        self.begin(event, f"{event} ...")

    async def push(self, status):
        reply = status if isinstance(status, bytes) else status.encode()
        if self.rule.do == "refuse":
            reply = self.refusal().encode()
        pieces = [reply + b"\r\n"]
        if self.rule.do == "lines":
            pieces.insert(0, reply[:3] + b"-" + self.rule.get("text").encode() + b"\r\n")
        try:
            await self.rule.play(pieces, self.line)
        except HangUp:
            self.program.say("hung up")
            self.transport.close()
            raise asyncio.CancelledError from None

    def refusal(self):
        return f"{self.rule.get('code')} refused"

    # --- what it takes

    async def smtp_AUTH(self, arg):
        self.session.extended_smtp = True  # as after EHLO
        self.answers = 0
        await super().smtp_AUTH(arg)

    def check(self, server, session, envelope, mechanism, login):
        given = f"{login.login.decode('latin-1')}:{login.password.decode('latin-1')}"
        return AuthResult(success=self.program.options.account in ("", given), handled=False)

    async def handle_MAIL(self, server, session, envelope, address, options):
        if self.rule.do == "refuse":
            return self.refusal()
        envelope.mail_from = address
        return "250 OK"

    async def handle_RCPT(self, server, session, envelope, address, options):
        if self.rule.do == "refuse":
            return self.refusal()
        envelope.rcpt_tos.append(address)
        return "250 OK"

    async def handle_DATA(self, server, session, envelope):
        if self.rule.do != "refuse":
            self.program.take(envelope)
        return "250 OK"


class Mail(Server):
    port = 2525
    event = "RCPT TO"
    own_actions = {"refuse": Action("answers with `code` and does nothing", {"code": 550}),
                   "lines": Action("a line of `text` before the reply's", {"text": "more"})}

    def __init__(self, options):
        super().__init__(options)
        self.sessions = set()

    @classmethod
    def add_arguments(cls, parser):
        super().add_arguments(parser)
        parser.add_argument("--account", default="", metavar="NAME:PASSWORD", help="account that it asks for (none)")

    async def open(self):
        loop = asyncio.get_running_loop()
        self.socket = await loop.create_server(lambda: Session(self), "127.0.0.1", self.options.port)
        return f"on port {self.socket.sockets[0].getsockname()[1]}"

    async def close(self):
        for session in list(self.sessions):
            session.transport.close()
        await super().close()

    def take(self, envelope):
        taken = mail.read(envelope.content)
        self.say(f"mail from {envelope.mail_from} to {', '.join(envelope.rcpt_tos)}: {taken['Subject']}")
        for part in taken.walk():
            if not part.is_multipart():
                size = len(part.get_payload(decode=True))
                self.say(f"  part {part['Content-location'] or '-'} ({part.get_content_type()}), {size} octets")
        self.record({"from": envelope.mail_from, "to": envelope.rcpt_tos, "mail": envelope.content.decode("latin-1")})


if __name__ == "__main__":
    Mail.main()
