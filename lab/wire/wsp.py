"""Values of WSP (WAP-230, 8.4.2), read and written the slow and plain way."""

# The assigned content types, table 40; the number is the place.
TYPES = """*/* text/* text/html text/plain text/x-hdml text/x-ttml text/x-vCalendar text/x-vCard text/vnd.wap.wml
text/vnd.wap.wmlscript text/vnd.wap.wta-event multipart/* multipart/mixed multipart/form-data multipart/byteranges
multipart/alternative application/* application/java-vm application/x-www-form-urlencoded application/x-hdmlc
application/vnd.wap.wmlc application/vnd.wap.wmlscriptc application/vnd.wap.wta-eventc application/vnd.wap.uaprof
application/vnd.wap.wtls-ca-certificate application/vnd.wap.wtls-user-certificate application/x-x509-ca-cert
application/x-x509-user-cert image/* image/gif image/jpeg image/tiff image/png image/vnd.wap.wbmp
application/vnd.wap.multipart.* application/vnd.wap.multipart.mixed application/vnd.wap.multipart.form-data
application/vnd.wap.multipart.byteranges application/vnd.wap.multipart.alternative application/xml text/xml
application/vnd.wap.wbxml application/x-x968-cross-cert application/x-x968-ca-cert application/x-x968-user-cert
text/vnd.wap.si application/vnd.wap.sic text/vnd.wap.sl application/vnd.wap.slc text/vnd.wap.co
application/vnd.wap.coc application/vnd.wap.multipart.related application/vnd.wap.sia
text/vnd.wap.connectivity-xml application/vnd.wap.connectivity-wbxml""".split()
CHARSETS = {3: "ascii", 4: "latin-1", 5: "iso8859-2", 6: "iso8859-3", 7: "iso8859-4", 8: "iso8859-5", 9: "iso8859-6",
            10: "iso8859-7", 11: "iso8859-8", 12: "iso8859-9", 17: "shift_jis", 106: "utf-8", 1000: "utf-16-be",
            1015: "utf-16", 2026: "big5"}
UTF8 = 106
TEXT_PARAMETERS = {0x05: "name", 0x06: "filename", 0x0A: "start", 0x0B: "start-info", 0x17: "name", 0x18: "filename",
                   0x19: "start", 0x1A: "start-info"}


def decoded(octets, charset=None):
    """A text; without a charset UTF-8, or Latin-1 where it is none."""
    try:
        return octets.decode(CHARSETS.get(charset, "utf-8"))
    except UnicodeDecodeError:
        return octets.decode("latin-1")


class Reader:
    """Octets that are read from the beginning. ValueError tells where they are none of what they should be."""

    def __init__(self, octets):
        self.octets, self.at = octets, 0

    @property
    def left(self):
        return len(self.octets) - self.at

    def peek(self):
        if not self.left:
            raise ValueError(f"it ends at octet {self.at}")
        return self.octets[self.at]

    def take(self, count):
        if count > self.left:
            raise ValueError(f"it ends at octet {len(self.octets)}, {count - self.left} too early")
        self.at += count
        return self.octets[self.at - count:self.at]

    def octet(self):
        return self.take(1)[0]

    def part(self, count):
        return Reader(self.take(count))

    def uintvar(self):
        value = 0
        for _ in range(5):
            octet = self.octet()
            value = value << 7 | octet & 0x7F
            if octet < 0x80:
                return value
        raise ValueError(f"a number of more than 5 octets ends at octet {self.at}")

    def raw_text(self):
        end = self.octets.find(0, self.at)
        if end < 0:
            raise ValueError(f"the text at octet {self.at} has no end")
        text = self.take(end - self.at)
        self.at += 1
        return text

    def text_octets(self):
        """A text-string or quoted-string without its quote."""
        text = self.raw_text()
        return text[1:] if text[:1] in (b"\x7f", b'"') else text

    def text(self):
        return decoded(self.text_octets())

    def value_length(self):
        length = self.octet()
        if length > 31:
            raise ValueError(f"no length at octet {self.at - 1}")
        return self.uintvar() if length == 31 else length

    def integer(self):
        if self.peek() & 0x80:
            return self.octet() & 0x7F
        count = self.octet()
        if not 1 <= count <= 30:
            raise ValueError(f"no integer at octet {self.at - 1}")
        return int.from_bytes(self.take(count), "big")

    def encoded_string(self):
        if self.peek() > 31:
            return self.text()
        value = self.part(self.value_length())
        charset = value.integer()
        return decoded(value.text_octets(), charset)

    def media_type(self):
        if not self.peek() & 0x80:
            return self.raw_text().decode("latin-1")
        number = self.octet() & 0x7F
        return TYPES[number] if number < len(TYPES) else f"type/{number}"

    def content_type(self):
        """The type and its parameters."""
        if self.peek() > 31:
            return self.media_type(), {}
        value = self.part(self.value_length())
        media, parameters = value.media_type(), {}
        while value.left:
            name, found = value.parameter()
            parameters[name] = found
        return media, parameters

    def parameter(self):
        if not self.peek() & 0x80:
            name = self.raw_text().decode("latin-1")
            return name, self.parameter_value()
        number = self.octet() & 0x7F
        if number == 0x01:
            return "charset", self.integer()
        if number == 0x09:
            return "type", self.media_type()
        return TEXT_PARAMETERS.get(number, f"parameter {number}"), self.parameter_value()

    def parameter_value(self):
        first = self.peek()
        return self.integer() if first & 0x80 or first < 31 else self.text()

    def skip(self):
        """Passes over a value of any kind."""
        first = self.peek()
        if first < 32:
            self.take(self.value_length())
        elif first < 128:
            self.raw_text()
        else:
            self.octet()


# --- writing

def uintvar(value):
    octets = [value & 0x7F]
    while value := value >> 7:
        octets.insert(0, value & 0x7F | 0x80)
    return bytes(octets)


def short(value):
    return bytes([value | 0x80])


def long_integer(value):
    octets = value.to_bytes(max(1, (value.bit_length() + 7) // 8), "big")
    return bytes([len(octets)]) + octets


def text(value):
    octets = value.encode()
    return (b"\x7f" if octets[:1] > b"\x7f" else b"") + octets + b"\0"


def with_length(octets):
    return (bytes([len(octets)]) if len(octets) < 31 else b"\x1f" + uintvar(len(octets))) + octets


def encoded_string(value):
    return text(value) if value.isascii() else with_length(short(UTF8) + text(value))


def media_type(value):
    return short(TYPES.index(value)) if value in TYPES else text(value)


def content_type(media, charset=None, name=""):
    if charset is None and not name:
        return media_type(media)
    return with_length(media_type(media) + (b"" if charset is None else b"\x81" + short(charset)) +
                       (b"\x85" + text(name) if name else b""))
