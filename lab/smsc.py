#!/usr/bin/env python3
"""An SMSC for SMPP 3.4, to try and test programs against.

    lab/smsc.py --port 2775 --receipts text --deliver "+31611111111 Hello"

It binds, takes submits, prints them in words, answers with message ids, sends receipts and incoming messages. Each bind
that can receive is followed by what --deliver gives:
    +31611111111 Hello there              a message
    ucs2 +31611111111 Привет              a UCS-2 message
    parts:2,1 +31611111111 A long text    one message in as many parts, sent in that order
    push +31611111111 010601AE...         a WAP push, in hexadecimal

The events of a scenario are the PDUs by their names, "submit_sm" or "deliver_sm_resp".
"""
import dataclasses
import json
import struct
import time

from base.line import Dialogue
from base.scenario import COMMON, Action, Refused
from base.server import Server
from wire import smpp
from wire.parts import in_parts


WAP_PUSH = bytes.fromhex("0605040B8423F0")  # the header with its ports


def incoming(line, alphabet):
    """The sender, esm_class, data_coding and octets of each deliver_sm of one --deliver."""
    kind, _, rest = line.partition(" ")
    try:
        if kind == "ucs2":
            sender, text = rest.split(None, 1)
            found = [(sender, 0, 8, text.encode("utf-16-be"))]
        elif kind == "push":
            sender, octets = rest.split()
            found = [(sender, 0x40, 4, WAP_PUSH + bytes.fromhex(octets))]
        elif kind.startswith("parts:"):
            sender, text = rest.split(None, 1)
            found = [(sender, 0x40, 0, bytes([len(header)]) + header + smpp.octets_of(part, alphabet))
                     for header, part in in_parts(kind[6:], text)]
        else:
            found = [(kind, 0, 0, smpp.octets_of(rest, alphabet))]
        if any(len(octets) > 254 for *_, octets in found):
            raise ValueError("more than 254 octets")
        return found
    except ValueError as fault:
        raise Refused(f"cannot deliver {line!r}: {fault}") from fault


class Session(Dialogue):
    def __init__(self, program, line):
        super().__init__(program, line)
        self.sequence = 1000

    async def request(self):
        size = await self.line.octets(4)
        length = int.from_bytes(size, "big")
        if not smpp.HEADER <= length <= smpp.LONGEST:
            await self.line.write(smpp.pdu(smpp.NACK, smpp.BAD_LENGTH, 0))
            raise ValueError(f"a PDU of {length} octets")
        return size + await self.line.octets(length - 4)

    async def take(self, request):
        _, command, status, sequence = struct.unpack(">IIII", request[:smpp.HEADER])
        name = smpp.name_of(command)
        self.program.record({"pdu": name, "hex": request.hex().upper(), "status": status})
        rule = self.rule(name)
        if rule.do == "nack":
            await self.reply(rule, smpp.pdu(smpp.NACK, smpp.BAD_COMMAND, sequence))
        else:
            await self.reply(rule, *self.answer(name, command, sequence, request[smpp.HEADER:], rule.get("status", 0)))

    def answer(self, name, command, sequence, body, status):
        """The PDUs that answer one; status is what the scenario wants."""
        if command & smpp.RESPONSE:
            return []
        handler = self.HANDLERS.get(name)
        if handler is None:
            self.program.say(f"{name} is not known here")
            return [smpp.pdu(smpp.NACK, smpp.BAD_COMMAND, sequence)]

        def response(status, answer=b""):
            return smpp.pdu(command | smpp.RESPONSE, status, sequence, answer)

        try:
            return handler(self, response, name, body, status)
        except (ValueError, IndexError) as fault:
            self.program.say(f"{name} cannot be read: {fault}")
            return [response(smpp.BAD_LENGTH)]

    def bind(self, response, name, body, status):
        system_id, at = smpp.c_string(body, 0)
        password, _ = smpp.c_string(body, at)
        if self.options.password and password != self.options.password:
            status = smpp.BAD_PASSWORD
        self.program.say(f"{name} by {system_id}: {f'status {status}' if status else 'accepted'}")
        if status:
            return [response(status)]
        messages = self.program.messages if name != "bind_transmitter" else []
        return [response(0, b"lab\0"), *(self.deliver(sender, "1234", octets, esm, coding)
                                         for sender, esm, coding, octets in messages)]

    def alive(self, response, name, body, status):
        return [response(status)]

    def unbind(self, response, name, body, status):
        self.program.say("unbind")
        return [response(status)]

    def submit(self, response, name, body, status):
        fields = smpp.read_submit(body, self.options.alphabet)
        number = self.program.next_id()
        message_id = f"{number:08x}" if self.options.ids == "hex" else str(number)
        fields.update(id=message_id, answered=status)
        self.program.record(fields)
        self.program.say(f"submitted {message_id}: from {fields['from'] or '-'} to {fields['to']}"
                         + (f", header {fields['header']}" if "header" in fields else "")
                         + (", report requested" if fields["registered"] else "") + ": "
                         + json.dumps(fields["text"], ensure_ascii=False) + (f", status {status}" if status else ""))
        if status:
            return [response(status)]
        pieces = [response(0, message_id.encode() + b"\0")]
        if fields["registered"] and self.options.receipts != "none":
            pieces.insert(0 if self.options.early else 1, self.receipt(fields, number, message_id))
        return pieces

    HANDLERS = {"bind_receiver": bind, "bind_transmitter": bind, "bind_transceiver": bind, "enquire_link": alive,
                "unbind": unbind, "submit_sm": submit}

    def receipt(self, fields, number, message_id):
        if self.options.receipts == "tlv":
            tlvs = struct.pack(">HH", 0x1E, len(message_id) + 1) + message_id.encode() + b"\0"
            return self.deliver(fields["to"], fields["from"], b"", 4, 0, tlvs + struct.pack(">HHB", 0x427, 1, 2))
        shown = {"dec": str(number), "hex": f"{number:X}", "same": message_id}[self.options.receipt_ids]
        stamp = time.strftime("%y%m%d%H%M%S" if self.options.seconds else "%y%m%d%H%M")
        text = (f"id:{shown} sub:001 dlvrd:001 submit date:{stamp} done date:{stamp} "
                f"stat:{self.options.stat} err:000 text:")
        return self.deliver(fields["to"], fields["from"], text.encode(), 4)

    def deliver(self, *fields):
        self.sequence += 1
        return smpp.deliver(self.sequence, *fields)


class Smsc(Server):
    dialogue = Session
    port = 2775
    event = "submit_sm"
    own_actions = {
        "status": Action("answers with `status`", {"status": 8}),
        "nack": Action("answers with a generic_nack, and does nothing"),
    } | {old: dataclasses.replace(COMMON[new], words=f"{new}, by an older name")
         for old, new in (("bytewise", "split"), ("half", "stall"), ("disconnect", "hangup"))}

    @classmethod
    def add_arguments(cls, parser):
        super().add_arguments(parser)
        parser.add_argument("--password", default="", help="the password to bind with; any when empty")
        parser.add_argument("--deliver", action="append", default=[], help="an incoming message that follows each bind")
        parser.add_argument("--alphabet", choices=["latin-1", "gsm"], default="latin-1",
                            help="what texts with data_coding 0 are written in")
        parser.add_argument("--receipts", choices=["text", "tlv", "none"], default="text")
        parser.add_argument("--ids", choices=["hex", "dec"], default="hex", help="how submit responses write message ids")
        parser.add_argument("--receipt-ids", choices=["same", "hex", "dec"], default="same", help="and how receipts do")
        parser.add_argument("--stat", default="DELIVRD", help="the receipts' state")
        parser.add_argument("--seconds", action="store_true", help="seconds in the receipts' dates")
        parser.add_argument("--early", action="store_true", help="receipts overtake the submit response")
        parser.add_argument("--first-id", type=int, default=123, help="id of the first message, as a number")

    def __init__(self, options):
        super().__init__(options)
        self.messages = [message for line in options.deliver for message in incoming(line, options.alphabet)]
        self.number = options.first_id - 1

    def next_id(self):
        self.number += 1
        return self.number


if __name__ == "__main__":
    Smsc.main()
