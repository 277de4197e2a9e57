"""Providers that are dialled: an SMS centre that speaks UCP and a paging terminal that speaks TAP 1.8.

The modem hands them its line after ATD; "+++ATH0" gives it back. Each prints in words what it took.
"""
from base.line import Dialogue
from base.scenario import Action

STX, ETX, EOT, ACK, CR, NAK, ESC, RS = (bytes([code]) for code in (2, 3, 4, 6, 13, 21, 27, 30))
HANG_UP = b"+++ATH0\r"


async def parity(rule, reply, line):
    """Even parity in the eighth bit."""
    await line.write(bytes(octet | (octet.bit_count() % 2) << 7 for octet in b"".join(reply)))


class Provider(Dialogue):
    """The line while it is connected. Ends when the caller hangs up."""

    def __init__(self, program, line):
        super().__init__(program, line)
        self.password = self.options.provider_password
        self.typed = b""

    async def request(self):
        """What was typed up to one of the ends, with it; None when that hangs up."""
        while True:
            octet = await self.line.octets(1)
            if self.options.provider_echo:
                await self.line.write(octet)
            self.typed += octet
            if self.typed.endswith(HANG_UP):
                return None
            if self.is_whole(self.typed):
                typed, self.typed = self.typed, b""
                return typed

    def took(self, recipient, sender, text):
        self.program.say(f"{self.name} message for {recipient}" + (f" from {sender}" if sender else "") + f": {text}")
        self.program.record({"to": recipient, "from": sender, "text": text, "provider": self.name})

    def nonsense(self, fault, typed):
        self.program.say(f"{self.name} nonsense ({fault}): {typed!r}")
        self.program.record({"fault": fault})

    def refused(self, rule):
        self.program.say(f"{self.name} refused: {rule.get('text')}")


class Ucp(Provider):
    """Operation 01, call input: 01/len/O/01/AdC/OAdC/OAC/MT/message/checksum."""
    name = "UCP"
    ERRORS = {"01": "Checksum error", "02": "Syntax error", "05": "Call barring", "06": "AdC invalid",
              "07": "Authentication failure"}

    @staticmethod
    def is_whole(typed):
        return typed.endswith(ETX)

    async def take(self, request):
        rule = self.rule("UCP", "UCP " + request.decode("latin-1").strip("\x02\x03"))
        error = rule.get("text") if rule.do == "refuse" else self.read(request)
        if rule.do == "refuse":
            self.refused(rule)
        if error:
            answer = f"N/{error}/{self.ERRORS.get(error, '')}/"
        else:
            answer = f"A/{self.recipient}:010203040506/"
        await self.reply(rule, self.framed("01", f"/R/01/{answer}"))

    @staticmethod
    def checksum(content):
        return f"{sum(content) % 256:02X}".encode()

    @classmethod
    def framed(cls, transaction, behind):
        content = f"{transaction}/{len(transaction) + 6 + len(behind) + 2:05}{behind}".encode("latin-1")
        return STX + content + cls.checksum(content) + ETX

    def read(self, request):
        """Takes the message, or gives the number of the error."""
        start = request.rfind(STX)
        content, given = request[start + 1:-3], request[-3:-1]
        # What other centres let pass: the one digit of a small sum, and a zero octet behind it.
        wanted = self.checksum(content)
        if given not in (wanted, wanted[1:] + b"\0"):
            self.nonsense("checksum", request)
            return "01"
        fields = content.decode("latin-1").split("/")
        try:
            if len(fields) != 10 or int(fields[1]) != len(content) + 2 or fields[2:4] != ["O", "01"] or fields[7] != "3":
                raise ValueError("fields")
            text = bytes.fromhex(fields[8]).decode("latin-1")
        except ValueError as fault:
            self.nonsense(str(fault), request)
            return "02"
        if not fields[4].lstrip("+").isdigit():
            return "06"
        if fields[6] != self.password:
            return "07"
        self.recipient = fields[4]
        self.took(fields[4], fields[5], text)
        return None


class Tap(Provider):
    """ID=, ESC PG1, blocks of two fields, EOT. The first block wants a recipient that is a number."""
    name = "TAP"
    identified = False

    @staticmethod
    def is_whole(typed):
        """A block goes up to its checksum, everything else to its end of line."""
        return typed.endswith(CR) and (STX not in typed or ETX in typed)

    async def take(self, request):
        if STX in request:
            rule = self.rule("BLOCK")
            await self.reply(rule, *self.answered(rule, request[request.index(STX):]))
        elif request == CR:
            await self.reply(self.rule("ID"), b"ID=")
        elif request.startswith(ESC + b"PG1"):
            await self.identify(request[4:-1].decode("latin-1"))
        elif request == EOT + CR:
            await self.reply(self.rule("EOT"), ESC + EOT + CR)
        else:
            await self.reply(self.rule("other"), NAK + CR)

    async def identify(self, password):
        self.identified = password == self.password
        rule = self.rule("PG1")
        await self.reply(rule, *([ACK + CR, ESC + b"[p" + CR] if self.identified else [NAK + CR]))

    def answered(self, rule, block):
        if rule.do == "refuse":
            self.refused(rule)
            return [rule.get("text").encode("latin-1") + CR, RS + CR]
        end = block.index(ETX) + 1
        total = sum(block[:end])
        if block[end:] != bytes((total >> shift & 15) + 0x30 for shift in (8, 4, 0)) + CR:
            self.nonsense("checksum", block)
            return [NAK + CR]
        fields = block[1:end - 1].decode("latin-1").split("\r")
        if not self.identified or len(fields) != 3 or fields[2]:
            self.nonsense("fields", block)
            return [RS + CR]
        if not fields[0].isdigit():
            return [b"514 INVALID PAGER ID" + CR, RS + CR]
        self.took(fields[0], "", fields[1])
        return [b"211 Page accepted" + CR, ACK + CR]


PROVIDERS = {"ucp": Ucp, "tap": Tap}

ACTIONS = {
    "refuse": Action("the provider answers `text`: the number of a UCP error, a line of TAP", {"text": "02"}),
    "parity": Action("the reply with even parity in its eighth bits", play=parity),
}


def add_arguments(parser):
    parser.add_argument("--provider", choices=PROVIDERS, default="ucp", help="what answers when ATD dials (ucp)")
    parser.add_argument("--provider-password", default="", help="password that the provider asks for (none)")
    parser.add_argument("--provider-echo", action="store_true", help="the provider echoes")
