"""The C# examples compile against the interface of the component: a member that it lacks is an error."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import interface  # noqa: E402

NAMESPACE = "NeltCtrl"  # of what the importer makes: the name of its output, unless it is told another
# What the importer of Windows makes of each type.
TYPES = {"LONG": "int", "BSTR": "string", "VARIANT": "object", "VARIANT*": "ref object", "void": "void"}


def declarations(member):
    result = TYPES[member.result]
    if "method" not in member.kinds:
        accessors = [word for kind, word in (("get", "get;"), ("put", "set;")) if kind in member.kinds]
        return [f"{result} {member.name} {{ {' '.join(accessors)} }}"]
    parameters = [f"{TYPES[words[-1]]} p{number}" for number, words in enumerate(member.parameters)]
    needed = sum("optional" not in words for words in member.parameters)
    # An optional parameter of a COM interface can be left out, also one by reference, which mcs does not know.
    return [f"{result} {member.name}({', '.join(parameters[:count])});" for count in range(needed, len(parameters) + 1)]


def imported(types):
    """The source of the assembly that tlbimp makes of the type library, as far as a program sees it."""
    lines = ["using System.Runtime.InteropServices;", f"namespace {NAMESPACE} {{"]
    for one in types.values():
        if one.kind == "enum":
            lines += [f"public enum {one.name} {{", *(f"{name} = {value}," for name, value in one.members.items()), "}"]
        elif one.kind == "interface":
            lines += [f'[ComImport, Guid("{one.guid}")] public interface {one.name} {{',
                      *(line for member in one.members.values() for line in declarations(member)), "}"]
        else:
            lines += [f'[ComImport, Guid("{one.guid}")] public class {one.name}Class {{ }}',
                      f'[ComImport, Guid("{types[one.default].guid}"), CoClass(typeof({one.name}Class))]',
                      f"public interface {one.name} : {one.default} {{ }}"]
    return "\n".join([*lines, "}", ""])


class Compile(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="neltctrl-")
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        source = cls.folder / "interop.cs"
        source.write_text(imported(interface.read_listing()), encoding="utf-8")
        cls.interop = cls.folder / "NeltCtrl.Interop.dll"
        done = cls.mcs("-target:library", f"-out:{cls.interop}", source)
        assert done.returncode == 0, done.stdout

    @staticmethod
    def mcs(*arguments):
        return subprocess.run(["mcs", "-nologo", "-warnaserror", *map(str, arguments)], stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, check=False)

    def compile(self, source):
        program = self.folder / f"{source.stem}.exe"
        return self.mcs(f"-r:{self.interop}", "-platform:x64", f"-out:{program}", source)

    def test_every_example(self):
        sources = sorted(interface.EXAMPLES.glob("*/*.cs"))
        self.assertGreater(len(sources), 5)
        for source in sources:
            with self.subTest(source.name):
                done = self.compile(source)
                self.assertEqual((done.returncode, done.stdout), (0, ""))

    def test_each_tells_the_commands_that_make_the_assembly_it_uses(self):
        for source in sorted(interface.EXAMPLES.glob("*/*.cs")):
            with self.subTest(source.name):
                self.assertIn(f"// Build: tlbimp NeltCtrlx64.dll /out:{self.interop.name} /namespace:{NAMESPACE}\n"
                              f"//        csc /r:{self.interop.name} /platform:x64 {source.name}\n",
                              source.read_text(encoding="utf-8"))

    def test_what_the_component_lacks_does_not_compile(self):
        alarm = (interface.EXAMPLES / "alarm/Alarm.cs").read_text(encoding="utf-8")
        for right, wrong in [("gsm.QueryStatus(", "gsm.QueryState("), ("RequestDeliveryStatus =", "RequestDeliveryReport ="),
                             ("gsm.Device =", "gsm.Device = 5; var name ="), ("gsm.Send(ref message)", "gsm.Send()"),
                             ("asDELIVERYSTATUS_DELIVERED", "asDELIVERYSTATUS_ARRIVED"), ("new SmsProtocolGsm", "new SmsGsm")]:
            with self.subTest(wrong):
                self.assertIn(right, alarm)
                source = self.folder / "Wrong.cs"
                source.write_text(alarm.replace(right, wrong), encoding="utf-8")
                done = self.compile(source)
                self.assertNotEqual(done.returncode, 0)
                self.assertRegex(done.stdout, r"error CS\d+")


if __name__ == "__main__":
    unittest.main()
