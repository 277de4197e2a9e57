"""The packages: the same twice, installed and used and removed, used without registration, and signed. In a prefix of its own,
in which nothing is registered."""
import contextlib
import functools
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import zipfile

PLACE = tempfile.TemporaryDirectory(prefix="neltctrl-")
FOLDER = pathlib.Path(PLACE.name)
os.environ["NELTCTRL_PREFIX"] = str(FOLDER / "prefix")
sys.path.insert(0, str(pathlib.Path(__file__).parent))
import wine  # noqa: E402

sys.path.insert(0, str(wine.ROOT / "packaging"))
import component  # noqa: E402

sys.path.insert(0, str(wine.ROOT / "tests/docs"))
import markdown  # noqa: E402

BUILD = wine.ROOT / "build/windows"
NAME = "NeltCtrl-5.3.10-x64"
CLASSES = [row.name for row in component.classes()]
DRIVE = FOLDER / "prefix/drive_c"
HOME = DRIVE / "Program Files/Quorvane/Velqar"
SETTINGS, UNINSTALL = r"Quorvane\Velqar", r"Microsoft\Windows\CurrentVersion\Uninstall"
CHANGED = [root + key for root in ("", "Wow6432Node\\")
           for key in ("Classes", "Quorvane", r"Microsoft\Windows\CurrentVersion\Installer", UNINSTALL)]
LIBRARY = "{52FC26A8-E26C-4C45-A617-BD173EF0AE9C}"


def package(*arguments, root=wine.ROOT, folder=FOLDER, umask=-1, **surroundings):
    subprocess.run([sys.executable, root / "packaging/package.py", root / "build/windows", folder, *arguments], check=True,
                   umask=umask, env={**os.environ, **surroundings})
    return folder


@contextlib.contextmanager
def unpacked():
    """The folder of the archive's files."""
    with tempfile.TemporaryDirectory(dir=FOLDER) as path:
        with zipfile.ZipFile(FOLDER / f"{NAME}.zip") as archive:
            archive.extractall(path)
        yield pathlib.Path(path).resolve() / NAME


@functools.cache
def made():
    """The packages as they are made, unsigned."""
    return package()


def commands(*lines):
    """Runs the programs that the lines name, in one start of Wine; one that fails stops none."""
    batch = FOLDER / "batch.cmd"
    batch.write_text("".join(f"@{line}\r\n" for line in lines), encoding="ascii", newline="")
    wine.run("cmd", "/c", wine.windows_path(batch))


def registry(*keys):
    """What of HKEY_LOCAL_MACHINE\\Software an installation changes, or of it these keys, but for what the system's installer leaves
    empty. A key may be missing."""
    folder = pathlib.Path(tempfile.mkdtemp(dir=FOLDER))
    commands(*(rf'reg export "HKLM\Software\{key}" {wine.windows_path(folder / f"{number}.reg")} /y'
               for number, key in enumerate(keys or CHANGED)))
    found = {}
    for file in folder.iterdir():
        for line in file.read_text(encoding="utf-16").replace("\\\n  ", "").split("\n"):
            if line.startswith("["):
                key = line[1:-1].removeprefix("HKEY_LOCAL_MACHINE\\Software\\")
                found[key] = {}
            elif "=" in line:
                name, _, value = line.partition("=")
                found[key][name.strip('"')] = value.strip('"').replace("\\\\", "\\")
    return {key: values for key, values in found.items() if values or "\\Installer" not in key}


def registered(found):
    """The component's registration: of Classes the trees that name it, without what only Wine or only Windows writes."""
    trees = {key: re.match(r"Classes\\(Wow6432Node\\)?((CLSID|Interface|TypeLib)\\)?[^\\]+", key, re.I) for key in found}
    ours = {trees[key][0] for key, values in found.items()
            if trees[key] and re.search(r"^Classes\\Quorvane\.|" + re.escape(LIBRARY), f"{key} {values}")}
    return {key: {name: value.rstrip("\\") for name, value in values.items()} for key, values in found.items()
            if trees[key] and trees[key][0] in ours and not key.endswith(("\\ProxyStubClsid", "\\FLAGS"))}


def install(path, *options, way="/i"):
    return wine.run("msiexec", way, wine.windows_path(path), "/qn", *options)[0]


class Packages(unittest.TestCase):
    """Made before the first of them."""
    @classmethod
    def setUpClass(cls):
        made()

    def test_the_same_octets_from_another_folder_and_time(self):
        other = FOLDER / "other"
        for name in ("src", "packaging", "docs", "examples"):
            shutil.copytree(wine.ROOT / name, other / name)
        for name in ("README.md", "CHANGELOG.md", "scripts/sign.sh", "build/windows/NeltCtrlx64.dll"):
            (other / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(wine.ROOT / name, other / name)
        shutil.copytree(BUILD / "generated", other / "build/windows/generated")
        # There is no git in the copy. What editors and samples leave in it is no part of the packages.
        for name in ("docs/.draft.md.swp", "examples/gsm/reports.txt", "examples/gsm/send.vbs~", "docs/.hidden/page.md"):
            (other / name).parent.mkdir(exist_ok=True)
            (other / name).write_text("stray", encoding="ascii")
        for path in other.rglob("*"):
            os.utime(path, (1234567890, 1234567890))
        package(root=other, folder=other / "made", umask=0o077, TZ="Asia/Tokyo", LC_ALL="C", PYTHONHASHSEED="7")
        for end in ("msi", "zip"):
            self.assertEqual((FOLDER / f"{NAME}.{end}").read_bytes(), (other / f"made/{NAME}.{end}").read_bytes(), end)

    def test_nothing_in_the_module_tells_when_or_where_it_was_built(self):
        octets = (BUILD / "NeltCtrlx64.dll").read_bytes()
        header = octets[octets.index(b"PE\0\0"):]
        self.assertEqual(header[8:12], bytes(4))
        here = re.compile(rb"(?<![\w.])" + re.escape(f"{wine.ROOT}/".encode()))
        self.assertEqual(here.findall(octets), [])
        times = re.findall(rb"Created by WIDL version [\d.]+ at (.{24})", octets)
        self.assertEqual(times, [b"Sat Jan  1 00:00:00 2000"])
        for path in (BUILD / "generated").iterdir():
            self.assertEqual(here.findall(path.read_bytes()), [], path.name)

    def test_programs_name_the_assembly_as_the_manifest_does(self):
        manifest = (BUILD / "generated/NeltCtrlx64.manifest").read_text(encoding="utf-8")
        for name in ("examples/regfree/program.manifest", "docs/installing.md"):
            identity = re.search("<assemblyIdentity [^>]+>", (wine.ROOT / name).read_text(encoding="utf-8"))
            self.assertIn(identity[0], manifest, name)

    def test_the_archive_holds_what_a_user_needs(self):
        with zipfile.ZipFile(FOLDER / f"{NAME}.zip") as archive:
            names = [name.removeprefix(f"{NAME}/") for name in archive.namelist()]
            self.assertEqual(names, sorted(names))
            self.assertEqual(archive.read(f"{NAME}/NeltCtrlx64.dll"), (BUILD / "NeltCtrlx64.dll").read_bytes())
        self.assertLessEqual({"NeltCtrlx64.dll", "NeltCtrlx64.manifest", "NeltCtrl.tlb", "include/NeltCtrl.h", "README.md",
                              "docs/installing.md", "examples/gsm/send.vbs", "examples/regfree/program.manifest"}, set(names))
        self.assertFalse([name for name in names if re.search("CMake|pycache|~$", name)])

    def test_what_is_written_leads_to_what_is_in_the_package_alone(self):
        with unpacked() as root:
            self.assertEqual(markdown.broken_links(sorted(root.rglob("*.md")), root), [])
            of_sources = re.compile(r"\b(lab|scripts|tests|src|build)/|\w+\.sh\b|<!--")
            written = [*root.rglob("*.md"), *(path for path in root.rglob("examples/*/*") if path.suffix != ".manifest")]
            self.assertEqual([(file.name, found[0]) for file in sorted(written)
                              for found in of_sources.finditer(file.read_text(encoding="utf-8"))], [])

    def test_a_program_is_built_as_the_examples_say(self):
        with unpacked() as root:
            told = re.search(r"^g\+\+ (.*)$", (root / "examples/README.md").read_text(encoding="utf-8"), re.M)[1].split()
            built = subprocess.run(["x86_64-w64-mingw32-g++-posix", *told], cwd=root / "examples/alarm", stdout=subprocess.PIPE,
                                   stderr=subprocess.STDOUT, text=True, check=False)
            self.assertEqual((built.returncode, built.stdout), (0, ""))
            code, output = wine.run(wine.windows_path(root / "examples/alarm/alarm_example.exe"))
            self.assertEqual((code, output.split()[0]), (2, "alarm_example"))


class Installed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.package = made() / f"{NAME}.msi"
        wine.lines_of("", "vbs")  # Wine registers some of its own with the first script
        cls.before = registry()

    def setUp(self):
        self.there = None
        self.addCleanup(lambda: self.there and install(self.there, way="/x"))

    def installed(self, *options, path=None):
        path = path or self.package
        self.assertEqual(install(path, *options), 0)
        self.there = path

    def removed(self):
        self.assertEqual(install(self.there, way="/x"), 0)
        self.there = None

    def assert_as_before(self, found):
        differing = {key for key in found.keys() | self.before.keys() if found.get(key) != self.before.get(key)}
        self.assertEqual({key: (self.before.get(key), found.get(key)) for key in differing}, {})

    def test_every_class_from_a_script_and_nothing_is_left(self):
        self.assertEqual(registered(self.before), {})
        self.installed()
        programs = "\n".join(f'WScript.Echo TypeName(CreateObject("{row.prog_id}"))\n'
                             f'WScript.Echo TypeName(CreateObject("{row.prog_id}.1"))' for row in component.classes())
        self.assertEqual(wine.lines_of(programs, "vbs"), [f"I{name}" for name in CLASSES for _ in range(2)])
        self.assertEqual(registry(SETTINGS)[SETTINGS], {"InstallRoot": "C:\\Program Files\\Quorvane\\Velqar\\"})
        self.assertTrue((HOME / "Providers").is_dir())
        with zipfile.ZipFile(FOLDER / f"{NAME}.zip") as archive:
            for name in archive.namelist():
                self.assertEqual((HOME / name.removeprefix(f"{NAME}/")).read_bytes(), archive.read(name), name)
        self.removed()
        self.assert_as_before(registry())
        self.assertFalse(HOME.parent.exists())

    def test_the_tables_hold_what_the_module_registers(self):
        self.installed()
        module = wine.windows_path(HOME / "NeltCtrlx64.dll").replace(wine.windows_path(DRIVE), "C:")
        by_tables = registered(registry("Classes"))
        self.assertGreater(len(by_tables), 10 * len(CLASSES))
        self.assertEqual(wine.run("regsvr32", "/s", "/u", module)[0], 0)
        self.assertEqual(registered(registry("Classes")), {})
        self.assertEqual(wine.run("regsvr32", "/s", module)[0], 0)
        self.assertEqual(registered(registry("Classes")), by_tables)

    def test_what_others_put_below_our_keys_goes_and_the_rest_stays(self):
        self.installed()
        below, theirs = rf"Classes\CLSID\{component.classes()[0].clsid}\Implemented Categories\X", r"Classes\QuorvaneBeside"
        commands(rf'reg add "HKLM\Software\{below}" /f', rf"reg add HKLM\Software\{theirs} /f",
                 rf"reg add HKLM\Software\{SETTINGS} /v AdvancedSettings /d MaskPasswords=1 /f")
        self.assertIn(below, registry(below))
        (HOME / "Providers/own.ini").write_text("[Provider]\n", encoding="ascii")
        self.removed()
        after = registry()
        self.assertEqual(after.pop(SETTINGS), {"AdvancedSettings": "MaskPasswords=1"})
        after.pop("Quorvane")
        after.pop(theirs)
        self.assert_as_before(after)
        self.assertEqual([path.name for path in HOME.rglob("*")], ["Providers", "own.ini"])
        shutil.rmtree(HOME.parent)
        commands(*(rf"reg delete HKLM\Software\{key} /f" for key in (theirs, "Quorvane")))

    def test_a_newer_version_replaces_an_older_where_it_lies(self):
        self.installed(r"INSTALLDIR=C:\Own Place")
        newer = package("--release", "5.4.0") / "NeltCtrl-5.4.0-x64.msi"
        self.installed(path=newer)
        changed = registry(UNINSTALL, SETTINGS)
        installed = [values for values in changed.values() if values.get("DisplayName") == "Velqar"]
        self.assertEqual([values["DisplayVersion"] for values in installed], ["5.4.0"])
        self.assertEqual(changed[SETTINGS], {"InstallRoot": "C:\\Own Place\\"})
        self.assertTrue((DRIVE / "Own Place/NeltCtrlx64.dll").exists())
        self.assertEqual(wine.lines_of('WScript.Echo CreateObject("Quorvane.MmsSlide").Module', "vbs"), ["NeltCtrlx64.dll"])
        self.assertNotEqual(install(self.package), 0)  # not back to an older one
        self.removed()
        self.assert_as_before(registry())
        self.assertFalse((DRIVE / "Own Place").exists())


class Unregistered(unittest.TestCase):
    EVERY = [f"{name} works" for name in CLASSES] + ["early works", "late works"]

    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(dir=FOLDER)))
        for name in ("unregistered.exe", "unregistered_bare.exe", "NeltCtrlx64.dll", "generated/NeltCtrlx64.manifest"):
            shutil.copy(BUILD / name, self.folder)
        # Wine's marshaller registers a type library that it has found by a manifest.
        self.addCleanup(wine.run, "reg", "delete", rf"HKCR\TypeLib\{LIBRARY}", "/f")

    def lines(self, program, *arguments):
        code, output = wine.run(wine.windows_path(self.folder / program), *arguments)
        return code, output.split("\n")[:-1]

    def test_without_a_manifest_nothing_is_found(self):
        self.assertEqual(self.lines("unregistered_bare.exe"),
                         (1, [f"{name} not registered" for name in CLASSES] + ["cannot create"]))

    def test_by_the_manifest_of_the_program(self):
        self.assertEqual(self.lines("unregistered.exe"), (0, self.EVERY + ["elsewhere works works"]))

    def test_by_the_manifest_in_the_module_alone(self):
        (self.folder / "NeltCtrlx64.manifest").unlink()
        self.assertEqual(self.lines("unregistered.exe"), (0, self.EVERY + ["elsewhere works works"]))

    def test_by_a_context_that_the_program_makes(self):
        manifest = wine.windows_path(self.folder / "NeltCtrlx64.manifest")
        self.assertEqual(self.lines("unregistered_bare.exe", manifest), (0, self.EVERY))


class Signed(unittest.TestCase):
    SIGN = wine.ROOT / "scripts/sign.sh"

    @classmethod
    def setUpClass(cls):
        for name in ("own", "foreign"):
            subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", f"/CN={name}",
                            "-addext", "extendedKeyUsage=codeSigning", "-keyout", FOLDER / f"{name}.key", "-out", FOLDER / f"{name}.pem"],
                           check=True, stderr=subprocess.DEVNULL)

    def verified(self, file, authority):
        return subprocess.run([self.SIGN, "--verify", file, FOLDER / f"{authority}.pem"], stderr=subprocess.DEVNULL, check=False).returncode == 0

    def test_what_cannot_sign_makes_no_package(self):
        own, none = FOLDER / "own.pem", FOLDER / "none.pem"
        folder = FOLDER / "unmade"
        folder.mkdir()
        earlier = folder / f"{NAME}.msi"
        rows = [  # the files, the exit code, whether an earlier package stays, what is said at last
            ((own, none), 2, True, f"package.py: there is no file {none} that can be read\n"),
            ((own, own), 1, False, f"package.py: NeltCtrlx64.dll cannot be signed with {own} and {own}\n"),
        ]
        for files, code, stays, said in rows:
            with self.subTest(files):
                earlier.write_bytes(b"earlier")
                done = subprocess.run([sys.executable, wine.ROOT / "packaging/package.py", BUILD, folder, "--sign", *files],
                                      capture_output=True, text=True, check=False)
                self.assertEqual((done.returncode, done.stdout), (code, ""))
                self.assertTrue(done.stderr.endswith(said), done.stderr)
                self.assertNotIn("Traceback", done.stderr)
                self.assertEqual([path.name for path in folder.iterdir()], [earlier.name] if stays else [])
        done = subprocess.run(["scripts/package.sh", "--sign", own, none], cwd=wine.ROOT, capture_output=True, text=True, check=False)
        self.assertEqual((done.returncode, done.stdout), (2, ""))
        self.assertEqual(done.stderr, f"scripts/package.sh: there is no file {none} that can be read\n")

    def test_module_and_installer(self):
        folder = package("--sign", FOLDER / "own.pem", FOLDER / "own.key", folder=FOLDER / "signed")
        with zipfile.ZipFile(folder / f"{NAME}.zip") as archive:
            (folder / "NeltCtrlx64.dll").write_bytes(archive.read(f"{NAME}/NeltCtrlx64.dll"))
        unsigned = {f"{NAME}.msi": made() / f"{NAME}.msi", "NeltCtrlx64.dll": BUILD / "NeltCtrlx64.dll"}
        for name, before in unsigned.items():
            with self.subTest(name):
                signed = folder / name
                self.assertFalse(self.verified(before, "own"))
                self.assertTrue(self.verified(signed, "own"))
                self.assertFalse(self.verified(signed, "foreign"))
                octets = bytearray(signed.read_bytes())
                octets[len(octets) // 2] ^= 1
                signed.write_bytes(octets)
                self.assertFalse(self.verified(signed, "own"))


def tearDownModule():
    subprocess.run(["bash", "-c", f'. "{wine.ROOT}/scripts/wine.sh"; wine_stop; wineserver -w'], check=False)
    PLACE.cleanup()


if __name__ == "__main__":
    unittest.main()
