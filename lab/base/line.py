"""A line to a peer, a connection or a pseudo-terminal, and a counterpart's dialogue on it."""
import asyncio
import os
import pty
import termios
import traceback
import tty

LIMIT = 1 << 20  # octets of the longest line that is read


class HangUp(Exception):
    """The line was dropped."""


class Line:
    """What dialogues and scenarios need of a connection."""

    def __init__(self, reader, writer):
        self.reader, self.writer = reader, writer
        self.held = b""  # a reply that waits for the next one
        self.terminal = None  # the peer's end of a pseudo-terminal

    @classmethod
    async def pseudo_terminal(cls):
        """A line, and the name of the terminal by which the peer reaches it."""
        loop = asyncio.get_running_loop()
        master, terminal = pty.openpty()  # the terminal stays open here, so that peers can come and go
        tty.setraw(terminal)
        reader = asyncio.StreamReader(LIMIT)
        await loop.connect_read_pipe(lambda: asyncio.StreamReaderProtocol(reader), os.fdopen(os.dup(master), "rb", 0))
        writer = await loop.connect_write_pipe(asyncio.streams.FlowControlMixin, os.fdopen(master, "wb", 0))
        line = cls(reader, asyncio.StreamWriter(*writer, None, loop))
        line.terminal = terminal
        return line, os.ttyname(terminal)

    async def line(self):
        """The next line without its end, or None when there is none any more."""
        octets = await self.reader.readline()
        return octets.rstrip(b"\r\n") if octets.endswith(b"\n") else None

    async def octets(self, count):
        """Exactly that many octets."""
        return await self.reader.readexactly(count)

    async def write(self, octets):
        self.writer.write(octets)
        await self.writer.drain()

    async def pause(self, ms):
        await asyncio.sleep(ms / 1000)

    def block(self, ms):
        """Takes nothing from the peer for so long, as a modem that holds CTS low: what the peer writes waits with it."""
        termios.tcflow(self.terminal, termios.TCOOFF)
        asyncio.get_running_loop().call_later(ms / 1000, termios.tcflow, self.terminal, termios.TCOON)

    async def hang_up(self):
        raise HangUp

    def close(self):
        self.writer.close()


class Dialogue:
    """One conversation: takes requests from the line and replies through the scenario."""

    def __init__(self, program, line):
        self.program, self.line = program, line
        self.options = program.options

    # --- what a counterpart supplies

    async def connected(self):
        """The beginning: a place for a greeting. A scenario can misbehave here, too."""
        await self.reply(self.rule("connect"))

    async def request(self):
        """The next request, or None when the peer is done: a line, unless the counterpart reads something else."""
        return await self.line.line()

    async def take(self, request):
        """Acts on a request and replies. ValueError ends the conversation: the peer cannot be followed any more."""
        raise NotImplementedError

    # --- what it gets

    def rule(self, event, shown=None):
        """The scenario's rule for an event, which is traced, as `shown` when it holds what nobody should read."""
        rule = self.program.scenario.rule_for(event)
        self.program.trace(f"< {shown or event}" + (f" (scenario: {rule.do})" if rule.do else ""))
        return rule

    async def reply(self, rule, *pieces):
        """Replies as the rule has it; the pieces are lines or PDUs, ends included."""
        await rule.play(pieces, self.line)

    async def converse(self):
        """Goes on until the peer is done; for a dialogue within another, whose line it takes over meanwhile."""
        await self.connected()
        while (request := await self.request()) is not None:
            await self.take(request)

    async def run(self):
        """The whole life of a line: whatever ends it, it is said and the line closed."""
        try:
            await self.converse()
        except HangUp:
            self.program.say("hung up")
        except (OSError, asyncio.IncompleteReadError) as fault:
            if not isinstance(fault, asyncio.IncompleteReadError) or fault.partial:
                self.program.say(f"connection lost: {fault}")
        except ValueError as fault:
            self.program.say(f"connection ended: {fault}")
        except Exception:
            # A fault of the lab costs this conversation only, and shows.
            traceback.print_exc()
        finally:
            self.line.close()
