"""vespractl against the application, as whole processes: each verb, each exit status, and clients that misbehave."""

import json
import os
import re
import resource
import signal
import socket
import subprocess
import sys
import unittest

from application import BIN, SLOW, ApplicationTest

KEYS = ["state", "mode", "endsAt", "remaining", "elapsed", "lastEnd", "deadline", "canExtend", "requirements",
        "guardrails", "closedLidStatus", "checklist", "phase", "agents", "lastFinished", "settings", "preferences",
        "power", "thermal", "helper", "connections", "pendingAction"]
DATE = r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d(\.\d+)?Z"
TIME = r"\d\d?:\d\d( [AP]M)?"
FOREVER = "Awake until you stop it.\n"
ON_BATTERY = {"requiresACPower": False, "stopsOnLowBattery": True, "lowBatteryThreshold": 20}
HELD_BY_A_SESSION = ["PreventUserIdleSystemSleep", "activity"]


class Verbs(ApplicationTest):
    def expect(self, *steps):
        """Each step: a command, the exit status, and what its output and its complaint are like as a whole."""
        for command, status, output, complaint in steps:
            with self.subTest(command=command):
                result = self.ctl(*command.split())
                self.assertEqual(result.returncode, status, result.stderr)
                self.assertRegex(result.stdout, rf"\A(?:{output})\Z")
                self.assertRegex(result.stderr, rf"\A(?:{complaint})\Z")

    def test_without_an_application_every_verb_says_so_and_exits_with_4(self):
        self.expect(*((verb, 4, "", "Vespra is not running.\n") for verb in (
            "status", "status --json", "status --watch", "status --watch --json", "start", "start timer 45m", "stop",
            "toggle", "extend", "keep-awake", "cancel", "display on", "closed-lid off", "settings get",
            "settings get agents.graceDelay", "settings set agents.graceDelay 2m", "wait", "run -- touch nothing")))
        self.assertFalse(os.path.exists("nothing"))
        self.expect(("machine get", 4, "", "machine: no simulated laptop is running .*\n"),
                    ("machine set battery=5", 4, "", "machine: no simulated laptop is running .*\n"))

    def test_what_cannot_be_meant_names_the_place_and_exits_with_2(self):
        self.launch()
        for command, complaint in {
            "": "A subcommand is required", "begin": 'There is no "begin" here.', "machine turn": 'There is no "turn" here.', "status --all": "--all", "stop now": "now",
            "start timer 59s": "timer: expected a length from 1m to 24h",
            "start timer 24h1s": "timer: expected a length from 1m to 24h",
            "start until 24:00": "until: expected a time of day", "start timer 5m unlimited": "unlimited",
            "start --lid": "--lid", "display": "STATE is required", "display maybe": "maybe",
            "closed-lid 1": "1", "run": "COMMAND is required", "settings": "A subcommand is required",
            "settings get agents.grace": 'expected one of these keys, not "agents.grace":',
            "settings set agents.grace 1m": 'expected one of energy.requiresACPower, ',
            "settings set agents.graceDelay": "VALUE is required",
            "settings set agents.graceDelay 901s": "agents.graceDelay: expected a length from 0s to 15m",
            "machine set battery=101": "battery takes 0..100|none", "machine set wind=1": '"wind" is nothing to set',
        }.items():
            with self.subTest(command=command):
                result = self.ctl(*command.split())
                self.assertEqual((result.returncode, result.stdout), (2, ""))
                self.assertIn(complaint, result.stderr)
        self.assertEqual((self.status()["state"], self.stored.exists()), ("idle", False))

    def test_each_verb_does_what_it_says_also_a_second_time(self):
        self.launch()
        idle = "No session is running.*\nClosed lid: Not set up .*\n"
        self.expect(
            ("status", 0, idle, ""), ("stop", 0, "", ""), ("cancel", 0, "", ""),
            ("extend", 1, "", "There is no session that can be extended.\n"),
            ("keep-awake", 1, "", "There is no agent session.\n"),
            ("wait", 1, "", "No session has run.\n"),
            ("start unlimited --display", 0, FOREVER, ""),
            ("start", 1, "", "A session is already running.\n"),
            ("start timer 5m", 1, "", "A session is already running.\n"),
            ("extend", 1, "", "There is no session that can be extended.\n"),
            ("status", 0, r"Awake until you stop it. 0:0\d awake\nClosed lid: .*\n", ""))
        self.assertEqual([each["type"] for each in self.machine()["held"]],
                         ["activity", "PreventUserIdleSystemSleep", "PreventUserIdleDisplaySleep"])
        self.expect(("display off", 0, "", ""), ("display off", 0, "", ""))
        self.assertEqual(sorted(each["type"] for each in self.machine()["held"]), HELD_BY_A_SESSION)
        self.expect(
            ("stop", 0, "", ""), ("stop", 0, "", ""), ("wait", 10, "Session ended\n", ""),
            ("status", 0, f"No session is running. The last one ended at {TIME}: Stopped.\nClosed lid: .*\n", ""),
            ("start timer 23h55m", 0, f"Awake until {TIME}.\n", ""), ("extend", 0, f"Awake until {TIME}.\n", ""),
            ("toggle", 0, "", ""), ("toggle", 0, f"Awake until {TIME}.\n", ""), ("stop", 0, "", ""),
            ("start until 18:30", 0, "Awake until (18:30|6:30 PM).\n", ""), ("stop", 0, "", ""),
            ("start agent", 1, "", "No agent is connected.\n"))
        self.assertEqual(self.machine()["held"], [])
        # A start is for once; what the panel remembers is another matter.
        self.assertEqual(self.status()["preferences"], {
            "mode": "timer", "timerDuration": 3600, "untilTime": {"hour": 18, "minute": 0},
            "options": {"keepsDisplayAwake": False, "closedLid": False}})

    def test_refusals_exit_with_1_and_their_text_and_change_nothing(self):
        self.launch()
        self.done("machine", "set", "charger=off", "battery=15")
        self.expect(("start unlimited", 1, "", "Plug in the charger to start.\n"),
                    ("toggle", 1, "", "Plug in the charger to start.\n"),
                    ("run -- touch started", 1, "", "Plug in the charger to start.\n"),
                    ("settings set energy.requiresACPower off", 0, "", ""),
                    ("start unlimited", 1, "", "Battery at 15%, too low to start.\n"),
                    ("machine set helper=ready battery=90", 0, "", ""))
        self.wait_for(lambda: self.status()["helper"] == "ready")
        self.expect(("start unlimited", 0, FOREVER, ""),
                    ("closed-lid on", 1, "", "Plug in the charger to start.\n"))
        status = self.status()
        self.assertEqual((status["closedLidStatus"], status["preferences"]["options"]["closedLid"]), ("off", False))
        self.expect(("machine set charger=on", 0, "", ""), ("closed-lid on", 0, "", ""), ("closed-lid on", 0, "", ""))
        self.wait_for(lambda: self.status()["closedLidStatus"] == "canCloseLid")
        self.expect(("closed-lid off", 0, "", ""), ("stop", 0, "", ""), ("machine set thermal=serious", 0, "", ""),
                    ("start unlimited --closed-lid", 1, "", "(Mac|Computer) is too hot for closed-lid mode.\n"))
        self.assertFalse((self.home / "started").exists())

    def test_an_agent_session_is_kept_awake_and_its_forced_action_cancelled(self):
        self.connect_agent()
        self.launch()
        self.expect(("settings set agents.graceDelay 0s", 0, "", ""),
                    ("settings set agents.endAction sleepNow", 0, "", ""),
                    ("start agent", 0, f"Awake until your agents have finished, until {TIME} at the latest.\n", ""))
        self.hook("UserPromptSubmit")
        self.wait_for(lambda: self.status()["phase"] == "working")
        self.expect(("keep-awake", 0, "", ""), ("keep-awake", 0, "", ""))
        self.hook("Stop")
        self.wait_for(lambda: self.status()["agents"][0]["activity"] == "idle")
        status = self.status()
        self.assertEqual((status["state"], status["phase"]), ("active", "keptAwake"))
        self.expect(("stop", 0, "", ""), ("start agent", 0, ".*\n", ""))
        self.hook("UserPromptSubmit")
        self.hook("Stop")
        self.wait_for(lambda: self.status()["pendingAction"])
        self.assertRegex(self.done("status"), "will sleep in 1 minute")
        self.assertEqual(self.status()["pendingAction"]["action"], "sleepNow")
        self.expect(("cancel", 0, "", ""), ("cancel", 0, "", ""), ("wait", 0, "Session ended — agents finished\n", ""))
        status = self.status()
        self.assertEqual((status["pendingAction"], status["lastEnd"]["reason"]), (None, "agentsFinished"))

    def test_wait_exits_by_the_reason_of_the_end(self):
        hot = ["machine set helper=ready", "start unlimited --closed-lid"]
        for reason, status, settings, before, last in (
            ("stoppedByUser", 10, None, ["start unlimited"], "stop"),
            ("lowBattery", 11, {"energy": ON_BATTERY}, ["machine set charger=off battery=21", "start unlimited"],
             "machine set battery=20"),
            ("chargerDisconnected", 12, None, ["start unlimited"], "machine set charger=off"),
            ("batteryTimeLimit", 13, {"energy": dict(ON_BATTERY, batteryTimeLimit=1)}, ["start unlimited"],
             "machine set charger=off"),
            ("overheating", 15, None, hot, "machine set thermal=serious"),
            ("systemSleep", 17, None, ["start unlimited"], "machine set sleep=now"),
            ("appTerminated", 18, None, ["start unlimited"], None),
        ):
            with self.subTest(reason=reason):
                application = self.launch(settings=settings)
                for command in before:
                    self.done(*command.split())
                    if command.endswith("helper=ready"):
                        self.wait_for(lambda: self.status()["helper"] == "ready")
                waiting = self.ctl_later("wait")
                self.wait_until_connected()
                self.assertIsNone(waiting.poll())
                if last:
                    self.done(*last.split())
                else:
                    self.quit(application)
                _, complaint = waiting.communicate(timeout=SLOW)
                self.assertEqual((waiting.returncode, complaint), (status, ""))
                if last:
                    self.assertEqual(self.status()["lastEnd"]["reason"], reason)
                    self.quit(application)


class Status(ApplicationTest):
    def test_json_has_its_keys_in_order_and_dates_as_text(self):
        self.connect_agent()
        self.launch()
        idle = self.status()
        self.assertEqual(list(idle), KEYS)
        self.assertEqual({key for key in KEYS if idle[key] is None}, {
            "mode", "endsAt", "remaining", "elapsed", "lastEnd", "deadline", "phase", "lastFinished", "pendingAction"})
        self.assertEqual((idle["connections"], idle["helper"], idle["thermal"]),
                         ({"claude": "connected", "codex": "agentNotFound"}, "notInstalled", "nominal"))
        self.assertEqual(list(idle["power"]), ["isOnACPower", "batteryLevel"])
        self.done("start", "timer", "10m")
        active = self.status()
        self.assertEqual((list(active), active["state"], active["mode"], active["canExtend"]),
                         (KEYS, "active", "timer", True))
        for key in ("endsAt", "deadline"):
            self.assertRegex(active[key], rf"\A{DATE}\Z")
        self.assertAlmostEqual(active["remaining"] + active["elapsed"], 600, places=4)
        self.done("stop")
        ended = self.status()
        self.assertEqual((list(ended), ended["lastEnd"]["reason"]), (KEYS, "stoppedByUser"))
        self.assertRegex(ended["lastEnd"]["at"], rf"\A{DATE}\Z")

    def test_watch_has_one_line_for_each_change_and_none_for_anything_else(self):
        application = self.launch()
        watching = self.ctl_later("status", "--watch", "--json")
        seen = []

        def next_line():
            seen.append(json.loads(watching.stdout.readline()))
            return seen[-1]

        self.assertEqual((next_line()["state"], list(seen[0])), ("idle", KEYS))
        for command, path, value in (
            ("start unlimited", ("state",), "active"),
            ("display on", ("preferences", "options", "keepsDisplayAwake"), True),
            ("display on", None, None),
            ("extend", None, None),
            ("settings set agents.graceDelay 5m", ("settings", "agents", "graceDelay"), 300),
            ("settings set agents.graceDelay 5m", None, None),
            ("machine set battery=41", ("power", "batteryLevel"), 41),
            ("machine set thermal=fair", ("thermal",), "fair"),
            ("stop", ("state",), "idle"),
            ("stop", None, None),
            ("display off", ("preferences", "options", "keepsDisplayAwake"), False),
        ):
            self.ctl(*command.split())
            if path:
                line = next_line()
                for key in path:
                    line = line[key]
                self.assertEqual(line, value, command)
        self.quit(application, signal.SIGKILL)
        output, complaint = watching.communicate(timeout=SLOW)
        self.assertEqual((output, complaint, watching.returncode), ("", "Vespra has gone without an answer.\n", 4))

    def test_watch_as_text_ends_with_4_when_the_application_goes(self):
        application = self.launch()
        watching = self.ctl_later("status", "--watch")
        self.assertEqual(watching.stdout.readline(), "No session is running.\n")
        self.quit(application)
        _, complaint = watching.communicate(timeout=SLOW)
        self.assertEqual((watching.returncode, complaint), (4, "Vespra has gone without an answer.\n"))


class Run(ApplicationTest):
    def test_the_commands_status_is_passed_on(self):
        self.launch()
        (self.home / "text").write_text("no program")
        for command, status in (
            (["true"], 0), (["sh", "-c", "exit 7"], 7), (["sh", "-c", "kill -TERM $$"], 128 + signal.SIGTERM),
            (["sh", "-c", "kill -KILL $$"], 128 + signal.SIGKILL), (["/none"], 127), ([str(self.home / "text")], 126),
            (["echo", "--display", "-x"], 0),
        ):
            with self.subTest(command=command):
                result = self.ctl("run", "--", *command)
                self.assertEqual(result.returncode, status, result.stderr)
                self.wait_for(lambda: self.status()["state"] == "idle")
        self.assertEqual(result.stdout, "--display -x\n")
        self.done("start", "timer", "5m")
        self.assertEqual(self.ctl("run", "--", "touch", self.home / "ran").returncode, 1)
        self.assertFalse((self.home / "ran").exists())

    def running(self, *options, script="echo up; exec sleep 60", prefix=()):
        """A run whose command has started."""
        process = self.spawn(*prefix, BIN / "vespractl", "run", *options, "--", "sh", "-c", script,
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE, start_new_session=True)
        self.addCleanup(lambda: self.kill_group(process))
        self.assertEqual(process.stdout.readline(), "up\n")
        return process

    @staticmethod
    def kill_group(process):
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass

    def test_runs_share_a_session_that_ends_with_the_last_of_them_also_when_it_is_killed(self):
        self.launch()
        first, second = self.running("--display"), self.running()
        status = self.status()
        self.assertEqual((status["mode"], status["requirements"]["preventsDisplaySleep"]), ("unlimited", True))
        first.kill()
        first.wait(SLOW)
        self.assertEqual(self.status()["state"], "active")
        second.kill()
        self.wait_for(lambda: self.status()["state"] == "idle")
        self.assertEqual(self.machine()["held"], [])

    def test_a_run_that_is_gone_before_it_is_answered_leaves_no_session(self):
        self.launch()
        for _ in range(20):
            connection = self.connect()
            connection.send({"request": "run"})
            connection.close()
        self.wait_for(lambda: self.status()["state"] == "idle")
        self.assertEqual(self.machine()["held"], [])

    def test_the_command_goes_on_when_its_session_is_stopped_and_gets_the_signals(self):
        self.launch()
        run = self.running(script='trap "echo told; exit 3" TERM; echo up; while :; do sleep 0.05; done')
        self.done("stop")
        self.assertEqual(run.stderr.readline(), "Session ended\n")
        self.done("start", "timer", "5m")  # one of the user's own, which the end of the run leaves alone
        self.assertIsNone(run.poll())
        run.terminate()
        self.assertEqual((run.wait(SLOW), run.stdout.read()), (3, "told\n"))
        self.assertEqual(self.status()["mode"], "timer")

    def test_a_command_that_outlived_its_session_has_no_part_in_the_next_one(self):
        self.launch()
        self.running()
        self.done("stop")
        second = self.running()
        second.kill()
        self.wait_for(lambda: self.status()["state"] == "idle")

    def test_a_signal_that_was_ignored_before_stays_ignored(self):
        self.launch()
        run = self.running(script="echo up; sleep 1; echo survived", prefix=("nohup",))
        os.killpg(run.pid, signal.SIGHUP)
        self.assertEqual(run.wait(SLOW), 0)
        self.assertEqual(run.stdout.read(), "survived\n")


class Settings(ApplicationTest):
    DEFAULTS = {"energy.requiresACPower": "on", "energy.stopsOnLowBattery": "on", "energy.lowBatteryThreshold": "20",
                "energy.batteryTimeLimit": "off", "closedLid.continuesOnBattery": "off",
                "agents.endAction": "letSleep", "agents.graceDelay": "2m", "agents.waitingCountsAsFinished": "on",
                "agentSafetyCap": "12h"}

    def settings(self):
        return json.loads(self.done("settings", "get", "--json"))

    def test_each_takes_its_limits_and_nothing_beyond_and_is_kept(self):
        application = self.launch()
        self.assertEqual(list(self.settings().items()), list(self.DEFAULTS.items()))
        changed = {}
        for key, accepted, refused in (
            ("energy.requiresACPower", ["on", "off"], ["true", "ON", "", "1"]),
            ("energy.stopsOnLowBattery", ["off"], ["no"]),
            ("energy.lowBatteryThreshold", ["10", "80", "35"], ["9", "5", "81", "85", "36", "20%", "1e1", "-20"]),
            ("energy.batteryTimeLimit", ["15m", "8h", "off", "1h30m"], ["14m59s", "8h1s", "0", "1.5h", "none"]),
            ("closedLid.continuesOnBattery", ["on"], ["yes"]),
            ("agents.endAction", ["sleepNow", "shutDown"], ["sleep", "SLEEPNOW", "off"]),
            ("agents.graceDelay", ["0s", "15m", "45s"], ["15m1s", "-1s", "off", "60"]),
            ("agents.waitingCountsAsFinished", ["off"], ["Off"]),
            ("agentSafetyCap", ["1h", "24h", "off", "90m"], ["59m", "24h1s", "0"]),
        ):
            for value in accepted:
                self.assertEqual(self.done("settings", "set", key, value), "", (key, value))
                changed[key] = {"90m": "1h30m"}.get(value, value)
                self.assertEqual(self.done("settings", "get", key), changed[key] + "\n")
            for value in refused:
                result = self.ctl("settings", "set", key, "--", value)
                self.assertEqual(result.returncode, 2, (key, value))
                self.assertRegex(result.stderr, rf"\A{re.escape(key)}: expected .*, not \"{re.escape(value)}\".*\n\Z")
        self.assertEqual(self.settings(), changed)
        self.done("display", "on")
        self.done("closed-lid", "on")
        self.quit(application, signal.SIGKILL)
        self.launch()
        self.assertEqual(self.settings(), changed)
        self.assertEqual(self.done("settings", "get"), "".join(f"{key}={changed[key]}\n" for key in self.DEFAULTS))
        self.assertEqual(self.status()["preferences"]["options"], {"keepsDisplayAwake": True, "closedLid": True})

    def test_they_count_at_once_in_a_session_that_runs(self):
        self.launch()
        self.done("settings", "set", "energy.requiresACPower", "off")
        self.done("machine", "set", "charger=off", "battery=50")
        self.done("start", "unlimited")
        self.done("settings", "set", "energy.lowBatteryThreshold", "50")
        self.assertEqual(self.status()["lastEnd"]["reason"], "lowBattery")
        self.assertEqual([each["identifier"] for each in self.machine()["notifications"]], ["session.ended"])
        self.done("machine", "set", "charger=on")
        self.done("start", "unlimited")
        self.assertEqual(self.machine()["notifications"], [])

    def test_what_cannot_be_stored_counts_until_the_next_start_and_is_told(self):
        application = self.launch()
        self.done("settings", "set", "agents.graceDelay", "3m")
        before = self.stored.read_bytes()
        limits = resource.prlimit(application.pid, resource.RLIMIT_FSIZE)
        resource.prlimit(application.pid, resource.RLIMIT_FSIZE, (10, limits[1]))  # the disk is full
        for command, value in (("settings set agents.graceDelay 4m", "4m"), ("display on", "4m")):
            result = self.ctl(*command.split())
            self.assertEqual((result.returncode, result.stdout), (1, ""))
            self.assertEqual(result.stderr, "This counts until Vespra quits, but it could not be saved.\n")
            self.assertEqual(self.done("settings", "get", "agents.graceDelay"), value + "\n")
        self.assertEqual(self.stored.read_bytes(), before)
        resource.prlimit(application.pid, resource.RLIMIT_FSIZE, limits)
        self.done("settings", "set", "agentSafetyCap", "off")
        self.quit(application, signal.SIGKILL)
        self.launch()
        self.assertEqual((self.settings()["agents.graceDelay"], self.settings()["agentSafetyCap"]), ("4m", "off"))

    def test_a_folder_in_the_files_place_stops_nothing(self):
        self.stored.mkdir(parents=True)
        self.launch()
        self.assertEqual(self.ctl("settings", "set", "agents.graceDelay", "4m").returncode, 1)
        self.assertEqual(self.settings(), dict(self.DEFAULTS, **{"agents.graceDelay": "4m"}))
        self.assertEqual(list(self.stored.iterdir()), [])


class SecondStart(ApplicationTest):
    def start(self, *options):
        result = subprocess.run([BIN / "vespra", *options], env=self.environment, capture_output=True, text=True,
                                timeout=SLOW)
        return result.returncode, result.stdout, result.stderr

    def test_it_shows_the_first_one_or_says_how_to_start_a_session(self):
        application = self.launch()
        self.assertEqual(self.start(), (0, "", ""))
        refusal = 'Vespra is already running. "vespractl start" starts a session in it.\n'
        for options in (("--unlimited",), ("--headless", "--timer", "5m"), ("--idle",), ("--display",)):
            self.assertEqual(self.start(*options), (1, "", refusal))
        self.assertEqual(self.status()["state"], "idle")
        os.kill(application.pid, signal.SIGSTOP)
        self.assertEqual(self.start(), (1, "", "Vespra is already running, but does not answer.\n"))
        os.kill(application.pid, signal.SIGCONT)
        self.assertEqual(self.start(), (0, "", ""))

    def test_of_several_at_once_one_stays_and_after_a_kill_the_next_one_may(self):
        command = [BIN / "vespra", "--headless", "--platform", "simulated", "--idle"]
        started = [self.spawn(*command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) for _ in range(4)]
        self.wait_for(lambda: sum(each.poll() is None for each in started) == 1 and self.ctl("status").returncode == 0)
        first, = (each for each in started if each.poll() is None)
        self.assertEqual([each.returncode for each in started if each is not first], [1, 1, 1])
        self.quit(first, signal.SIGKILL)
        self.launch()


class Clients(ApplicationTest):
    def setUp(self):
        super().setUp()
        self.launch()

    def test_nonsense_gets_an_error_and_the_connection_goes_on(self):
        connection = self.connect()
        for line, complaint in (
            (b"", "request: expected a JSON object in one line"), (b"{", "request: expected a JSON object in one line"),
            (b"\xff\xfe\x00", "request: expected a JSON object in one line"),
            (b'{"request":"stop"} {}', "request: expected a JSON object in one line"),
            (b"[" * 60000 + b"]" * 5000, "request: expected a JSON object in one line"),
            (b"[" * 30000 + b"]" * 30000, "request: expected an object"), (b"7", "request: expected an object"),
            (b"{}", "request.request: is missing"), (b'{"request":"begin"}', "request.request: "),
            (b'{"request":7}', "request.request: "),
            (b'{"request":"stop","now":true}', 'request: does not take "now" with "stop"'),
            (b'{"request":"start","timerDuration":"1s"}', "request.timerDuration: expected a length from 1m to 24h"),
            (b'{"request":"start","timerDuration":60}', "request.timerDuration: expected a text"),
            (b'{"request":"display"}', "request.on: is missing"),
            (b'{"request":"display","on":"yes"}', "request.on: expected true or false"),
            (b'{"request":"set","key":"x","value":"1"}', "expected one of energy.requiresACPower, "),
            (b'{"request":"set","key":"' + b"\xc3\xa9" * 20000 + b'","value":"1"}', "expected one of "),
            (b'{"request":"set","key":"a\\u0000b","value":"1"}', "expected one of "),
        ):
            with self.subTest(line=line[:60]):
                error = connection.ask(line + b"\n")["error"]
                self.assertEqual(error["kind"], "badRequest")
                self.assertIn(complaint, error["message"])
        self.assertEqual(connection.ask({"request": "stop"}), {"done": {"isActive": False}})

    def test_a_line_of_64_kib_is_read_and_one_byte_more_ends_the_connection(self):
        connection = self.connect()
        longest = b'{"request":"stop"}'.ljust(65536)
        self.assertEqual(connection.ask(longest + b"\n"), {"done": {"isActive": False}})
        error = connection.ask(longest + b" ")["error"]
        self.assertEqual((error["kind"], error["message"]),
                         ("badRequest", "request: expected at most 65536 bytes in a line"))
        self.assertIsNone(connection.receive())
        self.status()

    def test_many_requests_at_once_are_answered_in_order_also_in_pieces(self):
        connection = self.connect()
        connection.send(b'{"request":"stop"}\n{"request":"settings"}\n' * 500)
        for _ in range(500):
            self.assertEqual((list(connection.receive()), list(connection.receive())), (["done"], ["settings"]))
        for byte in b'{"request":"stop"}\n':
            connection.send(bytes([byte]))
        self.assertEqual(list(connection.receive()), ["done"])

    def test_who_says_nothing_reads_nothing_or_stops_in_a_line_delays_nobody(self):
        self.connect()
        self.connect().send(b'{"request":"sta')
        deaf = self.connect()
        deaf.send({"request": "watch"})
        flooding = self.connect()
        flooding.socket.setblocking(False)
        try:  # answers that it never reads, until they are not even taken any more
            while flooding.socket.send(b'{"request":"status"}\n' * 100):
                pass
        except BlockingIOError:
            pass
        other = self.connect()
        for on in (True, False) * 300:
            self.assertEqual(other.ask({"request": "display", "on": on}), {"done": {"isActive": False}})
        other.ask({"request": "start", "mode": "unlimited"})
        # What the deaf one reads in the end is how things stand now, after some of how they stood.
        lines = [deaf.receive()["status"]]
        while lines[-1]["state"] == "idle":
            lines.append(deaf.receive()["status"])
        self.assertLess(len(lines), 600)

    def test_of_seventy_connections_the_last_ones_are_served_and_those_that_wait_stay(self):
        waiting = self.connect()
        self.done("start", "unlimited")
        waiting.send({"request": "wait"})
        more = [self.connect() for _ in range(70)]
        self.assertEqual(more[-1].ask({"request": "stop"}), {"done": {"isActive": False}})
        self.assertEqual(waiting.receive()["ended"]["reason"], "stoppedByUser")
        self.assertIsNone(more[0].receive())

    def test_where_all_wait_another_one_is_told_and_gets_in_when_one_has_gone(self):
        watching = [self.connect() for _ in range(64)]
        for connection in watching:
            self.assertIn("status", connection.ask({"request": "watch"}))
        result = self.ctl("status")
        self.assertEqual((result.returncode, result.stderr), (1, "Too many programs are connected.\n"))
        watching[0].close()
        self.wait_for(lambda: self.ctl("status").returncode == 0)

    def test_the_socket_is_the_users_alone(self):
        path = self.support / "control.sock"
        self.assertEqual((path.stat().st_mode & 0o777, path.parent.stat().st_mode & 0o777), (0o600, 0o700))
        if os.geteuid() != 0:
            self.skipTest("only root can be somebody else")
        for each in (path, path.parent, self.home):
            each.chmod(0o777)  # whoever gets as far
        stranger = """
import os, socket, sys
os.setuid(1000)
connection = socket.socket(socket.AF_UNIX)
connection.connect(sys.argv[1])
try:
    connection.sendall(b'{"request":"status"}\\n')
    print(connection.recv(100))
except OSError as error:
    print(b"")
"""
        result = subprocess.run([sys.executable, "-c", stranger, path], capture_output=True, text=True, timeout=SLOW)
        self.assertEqual((result.stdout, result.stderr), ("b''\n", ""))
        self.status()


if __name__ == "__main__":
    sys.argv[:1] = ["control_test"]
    unittest.main()
