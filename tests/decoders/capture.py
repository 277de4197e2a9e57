"""Single PDUs through tshark: a capture of exported PDUs, and the dissection as JSON."""
import json
import pathlib
import struct
import subprocess
import tempfile

EXPORTED_PDU = 252
DISSECTOR_NAME, DIRECTION, END = 12, 35, 0


def tag(number, value):
    return struct.pack(">HH", number, len(value)) + value


def frame(dissector, octets, direction):
    name = dissector.encode()
    name += b"\0" * (-len(name) % 4)
    return tag(DISSECTOR_NAME, name) + tag(DIRECTION, struct.pack(">I", direction)) + tag(END, b"") + octets


def dissect(dissector, pdus, direction=1, options=()):
    """The layers that tshark finds in each PDU; direction 1 = to the network (SMS-SUBMIT)."""
    data = struct.pack("<IHHiIII", 0xA1B2C3D4, 2, 4, 0, 0, 65535, EXPORTED_PDU)
    for number, octets in enumerate(pdus):
        packet = frame(dissector, octets, direction)
        data += struct.pack("<IIII", 1700000000 + number, 0, len(packet), len(packet)) + packet
    with tempfile.TemporaryDirectory() as folder:
        file = pathlib.Path(folder) / "pdus.pcap"
        file.write_bytes(data)
        done = subprocess.run(["tshark", "-r", file, "-T", "json", "--no-duplicate-keys", *options], check=True,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    return [packet["_source"]["layers"] for packet in json.loads(done.stdout)]


def find(layers, name):
    """Every value of the field, however deep it lies."""
    found = []
    if isinstance(layers, dict):
        for key, value in layers.items():
            if key == name:
                found += value if isinstance(value, list) else [value]
            else:
                found += find(value, name)
    if isinstance(layers, list):
        for value in layers:
            found += find(value, name)
    return found
