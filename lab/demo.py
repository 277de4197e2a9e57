#!/usr/bin/env python3
"""The main job, against the lab's counterparts: starts them, runs the demo scripts under Wine and shows both sides.

    ./demo.sh              every channel
    ./demo.sh gsm mm1      these channels
    ./demo.sh --lab        no scripts: every counterpart at once, for scripts of your own
    ./demo.sh --lab --any-port    the same on free TCP ports, when the usual ones are taken
"""
import argparse
import dataclasses
import re
import shutil
import sys
import time

import together
from base import wine
from base.launch import LAB, Counterpart
from base.wine import PREFIX, ROOT, windows_path
from channels import CHANNELS, WORK, prepare

def play(script, *arguments):
    """The exit code of a script, which is a failure unless "Done" is the last that it prints, and what it printed."""
    code, output = wine.script(script, *arguments)
    done = output.endswith("Done\n")
    print(output.removesuffix("Done\n") if done else output, end="")
    if code == 0 and not done:
        print(f"{script.name} stopped at an error that cscript does not print")
        return 1, output
    return code, output


def show(title, file, indent="    "):
    print(f"\n{title}")
    for line in file.read_text(encoding="utf-8", errors="replace").splitlines():
        if line.strip():
            print(indent + line)


@dataclasses.dataclass
class Shown:
    """What a script did, by the lines that it printed: "Sent ...", "Received ...", "Report ...: STATE, ...", "... failed: CODE TEXT"."""
    channel: str
    code: int
    output: str
    seconds: float

    def row(self):
        reports = re.findall(r"^ *Report [^:]*: ([^,\n]*)", self.output, re.M)
        failure = re.search(r"failed: (.*)", self.output)
        result = failure[1] if failure else "Success" if self.code == 0 else "stopped"
        return [self.channel, str(self.count("Sent")), str(self.count("Received")), ", ".join(dict.fromkeys(reports)) or "-",
                result, f"{self.seconds:.1f} s"]

    def count(self, word):
        return len(re.findall(rf"^ *{word} ", self.output, re.M))


def present(channel):
    """Shows one channel."""
    print(f"{channel.title}\n{'-' * len(channel.title)}")
    log, activity = WORK / f"{channel.name}.log", WORK / f"{channel.name}.ini"
    addresses, counterparts = [], []
    files = [windows_path(file) for file in (log, activity)[:2 if channel.activity else 1]]
    begin = time.monotonic()
    try:
        for peer in channel.peers:
            line = ("--link", PREFIX / f"dosdevices/com{peer.com}") if peer.com else ("--port", "0")
            counterparts.append(Counterpart(peer.program, WORK, *line, *peer.options_after(addresses)))
            addresses.append(f"COM{peer.com}" if peer.com else counterparts[-1].port)
        code, output = play(LAB / f"demo_{channel.script or channel.name}.vbs", *addresses, *channel.kind, *files)
    finally:
        for counterpart in counterparts:
            counterpart.close()
    seconds = time.monotonic() - begin
    for peer, counterpart in zip(channel.peers, counterparts):
        show(peer.says, counterpart.log)
    if channel.shows_log:
        show("Log file:", log)
    else:
        print(f"\nLog file: {log.relative_to(ROOT)}")
    if channel.activity:
        show("Activity file:", activity)
    print()
    return Shown(channel.name, code, output, seconds)


def main(arguments=None):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    together.add_arguments(parser)
    parser.add_argument("--lab", action="store_true", help="only start the counterparts, and show what they see")
    parser.add_argument("--check", action="store_true", help="only look whether the arguments are right")
    options = together.parse(parser, arguments)
    if options.check:
        return 0
    if options.lab:
        together.main([*options.channels, *["--any-port"] * options.any_port])
        return 0
    shutil.rmtree(WORK, ignore_errors=True)
    prepare()
    try:
        shown = [present(channel) for channel in CHANNELS if channel.name in options.channels]
    except RuntimeError as fault:
        parser.exit(1, f"demo: {fault}\n")
    print(together.table(["channel", "sent", "received", "report", "result", "time"], [one.row() for one in shown]))
    return next((one.code for one in shown if one.code != 0), 0)


if __name__ == "__main__":
    sys.exit(main())
