#!/usr/bin/env python3
"""A paging server that speaks SNPP (RFC 1861), to try and test programs against.

    lab/pager.py --port 4444 --password secret

It takes pages of one line (MESS) and of several (DATA) for pagers that are numbers, and prints each in words.
"""
import re

from base.line import Dialogue
from base.scenario import Action
from base.server import Server

COMMANDS = ("LOGI", "PAGE", "MESS", "DATA", "RESE", "SEND", "QUIT", "HELP")


class Session(Dialogue):
    pager, text, known, over = "", "", False, False

    async def connected(self):
        await self.reply(self.rule("connect"), b"220 SNPP Gateway Ready\r\n")

    async def request(self):
        return None if self.over else await self.line.line()

    async def take(self, request):
        line = request.decode("latin-1")
        command, _, argument = line.partition(" ")
        command = command.upper()
        rule = self.rule(line, "LOGI ..." if command == "LOGI" else None)
        self.program.record({"command": line})
        if rule.do == "refuse":
            answer = f"{rule.get('code')} refused"
        elif command in COMMANDS:
            answer = getattr(self, command.lower())(argument)
        else:
            answer = "500 Command not implemented"
        if command == "DATA" and answer.startswith("354"):
            await self.reply(rule, b"354 Begin input; end with <CRLF>'.'<CRLF>\r\n")
            rule, answer = await self.input()
        await self.reply(rule, answer.encode("latin-1") + b"\r\n")

    async def input(self):
        lines = []
        while (line := await self.line.line()) not in (None, b"."):
            lines.append(line.decode("latin-1"))
        rule = self.rule(".")
        if rule.do == "refuse":
            return rule, f"{rule.get('code')} refused"
        self.text = "\n".join(lines)
        return rule, "250 Message OK"

    def logi(self, argument):
        self.known = argument == self.options.password
        return "250 Login accepted" if self.known else "550 Invalid login"

    def page(self, argument):
        if self.options.password and not self.known:
            return "550 Log in first"
        if not re.fullmatch(r"[\d+*#@, -]{1,32}", argument):
            return "550 Invalid pager ID"
        self.pager = argument
        return "250 Pager ID accepted"

    def mess(self, argument):
        self.text = argument
        return "250 Message OK"

    def data(self, _):
        return "354" if self.pager else "503 Pager ID first"

    def rese(self, _):
        self.pager, self.text = "", ""
        return "250 Reset"

    def send(self, _):
        if not self.pager or not self.text:
            return "503 Pager ID and message first"
        self.program.say(f"page for {self.pager}: {self.text}")
        self.program.record({"pager": self.pager, "text": self.text})
        return "250 Message sent"

    def quit(self, _):
        self.over = True
        return "221 Goodbye"

    def help(self, _):
        return f"214 {' '.join(COMMANDS)}"


class Pager(Server):
    dialogue = Session
    port = 4444
    event = "PAGE"
    own_actions = {"refuse": Action("answers with `code` and does nothing", {"code": 550})}

    @classmethod
    def add_arguments(cls, parser):
        super().add_arguments(parser)
        parser.add_argument("--password", default="", help="password that it asks for (none)")


if __name__ == "__main__":
    Pager.main()
