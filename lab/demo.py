#!/usr/bin/env python3
"""The main job, against the lab's counterparts: starts them, runs the demo scripts under Wine and shows both sides."""
import dataclasses
import sys

from base import wine
from base.launch import LAB, Counterpart
from base.wine import PREFIX, ROOT, windows_path

WORK = ROOT / "build/demo"


def play(script, *arguments):
    """The exit code of a script, which is a failure unless "Done" is the last that it prints."""
    code, output = wine.script(script, *arguments)
    done = output.endswith("Done\n")
    print(output.removesuffix("Done\n") if done else output, end="")
    if code == 0 and not done:
        print(f"{script.name} stopped at an error that cscript does not print")
        return 1
    return code


def show(title, file, indent="    "):
    print(f"\n{title}")
    for line in file.read_text(encoding="utf-8", errors="replace").splitlines():
        if line.strip():
            print(indent + line)


@dataclasses.dataclass
class Channel:
    """A counterpart, and the script that meets it: cscript demo_NAME.vbs ADDRESS [KIND] LOG [ACTIVITY]."""
    title: str
    name: str
    program: str
    options: tuple
    says: str               # above what the counterpart printed
    com: int = 0            # the COM port it is linked to; 0 = it has a TCP port
    kind: tuple = ()        # what else the script is told
    activity: bool = False  # whether it writes an activity file
    shows_log: bool = True

    def run(self):
        print(f"{self.title}\n{'-' * len(self.title)}")
        stem = "_".join((self.name, *self.kind))
        log, activity = WORK / f"{stem}.log", WORK / f"{stem}.ini"
        line = ("--link", PREFIX / f"dosdevices/com{self.com}") if self.com else ("--port", "0")
        counterpart = Counterpart(self.program, WORK, *line, *self.options)
        address = f"COM{self.com}" if self.com else counterpart.port
        files = [windows_path(file) for file in (log, activity)[:2 if self.activity else 1]]
        try:
            code = play(LAB / f"demo_{self.name}.vbs", address, *self.kind, *files)
        finally:
            counterpart.close()
        show(self.says, counterpart.log)
        if self.shows_log:
            show("Log file:", log)
        else:
            print(f"\nLog file: {log.relative_to(ROOT)}")
        if self.activity:
            show("Activity file:", activity)
        print()
        return code


HELLO = "Hello from the first phone"
CHANNELS = [
    Channel("SMS through a GSM modem on COM5", "gsm", "modem.py",
            ("--message", f"text SM +31611111111 {HELLO}", "--message",
             "parts SM +31622222222 2,3,1 This message came in three parts, the second one first"),
            "The modem saw:", com=5, activity=True),
    Channel("SMS through an SMPP server", "smpp", "smsc.py",
            ("--deliver", f"+31611111111 {HELLO}", "--deliver", "parts:2,1 +31622222222 This message came in two parts"),
            "The server saw:", shows_log=False),
    Channel("SMS through an HTTP gateway", "http", "gateway.py", ("--account", "demo:secret"), "The gateway saw:",
            shows_log=False),
    Channel("A page through a paging server", "pager", "pager.py", ("--password", "secret"), "The server saw:"),
    Channel("A picture message to a peer MMS server, over MM4", "mm4", "mail.py", ("--account", "demo:secret"),
            "The server saw:", activity=True, shows_log=False),
] + [
    Channel(f"A message through a dialled provider, over {kind}", "dialup", "modem.py",
            ("--provider", kind.lower(), "--provider-password", "secret"), "The provider saw:", com=6, kind=(kind,))
    for kind in ("UCP", "TAP")
]


def main():
    WORK.mkdir(parents=True, exist_ok=True)
    for old in WORK.iterdir():
        old.unlink()
    return next((code for channel in CHANNELS if (code := channel.run()) != 0), 0)


if __name__ == "__main__":
    sys.exit(main())
