"""The interface of the component, as the listing of its type library and the table of its classes tell it."""
import dataclasses
import pathlib
import re

ROOT = pathlib.Path(__file__).resolve().parents[2]
LISTING = ROOT / "tests/golden/interface.txt"
CLASSES = ROOT / "src/frame/ClassTable.inc"
EXAMPLES = ROOT / "examples"


@dataclasses.dataclass
class Member:
    name: str
    kinds: set        # of "get", "put", "method"
    parameters: list  # the words of each: ["in", "optional", "LONG"]
    result: str       # of the method or the get; of a put what is put


@dataclasses.dataclass
class Type:
    kind: str  # "enum", "interface" or "coclass"
    name: str
    guid: str = ""
    default: str = ""                            # a coclass's interface
    members: dict = dataclasses.field(default_factory=dict)  # Member by name; of an enum the values


def read_listing():
    """Every Type by its name."""
    types, current = {}, None
    for line in LISTING.read_text(encoding="utf-8").splitlines():
        if head := re.fullmatch(r"(enum|interface|coclass) (\w+)(?: \{(.*?)\})?.*", line):
            current = types[head[2]] = Type(head[1], head[2], head[3] or "")
        elif value := re.fullmatch(r"  (\w+) = (-?\d+)", line):
            current.members[value[1]] = int(value[2])
        elif default := re.fullmatch(r"  default (\w+)", line):
            current.default = default[1]
        elif member := re.fullmatch(r"  \d+ (get|put|method) (\w+)\((.*)\) (\w+)", line):
            kind, name, parameters, result = member.groups()
            words = [parameter.split() for parameter in parameters.split(", ") if parameter]
            if kind == "put":
                result = words[-1][-1]
            known = current.members.setdefault(name, Member(name, set(), words, result))
            known.kinds.add(kind)
        elif not line.startswith("library "):
            raise ValueError(f"what is this line of the listing? {line}")
    return types


def interfaces_by_progid(types):
    """The interface Type of each class that a script can create."""
    rows = re.findall(r'^CREATABLE\((\w+), "([\w.]+)"', CLASSES.read_text(encoding="utf-8"), re.MULTILINE)
    return {progid: types[types[name].default] for name, progid in rows}
