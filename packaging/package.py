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
import tempfile
import zipfile

import component
import installer

SIGN = component.ROOT / "scripts/sign.sh"
WHEN = datetime.datetime(2000, 1, 1, tzinfo=datetime.timezone.utc)  # of every file in the packages
LEFT_OUT = {"CMakeLists.txt", "__pycache__", "architecture.md"}  # of the examples and documents
# In documents: what concerns only those who have the sources, and remarks to them.
OF_SOURCES = re.compile(r"<!-- sources -->.*?<!-- /sources -->\n*|<!--.*?-->\n*", re.S)


def contents(build, product):
    """What a user gets: name in the package, with "/" -> path."""
    files = {product.module: build / product.module}
    for name, folder in (("NeltCtrlx64.manifest", ""), ("NeltCtrl.tlb", ""), ("NeltCtrl.h", "include/"), ("NeltCtrl_i.c", "include/")):
        files[folder + name] = build / "generated" / name
    for name in ("README.md", "CHANGELOG.md"):
        files[name] = component.ROOT / name
    for tree in ("docs", "examples"):
        for path in (component.ROOT / tree).rglob("*"):
            if path.is_file() and not LEFT_OUT & set(path.parts):
                files[path.relative_to(component.ROOT).as_posix()] = path
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


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--sign", nargs=2, metavar=("CERT", "KEY"), default=[])
    parser.add_argument("--release", help="the version of three numbers that the packages have, if it is not the module's")
    given = parser.parse_args()
    product, library = component.Product(), component.Library(given.build / "generated")
    if given.release:
        product.numbers = [*map(int, given.release.split(".")), product.numbers[3]]
    name = f"NeltCtrl-{product.version}-x64"
    given.folder.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory() as path:
        folder, files = pathlib.Path(path), contents(given.build, product)
        stage(files, folder)
        if given.sign:
            subprocess.run([SIGN, folder / product.module, *given.sign], check=True)
        for file in files:
            os.utime(folder / file, (WHEN.timestamp(),) * 2)
        package = given.folder / f"{name}.msi"
        installer.Installer(product, library, folder, files).write(package)
        if given.sign:
            subprocess.run([SIGN, package, *given.sign], check=True)
        write_archive(given.folder / f"{name}.zip", name, folder, files)


if __name__ == "__main__":
    main()
