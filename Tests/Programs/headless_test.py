"""vespra --headless and vespractl as whole processes, on the simulated laptop."""

import json
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time
import unittest

BIN = pathlib.Path(os.environ["VESPRA_BIN"])
SLOW = 20  # seconds; never waited for unless something is broken
MACHINE = "Mac" if sys.platform == "darwin" else "computer"


class Headless(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory(prefix="vespra-")
        self.addCleanup(self.folder.cleanup)
        self.environment = dict(os.environ, HOME=self.folder.name, XDG_DATA_HOME=self.folder.name,
                                XDG_CONFIG_HOME=self.folder.name + "/config", LC_ALL="C", TZ="UTC")
        self.environment.pop("DISPLAY", None)
        self.support = pathlib.Path(self.folder.name) / "Vespra"

    def start(self, *options):
        process = subprocess.Popen(
            [BIN / "vespra", "--headless", "--platform", "simulated", *options],
            env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.addCleanup(lambda: (process.kill(), process.communicate()))
        return process

    def wait_for(self, condition):
        end = time.monotonic() + SLOW
        while not condition():
            self.assertLess(time.monotonic(), end, "never happened")
            time.sleep(0.01)

    def started(self, *options):
        """A process whose first line has come, and that line."""
        process = self.start(*options)
        return process, process.stdout.readline()

    def hook(self, event, agent="claude", session="a"):
        text = json.dumps({"hook_event_name": event, "session_id": session, "cwd": "/x"})
        subprocess.run([BIN / "vespra-agent", agent], input=text, text=True, check=True,
                       env=dict(self.environment, VESPRA_AGENT_SOCKET=str(self.support / "agent.sock")))

    def machine(self, *settings):
        subprocess.run([BIN / "vespractl", "machine", "set", *settings], check=True, env=self.environment,
                       stdout=subprocess.DEVNULL)

    def finish(self, process):
        out, err = process.communicate(timeout=SLOW)
        return process.returncode, out, err

    def test_bad_arguments_name_the_option_and_exit_with_2(self):
        for options, complaint in {
            ("--timer", "10s"): "--timer: expected a length from 1m to 24h",
            ("--until", "25:00"): "--until: expected a time of day",
            ("--grace", "16m"): "--grace: expected a length from 0s to 15m",
            ("--settings", "/none"): "--settings: cannot read /none",
            ("--platform", "amiga"): "--platform: expected linux, macos or simulated",
            ("--timer", "5m", "--unlimited"): "--timer",
            ("--forever",): "--forever",
        }.items():
            with self.subTest(options=options):
                result = subprocess.run([BIN / "vespra", *options], env=self.environment, capture_output=True,
                                        text=True, timeout=SLOW)
                self.assertEqual((result.returncode, result.stdout), (2, ""))
                self.assertIn(complaint, result.stderr)

    def test_signals_end_the_session_and_exit_with_0(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(signal=number):
                process, line = self.started("--unlimited")
                self.assertEqual(line, "Awake until you stop it.\n")
                process.send_signal(number)
                self.assertEqual(self.finish(process), (0, "Session ended\n", ""))
                self.assertFalse((self.support / "agent.sock").exists())

    def test_an_agent_session_ends_after_the_grace_delay(self):
        (pathlib.Path(self.folder.name) / ".claude").mkdir()
        subprocess.run([BIN / "vespractl", "hooks", "connect", "claude"], check=True, env=self.environment,
                       stdout=subprocess.DEVNULL)
        process, _ = self.started("--agent", "--grace", "1s")
        self.hook("UserPromptSubmit")
        self.hook("UserPromptSubmit", agent="codex")
        self.hook("Stop")
        time.sleep(1.2)
        self.assertIsNone(process.poll(), "ended while the second agent works")
        self.hook("Stop", agent="codex")
        self.assertEqual(self.finish(process), (0, "Session ended — agents finished\n", ""))

    def test_readings_end_the_session_with_their_reason(self):
        for setting, words in {
            "charger=off": "Session ended — charger unplugged",
            "sleep=now": "Session ended",
        }.items():
            with self.subTest(setting=setting):
                process, _ = self.started("--unlimited")
                self.machine(setting)
                self.assertEqual(self.finish(process), (0, words + "\n", ""))

    def test_a_low_battery_ends_it_where_the_charger_is_not_required(self):
        settings = pathlib.Path(self.folder.name) / "settings.json"
        settings.write_text(json.dumps({"energy": {
            "requiresACPower": False, "stopsOnLowBattery": True, "lowBatteryThreshold": 30}}))
        process, _ = self.started("--unlimited", "--settings", settings)
        self.machine("battery=31", "charger=off")
        self.machine("battery=30")
        self.assertEqual(self.finish(process), (0, "Session ended — battery at 30%\n", ""))

    def test_closed_lid_mode_is_told_of_and_ends_by_heat(self):
        process, line = self.started("--unlimited", "--closed-lid")
        self.assertEqual((line, process.stdout.readline()), ("Awake until you stop it.\n", "Closed lid: Not set up\n"))
        self.machine("helper=ready")
        self.assertEqual(process.stdout.readline(), "Closed lid: Checking…\n")
        self.assertEqual(process.stdout.readline(), "Closed lid: You can close the lid\n")
        self.machine("thermal=serious")
        self.assertEqual(self.finish(process)[:2], (0, f"Session ended — {MACHINE} too hot\n"))

    def test_the_end_action_follows_unless_it_is_cancelled(self):
        settings = pathlib.Path(self.folder.name) / "settings.json"
        settings.write_text(json.dumps({"agents": {
            "graceDelay": 0, "waitingCountsAsFinished": True, "endAction": "sleepNow"}}))
        process, _ = self.started("--agent", "--settings", settings)
        self.hook("UserPromptSubmit")
        self.hook("Stop")
        self.assertEqual(process.stdout.readline(), "Session ended — agents finished\n")
        self.assertIn("will sleep in 1 minute.", process.stdout.readline())
        process.send_signal(signal.SIGINT)
        self.assertEqual(self.finish(process)[:2], (0, ""))

    def test_the_session_outlives_the_reader_of_its_output(self):
        process, _ = self.started("--unlimited")
        process.stdout.close()
        process.stderr.close()
        self.machine("thermal=serious")  # prints a warning into nothing
        self.hook("Stop")
        self.assertIsNone(process.poll())
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(SLOW), 0)


class Simulate(unittest.TestCase):
    def test_bad_scenarios_print_one_line_and_exit_with_2(self):
        for arguments, text, complaint in [
            (["-"], '{"steps":[{"at":1,"extend":true},{"at":0,"extend":true}]}', "scenario: steps[1].at: must not decrease\n"),
            (["/none"], "", "scenario: cannot read /none: No such file or directory\n"),
        ]:
            with self.subTest(complaint=complaint):
                result = subprocess.run([BIN / "vespractl", "simulate", *arguments], input=text, capture_output=True,
                                        text=True, timeout=SLOW)
                self.assertEqual((result.returncode, result.stdout, result.stderr), (2, "", complaint))

    def test_a_full_disk_is_no_success(self):
        with open("/dev/full", "w") as full:
            result = subprocess.run([BIN / "vespractl", "simulate", "-"], input='{"steps":[{"at":0,"show":true}]}',
                                    stdout=full, stderr=subprocess.PIPE, text=True, timeout=SLOW)
        self.assertEqual(result.returncode, 1)
        self.assertIn("cannot write", result.stderr)


if __name__ == "__main__":
    sys.argv[:1] = ["headless_test"]
    unittest.main()
