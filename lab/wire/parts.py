"""Messages of several parts, with the concatenation element of 3GPP TS 23.040 section 9.2.3.24.1."""
import zlib


def in_parts(order, text):
    """The user data header, without its length, and the text of each part, in an order such as "2,1,3"."""
    numbers = [int(number) for number in order.split(",")]
    if sorted(numbers) != list(range(1, len(numbers) + 1)):
        raise ValueError(f"{order} is not an order of parts")
    size = -(-len(text) // len(numbers))
    return [(bytes([0, 3, 77, len(numbers), number]), text[(number - 1) * size:number * size]) for number in numbers]


def push_in_parts(octets, port=2948, source=9200):
    """The user data header, without its length, and the octets of each message that brings octets to a port."""
    ports = bytes([5, 4]) + port.to_bytes(2, "big") + source.to_bytes(2, "big")
    if len(octets) <= 140 - 1 - len(ports):
        return [(ports, octets)]
    size = 140 - 1 - len(ports) - 5
    pieces = [octets[at:at + size] for at in range(0, len(octets), size)]
    if len(pieces) > 255:
        raise ValueError(f"{len(octets)} octets are too many for 255 messages")
    reference = zlib.crc32(octets) & 255
    return [(ports + bytes([0, 3, reference, len(pieces), number]), piece) for number, piece in enumerate(pieces, 1)]
