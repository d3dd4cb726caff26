"""vespra-update against a server of the test's own, with a certificate authority of its own."""

import http.server
import json
import os
import pathlib
import ssl
import subprocess
import tempfile
import threading
import time
import unittest

PROGRAM = pathlib.Path(os.environ["VESPRA_BIN"]) / "vespra-update"
SIGN = pathlib.Path(__file__).resolve().parents[2] / "scripts/sign-update"
PACKAGE = os.urandom(300_000)
FOREVER, HUGE = 60, 100_000_000


def openssl(*arguments):
    return subprocess.run(["openssl", *arguments], check=True, capture_output=True).stdout


class Keys:
    """A signing key, and a certificate for localhost by an authority; all in `folder`."""

    def __init__(self, folder):
        self.folder = folder
        openssl("genpkey", "-algorithm", "ed25519", "-out", self.path("signing"))
        self.public = self.sign().strip()
        openssl("req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", self.path("ca-key"), "-out", self.path("ca"),
                "-subj", "/CN=Test authority", "-days", "2")
        openssl("req", "-newkey", "rsa:2048", "-nodes", "-keyout", self.path("key"), "-out", self.path("request"),
                "-subj", "/CN=localhost")
        pathlib.Path(self.path("names")).write_text("subjectAltName=DNS:localhost")
        openssl("x509", "-req", "-in", self.path("request"), "-CA", self.path("ca"), "-CAkey", self.path("ca-key"),
                "-CAcreateserial", "-days", "2", "-extfile", self.path("names"), "-out", self.path("certificate"))

    def path(self, name):
        return str(self.folder / name)

    def sign(self, *files):
        return subprocess.run([SIGN, self.path("signing"), *files], check=True, capture_output=True, text=True).stdout

    def signature(self, content):
        (self.folder / "content").write_bytes(content)
        return self.sign(self.folder / "content").split('"')[1]

    def signed(self, feed):
        file = self.folder / "feed.xml"
        file.write_text(feed + "\n<!-- sparkle-signatures:\nof an earlier release\n-->\n")
        self.sign(file)
        return file.read_bytes()


def item(version, *systems, notes="", more=""):
    enclosures = "".join(f'<enclosure url="{url}" sparkle:os="{system}" length="{length}" sparkle:edSignature="{signature}"/>'
                         for system, url, length, signature in systems)
    return (f"<item><title>x</title><sparkle:version>{version}</sparkle:version><sparkle:minimumSystemVersion>99"
            f"</sparkle:minimumSystemVersion><description>{notes}</description>{more}{enclosures}</item>")


def rss(*items):
    return ('<?xml version="1.0"?><rss xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle">'
            f'<channel><title>Vespra</title>{"".join(items)}</channel></rss>')


class Handler(http.server.BaseHTTPRequestHandler):
    """Answers by the path: with what `server.pages` has there, a redirect, or bytes that never end well."""

    def do_GET(self):
        self.server.requests.append((self.path, dict(self.headers)))
        kind, _, count = self.path[1:].partition("/")
        content = self.server.pages.get(self.path)
        if kind == "moved" or kind == "http":
            self.send_response(302)
            self.send_header("Set-Cookie", "who=you")
            self.send_header("Location", self.server.plain if kind == "http" else self.server.next(int(count)))
            self.end_headers()
        elif content is not None:
            self.start(len(content))
            self.wfile.write(content)
        elif kind == "cut":
            self.start(5000)
            self.wfile.write(b"<rss>")
        elif kind == "slow":
            self.start(FOREVER)
            self.pour(b" ", FOREVER, 0.2)
        elif kind == "huge":
            self.start(HUGE if count == "announced" else None)
            self.pour(bytes(100_000), HUGE // 100_000, 0)
        else:
            self.send_error(404)

    def start(self, length):
        self.send_response(200)
        if length is not None:
            self.send_header("Content-Length", str(length))
        self.end_headers()

    def pour(self, piece, times, pause):
        try:
            for _ in range(times):
                self.wfile.write(piece)
                self.server.poured += len(piece)
                time.sleep(pause)
        except OSError:
            pass

    def log_message(self, *_):
        pass


class Server(http.server.ThreadingHTTPServer):
    def __init__(self, keys=None):
        super().__init__(("localhost", 0), Handler)
        self.pages, self.requests, self.poured, self.plain = {}, [], 0, None
        self.address = f"http{'s' if keys else ''}://localhost:{self.server_port}"
        if keys:
            context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
            context.load_cert_chain(keys.path("certificate"), keys.path("key"))
            self.socket = context.wrap_socket(self.socket, server_side=True)
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def next(self, count):
        return f"{self.address}/moved/{count - 1}" if count > 1 else self.address + "/new"

    def handle_error(self, *_):
        pass


class UpdateTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="vespra-")
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        cls.keys = Keys(cls.folder)
        cls.server, cls.plain = Server(cls.keys), Server()
        cls.server.plain = cls.plain.address + "/new"
        package = ("linux", cls.server.address + "/Vespra_2.0.deb", len(PACKAGE), cls.keys.signature(PACKAGE))
        foreign = ("macos", "https://localhost/mac.zip", 5, "c2ln")
        feed = rss(item("1.10", package), item("2.0", foreign, package, notes="&lt;ul&gt;&lt;li&gt;New &amp;amp; good&lt;/ul&gt;"),
                   item("3.0", foreign), item("5.0", package, more="<sparkle:channel>beta</sparkle:channel>"),
                   item("6.0", package, more="<sparkle:informationalUpdate/>"),
                   item("4.0", ("linux", "http://localhost/a.deb", 5, "c2ln")), item("0.9", package))
        new = cls.keys.signed(feed)
        pages = {"/new": new, "/old": cls.keys.signed(rss(item("1.0", package), item("0.9", package))),
                 "/tampered": new.replace(b"2.0", b"2.1"), "/unsigned": feed.encode(), "/after": new + b"<!-- more -->",
                 "/malformed": cls.keys.signed(feed[:-6]), "/Vespra_2.0.deb": PACKAGE, "/bad.deb": PACKAGE[:-1] + b"x",
                 "/short.deb": PACKAGE[:-1], "/long.deb": PACKAGE + b"x"}
        cls.server.pages = cls.plain.pages = pages

    def run_tool(self, *arguments, authority=True, given=""):
        trust = ["--authority", self.keys.path("ca")] if authority else []
        done = subprocess.run([PROGRAM, *arguments, "--key", self.keys.public, "--current", "1.0", *trust], input=given,
                              capture_output=True, text=True, timeout=FOREVER)
        return [json.loads(line) for line in done.stdout.splitlines()]

    def check(self, path, *more, **options):
        return self.run_tool("check", "--feed", self.server.address + path, *more, **options)[-1]

    def test_a_failure_to_sign_is_told_and_changes_nothing(self):
        feed = self.folder / "untouched.xml"
        feed.write_text("<rss/>")
        for key, file in ("key", feed), ("signing", self.folder / "missing.deb"):
            self.assertNotEqual(subprocess.run([SIGN, self.keys.path(key), file], capture_output=True).returncode, 0, key)
        self.assertEqual(feed.read_text(), "<rss/>")

    def test_a_feed_tells_of_a_newer_version_or_of_nothing(self):
        self.server.poured = 0
        for path, expected in {
                "/new": "offer", "/moved/5": "offer", "/moved/6": "unreachable", "/old": "upToDate", "/tampered": "untrusted",
                "/unsigned": "untrusted", "/after": "untrusted", "/malformed": "untrusted", "/cut": "unreachable",
                "/http": "unreachable", "/huge/announced": "tooLarge", "/huge/unannounced": "tooLarge",
                "/slow": "unreachable", "/nothing": "unreachable"}.items():
            with self.subTest(path):
                told = self.check(path, "--limit", "3")
                self.assertEqual(told.get("reason", told["type"]), expected, told)
        self.assertEqual(self.check("/new", authority=False)["reason"], "unreachable", "nobody knows its authority")
        self.assertLess(self.server.poured, HUGE / 4)
        self.assertEqual(self.plain.requests, [])
        offer = self.check("/new")
        self.assertEqual((offer["version"], offer["notes"]), ("2.0", "\u2022 New & good"))
        names = {name.lower() for _, headers in self.server.requests for name in headers}
        self.assertEqual(names, {"host", "user-agent", "accept-language", "accept-encoding", "connection"})

    def test_a_package_is_what_its_makers_signed_or_is_gone(self):
        offer = self.check("/new")
        folder = self.folder / "cache"
        for path, expected in {"/Vespra_2.0.deb": "package", "/bad.deb": "untrusted", "/short.deb": "untrusted",
                               "/long.deb": "tooLarge", "/Vespra_2.0.zip": "untrusted"}.items():
            with self.subTest(path):
                given = json.dumps(offer | {"url": self.server.address + path})
                told = self.run_tool("download", "--into", str(folder), "--feed", "https://x", given=given)
                self.assertEqual(told[-1].get("reason", told[-1]["type"]), expected, told[-1])
                if expected == "package":
                    package = pathlib.Path(told[-1]["path"])
                    self.assertEqual((package.read_bytes(), package.stat().st_mode & 0o777, folder.stat().st_mode & 0o777),
                                     (PACKAGE, 0o600, 0o700))
                    self.assertEqual([told[0]["type"], told[-2]["fraction"]], ["progress", 1])
                elif path.endswith(".deb"):
                    self.assertEqual(list(folder.iterdir()), [])


if __name__ == "__main__":
    unittest.main()
