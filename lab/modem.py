#!/usr/bin/env python3
"""A GSM modem on a pseudo-terminal, to try and test SMS programs against.

    lab/modem.py --link build/wine/dosdevices/com5 --inbox lab/inbox.txt

It speaks the AT dialogue of 3GPP TS 27.005 and 27.007 with message storages, a PIN, +CMS/+CME errors and status
reports, decodes every submitted PDU by itself and prints it in words. It shares no code with the component.

Inbox lines (also with --message):
    text  SM +31611111111 Hello there            a GSM 7-bit message
    ucs2  ME +31611111111 Привет                 a UCS-2 message
    parts SM +31611111111 2,1,3 A long text ...  one message in as many parts, stored in that order
    pdu   SM 07911326...                         any PDU, as it is
Scenario file: a JSON list of rules. The first rule that fits a command misbehaves:
    {"match": "AT+CMGS", "nth": [2], "do": "error", "text": "+CMS ERROR: 38"}
`match` is the beginning of the command ("PDU" for the data after the prompt), `nth` the occurrences it fits (all when
missing), and `do` one of: error (reply `text`), reply (lines of `text`, no OK), delay (`ms`, then as usual), split
(octets one by one, `ms` apart), join (with the reply to the next command), unsolicited (`text` between the reply's
lines), garbage (`text` before the reply), silence, stall (half the reply, then nothing), flood (`text` again and again
for `ms`), keep-echo (ATE0 is answered but not obeyed), hangup (the line is dropped).
"""
import argparse
import json
import os
import pty
import select
import signal
import sys
import time
import tty

ALPHABET = ("@£$¥èéùìòÇ\nØø\rÅåΔ_ΦΓΛΩΠΨΣΘΞ\x1bÆæßÉ !\"#¤%&'()*+,-./0123456789:;<=>?"
            "¡ABCDEFGHIJKLMNOPQRSTUVWXYZÄÖÑÜ§¿abcdefghijklmnopqrstuvwxyzäöñüà")
ESCAPES = {0x0A: "\f", 0x14: "^", 0x28: "{", 0x29: "}", 0x2F: "\\", 0x3C: "[", 0x3D: "~", 0x3E: "]", 0x40: "|",
           0x65: "€"}
CODES = {char: [code] for code, char in enumerate(ALPHABET)}
CODES.update({char: [0x1B, code] for code, char in ESCAPES.items()})


# --- PDUs, read and written the slow and plain way

def septets_from(data, skip_bits, count):
    bits = "".join(f"{octet:08b}"[::-1] for octet in data)[skip_bits:]
    return [int(bits[i:i + 7][::-1], 2) for i in range(0, 7 * count, 7) if len(bits[i:i + 7]) == 7]


def septets_to(codes, skip_bits=0):
    bits = "0" * skip_bits + "".join(f"{code:07b}"[::-1] for code in codes)
    bits += "0" * (-len(bits) % 8)
    return bytes(int(bits[i:i + 8][::-1], 2) for i in range(0, len(bits), 8))


def text_from_codes(codes):
    text, escaped = "", False
    for code in codes:
        if code == 0x1B and not escaped:
            escaped = True
            continue
        text += ESCAPES.get(code, ALPHABET[code]) if escaped else ALPHABET[code]
        escaped = False
    return text


def number_from(type_octet, digits):
    swapped = "".join(f"{octet & 15:X}{octet >> 4:X}" for octet in digits).rstrip("F")
    return ("+" if type_octet & 0x70 == 0x10 else "") + swapped


def number_to(number):
    digits = number.lstrip("+")
    padded = digits + "F" * (len(digits) % 2)
    octets = bytes(int(padded[i + 1] + padded[i], 16) for i in range(0, len(padded), 2))
    return bytes([len(digits), 0x91 if number.startswith("+") else 0x81]) + octets


def stamp(seconds):
    parts = time.localtime(seconds)
    pairs = [parts.tm_year % 100, parts.tm_mon, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec, 0]
    return bytes((pair % 10) << 4 | pair // 10 for pair in pairs)


def elements_of(header):
    found, at = [], 0
    while at + 2 <= len(header):
        size = header[at + 1]
        found.append((header[at], header[at + 2:at + 2 + size]))
        at += 2 + size
    return found


def read_submit(pdu):
    """The fields of an SMS-SUBMIT with its service centre part, 3GPP TS 23.040 section 9.2.2.2."""
    at = 1 + pdu[0]
    smsc = number_from(pdu[1], pdu[2:at]) if pdu[0] else ""
    first, digits, kind = pdu[at], pdu[at + 2], pdu[at + 3]
    if first & 3 != 1:
        raise ValueError("not an SMS-SUBMIT")
    end = at + 4 + (digits + 1) // 2
    fields = {"smsc": smsc, "to": number_from(kind, pdu[at + 4:end]), "type_of_address": kind,
              "pid": pdu[end], "dcs": pdu[end + 1], "report": bool(first & 0x20), "reference": pdu[at + 1]}
    at = end + 2
    if first & 0x18 == 0x10:
        fields["validity"] = pdu[at]
        at += 1
    size, data = pdu[at], pdu[at + 1:]
    header = data[1:1 + data[0]] if first & 0x40 else b""
    taken = len(header) + 1 if first & 0x40 else 0
    fields["header"] = header.hex().upper()
    for name, value in elements_of(header):
        if name == 0 and len(value) == 3:
            fields["concatenation"], fields["parts"], fields["part"] = value
        if name == 5 and len(value) == 4:
            fields["port"] = value[0] << 8 | value[1]
    dcs = fields["dcs"]
    fields["flash"] = dcs & 0x10 != 0 and dcs & 3 == 0 and dcs & 0xC0 == 0
    coding = (dcs >> 2) & 3 if dcs & 0xC0 == 0 or dcs & 0xF0 == 0xF0 else 0
    if coding == 2:
        fields["coding"], fields["text"] = "UCS-2", data[taken:size].decode("utf-16-be", "replace")
    elif coding == 1:
        fields["coding"], fields["data"] = "8-bit data", data[taken:size].hex().upper()
    else:
        fill = -8 * taken % 7
        count = size - (8 * taken + fill) // 7
        fields["coding"] = "GSM 7-bit"
        fields["text"] = text_from_codes(septets_from(data[taken:], fill, count))
    expected = (size * 7 + 7) // 8 if coding in (0, 3) else size
    if len(data) != expected:
        raise ValueError(f"user data is {len(data)} octets, TP-UDL says {expected}")
    return fields


def describe(fields):
    words = [f"to {fields['to']}", fields["coding"]]
    if fields["flash"]:
        words.append("flash")
    if "parts" in fields:
        words.append(f"part {fields['part']} of {fields['parts']} of message {fields['concatenation']}")
    if "port" in fields:
        words.append(f"port {fields['port']}")
    if "validity" in fields:
        words.append(f"validity octet {fields['validity']:02X}")
    if fields["smsc"]:
        words.append(f"through {fields['smsc']}")
    if fields["report"]:
        words.append("report requested")
    return ", ".join(words) + ": " + json.dumps(fields.get("text", fields.get("data")), ensure_ascii=False)


def deliver(sender, coding, body, header=b"", when=None):
    """One SMS-DELIVER with the service centre +31653131313."""
    first = 0x44 if header else 0x04
    taken = bytes([len(header)]) + header if header else b""
    if coding == "ucs2":
        data, dcs = taken + body.encode("utf-16-be"), 0x08
        size = len(data)
    else:
        codes = [code for char in body for code in CODES.get(char, CODES["?"])]
        fill = -8 * len(taken) % 7
        data, dcs = taken + septets_to(codes, fill), 0x00
        size = (8 * len(taken) + fill) // 7 + len(codes)
    smsc = number_to("+31653131313")
    return (bytes([len(smsc) - 1]) + smsc[1:] + bytes([first]) + number_to(sender) + bytes([0, dcs]) +
            stamp(time.time() if when is None else when) + bytes([size]) + data)


def status_report(reference, recipient, status):
    return (bytes([0, 0x06, reference]) + number_to(recipient) + stamp(time.time()) + stamp(time.time()) +
            bytes([status]))


class HangUp(Exception):
    """The line is dropped."""


class Modem:
    SIZE = 50

    def __init__(self, options):
        self.options = options
        self.storages = {name: {} for name in options.storages.split(",")}  # index -> [unread, PDU]
        self.selected = "SM"
        self.unlocked = not options.pin
        self.pin_tries = 3
        self.echo = True
        self.verbose_errors = False
        self.text_mode = False
        self.reports = 0
        self.smsc = ""
        self.reference = options.first_reference - 1
        self.counts = {}
        self.held = b""
        self.prompt = None
        self.registration_polls = options.registration_polls
        self.rules = json.load(open(options.scenario, encoding="utf-8")) if options.scenario else []
        for line in options.message or []:
            self.store_line(line)
        if options.inbox:
            with open(options.inbox, encoding="utf-8") as file:
                for line in file:
                    if line.strip() and not line.startswith("#"):
                        self.store_line(line.rstrip("\n"))
        self.master, self.slave = pty.openpty()
        tty.setraw(self.slave)
        if os.path.lexists(options.link):
            os.unlink(options.link)
        os.symlink(os.ttyname(self.slave), options.link)

    # --- what is stored

    def store(self, storage, pdu, unread=True):
        box = self.storages[storage]
        index = next(i for i in range(1, 10000) if i not in box)
        box[index] = [unread, pdu]

    def store_line(self, line):
        kind, storage, rest = line.split(None, 2)
        if kind == "pdu":
            self.store(storage, rest)
            return
        sender, rest = rest.split(None, 1)
        if kind in ("text", "ucs2"):
            self.store(storage, deliver(sender, kind, rest).hex().upper())
            return
        order, text = rest.split(None, 1)
        order = [int(number) for number in order.split(",")]
        size = -(-len(text) // len(order))
        for number in order:
            header = bytes([0, 3, 77, len(order), number])
            part = text[(number - 1) * size:number * size]
            self.store(storage, deliver(sender, "text", part, header).hex().upper())

    def box(self):
        """The entries of the selected storage; MT is SM and ME together, ME's from 1001."""
        if self.selected != "MT":
            return self.storages.get(self.selected, {})
        both = dict(self.storages.get("SM", {}))
        both.update({1000 + index: entry for index, entry in self.storages.get("ME", {}).items()})
        return both

    def remove(self, index):
        if self.selected != "MT":
            return self.storages[self.selected].pop(index, None)
        return self.storages["ME" if index > 1000 else "SM"].pop(index % 1000 or 1000, None)

    # --- the line

    def say(self, text):
        print(text, flush=True)

    def record(self, fields):
        if self.options.record:
            with open(self.options.record, "a", encoding="utf-8") as file:
                file.write(json.dumps(fields, ensure_ascii=False) + "\n")

    def write(self, data):
        while data:
            size = os.write(self.master, data[:1024])
            data = data[size:]

    def reply(self, lines, rule):
        data = self.held + b"".join(b"\r\n" + line.encode("latin-1", "replace") + b"\r\n" for line in lines)
        self.held = b""
        what = rule.get("do")
        pause = rule.get("ms", 20) / 1000
        text = rule.get("text", "")
        if what == "silence":
            return
        if what == "hangup":
            raise HangUp
        if what == "delay":
            time.sleep(pause)
        if what == "join":
            self.held = data
            return
        if what == "garbage":
            data = text.encode("latin-1") + b"\r\n" + data
        if what == "unsolicited":
            noise = b"\r\n" + text.encode("latin-1") + b"\r\n"
            data = noise + noise.join(b"\r\n" + line.encode("latin-1", "replace") + b"\r\n" for line in lines)
        if what == "stall":
            data = data[:len(data) // 2]
        if what == "flood":
            end = time.time() + rule.get("ms", 1000) / 1000
            while time.time() < end:
                self.write((text or "RING").encode("latin-1") + b"\r\n")
                time.sleep(0.001)
            return
        if what == "split":
            for octet in data:
                self.write(bytes([octet]))
                time.sleep(pause)
            return
        self.write(data)

    def rule_for(self, command):
        name = "PDU" if self.prompt is not None else command.upper()
        for number, rule in enumerate(self.rules):
            if not name.startswith(rule["match"].upper()):
                continue
            self.counts[number] = self.counts.get(number, 0) + 1
            if "nth" not in rule or self.counts[number] in rule["nth"]:
                return rule
        return {}

    def run(self):
        line = b""
        while True:
            if not select.select([self.master], [], [], 0.5)[0]:
                if os.getppid() == 1 and not self.options.stay:
                    return
                continue
            try:
                data = os.read(self.master, 4096)
            except OSError:
                return
            for value in data:
                octet = bytes([value])
                if self.echo and self.prompt is None:
                    self.write(octet)
                if self.prompt is not None and octet in (b"\x1a", b"\x1b"):
                    self.take_data(line, octet == b"\x1b")
                    line = b""
                elif self.prompt is None and octet == b"\r":
                    command, line = line.decode("latin-1").strip(), b""
                    if command:
                        self.take_command(command)
                elif octet != b"\n" or self.prompt is not None:
                    line += octet

    def take_command(self, command):
        shown = "AT+CPIN=****" if command.upper().startswith("AT+CPIN=") else command
        if self.options.trace:
            self.say(f"< {shown}")
        self.record({"command": command})
        rule = self.rule_for(command)
        if rule.get("do") == "error":
            self.reply([rule.get("text", "ERROR")], {})
            return
        if rule.get("do") == "reply":
            self.reply(rule["text"].split("\n"), {})
            return
        lines = self.answer(command)
        if lines is None:  # the prompt
            if rule.get("do") in ("silence", "stall"):
                self.prompt = None
            else:
                self.write(b"\r\n> ")
            return
        self.reply(lines, rule)
        if rule.get("do") == "keep-echo":
            self.echo = True

    # --- the commands

    def error(self, family, number):
        return [f"+{family} ERROR: {number}" if self.verbose_errors or family == "CMS" else "ERROR"]

    def answer(self, command):
        upper = command.upper()
        name, _, value = upper.partition("=")
        value = value.strip().strip('"')
        if upper in ("AT", "ATZ", "AT&F"):
            return ["OK"]
        if upper in ("ATE0", "ATE1"):
            self.echo = upper == "ATE1"
            return ["OK"]
        if name == "AT+CMEE":
            self.verbose_errors = value != "0"
            return ["OK"]
        if name.startswith("AT+CPIN"):
            return self.answer_pin(name, value)
        if name == "AT+CREG?":
            self.registration_polls -= 1
            registered = self.unlocked and self.registration_polls <= 0
            return [f"+CREG: 0,{1 if registered else 2}", "OK"]
        if not self.options.sim:
            return self.error("CMS" if name.startswith(("AT+CM", "AT+CP", "AT+CN", "AT+CS")) else "CME", 310)
        if not self.unlocked:
            return self.error("CMS", 311)
        handler = {"AT+CSCA": self.answer_smsc, "AT+CPMS": self.answer_storage, "AT+CMGF": self.answer_mode,
                   "AT+CNMI": self.answer_indications, "AT+CMGL": self.answer_list, "AT+CMGD": self.answer_delete,
                   "AT+CMGS": self.answer_send, "AT+CSCA?": lambda _: [f'+CSCA: "{self.smsc}"', "OK"]}.get(name)
        return handler(value) if handler else ["ERROR"]

    def answer_pin(self, name, value):
        if not self.options.sim:
            return self.error("CME", 10)
        if name == "AT+CPIN?":
            state = "READY" if self.unlocked else "SIM PIN" if self.pin_tries else "SIM PUK"
            return [f"+CPIN: {state}", "OK"]
        if self.pin_tries and value == self.options.pin:
            self.unlocked = True
            self.say("PIN accepted")
            return ["OK"]
        self.pin_tries = max(0, self.pin_tries - 1)
        self.say(f"PIN refused, {self.pin_tries} tries left")
        return self.error("CME", 16)

    def answer_smsc(self, value):
        if not value.lstrip("+").isdigit():
            return ["ERROR"]
        self.smsc = value
        return ["OK"]

    def answer_storage(self, value):
        names = list(self.storages) + (["MT"] if self.options.combined else [])
        if value == "?":
            group = "(" + ",".join(f'"{name}"' for name in names) + ")"
            return [f"+CPMS: {group},{group},{group}", "OK"]
        if value not in names:
            return ["ERROR"]
        self.selected = value
        used = len(self.box())
        return [f"+CPMS: {used},{self.SIZE},{used},{self.SIZE},{used},{self.SIZE}", "OK"]

    def answer_mode(self, value):
        if value == "?":
            return [f"+CMGF: ({self.options.modes})", "OK"]
        self.text_mode = value == "1"
        return ["OK"]

    def answer_indications(self, value):
        if value == "?":
            return [f"+CNMI: {self.options.cnmi}", "OK"]
        self.reports = int((value.split(",") + ["0"] * 5)[3] or 0)
        return ["OK"]

    def answer_list(self, value):
        lines = []
        for index, entry in sorted(self.box().items()):
            if entry[0] != (value == "0"):
                continue
            lines += [f"+CMGL: {index},{value},,{len(entry[1]) // 2 - 8}", entry[1]]
        if value == "0":
            for entry in self.box().values():
                entry[0] = False
        return lines + ["OK"]

    def answer_delete(self, value):
        if self.remove(int(value.split(",")[0] or 0)) is None:
            return self.error("CMS", 321)
        self.say(f"deleted {self.selected} {value}")
        return ["OK"]

    def answer_send(self, value):
        self.prompt = value
        return None

    # --- submitted messages

    def take_data(self, line, cancelled):
        announced = self.prompt
        rule = self.rule_for("PDU")
        self.prompt = None
        if cancelled:
            self.reply(["OK"], {})
            return
        if rule.get("do") == "error":
            self.reply([rule.get("text", "ERROR")], {})
            return
        if self.text_mode:
            fields = {"to": announced, "coding": "text mode", "text": line.decode("cp1252", "replace"), "flash": False,
                      "smsc": "", "report": False}
        else:
            try:
                pdu = bytes.fromhex(line.decode("ascii"))
                fields = read_submit(pdu)
                fields["announced"], fields["length"] = int(announced), len(pdu)
            except (ValueError, IndexError) as fault:
                self.say(f"submitted nonsense ({fault}): {line!r}")
                self.record({"fault": str(fault)})
                self.reply(["+CMS ERROR: 304"], {})
                return
        self.reference = (self.reference + 1) % 256
        fields["given"] = self.reference
        self.say(f"submitted {self.reference}: {describe(fields)}")
        self.record(fields)
        self.reply([f"+CMGS: {self.reference}", "OK"], rule)
        if fields["report"] and self.reports == 2:
            report = status_report(self.reference, fields["to"], int(self.options.report_status, 16))
            self.store("SR" if "SR" in self.storages else "SM", report.hex().upper())


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--link", required=True, help="where the modem is found: a symbolic link that is made")
    parser.add_argument("--inbox", help="file of stored messages")
    parser.add_argument("--message", action="append", help="one stored message, as a line of the inbox file")
    parser.add_argument("--scenario", help="JSON file of rules by which the modem misbehaves")
    parser.add_argument("--pin", default="", help="PIN of the SIM card; none when empty")
    parser.add_argument("--no-sim", dest="sim", action="store_false", help="no SIM card is inserted")
    parser.add_argument("--storages", default="SM,ME,SR", help="storages, for example SM,ME")
    parser.add_argument("--combined", action="store_true", help="offer MT as well")
    parser.add_argument("--modes", default="0,1", help="answer to AT+CMGF=?")
    parser.add_argument("--cnmi", default="(0-2),(0-3),(0,2),(0-2),(0,1)", help="answer to AT+CNMI=?")
    parser.add_argument("--report-status", default="00", help="TP-Status of status reports, hexadecimal")
    parser.add_argument("--registration-polls", type=int, default=1, help="AT+CREG? answers until registered")
    parser.add_argument("--first-reference", type=int, default=17, help="reference of the first message")
    parser.add_argument("--record", help="file to which commands and submissions are appended as JSON lines")
    parser.add_argument("--trace", action="store_true", help="print every command")
    parser.add_argument("--stay", action="store_true", help="go on when the parent process ends")
    options = parser.parse_args()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(0))
    modem = Modem(options)
    print(f"modem ready on {options.link}", flush=True)
    try:
        modem.run()
    except (HangUp, KeyboardInterrupt):
        os.close(modem.master)
    finally:
        if os.path.lexists(options.link):
            os.unlink(options.link)


if __name__ == "__main__":
    main()
