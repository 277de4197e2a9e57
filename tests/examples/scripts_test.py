"""The scripts that cannot run here: the members that they use are there, they compile, and they tell their arguments."""
import ast
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import interface  # noqa: E402

sys.path.insert(0, str(interface.ROOT / "lab"))
from base import packages  # noqa: E402
packages.find("pygments")
from pygments.lexers import PowerShellLexer  # noqa: E402
from pygments.token import Token  # noqa: E402

TYPES = interface.read_listing()
CREATED = interface.interfaces_by_progid(TYPES)

# How each language makes an object of a class.
LANGUAGES = {
    ".vbs": r'Set (\w+) = CreateObject\("(Quorvane\.\w+)"\)',
    ".js": r'(\w+) = new ActiveXObject\("(Quorvane\.\w+)"\)',
    ".ps1": r"\$(\w+) = New-Object -ComObject (Quorvane\.\w+)",
    ".py": r'(\w+) = win32com\.client\.Dispatch\("(Quorvane\.\w+)"\)',
}
# Strings and comments, which are no code; those of PowerShell hold code, where "$" tells variables.
NO_CODE = {".vbs": r""""[^"\n]*"|'.*""", ".js": r'''"(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])*'|//.*''', ".ps1": r"(?m)(^|\s\s)#.*"}
# The objects that methods give, whatever the channel.
GIVEN = {"GetFirstMessage": "ISmsMessage", "GetNextMessage": "ISmsMessage", "GetMessage": "ISmsMessage", "Retrieve": "IMmsMessage",
         "QueryStatus": "ISmsDeliveryStatus", "GetFirstSlide": "IMmsSlide", "GetNextSlide": "IMmsSlide"}


def uses(text, kind):
    """Each variable with a member of it."""
    if kind == ".py":
        nodes = list(ast.walk(ast.parse(text)))
        modules = {name.name for node in nodes if isinstance(node, ast.Import) for name in node.names}
        return [(node.value.id, node.attr) for node in nodes if isinstance(node, ast.Attribute)
                and isinstance(node.value, ast.Name) and node.value.id not in modules]
    mark = r"\$" if kind == ".ps1" else r"(?<![.\w])"
    return re.findall(mark + r"([a-zA-Z_]\w*)\.([A-Za-z]\w*)", re.sub(NO_CODE[kind], "", text))


def unknown_members(text, kind):
    """The uses of members, as "variable.Member", that no class has which the variable can be of."""
    known = {}  # the names of the members by variable
    for variable, progid in re.findall(LANGUAGES[kind], text):
        known.setdefault(variable.lower(), set()).update(CREATED[progid].members)
    for variable, method in re.findall(rf"(\w+) = \$?\w+\.({'|'.join(GIVEN)})\(", text):
        known.setdefault(variable.lower(), set()).update(TYPES[GIVEN[method]].members)
    everything = set().union(*known.values())

    def is_ours(variable, member):
        # In Python a parameter may be any object of the file; what begins with a capital or is a constant is ours.
        return variable.lower() in known or kind == ".py" and re.match(r"[A-Z]|as[A-Z]+_", member)

    return [f"{variable}.{member}" for variable, member in uses(text, kind)
            if is_ours(variable, member) and member not in known.get(variable.lower(), everything)]


def scripts(*kinds):
    return sorted(file for file in interface.EXAMPLES.glob("*/*") if file.suffix in kinds)


class Members(unittest.TestCase):
    def test_every_member_is_there(self):
        for file in scripts(*LANGUAGES):
            text = file.read_text(encoding="utf-8")
            with self.subTest(file.relative_to(interface.EXAMPLES)):
                self.assertTrue(re.search(LANGUAGES[file.suffix], text), "makes no object")
                self.assertEqual(unknown_members(text, file.suffix), [])

    def test_what_is_not_there_is_found(self):
        rows = [
            (".vbs", 'Set gsm = CreateObject("Quorvane.SmsProtocolGsm")\ngsm.Devise = "COM5"', ["gsm.Devise"]),
            (".js", 'var gsm = new ActiveXObject("Quorvane.SmsProtocolGsm");\nvar m = gsm.GetMessage(0); m.Text;', ["m.Text"]),
            (".ps1", "$c = New-Object -ComObject Quorvane.SmsConstants\n$c.asNONE; $c.asSTORAGE_ALL; $text.Length", ["c.asNONE"]),
            (".py", 'gsm = win32com.client.Dispatch("Quorvane.SmsProtocolGsm")\ndef f(one):\n    one.Snd(1)\n    one.Send(1)',
             ["one.Snd"]),
        ]
        for kind, text, wanted in rows:
            with self.subTest(kind):
                self.assertEqual(unknown_members(text, kind), wanted)


# What cannot be meant: each is answered by the usage, before an object is made.
NONSENSE = [
    "alarm/alarm.py COM5 text", "wap-push/push.py COM5 1 2", "mm7/mm7.py provider.ini 1 text",
    "bulk/bulk.py host abc user password numbers.txt text", "bulk/bulk.py host 2775 user password numbers.txt text fast",
    "bulk/bulk.py host -1 user password numbers.txt text", "two-way/answer.py COM5 text abc", "two-way/answer.py COM5 text 1 -1",
    "http/gateway.py host abc 1 text", "pager/pager.py host 4444x 1 text", "mm4/mm4.py host abc account password 1 domain text",
    "dialup/dialup.py COM5 foo 1 2 text", "gsm/gsm.py foo COM5", "gsm/gsm.py send COM5 1", "gsm/gsm.py pin COM5",
    "gsm/gsm.py receive COM5 1", "smpp/smpp.py foo host 2775 user password", "smpp/smpp.py send host 2775 user password 1",
    "smpp/smpp.py send host abc user password 1 text", "smpp/smpp.py receive host 2775 user password abc",
    "mm1/mm1.py foo provider.ini 1 2", "mm1/mm1.py send provider.ini 1 text", "mm1/mm1.py receive provider.ini COM5",
]


class Usage(unittest.TestCase):
    def test_a_python_example_starts_and_tells_its_arguments(self):
        with tempfile.TemporaryDirectory(prefix="neltctrl-") as folder:
            package = pathlib.Path(folder, "win32com")
            package.mkdir()
            (package / "__init__.py").touch()
            (package / "client.py").touch()  # makes no objects: without arguments none is wanted
            for line in [*(f"{file.parent.name}/{file.name}" for file in scripts(".py")), *NONSENSE]:
                name, *arguments = line.split()
                file = interface.EXAMPLES / name
                with self.subTest(line):
                    done = subprocess.run([sys.executable, "-B", "-W", "error", file, *arguments], env={"PYTHONPATH": folder},
                                          capture_output=True, text=True, check=False)
                    self.assertEqual((done.returncode, done.stdout), (2, ""))
                    self.assertRegex(done.stderr, rf"^{file.name} \w[^\n]+\n\n(.|\n)*Needs\spywin32\.")

    def test_the_others_can(self):
        for kind, end in ((".ps1", "ps1"), (".cs", "exe")):
            for file in scripts(kind):
                with self.subTest(file.name):
                    self.assertRegex(file.read_text(encoding="utf-8"), rf"""['"]{file.stem}\.{end} \w""")


def open_bracket(text):
    """The number of the line where PowerShell code cannot be read, or where a bracket stands without its like; 0 is none."""
    closing = {")": "(", "]": "[", "}": "{"}
    waiting = []
    for at, kind, piece in PowerShellLexer().get_tokens_unprocessed(text):
        line = text.count("\n", 0, at) + 1
        if kind in Token.Error:
            return line
        if kind not in Token.Punctuation and kind not in Token.Literal.String.Interpol:
            continue
        for char in piece:
            if char in closing.values():
                waiting.append((char, line))
            elif char in closing and (not waiting or waiting.pop()[0] != closing[char]):
                return line
    return waiting[-1][1] if waiting else 0


class PowerShell(unittest.TestCase):
    def test_every_bracket_and_quote_is_closed(self):
        for file in scripts(".ps1"):
            with self.subTest(file.name):
                self.assertEqual(open_bracket(file.read_text(encoding="utf-8")), 0)

    def test_one_that_is_not_is_found(self):
        for text in ("if ($a) {\n  f\n}", "'a { b' + \"$($a.B) )\""):
            self.assertEqual(open_bracket(text), 0, text)
        for text, line in [("if ($a) {\n  f\n", 1), ("f\nif ($a {\n  f\n}", 2), ("f\n}", 2), ("f\n{ \"$($a.B\" }", 2)]:
            self.assertEqual(open_bracket(text), line, text)
        self.assertNotEqual(open_bracket("f 'a\n(g)"), 0)


class Overview(unittest.TestCase):
    """examples/README.md."""
    NAMES = {".vbs": "VBScript", ".js": "JScript", ".ps1": "PowerShell", ".py": "Python", ".cs": "C#", ".cpp": "C++"}
    OTHERS = {".manifest": "a manifest"}
    TEXT = (interface.EXAMPLES / "README.md").read_text(encoding="utf-8")

    def test_every_folder_has_its_row_and_languages(self):
        rows = re.findall(r"^\| .* \| (.*) \| (.*) \|$", self.TEXT, re.MULTILINE)
        languages = {folder: told for cell, told in rows for folder in re.findall(r"([\w-]+)/[\]`]", cell)}
        for folder in filter(pathlib.Path.is_dir, interface.EXAMPLES.iterdir()):
            with self.subTest(folder.name):
                names = self.NAMES | self.OTHERS
                there = {names[file.suffix] for file in folder.iterdir() if file.suffix in names}
                told = languages.get(folder.name, "no row")
                self.assertEqual(there, set(self.NAMES.values()) if told == "all six" else set(told.split(", ")))

    def test_the_commands_name_files_that_are_there(self):
        commands = re.findall(r"^scripts/in-wine\.sh .*$", self.TEXT, re.MULTILINE)
        self.assertGreater(len(commands), 5)
        for file in re.findall(r"\.\./\.\./(examples/\S+)", "\n".join(commands)):
            self.assertTrue((interface.ROOT / file).is_file(), file)


if __name__ == "__main__":
    unittest.main()
