"""Units of the MMS encapsulation protocol (OMA MMS 1.0 to 1.3), read and written the slow and plain way."""
import dataclasses
import time

from wire import wsp

MEDIA_TYPE = "application/vnd.wap.mms-message"
KINDS = ["m-send-req", "m-send-conf", "m-notification-ind", "m-notifyresp-ind", "m-retrieve-conf",
         "m-acknowledge-ind", "m-delivery-ind", "m-read-rec-ind", "m-read-orig-ind", "m-forward-req", "m-forward-conf"]
CLASSES = {0x80: "personal", 0x81: "advertisement", 0x82: "informational", 0x83: "auto"}
PRIORITIES = {0x80: "low", 0x81: "normal", 0x82: "high"}
YES_NO = {0x80: True, 0x81: False}
STATES = {0x80: "expired", 0x81: "retrieved", 0x82: "rejected", 0x83: "deferred", 0x84: "unrecognised"}
INSERTED = None  # a sender whom the centre puts in


def _named(names):
    return lambda reader: names.get(number := reader.octet(), f"0x{number:02X}")


def _message_class(reader):
    return _named(CLASSES)(reader) if reader.peek() & 0x80 else reader.text()


def _sender(reader):
    """Address-present with its text, or the token that has the centre put it in. A plain length of more than 30 in one
    octet counts too: senders write it."""
    length = reader.octet()
    if length == 31 and reader.peek() != 0x80:
        length = reader.uintvar()
    value = reader.part(length)
    return value.encoded_string() if value.octet() == 0x80 else INSERTED


def _moment(reader):
    """Seconds, and whether from now on."""
    value = reader.part(reader.value_length())
    return {"relative": value.octet() == 0x81, "seconds": value.integer()}


R = wsp.Reader
# number -> name, how the value is read; what is not here is passed over
FIELDS = {
    0x01: ("bcc", R.encoded_string), 0x02: ("cc", R.encoded_string), 0x17: ("to", R.encoded_string),
    0x03: ("location", R.text), 0x05: ("date", R.integer), 0x06: ("delivery_report", _named(YES_NO)),
    0x08: ("expiry", _moment), 0x09: ("from", _sender), 0x0A: ("class", _message_class), 0x0B: ("message_id", R.text),
    0x0D: ("version", R.integer), 0x0E: ("size", R.integer), 0x0F: ("priority", _named(PRIORITIES)),
    0x10: ("read_report", _named(YES_NO)), 0x11: ("report_allowed", _named(YES_NO)),
    0x12: ("response_status", R.octet), 0x13: ("response_text", R.encoded_string),
    0x15: ("status", _named(STATES)), 0x16: ("subject", R.encoded_string), 0x18: ("transaction", R.text),
    0x19: ("retrieve_status", R.octet), 0x1A: ("retrieve_text", R.encoded_string),
}
LISTS = ("to", "cc", "bcc")


@dataclasses.dataclass
class Part:
    type: str
    data: bytes
    name: str = ""
    charset: int = None
    id: str = ""

    @property
    def text(self):
        """What a text says; None when it is none."""
        return wsp.decoded(self.data, self.charset) if self.type.startswith("text/") else None


@dataclasses.dataclass
class Unit:
    kind: str
    fields: dict
    type: str = ""
    parts: list = dataclasses.field(default_factory=list)


def read(octets):
    """A unit with all that it holds. ValueError says what is wrong with it."""
    reader = wsp.Reader(octets)
    if reader.take(1) != b"\x8c" or not 0x80 <= reader.peek() < 0x80 + len(KINDS):
        raise ValueError("it does not begin with a type of message")
    unit = Unit(KINDS[reader.octet() & 0x7F], {name: [] for name in LISTS})
    while reader.left:
        if reader.peek() < 0x80:
            name = reader.text()
            unit.fields[name] = reader.text()
            continue
        number = reader.octet() & 0x7F
        if number == 0x04:
            unit.type, _ = reader.content_type()
            unit.parts = _parts(reader) if "multipart" in unit.type else [Part(unit.type, reader.take(reader.left))]
            break
        name, read_value = FIELDS.get(number, ("", None))
        if not name:
            reader.skip()
        elif name in LISTS:
            unit.fields[name].append(_address(read_value(reader)))
        else:
            value = read_value(reader)
            unit.fields[name] = _address(value) if name == "from" and value else value
    return unit


def _address(text):
    return text.removesuffix("/TYPE=PLMN")


def _parts(reader):
    parts = []
    for _ in range(reader.uintvar()):
        if not reader.left and parts:
            break  # a count that is too high does no harm
        header_size, size = reader.uintvar(), reader.uintvar()
        parts.append(_part(reader.part(header_size), reader.take(size)))
    if reader.left:
        raise ValueError(f"{reader.left} octets behind the last part")
    return parts


def _part(header, data):
    media, parameters = header.content_type()
    part = Part(media, data, parameters.get("name", parameters.get("filename", "")), parameters.get("charset"))
    while header.left:
        if header.peek() < 0x80:
            header.raw_text(), header.raw_text()
            continue
        number = header.octet()
        if number == 0x8E:
            part.name = header.text()
        elif number == 0xC0:
            part.id = header.text()
        else:
            header.skip()
    return part


# --- writing

def _start(kind, transaction, version=0x10):
    return (b"\x8c" + wsp.short(KINDS.index(kind)) + (b"\x98" + wsp.text(transaction) if transaction is not None else b"")
            + b"\x8d" + wsp.short(version))


def _from(sender):
    return b"\x89" + wsp.with_length(b"\x80" + wsp.encoded_string(typed(sender)))


def typed(address):
    """An address as units hold it."""
    return address + "/TYPE=PLMN" if address.lstrip("+").isdigit() else address


def send_conf(transaction, status, message_id="", response_text=""):
    return (_start("m-send-conf", transaction) + b"\x92" + bytes([status]) +
            (b"\x93" + wsp.encoded_string(response_text) if response_text else b"") +
            (b"\x8b" + wsp.text(message_id) if message_id else b""))


def retrieve_conf(transaction, message_id, sender, subject, parts, to=()):
    """A message as a handset fetches it; one without a transaction asks for no acknowledgement."""
    body = wsp.uintvar(len(parts))
    for part in parts:
        header = wsp.content_type(part.type, part.charset)
        header += b"\xc0\x22" + wsp.text(f"<{part.name}>") + b"\x8e" + wsp.text(part.name) if part.name else b""
        body += wsp.uintvar(len(header)) + wsp.uintvar(len(part.data)) + header + part.data
    return (_start("m-retrieve-conf", transaction) + b"\x8b" + wsp.text(message_id) +
            b"\x85" + wsp.long_integer(int(time.time())) + _from(sender) +
            b"".join(b"\x97" + wsp.encoded_string(typed(address)) for address in to) +
            (b"\x96" + wsp.encoded_string(subject) if subject else b"") + b"\x8a\x80\x8f\x81\x84" +
            wsp.content_type("application/vnd.wap.multipart.mixed") + body)


def not_retrieved(transaction, status, retrieve_text):
    """The answer to who asks for a message that cannot be had."""
    return (_start("m-retrieve-conf", transaction) + b"\x99" + bytes([status]) + b"\x9a" +
            wsp.encoded_string(retrieve_text))


def notification(transaction, sender, url, subject="", size=30000, valid=86400):
    """`valid`: seconds from now."""
    return (_start("m-notification-ind", transaction) + _from(sender) +
            (b"\x96" + wsp.encoded_string(subject) if subject else b"") + b"\x8a\x80\x8e" + wsp.long_integer(size) +
            b"\x88" + wsp.with_length(b"\x81" + wsp.long_integer(valid)) + b"\x83" + wsp.text(url))


def pushed(unit, transaction_id=1):
    """A unit as a WAP push without a connection, for the application that shows MMS."""
    headers = b"\xbe\xaf\x84"  # MEDIA_TYPE; X-Wap-Application-Id: x-wap-application:mms.ua
    return bytes([transaction_id, 0x06]) + wsp.uintvar(len(headers)) + headers + unit
