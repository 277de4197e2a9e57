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
from channels import CHANNELS


class Running:
    """One counterpart as a process of its own."""

    def __init__(self, channel, options):
        self.channel = channel
        self.scenario = options.scenarios / f"{channel.name}.json"
        self.scenario.write_text("[]\n", encoding="utf-8")
        if channel.com:
            self.line = ("--link", options.links / f"com{channel.com}")
        else:
            self.line = ("--port", "0") if options.any_port else ()
        self.address = f"COM{channel.com}" if channel.com else ""
        self.process = None

    async def start(self):
        command = [LAB / self.channel.program, "--scenario", self.scenario, *self.line, *self.channel.options]
        self.process = await asyncio.create_subprocess_exec(
            sys.executable, *map(str, command), stdin=asyncio.subprocess.PIPE, stdout=asyncio.subprocess.PIPE,
            stderr=asyncio.subprocess.STDOUT)
        first = (await self.process.stdout.readline()).decode()
        if not re.search(r" ready ", first):
            raise RuntimeError(f"{self.channel.program} does not start: {first}{(await self.process.stdout.read()).decode()}")
        self.address = self.address or first.split()[-1]

    async def follow(self, width):
        """Shows what it says until it ends."""
        async for line in self.process.stdout:
            print(f"{self.channel.name:{width}} | {line.decode('utf-8', 'replace').rstrip()}", flush=True)
        print(f"{self.channel.name:{width}} | ended with {await self.process.wait()}", flush=True)

    async def stop(self):
        if self.process and self.process.returncode is None:
            self.process.terminate()
            await self.process.wait()

    def row(self):
        where = self.address if self.channel.com else f"127.0.0.1:{self.address}"
        shown = self.scenario.relative_to(ROOT) if self.scenario.is_relative_to(ROOT) else self.scenario
        return [self.channel.name, where, self.channel.settings.format(address=self.address),
                f"echo '[{self.channel.misbehave}]' >{shown}"]


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
    running = [Running(channel, options) for channel in CHANNELS if channel.name in options.channels]
    try:
        await asyncio.gather(*(one.start() for one in running))
        rows = [one.row() for one in running]
        print(table(["channel", "listens at", "what to set"], [row[:3] for row in rows]))
        print("\n" + table(["channel", "to make it misbehave (its --help names every event and action)"],
                           [[row[0], row[3]] for row in rows]))
        print("\nCtrl-C ends all of them. What they see:\n", flush=True)
        width = max(len(one.channel.name) for one in running)
        following = [asyncio.create_task(one.follow(width)) for one in running]
        await ended.wait()
    finally:
        await asyncio.gather(*(one.stop() for one in running))
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
