"""Web servers of others, for tests of what goes over HTTP: nginx with and without TLS, and tinyproxy."""
import contextlib
import json
import os
import shutil
import socket
import subprocess
import time

import wine

CONFIG = """
{user}
daemon off;
pid {folder}/nginx.pid;
error_log {folder}/error.txt;
worker_processes 1;
events {{ }}
http {{
  access_log off;
  client_body_temp_path {folder}/body; proxy_temp_path {folder}/proxy; fastcgi_temp_path {folder}/f;
  uwsgi_temp_path {folder}/u; scgi_temp_path {folder}/s;
  client_max_body_size 100m; client_body_buffer_size 1m; large_client_header_buffers 4 256k; keepalive_requests 100000;
  log_format seen escape=json '{{"method":"$request_method","target":"$request_uri","user":"$remote_user",'
    '"type":"$content_type","agent":"$http_user_agent","length":"$content_length","body":"$request_body","secure":"$https","status":$status}}';
  server {{
    listen 127.0.0.1:{inner};
    root {folder}/files;
    location = /ok {{ return 200 "OK 17"; }}
    location = /chunked {{ ssi on; ssi_types *; try_files /chunked.txt =404; }}
    location = /slow {{ limit_rate 10; try_files /slow.txt =404; }}
    location = /large {{ try_files /large.txt =404; }}
    location = /empty {{ return 200; }}
    location = /nul {{ try_files /nul.txt =404; }}
    {statuses}
  }}
  server {{
    listen 127.0.0.1:{plain};
    listen 127.0.0.1:{secure} ssl;
    ssl_certificate {folder}/server.pem;
    ssl_certificate_key {folder}/server.key;
    access_log {folder}/seen.json seen;
    location / {{ proxy_pass http://127.0.0.1:{inner}; proxy_method GET; proxy_buffering off; proxy_http_version 1.1; }}
    location = /account {{
      auth_basic "test"; auth_basic_user_file {folder}/accounts;
      proxy_pass http://127.0.0.1:{inner}/ok; proxy_method GET;
    }}
    location = /to-secure {{ return 301 https://localhost:{secure}/ok; }}
    location = /to-plain {{ return 302 http://localhost:{plain}/ok; }}
    location = /to-account {{ return 302 https://localhost:{secure}/account; }}
    location = /relative {{ absolute_redirect off; return 302 /ok; }}
    location = /circle {{ absolute_redirect off; return 302 /circle; }}
  }}
}}
"""
STATUSES = (201, 202, 204, 400, 403, 404, 405, 410, 418, 500, 501, 502, 503, 504)
LARGE = 20_000_000


def free_ports(count):
    sockets = [socket.create_server(("127.0.0.1", 0)) for _ in range(count)]
    ports = [one.getsockname()[1] for one in sockets]
    for one in sockets:
        one.close()
    return ports


def wait_for(port, process):
    for _ in range(500):
        if process.poll() is not None:
            raise RuntimeError(f"{process.args[0]} ended with {process.returncode}")
        with contextlib.suppress(OSError), socket.create_connection(("127.0.0.1", port), 1):
            return
        time.sleep(0.02)
    raise RuntimeError(f"{process.args[0]} does not listen")


class Authority:
    """A certificate authority of the test's own, which signs a certificate for "localhost"."""

    def __init__(self, folder):
        self.folder = folder
        self.file = folder / "authority.der"
        self._openssl("req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "30", "-subj", "/CN=Test authority",
                      "-addext", "basicConstraints=critical,CA:TRUE", "-addext", "keyUsage=critical,keyCertSign",
                      "-keyout", "authority.key", "-out", "authority.pem")
        self._openssl("x509", "-in", "authority.pem", "-outform", "DER", "-out", "authority.der")
        self._openssl("req", "-newkey", "rsa:2048", "-nodes", "-subj", "/CN=localhost", "-keyout", "server.key",
                      "-out", "server.csr")
        (folder / "names.txt").write_text("subjectAltName=DNS:localhost\n", encoding="ascii")
        self._openssl("x509", "-req", "-in", "server.csr", "-CA", "authority.pem", "-CAkey", "authority.key", "-days", "30",
                      "-extfile", "names.txt", "-out", "server.pem")

    def _openssl(self, *arguments):
        subprocess.run(["openssl", *arguments], cwd=self.folder, check=True, capture_output=True)

    @contextlib.contextmanager
    def trusted(self):
        path = wine.windows_path(self.file)
        if (done := wine.run("trust.exe", "add", path))[0] != 0:
            raise RuntimeError(f"the authority cannot be trusted: {done}")
        try:
            yield
        finally:
            wine.run("trust.exe", "remove", path)


class Web:
    """A running nginx."""

    def __init__(self, folder):
        self.authority = Authority(folder)
        self.seen_file = folder / "seen.json"
        self.inner, self.plain, self.secure = free_ports(3)
        files = folder / "files"
        files.mkdir()
        (files / "chunked.txt").write_text('OK <!--# echo var="request_method" --> in chunks', encoding="ascii")
        (files / "slow.txt").write_text("OK " + "x" * 1000, encoding="ascii")
        (files / "large.txt").write_bytes(b"OK " + b"x" * LARGE)
        (files / "nul.txt").write_bytes(b"a\0OK\0b")
        made = subprocess.run(["openssl", "passwd", "-apr1", "secret pass"], check=True, capture_output=True, text=True)
        (folder / "accounts").write_text(f"web user:{made.stdout}", encoding="ascii")
        statuses = "\n".join(f"location = /{status} {{ return {status}; }}" for status in STATUSES)
        (folder / "nginx.conf").write_text(CONFIG.format(folder=folder, inner=self.inner, plain=self.plain,
                                                         secure=self.secure, statuses=statuses,
                                                         user="" if os.getuid() else "user root;"), encoding="ascii")
        program = shutil.which("nginx") or "/usr/sbin/nginx"
        self.process = subprocess.Popen([program, "-p", folder, "-c", folder / "nginx.conf", "-e", folder / "error.txt"],
                                        stderr=subprocess.DEVNULL)
        for port in (self.inner, self.plain, self.secure):
            wait_for(port, self.process)

    def seen(self):
        """What was asked, oldest first."""
        return [json.loads(line) for line in self.seen_file.read_text(encoding="utf-8").splitlines()]

    def close(self):
        self.process.terminate()
        self.process.wait()


class TinyProxy:
    """A running tinyproxy."""

    def __init__(self, folder):
        self.port, = free_ports(1)
        self.log = folder / "log.txt"
        config = folder / "tinyproxy.conf"
        config.write_text(f'Port {self.port}\nListen 127.0.0.1\nTimeout 60\nLogFile "{self.log}"\nLogLevel Connect\n'
                          f"MaxClients 20\nAllow 127.0.0.1\n", encoding="ascii")
        self.process = subprocess.Popen(["tinyproxy", "-d", "-c", config], stdout=subprocess.DEVNULL)
        wait_for(self.port, self.process)

    def close(self):
        self.process.terminate()
        self.process.wait()
