#!/usr/bin/env python3
"""A GSM modem on a pseudo-terminal, to try and test SMS programs against.

    lab/modem.py --link build/wine/dosdevices/com5 --message "text SM +31611111111 Hello there"

It speaks the AT dialogue of 3GPP TS 27.005 and 27.007 with message storages, a PIN, +CMS/+CME errors and status
reports, decodes every submitted PDU by itself and prints it in words.

Stored messages, each a --message or a line of an --inbox file, where lines that begin with # do not count:
    text  SM +31611111111 Hello there            a GSM 7-bit message
    ucs2  ME +31611111111 Привет                 a UCS-2 message
    parts SM +31611111111 2,1,3 A long text ...  one message in as many parts, stored in that order
    mms   SM +31611111111 http://mmsc/m1 Hello   the notification of an MMS at that URL, with or without a subject
    pdu   SM 07911326...                         any PDU, as it is

ATD connects to a provider that speaks UCP or TAP (--provider), until "+++ATH0". That DTR is dropped is not seen on a
pseudo-terminal, so a caller who does not hang up stays connected. "ATD*99***1#" connects to the network of packet data
context 1 (--context, AT+CGDCONT), where nobody answers.

The events of a scenario are the commands, and "PDU" the data behind the prompt of AT+CMGS. While connected they are "UCP", or
of TAP "ID", "PG1", "BLOCK" and "EOT", and "+++ATH0".
"""
import asyncio
import fcntl
import os
import re

import provider
from base.line import Dialogue, HangUp, Line
from base.program import Program
from base.scenario import Action, Refused, Rule
from wire import gsm, mms
from wire.parts import in_parts, push_in_parts

CANCEL, SUBMIT = b"\x1b", b"\x1a"
NO_COMMAND = CANCEL + SUBMIT + b" \n"  # is ignored around a command


def hexadecimal(text):
    return int(text, 16)


def claim(link):
    """The lock of a link, a file beside it: it holds until its modem closes it or ends, however it ends."""
    folder, name = os.path.split(link)
    lock = open(os.path.join(folder, f".{name}.lock"), "w", encoding="ascii")
    try:
        fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except BlockingIOError as fault:
        lock.close()
        raise OSError(f"{name.upper()} has another modem; end that lab first") from fault
    return lock


class Storages:
    """What is stored: index -> [unread, PDU] by name of the storage."""
    SIZE = 50
    COMBINED = "MT"  # SM and ME together, ME's from 1001

    def __init__(self, names, combined):
        self.boxes = {name: {} for name in names}
        self.names = names + ([self.COMBINED] if combined else [])

    def store(self, storage, pdu):
        box = self.boxes[storage]
        box[next(index for index in range(1, len(box) + 2) if index not in box)] = [True, pdu.hex().upper()]

    def store_line(self, line):
        try:
            kind, storage, rest = line.split(None, 2)
            if storage not in self.boxes:
                raise ValueError(f"there is no storage {storage}")
            for pdu in self._pdus(kind, rest):
                self.store(storage, pdu)
        except ValueError as fault:
            raise Refused(f"cannot store {line!r}: {fault}") from fault

    @staticmethod
    def _pdus(kind, rest):
        if kind == "pdu":
            return [bytes.fromhex(rest)]
        sender, text = rest.split(None, 1)
        if kind == "mms":
            url, _, subject = text.partition(" ")
            unit = mms.notification(url.rstrip("/").rpartition("/")[2][-40:], sender, url, subject)
            return [gsm.deliver(sender, "data", part, header) for header, part in push_in_parts(mms.pushed(unit))]
        if kind == "parts":
            order, text = text.split(None, 1)
            return [gsm.deliver(sender, "text", part, header) for header, part in in_parts(order, text)]
        if kind not in ("text", "ucs2"):
            raise ValueError(f"there is no kind {kind}")
        return [gsm.deliver(sender, kind, text)]

    @staticmethod
    def described(entry):
        """State and length, without the service centre part, of what is stored."""
        unread, pdu = entry
        return f"{0 if unread else 1},,{len(pdu) // 2 - 1 - int(pdu[:2], 16)}"

    def fill(self, name):
        return f"{len(self.box(name))},{self.SIZE}"

    def box(self, name):
        if name != self.COMBINED:
            return self.boxes.get(name, {})
        return self.boxes.get("SM", {}) | {1000 + index: entry for index, entry in self.boxes.get("ME", {}).items()}

    def remove(self, name, index):
        """Tells whether there was something."""
        if name == self.COMBINED:
            name, index = ("ME", index - 1000) if index > 1000 else ("SM", index)
        return self.boxes.get(name, {}).pop(index, None) is not None


class Contexts:
    """The packet data contexts, 3GPP TS 27.007 section 10.1.1: number -> type and access point name."""

    def __init__(self, numbers, given):
        first, _, last = numbers.partition("-")
        self.first, self.last = int(first), int(last or first)
        self.names, self.attached = {}, False
        for line in given:
            self.define(line)

    @property
    def range(self):
        return f'+CGDCONT: ({self.first}-{self.last}),"IP",,,(0,1),(0,1)'

    def listed(self):
        return [f'+CGDCONT: {number},"{kind}","{name}","0.0.0.0",0,0' for number, (kind, name) in sorted(self.names.items())]

    def define(self, values):
        """Takes the values of AT+CGDCONT; ValueError when they cannot be."""
        number, *rest = [value.strip().strip('"') for value in values.split(",")]
        if not self.first <= int(number) <= self.last:
            raise ValueError(f"there is no context {number}")
        if not rest:
            self.names.pop(int(number), None)
        elif rest[0].upper() in ("IP", "IPV6", "PPP"):
            self.names[int(number)] = (rest[0].upper(), rest[1] if len(rest) > 1 else "")
        else:
            raise ValueError(f"there is no type {rest[0]}")


# --- misbehaviour of modems; the pieces of a reply are its lines

async def late_end(rule, reply, line):
    await line.write(b"".join(reply[:-1]))
    await line.pause(rule.get("ms"))
    await line.write(reply[-1])


async def no_end(rule, reply, line):
    await line.write(b"".join(reply).rstrip(b"\r\n"))


async def halves(rule, reply, line):
    for piece in reply:
        await line.write(piece[:len(piece) // 2])
        await line.pause(rule.get("ms"))
        await line.write(piece[len(piece) // 2:])


async def block(rule, reply, line):
    line.block(rule.get("ms"))
    await line.write(b"".join(reply))


class Commands(Dialogue):
    """The AT dialogue: commands, and what is typed behind the prompt."""

    UNHEARD = ("silence", "stall", "instead", "flood")  # a reply that was not whole changes nothing
    LINE_ENDS = {"crlf": b"\r\n", "lf": b"\n", "cr": b"\r"}

    def __init__(self, program, line):
        super().__init__(program, line)
        self.storages = program.storages
        self.contexts = program.contexts
        self.typed = ""  # the command as it came
        self.selected = [self.storages.names[0]] * 3  # to read and delete, to write and send, to receive
        self.charset = "GSM"
        self.unlocked = not self.options.pin
        self.pin_tries = 3
        self.echo = True
        self.verbose_errors = False
        self.text_mode = False
        self.reports = "0"
        self.smsc = gsm.SERVICE_CENTRE
        self.reference = self.options.first_reference - 1
        self.prompt = None  # what AT+CMGS announced, while its prompt is open
        self.registration_polls = self.options.registration_polls
        self.line_end = self.LINE_ENDS[self.options.line_end]

    async def speak_up(self):
        """Says a line of its own at every so many ms, but not to who types behind the prompt."""
        while self.options.every:
            await self.line.pause(self.options.every)
            if self.prompt is None:
                await self.line.write(b"".join(map(self.framed, self.options.unsolicited.split("\n"))))

    async def request(self):
        """A command, or behind the prompt what was typed with the octet that ends it."""
        typed = b""
        while True:
            octet = await self.line.octets(1)
            if self.prompt is not None:
                typed += octet
                if octet in (CANCEL, SUBMIT):
                    return typed
                continue
            if self.echo:
                await self.line.write(octet)
            if octet == b"\r" and typed.strip(NO_COMMAND):
                return typed.strip(NO_COMMAND)
            typed = b"" if octet == b"\r" else typed + octet.strip(b"\n")

    async def take(self, request):
        if self.prompt is None:
            await self.take_command(request.decode("latin-1"))
        else:
            await self.take_data(request[:-1], request[-1:] == CANCEL)

    async def lines(self, rule, lines):
        await self.reply(rule, *map(self.framed, lines))

    def framed(self, line):
        return self.line_end + line.encode("latin-1", "replace") + self.line_end

    async def take_command(self, command):
        self.program.record({"command": command})
        shown = "AT+CPIN=****" if command.upper().startswith("AT+CPIN=") else command
        rule = self.rule(command, shown)
        if rule.do in ("error", "reply"):
            await self.lines(rule, rule.get("text").split("\n"))
            return
        if command.upper().startswith("ATD"):
            await self.dial(rule, command[3:])
            return
        self.typed = command
        lines = self.spoilt(rule, self.answer(command.upper()))
        if self.prompt is None:
            await self.lines(rule, lines)
        else:
            if rule.do in self.UNHEARD:
                self.prompt = None
            await self.reply(rule, self.line_end + b"> ")
        if rule.do == "keep-echo":
            self.echo = True

    async def dial(self, rule, number):
        if packet := re.fullmatch(r"\*99(?:\*\*\*(\d+))?#", number):
            await self.dial_packet_data(rule, int(packet[1] or 1))
            return
        await self.lines(rule, ["CONNECT 9600"])
        if rule.do in self.UNHEARD:
            return
        self.program.say(f"connected to {number}")
        try:
            await provider.PROVIDERS[self.options.provider](self.program, self.line).converse()
            self.program.say("hung up by the caller")
            await self.lines(self.rule("+++ATH0"), ["OK"])
        except HangUp:
            self.program.say("hung up by the provider")
            await self.lines(Rule(), ["NO CARRIER"])

    async def dial_packet_data(self, rule, number):
        """The link to a context's network. There is none: what comes is counted until "+++ATH0"."""
        if number not in self.contexts.names:
            self.program.say(f"there is no context {number} to connect")
            await self.lines(rule, ["NO CARRIER"])
            return
        self.program.say(f"connected context {number}, {self.contexts.names[number][1] or 'no access point'}")
        self.program.record({"context": number, "apn": self.contexts.names[number][1]})
        await self.lines(rule, ["CONNECT"])
        if rule.do in self.UNHEARD:
            return
        count, end = 0, b""
        while end != provider.HANG_UP:
            end = (end + await self.line.octets(1))[-len(provider.HANG_UP):]
            count += 1
        self.program.say(f"hung up by the caller after {count - len(end)} octets")
        await self.lines(self.rule("+++ATH0"), ["OK"])

    @staticmethod
    def spoilt(rule, lines):
        """A list as the rule spoils it: each entry is a line of values and one with the PDU."""
        for place, line in enumerate(lines):
            if not line.startswith("+CMGL:"):
                continue
            if rule.do == "length":
                values, length = line.rsplit(",", 1)
                lines[place] = f"{values},{int(length) + rule.get('add')}"
            elif rule.do == "cut-pdu":
                lines[place + 1] = lines[place + 1][:-rule.get("characters")]
        return lines

    # --- the commands: each gives the lines of its reply

    def answer(self, command):
        name, _, value = command.partition("=")
        value = value.strip().strip('"')
        if command in self.FIXED:
            return [*self.FIXED[command], "OK"]
        always, handler = self.COMMANDS.get(name, (False, None))
        if not always and not self.options.sim:
            return self.error("CMS" if name.startswith(("AT+CM", "AT+CP", "AT+CN", "AT+CS")) else "CME", 310)
        if not always and not self.unlocked:
            return self.error("CMS", 311)
        return handler(self, value) if handler else ["ERROR"]

    def error(self, family, number):
        return [f"+{family} ERROR: {number}" if self.verbose_errors or family == "CMS" else "ERROR"]

    def set_echo(self, on):
        self.echo = on
        return ["OK"]

    def set_errors(self, value):
        self.verbose_errors = value != "0"
        return ["OK"]

    def show_pin(self, _):
        state = "READY" if self.unlocked else "SIM PIN" if self.pin_tries else "SIM PUK"
        return [f"+CPIN: {state}", "OK"] if self.options.sim else self.error("CME", 10)

    def take_pin(self, value):
        if not self.options.sim:
            return self.error("CME", 10)
        if value == "?":
            return ["OK"]
        if self.pin_tries and value == self.options.pin:
            self.unlocked = True
            self.program.say("PIN accepted")
            return ["OK"]
        self.pin_tries = max(0, self.pin_tries - 1)
        self.program.say(f"PIN refused, {self.pin_tries} tries left")
        return self.error("CME", 16)

    def show_registration(self, _):
        self.registration_polls -= 1
        registered = self.unlocked and self.registration_polls <= 0
        return [f"+CREG: 0,{1 if registered else 2}", "OK"]

    def show_smsc(self, _):
        return [f'+CSCA: "{self.smsc}",{145 if self.smsc.startswith("+") else 129}', "OK"]

    def set_smsc(self, value):
        if not value.lstrip("+").isdigit():
            return ["ERROR"]
        self.smsc = value
        return ["OK"]

    def select_storage(self, value):
        if value == "?":
            group = "(" + ",".join(f'"{name}"' for name in self.storages.names) + ")"
            return [f"+CPMS: {group},{group},{group}", "OK"]
        chosen = [name.strip().strip('"') for name in value.split(",")]
        if len(chosen) > 3 or not all(name in self.storages.names for name in chosen):
            return ["ERROR"]
        # One that is named alone is for all, as the first modems of one storage had it.
        self.selected = chosen * 3 if len(chosen) == 1 else chosen + self.selected[len(chosen):]
        return ["+CPMS: " + ",".join(map(self.storages.fill, self.selected)), "OK"]

    def show_storages(self, _):
        return ["+CPMS: " + ",".join(f'"{name}",{self.storages.fill(name)}' for name in self.selected), "OK"]

    def show_charset(self, _):
        return [f'+CSCS: "{self.charset}"', "OK"]

    def set_charset(self, value):
        if value == "?":
            return ["+CSCS: (" + ",".join(f'"{name}"' for name in self.CHARSETS) + ")", "OK"]
        if value not in self.CHARSETS:
            return ["ERROR"]
        self.charset = value
        return ["OK"]

    def show_mode(self, _):
        return [f"+CMGF: {1 if self.text_mode else 0}", "OK"]

    def set_mode(self, value):
        if value == "?":
            return [f"+CMGF: ({self.options.modes})", "OK"]
        self.text_mode = value == "1"
        return ["OK"]

    def set_indications(self, value):
        if value == "?":
            return [f"+CNMI: {self.options.cnmi}", "OK"]
        numbers = [number.strip() or "0" for number in value.split(",")]
        if len(numbers) > 5 or not all(number.isdigit() for number in numbers):
            return ["ERROR"]
        self.reports = (numbers + ["0"] * 5)[3]
        return ["OK"]

    def list_messages(self, value):
        if value not in ("0", "1", "2", "3", "4"):
            return ["ERROR"]
        lines = []
        for index, entry in sorted(self.storages.box(self.selected[0]).items()):
            if value in ("0" if entry[0] else "1", "4"):
                lines += [f"+CMGL: {index},{self.storages.described(entry)}", entry[1]]
                entry[0] = False
        return lines + ["OK"]

    def read_message(self, value):
        entry = self.storages.box(self.selected[0]).get(int(value) if value.isdigit() else None)
        if entry is None:
            return self.error("CMS", 321)
        lines = [f"+CMGR: {self.storages.described(entry)}", entry[1], "OK"]
        entry[0] = False
        return lines

    def delete(self, value):
        index = value.split(",")[0].strip()
        if not index.isdigit():
            return ["ERROR"]
        if not self.storages.remove(self.selected[0], int(index)):
            return self.error("CMS", 321)
        self.program.say(f"deleted {self.selected[0]} {value}")
        return ["OK"]

    def show_contexts(self, _):
        return [*self.contexts.listed(), "OK"]

    def set_context(self, value):
        if value == "?":
            return [self.contexts.range, "OK"]
        try:
            self.contexts.define(self.typed.partition("=")[2])
        except ValueError:
            return self.error("CME", 50)  # incorrect parameters
        self.program.say(f"context {self.typed.partition('=')[2]}")
        return ["OK"]

    def show_attachment(self, _):
        return [f"+CGATT: {int(self.contexts.attached)}", "OK"]

    def set_attachment(self, value):
        if value == "?":
            return ["+CGATT: (0,1)", "OK"]
        if value not in ("0", "1"):
            return ["ERROR"]
        self.contexts.attached = value == "1"
        return ["OK"]

    def send(self, value):
        self.prompt = value
        return []

    CHARSETS = ("GSM", "IRA")

    # Without values, also without a SIM card and while its PIN is missing.
    FIXED = {
        "ATI": ["Lab", "Modem"],
        "AT+CGMI": ["Lab"],
        "AT+CGMM": ["Modem"],
        "AT+CGMR": ["1.0"],
        "AT+CGSN": ["490154203237518"],  # the example number of 3GPP TS 23.003
        "AT+CSQ": ["+CSQ: 20,99"],
        "AT+CFUN=1": [],
        "AT&W": [],  # nothing is kept that would be lost
        "ATM0": [],  # the loudspeaker
        "ATX3": [],  # dials without waiting for a tone
        "ATH": [],
        "ATH0": [],
        "+++ATH0": [],  # not connected any more
    }

    # name -> (also without a SIM card and while its PIN is missing, handler)
    COMMANDS = {
        "AT": (True, lambda self, _: ["OK"]),
        "ATZ": (True, lambda self, _: ["OK"]),
        "AT&F": (True, lambda self, _: ["OK"]),
        "ATE0": (True, lambda self, _: self.set_echo(False)),
        "ATE1": (True, lambda self, _: self.set_echo(True)),
        "AT+CMEE": (True, set_errors),
        "AT+CPIN?": (True, show_pin),
        "AT+CPIN": (True, take_pin),
        "AT+CSCS?": (True, show_charset),
        "AT+CSCS": (True, set_charset),
        "AT+CREG?": (True, show_registration),
        "AT+CSCA?": (False, show_smsc),
        "AT+CSCA": (False, set_smsc),
        "AT+CPMS?": (False, show_storages),
        "AT+CPMS": (False, select_storage),
        "AT+CMGF?": (False, show_mode),
        "AT+CMGF": (False, set_mode),
        "AT+CNMI": (False, set_indications),
        "AT+CMGL": (False, list_messages),
        "AT+CMGR": (False, read_message),
        "AT+CMGD": (False, delete),
        "AT+CMGS": (False, send),
        "AT+CGDCONT?": (False, show_contexts),
        "AT+CGDCONT": (False, set_context),
        "AT+CGATT?": (False, show_attachment),
        "AT+CGATT": (False, set_attachment),
    }

    # --- submitted messages

    async def take_data(self, typed, cancelled):
        rule = self.rule("PDU")
        if rule.do == "lost-end" and not cancelled:
            return
        announced, self.prompt = self.prompt, None
        if cancelled:
            await self.lines(rule, ["OK"])
        elif rule.do in ("error", "reply"):
            await self.lines(rule, rule.get("text").split("\n"))
        else:
            await self.submit(rule, announced, typed)

    async def submit(self, rule, announced, typed):
        try:
            fields = self.submitted(announced, typed)
        except (ValueError, IndexError) as fault:
            self.program.say(f"submitted nonsense ({fault}): {typed!r}")
            self.program.record({"fault": str(fault)})
            await self.lines(rule, ["+CMS ERROR: 304"])
            return
        self.reference = (self.reference + 1) % 256
        fields["given"] = self.reference
        self.program.say(f"submitted {self.reference}: {gsm.describe(fields)}")
        self.program.record(fields)
        if fields["report"] and self.reports == "2":
            report = gsm.status_report(self.reference, fields["to"], self.options.report_status)
            self.storages.store("SR" if "SR" in self.storages.boxes else self.storages.names[0], report)
        await self.lines(rule, [f"+CMGS: {self.reference}", "OK"])

    def submitted(self, announced, typed):
        if self.text_mode:
            return {"to": announced, "coding": "text mode", "text": typed.decode("cp1252", "replace"), "flash": False,
                    "smsc": "", "report": False}
        pdu = bytes.fromhex(typed.decode("ascii"))
        return gsm.read_submit(pdu) | {"announced": int(announced), "length": len(pdu)}


class Modem(Program):
    event = "AT+CMGS"
    own_actions = {
        "error": Action("replies `text` and does nothing", {"text": "ERROR"}),
        "reply": Action("replies the lines of `text`, no OK, and does nothing", {"text": ""}),
        "keep-echo": Action("ATE0 is answered but not obeyed"),
        "late-end": Action("the last line of the reply `ms` later", {"ms": 2500}, late_end),
        "no-end": Action("the reply without its last line end", play=no_end),
        "halves": Action("each line in two halves, `ms` apart", {"ms": 500}, halves),
        "block": Action("nothing is taken from the line for `ms`, from the reply on", {"ms": 7000}, block),
        "lost-end": Action("what ends the data of a message is not heard: the prompt stays open until ESC"),
        "length": Action("AT+CMGL states lengths that are `add` octets off", {"add": 1}),
        "cut-pdu": Action("the PDUs of AT+CMGL lack their last `characters`", {"characters": 2}),
    } | provider.ACTIONS

    @classmethod
    def add_arguments(cls, parser):
        parser.add_argument("--link", required=True, help="where the modem is found: a symbolic link that is made")
        parser.add_argument("--inbox", help="file of stored messages")
        parser.add_argument("--message", action="append", default=[], help="one stored message")
        parser.add_argument("--pin", default="", help="PIN of the SIM card; none when empty")
        parser.add_argument("--no-sim", dest="sim", action="store_false", help="no SIM card is inserted")
        parser.add_argument("--storages", default="SM,ME,SR", help="storages, for example SM,ME")
        parser.add_argument("--combined", action="store_true", help="offer MT as well")
        parser.add_argument("--modes", default="0,1", help="answer to AT+CMGF=?")
        parser.add_argument("--cnmi", default="(0-2),(0-3),(0,2),(0-2),(0,1)", help="answer to AT+CNMI=?")
        parser.add_argument("--report-status", type=hexadecimal, default="00", help="TP-Status of reports, hexadecimal")
        parser.add_argument("--line-end", choices=Commands.LINE_ENDS, default="crlf", help="what ends its lines")
        parser.add_argument("--unsolicited", default="^RSSI: 20", help="lines that it says by itself")
        parser.add_argument("--every", type=int, default=0, help="ms between two times that it says them; 0 = never")
        parser.add_argument("--registration-polls", type=int, default=1, help="AT+CREG? answers until registered")
        parser.add_argument("--first-reference", type=int, default=17, help="reference of the first message")
        parser.add_argument("--context", action="append", default=[], metavar="NUMBER,IP,APN",
                            help="a packet data context that is there from the start")
        parser.add_argument("--context-numbers", default="1-16", help="numbers that contexts can have (1-16)")
        provider.add_arguments(parser)

    def __init__(self, options):
        super().__init__(options)
        self.terminal = self.lock = None
        self.storages = Storages(options.storages.split(","), options.combined)
        try:
            self.contexts = Contexts(options.context_numbers, options.context)
        except ValueError as fault:
            raise Refused(f"context: {fault}") from fault
        for line in options.message + self.inbox():
            self.storages.store_line(line)

    def inbox(self):
        if not self.options.inbox:
            return []
        try:
            with open(self.options.inbox, encoding="utf-8") as file:
                return [line.rstrip("\n") for line in file if line.strip() and not line.startswith("#")]
        except (OSError, ValueError) as fault:
            raise Refused(f"inbox {self.options.inbox}: {fault}") from fault

    async def open(self):
        link = self.options.link
        if os.path.lexists(link) and not os.path.islink(link):
            raise Refused(f"{link} is there and no link")
        self.lock = claim(link)
        line, self.terminal = await Line.pseudo_terminal()
        if os.path.islink(link):
            os.unlink(link)
        os.symlink(self.terminal, link)
        self.talk = asyncio.create_task(self.run_line(line))
        return f"on {link}"

    async def run_line(self, line):
        commands = Commands(self, line)
        speaking = asyncio.create_task(commands.speak_up())
        await commands.run()
        speaking.cancel()
        self.ended.set()

    async def close(self):
        if self.terminal and os.path.islink(self.options.link) and os.readlink(self.options.link) == self.terminal:
            os.unlink(self.options.link)
        if self.lock:
            self.lock.close()


if __name__ == "__main__":
    Modem.main()
