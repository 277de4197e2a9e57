"""What the checks of the documentation share: the files of the project, and the blocks, anchors and links of a Markdown text."""
import dataclasses
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "packaging"))
import sources  # noqa: E402


def tracked(*patterns):
    """The files of the project with such names, also those that are not committed yet."""
    names = sources.listed(ROOT, "-co", "--exclude-standard")
    if names is None:
        names = sources.found(ROOT)
    return [ROOT / name for name in names if any(pathlib.PurePath(name).match(pattern) for pattern in patterns)]


def documents():
    """Every Markdown file that is read as such: the pieces in src/ become pages of the reference."""
    return [path for path in tracked("*.md") if ROOT / "src" not in path.parents]


@dataclasses.dataclass
class Block:
    language: str  # "" for an indented block of which nothing is known
    is_run: bool
    line: int
    text: str


SCRIPTS = {"vbscript": re.compile(r'\bCreateObject\("Quorvane'), "jscript": re.compile(r"\bnew ActiveXObject\(")}


def blocks(text):
    """Fenced blocks with their language, indented ones with what they look like."""
    found, indented = [], []
    fence = None
    was_blank = True

    def close_indented():
        if indented:
            code = "\n".join(line for _, line in indented)
            language = next((name for name, sign in SCRIPTS.items() if sign.search(code)), "")
            found.append(Block(language, False, indented[0][0], code))
            indented.clear()

    for number, line in enumerate(text.splitlines(), 1):
        if fence is not None:
            if line.strip() == "```":
                found.append(Block(fence[0], fence[1], fence[2], "\n".join(fence[3])))
                fence = None
            else:
                fence[3].append(line)
        elif line.startswith("```"):
            close_indented()
            language, *marks = line[3:].split() or [""]
            fence = (language, "run" in marks, number + 1, [])
        elif line.startswith("    ") and (was_blank or indented):
            indented.append((number, line[4:]))
        elif not (indented and not line.strip()):
            close_indented()
        was_blank = not line.strip()
    close_indented()
    if fence is not None:
        raise ValueError(f"line {fence[2] - 1}: a block without an end")
    return found


def without_code(text):
    """The text with code left out, in as many lines."""
    lines, fenced = [], False
    for line in text.splitlines():
        if line.startswith("```"):
            fenced = not fenced
            line = ""
        lines.append("" if fenced or line.startswith("    ") else re.sub(r"`[^`]*`", "", line))
    return lines


def anchors(text):
    """The anchors of a text, as they are made from its headings."""
    found, fenced = set(re.findall(r'<a id="([^"]+)">', text)), False
    for line in text.splitlines():
        if line.startswith("```"):
            fenced = not fenced
        heading = None if fenced else re.match(r"#{1,6} (.*)", line)
        if heading:
            plain = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", heading[1]).lower()
            slug = re.sub(r"[^\w\- ]", "", plain).replace(" ", "-")
            count = 0
            while (slug if count == 0 else f"{slug}-{count}") in found:
                count += 1
            found.add(slug if count == 0 else f"{slug}-{count}")
    return found


LINK = re.compile(r"\[[^\]]*\]\(([^)\s]+)\)")


def links(path):
    """Line and target of each link to another file or heading of the documentation."""
    for number, line in enumerate(without_code(path.read_text(encoding="utf-8")), 1):
        for target in LINK.findall(line):
            if not re.match(r"[a-z]+:", target):
                yield number, target


def broken_links(paths, root):
    """What is wrong with links in documents that lie below a folder; they may not lead out of it."""
    wrong = []
    for path in paths:
        for number, target in links(path):
            name, _, anchor = target.partition("#")
            file = (path.parent / name).resolve() if name else path
            where = f"{path.relative_to(root)}:{number}: {target}"
            if not file.exists() or not file.is_relative_to(root):
                wrong.append(f"{where}: there is no such file")
            elif anchor and anchor not in anchors(file.read_text(encoding="utf-8")):
                wrong.append(f"{where}: there is no such heading")
    return wrong
