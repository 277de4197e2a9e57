"""The channels of the component: their counterparts, what to set to reach them, and an event to misbehave at."""
import dataclasses


@dataclasses.dataclass(frozen=True)
class Channel:
    """A counterpart, and the script that meets it: cscript demo_SCRIPT.vbs ADDRESS [KIND] LOG [ACTIVITY]."""
    name: str
    title: str
    program: str
    options: tuple
    says: str               # above what the counterpart printed
    settings: str           # what a user of the class sets; {address} is the COM port, or the TCP port
    misbehave: str          # a rule of a scenario
    script: str = ""        # when it is not the channel's name
    com: int = 0            # the COM port it is linked to; 0 = it has a TCP port
    kind: tuple = ()        # what else the script is told
    activity: bool = False  # whether it writes an activity file
    shows_log: bool = True


HELLO = "Hello from the first phone"
CHANNELS = [
    Channel("gsm", "SMS through a GSM modem", "modem.py",
            ("--message", f"text SM +31611111111 {HELLO}", "--message",
             "parts SM +31622222222 2,3,1 This message came in three parts, the second one first"),
            "The modem saw:", 'SmsProtocolGsm: Device = "{address}"',
            '{"match": "PDU", "do": "error", "text": "+CMS ERROR: 500"}', com=5, activity=True),
    Channel("smpp", "SMS through an SMPP server", "smsc.py",
            ("--deliver", f"+31611111111 {HELLO}", "--deliver", "parts:2,1 +31622222222 This message came in two parts"),
            "The server saw:", 'SmsProtocolSmpp: Server = "127.0.0.1", ServerPort = {address}, SystemID = "demo"',
            '{"match": "submit_sm", "do": "status", "status": 8}', shows_log=False),
    Channel("http", "SMS through an HTTP gateway", "gateway.py", ("--account", "demo:secret"), "The gateway saw:",
            'SmsProtocolHttp: ProviderHost = "127.0.0.1", ProviderPort = {address}, ProviderWebAccount = "demo", '
            'ProviderWebPassword = "secret", URLText = '
            '"send?to=%MESSAGERECIPIENT%&from=%MESSAGESENDER%&text=%MESSAGEDATA%", ProviderSuccessResponse = "OK"',
            '{"do": "answer", "body": "ERROR: no credit"}', shows_log=False),
    Channel("pager", "A page through a paging server", "pager.py", ("--password", "secret"), "The server saw:",
            'PagerProtocolSnpp: Server = "127.0.0.1", ServerPort = {address}, ProviderPassword = "secret"',
            '{"match": "PAGE", "do": "refuse", "code": 550}'),
] + [
    Channel(kind.lower(), f"A message through a dialled provider, over {kind}", "modem.py",
            ("--provider", kind.lower(), "--provider-password", "secret"), "The provider saw:",
            f'SmsProtocolDialup: Device = "{{address}}", ProviderType = {number}, '
            'ProviderDialString = "0201234567", ProviderPassword = "secret"',
            '{"match": "ATD", "do": "reply", "text": "BUSY"}', script="dialup", com=com, kind=(kind,))
    for kind, number, com in (("UCP", "asPROVIDERTYPE_UCP", 6), ("TAP", "asPROVIDERTYPE_TAP_DEFAULT", 7))
]
