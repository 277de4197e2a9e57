"""The HTTP channel of the registered module, from scripts, against the lab's gateway."""
import pathlib
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import wine  # noqa: E402
from wine import gateway  # noqa: E402

EXAMPLES = wine.ROOT / "examples/http"

HEAD = """
var http = new ActiveXObject("Quorvane.SmsProtocolHttp");
http.ProviderHost = "127.0.0.1";
http.ProviderPort = Number(WScript.Arguments.Item(0));
http.URLText = "send?to=%MESSAGERECIPIENT%&from=%MESSAGESENDER%&text=%MESSAGEDATA%";
http.URLBinary = "send?to=%MESSAGERECIPIENT%&udh=%MESSAGEUDH%&hex=%MESSAGEDATA%";
http.URLUnicode = "send?to=%MESSAGERECIPIENT%&ucs2=%MESSAGEDATA%";
http.ProviderSuccessResponse = "OK";
http.ProviderErrorResponse = "ERROR";
var message = new ActiveXObject("Quorvane.SmsMessage");
message.Recipient = "+31612345678";
message.Sender = "1234";
function Send(format, text) {
    message.Format = format;
    message.Data = text;
    http.Send(message);
    Show();
}
function Show() { WScript.Echo(http.LastError + "|" + http.ProviderResponse.replace(/\\r\\n/g, "")); }
"""


def run_script(server, body):
    return wine.lines_of(HEAD + body, "js", server.port)


class Examples(unittest.TestCase):
    def send(self, name, *arguments):
        return wine.run(name, *arguments) if name.endswith(".exe") else wine.script(EXAMPLES / name, *arguments)

    def test_no_letter_is_lost(self):
        for name in ("send.vbs", "send.js", "gateway_example.exe"):
            with self.subTest(name), gateway() as server:
                for number, text in enumerate((wine.GSM_TEXT, wine.UNICODE_TEXT), 1001):
                    code, output = self.send(name, "127.0.0.1", server.port, "+31612345678", text)
                    self.assertEqual((code, output.strip()), (0, f"Answer: OK {number}"))
                self.assertEqual([(sent["text"], "unicode" in sent) for sent in server.messages()],
                                 [(wine.GSM_TEXT, False), (wine.UNICODE_TEXT, True)])

    def test_an_account_is_given(self):
        for name in ("send.vbs", "send.js", "gateway_example.exe"):
            with self.subTest(name), gateway("--account", "demo:secret") as server:
                code, output = self.send(name, "127.0.0.1", server.port, "+31612345678", "Hi", "demo", "secret")
                self.assertEqual((code, output.strip()), (0, "Answer: OK 1001"))
                self.assertEqual(self.send(name, "127.0.0.1", server.port, "+31612345678", "Hi")[0], 1)

    def test_a_failure_is_told(self):
        for name in ("send.vbs", "send.js", "gateway_example.exe"):
            with self.subTest(name), gateway(rules=[{"match": "POST", "do": "answer", "body": "ERROR: 5"}]) as server:
                code, output = self.send(name, "127.0.0.1", server.port, "+31612345678", "Hi")
                self.assertEqual(code, 1)
                self.assertIn("ailed: 33301 Error response received from provider", output)


class Channel(unittest.TestCase):
    def test_every_kind_of_message(self):
        with gateway() as server:
            lines = run_script(server, r"""
Send(0, "Hello @ \u20ac");
Send(10, "0102ff");
Send(11, "03A10201FF");
Send(20, "\u0416");
http.ProviderCharset = "utf-8";
Send(0, "\u00e9\u0416");
http.URLText = "send/%MESSAGERECIPIENT%/%MESSAGEDATA%";
Send(0, "a/b?c&d");
""")
            self.assertEqual(lines, [f"0|OK {number}" for number in range(1001, 1007)])
            shown = [[sent.get(name) for name in ("method", "to", "text", "data", "header")] for sent in server.messages()]
            to = "+31612345678"
            self.assertEqual(shown, [["POST", to, "Hello @ €", None, None], ["POST", to, None, "0102FF", None],
                                     ["POST", to, None, "FF", "A10201"], ["POST", to, "Ж", None, None],
                                     ["POST", to, "éЖ", None, None], ["GET", to, "a/b?c&d", None, None]])

    def test_arguments_that_are_no_message(self):
        with gateway() as server:
            self.assertEqual(run_script(server, """
http.Send("text"); Show();
http.Send(http); Show();
http.Send(null); Show();
Send(2, "parts");
message.Recipient = "x"; Send(0, "Hi");
message.Recipient = "1234"; Send(0, new Array(162).join("x"));
"""), ["34040|", "34040|", "34040|", "34034|", "34031|", "34033|"])
            self.assertEqual(server.messages(), [])

    def test_replies(self):
        rows = [
            ({"do": "answer", "body": "ERR: 301 OK"}, "33225|ERR: 301 OK"),
            ({"do": "answer", "body": "OK or ERROR"}, "33301|OK or ERROR"),
            ({"do": "answer", "body": "what"}, "33302|what"),
            ({"do": "answer"}, "33302|"),
            ({"do": "status", "status": 404}, "22416|"),
            ({"do": "status", "status": 202}, "33302|"),
            ({"do": "redirect", "location": "/send/1234/moved"}, "0|OK"),
            ({"do": "redirect", "location": "send/1234/moved", "status": 301}, "0|OK"),
            ({"do": "hangup"}, "22407|"),
            ({"do": "delay", "ms": 300}, "0|OK"),
            ({"do": "split", "ms": 0}, "0|OK"),
        ]
        rules = [{"match": f"POST /send/1234/row{number};"} | rule for number, (rule, _) in enumerate(rows)]
        with gateway(rules=rules) as server:
            lines = run_script(server, f"""
message.Recipient = "1234";
for (var i = 0; i < {len(rows)}; i++) {{
    http.URLText = "send/%MESSAGERECIPIENT%/row" + i + ";?text=%MESSAGEDATA%";
    Send(0, "Hi");
}}""")
            self.assertEqual([line[:len(wanted)] for line, (_, wanted) in zip(lines, rows, strict=True)],
                             [wanted for _, wanted in rows])
            self.assertEqual([sent["text"] for sent in server.messages()].count("moved"), 2)

    def test_without_a_success_text_a_number_is_success(self):
        with gateway("--success", "{}") as server:
            self.assertEqual(run_script(server, 'http.ProviderSuccessResponse = ""; Send(0, "Hi");'), ["0|1001"])

    def test_accounts_of_the_server_and_of_a_proxy(self):
        with gateway("--account", "me:web secret", "--proxy-account", "px:proxy secret") as server, \
                wine.folder() as path:
            log = path / "http.log"
            lines = run_script(server, f"""
http.LogFile = "{str(wine.windows_path(log)).replace(chr(92), chr(92) * 2)}";
http.AdvancedSettings = "MaskPasswords=1";
http.ProviderWebAccount = "me"; http.ProviderWebPassword = "web secret";
http.ProxyServer = "127.0.0.1"; http.ProxyPort = http.ProviderPort;
http.ProviderHost = "gateway.example.org"; http.ProviderPort = 0;
Send(0, "no account");
http.ProxyAccount = "px"; http.ProxyPassword = "wrong one";
Send(0, "wrong");
http.ProxyPassword = "proxy secret";
Send(0, "Hi");
http.ProviderWebPassword = "wrong one";
Send(0, "wrong");
""")
            self.assertEqual(lines, ["33302|", "22405|", "0|OK 1001", "22412|"])
            self.assertEqual([(sent["text"], sent["proxied"]) for sent in server.messages()], [("Hi", True)])
            self.assertNotIn("secret", log.read_text(encoding="latin-1"))

    def test_nobody_there_and_time(self):
        with gateway(rules=[{"match": "POST", "do": "silence"}]) as server:
            self.assertEqual(run_script(server, """
http.AdvancedSettings = "HttpTimeout=1";
Send(0, "Hi");
http.ProviderHost = "127.0.0.1"; http.ProviderPort = 9; Send(0, "Hi");
http.ProviderHost = ""; Send(0, "Hi");
"""), ["22410|", "22404|", "22404|"])

    def test_provider_files(self):
        with gateway() as server, wine.folder() as path:
            file = str(wine.windows_path(path / "gateway.ini")).replace("\\", "\\\\")
            self.assertEqual(run_script(server, f"""
http.ProviderUseSSL = true;
WScript.Echo(http.ProviderUseSSL);
http.ProviderSaveConfig("{file}"); Show();
http.Clear();
WScript.Echo(http.URLText + http.ProviderUseSSL);
http.ProviderLoadConfig("{file}"); Show();
WScript.Echo(http.URLText + http.ProviderUseSSL);
http.ProviderUseSSL = false; Send(0, "Hi");
"""), ["-1", "0|", "0", "0|", "send?to=%MESSAGERECIPIENT%&from=%MESSAGESENDER%&text=%MESSAGEDATA%-1", "0|OK 1001"])


if __name__ == "__main__":
    unittest.main()
