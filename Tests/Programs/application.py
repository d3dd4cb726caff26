"""The application on the simulated laptop, and what steers it from outside, for tests of whole processes."""

import json
import os
import pathlib
import signal
import socket
import subprocess
import tempfile
import time
import unittest

BIN = pathlib.Path(os.environ["VESPRA_BIN"])
SLOW = 60  # seconds; never waited for unless something is broken
ON_BATTERY = {"requiresACPower": False, "stopsOnLowBattery": True, "lowBatteryThreshold": 20}
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


class ApplicationTest(unittest.TestCase):
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
        """The application, once it answers. What it prints is in `output`."""
        options += self.settings_option(settings)
        with open(self.output, "ab") as output:
            process = self.spawn(BIN / "vespra", "--headless", "--platform", "simulated", "--idle", *options,
                                 stdout=output, stderr=output,
                                 # A write beyond a limit is to fail as on a full disk.
                                 preexec_fn=lambda: signal.signal(signal.SIGXFSZ, signal.SIG_IGN))
        self.wait_for(lambda: self.ctl("status").returncode == 0 or process.poll() is not None)
        self.assertIsNone(process.poll(), self.output.read_text())
        return process

    def settings_option(self, settings):
        if settings is None:
            return ()
        (self.home / "settings.json").write_text(json.dumps(settings))
        return "--settings", self.home / "settings.json"

    def quit(self, process, number=signal.SIGTERM):
        process.send_signal(number)
        process.wait(SLOW)

    def spawn(self, *command, **more):
        """A program that is killed at the end of the test, if it still runs."""
        process = subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL, text=True, **more)
        self.addCleanup(lambda: (process.kill(), process.communicate()))
        return process

    def ctl(self, *arguments):
        return subprocess.run([BIN / "vespractl", *arguments], env=self.environment, capture_output=True, text=True,
                              timeout=SLOW, stdin=subprocess.DEVNULL)

    def ctl_later(self, *arguments):
        return self.spawn(BIN / "vespractl", *arguments, stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def done(self, *arguments):
        """What it says to that; it must succeed."""
        result = self.ctl(*arguments)
        self.assertEqual((result.returncode, result.stderr), (0, ""), arguments)
        return result.stdout

    def status(self):
        return json.loads(self.done("status", "--json"))

    def machine(self):
        return json.loads(self.done("machine", "get", "--json"))

    def connect(self):
        connection = Connection(self.support / "control.sock")
        self.addCleanup(connection.close)
        return connection

    def wait_until_connected(self):
        """Some program has a connection that it keeps, and has had time to ask."""
        path = str(self.support / "control.sock")
        # The application's own end, beside the socket that listens.
        self.wait_for(lambda: pathlib.Path("/proc/net/unix").read_text().count(path) > 1)
        self.status()

    def hook(self, event, agent="claude", session="a"):
        subprocess.run([BIN / "vespra-agent", agent], check=True, text=True, env=self.environment, timeout=SLOW,
                       input=json.dumps({"hook_event_name": event, "session_id": session, "cwd": "/x"}))

    def connect_agent(self):
        (self.home / ".claude").mkdir()
        self.done("hooks", "connect", "claude")

    def wait_for(self, condition):
        end = time.monotonic() + SLOW
        while not condition():
            self.assertLess(time.monotonic(), end, "never happened")
            time.sleep(0.01)
