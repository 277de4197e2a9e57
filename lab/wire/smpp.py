"""PDUs of SMPP 3.4."""
import struct

from wire import gsm

NAMES = {1: "bind_receiver", 2: "bind_transmitter", 9: "bind_transceiver", 4: "submit_sm", 5: "deliver_sm", 6: "unbind",
         0x15: "enquire_link", 0x103: "data_sm"}
RESPONSE = 0x80000000
NACK = RESPONSE
HEADER = 16  # octets: command_length, command_id, command_status, sequence_number
LONGEST = 1 << 17

# command_status
BAD_LENGTH, BAD_COMMAND, BAD_PASSWORD = 2, 3, 0x0E


def name_of(command):
    if command == NACK:
        return "generic_nack"
    return NAMES.get(command & ~RESPONSE, f"{command & ~RESPONSE:08X}") + ("_resp" if command & RESPONSE else "")


def pdu(command, status, sequence, body=b""):
    return struct.pack(">IIII", HEADER + len(body), command, status, sequence) + body


def c_string(data, at):
    end = data.index(b"\0", at)
    return data[at:end].decode("latin-1"), end + 1


def octets_of(text, alphabet):
    """The octets of a text with data_coding 0, in the server's default alphabet: "gsm" or an encoding of Python's."""
    return bytes(gsm.codes_from_text(text)) if alphabet == "gsm" else text.encode(alphabet, "replace")


def text_of(octets, alphabet):
    if alphabet == "gsm":
        return gsm.text_from_codes(octet & 0x7F for octet in octets)
    return octets.decode(alphabet, "replace")


def read_submit(body, alphabet="latin-1"):
    """The fields of a submit_sm; ValueError or IndexError when it is cut."""
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
    fields["text"] = text_of(message, "utf-16-be" if fields["data_coding"] & 8 else alphabet)
    fields["tlvs"] = read_tlvs(rest)
    return fields


def read_tlvs(rest):
    tlvs = {}
    while len(rest) >= 4:
        tag, length = struct.unpack(">HH", rest[:4])
        tlvs[f"{tag:04X}"] = rest[4:4 + length].hex().upper()
        rest = rest[4 + length:]
    return tlvs


def deliver(sequence, sender, recipient, text, esm=0, coding=0, tlvs=b""):
    addresses = b"".join(b"\0\x01\x01" + number.lstrip("+").encode() for number in (sender, recipient))
    return pdu(5, 0, sequence, addresses + b"\0" + bytes([esm, 0, 0]) + b"\0\0" + bytes([0, 0, coding, 0, len(text)]) +
               text + tlvs)
