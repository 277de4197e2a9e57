#!/usr/bin/env python3
"""An SMSC for SMPP 3.4, to try and test programs against. Shares no code with the component.

    lab/smsc.py --port 2775 --receipts text --deliver "+31611111111 Hello"

It binds, takes submits, prints them in words, answers with message ids, sends receipts and incoming messages, and
misbehaves by a scenario file: a JSON list of rules, the first that fits a PDU counts.
    {"match": "submit_sm", "nth": [2], "do": "status", "status": 88}
`do`: status (answer with `status`), silence, garbage (`hex` instead of an answer), half (half the answer, then
nothing), disconnect, bytewise (the answer one octet at a time), nack.
"""
import argparse
import json
import signal
import socket
import struct
import sys
import threading
import time

NAMES = {1: "bind_receiver", 2: "bind_transmitter", 9: "bind_transceiver", 4: "submit_sm", 5: "deliver_sm", 6: "unbind",
         0x15: "enquire_link", 0x103: "data_sm"}
RESPONSE = 0x80000000


def c_string(data, at):
    end = data.index(b"\0", at)
    return data[at:end].decode("latin-1"), end + 1


def read_submit(body):
    fields, at = {}, 0
    fields["service_type"], at = c_string(body, at)
    fields["source_ton"], fields["source_npi"] = body[at], body[at + 1]
    fields["from"], at = c_string(body, at + 2)
    fields["dest_ton"], fields["dest_npi"] = body[at], body[at + 1]
    fields["to"], at = c_string(body, at + 2)
    fields["esm_class"], fields["protocol_id"], fields["priority"] = body[at:at + 3]
    fields["schedule"], at = c_string(body, at + 3)
    fields["validity"], at = c_string(body, at)
    fields["registered"], fields["replace"], fields["data_coding"], fields["default_id"], size = body[at:at + 5]
    message, rest = body[at + 5:at + 5 + size], body[at + 5 + size:]
    if len(message) != size:
        raise ValueError("short message is cut")
    if fields["esm_class"] & 0x40:
        fields["header"], message = message[1:1 + message[0]].hex().upper(), message[1 + message[0]:]
    fields["octets"] = message.hex().upper()
    coding = fields["data_coding"]
    fields["text"] = message.decode("utf-16-be" if coding & 8 else "latin-1", "replace")
    fields["tlvs"] = {}
    while len(rest) >= 4:
        tag, length = struct.unpack(">HH", rest[:4])
        fields["tlvs"][f"{tag:04X}"] = rest[4:4 + length].hex().upper()
        rest = rest[4 + length:]
    return fields


def pdu(command, status, sequence, body=b""):
    return struct.pack(">IIII", 16 + len(body), command, status, sequence) + body


def deliver(sequence, sender, recipient, text, esm=0, coding=0, tlvs=b""):
    return pdu(5, 0, sequence, b"\0\x01\x01" + sender.lstrip("+").encode() + b"\0\x01\x01" +
               recipient.lstrip("+").encode() + b"\0" + bytes([esm, 0, 0]) + b"\0\0" + bytes([0, 0, coding, 0, len(text)]) +
               text + tlvs)


class Session:
    def __init__(self, server, connection):
        self.server, self.connection = server, connection
        self.sequence = 1000
        self.counts = {}
        self.lock = threading.Lock()

    def send(self, data):
        with self.lock:
            self.connection.sendall(data)

    def next(self):
        self.sequence += 1
        return self.sequence

    def rule(self, name):
        for number, rule in enumerate(self.server.rules):
            if not name.startswith(rule["match"]):
                continue
            self.counts[number] = self.counts.get(number, 0) + 1
            if "nth" not in rule or self.counts[number] in rule["nth"]:
                return rule
        return {}

    def run(self):
        data = b""
        try:
            while True:
                received = self.connection.recv(65536)
                if not received:
                    return
                data += received
                out = b""
                while len(data) >= 4 and len(data) >= struct.unpack(">I", data[:4])[0]:
                    length = struct.unpack(">I", data[:4])[0]
                    answer = self.take(data[:length])
                    if answer is None:
                        return
                    out += answer
                    data = data[length:]
                if out:
                    self.send(out)
        except (OSError, ValueError) as fault:
            self.server.say(f"session ended: {fault}")
        finally:
            self.connection.close()

    def take(self, data):
        _, command, status, sequence = struct.unpack(">IIII", data[:16])
        name = NAMES.get(command & ~RESPONSE, f"{command:08X}") + ("_resp" if command & RESPONSE else "")
        self.server.record({"pdu": name, "hex": data.hex().upper(), "status": status})
        rule = self.rule(name)
        what = rule.get("do")
        if what == "silence":
            return b""
        if what == "disconnect":
            return None
        if what == "garbage":
            return bytes.fromhex(rule["hex"])
        if what == "nack":
            return pdu(RESPONSE, 3, sequence)
        answer = self.answer(name, command, sequence, data[16:], rule.get("status", 0))
        if what == "half":
            return answer[:len(answer) // 2]
        if what == "bytewise":
            for octet in answer:
                self.send(bytes([octet]))
                time.sleep(0.002)
            return b""
        return answer

    def answer(self, name, command, sequence, body, status):
        options = self.server.options
        if name.startswith("bind_") and not command & RESPONSE:
            system_id, at = c_string(body, 0)
            password, _ = c_string(body, at)
            if options.password and password != options.password:
                status = 0x0E
            self.server.say(f"{name} by {system_id}: {'accepted' if status == 0 else f'status {status}'}")
            out = pdu(command | RESPONSE, status, sequence, b"lab\0" if status == 0 else b"")
            if status == 0 and name != "bind_transmitter":
                for line in options.deliver or []:
                    out += self.incoming(line)
            return out
        if name == "submit_sm":
            return self.submit(sequence, body, status)
        if name in ("enquire_link", "unbind"):
            if name == "unbind":
                self.server.say("unbind")
            return pdu(command | RESPONSE, status, sequence)
        return b""

    def submit(self, sequence, body, status):
        options = self.server.options
        fields = read_submit(body)
        number = self.server.next_id()
        message_id = f"{number:08x}" if options.ids == "hex" else str(number)
        fields.update(id=message_id, answered=status)
        self.server.record(fields)
        self.server.say(f"submitted {message_id}: from {fields['from'] or '-'} to {fields['to']}"
                        + (f", header {fields['header']}" if "header" in fields else "")
                        + (", report requested" if fields["registered"] else "") + ": "
                        + json.dumps(fields["text"], ensure_ascii=False) + (f", status {status}" if status else ""))
        if status:
            return pdu(4 | RESPONSE, status, sequence)
        response = pdu(4 | RESPONSE, 0, sequence, message_id.encode() + b"\0")
        if not fields["registered"] or options.receipts == "none":
            return response
        shown = str(number) if options.receipt_ids == "dec" else f"{number:X}" if options.receipt_ids == "hex" else message_id
        receipt = self.receipt(fields, message_id, shown)
        return receipt + response if options.early else response + receipt

    def receipt(self, fields, message_id, shown):
        stamp = time.strftime("%y%m%d%H%M%S" if self.server.options.seconds else "%y%m%d%H%M")
        if self.server.options.receipts == "tlv":
            tlvs = struct.pack(">HH", 0x1E, len(message_id) + 1) + message_id.encode() + b"\0"
            return deliver(self.next(), fields["to"], fields["from"], b"", 4, 0, tlvs + struct.pack(">HHB", 0x427, 1, 2))
        text = (f"id:{shown} sub:001 dlvrd:001 submit date:{stamp} done date:{stamp} "
                f"stat:{self.server.options.stat} err:000 text:")
        return deliver(self.next(), fields["to"], fields["from"], text.encode(), 4)

    def incoming(self, line):
        """"+31611111111 text" or "parts:2,1 +31611111111 text" or "ucs2 +31611111111 text"."""
        kind, _, rest = line.partition(" ")
        if kind == "ucs2":
            sender, text = rest.split(None, 1)
            return deliver(self.next(), sender, "1234", text.encode("utf-16-be"), 0, 8)
        if not kind.startswith("parts:"):
            return deliver(self.next(), kind, "1234", rest.encode("latin-1", "replace"))
        order = [int(number) for number in kind[6:].split(",")]
        sender, text = rest.split(None, 1)
        size = -(-len(text) // len(order))
        return b"".join(deliver(self.next(), sender, "1234", bytes([5, 0, 3, 9, len(order), number]) +
                                text[(number - 1) * size:number * size].encode("latin-1"), 0x40) for number in order)


class Smsc:
    def __init__(self, options):
        self.options = options
        self.rules = json.load(open(options.scenario, encoding="utf-8")) if options.scenario else []
        self.number = options.first_id - 1
        self.lock = threading.Lock()
        self.socket = socket.create_server(("127.0.0.1", options.port), backlog=64)

    def say(self, text):
        if not self.options.quiet:
            print(text, flush=True)

    def record(self, fields):
        if self.options.record:
            with self.lock, open(self.options.record, "a", encoding="utf-8") as file:
                file.write(json.dumps(fields, ensure_ascii=False) + "\n")

    def next_id(self):
        with self.lock:
            self.number += 1
            return self.number

    def run(self):
        print(f"smsc ready on port {self.socket.getsockname()[1]}", flush=True)
        while True:
            connection, _ = self.socket.accept()
            connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            threading.Thread(target=Session(self, connection).run, daemon=True).start()


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--port", type=int, default=2775)
    parser.add_argument("--password", default="", help="the password to bind with; any when empty")
    parser.add_argument("--deliver", action="append", help="an incoming message that follows each bind")
    parser.add_argument("--receipts", choices=["text", "tlv", "none"], default="text")
    parser.add_argument("--ids", choices=["hex", "dec"], default="hex", help="how submit responses write message ids")
    parser.add_argument("--receipt-ids", choices=["same", "hex", "dec"], default="same", help="and how receipts do")
    parser.add_argument("--stat", default="DELIVRD", help="the receipts' state")
    parser.add_argument("--seconds", action="store_true", help="seconds in the receipts' dates")
    parser.add_argument("--early", action="store_true", help="receipts overtake the submit response")
    parser.add_argument("--first-id", type=int, default=123)
    parser.add_argument("--scenario", help="JSON file of rules by which the server misbehaves")
    parser.add_argument("--record", help="file to which PDUs are appended as JSON lines")
    parser.add_argument("--quiet", action="store_true")
    options = parser.parse_args()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(0))
    Smsc(options).run()


if __name__ == "__main__":
    main()
