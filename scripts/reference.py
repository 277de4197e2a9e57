#!/usr/bin/env python3
"""Makes docs/reference: one page a class, the constants, the result codes.

The pages come from tests/golden/reference.tsv (the type library as text), from the lists in src/ and from what is
written by hand beside each class's IDL, src/<area>/<Class>.md:

    what the class is for, and an example

    ## Properties
    | property | default | meaning |
    |---|---|---|
    | `Device` | "" | whatever the help text of the type library does not say |

    ## Send
    what there is to say of the method
    - 34031: when this code comes; also "30201 to 30204: ..." and "33070, 33071: ..."

Members that many classes share are in src/frame/CommonMembers.md, unless a class has words of its own for them. Other
headings are sections of the page.

    scripts/reference.py            writes the pages
    scripts/reference.py --check    says which pages are stale, and ends with 1 when there are any
    scripts/reference.py --listing  asks the built module for the listing first (Wine)
"""
import argparse
import dataclasses
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
SOURCES = ROOT / "src"
PAGES = ROOT / "docs/reference"
LISTING = ROOT / "tests/golden/reference.tsv"
COMMON = SOURCES / "frame/CommonMembers.md"
MADE = "<!-- Made by scripts/reference.py; what is written by hand stands {}. -->\n"
TYPES = {"BSTR": "text", "LONG": "number", "VARIANT": "value", "VARIANT*": "value", "void": ""}
COMMON_NAMES = ("LastError", "Version", "Build", "LogFile", "ActivityFile", "Module", "Clear", "GetErrorDescription")


class Incomplete(Exception):
    """What is written by hand does not fit the type library."""


@dataclasses.dataclass
class Member:
    dispid: int
    name: str
    type: str
    help: str
    hidden: bool
    parameters: list = dataclasses.field(default_factory=list)
    access: list = dataclasses.field(default_factory=list)  # of properties: "read", "write"

    @property
    def is_method(self):
        return not self.access

    def signature(self):
        shown = []
        for parameter in self.parameters:
            words = [word for word in parameter.split() if word not in ("in", "out", "retval")]
            optional = "optional" in words
            kind, *rest = [word for word in words if word != "optional"]
            text = f"{TYPES[kind]} {' '.join(rest)}"
            shown.append(f"[{text}]" if optional else text)
        gives = f" → {TYPES[self.type]}" if TYPES[self.type] else ""
        return f"{self.name}({', '.join(shown)}){gives}"


@dataclasses.dataclass
class Class:
    name: str
    clsid: str
    interface: str
    iid: str = ""
    help: str = ""
    members: dict = dataclasses.field(default_factory=dict)


@dataclasses.dataclass
class Library:
    enums: list  # (name, help, [(constant, value, help)])
    classes: list

    def constants(self):
        return {constant: (name, value, text) for name, _, rows in self.enums for constant, value, text in rows}


def read_listing():
    enums, interfaces, classes = [], {}, []
    here = None
    for line in LISTING.read_text(encoding="utf-8").splitlines():
        kind, *fields = line.split("\t")
        if kind == "enum":
            enums.append((fields[0], fields[2], []))
        elif kind == "value":
            enums[-1][2].append((fields[0], int(fields[1]), fields[2]))
        elif kind == "interface":
            here = interfaces[fields[0]] = (fields[1], fields[2], {})
        elif kind == "member":
            dispid, access, name, of_type, flags, text, *parameters = fields
            members = here[2]
            if access == "method":
                members[name] = Member(int(dispid), name, of_type, text, flags == "hidden", parameters)
                continue
            if access == "put":
                of_type = parameters[0].split()[-1]
            member = members.setdefault(name, Member(int(dispid), name, of_type, text, flags == "hidden"))
            member.access.append("read" if access == "get" else "write")
        elif kind == "coclass":
            iid, text, members = interfaces[fields[3]]
            classes.append(Class(fields[0], fields[1], fields[3], iid, text, members))
    return Library(enums, classes)


def prog_ids():
    rows = re.findall(r'^CREATABLE\((\w+), "([\w.]+)"', (SOURCES / "frame/ClassTable.inc").read_text(), re.M)
    return dict(rows)


def error_texts():
    """[(heading, [(code, text)])], as the list is divided."""
    groups = []
    for line in (SOURCES / "foundation/ErrorTexts.inc").read_text().splitlines():
        heading = re.match(r"// (.*)\.$", line)
        row = re.match(r'(?:RESULT\((\d+), \w+, |TEXT_ONLY\((\d+), )"(.*)"\)$', line)
        bare = re.match(r"CODE\((\d+), ", line)
        if row:
            text = row[3].replace('\\"', '"').replace("\\\\", "\\")
            if not groups:
                groups.append(("Success", []))
            groups[-1][1].append((int(row[1] or row[2]), text))
        elif bare:
            groups[-1][1].append((int(bare[1]), "Generic Error"))
        elif heading and line[3:4].isupper() and groups:
            groups.append((heading[1], []))
    return groups


# --- what is written by hand

@dataclasses.dataclass
class Words:
    file: str
    intro: str = ""
    properties: dict = dataclasses.field(default_factory=dict)  # name: (default, meaning)
    sections: dict = dataclasses.field(default_factory=dict)    # heading: text


def read_words(path):
    words = Words(str(path.relative_to(ROOT)))
    parts = re.split(r"^## (.*)\n", path.read_text(encoding="utf-8"), flags=re.M)
    words.intro = parts[0].strip()
    for heading, text in zip(parts[1::2], parts[2::2]):
        if heading != "Properties":
            words.sections[heading.strip("` ")] = text.strip()
            continue
        for row in re.findall(r"^\|(.*)\|$", text, re.M)[2:]:
            cells = [cell.strip() for cell in re.split(r"(?<!\\)\|", row)]
            if len(cells) != 3:
                raise Incomplete(f"{words.file}: a row of three cells is wanted: |{row}|")
            for name in cells[0].split(","):
                words.properties[name.strip("` ")] = (cells[1], cells[2])
    return words


def words_of(cls, common):
    found = [path for path in SOURCES.rglob(f"{cls.name}.md") if path.with_suffix(".idl").exists()]
    if not found:
        raise Incomplete(f"{cls.name} has no {cls.name}.md beside {cls.name}.idl: what the class is for, a row for each "
                         "property and a section for each method")
    words = read_words(found[0])
    for name in cls.members:
        if name in COMMON_NAMES or name == "AdvancedSettings":
            if name in common.properties:
                words.properties.setdefault(name, common.properties[name])
            elif name in common.sections:
                words.sections.setdefault(name, common.sections[name])
    return words


def check_words(cls, words, constants):
    properties = {name for name, member in cls.members.items() if not member.is_method and name not in constants}
    methods = {name for name, member in cls.members.items() if member.is_method}
    wrong = [f"{words.file} has no row for the property {name}" for name in sorted(properties - set(words.properties))]
    wrong += [f"{words.file} has no section for the method {name}" for name in sorted(methods - set(words.sections))]
    wrong += [f"{words.file} has a row for {name}, which {cls.name} does not have"
              for name in sorted(set(words.properties) - properties)]
    wrong += [f"{words.file} has no example" for _ in range("```" not in words.intro)]
    if wrong:
        raise Incomplete("\n".join(wrong))


LONGEST_RANGE = 10  # of which each code has its own line; longer ones are shown by their ends
CODE_LINE = re.compile(r"^- (-?\d+(?:(?:, | to )-?\d+)*): (.*(?:\n  .*)*)$", re.M)


def codes_in(expression, known):
    """The codes of "33070, 33071" and "30201 to 30204" as numbers."""
    for piece in expression.split(", "):
        first, _, last = piece.partition(" to ")
        yield from (code for code in sorted(known) if int(first) <= code <= int(last)) if last else [int(first)]


def codes_of(text, known):
    """The codes that a section tells."""
    for match in CODE_LINE.finditer(text):
        yield from codes_in(match[1], known)


# --- pages

def cell(text):
    """A text without Markdown in a table: only what would be more than a text is escaped."""
    return re.sub(r"([|<*_])", r"\\\1", text) if "`" not in text else text.replace("|", "\\|")


def code_table(text, known, file):
    """Lists of codes become tables with the text of each code."""
    def row(match):
        shown, texts = [], []
        for piece in match[1].split(", "):
            codes = list(codes_in(piece, known))
            for code in codes:
                if code not in known:
                    raise Incomplete(f"{file}: {code} is in no list of result codes")
            links = [f"[{code}](result-codes.md#{code})" for code in codes]
            if len(codes) > LONGEST_RANGE:
                shown.append(f"{links[0]} to {links[-1]}")
                continue
            shown += links
            texts += [cell(known[code]) for code in codes]
        return f"| {'<br>'.join(shown)} | {'<br>'.join(texts)} | {match[2]} |"

    lines, in_table = [], False
    for line in CODE_LINE.sub(lambda match: row(match).replace("\n ", ""), text).split("\n"):
        is_row = line.startswith("| [") and "result-codes.md#" in line
        if is_row and not in_table:
            lines += ([""] if lines and lines[-1] else []) + ["| code | text | when |", "|---|---|---|"]
        in_table = is_row
        lines.append(line)
    return "\n".join(lines)


def page_of(cls, words, prog_id, library, known):
    constants = library.constants()
    out = [MADE.format(f"in [{words.file}](../../{words.file})").replace("[", "", 1).replace(f"](../../{words.file})", ""),
           f"# {cls.name}\n", words.intro + "\n",
           "| | |\n|---|---|",
           f"| ProgID | `{prog_id}`, `{prog_id}.1` |",
           f"| Class | `{cls.clsid}` |",
           f"| Interface | `{cls.interface}`, dual, `{cls.iid}` |",
           "| Threading | Apartment ([apartments and threads](../threads.md)) |\n"]
    properties = [member for member in cls.members.values() if not member.is_method]
    named = [member for member in properties if member.name not in constants]
    out.append("## Properties\n")
    if named:
        out += ["| property | dispid | type | access | default | meaning |", "|---|---|---|---|---|---|"]
    for member in named:
        default, meaning = words.properties[member.name]
        text = ". ".join(filter(None, [cell(member.help), meaning]))
        hidden = ", hidden" if member.hidden else ""
        out.append(f'| <a id="{member.name.lower()}"></a>`{member.name}` | {member.dispid} | {TYPES[member.type]} | '
                   f"{', '.join(member.access)}{hidden} | {f'`{default}`' if default else ''} | {text} |")
    if len(named) < len(properties):
        out += ["", f"{len(properties) - len(named)} numbers that are only read have the names and the values of the [constants](constants.md): " +
                ", ".join(f"`{member.name}` ({constants[member.name][1]})" for member in properties if member.name in constants) + "."]
    methods = [member for member in cls.members.values() if member.is_method]
    if methods:
        out.append("\n## Methods\n")
    for member in methods:
        out += [f"### {member.name}\n", f"`{member.signature()}` (dispid {member.dispid})\n", cell(member.help) + ".\n",
                code_table(words.sections[member.name], known, words.file) + "\n"]
    for heading, text in words.sections.items():
        if heading not in cls.members:
            out += [f"## {heading}\n", code_table(text, known, words.file) + "\n"]
    return re.sub(r"\n{3,}", "\n\n", "\n".join(out)).rstrip() + "\n"


def constants_page(library):
    out = [MADE.format("in src/sms/SmsConstants.inc and src/mms/MmsConstants.inc"), "# Constants\n",
           "Every constant is a member of an enumeration of the type library, for languages that read it, and a property of "
           "[SmsConstants](SmsConstants.md) or [MmsConstants](MmsConstants.md), for those that do not.\n",
           "```vbscript run\nSet constants = CreateObject(\"Quorvane.SmsConstants\")\n"
           "WScript.Echo constants.asMESSAGEFORMAT_UNICODE_MULTIPART ' prints: 22\n```\n"]
    held = {cls.name: cls.members for cls in library.classes if cls.name.endswith("Constants")}
    for name, text, rows in library.enums:
        out += [f"## {name}\n", f"{text}.\n", "| constant | value | meaning | class |", "|---|---|---|---|"]
        for constant, value, _ in rows:
            meaning = next(members[constant].help for members in held.values() if constant in members)
            classes = ", ".join(f"[{holder}]({holder}.md)" for holder, members in held.items() if constant in members)
            out.append(f"| `{constant}` | {value} | {cell(meaning)} | {classes} |")
        out.append("")
    return "\n".join(out).rstrip() + "\n"


def codes_page(groups, givers):
    out = [MADE.format("in src/foundation/ErrorTexts.inc and beside each class's IDL"), "# Result codes\n",
           "`LastError` of an object is the code of its last method call; `GetErrorDescription` of any object gives the text "
           "of any code, \"Generic Error\" for every number that is not below. The spelling of the texts is part of them. "
           "Besides the codes of its own, any method can give [1040](#1040) when there is no memory, and [1100](#1100) for a fault of "
           "the component, which the log then tells. [Troubleshooting](../troubleshooting.md) goes by symptom.\n"]
    for heading, rows in groups:
        out += [f"## {heading}\n", "| code | text | given by |", "|---|---|---|"]
        out += [f'| <a id="{code}"></a>{code} | {cell(text)} | {", ".join(givers.get(code, []))} |' for code, text in rows]
        out.append("")
    return "\n".join(out).rstrip() + "\n"


def index_page(library, ids):
    out = [MADE.format("beside each class's IDL"), "# Reference\n",
           "Made from the type library that the module carries. [Constants](constants.md) and [result codes](result-codes.md) "
           "have pages of their own; what concerns all classes is told in [the topics](../README.md).\n",
           "| class | ProgID | what it is |", "|---|---|---|"]
    out += [f"| [{cls.name}]({cls.name}.md) | `{ids[cls.name]}` | {cell(cls.help)} |" for cls in library.classes]
    return "\n".join(out) + "\n"


def make_pages():
    library, ids, groups = read_listing(), prog_ids(), error_texts()
    known = {code: text for _, rows in groups for code, text in rows}
    common = read_words(COMMON)
    pages, givers, wrong = {}, {}, []
    for cls in library.classes:
        try:
            words = words_of(cls, common)
            check_words(cls, words, library.constants())
            pages[f"{cls.name}.md"] = page_of(cls, words, ids[cls.name], library, known)
        except Incomplete as error:
            wrong.append(str(error))
            continue
        for heading, text in words.sections.items():
            if heading in cls.members and heading not in COMMON_NAMES:
                for code in codes_of(text, known):
                    link = f"[{cls.name}.{heading}]({cls.name}.md#{heading.lower()})"
                    if link not in givers.setdefault(code, []):
                        givers[code].append(link)
    if wrong:
        raise Incomplete("\n".join(wrong))
    pages["constants.md"] = constants_page(library)
    pages["result-codes.md"] = codes_page(groups, givers)
    pages["README.md"] = index_page(library, ids)
    return pages


def stale(pages):
    there = {path.name: path.read_text(encoding="utf-8") for path in PAGES.glob("*.md")}
    return sorted(name for name in there.keys() | pages.keys() if there.get(name) != pages.get(name))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--check", action="store_true", help="say which pages are stale")
    parser.add_argument("--listing", action="store_true", help="take the listing from the built module")
    options = parser.parse_args()
    if options.listing:
        listed = subprocess.run([ROOT / "scripts/in-wine.sh", "list_typelib.exe", "NeltCtrlx64.dll", "reference"],
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, check=True).stdout
        LISTING.write_bytes(listed.replace(b"\r", b""))
    try:
        pages = make_pages()
    except Incomplete as error:
        print(error)
        return 1
    old = stale(pages)
    if options.check:
        for name in old:
            print(f"docs/reference/{name} is stale: scripts/reference.py writes it anew")
        return 1 if old else 0
    PAGES.mkdir(exist_ok=True)
    for name in old:
        if name in pages:
            (PAGES / name).write_text(pages[name], encoding="utf-8")
        else:
            (PAGES / name).unlink()
        print(f"docs/reference/{name}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
