#!/usr/bin/env python3
"""The main job, against the lab's counterparts: starts them, runs the demo scripts under Wine and shows both sides."""
import contextlib
import dataclasses
import shlex
import shutil
import struct
import sys
import zlib

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


def link(com):
    return ("--link", PREFIX / f"dosdevices/com{com}")


def start(stack, program, *options):
    """A counterpart that ends with the stack."""
    counterpart = Counterpart(program, WORK, *options)
    stack.callback(counterpart.close)
    return counterpart


def picture(size=48):
    """A PNG of two colours that run into each other."""
    def chunk(name, data):
        return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))
    rows = b"".join(b"\0" + b"".join(bytes([255 * x // size, 96, 255 * y // size]) for x in range(size))
                    for y in range(size))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", size, size, 8, 2, 0, 0, 0)) +
            chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


@dataclasses.dataclass
class Channel:
    """A counterpart, and the script that meets it: cscript demo_NAME.vbs ADDRESS [KIND] [FOLDER COM] LOG [ACTIVITY]."""
    title: str
    name: str
    program: str
    options: tuple
    says: str               # above what the counterpart printed
    com: int = 0            # the COM port it is linked to; 0 = it has a TCP port
    kind: tuple = ()        # what else the script is told
    modem: tuple = ()       # options of a modem that the script meets as well, on COM7
    activity: bool = False  # whether it writes an activity file
    shows_log: bool = True

    def run(self):
        print(f"{self.title}\n{'-' * len(self.title)}")
        stem = "_".join((self.name, *self.kind))
        log, activity = WORK / f"{stem}.log", WORK / f"{stem}.ini"
        line = link(self.com) if self.com else ("--port", "0")
        with contextlib.ExitStack() as started:
            counterpart = start(started, self.program, *line, *self.options)
            address = f"COM{self.com}" if self.com else counterpart.port
            told = list(self.kind)
            if self.modem:
                modem = start(started, "modem.py", *link(7), *self.modem)
                told += [windows_path(WORK), "COM7"]
            told += [windows_path(file) for file in (log, activity)[:2 if self.activity else 1]]
            code = play(LAB / f"demo_{self.name}.vbs", address, *told)
        show(self.says, counterpart.log)
        if self.modem:
            show("The modem saw:", modem.log)
        if self.shows_log:
            show("Log file:", log)
        else:
            print(f"\nLog file: {log.relative_to(ROOT)}")
        if self.activity:
            show("Activity file:", activity)
        print()
        return code


HELLO = "Hello from the first phone"
PICTURE = WORK / "picture.png"
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
] + [
    Channel("A picture message as a handset sends it, and one that waits (MM1)", "mm1", "mmsc.py",
            ("--folder", WORK / "parts", "--message", f"/m1 +31611111111 'Our holiday' {shlex.quote(str(PICTURE))} 'text:{HELLO}'"),
            "The MMS centre saw:", shows_log=False,
            modem=("--message", "mms SM +31611111111 http://mmsc.example.org/m1 Our holiday")),
    Channel("A picture message to an MMS centre (MM7)", "mm7", "mmsc.py",
            ("--folder", WORK / "submitted", "--account", "demo:secret"), "The MMS centre saw:"),
]


def main():
    shutil.rmtree(WORK, ignore_errors=True)
    WORK.mkdir(parents=True)
    PICTURE.write_bytes(picture())
    return next((code for channel in CHANNELS if (code := channel.run()) != 0), 0)


if __name__ == "__main__":
    sys.exit(main())
