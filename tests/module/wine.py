"""What the tests under Wine share: running programs and scripts, and a lab modem on a COM port of its own."""
import contextlib
import pathlib
import shutil
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "lab"))
from base.launch import Counterpart  # noqa: E402

from base.wine import IN_WINE, PREFIX, run, script, windows_path  # noqa: E402, F401

# Texts that the alphabet of GSM holds, and that it does not: the second loses four letters in it.
GSM_TEXT, UNICODE_TEXT = "Café à 5 € [Ω] @", "Fête à l'hôtel, garçon `Ж"

END = "The script came to its end"

# The first of the COM ports of each file's modems: files that run at once must not share one.
PORTS = {"gsm": 20, "content": 40, "dialup": 60, "mms": 80, "tasks": 100, "mm1": 120}


def lines_of(text, kind, *arguments, timeout=120):
    """What a script printed that must come to its end: an error in it shows in no other way, save in JScript."""
    if kind == "js":
        text = f'try {{\n{text}\n}} catch (fault) {{ WScript.Echo(fault.message); WScript.Quit(3); }}'
    with folder() as path:
        file = path / f"test.{kind}"
        file.write_text(f'{text}\nWScript.Echo("{END}")\n', encoding="utf-8")
        code, output = script(file, *arguments, timeout=timeout)
    lines = output.split("\n")
    if lines[-2:] != [END, ""]:
        raise AssertionError(f"the script stopped with {code} after {lines[:-1]}")
    return lines[:-2]


class Modem(Counterpart):
    def __init__(self, com, folder, options, rules):
        self.com = f"COM{com}"
        link = PREFIX / f"dosdevices/com{com}"
        super().__init__("modem.py", folder, "--link", link, *options, rules=rules)

    def commands(self):
        return [entry["command"] for entry in self.entries("command")]

    def submitted(self):
        return self.entries("given")


class Smsc(Counterpart):
    def __init__(self, folder, options, rules):
        super().__init__("smsc.py", folder, "--port", 0, *options, rules=rules)

    def submitted(self):
        return self.entries("text")


class Gateway(Counterpart):
    def __init__(self, folder, options, rules):
        super().__init__("gateway.py", folder, "--port", 0, *options, rules=rules)

    def messages(self):
        return self.entries("number")


class Mmsc(Counterpart):
    def __init__(self, folder, options, rules):
        super().__init__("mmsc.py", folder, "--port", 0, "--folder", folder, *options, rules=rules)

    def messages(self):
        return self.entries("parts")


class Pager(Counterpart):
    def __init__(self, folder, options, rules):
        super().__init__("pager.py", folder, "--port", 0, *options, rules=rules)

    def pages(self):
        return [(entry["pager"], entry["text"]) for entry in self.entries("pager")]


class Mail(Counterpart):
    def __init__(self, folder, options, rules):
        super().__init__("mail.py", folder, "--port", 0, *options, rules=rules)

    def mails(self):
        return self.entries("mail")

    def commands(self):
        return [entry["command"] for entry in self.entries("command")]


@contextlib.contextmanager
def folder():
    path = pathlib.Path(tempfile.mkdtemp(prefix="neltctrl-"))
    try:
        yield path
    finally:
        shutil.rmtree(path, ignore_errors=True)


@contextlib.contextmanager
def running(start, *arguments):
    with folder() as path:
        started = start(path, *arguments)
        try:
            yield started
        finally:
            started.close()


def modem(com, *options, rules=None):
    # The prefix must be there before a port can be linked into it.
    if not (PREFIX / "dosdevices").is_dir():
        run("cmd", "/c", "exit")
    return running(lambda path: Modem(com, path, options, rules))


def smsc(*options, rules=None):
    return running(Smsc, options, rules)


def gateway(*options, rules=None):
    return running(Gateway, options, rules)


def mmsc(*options, rules=None):
    return running(Mmsc, options, rules)


def pager(*options, rules=None):
    return running(Pager, options, rules)


def mail(*options, rules=None):
    return running(Mail, options, rules)
