"""The channels of the component: their counterparts, what to set to reach them, and an event to misbehave at."""
import dataclasses


@dataclasses.dataclass(frozen=True)
class Peer:
    """A counterpart. Channels that name the same one share it."""
    program: str
    options: tuple   # "{0}" is the address of the channel's first peer
    says: str        # above what it printed
    misbehave: str   # a rule of a scenario
    com: int = 0     # the COM port it is linked to; 0 = it has a TCP port

    def options_after(self, addresses):
        return [option.format(*addresses) if addresses else option for option in self.options]


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


HELLO = "Hello from the first phone"
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
]
