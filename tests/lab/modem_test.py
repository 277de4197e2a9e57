"""The lab's modem where its peers misbehave, and its own actions."""
import os
import pathlib
import re
import select
import tempfile
import time
import unittest

from lab import program

FINAL = re.compile(rb"\r\n(OK|ERROR|\+CM[SE] ERROR: \d+)\r\n$|> $")


class Port:
    """The terminal of a modem of its own, echo off unless it is wanted."""

    def __init__(self, test, *options, rules=None, echo=False):
        link = pathlib.Path(test.enterContext(tempfile.TemporaryDirectory()), "modem")
        self.modem = test.enterContext(program("modem.py", "--link", link, *options, rules=rules))
        self.terminal = os.open(link, os.O_RDWR | os.O_NOCTTY)
        test.addCleanup(os.close, self.terminal)
        if not echo:
            self.exchange("ATE0")

    def raw(self, command, seconds=0.5):
        """What comes within so long."""
        os.write(self.terminal, command.encode("latin-1") + b"\r")
        heard, end = b"", time.monotonic() + seconds
        while (left := end - time.monotonic()) > 0 and select.select([self.terminal], [], [], left)[0]:
            heard += os.read(self.terminal, 4096)
        return heard

    def exchange(self, command, end="\r"):
        """The lines of the reply to a command."""
        os.write(self.terminal, (command + end).encode("latin-1"))
        heard = b""
        while not FINAL.search(heard):
            if not select.select([self.terminal], [], [], 10)[0]:
                raise TimeoutError(f"{command}: {heard}")
            heard += os.read(self.terminal, 4096)
        return heard.decode("latin-1").split()


class Commands(unittest.TestCase):
    def test_values_that_are_none(self):
        port = Port(self, "--message", "text SM +31611111111 Hi", "--storages", "SM,ME")
        for command, reply in [
            ("AT+CMGD=x", ["ERROR"]), ("AT+CMGD=", ["ERROR"]), ("AT+CMGD=2", ["+CMS", "ERROR:", "321"]),
            ("AT+CNMI=a,b,c,d", ["ERROR"]), ("AT+CNMI=2,1,0,2,0,7", ["ERROR"]), ("AT+CNMI=2,,0,2", ["OK"]),
            ("AT+CMGL=ALL", ["ERROR"]), ("AT+CPMS=XX", ["ERROR"]), ("AT+CPIN=?", ["OK"]), ("AT+NONE", ["ERROR"]),
            ("AT+CMGS=x", [">"]),
        ]:
            with self.subTest(command):
                self.assertEqual(port.exchange(command), reply)
        self.assertEqual(port.exchange("nonsense", "\x1a"), ["+CMS", "ERROR:", "304"])
        self.assertEqual(port.exchange("AT+CMGS=x"), [">"])
        self.assertEqual(port.exchange("", "\x1b"), ["OK"])
        self.assertEqual(port.exchange("AT+CMGD=1"), ["OK"])

    def test_settings_can_be_read_back(self):
        port = Port(self, "--message", "text ME +31611111111 Hi", "--storages", "SM,ME")
        for command, reply in [
            ("ATI", "Lab Modem OK"), ("AT+CSQ", "+CSQ: 20,99 OK"), ("AT+CSCS?", '+CSCS: "GSM" OK'),
            ("AT+CSCS=?", '+CSCS: ("GSM","IRA") OK'), ("AT+CSCS=IRA", "OK"), ("AT+CSCS=UCS2", "ERROR"),
            ("AT+CSCS?", '+CSCS: "IRA" OK'), ("AT+CMGF?", "+CMGF: 0 OK"), ("AT+CMGF=1", "OK"), ("AT+CMGF?", "+CMGF: 1 OK"),
            ("AT+CPMS?", '+CPMS: "SM",0,50,"SM",0,50,"SM",0,50 OK'), ('AT+CPMS="ME","SM"', "+CPMS: 1,50,0,50,0,50 OK"),
            ('AT+CPMS="ME","SM","SR"', "ERROR"), ('AT+CPMS="ME","SM","ME","SM"', "ERROR"),
            ("AT+CPMS?", '+CPMS: "ME",1,50,"SM",0,50,"SM",0,50 OK'), ('AT+CPMS="ME","SM","ME"', "+CPMS: 1,50,0,50,1,50 OK"),
            ("AT+CSCA?", '+CSCA: "+31653131313",145 OK'), ("AT+CSCA=1234", "OK"), ("AT+CSCA?", '+CSCA: "1234",129 OK'),
            ("AT+CMGR=2", "+CMS ERROR: 321"), ("AT+CMGR=", "+CMS ERROR: 321"), ("\x1b", None), ("AT", "OK"),
        ]:
            with self.subTest(command):
                if reply is None:
                    os.write(port.terminal, command.encode() + b"\r")  # is no command: nothing answers it
                else:
                    self.assertEqual(port.exchange(command), reply.split())
        pdu = port.exchange("AT+CMGR=1")
        self.assertEqual((pdu[:2], len(pdu[2]) // 2 - 8, pdu[3]), (["+CMGR:", "0,,21"], 21, "OK"))
        self.assertEqual(port.exchange("AT+CMGL=4")[:2], ["+CMGL:", "1,1,,21"])

    def test_a_storage_that_is_not_there(self):
        port = Port(self, "--storages", "ME", "--combined")
        self.assertEqual(port.exchange("AT+CMGD=1"), ["+CMS", "ERROR:", "321"])
        self.assertEqual(port.exchange("AT+CPMS=MT"), ["+CPMS:", "0,50,0,50,0,50", "OK"])
        for index in ("0", "1", "1000", "1001"):
            self.assertEqual(port.exchange("AT+CMGD=" + index), ["+CMS", "ERROR:", "321"])

    def test_own_actions(self):
        port = Port(self, rules=[{"match": "AT+CMGF", "do": "error", "text": "+CMS ERROR: 38"},
                                 {"match": "AT+CPMS", "do": "error"},
                                 {"match": "AT+CSCA", "do": "reply", "text": "+CSCA: 1\nOK"},
                                 {"match": "ATE0", "nth": [2], "do": "keep-echo"},
                                 {"match": "PDU", "do": "error", "text": "+CMS ERROR: 500"}])
        for command, reply in [("AT+CMGF=0", ["+CMS", "ERROR:", "38"]), ("AT+CPMS=SM", ["ERROR"]),
                               ("AT+CSCA?", ["+CSCA:", "1", "OK"]), ("ATE0", ["OK"]), ("AT", ["AT", "OK"]),
                               ("AT+CMGS=1", ["AT+CMGS=1", ">"])]:
            self.assertEqual(port.exchange(command), reply)
        self.assertEqual(port.exchange("00", "\x1a"), ["+CMS", "ERROR:", "500"])

    def test_a_prompt_that_stays_open(self):
        port = Port(self, rules=[{"match": "PDU", "nth": [1], "do": "lost-end"}])
        self.assertEqual(port.exchange("AT+CMGS=1"), [">"])
        self.assertEqual(port.raw("00\x1aAT"), b"")
        self.assertEqual(port.exchange("", "\x1b"), ["OK"])
        self.assertEqual(port.exchange("AT"), ["OK"])

    def test_replies_that_come_oddly(self):
        port = Port(self, rules=[{"match": "AT+CSQ", "do": "late-end", "ms": 300},
                                 {"match": "AT+CMGF", "do": "no-end"},
                                 {"match": "AT+CREG", "do": "halves", "ms": 150}])
        whole = b"\r\n+CSQ: 20,99\r\n\r\nOK\r\n"
        for command, early, late in [("AT+CSQ", whole[:-6], whole), ("AT+CMGF?", None, b"\r\n+CMGF: 0\r\n\r\nOK"),
                                     ("AT+CREG?", b"\r\n+CREG", b"\r\n+CREG: 0,1\r\n\r\nOK\r\n")]:
            with self.subTest(command):
                heard = port.raw(command, 0.1 if early else 0.5)
                self.assertEqual(heard, early or late)
                if early:
                    self.assertEqual(heard + port.raw("", 0.6), late)

    def test_lists_with_wrong_lengths(self):
        rules = [{"match": "AT+CMGL", "nth": [1], "do": "length", "add": -2}, {"match": "AT+CMGL", "nth": [2], "do": "cut-pdu"}]
        port = Port(self, "--message", "text SM +31611111111 Hi", rules=rules)
        wrong, cut, right = (port.exchange("AT+CMGL=4") for _ in range(3))
        self.assertEqual((wrong[1], right[1]), ("1,0,,19", "1,1,,21"))
        self.assertEqual((wrong[2], cut[2]), (right[2], right[2][:-2]))

    def test_lines_of_its_own_and_other_line_ends(self):
        port = Port(self, "--every", "50", "--unsolicited", "+CMT: ,3\n001122", "--line-end", "lf", echo=True)
        heard = port.raw("AT+CSQ")
        self.assertIn(b"\n+CMT: ,3\n\n001122\n", heard)
        self.assertIn(b"AT+CSQ\r\n+CSQ: 20,99\n\nOK\n", heard)
        heard = port.raw("AT+CMGS=3")  # whoever types is left in peace
        self.assertTrue(heard.endswith(b"\n> "), heard)

    def test_a_line_that_takes_nothing(self):
        port = Port(self, rules=[{"match": "AT+CSQ", "do": "block", "ms": 400}])
        port.exchange("AT+CSQ")
        os.set_blocking(port.terminal, False)
        with self.assertRaises(BlockingIOError):
            os.write(port.terminal, b"AT\r")
        os.set_blocking(port.terminal, True)
        self.assertEqual(port.exchange("AT"), ["OK"])

    def test_a_dropped_line_ends_the_modem_and_takes_the_link_away(self):
        port = Port(self, rules=[{"match": "AT+CSQ", "do": "hangup"}])
        link = pathlib.Path(port.modem.ready.removeprefix("on "))
        os.write(port.terminal, b"AT+CSQ\r")
        self.assertEqual(port.modem.process.wait(10), 0)
        self.assertFalse(link.is_symlink())

    def test_a_link_belongs_to_one_modem_as_long_as_that_lives(self):
        link = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()), "com5")
        first = self.enterContext(program("modem.py", "--link", link))
        terminal = os.readlink(link)
        with self.assertRaisesRegex(RuntimeError, "modem: COM5 has another modem; end that lab first$"):
            self.enterContext(program("modem.py", "--link", link))
        self.assertEqual(os.readlink(link), terminal)
        first.process.kill()
        first.process.wait()
        self.assertTrue(link.is_symlink())  # of a dead modem, which the next one takes over
        second = self.enterContext(program("modem.py", "--link", link))
        port = os.open(link, os.O_RDWR | os.O_NOCTTY)
        self.addCleanup(os.close, port)
        os.write(port, b"AT\r")
        self.assertTrue(select.select([port], [], [], 10)[0])
        self.assertEqual(second.close(), 0)
        self.assertFalse(link.is_symlink())


if __name__ == "__main__":
    unittest.main()
