#!/usr/bin/env python3
"""Every counterpart at once, what they say in one stream.

    lab/together.py --links build/wine/dosdevices

Each counterpart takes a scenario from its file in the folder of scenarios, and reads it again when it changes.
"""
import argparse
import asyncio
import itertools
import pathlib
import re
import signal
import sys
import textwrap

from base.launch import LAB
from base.wine import PREFIX, ROOT
from channels import CHANNELS, prepare


class Running:
    """One counterpart as a process of its own."""

    def __init__(self, name, peer, options):
        self.name, self.peer = name, peer
        self.scenario = options.scenarios / f"{name}.json"
        self.scenario.write_text("[]\n", encoding="utf-8")
        if peer.com:
            self.line = ("--link", options.links / f"com{peer.com}")
        else:
            self.line = ("--port", "0") if options.any_port else ()
        self.address = f"COM{peer.com}" if peer.com else ""
        self.process = None

    async def start(self, addresses):
        command = [LAB / self.peer.program, "--scenario", self.scenario, *self.line, *self.peer.options_after(addresses)]
        self.process = await asyncio.create_subprocess_exec(
            sys.executable, *map(str, command), stdin=asyncio.subprocess.PIPE, stdout=asyncio.subprocess.PIPE,
            stderr=asyncio.subprocess.STDOUT, start_new_session=True)  # Ctrl-C is for this program alone
        first = (await self.process.stdout.readline()).decode()
        if not re.search(r" ready ", first):
            said = (first + (await self.process.stdout.read()).decode()).strip()
            elsewhere = " (another lab? --any-port listens elsewhere)" if "address already in use" in said else ""
            raise RuntimeError(f"{self.peer.program} does not start: {said}{elsewhere}")
        self.address = self.address or first.split()[-1]

    async def follow(self, width):
        """Shows what it says until it ends."""
        async for line in self.process.stdout:
            print(f"{self.name:{width}} | {line.decode('utf-8', 'replace').rstrip()}", flush=True)
        print(f"{self.name:{width}} | ended with {await self.process.wait()}", flush=True)

    async def stop(self):
        """By the end of its input: a signal asks first whether the process is still there, which takes its end from asyncio."""
        if self.process:
            self.process.stdin.close()
            await self.process.wait()

    @property
    def place(self):
        return self.address if self.peer.com else f"127.0.0.1:{self.address}"

    @property
    def shown(self):
        return self.scenario.relative_to(ROOT) if self.scenario.is_relative_to(ROOT) else self.scenario

    @property
    def to_misbehave(self):
        return f"lab/{self.peer.program}: echo '[{self.peer.misbehave}]' >{self.shown}"


class Lab:
    """The counterparts of some channels; one that several share runs once, under the name of the first."""

    def __init__(self, options):
        self.options = options
        self.channels = [channel for channel in CHANNELS if channel.name in options.channels]
        self.running = {}  # by peer

    async def start(self):
        for channel in self.channels:
            for number, peer in enumerate(channel.peers):
                if peer not in self.running:
                    name = f"{channel.name}.{peer.program.removesuffix('.py')}" if number else channel.name
                    self.running[peer] = Running(name, peer, self.options)
                    await self.running[peer].start([self.running[other].address for other in channel.peers[:number]])

    async def stop(self):
        await asyncio.gather(*(one.stop() for one in self.running.values()))

    def words(self):
        rows = []
        for channel in self.channels:
            peers = [self.running[peer] for peer in channel.peers]
            told = [*wrapped(channel.settings.format(*(peer.address for peer in peers))), *(peer.to_misbehave for peer in peers)]
            places = [peer.place for peer in peers]
            rows += itertools.zip_longest([channel.name], places, told, fillvalue="")
        first = self.running[self.channels[0].peers[0]]
        return (table(["channel", "listens at", "what to set, and below it how to make it misbehave"], rows) +
                f"\n\nlab/{first.peer.program} --help, and that of the others, names every event and action. The way back: "
                f"echo '[]' >{first.shown}")

    def follow(self):
        width = max(len(one.name) for one in self.running.values())
        return [asyncio.create_task(one.follow(width)) for one in self.running.values()]


def wrapped(settings):
    """What to set, in lines that fit beside the other columns; none ends within a setting."""
    lines = textwrap.wrap(settings.replace(" = ", "\0=\0"), 110, break_long_words=False, break_on_hyphens=False, subsequent_indent="    ")
    return [line.replace("\0", " ") for line in lines]


def table(titles, rows):
    """Lines with the columns below their titles; the last column is as wide as it is."""
    widths = [max(map(len, column)) for column in zip(titles, *rows)][:-1]
    return "\n".join("  ".join([*(f"{cell:{width}}" for cell, width in zip(row, widths)), row[-1]]).rstrip()
                     for row in [titles, ["-" * len(title) for title in titles], *rows])


async def run(options):
    ended = asyncio.Event()
    loop = asyncio.get_running_loop()
    for number in (signal.SIGTERM, signal.SIGINT):
        loop.add_signal_handler(number, ended.set)
    lab, following = Lab(options), []
    if not options.links.is_dir() and any(peer.com for channel in lab.channels for peer in channel.peers):
        raise RuntimeError(f"there is no folder {options.links} for the COM ports: ./demo.sh makes that of Wine, --links names another")
    options.scenarios.mkdir(parents=True, exist_ok=True)
    prepare()
    try:
        await lab.start()
        print(f"{lab.words()}\n\nCtrl-C ends all of them. What they see:\n", flush=True)
        following = lab.follow()
        await ended.wait()
    finally:
        await lab.stop()
    await asyncio.gather(*following)


def add_arguments(parser):
    names = [channel.name for channel in CHANNELS]
    parser.add_argument("channels", nargs="*", metavar="CHANNEL", help=f"of {', '.join(names)}; all when none is named")
    parser.add_argument("--any-port", action="store_true", help="the lab listens on free ports, not on the usual ones")
    parser.set_defaults(names=names)


def parse(parser, arguments=None):
    options = parser.parse_args(arguments)
    for name in options.channels:
        if name not in options.names:
            parser.error(f"there is no channel {name}, there are {', '.join(options.names)}")
    options.channels = options.channels or options.names
    return options


def main(arguments=None):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    add_arguments(parser)
    parser.add_argument("--links", type=pathlib.Path, default=PREFIX / "dosdevices", help="folder of the COM ports' links")
    parser.add_argument("--scenarios", type=pathlib.Path, default=ROOT / "build/lab", help="folder of the scenarios' files")
    try:
        asyncio.run(run(parse(parser, arguments)))
    except RuntimeError as fault:
        parser.exit(1, f"lab: {fault}\n")


if __name__ == "__main__":
    main()
