"""manifest.py GENERATED FILE: writes the manifest with which a program uses the module beside it without registration."""
import argparse
import pathlib
from xml.sax.saxutils import quoteattr

import component


def element(name, attributes, inside=None, indent=1):
    start = "  " * indent + f"<{name}" + "".join(f" {key}={quoteattr(text)}" for key, text in attributes.items())
    return [start + "/>"] if inside is None else [start + ">", *inside, "  " * indent + f"</{name}>"]


def manifest(library):
    product = component.Product()
    inside = []
    for row in component.classes():
        inside += element("comClass", {
            "description": row.description, "clsid": row.clsid, "threadingModel": "Apartment", "tlbid": library.id,
            "progid": f"{row.prog_id}.1"}, [f"      <progid>{row.prog_id}</progid>"], indent=2)
    inside += element("typelib", {"tlbid": library.id, "version": library.version, "helpdir": "", "flags": "hasdiskimage"}, indent=2)
    lines = ['<?xml version="1.0" encoding="UTF-8" standalone="yes"?>',
             '<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">']
    lines += element("assemblyIdentity", {"type": "win32", "name": pathlib.PurePath(product.module).stem,
                                          "version": product.file_version, "processorArchitecture": "amd64"})
    lines += element("file", {"name": product.module}, inside)
    # So that an object can be called from another apartment.
    for name, iid in sorted(library.interfaces.items()):
        lines += element("comInterfaceExternalProxyStub", {
            "name": name, "iid": iid, "tlbid": library.id, "proxyStubClsid32": component.MARSHALLER})
    return "\n".join([*lines, "</assembly>", ""])


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("generated", type=pathlib.Path, help="folder of the type library")
    parser.add_argument("file", type=pathlib.Path)
    given = parser.parse_args()
    given.file.write_text(manifest(component.Library(given.generated)), encoding="utf-8", newline="\n")


if __name__ == "__main__":
    main()
