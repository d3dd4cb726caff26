"""The application on the simulated laptop, and what steers it from outside, for tests of whole processes."""

import json
import os
import pathlib
import signal
import socket
import sys
import tempfile

sys.path.append(str(pathlib.Path(__file__).parents[1] / "Support"))
from driver import BIN, ON_BATTERY, DriverTest

SLOW = DriverTest.slow
HELD_BY_A_SESSION = ["PreventUserIdleSystemSleep", "activity"]


class Connection:
    """One connection to the application's socket, line by line."""

    def __init__(self, path):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect(str(path))
        self.socket.settimeout(SLOW)
        self.lines = self.socket.makefile("rb")

    def send(self, request):
        if not isinstance(request, bytes):
            request = json.dumps(request).encode() + b"\n"
        self.socket.sendall(request)

    def receive(self):
        """The next line's object; none when the application has closed the connection."""
        try:
            line = self.lines.readline()
        except ConnectionResetError:  # closed while some of what was sent had not been read
            line = b""
        return json.loads(line) if line else None

    def ask(self, request):
        self.send(request)
        return self.receive()

    def close(self):
        self.lines.close()
        self.socket.close()


class ApplicationTest(DriverTest):
    """Each test has a home of its own. Nothing runs in it until `launch`."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="vespra-", ignore_cleanup_errors=True)
        self.addCleanup(folder.cleanup)
        self.home = pathlib.Path(folder.name)
        self.environment = dict(os.environ, HOME=folder.name, XDG_DATA_HOME=folder.name,
                                XDG_CONFIG_HOME=folder.name + "/config", LC_ALL="C.UTF-8", TZ="UTC")
        self.environment.pop("DISPLAY", None)
        self.support = self.home / "Vespra"
        self.stored = self.home / "config/Vespra/Vespra.ini"
        self.output = self.home / "output"

    def launch(self, *options, settings=None):
        # A write beyond a limit is to fail as on a full disk.
        return super().launch("--platform", "simulated", *options, settings=settings,
                              preexec_fn=lambda: signal.signal(signal.SIGXFSZ, signal.SIG_IGN))

    def quit(self, process, number=signal.SIGTERM):
        process.send_signal(number)
        process.wait(SLOW)

    def machine(self):
        return json.loads(self.done("machine", "get", "--json"))

    def connect(self):
        connection = Connection(self.support / "control.sock")
        self.addCleanup(connection.close)
        return connection

    def connect_agent(self):
        (self.home / ".claude").mkdir()
        self.done("hooks", "connect", "claude")
