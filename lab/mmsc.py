#!/usr/bin/env python3
"""An MMS centre over HTTP, for handsets (MM1) and services (MM7), and the WAP proxy in front of itself, to try and test
programs against.

    lab/mmsc.py --port 8090 --folder /tmp/mms --message "/m1 +31611111111 'Our holiday' photo.jpg text:Hello"

    POST /mms     an m-send-req is answered with an m-send-conf; an m-acknowledge-ind and an m-notifyresp-ind are taken
    GET /m1       gives the message that is stored there, as an m-retrieve-conf
    POST /mm7     a SubmitReq is answered with a SubmitRsp

It reads every unit and envelope by itself, prints it in words, and writes the parts of messages to files below --folder. A message
to fetch (--message) is its path, sender, subject and parts, each a file or "text:" and a text, quoted as in a shell.
Asked as a proxy ("GET http://mmsc.example.org/m1") it does the same, for every host.
"""
import json
import mimetypes
import pathlib
import re
import shlex

from base.http import HttpDialogue, HttpServer
from base.scenario import Action, Refused
from wire import mm7, mms, wsp

OK, CORRUPT = 0x80, 0x83
PORTAL = b"<html><body><h1>Welcome</h1><p>Please buy some data volume first.</p></body></html>"


def hexadecimal(text):
    return int(text, 16)


def part_of(given, number):
    """A part of a message to fetch, as the command line has it."""
    if given.startswith("text:"):
        return mms.Part("text/plain", given[5:].encode(), f"text{number}.txt", wsp.UTF8)
    path = pathlib.Path(given)
    return mms.Part(mimetypes.guess_type(path.name)[0] or "application/octet-stream", path.read_bytes(), path.name)


def in_words(fields, parts):
    words = [f"from {fields.get('from') or 'the number of the handset'}"]
    words += [f"{name} {', '.join(fields[name])}" for name in mms.LISTS if fields[name]]
    if "subject" in fields:
        words.append(f"subject {json.dumps(fields['subject'], ensure_ascii=False)}")
    words += [f"{name} {fields[name]}" for name, usual in (("class", "personal"), ("priority", "normal"))
              if fields.get(name, usual) != usual]
    words += [what for name, what in (("delivery_report", "delivery report wanted"), ("read_report", "read report wanted"))
              if fields.get(name) is True]
    if "expiry" in fields:
        words.append(f"valid {'for' if fields['expiry']['relative'] else 'until'} {fields['expiry']['seconds']} s")
    return ", ".join(words) + f", {len(parts)} parts"


def part_in_words(part):
    text = part.text
    shown = f": {json.dumps(text, ensure_ascii=False)}" if text is not None and len(text) <= 200 else ""
    return f"{part.type}, {len(part.data)} octets" + (f", {part.name}" if part.name else "") + shown


class Session(HttpDialogue):
    def misled(self, rule):
        if rule.do == "portal":
            return 200, {"Content-Type": "text/html"}, PORTAL
        if rule.do == "unit":
            return self.unit(bytes.fromhex(rule.get("octets")) + bytes(rule.get("pad")))
        self.conf = rule if rule.do in ("conf", "submitted", "fault") else None
        return super().misled(rule)

    @staticmethod
    def unit(octets):
        return 200, {"Content-Type": mms.MEDIA_TYPE}, octets

    async def respond(self, request):
        through = ", through the proxy" if request.target.startswith("http") else ""
        if request.method == "GET":
            return self.give(request, through)
        if request.method == "POST" and request.path == self.options.mm7_path:
            return self.take_submission(request, through)
        if request.method != "POST" or request.path != self.options.path:
            self.program.say(f"{request.method} {request.path}: nothing is here")
            return 404, {}, b""
        if request.headers.get("content-type", "").partition(";")[0].strip() != mms.MEDIA_TYPE:
            self.program.say(f"refused: {request.headers.get('content-type', 'no type')} is no {mms.MEDIA_TYPE}")
            return 415, {}, b""
        try:
            unit = mms.read(request.body)
        except ValueError as fault:
            self.program.say(f"refused a unit of {len(request.body)} octets: {fault}")
            self.program.record({"fault": str(fault), "octets": len(request.body)})
            return self.unit(mms.send_conf("", CORRUPT, response_text=str(fault)))
        if unit.kind == "m-send-req":
            return self.take_message(request, unit, through)
        return self.take_answer(unit, through)

    def give(self, request, through):
        unit = self.program.stored.get(request.path)
        self.program.say(f"GET {request.path}{through}: " + (f"{len(unit)} octets" if unit else "nothing is here"))
        self.program.record({"fetched": request.path, "found": unit is not None, "target": request.target,
                             "accept": request.headers.get("accept", "")})
        return self.unit(unit) if unit else (404, {}, b"")

    def take_answer(self, unit, through):
        """What a handset says of a message or a notification."""
        if unit.kind not in ("m-acknowledge-ind", "m-notifyresp-ind"):
            self.program.say(f"refused: {unit.kind} is not for a centre")
            return 400, {}, b""
        said = unit.fields.get("status", "")
        self.program.say(f"{unit.kind} for {unit.fields.get('transaction')}{through}" + (f": {said}" if said else ""))
        self.program.record({"kind": unit.kind} | unit.fields)
        return 200, {}, b""

    def take_message(self, request, unit, through):
        transaction = unit.fields.get("transaction", "")
        status, text = self.options.status, self.options.text
        if self.conf:
            status, text = int(self.conf.get("status"), 16), self.conf.get("text")
        if status != OK:
            self.program.say(f"refused a message with 0x{status:02X}")
            self.program.record({"refused": status, "transaction": transaction})
            return self.unit(mms.send_conf(transaction, status, response_text=text))
        number = self.program.next_number()
        files = self.program.save(number, unit.parts)
        self.program.say(f"message {number}{through}: {in_words(unit.fields, unit.parts)}")
        self.program.tell_parts(unit.fields, number, request, unit.parts, files)
        return self.unit(mms.send_conf(transaction, OK, f"{number}@mmsc.lab", text))


    def take_submission(self, request, through):
        rule = self.conf
        try:
            submission = mm7.read(request.headers.get("content-type", ""), request.body)
        except ValueError as fault:
            self.program.say(f"refused a submission of {len(request.body)} octets: {fault}")
            self.program.record({"fault": str(fault), "octets": len(request.body)})
            return 500, {"Content-Type": "text/xml"}, mm7.fault(mm7.UNREAD, str(fault), "2007")
        fields = submission.fields
        if rule and rule.do == "fault":
            self.program.say(f"refused a submission with a fault: {rule.get('text')}")
            return rule.get("status"), {"Content-Type": "text/xml"}, mm7.fault(fields, rule.get("text"), rule.get("code"))
        code, text, form = (rule.get("code"), rule.get("text"), rule.get("form")) if rule else ("1000", "Success", "3gpp")
        message_id = ""
        if code.startswith("1"):
            message_id = self.store_submission(request, submission, through)
        else:
            self.program.say(f"refused a submission with {code} {text}")
            self.program.record({"refused": code, "transaction": fields["transaction"]})
        reply = mm7.answer(fields, code, text, message_id, "other" if form == "other" else "3gpp")
        media, reply = mm7.in_multipart(reply) if form == "multipart" else ("text/xml; charset=utf-8", reply)
        return 200, {"Content-Type": media}, reply

    def store_submission(self, request, submission, through):
        """The id that the message gets."""
        fields, number = submission.fields, self.program.next_number()
        files = self.program.save(number, submission.parts)
        by = "".join(f", {name} {fields[field]}" for name, field in (("VASP", "vasp"), ("VAS", "vas"), ("service", "service"))
                     if fields[field] is not None)
        self.program.say(f"message {number} over MM7{through}: "
                         + in_words(fields | {"from": fields["from"] or "no sender"}, submission.parts) + by)
        self.program.tell_parts(fields, number, request, submission.parts, files)
        return f"{number}@mmsc.lab"


class Mmsc(HttpServer):
    dialogue = Session
    port = 8090
    event = "POST /mms"
    own_actions = HttpServer.own_actions | {
        "conf": Action("answers a message with `status` (hexadecimal) and `text`; takes it only with 80",
                       {"status": "81", "text": ""}),
        "unit": Action("answers with a unit of `octets` (hexadecimal) and `pad` zeros, and does nothing",
                       {"octets": "", "pad": 0}),
        "submitted": Action("answers a submission with status `code` and `text`, named as in `form` (3gpp, other), or as a part "
                            "(multipart); takes it only with 1...", {"code": "2000", "text": "", "form": "3gpp"}),
        "fault": Action("answers a submission with `status` and a SOAP fault of `text`, status `code` in its details, and does "
                        "nothing", {"text": "Refused", "code": "", "status": 500}),
        "portal": Action("answers with a page, as a network does that wants to be paid first, and does nothing"),
    }

    @classmethod
    def add_arguments(cls, parser):
        super().add_arguments(parser)
        parser.add_argument("--path", default="/mms", help="where messages are posted to (/mms)")
        parser.add_argument("--mm7-path", default="/mm7", help="where submissions are posted to (/mm7)")
        parser.add_argument("--folder", help="where the parts of messages are written; nowhere when not given")
        parser.add_argument("--message", action="append", default=[], help="a message to fetch: PATH SENDER SUBJECT PART...")
        parser.add_argument("--handset", default="+31600000001", help="whom messages to fetch are for (+31600000001)")
        parser.add_argument("--no-transaction", dest="transaction", action="store_false",
                            help="messages to fetch have no transaction id: no acknowledgement is wanted")
        parser.add_argument("--status", type=hexadecimal, default=OK, help="answer to every message, hexadecimal (80)")
        parser.add_argument("--text", default="", help="what the answer says in words")
        parser.add_argument("--first-number", type=int, default=1, help="number of the first message (1)")

    def __init__(self, options):
        super().__init__(options)
        self.number = options.first_number - 1
        self.stored = dict(map(self.stored_from, options.message))
        if not 0 <= options.status <= 255:
            raise Refused(f"{options.status:X} is no status")

    def stored_from(self, line):
        """Path and unit of a message to fetch."""
        try:
            path, sender, subject, *parts = shlex.split(line)
            if not path.startswith("/"):
                raise ValueError("a path begins with /")
            unit = mms.retrieve_conf(path.strip("/") if self.options.transaction else None, f"{path.strip('/')}@mmsc.lab",
                                     sender, subject, [part_of(given, place) for place, given in enumerate(parts, 1)],
                                     [self.options.handset])
            return path, unit
        except (ValueError, OSError) as fault:
            raise Refused(f"cannot store {line!r}: {fault}") from fault

    def next_number(self):
        self.number += 1
        return self.number

    def tell_parts(self, fields, number, request, parts, files):
        for part in parts:
            self.say(f"  {part_in_words(part)}")
        self.record(fields | {
            "number": number, "octets": len(request.body), "target": request.target, "headers": request.headers,
            "parts": [{"type": part.type, "name": part.name, "id": part.id, "size": len(part.data), "text": part.text,
                       "file": file} for part, file in zip(parts, files)]})

    def save(self, number, parts):
        """The names of the files of a message's parts; the names that came with them are never trusted."""
        if not self.options.folder:
            return [None] * len(parts)
        folder = pathlib.Path(self.options.folder, str(number))
        folder.mkdir(parents=True, exist_ok=True)
        files = []
        for place, part in enumerate(parts, 1):
            file = folder / f"{place}-{re.sub('[^A-Za-z0-9._-]', '_', part.name)[-80:] or 'part'}"
            file.write_bytes(part.data)
            files.append(str(file))
        return files


if __name__ == "__main__":
    Mmsc.main()
