"""The HTTP channel of the registered module against servers and proxies of others."""
import pathlib
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import web  # noqa: E402
import wine  # noqa: E402

HEAD = """
var http = new ActiveXObject("Quorvane.SmsProtocolHttp");
http.ProviderHost = "localhost";
http.ProviderPort = PORT;
http.ProviderSuccessResponse = "OK";
http.AdvancedSettings = "HttpTimeout=20";
function Send(path) {
    http.URLText = path + "?to=%MESSAGERECIPIENT%&text=%MESSAGEDATA%";
    var message = new ActiveXObject("Quorvane.SmsMessage");
    message.Recipient = "+31612345678";
    message.Data = "Hi there";
    http.Send(message);
    WScript.Echo(path + "|" + http.LastError + "|" + http.ProviderResponse.substr(0, 40));
}
"""
FORM = "to=%2B31612345678&text=Hi%20there"
AGENT = "Mozilla/4.0 (compatible; Win32; Quorvane.Http.3.1)"


def send(port, body):
    return wine.lines_of(HEAD.replace("PORT", str(port)) + body, "js")


class Servers(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = cls.enterClassContext(wine.folder())
        cls.web = web.Web(folder)
        cls.addClassCleanup(cls.web.close)
        cls.enterClassContext(cls.web.authority.trusted())

    def setUp(self):
        self.before = len(self.web.seen()) if self.web.seen_file.exists() else 0

    def asked(self):
        return self.web.seen()[self.before:]

    def targets(self):
        return [("https " if one["secure"] else "http ") + one["target"] for one in self.asked()]

    def test_what_the_server_gets(self):
        self.assertEqual(send(self.web.plain, 'Send("ok");'), ["ok|0|OK 17"])
        self.assertEqual(self.asked(), [{"method": "POST", "target": "/ok", "user": "", "agent": AGENT,
                                         "type": "application/x-www-form-urlencoded", "length": str(len(FORM)),
                                         "body": FORM, "secure": "", "status": 200}])

    def test_every_status(self):
        code = {201: 33302, 202: 33302, 204: 33302, 400: 22418, 403: 22417, 404: 22416, 405: 22427, 410: 22420,
                418: 22410, 500: 22419, 501: 22421, 502: 22424, 503: 22422, 504: 22425}
        self.assertEqual(set(code), set(web.STATUSES))
        lines = send(self.web.plain, 'http.AdvancedSettings = "HttpTimeout=2";\n' +
                     "\n".join(f'Send("{status}");' for status in code))
        self.assertEqual([line.split("|")[:2] for line in lines], [[str(s), str(c)] for s, c in code.items()])
        repeated = [one["status"] for one in self.asked()].count(418)
        self.assertEqual((len(self.asked()) - repeated, repeated), (len(code) - 1, 2))

    def test_replies(self):
        self.assertEqual(send(self.web.plain, """
Send("chunked"); Send("empty"); Send("nul"); Send("large");
http.ProviderSuccessResponse = ""; Send("ok"); Send("large");
"""), ["chunked|0|OK GET in chunks", "empty|33302|", "nul|0|a\0OK\0b".split("\0")[0], "large|0|OK " + "x" * 37,
       "ok|33302|OK 17", "large|33302|OK " + "x" * 37])

    def test_a_slow_reply_ends_in_time(self):
        started = time.time()
        self.assertEqual(send(self.web.plain, 'http.AdvancedSettings = "HttpTimeout=2"; Send("slow");'), ["slow|22410|"])
        self.assertLess(time.time() - started, 15)

    def test_accounts(self):
        self.assertEqual(send(self.web.plain, """
Send("account");
http.ProviderWebAccount = "web user"; http.ProviderWebPassword = "wrong"; Send("account");
http.ProviderWebPassword = "secret pass"; Send("account"); Send("account"); Send("ok");
"""), ["account|22412|", "account|22412|", "account|0|OK 17", "account|0|OK 17", "ok|0|OK 17"])
        good = [(one["user"], one["body"]) for one in self.asked() if one["status"] == 200]
        self.assertEqual(good, [("web user", FORM), ("web user", FORM), ("", FORM)])

    def test_redirects(self):
        self.assertEqual(send(self.web.plain, 'Send("to-secure"); Send("relative");'),
                         ["to-secure|0|OK 17", "relative|0|OK 17"])
        self.assertEqual(self.targets(), ["http /to-secure", "https /ok", "http /relative", "http /ok"])
        self.assertEqual([one["length"] for one in self.asked()], [str(len(FORM))] * 4)

    def test_secure_redirects(self):
        self.assertEqual(send(self.web.secure, """
http.ProviderUseSSL = true; http.ProviderWebAccount = "web user"; http.ProviderWebPassword = "secret pass";
Send("ok"); Send("to-plain"); Send("to-account"); Send("relative");
"""), ["ok|0|OK 17", "to-plain|0|OK 17", "to-account|0|OK 17", "relative|0|OK 17"])
        self.assertEqual(self.targets(), ["https /ok", "https /to-plain", "http /ok", "https /to-account",
                                          "https /account", "https /account", "https /relative", "https /ok"])

    def test_a_circle_of_redirects(self):
        self.assertEqual(send(self.web.plain, 'http.AdvancedSettings = "HttpTimeout=2"; Send("circle");'),
                         ["circle|22410|"])
        self.assertEqual(len(self.asked()), 12)

    def test_through_a_proxy(self):
        with wine.running(web.TinyProxy) as proxy:
            lines = send(self.web.plain, f"""
http.ProxyServer = "127.0.0.1"; http.ProxyPort = {proxy.port};
Send("ok");
http.ProviderUseSSL = true; http.ProviderPort = {self.web.secure};
Send("ok");
""")
            log = proxy.log.read_text(encoding="utf-8")
        self.assertEqual(lines, ["ok|0|OK 17", "ok|0|OK 17"])
        self.assertEqual(self.targets(), ["http /ok", "https /ok"])
        self.assertIn(f"POST http://localhost:{self.web.plain}/ok", log)
        self.assertIn(f"CONNECT localhost:{self.web.secure}", log)

    def test_through_a_proxy_with_an_account(self):
        accounts = ("--proxy-account", "p user:p pass", "--account", "web user:secret pass")
        with wine.running(lambda path: wine.Counterpart("gateway.py", path, "--port", 0, *accounts)) as proxy:
            lines = send(80, f"""
http.ProviderHost = "sms.example"; http.ProxyServer = "127.0.0.1"; http.ProxyPort = {proxy.port};
Send("send");
http.ProxyAccount = "p user"; http.ProxyPassword = "wrong"; Send("send");
http.ProxyPassword = "p pass"; Send("send");
http.ProviderWebAccount = "web user"; http.ProviderWebPassword = "wrong"; Send("send");
http.ProviderWebPassword = "secret pass"; Send("send");
""")
            sent = [(entry["to"], entry["text"]) for entry in proxy.entries("to")]
        self.assertEqual([line.split("|")[1] for line in lines if "|" in line], ["33302", "22405", "22412", "22412", "0"])
        self.assertEqual(sent, [("+31612345678", "Hi there")])


class Certificates(unittest.TestCase):
    def test_a_server_that_nobody_vouches_for(self):
        with wine.running(web.Web) as server, wine.folder() as path:
            log = path / "log.txt"
            lines = send(server.secure, f"""
http.LogFile = {wine.windows_path(log)!r}; http.ProviderUseSSL = true; Send("ok");
""")
            self.assertEqual(lines, ["ok|22406|"])
            self.assertRegex(log.read_text(encoding="latin-1"), r"HTTP ERROR          : SEND, system error 121[57]\d")
            # Trusted, but for another name than the one that was asked.
            with server.authority.trusted():
                self.assertEqual(send(server.secure, 'http.ProviderUseSSL = true; Send("ok");'), ["ok|0|OK 17"])
                self.assertEqual(send(server.secure, """
http.ProviderHost = "127.0.0.1"; http.ProviderUseSSL = true; Send("ok");
"""), ["ok|22406|"])
            self.assertEqual(len(server.seen()), 1)


if __name__ == "__main__":
    unittest.main()
