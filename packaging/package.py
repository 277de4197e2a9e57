"""package.py BUILD FOLDER [--sign CERT KEY]: packs the module that stands in BUILD for those who do not build it.

Writes an installer and an archive of the same files to FOLDER. The same files give the same packages, unless they are signed,
which takes the time of day into them."""
import argparse
import datetime
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import zipfile

import component
import installer
import sources

SIGN = component.ROOT / "scripts/sign.sh"
WHEN = datetime.datetime(2000, 1, 1, tzinfo=datetime.timezone.utc)  # of every file in the packages
LEFT_OUT = {"CMakeLists.txt", "architecture.md"}  # of the examples and documents
# What examples and documents are, where no git tells which files are the project's.
KINDS = ("*.md", "*.vbs", "*.js", "*.ps1", "*.py", "*.cs", "*.cpp", "*.manifest", "numbers.txt", "provider.ini")
# In documents: what concerns only those who have the sources, and remarks to them.
OF_SOURCES = re.compile(r"<!-- sources -->.*?<!-- /sources -->\n*|<!--.*?-->\n*", re.S)


def contents(build, product):
    """What a user gets: name in the package, with "/" -> path."""
    files = {product.module: build / product.module}
    for name, folder in (("NeltCtrlx64.manifest", ""), ("NeltCtrl.tlb", ""), ("NeltCtrl.h", "include/"), ("NeltCtrl_i.c", "include/")):
        files[folder + name] = build / "generated" / name
    for name in ("README.md", "CHANGELOG.md"):
        files[name] = component.ROOT / name
    names = sources.listed(component.ROOT)
    if names is None:
        names = [name for name in sources.found(component.ROOT) if any(map(pathlib.PurePath(name).match, KINDS))]
    for path in map(pathlib.PurePath, names):
        if path.parts[0] in ("docs", "examples") and path.name not in LEFT_OUT:
            files[path.as_posix()] = component.ROOT / path
    return files


def stage(files, folder):
    for name, path in files.items():
        (folder / name).parent.mkdir(parents=True, exist_ok=True)
        if path.suffix == ".md":
            text = OF_SOURCES.sub("", path.read_text(encoding="utf-8"))
            (folder / name).write_text(text.rstrip() + "\n", encoding="utf-8", newline="\n")
        else:
            shutil.copyfile(path, folder / name)


def write_archive(path, name, folder, files):
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        for file in sorted(files):
            entry = zipfile.ZipInfo(f"{name}/{file}", WHEN.timetuple()[:6])
            entry.compress_type, entry.create_system, entry.external_attr = zipfile.ZIP_DEFLATED, 0, 0
            archive.writestr(entry, (folder / file).read_bytes())


def sign(path, keys):
    """With a certificate and its key, if they are given; what the tool says when it cannot goes to the standard error."""
    if keys and subprocess.run([SIGN, path, *keys], check=False).returncode != 0:
        sys.exit(f"package.py: {path.name} cannot be signed with {keys[0]} and {keys[1]}")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--sign", nargs=2, metavar=("CERT", "KEY"), default=[])
    parser.add_argument("--release", help="the version of three numbers that the packages have, if it is not the module's")
    given = parser.parse_args()
    for file in given.sign:
        if not os.access(file, os.R_OK) or not os.path.isfile(file):
            parser.exit(2, f"package.py: there is no file {file} that can be read\n")
    product, library = component.Product(), component.Library(given.build / "generated")
    if given.release:
        product.numbers = [*map(int, given.release.split(".")), product.numbers[3]]
    name = f"NeltCtrl-{product.version}-x64"
    packages = [f"{name}.msi", f"{name}.zip"]
    for package in packages:  # nobody takes earlier ones, which may be unsigned, for those that could not be made
        (given.folder / package).unlink(missing_ok=True)
    with tempfile.TemporaryDirectory() as path:
        folder, made = pathlib.Path(path, "files"), pathlib.Path(path, "made")
        made.mkdir()
        files = contents(given.build, product)
        stage(files, folder)
        sign(folder / product.module, given.sign)
        for file in files:
            os.utime(folder / file, (WHEN.timestamp(),) * 2)
        installer.Installer(product, library, folder, files).write(made / packages[0])
        sign(made / packages[0], given.sign)
        write_archive(made / packages[1], name, folder, files)
        given.folder.mkdir(parents=True, exist_ok=True)
        for package in packages:
            shutil.move(made / package, given.folder / package)


if __name__ == "__main__":
    main()
