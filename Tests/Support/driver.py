"""What starts the programs and steers the application by them, for tests of whole processes."""

import json
import os
import pathlib
import subprocess
import time
import unittest

BIN = pathlib.Path(os.environ["VESPRA_BIN"])
ON_BATTERY = {"requiresACPower": False, "stopsOnLowBattery": True, "lowBatteryThreshold": 20}


class DriverTest(unittest.TestCase):
    """The programs run in `environment`; the application has `support`, keeps its
    settings in `stored` and prints into `output`."""

    prefix = ()  # what stands before each command
    slow = 60  # seconds; never waited for unless something is broken

    def spawn(self, *command, **more):
        """A program that is killed at the end of the test, if it still runs."""
        more.setdefault("stdin", subprocess.DEVNULL)
        process = subprocess.Popen([*self.prefix, *command], env=self.environment, text=True, **more)
        self.addCleanup(lambda: (process.kill(), process.communicate()))
        return process

    def launch(self, *options, settings=None, **more):
        """The application, once it answers."""
        with open(self.output, "ab") as output:
            process = self.spawn(BIN / "vespra", "--headless", "--idle", *options, *self.settings_option(settings),
                                 stdout=output, stderr=output, **more)
        self.wait_for(lambda: self.ctl("status").returncode == 0 or process.poll() is not None)
        self.assertIsNone(process.poll(), self.output.read_text())
        return process

    def settings_option(self, settings):
        if settings is None:
            return ()
        file = self.output.with_name("settings.json")
        file.write_text(json.dumps(settings))
        return "--settings", file

    def store(self, settings):
        """What the user has chosen before: unlike a file, it is believed also beyond the limits."""
        text = json.dumps(settings).replace('"', '\\"')
        self.stored.parent.mkdir(parents=True, exist_ok=True)
        self.stored.write_text(f'[General]\nsessionSettings="@ByteArray({text})"\n')

    def ctl(self, *arguments):
        return subprocess.run([*self.prefix, BIN / "vespractl", *arguments], env=self.environment, capture_output=True,
                              text=True, timeout=self.slow, stdin=subprocess.DEVNULL)

    def ctl_later(self, *arguments):
        return self.spawn(BIN / "vespractl", *arguments, stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def done(self, *arguments):
        """What it says to that; it must succeed."""
        result = self.ctl(*arguments)
        self.assertEqual((result.returncode, result.stderr), (0, ""), arguments)
        return result.stdout

    def status(self):
        return json.loads(self.done("status", "--json"))

    def wait_until_connected(self):
        """Some program has a connection that it keeps, and has had time to ask."""
        path = str(self.support / "control.sock")
        # The application's own end, beside the socket that listens.
        self.wait_for(lambda: pathlib.Path("/proc/net/unix").read_text().count(path) > 1, "a connection")
        self.status()

    def hook(self, event, agent="claude", session="a", cwd="/x"):
        subprocess.run([*self.prefix, BIN / "vespra-agent", agent], check=True, text=True, env=self.environment,
                       timeout=self.slow,
                       input=json.dumps({"hook_event_name": event, "session_id": session, "cwd": cwd}))

    def wait_for(self, condition, what="it", limit=None):
        end = time.monotonic() + (limit or self.slow)
        while not condition():
            self.assertLess(time.monotonic(), end, f"{what} never happened")
            time.sleep(0.01)
