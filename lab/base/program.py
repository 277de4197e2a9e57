"""A counterpart as a command: its arguments, what it prints and records, how it starts and ends.

The docstring of the program's file is its help. A program says what it sees in words, one event a line on standard
output, and first "<name> ready ..." when it can be used. It ends with 0 on SIGTERM, on SIGINT and when a pipe on its
standard input is closed, with 2 when its arguments are wrong and with 1 when it cannot start.
"""
import argparse
import asyncio
import json
import os
import signal
import stat
import sys

from base.scenario import Refused, Scenario, describe, COMMON

HELP = """
scenario file:
  A JSON list of rules; the first rule that fits an event misbehaves:
    [{"match": "%s", "nth": [2], "do": "delay", "ms": 500}]
  `match` is the beginning of the event's name (every event when missing; "connect" is the beginning of a connection),
  `nth` the occurrences, counted over the whole run, that it fits (all when missing), `do` one of those below. `text` is a
  line, CRLF is added; `hex` is octets as they are. A file that is changed meanwhile is read again at the next event.

"""


class Program:
    own_actions = {}   # actions of a scenario that only this counterpart knows
    event = "connect"  # an example of an event, for the help

    def __init__(self, options):
        self.options = options
        self._rules = Scenario.load(options.scenario, self.own_actions) if options.scenario else Scenario()
        self._rules_of = self._scenario_time()
        self.ended = asyncio.Event()

    # --- what a counterpart supplies

    @classmethod
    def add_arguments(cls, parser):
        """Adds the program's own arguments."""

    async def open(self):
        """Makes the counterpart usable; gives what stands behind "ready" in its first line."""
        raise NotImplementedError

    async def close(self):
        """Takes away what must not stay behind."""

    # --- what it gets

    @property
    def scenario(self):
        """The rules of the scenario, read again when their file has changed. Wrong ones are said, and the old ones stay."""
        if (now := self._scenario_time()) != self._rules_of:
            self._rules_of = now
            try:
                self._rules = Scenario.load(self.options.scenario, self.own_actions)
                self.say(f"new scenario, rules: {len(self._rules.rules)}")
            except Refused as fault:
                self.say(str(fault))
        return self._rules

    def _scenario_time(self):
        try:
            return os.stat(self.options.scenario).st_mtime_ns if self.options.scenario else 0
        except OSError:
            return 0

    def say(self, text):
        if not self.options.quiet:
            print(text, flush=True)

    def trace(self, text):
        if self.options.trace:
            self.say(text)

    def record(self, fields):
        if self.options.record:
            with open(self.options.record, "a", encoding="utf-8") as file:
                file.write(json.dumps(fields, ensure_ascii=False) + "\n")

    @classmethod
    def name(cls):
        return cls.__name__.lower()

    @classmethod
    def parser(cls):
        parser = argparse.ArgumentParser(description=sys.modules[cls.__module__].__doc__,
                                         formatter_class=argparse.RawDescriptionHelpFormatter,
                                         epilog=HELP % cls.event + describe(COMMON | cls.own_actions))
        cls.add_arguments(parser)
        parser.add_argument("--scenario", help="JSON file of rules by which it misbehaves")
        parser.add_argument("--record", help="file to which what was seen is appended as JSON lines")
        parser.add_argument("--quiet", action="store_true", help="print nothing but when it is ready")
        parser.add_argument("--trace", action="store_true", help="print every command and every misbehaviour")
        parser.add_argument("--stay", action="store_true", help="go on when standard input is closed")
        return parser

    @classmethod
    def main(cls, arguments=None):
        parser = cls.parser()
        options = parser.parse_args(arguments)
        sys.stdout.reconfigure(encoding="utf-8", errors="backslashreplace")
        try:
            asyncio.run(cls(options).run())
        except Refused as fault:
            parser.exit(2, f"{cls.name()}: {fault}\n")
        except OSError as fault:
            parser.exit(1, f"{cls.name()}: {fault}\n")

    async def run(self):
        loop = asyncio.get_running_loop()
        for number in (signal.SIGTERM, signal.SIGINT):
            loop.add_signal_handler(number, self.ended.set)
        if not self.options.stay:
            self._watch_input(loop)
        try:
            print(f"{self.name()} ready {await self.open()}", flush=True)
            await self.ended.wait()
        finally:
            await self.close()

    def _watch_input(self, loop):
        """Only a pipe's end tells that the starter is gone: in the background input is closed from the start."""
        try:
            mode = os.fstat(0).st_mode
        except OSError:
            return
        if stat.S_ISFIFO(mode) or stat.S_ISSOCK(mode):
            loop.add_reader(0, lambda: os.read(0, 4096) or (loop.remove_reader(0), self.ended.set()))
