"""What is known of the component: its version, classes, interfaces and registration, each read from the one place that states it."""
import pathlib
import re
import uuid

ROOT = pathlib.Path(__file__).resolve().parents[1]
SOURCES = ROOT / "src"
MARSHALLER = "{00020424-0000-0000-C000-000000000046}"  # the system's own, which reads the type library


def _read(name):
    return (SOURCES / name).read_text(encoding="utf-8")


def _quoted(text):
    return [part.replace("\\\\", "\\") for part in re.findall(r'"([^"]*)"', text)]


class Product:
    def __init__(self):
        facts = dict(re.findall(r"^#define PRODUCT_(\w+) (.+)$", _read("foundation/ProductVersion.h"), re.M))
        self.name, self.company, self.description, self.module = (
            facts[key].strip('"') for key in ("NAME", "COMPANY", "DESCRIPTION", "MODULE"))
        self.numbers = [int(facts[key]) for key in ("MAJOR", "MINOR", "RELEASE", "BUILD")]

    @property
    def version(self):
        """Of three numbers, as an installer compares them."""
        return ".".join(map(str, self.numbers[:3]))

    @property
    def file_version(self):
        return ".".join(map(str, self.numbers))


class CreatableClass:
    def __init__(self, name, prog_id, description, clsid):
        self.name, self.prog_id, self.description, self.clsid = name, prog_id, description, f"{{{clsid}}}"


def classes():
    found = re.findall(r'^CREATABLE\((\w+), "([^"]+)", "([^"]+)", ([-0-9A-F]+)\)$', _read("frame/ClassTable.inc"), re.M)
    return [CreatableClass(*row) for row in found]


class Library:
    """The type library, as the build in `generated` has made it."""

    def __init__(self, generated):
        found = re.search(r'\[uuid\(([-0-9A-F]+)\), version\((\d+\.\d+)\), helpstring\("([^"]+)"\)\]\s*library NeltCtrl', _read("frame/NeltCtrl.idl"))
        self.id, self.version, self.description = f"{{{found[1]}}}", found[2], found[3]
        self.interfaces = {}  # name -> id
        ids = (pathlib.Path(generated) / "NeltCtrl_i.c").read_text(encoding="utf-8")
        for name, numbers in re.findall(r"^MIDL_DEFINE_GUID\(IID, IID_(\w+), ([^)]+)\);", ids, re.M):
            parts = [int(number, 16) for number in numbers.split(",")]
            octets = b"".join(part.to_bytes(size, "big") for part, size in zip(parts, (4, 2, 2) + (1,) * 8, strict=True))
            self.interfaces[name] = f"{{{uuid.UUID(bytes=octets)}}}".upper()


class Registration:
    """What registering writes below HKEY_CLASSES_ROOT: `values` of (key, name or "", text), `keys` without a value, and the
    `trees` that go with all that is below them. The module and its folder stand there as they are given."""

    def __init__(self, library, module, folder):
        self.values, self.keys, self.trees = [], [], []
        self._add_classes(library, module)
        self._add_library(library, module, folder)

    def _add_classes(self, library, module):
        rows = re.findall(r"^REGISTRATION_(VALUE|KEY|TREE)\((.*)\)$", _read("frame/RegistrationRows.inc"), re.M)
        for row in classes():
            words = {"PROGID": row.prog_id, "DESCRIPTION": row.description, "CLSID": row.clsid, "TYPELIB": library.id, "MODULE": module}
            for kind, quoted in rows:
                texts = tuple(re.sub(r"%(\w+)%", lambda word: words[word[1]], text) for text in _quoted(quoted))
                if kind == "VALUE":
                    self.values.append(texts)
                else:
                    (self.keys if kind == "KEY" else self.trees).append(texts[0])

    def _add_library(self, library, module, folder):
        """As the system's RegisterTypeLib has it: the interfaces in the registry of 32-bit programs too."""
        home = rf"TypeLib\{library.id}"
        version = rf"{home}\{library.version}"
        self.trees.append(home)
        self.values += [(version, "", library.description), (rf"{version}\0\win64", "", module),
                        (rf"{version}\FLAGS", "", "0"), (rf"{version}\HELPDIR", "", folder)]
        for root in ("Interface", r"Wow6432Node\Interface"):
            for name, iid in sorted(library.interfaces.items()):
                key = rf"{root}\{iid}"
                self.trees.append(key)
                self.values += [(key, "", name), (rf"{key}\ProxyStubClsid32", "", MARSHALLER),
                                (rf"{key}\TypeLib", "", library.id), (rf"{key}\TypeLib", "Version", library.version)]
