"""A TCP server on the loopback address: one dialogue for each connection, all in one thread."""
import asyncio

from base.line import LIMIT, Line
from base.program import Program
from base.scenario import Refused


class Server(Program):
    dialogue = None  # the Dialogue of a connection
    port = 0         # where it listens unless told

    def __init__(self, options):
        super().__init__(options)
        if not 0 <= options.port < 1 << 16:
            raise Refused(f"{options.port} is no TCP port")
        self.socket = None
        self.conversations = set()

    @classmethod
    def add_arguments(cls, parser):
        parser.add_argument("--port", type=int, default=cls.port, help=f"TCP port, 0 for a free one ({cls.port})")

    async def open(self):
        self.socket = await asyncio.start_server(self.connected, "127.0.0.1", self.options.port, limit=LIMIT)
        return f"on port {self.socket.sockets[0].getsockname()[1]}"

    def connected(self, reader, writer):
        conversation = asyncio.create_task(self.dialogue(self, Line(reader, writer)).run())
        self.conversations.add(conversation)
        conversation.add_done_callback(self.conversations.discard)

    async def close(self):
        if self.socket:
            self.socket.close()
        for conversation in self.conversations:
            conversation.cancel()
        await asyncio.gather(*self.conversations, return_exceptions=True)
