"""PDUs of GSM SMS (3GPP TS 23.040) and the GSM 7-bit alphabet (23.038), read and written the slow and plain way."""
import json
import time

ALPHABET = ("@£$¥èéùìòÇ\nØø\rÅåΔ_ΦΓΛΩΠΨΣΘΞ\x1bÆæßÉ !\"#¤%&'()*+,-./0123456789:;<=>?"
            "¡ABCDEFGHIJKLMNOPQRSTUVWXYZÄÖÑÜ§¿abcdefghijklmnopqrstuvwxyzäöñüà")
ESCAPES = {0x0A: "\f", 0x14: "^", 0x28: "{", 0x29: "}", 0x2F: "\\", 0x3C: "[", 0x3D: "~", 0x3E: "]", 0x40: "|",
           0x65: "€"}
SERVICE_CENTRE = "+31653131313"
CODES = {char: [code] for code, char in enumerate(ALPHABET)}
CODES.update({char: [0x1B, code] for code, char in ESCAPES.items()})


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


def codes_from_text(text):
    return [code for char in text for code in CODES.get(char, CODES["?"])]


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
    return fields | read_user_data(fields["dcs"], bool(first & 0x40), pdu[at], pdu[at + 1:])


def read_user_data(dcs, has_header, size, data):
    header = data[1:1 + data[0]] if has_header else b""
    taken = len(header) + 1 if has_header else 0
    fields = {"header": header.hex().upper(), "flash": dcs & 0xD3 == 0x10}
    for name, value in elements_of(header):
        if name == 0 and len(value) == 3:
            fields["concatenation"], fields["parts"], fields["part"] = value
        if name == 5 and len(value) == 4:
            fields["port"] = value[0] << 8 | value[1]
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
    """One SMS-DELIVER with its service centre; the body is a text, or octets of the coding "data"."""
    first = 0x44 if header else 0x04
    taken = bytes([len(header)]) + header if header else b""
    if coding == "ucs2":
        data, dcs = taken + body.encode("utf-16-be"), 0x08
        size = len(data)
    elif coding == "data":
        data, dcs = taken + body, 0x04
        size = len(data)
    else:
        codes = codes_from_text(body)
        fill = -8 * len(taken) % 7
        data, dcs = taken + septets_to(codes, fill), 0x00
        size = (8 * len(taken) + fill) // 7 + len(codes)
    smsc = number_to(SERVICE_CENTRE)
    return (bytes([len(smsc) - 1]) + smsc[1:] + bytes([first]) + number_to(sender) + bytes([0, dcs]) +
            stamp(time.time() if when is None else when) + bytes([size]) + data)


def status_report(reference, recipient, status):
    return (bytes([0, 0x06, reference]) + number_to(recipient) + stamp(time.time()) + stamp(time.time()) +
            bytes([status]))
