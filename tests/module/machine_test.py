"""What the registry says for every program of a machine. Nothing else runs beside these tests."""
import json
import pathlib
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import wine  # noqa: E402

SETTINGS = r"HKLM\Software\Quorvane\Velqar"


class Settings(unittest.TestCase):
    def test_passwords_are_hidden(self):
        with wine.folder() as path, wine.smsc() as server:
            wine.run("reg", "add", SETTINGS, "/f", "/v", "AdvancedSettings", "/d", "MaskPasswords=1")
            try:
                lines = wine.lines_of(f"""
var smpp = new ActiveXObject("Quorvane.SmsProtocolSmpp");
smpp.Server = "127.0.0.1"; smpp.ServerPort = {server.port}; smpp.SystemID = "test"; smpp.SystemPassword = "xyzzy";
smpp.LogFile = {json.dumps(wine.windows_path(path / "log.txt"))};
smpp.Connect(); WScript.Echo(smpp.LastError); smpp.Disconnect();
""", "js")
            finally:
                wine.run("reg", "delete", SETTINGS, "/v", "AdvancedSettings", "/f")
            self.assertEqual(lines, ["0"])
            text = (path / "log.txt").read_text()
            self.assertIn("Password               : ****\n", text)
            self.assertNotIn("xyzzy", text)
            self.assertNotIn("78 79 7A 7A 79", text)


if __name__ == "__main__":
    unittest.main()
