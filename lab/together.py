#!/usr/bin/env python3
"""Every counterpart at once, what they say in one stream.

    lab/together.py --links build/wine/dosdevices

Each counterpart takes a scenario from its file in the folder of scenarios, and reads it again when it changes.
"""
import argparse
import asyncio
import pathlib
import re
import signal
import sys

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
            raise RuntimeError(f"{self.peer.program} does not start: {first}{(await self.process.stdout.read()).decode()}")
        self.address = self.address or first.split()[-1]

    async def follow(self, width):
        """Shows what it says until it ends."""
        async for line in self.process.stdout:
            print(f"{self.name:{width}} | {line.decode('utf-8', 'replace').rstrip()}", flush=True)
        print(f"{self.name:{width}} | ended with {await self.process.wait()}", flush=True)

    async def stop(self):
        if self.process and self.process.returncode is None:
            self.process.terminate()
            await self.process.wait()

    @property
    def place(self):
        return self.address if self.peer.com else f"127.0.0.1:{self.address}"

    @property
    def to_misbehave(self):
        shown = self.scenario.relative_to(ROOT) if self.scenario.is_relative_to(ROOT) else self.scenario
        return f"echo '[{self.peer.misbehave}]' >{shown}"


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

    def title(self, peer):
        """Its name, and the channels that share it."""
        others = [channel.name for channel in self.channels if peer in channel.peers[:1]][1:]
        return ", ".join([self.running[peer].name, *others])

    def words(self):
        of_channels = []
        for channel in self.channels:
            peers = [self.running[peer] for peer in channel.peers]
            of_channels.append([channel.name, ", ".join(peer.place for peer in peers),
                                channel.settings.format(*(peer.address for peer in peers))])
        return (table(["channel", "listens at", "what to set"], of_channels) + "\n\n" +
                table(["counterpart", "to make it misbehave (its --help names every event and action)"],
                      [[self.title(peer), one.to_misbehave] for peer, one in self.running.items()]))

    def follow(self):
        width = max(len(one.name) for one in self.running.values())
        return [asyncio.create_task(one.follow(width)) for one in self.running.values()]


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
    options.scenarios.mkdir(parents=True, exist_ok=True)
    prepare()
    lab, following = Lab(options), []
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
    parser.add_argument("--any-port", action="store_true", help="listen on free ports, not on the usual ones")
    try:
        asyncio.run(run(parse(parser, arguments)))
    except RuntimeError as fault:
        parser.exit(1, f"lab: {fault}\n")


if __name__ == "__main__":
    main()
