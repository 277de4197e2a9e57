"""The demo: what goes wrong in it is said and ends it."""
import contextlib
import io
import pathlib
import subprocess
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import wine  # noqa: E402
import demo  # noqa: E402

MODULE = wine.ROOT / "build/windows/NeltCtrlx64.dll"


class Registration(unittest.TestCase):
    def test_a_module_that_does_not_load_or_register_says_why(self):
        module = MODULE.read_bytes()
        rows = [  # what is broken, the module, the reason
            ("missing", None, "regsvr32: Failed to load DLL"),
            ("cut", module[:5000], "file probably truncated"),
            ("needs a DLL that is missing", module.replace(b"WS2_32.dll", b"XX2_32.dll"), "Library XX2_32.dll"),
            ("does not register", module.replace(b"DllRegisterServer", b"DllRegisterNobody"),
             "regsvr32: 'DllRegisterServer' not implemented in DLL"),
        ]
        for name, octets, reason in rows:
            with self.subTest(name), wine.folder() as path:
                copy = path / "copy.dll"
                if octets is not None:
                    copy.write_bytes(octets)
                done = subprocess.run(["bash", "-euc", '. scripts/wine.sh; dll=$1; register_dll; echo "went on"', "", copy],
                                      cwd=wine.ROOT, capture_output=True, text=True, check=False)
                self.assertNotEqual(done.returncode, 0)
                self.assertIn(reason, done.stderr)
                self.assertEqual(done.stdout, "")


class Scripts(unittest.TestCase):
    def play(self, text):
        with wine.folder() as path:
            script = path / "part.vbs"
            script.write_text(text, encoding="utf-8")
            with contextlib.redirect_stdout(io.StringIO()) as shown:
                return demo.play(script)[0], shown.getvalue()

    def test_only_the_end_is_success(self):
        stopped = "part.vbs stopped at an error that cscript does not print\n"
        for text, wanted in [
            ('WScript.Echo "Sent"\nWScript.Echo "Done"', (0, "Sent\n")),
            ('WScript.Echo "Sent"\nCreateObject "Quorvane.None"\nWScript.Echo "Done"', (1, "Sent\n" + stopped)),
            ("nothing that is VBScript", (1, stopped)),
            ('WScript.Echo "Send failed"\nWScript.Quit 3', (3, "Send failed\n")),
        ]:
            with self.subTest(text):
                self.assertEqual(self.play(text), wanted)


class Ports(unittest.TestCase):
    def test_the_port_of_another_lab_is_left_to_it(self):
        with wine.modem(5) as other:
            link = wine.PREFIX / "dosdevices/com5"
            terminal = link.readlink()
            with contextlib.redirect_stdout(io.StringIO()), contextlib.redirect_stderr(io.StringIO()) as said, \
                    self.assertRaises(SystemExit) as ended:
                demo.main(["gsm"])
            self.assertEqual(ended.exception.code, 1)
            self.assertEqual(said.getvalue(),
                             "demo: modem.py does not start: modem: COM5 has another modem; end that lab first\n")
            self.assertEqual((link.readlink(), other.commands()), (terminal, []))


if __name__ == "__main__":
    unittest.main()
