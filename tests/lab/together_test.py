"""Every counterpart at once: the table leads to each, one stream shows all of them, scenarios change, and all of them end."""
import os
import pathlib
import re
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import unittest

from lab import LAB

sys.path.insert(0, str(LAB))
from channels import CHANNELS  # noqa: E402


class Together(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.process = subprocess.Popen(
            [sys.executable, LAB / "together.py", "--any-port", "--links", self.folder, "--scenarios", self.folder / "rules"],
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        self.addCleanup(self.process.stdout.close)
        self.addCleanup(self.process.wait)
        self.addCleanup(self.process.kill)
        watch = threading.Timer(60, self.process.kill)  # a test that waits for a line in vain ends
        watch.start()
        self.addCleanup(watch.cancel)
        self.table = self.until("Ctrl-C ends")

    def until(self, text):
        """What it says up to a line with that text."""
        said = ""
        for line in self.process.stdout:
            said += line
            if text in line:
                return said
        self.fail(f"no {text!r} in: {said}")

    def test_the_table_leads_to_each_and_one_stream_shows_them(self):
        for channel in CHANNELS:
            with self.subTest(channel.name):
                self.assertRegex(self.table, rf"(?m)^{channel.name} +(COM{channel.peers[0].com or '-'}|127\.0\.0\.1:\d+) +\w+: ")
        rows = re.findall(r"(?m)^.* {26}lab/(\w+\.py): echo '\[{.*}\]' >.*/([\w.]+)\.json$", self.table)
        self.assertEqual([program for program, _ in rows], [peer.program for channel in CHANNELS for peer in channel.peers])
        names = {name for _, name in rows}
        self.assertEqual(len(names), len({peer for channel in CHANNELS for peer in channel.peers}))
        self.assertEqual(rows[-1], ("mmsc.py", "mm1"))  # MM7 shares the centre of MM1
        wide = [line for line in self.table.split("\n") if len(line.replace(f"{self.folder}/rules", "build/lab")) > 140]
        self.assertEqual(wide, [])
        self.assertIn(f"echo '[]' >{self.folder}/rules/gsm.json\n", self.table)
        port = int(re.search(r"(?m)^pager +127\.0\.0\.1:(\d+)", self.table)[1])
        with socket.create_connection(("127.0.0.1", port), 10) as pager, pager.makefile("rw", newline="\r\n") as line:
            def ask(text):
                line.write(text + "\r\n")
                line.flush()
                return line.readline().strip()
            self.assertEqual(line.readline()[:3], "220")
            for command in ("LOGI user secret", "LOGI secret", "PAGE 5551212", "MESS Hello", "SEND"):
                answer = ask(command)
            self.assertEqual(answer, "250 Message sent")
            self.assertRegex(self.until("5551212"), r"(?m)^pager +\| page for 5551212: Hello$")
            rule = re.search(r"lab/pager.py: echo '(.*)' >", self.table)[1]
            (self.folder / "rules/pager.json").write_text(rule, encoding="utf-8")
            self.assertEqual(ask("PAGE 5551212"), "550 refused")
            self.until("new scenario, rules: 1")
            (self.folder / "rules/pager.json").write_text("[{", encoding="utf-8")
            self.assertEqual(ask("PAGE 5551212"), "550 refused")  # a wrong file changes nothing
            self.until("scenario")
        modem = os.open(self.folder / "com5", os.O_RDWR | os.O_NOCTTY)
        os.write(modem, b"AT\r")
        heard = b""
        while b"OK" not in heard:
            heard += os.read(modem, 100)
        os.close(modem)
        self.process.send_signal(signal.SIGTERM)
        rest = self.process.stdout.read()
        self.assertEqual(self.process.wait(), 0)
        self.assertEqual(sorted(re.findall(r"(?m)^([\w.]+) +\| ended with 0$", rest)), sorted(names))
        self.assertEqual([*self.folder.glob("com*")], [])

    def fails(self, *arguments):
        done = subprocess.run([sys.executable, LAB / "together.py", "--scenarios", self.folder / "other", *arguments],
                              capture_output=True, text=True, timeout=60, check=False)
        self.assertEqual((done.returncode, done.stdout), (1, ""))
        return done.stderr

    def test_one_that_cannot_start_is_named_and_takes_nothing(self):
        terminal = os.readlink(self.folder / "com5")
        self.assertEqual(self.fails("--links", self.folder, "--any-port"),
                         "lab: modem.py does not start: modem: COM5 has another modem; end that lab first\n")
        self.assertEqual(os.readlink(self.folder / "com5"), terminal)
        self.assertRegex(self.fails("--links", self.folder / "none"), rf"^lab: there is no folder {self.folder}/none for the COM ports: .*\n$")
        port = re.search(r"(?m)^smpp +127\.0\.0\.1:(\d+)", self.table)[1]
        done = subprocess.run([sys.executable, "-X", "dev", "-c", "import sys; sys.path.insert(0, sys.argv[1]); import together, channels; "
                               "together.CHANNELS[:] = [channels.Channel('smpp', '', (channels.Peer('smsc.py', ('--port', sys.argv[2]), '', ''),), '')]; "
                               "together.main(['smpp', '--scenarios', sys.argv[3], '--links', '/none'])", LAB, port, self.folder],
                              capture_output=True, text=True, timeout=60, check=False)
        self.assertEqual(done.returncode, 1)
        self.assertRegex(done.stderr, r"^lab: smsc.py does not start: smsc: .*address already in use "
                                      r"\(another lab\? --any-port listens elsewhere\)\n$")


if __name__ == "__main__":
    unittest.main()
