"""A Linux laptop for one test case: its buses, battery, lid and displays, and programs that run on it.

The laptop is not part of this repository: VESPRA_LAB names the folder of its commands, and without it none of these
tests can run. "make test-lab" says so and fails; "make test" leaves them out.
"""

import json
import os
import pathlib
import subprocess
import sys
import tempfile

sys.path.append(str(pathlib.Path(__file__).parents[1] / "Support"))
from driver import BIN, ON_BATTERY, DriverTest

LAB = pathlib.Path(os.environ["VESPRA_LAB"])
SLOW = 30  # seconds; never waited for unless something is broken

HELPER = "app.vespra.Helper"

# What a test starts from.
CALM = {"battery": 80, "ac": 1, "lid": "open", "display": "internal", "thermal": "nominal", "desktop": "none",
        "sleep_for": 1}


class LabTest(DriverTest):
    """One laptop for all tests of a class; each starts from the same state of it."""

    prefix = (LAB / "run",)
    slow = SLOW
    notifications = "none"  # or the service that shows them: xfce, dunst, mock

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="vespra-lab-")
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name) / "lab"
        cls.support = cls.folder / "home/.local/share/Vespra"
        cls.stored = cls.folder / "home/.config/Vespra/Vespra.ini"
        cls.output = cls.folder / "output"
        cls.environment = dict(os.environ, LAB_DIR=str(cls.folder), LC_ALL="C", TZ="UTC")
        cls.addClassCleanup(lambda: cls.lab("down"))
        cls.lab("up", "--panel=none", f"--notify={cls.notifications}")

    def setUp(self):
        self.set(**CALM)
        (self.folder / "events.jsonl").write_text("")

    @classmethod
    def lab(cls, command, *arguments):
        result = subprocess.run([LAB / command, *arguments], env=cls.environment, capture_output=True, text=True)
        if result.returncode != 0:
            raise RuntimeError(f"lab {command} {arguments}: {result.stdout}{result.stderr}")
        return result.stdout

    @classmethod
    def install_helper(cls):
        """As a package does. It starts when somebody asks for it."""
        files = BIN.parent / "Resources"
        (cls.folder / "system.d" / f"{HELPER}.conf").write_text((files / "helper-bus-policy.conf").read_text())
        (cls.folder / "actions" / f"{HELPER}.policy").write_text((files / "helper.policy").read_text())
        program = f"/usr/bin/env STATE_DIRECTORY={cls.folder}/state {BIN}/vespra-helper"
        activation = (files / "helper-activation.service").read_text().splitlines()
        (cls.folder / "system-services" / f"{HELPER}.service").write_text("".join(
            (f"Exec={program}" if line.startswith("Exec=") else line) + "\n"
            for line in activation if not line.startswith("SystemdService=")))
        subprocess.run([LAB / "run", "busctl", "--system", "call", "org.freedesktop.DBus", "/org/freedesktop/DBus",
                        "org.freedesktop.DBus", "ReloadConfig"], env=cls.environment, check=True)

    def set(self, **settings):
        self.lab("set", *(f"{key}={value}" for key, value in settings.items()))

    def events(self, *kinds):
        lines = (self.folder / "events.jsonl").read_text().splitlines()
        return [event for event in map(json.loads, lines) if event["event"] in kinds]

    def held(self):
        """What is listed, sorted: "idle:block" of logind, the service and flags of the session's."""
        state = json.loads(self.lab("get"))
        locks = [f"{lock['what']}:{lock['mode']}" for lock in state["inhibitors"]]
        cookies = [f"{cookie['service']} {cookie['flags']}" for cookie in state["session_inhibitors"].values()]
        return sorted(locks + cookies)

    def start(self, *options, settings=None, **variables):
        """vespra --headless --unlimited on the laptop, once it has said that it is awake."""
        process = self.spawn("env", *(f"{key}={value}" for key, value in variables.items()), BIN / "vespra",
                             "--headless", "--unlimited", *options, *self.settings_option(settings),
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.assertEqual(process.stdout.readline(), "Awake until you stop it.\n")
        return process

    def last_words(self, process, status=0):
        """What it says from now on until it ends by itself, with `status` and without an error."""
        out, err = process.communicate(timeout=SLOW)
        self.assertEqual((process.returncode, err), (status, ""))
        return out.splitlines()

    def doctor(self):
        """Its exit status and its answer."""
        result = self.ctl("doctor", "--json")
        return result.returncode, json.loads(result.stdout)

    def wait_until_held(self, *expected):
        self.wait_for(lambda: self.held() == sorted(expected), f"that {sorted(expected)} alone are held")

    def services(self):
        """The process that is all of them."""
        started = dict(line.split()[:2] for line in (self.folder / "pids").read_text().splitlines())
        return int(started["labd"])

    def restart_services(self):
        """logind, UPower and the session's services crash, with all that they know, and are started again."""
        os.kill(self.services(), 9)
        (self.folder / "ctl.sock").unlink()
        # In the shell that has the lab's environment, and remembered for `down`.
        script = f'. "{LAB}/common.sh"; load_env; start labd /usr/bin/python3 -B "{LAB}/labd.py" upower logind polkit'
        subprocess.run(["bash", "-c", script], env=self.environment, check=True)
        self.wait_for((self.folder / "ctl.sock").exists)
