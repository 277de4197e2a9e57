"""The channels of the component: their counterparts, what to set to reach them, and an event to misbehave at."""
import dataclasses
import shlex
import struct
import zlib

from base.wine import ROOT, windows_path

WORK = ROOT / "build/demo"  # what the counterparts and scripts write
PICTURE = WORK / "picture.png"


@dataclasses.dataclass(frozen=True)
class Peer:
    """A counterpart. Channels that name the same one share it."""
    program: str
    options: tuple   # "{0}" is the address of the channel's first peer
    says: str        # above what it printed
    misbehave: str   # a rule of a scenario
    com: int = 0     # the COM port it is linked to; 0 = it has a TCP port

    def options_after(self, addresses):
        return [str(option).format(*addresses) if addresses else option for option in self.options]


@dataclasses.dataclass(frozen=True)
class Channel:
    """Counterparts, and the script that meets them: cscript demo_SCRIPT.vbs ADDRESS ... [KIND] LOG [ACTIVITY]."""
    name: str
    title: str
    peers: tuple
    settings: str           # what a user of the class sets; {0} is the COM port, or the TCP port, of the first peer
    script: str = ""        # when it is not the channel's name
    kind: tuple = ()        # what else the script is told
    activity: bool = False  # whether it writes an activity file
    shows_log: bool = True


def picture(size=48):
    """A PNG of two colours that run into each other."""
    def chunk(name, data):
        return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))
    rows = b"".join(b"\0" + b"".join(bytes([255 * x // size, 96, 255 * y // size]) for x in range(size))
                    for y in range(size))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", size, size, 8, 2, 0, 0, 0)) +
            chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


def prepare():
    """Makes the files that the channels use."""
    WORK.mkdir(parents=True, exist_ok=True)
    PICTURE.write_bytes(picture())


HELLO = "Hello from the first phone"
MMS_CENTRE = Peer(
    "mmsc.py", ("--folder", WORK / "parts", "--message",
                f"/m1 +31611111111 'Our holiday' {shlex.quote(str(PICTURE))} 'text:{HELLO}'"),
    "The MMS centre saw:", '{"match": "POST", "do": "portal"}')
CHANNELS = [
    Channel("gsm", "SMS through a GSM modem",
            (Peer("modem.py", ("--message", f"text SM +31611111111 {HELLO}", "--message",
                               "parts SM +31622222222 2,3,1 This message came in three parts, the second one first"),
                  "The modem saw:", '{"match": "PDU", "do": "error", "text": "+CMS ERROR: 500"}', com=5),),
            'SmsProtocolGsm: Device = "{0}"', activity=True),
    Channel("smpp", "SMS through an SMPP server",
            (Peer("smsc.py", ("--deliver", f"+31611111111 {HELLO}", "--deliver",
                              "parts:2,1 +31622222222 This message came in two parts"),
                  "The server saw:", '{"match": "submit_sm", "do": "status", "status": 8}'),),
            'SmsProtocolSmpp: Server = "127.0.0.1", ServerPort = {0}, SystemID = "demo"', shows_log=False),
    Channel("http", "SMS through an HTTP gateway",
            (Peer("gateway.py", ("--account", "demo:secret"), "The gateway saw:",
                  '{"do": "answer", "body": "ERROR: no credit"}'),),
            'SmsProtocolHttp: ProviderHost = "127.0.0.1", ProviderPort = {0}, ProviderWebAccount = "demo", '
            'ProviderWebPassword = "secret", URLText = '
            '"send?to=%MESSAGERECIPIENT%&from=%MESSAGESENDER%&text=%MESSAGEDATA%", ProviderSuccessResponse = "OK"',
            shows_log=False),
    Channel("pager", "A page through a paging server",
            (Peer("pager.py", ("--password", "secret"), "The server saw:", '{"match": "PAGE", "do": "refuse", "code": 550}'),),
            'PagerProtocolSnpp: Server = "127.0.0.1", ServerPort = {0}, ProviderPassword = "secret"'),
] + [
    Channel(kind.lower(), f"A message through a dialled provider, over {kind}",
            (Peer("modem.py", ("--provider", kind.lower(), "--provider-password", "secret"), "The provider saw:",
                  '{"match": "ATD", "do": "reply", "text": "BUSY"}', com=com),),
            f'SmsProtocolDialup: Device = "{{0}}", ProviderType = {number}, '
            'ProviderDialString = "0201234567", ProviderPassword = "secret"', script="dialup", kind=(kind,))
    for kind, number, com in (("UCP", "asPROVIDERTYPE_UCP", 6), ("TAP", "asPROVIDERTYPE_TAP_DEFAULT", 7))
] + [
    Channel("mm1", "A picture message as a handset sends it, and one that waits (MM1)",
            (MMS_CENTRE,
             Peer("modem.py", ("--message", "mms SM +31611111111 http://mmsc.example.org/m1 Our holiday"), "The modem saw:",
                  '{"match": "AT+CMGL", "do": "error", "text": "+CMS ERROR: 500"}', com=8)),
            'MmsProtocolMm1: AdvancedSettings = "UseExistingConnection=1", ProviderWAPGateway = "http://127.0.0.1:{0}", '
            'ProviderMMSC = "http://mmsc.example.org/mms", Device = "{1}"',
            kind=(windows_path(WORK),), shows_log=False),
    Channel("mm4", "A picture message to a peer MMS server, by mail (MM4)",
            (Peer("mail.py", ("--account", "demo:secret"), "The server saw:",
                  '{"match": "RCPT", "do": "refuse", "code": 550}'),),
            'MmsProtocolMm4: ProviderHost = "127.0.0.1", ProviderPort = {0}, ProviderAccount = "demo", '
            'ProviderPassword = "secret", ProviderDomain = "mms.example.net"', activity=True, shows_log=False),
    Channel("mm7", "A picture message to an MMS centre (MM7)", (MMS_CENTRE,),
            'MmsProtocolMm7: ProviderHost = "127.0.0.1", ProviderPort = {0}, ProviderPath = "mm7"'),
]
