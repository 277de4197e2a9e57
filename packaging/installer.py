"""The Windows installer package: its source for wixl, written from what is known of the component, and what wixl cannot say.

All registration stands in the package's tables; nothing of ours runs while it is installed or removed."""
import hashlib
import os
import pathlib
import re
import subprocess
import tempfile
import uuid
import xml.etree.ElementTree as xml

import component

SETTINGS = r"Software\{company}\{product}"  # below HKEY_LOCAL_MACHINE
PROVIDERS = "Providers"
WHEN = "2000/01/01 00:00:00"


class Names:
    """Ids that stay what they are from version to version, and short file names for old programs."""

    def __init__(self, library):
        self.space, self.short = uuid.UUID(library.id), {}

    def guid(self, what):
        return f"{{{uuid.uuid5(self.space, what)}}}".upper()

    def key(self, what):
        return "_" + uuid.uuid5(self.space, what).hex

    def file_name(self, folder, name):
        stem, dot, end = name.rpartition(".") if "." in name else (name, "", "")
        if re.fullmatch(r"\w{1,8}", stem) and len(end) <= 3:
            return name
        begin = re.sub(r"\W", "", stem).upper()[:4]
        count = self.short[folder, begin] = self.short.get((folder, begin), 0) + 1
        return f"{begin}~{count}{dot}{end[:3].upper()}|{name}"


class Installer:
    def __init__(self, product, library, folder, files):
        """`files`: their names below `folder`, where they lie as they will in the folder of the installation, with "/"."""
        self.product, self.folder, self.files, self.names = product, folder, sorted(files), Names(library)
        self.module = self.names.key(f"file {product.module}")
        self.owner = self.names.key(f"component {product.module}")
        self.registration = component.Registration(library, f"[#{self.module}]", "[INSTALLDIR]")
        self.settings = SETTINGS.format(company=product.company, product=product.name)

    def source(self):
        root = xml.Element("Wix", xmlns="http://schemas.microsoft.com/wix/2006/wi")
        product = xml.SubElement(
            root, "Product", Id=self.names.guid(f"product {self.product.version}"), Name=self.product.name, Language="1033",
            Version=self.product.version, Manufacturer=self.product.company, UpgradeCode=self.names.guid("upgrade"))
        xml.SubElement(product, "Package", InstallerVersion="500", Compressed="yes", InstallScope="perMachine")
        xml.SubElement(product, "MajorUpgrade", DowngradeErrorMessage="A newer version is installed.")
        xml.SubElement(product, "Media", Id="1", Cabinet="files.cab", EmbedCab="yes")
        xml.SubElement(product, "Property", Id="ARPNOMODIFY", Value="1")
        before = xml.SubElement(product, "Property", Id="PREVIOUSDIR")
        xml.SubElement(before, "RegistrySearch", Id="previous", Root="HKLM", Key=self.settings, Name="InstallRoot", Type="raw")
        components = self._folders(product)
        feature = xml.SubElement(product, "Feature", Id="All", Level="1", Title=self.product.name)
        for name in components:
            xml.SubElement(feature, "ComponentRef", Id=name)
        xml.indent(root)
        return xml.tostring(root, encoding="unicode", xml_declaration=False) + "\n"

    def _folders(self, product):
        """One component for each file, and one for the folder of provider files; gives their ids."""
        target = xml.SubElement(product, "Directory", Id="TARGETDIR", Name="SourceDir")
        programs = xml.SubElement(target, "Directory", Id="ProgramFiles64Folder")
        company = xml.SubElement(programs, "Directory", Id="COMPANYDIR", Name=self.product.company)
        home = xml.SubElement(company, "Directory", Id="INSTALLDIR", Name=self.product.name)
        folders, components = {"": home}, []

        def folder(path):
            if path not in folders:
                above, _, name = path.rpartition("/")
                folders[path] = xml.SubElement(folder(above), "Directory", Id=self.names.key(f"folder {path}"),
                                               Name=self.names.file_name(above, name))
            return folders[path]

        def add(path, within):
            components.append(self.names.key(f"component {path}"))
            return xml.SubElement(folder(within), "Component", Id=components[-1], Guid=self.names.guid(f"component {path}"), Win64="yes")

        for path in self.files:
            within, _, name = path.rpartition("/")
            file = add(path, within)
            xml.SubElement(file, "File", Id=self.names.key(f"file {path}"), Name=self.names.file_name(within, name),
                           Source=path, KeyPath="yes")
            if path == self.product.module:
                self._registry(file)
        xml.SubElement(add(PROVIDERS, PROVIDERS), "CreateFolder")
        return components

    def _registry(self, owner):
        values = [("HKCR", *value) for value in self.registration.values]
        for root, key, name, text in [*values, ("HKLM", self.settings, "InstallRoot", "[INSTALLDIR]")]:
            value = xml.SubElement(owner, "RegistryValue", Root=root, Key=key, Type="string", Value=text)
            if name:
                value.set("Name", name)

    def queries(self):
        """What the tables hold beyond what wixl writes."""
        # The version of the module, so that a newer one replaces it; the hash is for files that have none.
        yield f"UPDATE `File` SET `Version`='{self.product.file_version}' WHERE `File`='{self.module}'"
        yield f"UPDATE `File` SET `Language`='1033' WHERE `File`='{self.module}'"
        yield f"DELETE FROM `MsiFileHash` WHERE `File_`='{self.module}'"
        # "+" makes a key without a value, "-" removes a key with all below it when the component goes.
        for sign, keys in (("+", self.registration.keys), ("-", self.registration.trees)):
            for key in keys:
                yield ("INSERT INTO `Registry` (`Registry`, `Root`, `Key`, `Name`, `Component_`) VALUES "
                       f"('{self.names.key(sign + key)}', 0, '{key}', '{sign}', '{self.owner}')")
        # Folders go with what makes them when they are empty: those around the inner one behind it.
        for folder in ("INSTALLDIR", "COMPANYDIR"):
            yield ("INSERT INTO `CreateFolder` (`Directory_`, `Component_`) VALUES "
                   f"('{folder}', '{self.names.key(f'component {PROVIDERS}')}')")
        yield ("UPDATE `Property` SET `Value`='WIX_DOWNGRADE_DETECTED;WIX_UPGRADE_DETECTED;INSTALLDIR' "
               "WHERE `Property`='SecureCustomProperties'")
        # A newer version goes where the older one is, unless the command line says where; sought in the 64-bit registry.
        yield "UPDATE `RegLocator` SET `Type`=18 WHERE `Root`=2"
        yield ("INSERT INTO `CustomAction` (`Action`, `Type`, `Source`, `Target`) VALUES "
               "('KeepFolder', 51, 'INSTALLDIR', '[PREVIOUSDIR]')")
        for table in ("InstallExecuteSequence", "InstallUISequence"):
            yield f"INSERT INTO `{table}` (`Action`, `Condition`, `Sequence`) VALUES ('KeepFolder', 'PREVIOUSDIR AND NOT INSTALLDIR', 60)"

    def summary(self):
        """wixl takes the time of day and a random code: the code is that of the contents here."""
        contents = hashlib.sha256(self.source().encode())
        for path in self.files:
            contents.update((self.folder / path).read_bytes())
        rows = {1: 1252, 2: "Installation Database", 3: f"{self.product.name} {self.product.version}", 4: self.product.company,
                5: "Installer", 6: self.product.description, 7: "x64;1033", 9: self.names.guid(f"package {contents.hexdigest()}"),
                12: WHEN, 13: WHEN, 14: 500, 15: 2, 18: "wixl", 19: 2}
        lines = ["PropertyId\tValue", "i2\tl255", "_SummaryInformation\tPropertyId", *(f"{key}\t{text}" for key, text in rows.items())]
        return "".join(f"{line}\r\n" for line in lines)

    def write(self, path):
        """The files' own times go into the package."""
        surroundings = {**os.environ, "TZ": "UTC", "LC_ALL": "C.UTF-8"}
        with tempfile.TemporaryDirectory() as own:
            source, summary, made = (pathlib.Path(own) / name for name in ("source.wxs", "_SummaryInformation.idt", "made.msi"))
            source.write_text(self.source(), encoding="utf-8")
            summary.write_text(self.summary(), encoding="utf-8", newline="")
            for command in (["wixl", "--arch", "x64", "--output", made, source],
                            ["msibuild", made, "-i", summary],
                            ["msibuild", made, "-q", *self.queries()]):
                done = subprocess.run(list(map(str, command)), cwd=self.folder, env=surroundings, stdout=subprocess.PIPE,
                                      stderr=subprocess.STDOUT, check=False, text=True)
                if done.returncode != 0 or done.stdout:
                    raise RuntimeError(f"{command[0]} says: {done.stdout}")
            pathlib.Path(path).write_bytes(made.read_bytes())
